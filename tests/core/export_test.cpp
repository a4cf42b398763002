#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "exchange/drag_folder.h"
#include "exchange/export.h"
#include "exchange/import.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/host_faults.h"
#include "support/temp_folder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <map>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Export : public DiscTest {
  protected:
    TempFolder folder;
};

/// Exports all files of a drive.
std::vector<fs::path> ExportAll(int drive, const fs::path& folder) {
    std::vector<fs::path> data;
    for (const ListRow& row : SortedListFiles(drive)) {
        const auto files = ExportRow(row, drive, folder);
        EXPECT_TRUE(files.has_value()) << row.FileName;
        if (files)
            data.push_back(files->data);
    }
    return data;
}

/// The rows of a drive without the places of the files.
std::vector<std::string> AllButSectors(int drive) {
    std::vector<std::string> rows;
    for (const ListRow& row : SortedListFiles(drive))
        rows.push_back(row.FileName + row.Attr + row.Load + row.Exec + row.Size);
    return rows;
}

/// What a folder holds, by name.
std::map<std::string, std::string> Contents(const TempFolder& folder) {
    std::map<std::string, std::string> contents;
    for (const std::string& name : folder.Names())
        contents[name] = TextOf(folder.path() / name);
    return contents;
}

TEST_F(Export, AFileGoesOutWithItsSidecar) {
    DiscBuilder(1)
        .File({.name = "HELLO", .load = 0x1900, .exec = 0x8023, .length = 7, .sector = 3})
        .File({.name = "A/B", .locked = true, .load = 0x31900, .exec = 0x38023, .sector = 2})
        .Data(3, "PRINT 1 and no more");
    EXPECT_THAT(ExportAll(1, folder.path()),
                ElementsAre(folder.path() / "$.A_B", folder.path() / "$.HELLO"));
    EXPECT_THAT(folder.Names(), ElementsAre("$.A_B", "$.A_B.INF", "$.HELLO", "$.HELLO.INF"));
    EXPECT_EQ(TextOf(folder.path() / "$.HELLO"), "PRINT 1");
    EXPECT_EQ(TextOf(folder.path() / "$.HELLO.INF"), "$.HELLO    001900 008023 000007   \n");
    EXPECT_EQ(TextOf(folder.path() / "$.A_B"), "");
    EXPECT_EQ(TextOf(folder.path() / "$.A_B.INF"), "$.A/B      FF1900 FF8023 000000 L \n");
}

TEST_F(Export, TheCellsOfTheRowCountAndNotTheCatalogue) {
    DiscBuilder().Data(5, "five");
    ASSERT_TRUE(ExportRow({"$.X", "L", "0", "", "000004", "005"}, 0, folder.path()));
    EXPECT_EQ(TextOf(folder.path() / "$.X"), "five");
    EXPECT_EQ(TextOf(folder.path() / "$.X.INF"), "$.X        0  000004 L \n");
}

TEST_F(Export, ALengthBeyondTheBlockEndsThere) {
    DiscBuilder(0).Data(799, "last of drive 0");
    DiscBuilder(1).Data(0, "first of drive 1");
    const ListRow row{"$.BIG", " ", "000000", "000000", "FF0000", "31F"};
    ASSERT_TRUE(ExportRow(row, 0, folder.path()));
    ASSERT_TRUE(ExportRow({"$.OUT", " ", "0", "0", "FF0000", "3FF"}, 1, folder.path()));
    EXPECT_EQ(fs::file_size(folder.path() / "$.BIG"), 256 + 204800U);
    EXPECT_EQ(TextOf(folder.path() / "$.BIG").substr(256, 16), "first of drive 1");
    EXPECT_EQ(fs::file_size(folder.path() / "$.OUT"), 0U);
}

TEST_F(Export, AFileOfTheSameHostNameIsReplacedWithoutAQuestion) {
    DiscBuilder()
        .File({.name = "A/B", .length = 2, .sector = 3})
        .File({.name = "A:B", .length = 2, .sector = 2})
        .Data(2, "2")
        .Data(3, "3");
    folder.File("$.A_B", "old and longer");
    ExportAll(0, folder.path());
    EXPECT_THAT(folder.Names(), ElementsAre("$.A_B", "$.A_B.INF"));
    EXPECT_EQ(TextOf(folder.path() / "$.A_B"), std::string("2\0", 2));
    EXPECT_EQ(TextOf(folder.path() / "$.A_B.INF"), "$.A:B      000000 000000 000002   \n");
}

