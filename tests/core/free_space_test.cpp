#include "disc/free_space.h"
#include "disc/image_files.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAreArray;

class FreeSpace : public DiscTest {};

using Regions = std::vector<std::pair<int, int>>;

TEST_F(FreeSpace, RegionsLieBetweenTheFiles) {
    using Row = std::tuple<const char*, bool, int, std::vector<Entry>, Regions>;
    const std::vector<Row> rows{
        {"blank", false, 800, {}, {{2, 798}}},
        {"blank Watford", true, 800, {}, {{4, 796}}},
        {"no sectors", false, 0, {}, {}},
        {"catalogue only", false, 2, {}, {}},
        {"order does not matter", false, 800, {At(2, 1024), At(10, 512)}, {{6, 4}, {12, 788}}},
        {"no bytes take a sector", false, 800, {At(5, 0)}, {{2, 3}, {6, 794}}},
        {"overlap", false, 800, {At(4, 1024), At(2, 1024)}, {{8, 792}}},
        {"up to the last sector", false, 400, {At(399, 256)}, {{2, 397}}},
        {"beyond the sector count", false, 400, {At(400, 256)}, {{2, 398}}},
        {"beyond the store", false, 800, {At(1023, 256)}, {{2, 798}}},
        {"in the catalogue", false, 800, {At(0, 256)}, {{2, 798}}},
        // Meant: such a length reads as some 16 million.
        {"a length above 196607", false, 800, {At(6, 0x30000)}, {{2, 4}}},
        {"full", false, 800, {At(2, 798 * 256)}, {}}};
    for (const auto& [what, watford, sectors, files, regions] : rows) {
        SCOPED_TRACE(what);
        DiscBuilder disc(1, watford, sectors);
        for (const Entry& file : files)
            disc.File(file);
        GetFreeSpaceMap(1);
        EXPECT_THAT(FreeRegions(1), ElementsAreArray(regions));
    }
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
    using Row = std::tuple<int, bool, const char*>;
    for (const auto& [tracks, watford, text] :
         {Row{80, true, "Drive 1 : 0 files(s), 203776 Bytes Free, 1024 Bytes Used"},
          Row{40, false, "Drive 1 : 0 files(s), 101888 Bytes Free, 512 Bytes Used"}}) {
        NewDisc(1, tracks, watford);
        ShowFree(1);
        EXPECT_EQ(status_lines[1], text);
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
