#pragma once

#include "link/windows.h"

#include <QWidget>

#include <memory>

class QLabel;
class QProgressBar;

namespace quoravel {

/// The window of a transfer. Its Cancel, like closing it, sets Module1::TXAbort; the transfer sees
/// that at its next step and ends by itself.
class frmRX : public QWidget, public TransferWindow {
  public:
    /// A new one, placed and shown, with TXAbort clear. It goes when the last holder lets go.
    [[nodiscard]] static std::shared_ptr<frmRX> Show();

    void SetTitle(std::string_view text) override;
    void SetTtl(std::string_view text) override;
    void SetRX(std::string_view text) override;
    void SetProgress(int percent) override;
    /// Closes the window of a transfer that has ended; TXAbort stays as it is.
    void Close() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    frmRX();
    void Event_Open();
    void Event_Close();

    QLabel* lblTtl_;
    QLabel* lblRX_;
    QProgressBar* pb_;
    bool closed_ = false;
};

} // namespace quoravel
