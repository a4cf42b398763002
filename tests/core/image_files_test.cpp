#include "disc/image_files.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace quoravel {
namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr int kSide = 204800;
constexpr int kTrack = 2560;
constexpr std::uint8_t kOldByte = 0xE5;

class ImageFiles : public DiscTest {
  protected:
    /// An image file in which no two sectors are alike, and neither are two drives or tracks.
    [[nodiscard]] static Bytes Noise(std::size_t count) {
        Bytes bytes(count);
        std::uint32_t state = 1;
        for (std::uint8_t& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(state >> 24U);
        }
        return bytes;
    }

    TempFolder folder;
};

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
    struct Row {
        const char* name;
        std::optional<ImageForm> form;
    };

    for (const Row& r :
         {Row{"games.dsd", ImageForm::Interleaved}, Row{"MY.DSD.OLD", ImageForm::Interleaved},
          Row{"side.ssd.dsd", ImageForm::Interleaved}, Row{"a.img.Ssd", ImageForm::Linear},
          Row{"DISC.IMG", ImageForm::Linear}, Row{"dsd", {}}, Row{"disc.adf", {}}, Row{"", {}}})
        EXPECT_EQ(FormOfName(r.name), r.form) << r.name;
}

TEST_F(ImageFiles, ABlankDriveHoldsOnlyItsSectorCountAndMarker) {
    struct Row {
        const char* what;
        int drives, tracks;
        bool watford;
        std::uint8_t high, low;
        int free;
    };

    for (const Row& r :
         {Row{"80 tracks, two sides", 2, 80, false, 3, 32, 798},
          Row{"80 tracks", 1, 80, false, 3, 32, 798}, Row{"40 tracks", 1, 40, false, 1, 144, 398},
          Row{"80 tracks, two sides, Watford", 2, 80, true, 3, 32, 796},
          Row{"80 tracks, Watford", 1, 80, true, 3, 32, 796},
          Row{"40 tracks, Watford", 1, 40, true, 1, 144, 396}}) {
        SCOPED_TRACE(r.what);
        Module1::DiscImg.Fill(0, kDiscBytes, kOldByte);
        Module1::gDirty = true;
        Bytes expected(kDiscBytes, kOldByte);
        for (int drive = 0; drive < r.drives; ++drive) {
            NewDisc(drive, r.tracks, r.watford);
            const auto start = expected.begin() + std::ptrdiff_t{drive} * kSide;
            std::fill(start, start + std::ptrdiff_t{r.tracks} * kTrack, 0);
            start[262] = r.high;
            start[263] = r.low;
            if (r.watford) {
                std::fill(start + 512, start + 520, 0xAA);
                start[774] = r.high;
                start[775] = r.low;
            }
            EXPECT_THAT(FreeRegions(drive), ElementsAre(Pair(r.watford ? 4 : 2, r.free)));
        }
        EXPECT_EQ(BlockBytes(), expected) << "what lies behind 40 tracks stays";
        EXPECT_FALSE(Module1::gDirty);
    }
}

TEST_F(ImageFiles, ALinearFileOfAnyLengthFillsDriveZeroFromTheFront) {
    for (const std::size_t length : {0, 1, 300, kSide - 1, kSide, kSide + 1, 2 * kSide}) {
        SCOPED_TRACE(length);
        const Bytes file = Noise(length);
        Module1::DiscImg.Fill(0, kDiscBytes, kOldByte);
        Module1::gDirty = true;
        ASSERT_FALSE(LoadDisc_SSD(folder.File("disc.ssd", file)));
        Bytes expected = BlankBlock();
        std::copy_n(file.begin(), std::min<std::size_t>(length, kSide), expected.begin());
        EXPECT_EQ(BlockBytes(), expected);
        EXPECT_FALSE(Module1::gDirty);
    }
}

TEST_F(ImageFiles, AnInterleavedFileOfAnyLengthGoesInByWholeSectors) {
    constexpr int kFull = 2 * kSide;
    for (const int length :
         {0, 255, 1000, kTrack, 3 * kTrack + 513, kSide, kFull - 1, kFull, kFull + kTrack}) {
        SCOPED_TRACE(length);
        const Bytes file = Noise(static_cast<std::size_t>(length));
        Module1::DiscImg.Fill(0, kDiscBytes, kOldByte);
        Module1::gDirty = true;
        ASSERT_FALSE(LoadDisc_DSD(folder.File("disc.dsd", file)));
        Bytes expected = BlankBlock();
        for (int sector = 0; sector < std::min(length / 256, 1600); ++sector) {
            const int track = sector / 10;
            const int to = track % 2 * kSide + track / 2 * kTrack + sector % 10 * 256;
            std::copy_n(file.begin() + std::ptrdiff_t{sector} * 256, 256, expected.begin() + to);
        }
        EXPECT_EQ(BlockBytes(), expected);
        EXPECT_FALSE(Module1::gDirty);
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
    EXPECT_THAT(FreeRegions(0), IsEmpty()) << "its catalogue claims no sectors";
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

TEST_F(ImageFiles, AnInterleavedFileHoldsTheTracksOfBothSidesInTurn) {
    Module1::DiscImg.Write(0, Noise(kDiscBytes));
    Module1::gDirty = true;
    const auto file = folder.path() / "disc.dsd";
    ASSERT_FALSE(SaveDisc_DSD(file));
    EXPECT_FALSE(Module1::gDirty);
    const Bytes saved = BytesOf(file);
    ASSERT_EQ(saved.size(), 409600U);
    for (const int track : {0, 1, 40, 79})
        for (const int side : {0, 1}) {
            const auto begin = saved.begin() + std::ptrdiff_t{2 * track + side} * kTrack;
            EXPECT_EQ(Bytes(begin, begin + kTrack),
                      BlockBytes(side * kSide + track * kTrack, kTrack));
        }
    const Bytes block = BlockBytes();
    ASSERT_FALSE(LoadDisc_DSD(file));
    EXPECT_EQ(BlockBytes(), block);
}

TEST_F(ImageFiles, AFileOf40TracksSavesBackWithFullLength) {
    const Bytes file = Noise(kSide);
    ASSERT_FALSE(LoadDisc_DSD(folder.File("short.dsd", file)));
    ASSERT_FALSE(SaveDisc_DSD(folder.path() / "full.dsd"));
    const Bytes saved = BytesOf(folder.path() / "full.dsd");
    EXPECT_EQ(saved.size(), 409600U);
    EXPECT_TRUE(std::ranges::equal(file, std::span(saved).first(file.size())));
}

TEST_F(ImageFiles, ALinearFileEndsBehindTheHighestUsedSector) {
    struct Row {
        const char* what;
        bool watford;
        int sectors;
        Entry entry;
        int length;
    };

    for (const Row& r : {Row{"blank", false, 800, At(0, 0), 512},
                         Row{"blank, 40 tracks", false, 400, At(0, 0), 512},
                         Row{"blank Watford", true, 800, At(0, 0), 1024},
                         Row{"no sectors", false, 0, At(0, 0), 256},
                         Row{"one file", false, 800, At(9, 257), 11 * 256},
                         Row{"to the end", false, 800, At(799, 1), kSide}}) {
        SCOPED_TRACE(r.what);
        DiscBuilder(0, r.watford, r.sectors).File(r.entry);
        Module1::gDirty = true;
        ASSERT_FALSE(SaveDisc_SSD(folder.path() / "disc.ssd"));
        EXPECT_EQ(BytesOf(folder.path() / "disc.ssd"), BlockBytes(0, r.length));
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

} // namespace
} // namespace quoravel
