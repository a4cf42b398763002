#include "disc/free_space.h"
#include "disc/image_files.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>

namespace quoravel {
namespace {

using testing::ElementsAreArray;

class FreeSpace : public DiscTest {};

using Regions = std::vector<std::pair<int, int>>;

TEST_F(FreeSpace, RegionsLieBetweenTheFiles) {
    struct Row {
        const char* what;
        bool watford;
        int sectors;
        std::vector<Entry> files;
        Regions regions;
    };

    const std::vector<Row> rows{
        {"blank", false, 800, {}, {{2, 798}}},
        {"blank Watford", true, 800, {}, {{4, 796}}},
        {"blank, 40 tracks", false, 400, {}, {{2, 398}}},
        {"no sectors", false, 0, {}, {}},
        {"catalogue only", false, 2, {}, {}},
        {"two gaps", false, 800, {At(10, 512), At(2, 1024)}, {{6, 4}, {12, 788}}},
        {"order does not matter", false, 800, {At(2, 1024), At(10, 512)}, {{6, 4}, {12, 788}}},
        {"no bytes take a sector", false, 800, {At(5, 0)}, {{2, 3}, {6, 794}}},
        {"overlap", false, 800, {At(4, 1024), At(2, 1024)}, {{8, 792}}},
        {"up to the last sector", false, 400, {At(399, 256)}, {{2, 397}}},
        {"beyond the sector count", false, 400, {At(400, 256)}, {{2, 398}}},
        {"beyond the store", false, 800, {At(1023, 256)}, {{2, 798}}},
        {"in the catalogue", false, 800, {At(0, 256)}, {{2, 798}}},
        {"full", false, 800, {At(2, 798 * 256)}, {}},
    };
    for (const Row& r : rows)
        for (const int drive : {0, 1}) {
            SCOPED_TRACE(r.what);
            DiscBuilder disc(drive, r.watford, r.sectors);
            for (const Entry& file : r.files)
                disc.File(file);
            GetFreeSpaceMap(drive);
            EXPECT_THAT(FreeRegions(drive), ElementsAreArray(r.regions));
        }
}

TEST_F(FreeSpace, MeantALengthThatReadsAsFFTakesAllToTheEndOfTheDisc) {
    DiscBuilder(0).File(At(6, 0x30000));
    GetFreeSpaceMap(0);
    EXPECT_THAT(FreeRegions(0), ElementsAreArray(Regions{{2, 4}}));
}

TEST_F(FreeSpace, AFileInEveryOtherSectorGivesARegionEach) {
    DiscBuilder disc(0, DiscBuilder::kWatford);
    for (int i = 0; i < 31; ++i) {
        disc.File(At(5 + 2 * i, 1));
        disc.SecondFile(At(67 + 2 * i, 1));
    }
    GetFreeSpaceMap(0);
    EXPECT_EQ(FreeRegions(0).size(), 63U);
    EXPECT_EQ(FreeSectors(0), 800 - 4 - 62);
}

TEST_F(FreeSpace, TheStatusLineTellsFilesAndBytes) {
    struct Row {
        int drive, tracks;
        bool watford;
        const char* text;
    };

    for (const Row& r :
         {Row{0, 80, false, "Drive 0 : 0 files(s), 204288 Bytes Free, 512 Bytes Used"},
          Row{1, 80, true, "Drive 1 : 0 files(s), 203776 Bytes Free, 1024 Bytes Used"},
          Row{0, 40, false, "Drive 0 : 0 files(s), 101888 Bytes Free, 512 Bytes Used"}}) {
        NewDisc(r.drive, r.tracks, r.watford);
        ShowFree(r.drive);
        EXPECT_EQ(status_lines.at(static_cast<std::size_t>(r.drive)), r.text);
    }
}

TEST_F(FreeSpace, MeantTheFreeFigureIsThatOfTheLastRebuild) {
    NewDisc(0, 80, false);
    DiscBuilder(0, false, 10).Fill(1);
    ShowFree(0);
    EXPECT_EQ(status_lines[0], "Drive 0 : 1 files(s), 204288 Bytes Free, -201728 Bytes Used");
}

} // namespace
} // namespace quoravel
