#pragma once

#include "view/drive_listing.h"

#include <QWidget>

class QLabel;
class QProgressBar;

namespace quoravel {

/// How far the listing of a folder is. Its Cancel, like closing it, sets Module1::gCancel; the
/// listing ends by itself and takes the window away.
class frmProgress : public QWidget, public ListingProgress {
  public:
    /// `parent` is the window that it stays above.
    explicit frmProgress(QWidget* parent);

    void SetImages(std::string_view text) override;
    void SetProgress(int percent) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    static void Cancel_Action();

    QProgressBar* pb_;
    QLabel* txtImages_;
};

} // namespace quoravel
