// Ties the emulated micro, which cannot open a pseudo-terminal itself, to one.
//
// What a program sends into the terminal comes out here as frames: 'P' with the terminal's path,
// once; 'R' with the bit rate that the program has set, whenever it changes; 'D' with bytes.
// A frame is its letter, two bytes of length (low first), and that many bytes. What comes in here
// goes to the program as it is. Ends when its input does.

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <span>
#include <string>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int kLookAtRateMs = 5;

bool writeAll(int to, std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(to, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            bytes = bytes.subspan(static_cast<size_t>(written));
    }
    return true;
}

bool writeFrame(char kind, std::string_view bytes) {
    std::string frame{kind, static_cast<char>(bytes.size() & 0xff),
                      static_cast<char>(bytes.size() >> 8)};
    frame += bytes;
    return writeAll(STDOUT_FILENO, frame);
}

int rateOf(speed_t code) {
    switch (code) {
    case B1200:
        return 1200;
    case B2400:
        return 2400;
    case B4800:
        return 4800;
    case B9600:
        return 9600;
    case B19200:
        return 19200;
    default:
        return 0;
    }
}

/// The bit rate that the program at the other end has set; 0 if none that a micro knows.
int currentRate(int terminal) {
    termios settings{};
    return ::tcgetattr(terminal, &settings) == 0 ? rateOf(::cfgetospeed(&settings)) : 0;
}

/// Opens a terminal that changes no bytes; `path` becomes its name. Negative if that fails.
int openTerminal(std::string& path) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0)
        return -1;
    path = ::ptsname(terminal);
    // Held open here, so that the terminal lives on while no program has it open.
    const int held = ::open(path.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    if (held < 0 || ::tcgetattr(held, &settings) != 0)
        return -1;
    ::cfmakeraw(&settings);
    return ::tcsetattr(held, TCSANOW, &settings) == 0 ? terminal : -1;
}

/// Passes on what waits at `from`; false at its end.
template<typename Sink>
bool pass(int from, Sink sink) {
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(from, bytes.data(), bytes.size());
    return count > 0 && sink(std::string_view(bytes.data(), static_cast<size_t>(count)));
}

int relay(int terminal) {
    int rate = -1;
    for (;;) {
        std::array<pollfd, 2> ends{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{terminal, POLLIN, 0}};
        ::poll(ends.data(), ends.size(), kLookAtRateMs);
        if (const int now = currentRate(terminal); now != rate) {
            rate = now;
            if (!writeFrame('R', std::to_string(rate)))
                return 0;
        }
        const auto toMicro = [](std::string_view bytes) { return writeFrame('D', bytes); };
        if ((ends[1].revents & POLLIN) != 0 && !pass(terminal, toMicro))
            return 1;
        const auto toHost = [terminal](std::string_view bytes) {
            return writeAll(terminal, bytes);
        };
        if (ends[0].revents != 0 && !pass(STDIN_FILENO, toHost))
            return 0;
    }
}

} // namespace

int main() {
    std::string path;
    const int terminal = openTerminal(path);
    if (terminal < 0) {
        std::perror("pty_line");
        return 1;
    }
    return writeFrame('P', path) ? relay(terminal) : 0;
}
