#pragma once

#include <string>
#include <string_view>

namespace quoravel {

/// The settings of the port, but for what never changes: 8 data bits, no parity, one stop bit, no
/// flow control of any kind, the lines RTS and DTR raised while the port is open.
struct SerialProfile {
    int Baud; ///< bits a second
    bool operator==(const SerialProfile&) const = default;
};

/// A serial port as the program asks the desktop for it. From the event loop, and from Poll, it
/// tells the link (Serial1_DataAvailable) that received bytes wait.
class Serial {
  public:
    Serial() = default;
    Serial(const Serial&) = delete;
    Serial& operator=(const Serial&) = delete;
    virtual ~Serial() = default;

    /// Takes new settings; an open port changes at once, after what was written has gone out.
    virtual void SetProfile(const SerialProfile& profile) = 0;
    [[nodiscard]] virtual SerialProfile Profile() const = 0;

    /// Opens the port that was bound last; true on success.
    virtual bool Open() = 0;

    /// Closes the port once what was written has gone out. A closed port stays so.
    virtual void Close() = 0;

    /// Queues bytes for sending. A port that could not be opened, or that has vanished since, is
    /// tried again first, at most once a second; as long as it is not there, bytes are dropped.
    virtual void Write(std::string_view bytes) = 0;

    /// All bytes received and not yet read; they are gone from the port then.
    [[nodiscard]] virtual std::string ReadAll() = 0;

    /// Gives the port a chance to notice received bytes now.
    virtual void Poll() = 0;
};

/// A single-shot timer. When the period has passed it tells the link from the event loop
/// (Timer4_Action).
class Timer {
  public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    virtual ~Timer() = default;

    /// Milliseconds, from the moment when it is next enabled.
    virtual void SetPeriod(int milliseconds) = 0;

    /// Starts the period anew, or stops it.
    virtual void SetEnabled(bool enabled) = 0;
    [[nodiscard]] virtual bool Enabled() const = 0;
};

} // namespace quoravel
