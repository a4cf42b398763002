#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "platform/text.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <bitset>
#include <random>

namespace quoravel {
namespace {

constexpr int kDiscs = 3000;
constexpr std::int64_t kDriveSize = 204800;
constexpr int kCatalogueSize = 1024; ///< both catalogues of a drive

class DamagedDiscs : public DiscTest {
  protected:
    [[nodiscard]] int Below(int bound) {
        return static_cast<int>(random_() % static_cast<unsigned>(bound));
    }

    void Noise(int drive) {
        for (int i = 0; i < kCatalogueSize; ++i)
            Module1::DiscImg.SetByte(drive * kDriveSize + i, static_cast<std::uint8_t>(random_()));
    }

    /// One of four kinds of damage, from a sound catalogue with a few wrong bytes to pure noise.
    void Damage(int drive) {
        const bool watford = Below(2) == 0;
        DiscBuilder disc(drive, watford, Below(1024));
        switch (Below(4)) {
        case 0:
            Noise(drive);
            return;
        case 1:
            Module1::DiscImg.Fill(drive * kDriveSize, kDriveSize,
                                  static_cast<std::uint8_t>(random_()));
            return;
        case 2:
            Noise(drive);
            for (int i = 512; i < 520; ++i)
                disc.Byte(i, 0xAA);
            return;
        default:
            disc.Fill(Below(32), watford ? Below(32) : 0);
            for (int i = Below(20); i >= 0; --i)
                disc.Byte(Below(kCatalogueSize), Below(256));
        }
    }

    std::mt19937 random_{19820101};
    TempFolder folder;
};

/// The free sectors of a drive, worked out from the texts of its catalogue.
std::bitset<800> FreeByTheTexts(int drive) {
    std::bitset<800> free;
    for (int s = GetRootSector(drive); s < GetNumberOfSectors(drive); ++s)
        free.set(static_cast<std::size_t>(s));
    for (int i = 0; i < GetNumberOfDirEntries(drive); ++i) {
        const int info = GetDirOffset(drive, i) + 256;
        const std::uint32_t first = HexValue(GetSector(info));
        const std::uint32_t sectors = std::max(1U, (HexValue(GetSize(info)) + 255) / 256);
        for (std::uint32_t s = first; s < std::min(first + sectors, 800U); ++s)
            free.reset(s);
    }
    return free;
}

void ExpectSoundFreeSpace(int drive) {
    std::bitset<800> free;
    int end = -1;
    for (const auto& [first, length] : FreeRegions(drive)) {
        EXPECT_GT(first, end) << "regions ascend and never touch";
        EXPECT_GT(length, 0);
        end = first + length;
        for (int s = first; s < end; ++s)
            free.set(static_cast<std::size_t>(s));
    }
    EXPECT_EQ(free, FreeByTheTexts(drive));
    EXPECT_EQ(FreeSectors(drive), static_cast<int>(free.count()));
}

void ExpectReadableCatalogue(int drive) {
    const int files = GetNumberOfDirEntries(drive);
    EXPECT_LE(files, 63);
    EXPECT_LE(GetTitle(drive).size(), 12U);
    EXPECT_LE(GetSectorsUsed(drive), 799);
    for (int i = 0; i < files; ++i) {
        const std::string name = GetName(drive, i);
        EXPECT_GE(name.size(), 2U);
        EXPECT_LE(name.size(), 9U);
        EXPECT_LE(i % 8 == 0 ? GetPos(drive, name) : i, i);
    }
    const auto rows = ListFiles(drive);
    EXPECT_LE(rows.size(), static_cast<std::size_t>(files));
    for (const ListRow& row : rows)
        EXPECT_EQ(row.Load.size() + row.Exec.size() + row.Size.size() + row.Sector.size(), 21U);
    EXPECT_EQ(SortedListFiles(drive).size(), rows.size());
}

TEST_F(DamagedDiscs, AnyCatalogueGivesOddNumbersAndNothingWorse) {
    for (int n = 0; n < kDiscs && !HasFailure(); ++n) {
        SCOPED_TRACE(n);
        const int drive = n % 2;
        Damage(drive);
        ExpectReadableCatalogue(drive);
        GetFreeSpaceMap(drive);
        ExpectSoundFreeSpace(drive);
        ShowFree(drive);
        SetTitle(drive, "MENDED");
        EXPECT_EQ(GetTitle(drive), "MENDED");
    }
}

TEST_F(DamagedDiscs, AnyDiscCompactsAndStaysReadable) {
    for (int n = 0; n < kDiscs / 20 && !HasFailure(); ++n) {
        SCOPED_TRACE(n);
        Damage(0);
        Damage(1);
        Module1::cur_drive = n % 2;
        Compact(Module1::cur_drive);
        EXPECT_TRUE(Module1::gDirty);
        ExpectReadableCatalogue(Module1::cur_drive);
        ExpectSoundFreeSpace(Module1::cur_drive);
    }
}

/// Whatever a catalogue asks for, the bytes move as if one by one from the first to the last.
TEST_F(DamagedDiscs, ACopyOfBytesIsTheSameWhereverItLies) {
    struct Row {
        const char* what;
        int from, to, count;
    };

    for (const Row& row : {Row{"down", 5000, 1000, 3000}, Row{"down over itself", 1256, 1000, 3000},
                           Row{"up", 1000, 5000, 3000}, Row{"up over itself", 1000, 1008, 3000},
                           Row{"up by a byte", 1000, 1001, 3000}, Row{"onto itself", 9, 9, 99},
                           Row{"from before the block", -100, 1000, 300},
                           Row{"from before it over itself", -100, 20, 900},
                           Row{"from its end", kDiscBytes - 10, 1000, 300},
                           Row{"past its end", 1000, kDiscBytes - 10, 300},
                           Row{"all of it and more", 256, 0, 0xFFFFFF},
                           Row{"all of it upwards", 0, 768, 0xFFFFFF}}) {
        SCOPED_TRACE(row.what);
        for (int i = 0; i < kDiscBytes; ++i)
            Module1::DiscImg.SetByte(i, static_cast<std::uint8_t>(i * 7 / 5 % 251));
        DiscBlock expected = Module1::DiscImg;
        for (int i = 0; i < row.count && row.to + i < kDiscBytes; ++i)
            expected.SetByte(row.to + i, expected.Byte(row.from + i));
        Module1::DiscImg.CopyAscending(row.from, row.to, row.count);
        EXPECT_TRUE(std::ranges::equal(Module1::DiscImg.bytes(), expected.bytes()));
    }
}

TEST_F(DamagedDiscs, AnyDiscSavesAndLoadsAsItIs) {
    for (int n = 0; n < 10; ++n) {
        SCOPED_TRACE(n);
        Damage(0);
        Damage(1);
        const auto block = BlockBytes();
        ASSERT_FALSE(SaveDisc_DSD(folder.path() / "disc.dsd"));
        ASSERT_FALSE(SaveDisc_SSD(folder.path() / "disc.ssd"));
        ASSERT_FALSE(LoadDisc_DSD(folder.path() / "disc.dsd"));
        EXPECT_EQ(BlockBytes(), block);
        const auto linear = BytesOf(folder.path() / "disc.ssd");
        ASSERT_FALSE(LoadDisc_SSD(folder.path() / "disc.ssd"));
        EXPECT_EQ(BlockBytes(0, static_cast<int>(linear.size())), linear);
    }
}

} // namespace
} // namespace quoravel
