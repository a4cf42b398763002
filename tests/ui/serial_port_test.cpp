#include "platform/qt/serial_port.h"
#include "support/pty_peer.h"
#include "support/ui_host.h"

#include <QTest>

#include <chrono>
#include <ctime>
#include <gtest/gtest.h>

namespace quoravel {
namespace {

using namespace std::chrono_literals;

/// A port on a cable, and what it has told.
struct SerialPort : testing::Test {
    /// Runs the event loop until `ready` or for two seconds.
    static bool Until(const std::function<bool()>& ready) { return QTest::qWaitFor(ready, 2000); }

    UiHost desktop;
    PtyPeer cable;
    std::string received;
    std::vector<QString> troubles;
    QtSerial serial{[this] { received += serial.ReadAll(); },
                    [this](const QString& reason) { troubles.push_back(reason); }};
};

TEST_F(SerialPort, ABurstOfAHundredKilobytesOfEveryValueComesThroughBothWays) {
    std::string burst(100 * 1024, '\0');
    for (std::size_t i = 0; i < burst.size(); ++i)
        burst[i] = static_cast<char>(i * 7 + i / 251);
    ASSERT_TRUE(serial.Open());
    serial.Write(burst);
    cable.Send(burst);
    EXPECT_TRUE(Until(
        [&] { return received.size() >= burst.size() && cable.received.size() >= burst.size(); }));
    EXPECT_EQ(received, burst);
    EXPECT_EQ(cable.received, burst);
    EXPECT_TRUE(troubles.empty());
}

TEST_F(SerialPort, WhatWasWrittenGoesOutBeforeItIsClosedForAnother) {
    ASSERT_TRUE(serial.Open());
    QtSerial second([] {}, [this](const QString& reason) { troubles.push_back(reason); });
    EXPECT_FALSE(second.Open());
    EXPECT_TRUE(Until([&] { return !troubles.empty(); })) << "somebody else has it";
    serial.Write("Q");
    serial.Close();
    serial.Write("lost");
    EXPECT_TRUE(Until([&] { return !cable.received.empty(); }));
    EXPECT_EQ(cable.received, "Q");
    EXPECT_TRUE(second.Open());
}

TEST_F(SerialPort, APulledAdapterIsClosedAndTakenAgainWhenItIsBack) {
    ASSERT_TRUE(serial.Open());
    cable.HangUp();
    EXPECT_TRUE(Until([&] { return !troubles.empty(); }));
    const std::clock_t before = std::clock();
    QTest::qWait(200);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10); // it does not tell so without end
    EXPECT_EQ(troubles.size(), 1U);

    PtyPeer again;
    QTest::qWait(1000); // it is tried once a second
    serial.Write("*");
    EXPECT_TRUE(Until([&] { return again.received == "*"; }));
}

TEST_F(SerialPort, TheTimerCountsAsEnabledUntilItHasActed) {
    bool enabled = false;
    QtTimer* running = nullptr;
    QtTimer timer([&] { enabled = running->Enabled(); });
    running = &timer;
    timer.SetPeriod(5);
    timer.SetEnabled(true);
    EXPECT_TRUE(Until([&] { return enabled; }));
    EXPECT_FALSE(timer.Enabled());
}

} // namespace
} // namespace quoravel
