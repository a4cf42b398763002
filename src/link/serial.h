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

inline constexpr SerialProfile kTransferProfile{19200};
inline constexpr SerialProfile kBootstrapProfile{1200}; ///< while a program is typed into the micro

/// The serial port as the link sees it. Whoever implements it calls Serial1_DataAvailable (ring.h)
/// from the event loop, and from Poll, whenever received bytes wait. Nothing here throws or waits
/// for the line.
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

    /// Queues bytes for sending. On a port that is not open they are dropped.
    virtual void Write(std::string_view bytes) = 0;

    /// All bytes received and not yet read; they are gone from the port then.
    [[nodiscard]] virtual std::string ReadAll() = 0;

    /// Gives the port a chance to notice received bytes now.
    virtual void Poll() = 0;
};

/// A single-shot timer. Whoever implements it calls Timer4_Action (ring.h) from the event loop when
/// the period has passed.
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

/// Makes `port` and `timer` those that the link works on, Serial1 and Timer4; nullptr removes them.
/// The caller keeps ownership.
void InstallLink(Serial* port, Timer* timer);

/// The port and the timeout timer of the link. There must be ones: see InstallLink.
[[nodiscard]] Serial& Serial1();
[[nodiscard]] Timer& Timer4();

} // namespace quoravel
