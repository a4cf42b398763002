#include "disc/free_space.h"
#include "disc/listing.h"
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
using testing::Pair;

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

/// What a folder holds, by name.
std::map<std::string, std::string> Contents(const TempFolder& folder) {
    std::map<std::string, std::string> contents;
    for (const std::string& name : folder.Names())
        contents[name] = TextOf(folder.path() / name);
    return contents;
}

TEST_F(Export, AFileGoesOutWithItsSidecarAndReplacesWhatHasItsHostName) {
    DiscBuilder(1)
        .File({.name = "HELLO", .load = 0x1900, .exec = 0x8023, .length = 7, .sector = 3})
        .File({.name = "A/B", .locked = true, .load = 0x31900, .exec = 0x38023, .sector = 2})
        .Data(3, "PRINT 1 and no more");
    folder.File("$.A_B", "old and longer");
    EXPECT_THAT(ExportAll(1, folder.path()),
                ElementsAre(folder.path() / "$.A_B", folder.path() / "$.HELLO"));
    EXPECT_THAT(Contents(folder),
                ElementsAre(Pair("$.A_B", ""),
                            Pair("$.A_B.INF", "$.A/B      FF1900 FF8023 000000 L \n"),
                            Pair("$.HELLO", "PRINT 1"),
                            Pair("$.HELLO.INF", "$.HELLO    001900 008023 000007   \n")));
}

TEST_F(Export, TheCellsOfTheRowCountAndALengthBeyondTheBlockEndsThere) {
    DiscBuilder(0).Data(5, "five");
    DiscBuilder(1).Data(0, "first of drive 1");
    ASSERT_TRUE(ExportRow({"$.X", "L", "0", "", "000004", "005"}, 0, folder.path()));
    ASSERT_TRUE(ExportRow({"$.BIG", " ", "0", "0", "FF0000", "31F"}, 0, folder.path()));
    ASSERT_TRUE(ExportRow({"$.OUT", " ", "0", "0", "FF0000", "3FF"}, 1, folder.path()));
    EXPECT_EQ(TextOf(folder.path() / "$.X"), "five");
    EXPECT_EQ(TextOf(folder.path() / "$.X.INF"), "$.X        0  000004 L \n");
    EXPECT_EQ(fs::file_size(folder.path() / "$.BIG"), 256 + 204800U);
    EXPECT_EQ(TextOf(folder.path() / "$.BIG").substr(256, 16), "first of drive 1");
    EXPECT_EQ(fs::file_size(folder.path() / "$.OUT"), 0U);
}

TEST_F(Export, WhatCannotBeWrittenIsNamedAndLeavesNothingHalfWritten) {
    DiscBuilder().File({.name = "X", .length = 600, .sector = 2});
    const std::vector<ListRow> rows = ListFiles(0);
    {
        const FullDisc full(512);
        EXPECT_FALSE(ExportRow(rows[0], 0, folder.path()));
        EXPECT_THAT(DragFolder().Export(rows, 0), IsEmpty());
    }
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_FALSE(ExportRow(rows[0], 0, folder.path() / "gone"));
    fs::create_directory(folder.path() / "$.X.INF");
    EXPECT_FALSE(ExportRow(rows[0], 0, folder.path()));
    EXPECT_THAT(desktop.TakeBoxTexts(),
                ElementsAre("Cannot write $.X: File too large", "Cannot write $.X: File too large",
                            "Cannot write $.X: No such file or directory",
                            "Cannot write $.X.INF: Is a directory"));
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
    for (const fs::path& file : ExportAll(0, folder.path()))
        EXPECT_FALSE(ImportFile(1, file)) << file;
    const TempFolder again;
    ExportAll(1, again.path());
    EXPECT_EQ(Contents(again).size(), 10U);
    EXPECT_EQ(Contents(again), Contents(folder)) << "data, names, addresses and locks";
}

TEST_F(Export, DraggedFilesLieInAPrivateFolderThatGoesWithTheProgram) {
    DiscBuilder().Fill(2).Data(2, "one");
    fs::path root;
    {
        DragFolder drags;
        const auto files = drags.Export(ListFiles(0), 0);
        DiscBuilder().Fill(2).Data(2, "two");
        EXPECT_EQ(TextOf(drags.Export(ListFiles(0), 0).at(2)).substr(0, 3), "two");
        const fs::path drag = files.at(0).parent_path();
        EXPECT_THAT(
            files, ElementsAre(drag / "$.A0", drag / "$.A0.INF", drag / "$.A1", drag / "$.A1.INF"));
        EXPECT_EQ(TextOf(files[2]).substr(0, 3), "one") << "each drag has its own";
        root = drag.parent_path();
        EXPECT_EQ(root.parent_path(), fs::temp_directory_path());
        EXPECT_EQ(fs::status(root).permissions(), fs::perms::owner_all);
        fs::remove_all(root); // as a tidy host may do
        EXPECT_EQ(drags.Export(ListFiles(0), 0).size(), 4U);
    }
    EXPECT_FALSE(fs::exists(root));
}

} // namespace
} // namespace quoravel
