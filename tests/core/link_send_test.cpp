#include "disc/module1.h"
#include "link/transfer.h"
#include "support/link_test.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace quoravel {

namespace {

using Reply = CompanionDouble::Reply;
using Strings = std::vector<std::string>;
using testing::IsSupersetOf;

class LinkSendTest : public LinkTest {
  protected:
    /// Sends a file of so many bytes and gives it.
    std::vector<std::uint8_t> Send(std::size_t bytes, int drive = 0, bool single_sided = true) {
        std::vector<std::uint8_t> image(bytes);
        for (std::size_t i = 0; i < bytes; ++i)
            image[i] = static_cast<std::uint8_t>(i % 2560 < 20 ? i * 7 : 1 + i / 2560);
        desktop.files = {folder.File("image.ssd", image)};
        TX_DISC(drive, single_sided, desk);
        return image;
    }

    /// What was heard from the first track on.
    [[nodiscard]] Strings Tracks() const { return {micro.heard.begin() + 2, micro.heard.end()}; }
};

TEST_F(LinkSendTest, FilesOfEveryLengthGoOut) {
    struct Row {
        std::size_t bytes;
        int drive;
        std::size_t tracks;
        std::size_t whole; ///< bytes of the file that are sent
    };

    for (const Row& row : {Row{0, 0, 0, 0}, Row{300, 0, 1, 256}, Row{2561, 1, 2, 2560},
                           Row{204800, 2, 80, 204800}, Row{512000, 3, 200, 512000}}) {
        SCOPED_TRACE(row.bytes);
        const auto drive = static_cast<std::size_t>(row.drive);
        const std::string digit = std::to_string(row.drive);
        micro.heard.clear();
        auto expected = Send(row.bytes, row.drive);
        expected.resize(row.whole);
        expected.resize(row.tracks * 2560);
        EXPECT_EQ(micro.discs.at(drive), expected);
        Strings messages{"*DISC", "DRIVE " + digit};
        for (std::size_t track = 0; track < row.tracks; ++track)
            for (const std::string& one :
                 {"g " + digit + ' ' + std::to_string(track), std::string("track")})
                messages.push_back(one);
        EXPECT_EQ(micro.heard, messages);
        EXPECT_EQ(desk.window->closes, 1);
        EXPECT_EQ(desk.window->progress.size(), row.tracks);
    }
    EXPECT_EQ(Strings(desk.window->shown.begin(), desk.window->shown.begin() + 3),
              (Strings{"Send Disc Image", "Send In Progress", "Sending Track 0 of Drive 3"}));
    EXPECT_EQ(desk.window->progress.back(), 100);
    EXPECT_EQ(desk.window->progress.at(57), 28); // 58 of 200 are a little less than 29 percent
    EXPECT_EQ(desktop.filters.front(), ".ssd;.SSD");
}

TEST_F(LinkSendTest, BothSidesGoOutInTurn) {
    const auto image = Send(409600, 1, false);
    const Strings tracks = Tracks();
    EXPECT_EQ(Strings(tracks.begin(), tracks.begin() + 6),
              (Strings{"g 1 0", "track", "g 3 0", "track", "g 1 1", "track"}));
    EXPECT_EQ(tracks.at(318), "g 3 79");
    EXPECT_TRUE(std::equal(image.end() - 2560, image.end(), micro.discs[3].end() - 2560));
    EXPECT_EQ(desktop.filters, Strings{".img;.dsd;.IMG;.DSD"});
}

TEST_F(LinkSendTest, ABytePerMillisecondGoesDownTheLine) {
    Send(2560);
    // All but the messages are single writes, a millisecond apart.
    const std::size_t bytes = port.writes.size() - 4;
    EXPECT_GT(bytes, 20U);
    EXPECT_TRUE(std::all_of(port.writes.end() - static_cast<std::ptrdiff_t>(bytes),
                            port.writes.end(), [](const auto& w) { return w.size() == 1; }));
}

TEST_F(LinkSendTest, AFailureIsAnsweredWithTheSameTrackAgain) {
    struct Row {
        const char* what;
        std::string message;
        std::string answer;
        Strings again; ///< what is heard from the failing track on
        Strings trace;
    };

    const std::string no_reply = "Received no reply for disc 0 track 1 from BBC";
    const std::string timeout = "Timeout waiting for response";
    for (const Row& row : {
             Row{"no turn", "g 0 1", "", {"g 0 1", "abort", "g 0 1", "track"}, {timeout, no_reply}},
             Row{"another answer",
                 "g 0 1",
                 "-----BBC",
                 {"g 0 1", "abort", "g 0 1", "track"},
                 {no_reply}},
             Row{"no CRC",
                 "track",
                 "",
                 {"track", "abort", "g 0 0", "track", "g 0 1", "track"},
                 {"Waiting for Track CRC", timeout}},
             Row{"another CRC",
                 "track",
                 "  123\r",
                 {"track", "g 0 0", "track", "g 0 1", "track"},
                 {"Received Track CRC of 123", "Mismatch in CRC"}},
         }) {
        SCOPED_TRACE(row.what);
        Trace();
        pane.text.clear();
        micro.heard.clear();
        Spoil(row.message, [&](Reply& reply) { reply.bytes = row.answer; });
        EXPECT_EQ(Send(5120), micro.discs[0]);
        const auto from = std::ranges::find(micro.heard, row.message);
        EXPECT_EQ(Strings(from, micro.heard.end()), row.again);
        EXPECT_THAT(TraceLines(), IsSupersetOf(row.trace));
    }
}

TEST_F(LinkSendTest, WhatFailsBeforeTheFirstTrackIsTold) {
    for (const auto& [message, box] : std::map<std::string, std::string>{
             {"*DISC", "Problems changing to DFS"}, {"DRIVE 0", "Problems setting drive 0"}}) {
        Spoil(message, [](Reply& reply) { reply.bytes.clear(); });
        Send(5120);
        // Meant: the title is that of a receive.
        EXPECT_EQ(desktop.boxes, (std::vector<ScriptedHost::Box>{{box, "GetDisc Error"}}));
        desktop.boxes.clear();
    }
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
    struct Row {
        const char* what;
        std::string message; ///< Cancel comes while the answer to it is awaited
        int delay;           ///< milliseconds
        Strings heard;       ///< from there on
    };

    desk.plays_wave = true;
    folder.File("xfer.wav", "RIFF");
    for (const Row& row : {
             Row{"while no turn comes", "g 0 0", 0, {"g 0 0", "abort"}},
             Row{"within the packet", "g 0 0", 250, {"g 0 0"}},
             Row{"while waiting for the CRC", "track", 100, {"track", "abort"}},
         }) {
        SCOPED_TRACE(row.what);
        micro.heard.clear();
        Spoil(row.message, [&](Reply& reply) {
            Later(row.delay, Cancel);
            if (row.delay == 0)
                reply.bytes.clear();
        });
        Send(5120);
        const auto from = std::ranges::find(micro.heard, row.message);
        EXPECT_EQ(Strings(from, micro.heard.end()), row.heard);
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
