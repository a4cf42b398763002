#pragma once

#include "platform/serial.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quoravel {

/// A serial port of the machine.
struct PortInfo {
    QString Name;        ///< for a person: "ttyUSB0 - USB-Serial Controller"
    QString system_path; ///< "/dev/ttyUSB0"
};

/// The serial ports of the machine as it is now: adapters first, then built-in ones, each in the
/// order of their numbers. Links in /dev that are named like a port count as one.
[[nodiscard]] std::vector<PortInfo> SystemSerialPorts();

/// Makes SystemSerialPorts give what `lister` gives; an empty function undoes that.
void ListPortsWith(std::function<std::vector<PortInfo>()> lister);

/// A port of the machine.
class QtSerial : public QObject, public Serial {
  public:
    /// `data_available` is called when received bytes wait, `trouble` with the reason when the port
    /// cannot be opened or has vanished; both from the event loop, guarded.
    QtSerial(std::function<void()> data_available, std::function<void(const QString&)> trouble);
    ~QtSerial() override;

    /// Takes the port of that path when it is next opened. Without a choice it is the machine's
    /// first port at the first opening.
    void Bind(const QString& system_path) { path_ = system_path; }

    void SetProfile(const SerialProfile& profile) override;

    [[nodiscard]] SerialProfile Profile() const override { return profile_; }

    bool Open() override;
    void Close() override;
    void Write(std::string_view bytes) override;
    [[nodiscard]] std::string ReadAll() override;
    void Poll() override;

  private:
    bool TryToOpen();
    void HandOver();
    void OnError(QSerialPort::SerialPortError error);
    void Drain();
    void Report(const QString& reason);
    void TellTroubles();

    std::function<void()> data_available_;
    std::function<void(const QString&)> trouble_;
    QSerialPort port_;
    SerialProfile profile_{19200};
    std::optional<QString> path_; ///< nothing until a choice or the first opening
    bool wanted_ = false;         ///< opened by the program, whether the port is there or not
    bool handing_over_ = false;   ///< readyRead does not recurse, and neither do we
    QElapsedTimer last_try_;      ///< of opening
    QStringList troubles_;        ///< not told yet
    QTimer reporting_;
};

/// A timer of Qt's.
class QtTimer : public QObject, public Timer {
  public:
    /// `action` is called when the period has passed, guarded.
    explicit QtTimer(std::function<void()> action);

    void SetPeriod(int milliseconds) override { timer_.setInterval(milliseconds); }

    void SetEnabled(bool enabled) override { enabled ? timer_.start() : timer_.stop(); }

    [[nodiscard]] bool Enabled() const override { return timer_.isActive() || firing_; }

  private:
    QTimer timer_;
    bool firing_ = false;
};

} // namespace quoravel
