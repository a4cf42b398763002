#include "disc/free_space.h"
#include "disc/image_files.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Regions = std::vector<std::pair<int, int>>;
using testing::ElementsAre;
using testing::Pair;

constexpr int kSide = 204800;
constexpr int kTrack = 2560;
constexpr std::uint8_t kOldByte = 0xE5;

class ImageFiles : public DiscTest {
  protected:
    TempFolder folder;
};

/// An image file in which no two sectors are alike, and neither are two drives or tracks.
Bytes Noise(int count) {
    Bytes bytes(static_cast<std::size_t>(count));
    std::uint32_t state = 1;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(state >> 24U);
    }
    return bytes;
}

/// Two blank plain drives of 80 tracks, as they stand in the block before a file comes in.
Bytes BlankBlock() {
    Bytes block(kDiscBytes);
    for (const std::size_t side : {0, kSide}) {
        block[side + 262] = 3;
        block[side + 263] = 32;
    }
    return block;
}

TEST_F(ImageFiles, TheNameTellsTheForm) {
    using Row = std::tuple<const char*, std::optional<ImageForm>>;
    for (const auto& [name, form] :
         {Row{"MY.DSD.OLD", ImageForm::Interleaved}, Row{"side.ssd.dsd", ImageForm::Interleaved},
          Row{"a.img.Ssd", ImageForm::Linear}, Row{"DISC.IMG", ImageForm::Linear}, Row{"dsd", {}}})
        EXPECT_EQ(FormOfName(name), form) << name;
}

