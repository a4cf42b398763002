#include "disc/module1.h"
#include "link/replies.h"
#include "link/ring.h"
#include "support/link_test.h"

#include <climits>
#include <tuple>

namespace quoravel {

namespace {

using LinkRingTest = LinkTest;

constexpr std::string_view kSuccess = "-----BBC-----PC-----";

/// All that is in the ring.
std::string Drained() {
    std::string bytes;
    while (Module1::RXLen > 0)
        bytes += static_cast<char>(get_char(1));
    return bytes;
}

TEST_F(LinkRingTest, AWaitingByteWinsOverTheShortestTimeout) {
    port.received = "\xFF";
    Serial1_DataAvailable();
    EXPECT_EQ(get_char(0), 255);
    EXPECT_EQ(Milliseconds(), 0);
}

TEST_F(LinkRingTest, AReadWaitsAsLongAsItIsTold) {
    EXPECT_EQ(get_char(200), -1);
    EXPECT_EQ(Milliseconds(), 200);
    EXPECT_EQ(port.polls, 200);
    EXPECT_FALSE(timer.Enabled());
    Cancel(); // does not shorten a wait
    Arrive(150, "A");
    EXPECT_EQ(get_char(200), 'A');
    EXPECT_EQ(Milliseconds(), 350);
    EXPECT_FALSE(timer.Enabled());
}

TEST_F(LinkRingTest, BytesThatCameWhileABoxStoodAreNoTimeout) {
    Later(10, [this] { desktop.now += std::chrono::milliseconds(300); });
    Arrive(100, "A");
    EXPECT_EQ(get_char(200), 'A');
    Arrive(200, "B"); // in the very turn in which the time is over
    EXPECT_EQ(get_char(200), 'B');
}

TEST_F(LinkRingTest, TheRingGoesRoundWithoutLoss) {
    for (int round = 0; round < 4; ++round) {
        const std::string sent(20001, static_cast<char>('A' + round));
        port.received = sent;
        Serial1_DataAvailable();
        EXPECT_EQ(Drained(), sent);
    }
}

TEST_F(LinkRingTest, AnOverrunOverwritesTheOldestBytesAndGoesOnCounting) {
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
    using Piece = std::tuple<int, std::string>;

    struct Row {
        const char* what;
        std::vector<Piece> pieces;
        int maximum;
        bool accepted;
        std::string reply;
        std::string left; ///< in the ring
        int ends;         ///< milliseconds
    };

    const std::string kilobyte(1024, 'k');
    for (const Row& row : {
             Row{"nothing", {}, 65535, false, "", "", 10000},
             Row{"at the last moment", {{9999, "abc"}}, 65535, true, "abc", "", 10199},
             Row{"two bytes", {{5, "ab"}}, 65535, false, "ab", "", 205},
             Row{"three bytes", {{5, "abc"}}, 65535, true, "abc", "", 205},
             Row{"a short pause", {{5, "ab"}, {204, "cd"}}, 65535, true, "abcd", "", 404},
             Row{"a long pause", {{5, "abc"}, {206, "de"}}, 65535, true, "abc", "", 205},
             Row{"a maximum", {{5, kilobyte + "rest"}}, 1024, true, kilobyte, "rest", 5},
             Row{"a maximum of one byte", {{5, "abcd"}}, 1, false, "ab", "cd", 5},
         }) {
        SCOPED_TRACE(row.what);
        static_cast<void>(Drained());
        desktop.now = {};
        for (const auto& [milliseconds, bytes] : row.pieces)
            Arrive(milliseconds, bytes);
        std::string reply = "old";
        EXPECT_EQ(Get_Response(reply, row.maximum), row.accepted);
        EXPECT_EQ(reply, row.reply);
        EXPECT_EQ(Milliseconds(), row.ends);
        EXPECT_EQ(Drained(), row.left);
        Swallow_Rubbish();
    }
}

TEST_F(LinkRingTest, DrainingEndsTwoSecondsAfterTheLastByte) {
    Arrive(1500, "abc");
    Arrive(3400, "d");
    Swallow_Rubbish();
    EXPECT_EQ(Milliseconds(), 5400);
}

TEST_F(LinkRingTest, ACommandGoesAtOnceOrAByteEveryTenMilliseconds) {
    Send_Cmd("*DISC\r");
    EXPECT_EQ(port.writes, std::vector<std::string>{"*DISC\r"});
    EXPECT_EQ(Milliseconds(), 0);

    port.writes.clear();
    port.SetProfile(kBootstrapProfile);
    Later(25, Cancel);
    Send_Cmd("10REM");
    EXPECT_EQ(port.writes, (std::vector<std::string>{"1", "0", "R"}));
    EXPECT_EQ(Milliseconds(), 30);
}

TEST_F(LinkRingTest, NothingIsSentAndNoPortOpenedWhileTheUserHasCancelled) {
    Cancel();
    Send_Cmd("abc");
    Send_Char("d");
    EXPECT_EQ(port.log, "");
    Module1::TXAbort = false;
    port.opens = false; // is found out by the timeouts that follow
    Send_Cmd("abc");
    Send_Cmd("def");
    EXPECT_EQ(port.log, "open 19200 19200 ");
    EXPECT_TRUE(Module1::gSerialPortOpen);
}

TEST_F(LinkRingTest, TheMicroHearsOfTheEndIfThePortIsOpen) {
    CloseLink();
    EXPECT_EQ(port.log, "");
    Send_Char("x");
    Cancel();
    CloseLink();
    EXPECT_EQ(port.Sent(), "xQ");
    EXPECT_EQ(port.log, "open 19200 19200 close ");
}

TEST(LinkRepliesTest, LinesAreKnownInEveryForm) {
    const std::string success(kSuccess);
    const std::string lower = "-----bbc-----pc-----";
    for (const auto& line : {success + "\r", success + "\n\r", lower + "\r", lower + "\n\r"})
        EXPECT_TRUE(IsSuccessLine(line)) << line;
    for (const auto& line : {success, success + "\r\n", success + "\n", " " + success + "\r",
                             success + "\r\r", success.substr(1) + "\r", std::string()})
        EXPECT_FALSE(IsSuccessLine(line)) << line;
    const std::string error = "-----BBCerror1-----PC-----";
    for (const auto& line :
         {error + "\r", error + "\n\r", error.substr(1) + "\r", error.substr(1) + "\n\r",
          "-----bbcERROR1-----pc-----\r" + std::string()})
        EXPECT_TRUE(IsErrorLine(line)) << line;
    for (const auto& line : {error, error.substr(2) + "\r", success + "\r"})
        EXPECT_FALSE(IsErrorLine(line)) << line;
}

TEST(LinkRepliesTest, ANumberIsWhatAReplyStartsWith) {
    for (const auto& [reply, number] : std::map<std::string, int>{
             {"204800\r", 204800},
             {"  102400 \n\r", 102400},
             {"65535x1", 65535},
             {"", 0},
             {"x5", 0},
             {"-5", 0},
             {"\r7", 0},
             {"99999999999999999999999", INT_MAX},
         })
        EXPECT_EQ(NumberOf(reply), number) << reply;
}

} // namespace

} // namespace quoravel
