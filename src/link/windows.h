#pragma once

#include <memory>
#include <string_view>

// What the link shows. The windows implement it, so that a transfer runs without any.

namespace quoravel {

/// The progress window of one transfer. Once it has been closed, by whomever, calls do nothing.
class TransferWindow {
  public:
    TransferWindow() = default;
    TransferWindow(const TransferWindow&) = delete;
    TransferWindow& operator=(const TransferWindow&) = delete;
    virtual ~TransferWindow() = default;

    virtual void SetTitle(std::string_view text) = 0;
    virtual void SetTtl(std::string_view text) = 0; ///< what runs: "Send In Progress"
    virtual void SetRX(std::string_view text) = 0;  ///< how far: "Sending Track 3 of Drive 0"
    virtual void SetProgress(int percent) = 0;
    virtual void Close() = 0;
};

/// What a transfer asks of the main window.
class TransferDesk {
  public:
    TransferDesk() = default;
    TransferDesk(const TransferDesk&) = delete;
    TransferDesk& operator=(const TransferDesk&) = delete;
    virtual ~TransferDesk() = default;

    /// A new progress window, shown, titled "Receive Disc Image". Clears Module1::TXAbort.
    [[nodiscard]] virtual std::shared_ptr<TransferWindow> NewTransferWindow() = 0;

    /// The mark of OptionsPlayWave.
    [[nodiscard]] virtual bool PlaysWave() const = 0;
};

/// Where the trace is shown. Lengths are in characters.
class TracePane {
  public:
    TracePane() = default;
    TracePane(const TracePane&) = delete;
    TracePane& operator=(const TracePane&) = delete;
    virtual ~TracePane() = default;

    [[nodiscard]] virtual int TextLength() const = 0;
    virtual void CutOldest(int characters) = 0;     ///< throws away that many from the start
    virtual void Append(std::string_view utf8) = 0; ///< line ends are CR LF
};

} // namespace quoravel