TEST_F(ImageFiles, ABlankDriveHoldsOnlyItsSectorCountAndMarker) {
    Bytes expected(kDiscBytes, kOldByte);
    Module1::DiscImg.Write(0, expected);
    Module1::gDirty = true;
    std::fill_n(expected.begin(), kSide, 0);
    expected[262] = 3;
    expected[263] = 32;
    const auto side = expected.begin() + kSide;
    std::fill_n(side, 40 * kTrack, 0); // what lies behind 40 tracks stays
    std::fill_n(side + 512, 8, 0xAA);
    side[262] = side[774] = 1;
    side[263] = side[775] = 144;
    NewDisc(0, 80, false);
    NewDisc(1, 40, true);
    EXPECT_EQ(BlockBytes(), expected);
    EXPECT_THAT(FreeRegions(0), ElementsAre(Pair(2, 798)));
    EXPECT_THAT(FreeRegions(1), ElementsAre(Pair(4, 396)));
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(ImageFiles, ALinearFileOfAnyLengthFillsDriveZeroFromTheFront) {
    for (const int length : {0, 1, 300, kSide - 1, kSide, 2 * kSide}) {
        SCOPED_TRACE(length);
        const Bytes file = Noise(length);
        Bytes expected = BlankBlock();
        Module1::DiscImg.Fill(0, kDiscBytes, kOldByte);
        Module1::gDirty = true;
        ASSERT_FALSE(LoadDisc_SSD(folder.File("disc.ssd", file)));
        std::copy_n(file.begin(), std::min(length, kSide), expected.begin());
        EXPECT_EQ(BlockBytes(), expected);
        EXPECT_FALSE(Module1::gDirty);
    }
}

TEST_F(ImageFiles, AnInterleavedFileOfAnyLengthGoesInByWholeSectorsAndComesOutInFull) {
    constexpr int kFull = 2 * kSide;
    for (const int length :
         {0, 255, kTrack, 3 * kTrack + 513, kSide, kFull - 1, kFull, kFull + kTrack}) {
        SCOPED_TRACE(length);
        const Bytes file = Noise(length);
        Bytes expected = BlankBlock();
        Module1::DiscImg.Fill(0, kDiscBytes, kOldByte);
        Module1::gDirty = true;
        ASSERT_FALSE(LoadDisc_DSD(folder.File("disc.dsd", file)));
        const int sectors = std::min(length / 256, 1600);
        for (int sector = 0; sector < sectors; ++sector) {
            const int track = sector / 10;
            const int to = track % 2 * kSide + track / 2 * kTrack + sector % 10 * 256;
            std::copy_n(file.begin() + std::ptrdiff_t{sector} * 256, 256, expected.begin() + to);
        }
        EXPECT_EQ(BlockBytes(), expected);
        EXPECT_FALSE(Module1::gDirty);
        Module1::gDirty = true;
        ASSERT_FALSE(SaveDisc_DSD(folder.path() / "saved.dsd"));
        EXPECT_FALSE(Module1::gDirty);
        const Bytes saved = BytesOf(folder.path() / "saved.dsd");
        EXPECT_EQ(saved.size(), 409600U);
        EXPECT_TRUE(
            std::equal(file.begin(), file.begin() + std::ptrdiff_t{sectors} * 256, saved.begin()));
    }
}

TEST_F(ImageFiles, LoadingRebuildsTheFreeSpaceOfBothDrives) {
    Bytes side(520);
    side[262] = 1;
    side[263] = 144;
    ASSERT_FALSE(LoadDisc_SSD(folder.File("a.ssd", side)));
    EXPECT_THAT(FreeRegions(0), ElementsAre(Pair(2, 398)));
    EXPECT_THAT(FreeRegions(1), ElementsAre(Pair(2, 798)));
    side.insert(side.begin(), kTrack, 0);
    side.resize(side.size() + kTrack);
    ASSERT_FALSE(LoadDisc_DSD(folder.File("a.dsd", side)));
    EXPECT_THAT(FreeRegions(0), ElementsAre()) << "its catalogue claims no sectors";
    EXPECT_THAT(FreeRegions(1), ElementsAre(Pair(2, 398)));
}

TEST_F(ImageFiles, AFailedLoadChangesNothing) {
    DiscBuilder(0).Fill(3);
    Module1::FreeSpaceNum[0] = 7;
    Module1::gDirty = true;
    const Bytes before = BlockBytes();
    for (const auto load : {LoadDisc_SSD, LoadDisc_DSD})
        for (const auto& path : {folder.path(), folder.path() / "none.ssd"})
            EXPECT_TRUE(load(path));
    EXPECT_EQ(BlockBytes(), before);
    EXPECT_EQ(Module1::FreeSpaceNum[0], 7);
    EXPECT_TRUE(Module1::gDirty);
}

TEST_F(ImageFiles, ALinearFileEndsBehindTheHighestUsedSector) {
    using Row = std::tuple<const char*, bool, int, Entry, int>;
    for (const auto& [what, watford, sectors, entry, used] :
         {Row{"only the catalogue", false, 800, At(0, 0), 2},
          Row{"only two catalogues", true, 800, At(0, 0), 4},
          Row{"no sectors at all", false, 0, At(0, 0), 1},
          Row{"one byte more than a sector", false, 800, At(9, 257), 11},
          Row{"no bytes take a sector", false, 800, At(9, 0), 10},
          Row{"to the end", false, 800, At(799, 1), 800},
          Row{"cut at the sector count", false, 400, At(395, 2560), 400},
          Row{"beyond the sector count", false, 400, At(500, 9), 2},
          Row{"a length that reads as FF", false, 800, At(9, 0x30000), 800}}) {
        SCOPED_TRACE(what);
        DiscBuilder(0, watford, sectors).File(entry);
        Module1::gDirty = true;
        ASSERT_FALSE(SaveDisc_SSD(folder.path() / "disc.ssd"));
        EXPECT_EQ(BytesOf(folder.path() / "disc.ssd"), BlockBytes(0, used * 256));
        EXPECT_FALSE(Module1::gDirty);
    }
}

TEST_F(ImageFiles, MeantALinearFileTakesItsLengthFromTheCurrentDriveAndItsBytesFromDriveZero) {
    DiscBuilder(0).Fill(20).Data(5, "zero");
    DiscBuilder(1).Fill(4).Data(5, "one");
    Module1::cur_drive = 1;
    ASSERT_FALSE(SaveDisc_SSD(folder.path() / "disc.ssd"));
    EXPECT_EQ(BytesOf(folder.path() / "disc.ssd"), BlockBytes(0, 6 * 256));
}

// --- Free space.

using FreeSpace = ImageFiles;

TEST_F(FreeSpace, RegionsLieBetweenTheFiles) {
    using Row = std::tuple<const char*, int, std::vector<Entry>, Regions>;
    const std::vector<Row> rows{
        {"order does not matter", 800, {At(2, 1024), At(10, 512)}, {{6, 4}, {12, 788}}},
        {"no bytes take a sector", 800, {At(5, 0)}, {{2, 3}, {6, 794}}},
        {"overlap", 800, {At(4, 1024), At(2, 1024)}, {{8, 792}}},
        {"up to the last sector", 400, {At(399, 256)}, {{2, 397}}},
        {"beyond the sector count", 400, {At(400, 256)}, {{2, 398}}},
        {"beyond the store", 800, {At(1023, 256)}, {{2, 798}}},
        {"in the catalogue", 800, {At(0, 256)}, {{2, 798}}},
        // Meant: such a length reads as some 16 million.
        {"a length above 196607", 800, {At(6, 0x30000)}, {{2, 4}}}};
    for (const auto& [what, sectors, files, regions] : rows) {
        SCOPED_TRACE(what);
        DiscBuilder disc(1, false, sectors);
        for (const Entry& file : files)
            disc.File(file);
        GetFreeSpaceMap(1);
        EXPECT_EQ(FreeRegions(1), regions);
    }
}

TEST_F(FreeSpace, MeantTheStatusLineTellsFilesOfNowAndTheFreeBytesOfTheLastRebuild) {
    NewDisc(1, 80, true);
    ShowFree(1);
    EXPECT_EQ(status_lines[1], "Drive 1 : 0 files(s), 203776 Bytes Free, 1024 Bytes Used");
    DiscBuilder(1, false, 10).Fill(1);
    ShowFree(1);
    EXPECT_EQ(status_lines[1], "Drive 1 : 1 files(s), 203776 Bytes Free, -201216 Bytes Used");
}

} // namespace
} // namespace quoravel
