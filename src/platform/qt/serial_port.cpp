#include "platform/qt/serial_port.h"

#include "platform/qt/guard.h"

#include <QCollator>
#include <QDir>
#include <QScopedValueRollback>
#include <QSerialPortInfo>
#include <QThread>

#include <algorithm>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <utility>

namespace quoravel {

namespace {

constexpr int kReopenMs = 1000;
constexpr int kLongestDrainMs = 300; // more than the longest command takes at 19200 baud
constexpr int kBitsAByte = 10;       // a start and a stop bit around eight

std::function<std::vector<PortInfo>()> port_lister;

bool IsBuiltIn(const PortInfo& port) {
    return port.system_path.startsWith(QStringLiteral("/dev/ttyS"));
}

PortInfo InfoOf(const QSerialPortInfo& port) {
    QString name = port.portName();
    if (!port.description().isEmpty())
        name += QStringLiteral(" - ") + port.description();
    return {name, port.systemLocation()};
}

/// Links by which a user has given a port a name of its own; Qt does not list them.
std::vector<PortInfo> LinkedPorts() {
    const QDir devices(QStringLiteral("/dev"),
                       QStringLiteral("ttyS*;ttyUSB*;ttyACM*;ttyAMA*;rfcomm*"), QDir::Name,
                       QDir::System | QDir::Files);
    std::vector<PortInfo> ports;
    for (const QFileInfo& device : devices.entryInfoList())
        if (device.isSymLink())
            ports.push_back({device.fileName(), device.filePath()});
    return ports;
}

} // namespace

std::vector<PortInfo> SystemSerialPorts() {
    if (port_lister)
        return port_lister();
    std::vector<PortInfo> ports = LinkedPorts();
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        ports.push_back(InfoOf(port));
    QCollator by_number;
    by_number.setNumericMode(true);
    std::ranges::stable_sort(ports, [&](const PortInfo& a, const PortInfo& b) {
        if (IsBuiltIn(a) != IsBuiltIn(b))
            return IsBuiltIn(b);
        return by_number.compare(a.system_path, b.system_path) < 0;
    });
    return ports;
}

void ListPortsWith(std::function<std::vector<PortInfo>()> lister) {
    port_lister = std::move(lister);
}

QtSerial::QtSerial(std::function<void()> data_available,
                   std::function<void(const QString&)> trouble)
    : data_available_(std::move(data_available)), trouble_(std::move(trouble)) {
    setObjectName(QStringLiteral("Serial1"));
    reporting_.setSingleShot(true);
    reporting_.setInterval(0);
    Connect(&reporting_, &QTimer::timeout, this, [this] { TellTroubles(); });
    Connect(&port_, &QSerialPort::readyRead, this, [this] { HandOver(); });
    Connect(&port_, &QSerialPort::errorOccurred, this,
            [this](QSerialPort::SerialPortError error) { OnError(error); });
}

void QtSerial::TellTroubles() {
    while (!troubles_.isEmpty())
        trouble_(troubles_.takeFirst());
}

QtSerial::~QtSerial() {
    port_.disconnect(this);
}

void QtSerial::SetProfile(const SerialProfile& profile) {
    profile_ = profile;
    if (!port_.isOpen())
        return;
    Drain(); // bytes on their way would go out at the new rate
    port_.setBaudRate(profile.Baud);
}

bool QtSerial::Open() {
    wanted_ = true;
    return port_.isOpen() || TryToOpen();
}

bool QtSerial::TryToOpen() {
    last_try_.start();
    if (!path_) {
        const std::vector<PortInfo> ports = SystemSerialPorts();
        if (ports.empty()) {
            Report(QStringLiteral("There is no serial port"));
            return false;
        }
        path_ = ports.front().system_path; // and never another one, should it vanish
    }
    port_.setPortName(*path_);
    port_.setBaudRate(profile_.Baud);
    port_.setDataBits(QSerialPort::Data8);
    port_.setParity(QSerialPort::NoParity);
    port_.setStopBits(QSerialPort::OneStop);
    port_.setFlowControl(QSerialPort::NoFlowControl);
    if (!port_.open(QIODevice::ReadWrite))
        return false; // OnError has told why
    port_.setRequestToSend(
        true); // these fail where there are no such lines, and it does not matter
    port_.setDataTerminalReady(true);
    return true;
}

void QtSerial::Close() {
    wanted_ = false;
    if (!port_.isOpen())
        return;
    Drain();
    port_.close();
}

void QtSerial::Write(std::string_view bytes) {
    if (!port_.isOpen() && wanted_ && last_try_.hasExpired(kReopenMs))
        TryToOpen();
    if (!port_.isOpen())
        return;
    port_.write(bytes.data(), static_cast<qint64>(bytes.size()));
    port_.flush();
}

std::string QtSerial::ReadAll() {
    return port_.isOpen() ? port_.readAll().toStdString() : std::string();
}

/// Looks first whether anything waits: without it the port would count the look as an error.
void QtSerial::Poll() {
    if (!port_.isOpen())
        return;
    pollfd line{static_cast<int>(port_.handle()), POLLIN, 0};
    if (poll(&line, 1, 0) > 0)
        port_.waitForReadyRead(0);
    HandOver();
}

void QtSerial::HandOver() {
    if (handing_over_)
        return;
    const QScopedValueRollback busy(handing_over_, true);
    while (port_.isOpen() && port_.bytesAvailable() > 0)
        data_available_();
}

void QtSerial::OnError(QSerialPort::SerialPortError error) {
    if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError)
        return;
    const QString reason = port_.portName() + QStringLiteral(": ") + port_.errorString();
    // A port whose adapter has been pulled out tells so without end until it is closed.
    if (port_.isOpen() && (error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
                           error == QSerialPort::WriteError))
        port_.close();
    // The lines that are not there on a port without them come as one of these two.
    if (error != QSerialPort::UnsupportedOperationError && error != QSerialPort::UnknownError)
        Report(reason);
}

/// Waits until what was written has left the machine.
void QtSerial::Drain() {
    QElapsedTimer since;
    since.start();
    while (port_.isOpen() && port_.bytesToWrite() > 0 && !since.hasExpired(kLongestDrainMs))
        port_.waitForBytesWritten(kLongestDrainMs);
    const auto waiting = [this] {
        int bytes = 0;
        return port_.isOpen() && ioctl(static_cast<int>(port_.handle()), TIOCOUTQ, &bytes) == 0 &&
               bytes > 0;
    };
    while (waiting() && !since.hasExpired(kLongestDrainMs))
        QThread::msleep(1);
    // The last byte may still be in the shift register, and one more before it.
    QThread::usleep(static_cast<unsigned long>(2 * kBitsAByte * 1'000'000 / profile_.Baud));
}

/// Told from the event loop, as the port may be in the middle of anything.
void QtSerial::Report(const QString& reason) {
    troubles_.push_back(reason);
    reporting_.start();
}

QtTimer::QtTimer(std::function<void()> action) {
    setObjectName(QStringLiteral("Timer4"));
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setSingleShot(true);
    Connect(&timer_, &QTimer::timeout, this, [this, action = std::move(action)] {
        const QScopedValueRollback enabled(firing_, true); // the timer itself has stopped by now
        action();
    });
}

} // namespace quoravel
