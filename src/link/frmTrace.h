#pragma once

#include "link/windows.h"

#include <QWidget>

namespace quoravel {

class EditField;

/// Shows what goes over the cable. One at most is open, and the trace is on as long as it is.
class frmTrace : public QWidget, public TracePane {
  public:
    frmTrace();
    ~frmTrace() override;

    /// Places the window; to be called once, before it is shown.
    void Event_Open();

    [[nodiscard]] int TextLength() const override;
    void CutOldest(int characters) override;
    void Append(std::string_view utf8) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Event_Close();

    EditField* rtbTrace_;
    bool closed_ = false;
};

} // namespace quoravel
