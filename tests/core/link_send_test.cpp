#include "disc/module1.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {

namespace {

using Reply = CompanionDouble::Reply;
using Strings = std::vector<std::string>;

class LinkSendTest : public LinkTest {
  protected:
    /// Sends a file of so many bytes and gives it.
    std::vector<std::uint8_t> Send(std::size_t bytes, int drive = 0, bool single_sided = true) {
        std::vector<std::uint8_t> image(bytes);
        for (std::size_t i = 0; i < bytes; ++i)
            image[i] = static_cast<std::uint8_t>(i % 2560 < 20 ? i * 7 : 1 + i / 2560);
        desktop.files = {folder.File("image.ssd", image)};
        micro.heard.clear();
        TX_DISC(drive, single_sided, desk);
        return image;
    }

    /// What was heard from the first `message` on.
    [[nodiscard]] Strings HeardFrom(const std::string& message) const {
        return {std::ranges::find(micro.heard, message), micro.heard.end()};
    }
};

TEST_F(LinkSendTest, FilesOfEveryLengthGoOut) {
    using Row = std::tuple<std::size_t, int, std::size_t, std::size_t>;
    for (const auto& [bytes, drive, tracks, whole] :
         {Row{0, 0, 0, 0}, Row{300, 0, 1, 256}, Row{2561, 1, 2, 2560}, Row{204800, 2, 80, 204800},
          Row{512000, 3, 200, 512000}}) {
        SCOPED_TRACE(bytes);
        auto expected = Send(bytes, drive);
        expected.resize(whole); // the whole sectors of the file are sent
        expected.resize(tracks * 2560);
        EXPECT_EQ(micro.discs.at(static_cast<std::size_t>(drive)), expected);
        EXPECT_EQ(micro.heard.size(), 2 + 2 * tracks) << "each is announced and sent once";
        EXPECT_EQ(desk.window->closes, 1);
        EXPECT_EQ(desk.window->progress.size(), tracks);
    }
    EXPECT_EQ(Strings(desk.window->shown.begin(), desk.window->shown.begin() + 3),
              (Strings{"Send Disc Image", "Send In Progress", "Sending Track 0 of Drive 3"}));
    EXPECT_EQ(desk.window->progress.back(), 100);
    EXPECT_EQ(desk.window->progress.at(57), 28); // 58 of 200 are a little less than 29 percent
    EXPECT_EQ(desktop.filters.front(), ".ssd;.SSD");
}

TEST_F(LinkSendTest, BothSidesGoOutInTurn) {
    const auto image = Send(409600, 1, false);
    EXPECT_EQ(Strings(micro.heard.begin() + 2, micro.heard.begin() + 8),
              (Strings{"g 1 0", "track", "g 3 0", "track", "g 1 1", "track"}));
    EXPECT_EQ(HeardFrom("g 3 79").size(), 2U);
    EXPECT_TRUE(std::equal(image.end() - 2560, image.end(), micro.discs[3].end() - 2560));
    EXPECT_EQ(desktop.filters, Strings{".img;.dsd;.IMG;.DSD"});
}

TEST_F(LinkSendTest, AFailureIsAnsweredWithTheSameTrackAgain) {
    // An answer, what comes in its place, what is heard from the failing track on, and the trace.
    using Row = std::tuple<std::string, std::string, Strings, Strings>;
    const std::string no_reply = "Received no reply for disc 0 track 1 from BBC";
    const std::string timeout = "Timeout waiting for response";
    const Strings no_turn{"g 0 1", "abort", "g 0 1", "track"};
    for (const auto& [message, answer, again, trace] :
         {Row{"g 0 1", "", no_turn, {timeout, no_reply}},
          Row{"g 0 1", "-----BBC", no_turn, {no_reply}},
          Row{"track",
              "",
              {"track", "abort", "g 0 0", "track", "g 0 1", "track"},
              {"Waiting for Track CRC", timeout}},
          Row{"track",
              "  123\r",
              {"track", "g 0 0", "track", "g 0 1", "track"},
              {"Received Track CRC of 123", "Mismatch in CRC"}}}) {
        SCOPED_TRACE(testing::Message() << message << ": " << answer);
        Trace();
        pane.text.clear();
        Spoil(message, [bytes = answer](Reply& reply) { reply.bytes = bytes; });
        EXPECT_EQ(Send(5120), micro.discs[0]);
        EXPECT_EQ(HeardFrom(message), again);
        EXPECT_THAT(TraceLines(), testing::IsSupersetOf(trace));
    }
}

TEST_F(LinkSendTest, WhatFailsBeforeTheFirstTrackIsTold) {
    Spoil("*DISC", [](Reply& reply) { reply.bytes.clear(); });
    Send(5120);
    EXPECT_EQ(desktop.boxes,
              (std::vector<ScriptedHost::Box>{{"Problems changing to DFS", "GetDisc Error"}}))
        << "meant: the title is that of a receive";
    desktop.boxes.clear();
    desktop.files = {folder.path()};
    TX_DISC(0, true, desk);
    EXPECT_EQ(desktop.TakeBoxTexts(),
              Strings{"Cannot open " + folder.path().filename().string() + ": Is a directory"});
    EXPECT_EQ(desk.window, nullptr);
    desktop.files = {std::nullopt};
    port.writes.clear();
    TX_DISC(0, true, desk);
    EXPECT_TRUE(port.writes.empty());
}

TEST_F(LinkSendTest, CancelGivesTheTrackUpAndIsOverThen) {
    desk.plays_wave = true;
    folder.File("xfer.wav", "RIFF");
    // Cancel comes so many milliseconds after the answer to a message has been asked for.
    using Row = std::tuple<const char*, std::string, int, Strings>;
    for (const auto& [what, message, delay, heard] :
         {Row{"while no turn comes", "g 0 0", 0, {"g 0 0", "abort"}},
          Row{"within the packet", "g 0 0", 250, {"g 0 0"}},
          Row{"while waiting for the CRC", "track", 100, {"track", "abort"}}}) {
        SCOPED_TRACE(what);
        Spoil(message, [this, after = delay](Reply& reply) {
            Later(after, Cancel);
            if (after == 0)
                reply.bytes.clear();
        });
        Send(5120);
        EXPECT_EQ(HeardFrom(message), heard);
        EXPECT_EQ(port.writes.back(), "\x1B\x02");
        EXPECT_FALSE(Module1::TXAbort);
        EXPECT_TRUE(desktop.sounds.empty());
    }
    Spoil("track", [&](Reply&) { Later(100, Cancel); });
    Send(2560); // the last track is out
    EXPECT_TRUE(Module1::TXAbort);
    EXPECT_EQ(desktop.sounds.size(), 1U);
}

} // namespace

} // namespace quoravel
