#include "disc/module1.h"
#include "link/ring.h"
#include "link/trace.h"
#include "support/link_test.h"

namespace quoravel {

namespace {

using LinkTraceTest = LinkTest;

constexpr std::string_view kStamp = "2026-11-23 12:34:56 ";

TEST_F(LinkTraceTest, NothingIsShownWhileTheTraceIsOff) {
    InstallTracePane(&pane);
    const int pumps = desktop.pumps;
    Send_Cmd("*DISC\r");
    TraceLine("Waiting");
    EXPECT_EQ(pane.text, "");
    EXPECT_EQ(desktop.pumps, pumps);
}

TEST_F(LinkTraceTest, ADumpShowsSixteenBytesToALine) {
    Trace();
    DumpHex(std::string_view("0123456789\r\x7F\xFF\xC1 \0z", 17), true);
    DumpHex("", true);
    DumpHex("ab", false);
    const std::string stamp(kStamp);
    EXPECT_EQ(
        pane.text,
        stamp + "TX: 0000 : 30 31 32 33 34 35 36 37 38 39 0D 7F FF C1 20 00  0123456789...A .\r\n" +
            stamp + "TX: 0010 : 7A " + std::string(45, ' ') + " z\r\n" + stamp +
            "RX: 0000 : 61 62 " + std::string(42, ' ') + " ab\r\n");
}

TEST_F(LinkTraceTest, ACommandSilencedByCancelStillShows) {
    Trace();
    Cancel();
    Send_Cmd("a");
    EXPECT_NE(pane.text.find("TX: 0000 : 61 "), std::string::npos);
    pane.text.clear();
    port.SetProfile(kBootstrapProfile); // but not while typing
    Send_Cmd("a");
    EXPECT_EQ(pane.text, "");
    Module1::TXAbort = false;
    Later(15, Cancel); // too late to cut anything off
    Send_Cmd("ab");
    EXPECT_NE(pane.text.find("TX: 0000 : 61 62 "), std::string::npos);
}

TEST_F(LinkTraceTest, AFullPaneLosesItsOldest4096Characters) {
    Trace();
    pane.text = std::string(32000, 'x');
    TraceLine("a");
    EXPECT_EQ(pane.text.size(), 32023U);
    TraceLine("b");
    EXPECT_EQ(pane.text.size(), 32023U - 4096 + 23);
}

TEST_F(LinkTraceTest, TheFileHoldsRecordsWithALengthByte) {
    const auto file = folder.path() / "trace.log";
    desktop.files = {std::nullopt, file, file};
    TraceToFile();
    EXPECT_FALSE(Module1::gTraceFileOpen);
    TraceToFile();
    TraceLine("before the window"); // is not kept
    Trace();
    TraceLine("My CRC = ", 27721);
    TraceLine(std::string(300, 'x'));
    TraceLine("end");
    EXPECT_EQ(TextOf(file), "\x24" + std::string(kStamp) + "My CRC = 27721\r\n" + "\xFF" +
                                std::string(kStamp) + std::string(235, 'x') + "\x19" +
                                std::string(kStamp) + "end\r\n");
    TraceToFile(); // anew
    TraceLine("a");
    CloseTraceFile();
    TraceLine("b");
    EXPECT_FALSE(Module1::gTraceFileOpen);
    EXPECT_EQ(TextOf(file), "\x17" + std::string(kStamp) + "a\r\n");
    EXPECT_EQ(desktop.proposals, std::vector<std::string>(3, "trace.log"));
    EXPECT_EQ(desktop.filters.front(), ".log");
}

TEST_F(LinkTraceTest, NoFaultOfTheFileIsTold) {
    desktop.files = {folder.path() / "nowhere" / "trace.log"};
    Trace();
    TraceToFile();
    TraceLine("a");
    EXPECT_FALSE(Module1::gTraceFileOpen);
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(LinkTraceTest, TheWindowMayBeClosedWhileALineComes) {
    Trace();
    Later(0, [] {
        Module1::gTraceWindow = false;
        InstallTracePane(nullptr);
    });
    DumpHex(std::string(40, 'x'), true);
    EXPECT_EQ(pane.text, "");
}

} // namespace

} // namespace quoravel
