#pragma once

#include <QDialog>

class QLineEdit;

namespace quoravel {

/// Asks for the addresses of a file. Takes and gives them through Module1::a_load and a_exec;
/// a_change tells whether it was left with Ok.
class frmAddr : public QDialog {
  public:
    explicit frmAddr(QWidget* parent);

    void reject() override; ///< Cancel, Escape and the window's own close

  private:
    void cmdOK_Action();

    QLineEdit* txtLoad_;
    QLineEdit* txtExec_;
};

} // namespace quoravel
