#pragma once

#include <QDialog>

class QLineEdit;

namespace quoravel {

/// Asks what to look for. Opens with Module1::gStr, all of it selected; OK puts the answer there
/// and sets Module1::gDoFind, which is false after Cancel.
class frmFind : public QDialog {
  public:
    explicit frmFind(QWidget* parent);

  private:
    void cmdOK_Action();

    QLineEdit* txtFind_;
};

} // namespace quoravel
