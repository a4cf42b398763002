#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/image_files.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr int kDrive1 = 204800;

class Compaction : public DiscTest {};

void CompactDrive(int drive) {
    Module1::cur_drive = drive;
    Compact(drive);
}

/// Names and start sectors of all files, in catalogue order.
std::vector<std::pair<std::string, int>> Places(int drive) {
    std::vector<std::pair<std::string, int>> places;
    for (int i = 0; i < GetNumberOfDirEntries(drive); ++i)
        places.emplace_back(GetName(drive, i), StartSector(GetDirOffset(drive, i) + 256));
    return places;
}

std::string SectorText(int drive, int sector, int count) {
    return BlockText(drive * kDrive1 + sector * 256, count);
}

TEST_F(Compaction, AWatfordDiscFillsItsFirstCatalogueFromItsSecond) {
    using Row = std::tuple<int, int, int, int>;
    for (const auto& [first, second, first_after, second_after] :
         {Row{31, 5, 31, 5}, Row{29, 5, 31, 3}, Row{10, 5, 15, 0}, Row{0, 31, 31, 0}}) {
        SCOPED_TRACE(testing::Message() << first << " and " << second);
        DiscBuilder(0, DiscBuilder::kWatford).Fill(first, second);
        auto expected = Places(0); // by sector, the highest first, as a catalogue has them
        std::ranges::sort(expected, std::greater{}, [](const auto& place) { return place.second; });
        CompactDrive(0);
        EXPECT_EQ(Module1::DiscImg.Byte(261), 8 * first_after);
        EXPECT_EQ(Module1::DiscImg.Byte(773), 8 * second_after);
        auto found = Places(0);
        // The second lies above. (The ranges of this name are beyond clang 14.)
        std::rotate(found.begin(), found.begin() + first_after, found.end());
        EXPECT_EQ(found, expected);
        for (int slot = second_after; slot < second; ++slot)
            EXPECT_EQ(BlockText(520 + 8 * slot, 8) + BlockText(776 + 8 * slot, 8),
                      std::string(16, '\0'))
                << "an entry that moved leaves an empty slot";
    }
}

TEST_F(Compaction, TheSecondCataloguesFilesGoAboveTheFirsts) {
    DiscBuilder(1, DiscBuilder::kWatford)
        .File(At(9, 256))
        .SecondFile(At(40, 256, "C"))
        .SecondFile(At(20, 512, "B"))
        .Data(20, "b")
        .Data(40, "c");
    CompactDrive(1);
    EXPECT_THAT(Places(1), ElementsAre(Pair("$.C", 7), Pair("$.B", 5), Pair("$.A", 4)));
    EXPECT_EQ(SectorText(1, 5, 1) + SectorText(1, 7, 1), "bc");
}

TEST_F(Compaction, MeantAnEntryOutOfOrderOverwritesAFileThatHasNotMoved) {
    DiscBuilder(0).File(At(2, 256, "LOW")).File(At(9, 256, "HIGH")).Data(2, "low.").Data(9, "high");
    CompactDrive(0);
    EXPECT_THAT(Places(0), ElementsAre(Pair("$.LOW", 3), Pair("$.HIGH", 2)));
    EXPECT_EQ(SectorText(0, 2, 4) + SectorText(0, 3, 4), "highhigh");
}

TEST_F(Compaction, MeantTheBytesMoveOnTheCurrentDrive) {
    DiscBuilder(0).Data(5, "zero");
    DiscBuilder(1).File(At(5, 4)).Data(5, "one!");
    Module1::cur_drive = 0;
    Compact(1);
    EXPECT_THAT(Places(1), ElementsAre(Pair("$.A", 2)));
    EXPECT_EQ(SectorText(0, 2, 4), "zero");
    EXPECT_EQ(SectorText(1, 2, 4), std::string(4, '\0'));
}

