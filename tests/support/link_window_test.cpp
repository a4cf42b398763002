#include "support/link_window_test.h"

#include "disc/module1.h"

#include <chrono>

namespace quoravel {

namespace {

CompanionDouble::Time Now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace

void LinkWindowTest::SetUp() {
    MainWindowTest::SetUp();
    desktop.program_folder = folder.path();
    Module1::gSerialPortOpen = false;
    Module1::TXAbort = false;
    micro.byte_time = CompanionDouble::Time{0};
    cable.Received = [this](std::string_view bytes) {
        micro.Take(bytes, Now());
        Exchange();
    };
    QObject::connect(&pump_, &QTimer::timeout, [this] { Exchange(); });
    pump_.start(1);
}

void LinkWindowTest::TearDown() {
    pump_.stop();
    MainWindowTest::TearDown();
}

void LinkWindowTest::When(std::function<bool()> ready, std::function<void()> act) {
    acts_.emplace_back(std::move(ready), std::move(act));
}

void LinkWindowTest::Exchange() {
    cable.Send(micro.Give(Now()));
    if (!acts_.empty() && acts_.front().first()) {
        // Not from here: a timer does not fire again while its own slot waits.
        QTimer::singleShot(0, QCoreApplication::instance(), std::move(acts_.front().second));
        acts_.erase(acts_.begin());
    }
}

} // namespace quoravel