TEST_F(Export, WhatCannotBeWrittenIsNamedAndLeavesNothingHalfWritten) {
    DiscBuilder().File({.name = "X", .length = 600, .sector = 2});
    const ListRow row = ListFiles(0).front();
    {
        const FullDisc full(512);
        EXPECT_FALSE(ExportRow(row, 0, folder.path()));
    }
    EXPECT_THAT(desktop.TakeBoxTexts(), ElementsAre("Cannot write $.X: File too large"));
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_FALSE(ExportRow(row, 0, folder.path() / "gone"));
    EXPECT_THAT(desktop.TakeBoxTexts(), ElementsAre("Cannot write $.X: No such file or directory"));
    fs::create_directory(folder.path() / "$.X.INF");
    EXPECT_FALSE(ExportRow(row, 0, folder.path()));
    EXPECT_THAT(desktop.TakeBoxTexts(), ElementsAre("Cannot write $.X.INF: Is a directory"));
}

TEST_F(Export, WhatGoesOutComesBackAsTheSameEntry) {
    DiscBuilder(0)
        .File({.name = "LAST", .dir = 'Z', .length = 300, .sector = 0x120})
        .File({.name = "A/\\:", .locked = true, .load = 0x21234, .length = 0, .sector = 40})
        .File({.name = "a.B.C.D", .dir = '!', .exec = 0x3FFFF, .length = 1000, .sector = 20})
        .File({.name = "", .dir = '.', .load = 0x3FFFF, .length = 1, .sector = 8})
        .File({.name = "~\x7F", .dir = '/', .locked = true, .length = 256, .sector = 2})
        .Data(2, std::string(256, 'a'))
        .Data(8, "b")
        .Data(20, std::string(1000, 'c'))
        .Data(0x120, std::string(300, 'd'));
    const DiscBuilder blank(1);
    GetFreeSpaceMap(1);
    bool refused = false;
    for (const fs::path& file : ExportAll(0, folder.path()))
        refused |= ImportFile(1, file);
    EXPECT_FALSE(refused);
    EXPECT_EQ(AllButSectors(1), AllButSectors(0));
    const TempFolder again;
    ExportAll(1, again.path());
    EXPECT_EQ(Contents(again), Contents(folder));
}

TEST_F(Export, ADragOffersDataAndSidecarOfEachRowInAFolderOfItsOwn) {
    DiscBuilder().Fill(2).Data(2, "one");
    DragFolder drags;
    const auto files = drags.Export(ListFiles(0), 0);
    DiscBuilder().Fill(2).Data(2, "two");
    const fs::path again = drags.Export(ListFiles(0), 0).at(2);
    ASSERT_THAT(files, SizeIs(4));
    const fs::path drag = files[0].parent_path();
    EXPECT_THAT(files,
                ElementsAre(drag / "$.A0", drag / "$.A0.INF", drag / "$.A1", drag / "$.A1.INF"));
    EXPECT_EQ(TextOf(files[2]).substr(0, 3), "one");
    EXPECT_EQ(TextOf(again).substr(0, 3), "two");
}

TEST_F(Export, DraggedFilesLieInAPrivateFolderThatGoesWithTheProgram) {
    DiscBuilder().Fill(1);
    fs::path root;
    {
        DragFolder drags;
        root = drags.Export(ListFiles(0), 0).at(0).parent_path().parent_path();
        EXPECT_EQ(root.parent_path(), fs::temp_directory_path());
        EXPECT_EQ(fs::status(root).permissions(), fs::perms::owner_all);
        fs::remove_all(root); // as a tidy host may do
        EXPECT_THAT(drags.Export(ListFiles(0), 0), SizeIs(2));
    }
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(Export, ADragWithoutRoomOffersNothing) {
    DiscBuilder().Fill(2);
    DragFolder drags;
    const FullDisc full(100);
    EXPECT_THAT(drags.Export(ListFiles(0), 0), IsEmpty());
    EXPECT_THAT(desktop.TakeBoxTexts(), ElementsAre("Cannot write $.A0: File too large"));
}

} // namespace
} // namespace quoravel
