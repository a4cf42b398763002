#include "support/pty_peer.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace quoravel {

PtyPeer::PtyPeer() : fd_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    EXPECT_TRUE(fd_ >= 0 && ::grantpt(fd_) == 0 && ::unlockpt(fd_) == 0);
    path_ = QString::fromLocal8Bit(::ptsname(fd_));
    termios raw{};
    ::tcgetattr(fd_, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(fd_, TCSANOW, &raw);
    line_ = ::open(::ptsname(fd_), O_RDWR | O_NOCTTY | O_CLOEXEC); // else the line is down at first
    readable_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    writable_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Write);
    writable_->setEnabled(false);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, [this] { OnReadable(); });
    QObject::connect(writable_.get(), &QSocketNotifier::activated, [this] { OnWritable(); });
    ListPortsWith([path = path_] {
        return std::vector<PortInfo>{{QStringLiteral("Cable"), path}};
    });
}

PtyPeer::~PtyPeer() {
    ListPortsWith(nullptr);
    HangUp();
}

void PtyPeer::HangUp() {
    readable_.reset();
    writable_.reset();
    for (int* fd : {&line_, &fd_})
        if (*fd >= 0)
            ::close(std::exchange(*fd, -1));
}

void PtyPeer::OnReadable() {
    std::array<char, 4096> buffer{};
    const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
    if (got <= 0)
        return;
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(got));
    received += bytes;
    if (Received)
        Received(bytes);
}

void PtyPeer::Send(std::string_view bytes) {
    waiting_ += bytes;
    OnWritable();
}

void PtyPeer::OnWritable() {
    const ssize_t put = ::write(fd_, waiting_.data(), waiting_.size());
    if (put > 0)
        waiting_.erase(0, static_cast<std::size_t>(put));
    writable_->setEnabled(!waiting_.empty());
}

} // namespace quoravel
