#pragma once

#include <QDialog>

#include <array>

class QRadioButton;

namespace quoravel {

/// Asks for the boot option of the current drive.
class frmBoot : public QDialog {
  public:
    explicit frmBoot(QWidget* parent);

  private:
    void cmdOK_Action();

    std::array<QRadioButton*, 4> options_{}; ///< by the number of the option
};

} // namespace quoravel