TEST_F(Compaction, MeantALengthThatReadsAsFFDragsTheRestOfTheBlockDown) {
    DiscBuilder(0).File(At(0x20, 4, "LAST")).File(At(4, 0x30000, "LONG")).Data(4, "long");
    DiscBuilder(1).Data(20, "one!");
    CompactDrive(0);
    EXPECT_EQ(SectorText(0, 2, 4), "long");
    EXPECT_EQ(SectorText(1, 18, 4), "one!") << "past the end of the drive";
    EXPECT_EQ(SectorText(1, 798, 512), std::string(512, '\0')) << "behind the block lie zeros";
    // LONG counts 65280 sectors, so LAST goes to sector 65282, 0xFF02, whose high byte is ORed in.
    EXPECT_EQ(BlockText(264 + 6, 2), "\xFF\x02");
}

/// Whatever a catalogue asks for, the bytes move as if one by one from the first to the last.
TEST_F(Compaction, ACopyOfBytesIsTheSameWhereverItLies) {
    using Row = std::tuple<const char*, int, int, int>;
    for (const auto& [what, from, to, count] :
         {Row{"down over itself", 1256, 1000, 3000}, Row{"up over itself", 1000, 1008, 3000},
          Row{"up by a byte", 1000, 1001, 3000}, Row{"onto itself", 9, 9, 99},
          Row{"from before the block", -100, 20, 900},
          Row{"from its end", kDiscBytes - 10, 1000, 300},
          Row{"past its end", 1000, kDiscBytes - 10, 300},
          Row{"all of it upwards", 0, 768, 0xFFFFFF}}) {
        SCOPED_TRACE(what);
        for (int i = 0; i < kDiscBytes; ++i)
            Module1::DiscImg.SetByte(i, static_cast<std::uint8_t>(i * 7 / 5 % 251));
        DiscBlock expected = Module1::DiscImg;
        for (int i = 0; i < count && to + i < kDiscBytes; ++i)
            expected.SetByte(to + i, expected.Byte(from + i));
        Module1::DiscImg.CopyAscending(from, to, count);
        EXPECT_TRUE(std::ranges::equal(Module1::DiscImg.bytes(), expected.bytes()));
    }
}

// Discs written by the genuine system of a BBC Micro, and what that machine makes of them.

std::filesystem::path RealDisc(std::string_view name) {
    return std::filesystem::path(TEST_DATA "/discs") / name;
}

// Ours differs from the machine in two points: the cycle number stays, and only the bytes of a file
// are moved, so that behind them stands what stood there before. No file here is empty.
TEST_F(Compaction, OfARealDiscIsThatOfTheMachine) {
    ASSERT_FALSE(LoadDisc_SSD(RealDisc("demo-gaps.ssd")));
    const auto before = BlockBytes();
    Compact(0);
    EXPECT_TRUE(Module1::gDirty);
    Module1::DiscImg.SetByte(260, 0x13);
    constexpr int kEndOfD = 8 * 256 + 1; // D.D, one byte, in sector 8
    auto expected = BytesOf(RealDisc("demo-gaps-compacted.ssd"));
    std::copy_n(before.begin() + kEndOfD, 255, expected.begin() + kEndOfD);
    EXPECT_TRUE(BlockBytes(0, static_cast<int>(expected.size())) == expected);
    EXPECT_EQ(FreeRegions(0), (std::vector{std::pair{0x11, 0x30F}}));
}

// The machine lets an empty file share its start sector; we count a sector for it. Here it is the
// lowest file, and its neighbour, two sectors long, is moved up over its own second half.
TEST_F(Compaction, MeantAnEmptyFileCostsItsNeighbourASector) {
    ASSERT_FALSE(LoadDisc_SSD(RealDisc("demo-cat.ssd")));
    const std::string readme = BlockText(2 * 256, 0x123);
    Compact(0);
    EXPECT_EQ(GetSector(264 + 8 * 9), "002") << "$.NIL stays";
    EXPECT_EQ(GetSector(264 + 8 * 8), "003") << "$.README moves up";
    EXPECT_EQ(BlockText(3 * 256, 0x123), readme.substr(0, 256) + readme.substr(0, 0x23));
}

} // namespace
} // namespace quoravel
