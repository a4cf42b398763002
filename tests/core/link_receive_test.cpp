#include "disc/module1.h"
#include "link/transfer.h"
#include "support/host_faults.h"
#include "support/link_test.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {

namespace {

using Reply = CompanionDouble::Reply;
using Strings = std::vector<std::string>;
using testing::IsSupersetOf;

class LinkReceiveTest : public LinkTest {
  protected:
    LinkReceiveTest() {
        for (std::size_t drive = 0; drive < micro.discs.size(); ++drive)
            micro.discs.at(drive) = Disc(drive, 80);
        desktop.files = {file};
    }

    /// A disc on which every track is different and quickly sent.
    static std::vector<std::uint8_t> Disc(std::size_t drive, std::size_t tracks) {
        std::vector<std::uint8_t> disc(tracks * 2560);
        for (std::size_t i = 0; i < disc.size(); ++i)
            disc[i] = static_cast<std::uint8_t>(i % 2560 < 20 ? i * 7 : drive + i / 2560);
        return disc;
    }

    bool ReceiveSide(int drive) { return RX_SSD(drive, desk, received); }

    std::filesystem::path file = folder.path() / "NewDisc.ssd";
    std::filesystem::path received;
};

TEST_F(LinkReceiveTest, OneSideArrivesTrackByTrack) {
    using Row = std::tuple<std::size_t, std::size_t, std::string>;
    for (const auto& [drive, tracks, line_end] : {Row{0, 80, "\r"}, Row{3, 40, "\n\r"}}) {
        SCOPED_TRACE(drive);
        const std::string digit = std::to_string(drive);
        micro.heard.clear();
        micro.line_end = line_end;
        micro.discs.at(drive) = Disc(drive, tracks);
        desktop.files = {folder.File("old.ssd", std::string(300000, 'x'))};
        ASSERT_TRUE(ReceiveSide(static_cast<int>(drive)));
        EXPECT_EQ(received.filename(), "old.ssd");
        EXPECT_EQ(BytesOf(received), micro.discs.at(drive));
        EXPECT_EQ(micro.heard.size(), 3 + tracks) << "nothing is asked for twice";
        EXPECT_EQ(desk.window->shown.at(7), "Receiving Track 7 of Drive " + digit);
        EXPECT_EQ(desk.window->progress.at(0), 100 / static_cast<int>(tracks));
        EXPECT_EQ(desk.window->progress.back(), 100);
        EXPECT_EQ(desk.window->closes, 1);
    }
    EXPECT_EQ(port.Sent().substr(0, 20), "**DISC\r*DRIVE 0\rN\rG0");
    EXPECT_EQ(desktop.filters.front(), ".ssd;.SSD");
    EXPECT_EQ(desktop.proposals.front(), "NewDisc.ssd");
}

TEST_F(LinkReceiveTest, BothSidesArriveInTurn) {
    Module1::gsRoot = "Elephants.dsd";
    ASSERT_TRUE(RX_DSD(1, desk, received));
    std::vector<std::uint8_t> expected;
    for (std::ptrdiff_t track = 0; track < 80; ++track)
        for (const std::size_t drive : {1U, 3U}) {
            const auto from = micro.discs.at(drive).begin() + track * 2560;
            expected.insert(expected.end(), from, from + 2560);
        }
    EXPECT_EQ(BytesOf(file), expected);
    EXPECT_EQ(desktop.proposals, Strings{"Elephants.dsd"});
    EXPECT_EQ(desktop.filters, Strings{".dsd;.DSD"});
    Module1::gsRoot.clear();
}

TEST_F(LinkReceiveTest, WhatFailsBeforeTheFirstTrackIsTold) {
    using Row = std::tuple<const char*, std::string, std::string, std::string, bool>;
    const std::string dfs = "Problems changing to DFS";
    for (const auto& [what, message, answer, box, drains] :
         {Row{"no answer", "*DISC", "", dfs, true},
          Row{"a byte more", "*DISC", "-----BBC-----PC-----\r\r", dfs, true},
          Row{"no drive", "DRIVE 2", "", "Problems setting drive 2", true},
          Row{"no size", "N", "", "Problems reading size of disc", true},
          Row{"a short size", "N", "1\r", "Unknown Disc Size", false},
          Row{"another size", "N", "204801\r", "Unknown Disc Size", false}}) {
        SCOPED_TRACE(what);
        desktop.boxes.clear();
        desktop.files = {file};
        std::int64_t told = 0;
        desktop.on_box = [&](std::string_view) { told = Milliseconds(); };
        Spoil(message, [bytes = answer](Reply& reply) { reply.bytes = bytes; });
        EXPECT_FALSE(ReceiveSide(2));
        EXPECT_EQ(desktop.boxes, (std::vector<ScriptedHost::Box>{{box, "GetDisc Error"}}));
        EXPECT_EQ(Milliseconds() - told, drains ? 2000 : 0);
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_EQ(desk.window, nullptr);
    }
    desktop.files = {std::nullopt};
    port.writes.clear();
    EXPECT_FALSE(ReceiveSide(0)) << "the dialog was cancelled";
    EXPECT_TRUE(port.writes.empty());
}

TEST_F(LinkReceiveTest, ATrackThatFailsIsAskedForAgain) {
    using Spoiler = std::function<void(std::string&)>;
    using Row = std::tuple<const char*, Spoiler, Strings>;
    const std::string failed = "Track Decompression Failed - Track Length = ";
    const std::string timeout = "Timeout waiting for response";
    const auto set = [](std::size_t at, int value) -> Spoiler {
        return [=](std::string& bytes) { bytes[at] = static_cast<char>(value); };
    };
    const auto cut = [](std::size_t at) -> Spoiler {
        return [=](std::string& bytes) { bytes.resize(at); };
    };
    const auto crc = [](const std::string& line) -> Spoiler {
        return [=](std::string& bytes) { bytes.replace(bytes.size() - 6, 6, line); };
    };
    std::map<std::string, std::int64_t> took;
    // A packet on this disc: 2 length bytes, 20 single ones from 2 on, then runs.
    for (const auto& [what, spoil, trace] :
         {Row{"silence", cut(0), {timeout}},
          Row{"one byte", cut(1), {"Compressed Packet Size -196", failed + "0"}},
          Row{"a long packet", set(1, 11), {"Incorrect packet length received"}},
          Row{"an unknown escape", set(23, 3), {"Unknown ESCAPE sequence"}},
          Row{"a byte too few", set(24, 254), {failed + "2559"}},
          Row{"a byte doubled", [](auto& b) { b.insert(5, 1, b[5]); }, {failed + "2561"}},
          Row{"a short CRC", crc("12"), {"Waiting for Track CRC"}},
          Row{"another CRC", crc("00123\r"), {"Received Track CRC of 123", "Mismatch in CRC"}},
          Row{"a byte changed", set(7, 0), {"Mismatch in CRC"}}}) {
        SCOPED_TRACE(what);
        micro.discs[0] = Disc(0, 40);
        micro.heard.clear();
        pane.text.clear();
        desktop.files = {file};
        Trace();
        Spoil("G 0 3", [how = spoil](Reply& reply) { how(reply.bytes); });
        took[what] -= Milliseconds();
        ASSERT_TRUE(ReceiveSide(0));
        took[what] += Milliseconds();
        EXPECT_EQ(BytesOf(file), micro.discs[0]);
        EXPECT_EQ(std::ranges::count(micro.heard, "G 0 3"), 2);
        EXPECT_THAT(TraceLines(), IsSupersetOf(trace));
    }
    EXPECT_NEAR(static_cast<double>(took["a short CRC"] - took["another CRC"]), 2000, 5)
        << "the line is drained before";
}

TEST_F(LinkReceiveTest, ALateAnswerIsNotTakenForTheNextTrack) {
    micro.discs[0] = Disc(0, 40);
    Spoil("G 0 3", [](Reply& reply) { reply.delay = std::chrono::milliseconds(5500); });
    ASSERT_TRUE(ReceiveSide(0));
    EXPECT_EQ(BytesOf(file), micro.discs[0]);
}

TEST_F(LinkReceiveTest, TheTraceTellsEveryStepOfATrack) {
    micro.discs[0] = std::vector<std::uint8_t>(102400);
    Trace();
    ASSERT_TRUE(ReceiveSide(0));
    const Strings lines = TraceLines();
    EXPECT_EQ(
        Strings(lines.begin(), lines.begin() + 6),
        (Strings{"Reading Track 0 of Drive 0", "Compressed Packet Size 44", "Waiting for Track CRC",
                 "Received Track CRC of 27721", "My CRC = 27721", "Reading Track 1 of Drive 0"}));
}

TEST_F(LinkReceiveTest, CancelDrainsTheLineAndKeepsTheTracksSoFar) {
    Later(4000, Cancel);
    std::int64_t last_write = 0;
    port.on_write = [&](std::string_view bytes) {
        last_write = Milliseconds();
        micro.Take(bytes, desktop.now);
    };
    EXPECT_FALSE(ReceiveSide(0));
    EXPECT_GT(Milliseconds(), 6000);
    EXPECT_LT(last_write, 4000);
    EXPECT_TRUE(Module1::TXAbort); // and so star commands send nothing until the next transfer
    const auto bytes = BytesOf(file);
    EXPECT_GT(bytes.size(), 2560U);
    EXPECT_EQ(bytes.size() % 2560, 0U);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), micro.discs[0].begin()));
    desktop.files = {file};
    Spoil("G 0 79", [](Reply&) { Cancel(); }); // comes too late
    EXPECT_TRUE(ReceiveSide(0));
    EXPECT_TRUE(Module1::TXAbort);
    EXPECT_EQ(desk.window->progress.back(), 98); // nothing is shown any more
}

TEST_F(LinkReceiveTest, AHostFileThatCannotBeWrittenEndsTheTransfer) {
    {
        const FullDisc disc(10 * 2560 + 100);
        EXPECT_FALSE(ReceiveSide(0));
    }
    EXPECT_EQ(micro.heard.back(), "G 0 10");
    EXPECT_EQ(desk.window->closes, 1);
    desktop.files = {folder.path() / "nowhere" / "new.ssd"};
    EXPECT_FALSE(ReceiveSide(0));
    EXPECT_EQ(desktop.TakeBoxTexts(), (Strings{"Cannot write NewDisc.ssd: File too large",
                                               "Cannot write new.ssd: No such file or directory"}));
}

} // namespace

} // namespace quoravel
