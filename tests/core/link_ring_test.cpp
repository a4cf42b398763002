#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "link/trace.h"
#include "support/link_test.h"

#include <climits>
#include <tuple>

namespace quoravel {

namespace {

using LinkRingTest = LinkTest;
using LinkTraceTest = LinkTest;
using Strings = std::vector<std::string>;
using namespace std::string_literals;

/// All that is in the ring.
std::string Drained() {
    std::string bytes;
    while (Module1::RXLen > 0)
        bytes += static_cast<char>(get_char(1));
    return bytes;
}

TEST_F(LinkRingTest, TheRingGoesRoundWithoutLossAndAnOverrunOverwritesTheOldestBytes) {
    for (const char sent : "ABCD"s) {
        port.received = std::string(20001, sent);
        Serial1_DataAvailable();
        EXPECT_EQ(Drained(), std::string(20001, sent));
    }
    port.received = std::string(32768, 'a') + "bcd";
    Serial1_DataAvailable();
    EXPECT_EQ(Module1::RXLen, 32771);
    EXPECT_EQ(Drained().substr(0, 4), "bcda");
    Module1::RXLen = INT_MAX - 1;
    port.received = "xyz";
    Serial1_DataAvailable();
    EXPECT_EQ(Module1::RXLen, INT_MAX);
}

TEST_F(LinkRingTest, AReplyEndsWithAPauseOrAtItsMaximum) {
    using Pieces = std::vector<std::pair<int, std::string>>;
    // What comes when, the maximum, whether it is accepted, the reply, what stays in the ring, when
    // it ends.
    using Row = std::tuple<const char*, Pieces, int, bool, std::string, std::string, int>;
    const std::string kilobyte(1024, 'k');
    for (const auto& [what, pieces, maximum, accepted, expected, left, ends] :
         {Row{"nothing", {}, 65535, false, "", "", 10000},
          Row{"at the last moment", {{9999, "abc"}}, 65535, true, "abc", "", 10199},
          Row{"a short pause", {{5, "ab"}, {204, "cd"}}, 65535, true, "abcd", "", 404},
          Row{"a long pause", {{5, "abc"}, {206, "de"}}, 65535, true, "abc", "", 205},
          Row{"a maximum", {{5, kilobyte + "rest"}}, 1024, true, kilobyte, "rest", 5},
          Row{"a maximum of one byte", {{5, "abcd"}}, 1, false, "ab", "cd", 5}}) {
        SCOPED_TRACE(what);
        static_cast<void>(Drained());
        desktop.now = {};
        for (const auto& [milliseconds, bytes] : pieces)
            Arrive(milliseconds, bytes);
        std::string reply = "old";
        EXPECT_EQ(Get_Response(reply, maximum), accepted);
        EXPECT_EQ(reply, expected);
        EXPECT_EQ(Milliseconds(), ends);
        EXPECT_EQ(Drained(), left);
        Swallow_Rubbish();
    }
    EXPECT_GT(port.polls, 10000) << "the port is looked at all the while";
}

TEST_F(LinkRingTest, NothingIsSentAndNoPortOpenedWhileTheUserHasCancelled) {
    Cancel();
    Send_Cmd("abc");
    CloseLink();
    EXPECT_EQ(port.log, "");
    Module1::TXAbort = false;
    port.opens = false; // is found out by the timeouts that follow
    Send_Cmd("abc");
    Send_Cmd("def");
    EXPECT_EQ(port.log, "open 19200 19200 ");
    Cancel();
    CloseLink();
    EXPECT_EQ(port.writes, (Strings{"abc", "def", "Q"})) << "the micro hears of the end";
    EXPECT_EQ(port.log, "open 19200 19200 19200 close ");
    Module1::TXAbort = false;
    port.writes.clear();
    port.SetProfile(kBootstrapProfile);
    Later(25, Cancel);
    Send_Cmd("10REM"); // a byte every ten milliseconds
    EXPECT_EQ(port.writes, (Strings{"1", "0", "R"}));
    EXPECT_EQ(Milliseconds(), 30);
}

TEST(LinkRepliesTest, LinesAreKnownInEveryForm) {
    const std::string success = "-----BBC-----PC-----";
    const std::string error = "-----BBCerror1-----PC-----";
    for (const auto& line : {success + "\r", success + "\n\r", "-----bbc-----pc-----\r"s})
        EXPECT_TRUE(IsSuccessLine(line)) << line;
    for (const auto& line : {success, success + "\r\n", " " + success + "\r", success + "\r\r",
                             success.substr(1) + "\r", ""s, error + "\r"})
        EXPECT_FALSE(IsSuccessLine(line)) << line;
    for (const auto& line :
         {error + "\n\r", error.substr(1) + "\r", "-----bbcERROR1-----pc-----\r"s})
        EXPECT_TRUE(IsErrorLine(line)) << line;
    for (const auto& line : {error, error.substr(2) + "\r", success + "\r"})
        EXPECT_FALSE(IsErrorLine(line)) << line;
    using Row = std::pair<const char*, int>;
    for (const auto& [reply, number] :
         {Row{"  102400 \n\r", 102400}, Row{"65535x1", 65535}, Row{"", 0}, Row{"-5", 0},
          Row{"\r7", 0}, Row{"99999999999999999999999", INT_MAX}})
        EXPECT_EQ(NumberOf(reply), number) << reply;
}

// --- The trace.

const std::string kStamp = "2026-11-23 12:34:56 ";

TEST_F(LinkTraceTest, ADumpShowsSixteenBytesToALineWhileTheTraceIsOn) {
    InstallTracePane(&pane);
    Send_Cmd("*DISC\r");
    TraceLine("Waiting");
    EXPECT_EQ(pane.text, "");
    Trace();
    DumpHex("0123456789\r\x7F\xFF\xC1 \0z"s, true);
    DumpHex("", true);
    DumpHex("ab", false);
    EXPECT_EQ(
        pane.text,
        kStamp +
            "TX: 0000 : 30 31 32 33 34 35 36 37 38 39 0D 7F FF C1 20 00  0123456789...A .\r\n" +
            kStamp + "TX: 0010 : 7A " + std::string(45, ' ') + " z\r\n" + kStamp +
            "RX: 0000 : 61 62 " + std::string(42, ' ') + " ab\r\n");
    pane.text.clear();
    Later(0, [] { // the window may be closed while a line comes
        Module1::gTraceWindow = false;
        InstallTracePane(nullptr);
    });
    DumpHex(std::string(40, 'x'), true);
    EXPECT_EQ(pane.text, "");
}

TEST_F(LinkTraceTest, ACommandSilencedByCancelStillShowsButNotWhileTyping) {
    Trace();
    Cancel();
    Send_Cmd("a");
    port.SetProfile(kBootstrapProfile);
    Send_Cmd("b");
    Module1::TXAbort = false;
    Later(15, Cancel); // too late to cut anything off
    Send_Cmd("cd");
    EXPECT_NE(pane.text.find("TX: 0000 : 61 "), std::string::npos);
    EXPECT_EQ(pane.text.find("TX: 0000 : 62 "), std::string::npos);
    EXPECT_NE(pane.text.find("TX: 0000 : 63 64 "), std::string::npos);
}

TEST_F(LinkTraceTest, AFullPaneLosesItsOldest4096Characters) {
    Trace();
    pane.text = std::string(32000, 'x');
    TraceLine("a");
    EXPECT_EQ(pane.text.size(), 32023U);
    TraceLine("b");
    EXPECT_EQ(pane.text.size(), 32023U - 4096 + 23);
}

TEST_F(LinkTraceTest, TheFileHoldsRecordsWithALengthByteAndNoFaultOfItIsTold) {
    const auto file = folder.path() / "trace.log";
    desktop.files = {std::nullopt, file, file, folder.path() / "nowhere" / "trace.log"};
    TraceToFile();
    EXPECT_FALSE(Module1::gTraceFileOpen);
    TraceToFile();
    TraceLine("before the window"); // is not kept
    Trace();
    TraceLine("My CRC = ", 27721);
    TraceLine(std::string(300, 'x'));
    EXPECT_EQ(TextOf(file),
              "\x24" + kStamp + "My CRC = 27721\r\n" + "\xFF" + kStamp + std::string(235, 'x'));
    TraceToFile(); // anew
    TraceLine("a");
    CloseTraceFile();
    EXPECT_FALSE(Module1::gTraceFileOpen);
    TraceLine("b");
    EXPECT_EQ(TextOf(file), "\x17" + kStamp + "a\r\n");
    TraceToFile();
    TraceLine("c");
    EXPECT_FALSE(Module1::gTraceFileOpen);
    EXPECT_TRUE(desktop.boxes.empty());
    EXPECT_EQ(desktop.proposals, Strings(4, "trace.log"));
    EXPECT_EQ(desktop.filters.front(), ".log");
}

} // namespace

} // namespace quoravel
