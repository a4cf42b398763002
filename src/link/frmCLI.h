#pragma once

#include "view/frmDocument.h"

#include <string_view>

class QLineEdit;

namespace quoravel {

/// A small terminal for the micro's operating system: star commands below, their output above.
class frmCLI : public frmDocument {
  public:
    frmCLI();

    void Event_Open() override;

  protected:
    void Form_Resize() override;
    void EditCopy_Action() override;
    void EditSelectAll_Action() override;

  private:
    void txtCmd_KeyDown();
    void RunCommand(std::string_view command);
    [[nodiscard]] bool ShowOutput(std::string_view output);

    QLineEdit* txtCmd_;
};

/// Opens the console and returns when it has been closed.
void ShowConsole();

} // namespace quoravel
