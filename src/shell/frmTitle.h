#pragma once

#include <QDialog>

class QLineEdit;

namespace quoravel {

/// Asks for the title of the current drive. OK stores it and closes the window, whether the title
/// was accepted or not.
class frmTitle : public QDialog {
  public:
    explicit frmTitle(QWidget* parent);

  private:
    void cmdOK_Action();

    QLineEdit* txtTitle_;
};

} // namespace quoravel
