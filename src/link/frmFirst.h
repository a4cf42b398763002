#pragma once

#include "link/bootstrap.h"

#include <QDialog>

class QProgressBar;
class QPushButton;

namespace quoravel {

/// Tells what to type at a micro that has nothing, and then types the companion program into it.
class frmFirst : public QDialog, private BootstrapWindow {
  public:
    explicit frmFirst(QWidget* parent);

    /// Cancel, whichever way it comes.
    void reject() override;

  private:
    void cmdOK_Action();
    void cmdCancel_Action();

    void SetProgress(int percent) override;
    void DimCancel() override;

    QProgressBar* pb_;
    QPushButton* cmdOK_;
    QPushButton* cmdCancel_;
};

} // namespace quoravel
