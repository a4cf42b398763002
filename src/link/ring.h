#pragma once

#include <functional>
#include <string>
#include <string_view>

// The bottom of the conversation with the micro: the ring that catches received bytes, the blocking
// read, the paced write. Strings are bytes. Whatever waits pumps events, so it may throw
// AppQuitting and anything shared may have changed after it.

namespace quoravel {

/// The port has received bytes: moves all of them into the ring. Pumps no events.
void Serial1_DataAvailable();

/// The period of the timeout timer has passed. Counts only while Timer4 is enabled.
void Timer4_Action();

/// The next received byte, 0 to 255, or -1 if none comes within `timeout` milliseconds. A byte that
/// is already there wins over any timeout. A Cancel does not shorten the wait.
[[nodiscard]] int get_char(int timeout);

/// Queues bytes for sending; opens the port first if it is not believed open. Sends nothing and
/// leaves the port alone while TXAbort is set. Pumps no events.
void Send_Char(std::string_view bytes);

/// The normal way to send: at once at 19200 baud, else a byte every 10 ms until TXAbort is set.
/// What was sent goes to the trace.
void Send_Cmd(std::string_view bytes);

/// Collects a reply: what arrives within 10 seconds and then up to a pause of 200 ms, or up to
/// `maximum` bytes (2 and up). True if it has at least 3 bytes; a shorter one is left in `reply`.
[[nodiscard]] bool Get_Response(std::string& reply, int maximum);

/// Reads until the line has been silent for 2 seconds.
void Swallow_Rubbish();

/// While one lives, `check` is called at every turn of every wait, and may throw to end it.
class WaitWatch {
  public:
    explicit WaitWatch(std::function<void()> check);
    ~WaitWatch();
    WaitWatch(const WaitWatch&) = delete;
    WaitWatch& operator=(const WaitWatch&) = delete;

  private:
    std::function<void()> before_;
};

/// Tells the micro that the program ends, if the port is believed open, and closes the port.
void CloseLink();

} // namespace quoravel
