#include "link/ring.h"

#include "disc/module1.h"
#include "link/serial.h"
#include "link/trace.h"
#include "platform/host.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace quoravel {

namespace {

constexpr int kTimedOut = -1;
constexpr int kReplyPatience = 10000;
constexpr int kReplyPause = 200; // the end of a reply
constexpr std::size_t kLeastReply = 3;
constexpr int kDrainPause = 2000;
constexpr int kTypingPause = 10; // what the micro's prompt needs to take a typed character

std::function<void()> wait_check;

/// Runs the timeout timer for one wait, however that ends.
class Timeout {
  public:
    explicit Timeout(int milliseconds) {
        Timer4().SetEnabled(false);
        Timer4().SetPeriod(milliseconds);
        Timer4().SetEnabled(true);
        Module1::RXTimeout = false;
    }

    Timeout(const Timeout&) = delete;
    Timeout& operator=(const Timeout&) = delete;

    ~Timeout() { Timer4().SetEnabled(false); }
};

int TakeFromRing() {
    const int byte = Module1::RXBuff[static_cast<std::size_t>(Module1::RXHead)];
    Module1::RXHead = (Module1::RXHead + 1) % Module1::kRingSize;
    --Module1::RXLen;
    Module1::RXTimeout = false;
    return byte;
}

/// False if a Cancel cut the bytes off.
bool SendSlowly(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (Module1::TXAbort)
            return false;
        Send_Char(bytes.substr(i, 1));
        host().DoEvents(kTypingPause);
        Yield();
    }
    return true;
}

} // namespace

// There is no test for a full ring: the oldest bytes are overwritten. Nor is there a Yield, as the
// bytes are stored within microseconds and a handler that ran here could begin to wait for the very
// bytes that this call holds.
void Serial1_DataAvailable() {
    const std::string bytes = Serial1().ReadAll();
    for (const char byte : bytes) {
        Module1::RXBuff[static_cast<std::size_t>(Module1::RXTail)] =
            static_cast<std::uint8_t>(byte);
        Module1::RXTail = (Module1::RXTail + 1) % Module1::kRingSize;
    }
    // Bytes that nobody reads cannot make the number overflow.
    const auto room = static_cast<std::size_t>(INT_MAX - Module1::RXLen);
    Module1::RXLen += static_cast<int>(std::min(bytes.size(), room));
}

void Timer4_Action() {
    if (Timer4().Enabled())
        Module1::RXTimeout = true;
}

int get_char(int timeout) {
    const Timeout running(timeout);
    for (;;) {
        if (Module1::RXLen > 0)
            return TakeFromRing();
        Serial1().Poll();
        host().DoEvents(1);
        Yield();
        if (wait_check)
            wait_check();
        if (Module1::RXTimeout && Module1::RXLen == 0)
            return kTimedOut;
    }
}

void Send_Char(std::string_view bytes) {
    if (Module1::TXAbort)
        return;
    if (!Module1::gSerialPortOpen) {
        // Meant: a port that does not open is found out by the timeouts that follow.
        static_cast<void>(Serial1().Open());
        Module1::gSerialPortOpen = true;
    }
    Serial1().Write(bytes);
}

void Send_Cmd(std::string_view bytes) {
    if (Serial1().Profile() == kTransferProfile)
        Send_Char(bytes);
    else if (!SendSlowly(bytes))
        return;
    if (Module1::gTraceWindow)
        DumpHex(bytes, true);
}

bool Get_Response(std::string& reply, int maximum) {
    reply.clear();
    int byte = get_char(kReplyPatience);
    if (byte == kTimedOut) {
        TraceLine("Timeout waiting for response");
        return false;
    }
    reply += static_cast<char>(byte);
    do {
        byte = get_char(kReplyPause);
        if (byte != kTimedOut)
            reply += static_cast<char>(byte);
        Yield();
    } while (byte != kTimedOut && reply.size() < static_cast<std::size_t>(maximum));
    if (reply.size() < kLeastReply)
        return false;
    if (Module1::gTraceWindow)
        DumpHex(reply, false);
    return true;
}

void Swallow_Rubbish() {
    while (get_char(kDrainPause) != kTimedOut)
        Yield();
}

WaitWatch::WaitWatch(std::function<void()> check)
    : before_(std::exchange(wait_check, std::move(check))) {
}

WaitWatch::~WaitWatch() {
    wait_check = std::move(before_);
}

void CloseLink() {
    if (!Module1::gSerialPortOpen)
        return;
    Serial1().Write("Q"); // also after a Cancel
    Serial1().Close();
    Module1::gSerialPortOpen = false;
}

} // namespace quoravel
