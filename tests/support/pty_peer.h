#pragma once

#include "platform/qt/serial_port.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace quoravel {

/// The other end of the cable: the program finds one serial port, "Cable", which is a pseudo
/// terminal, and what it sends arrives here.
class PtyPeer {
  public:
    PtyPeer();
    ~PtyPeer();
    PtyPeer(const PtyPeer&) = delete;
    PtyPeer& operator=(const PtyPeer&) = delete;

    /// Called from the event loop with what the program has sent.
    std::function<void(std::string_view bytes)> Received;

    /// All that the program has sent so far.
    std::string received;

    /// Sends to the program. What the line cannot take yet goes out as soon as it can.
    void Send(std::string_view bytes);

    /// Pulls the plug.
    void HangUp();

    [[nodiscard]] const QString& path() const { return path_; }

  private:
    void OnReadable();
    void OnWritable();

    int fd_ = -1;
    int line_ = -1; ///< keeps the line up while the program has not opened it
    QString path_;
    std::string waiting_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
};

} // namespace quoravel
