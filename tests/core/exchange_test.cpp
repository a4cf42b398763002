#include "disc/catalogue.h"
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
#include <sys/stat.h>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr int kCycle = 260;
constexpr int kCount = 261;
constexpr int kSecondCount = 773;
constexpr int kEntry = 8; ///< name entry of file 0

int Byte(int offset) {
    return Module1::DiscImg.Byte(offset);
}

std::vector<std::string> Names(int drive) {
    std::vector<std::string> names;
    for (const ListRow& row : ListFiles(drive))
        names.push_back(row.FileName);
    return names;
}

/// A row of the list of a drive in one text.
std::string RowOf(int file, int drive = 0) {
    const ListRow row = ListFiles(drive).at(static_cast<std::size_t>(file));
    return row.FileName + " " + row.Attr + " " + row.Load + " " + row.Exec + " " + row.Size + " " +
           row.Sector;
}

/// Blank discs in both drives, and a folder with files to import.
class Import : public DiscTest {
  protected:
    Import() {
        for (const int drive : {1, 0})
            Disc(DiscBuilder(drive), drive);
    }

    /// Takes a disc that has been built into use.
    static void Disc(const DiscBuilder& /*built*/, int drive = 0) { GetFreeSpaceMap(drive); }

    [[nodiscard]] fs::path File(std::string_view name, std::size_t length = 256) const {
        return folder.File(name, std::string(length, 'x'));
    }

    /// Imports a file that is to be taken.
    void Take(const fs::path& file, int drive = 0) {
        EXPECT_FALSE(ImportFile(drive, file)) << file;
        EXPECT_THAT(desktop.TakeBoxTexts(), IsEmpty());
    }

    /// Imports a file that is to be refused: the disc and its tables stay. Gives the box.
    std::string Refused(const fs::path& file) {
        const auto before = BlockBytes();
        const auto regions = FreeRegions(0);
        Module1::gDirty = false;
        EXPECT_TRUE(ImportFile(0, file)) << file;
        EXPECT_EQ(BlockBytes(), before) << "the disc has changed";
        EXPECT_EQ(FreeRegions(0), regions);
        EXPECT_FALSE(Module1::gDirty);
        const auto boxes = desktop.TakeBoxTexts();
        return boxes.size() == 1 ? boxes.front() : "not one box";
    }

    TempFolder folder;
};

TEST_F(Import, AFileTakesItsSectorsAndAnEntry) {
    DiscBuilder disc(1);
    Disc(disc.Data(2, std::string(1024, 'o')), 1);
    Take(folder.File("HELLO", std::string(257, 'x')), 1);
    EXPECT_EQ(RowOf(0, 1), "$.HELLO   000000 000000 000101 002");
    EXPECT_EQ(BlockText(204800 + 512, 1024),
              std::string(257, 'x') + std::string(255, '\0') + std::string(512, 'o'));
    EXPECT_EQ(Byte(204800 + kCycle), 1);
    EXPECT_TRUE(Module1::gDirty);
    EXPECT_THAT(FreeRegions(1), ElementsAre(std::pair(4, 796)));
    EXPECT_THAT(Names(0), IsEmpty()) << "the drive is that of the drop, not the current one";
    const auto before = BlockBytes();
    Take(folder.path()); // folders and sidecars are passed over in silence
    Take(folder.path() / "gone.inf");
    EXPECT_EQ(BlockBytes(), before);
}

TEST_F(Import, NamesComeFromTheSidecarOrTheHost) {
    using Row = std::tuple<const char*, const char*, const char*>;
    const char* const none = nullptr;
    fs::create_symlink("nowhere", folder.path() / "DANGLES.INF");
    for (const auto& [file, sidecar, listed] :
         {Row{"README.TXT", none, "$.README   000000 000000 000100 002"},
          Row{"DANGLES", none, "$.DANGLES   000000 000000 000100 002"},
          Row{"LONG", "A_B        FFFF1900 FFFF8023 00000100 Locked\r\nrest",
              "A.B L FF1900 FF8023 000100 002"},
          Row{"FIVE", "$.FIVE     001900 008023 00123", "$.FIVE   001900 008023 001203 002"},
          Row{"DIGITS", "$.DIGITS   1G19x0  78023 zz0100   ",
              "$.DIGITS   011900 008023 000100 002"},
          Row{"A B", "$.A B      0E1900 018023 000100   ", "$.A_B   021900 018023 000100 002"},
          // Meant: names are not checked for illegal characters, and the lock is added to the
          // directory, a byte that wraps.
          Row{"a*#:@^-", none, "$.a*#:@^-   000000 000000 000100 002"},
          Row{"\xC3\xA9t\xC3\xA9", none, "$.iti   000000 000000 000100 002"},
          Row{"X", "\xE9.X        000000 000000 000100 L", "i.X   000000 000000 000100 002"},
          // Meant: a leading dot is the directory, and the next character is lost.
          Row{".HIDDEN", none, "..IDDEN   000000 000000 000100 002"},
          // Meant: a sidecar without a usable line leaves a file without a name.
          Row{"COLUMNS", "$.COLUMNS x001900 008023 000100", "$.   000000 000000 000100 002"},
          Row{"EMPTY", "", "$.   000000 000000 000100 002"}}) {
        SCOPED_TRACE(file);
        Disc(DiscBuilder());
        if (sidecar != none)
            folder.File(std::string(file) + ".INF", std::string_view(sidecar));
        Take(File(file));
        EXPECT_EQ(RowOf(0), listed);
    }
}

TEST_F(Import, TheLowestRegionThatFitsWins) {
    Disc(DiscBuilder().File(At(20, 256, "HIGH")).File(At(4, 256, "LOW")).File(At(2, 256, "ROOT")));
    Take(File("TWO", 257));
    Take(File("ONE", 256));
    Take(File("NONE", 0));
    EXPECT_THAT(Names(0), ElementsAre("$.HIGH", "$.NONE", "$.TWO", "$.LOW", "$.ONE", "$.ROOT"));
    EXPECT_EQ(RowOf(1), "$.NONE   000000 000000 000000 007");
    EXPECT_EQ(RowOf(2), "$.TWO   000000 000000 000101 005");
    EXPECT_THAT(FreeRegions(0), ElementsAre(std::pair(8, 12), std::pair(21, 779)))
        << "a file of no bytes takes a sector";
}

TEST_F(Import, RefusalsComeInTheirOrder) {
    const fs::path fits = File("A1", 0);
    EXPECT_EQ(Refused(File("BIG", 798 * 256 + 1)), "Not Enough Free Contiguous Space on Disc");
    const fs::path huge = File("HUGE");
    fs::resize_file(huge, std::uintmax_t{10} << 30U); // is not read
    EXPECT_EQ(Refused(huge), "Not Enough Free Contiguous Space on Disc");
    Disc(DiscBuilder(0, false, 33).Fill(31));
    EXPECT_EQ(Refused(fits), "Not Enough Free Contiguous Space on Disc");
    Disc(DiscBuilder().Fill(31));
    EXPECT_EQ(Refused(fits), "Directory Full");
    Disc(DiscBuilder().Fill(2));
    EXPECT_EQ(Refused(File("a1.txt")), "File $.a1 Already Exists");
    Disc(DiscBuilder(0, DiscBuilder::kWatford).Fill(31, 31));
    EXPECT_EQ(Refused(fits), "Directory Full");
    Disc(DiscBuilder(0, DiscBuilder::kWatford).Fill(5, 31));
    EXPECT_EQ(Refused(fits), "File $.A1 Already Exists");
    EXPECT_EQ(Refused(File("NEW")), "Second Directory Full - Please Compact Disc");
}

TEST_F(Import, AFullFirstCatalogueSendsTheHighestFileToTheSecond) {
    Disc(DiscBuilder(0, DiscBuilder::kWatford).Fill(31));
    Take(File("NEW"));
    EXPECT_EQ(GetName(0, 31), "$.NEW");
    EXPECT_EQ(Byte(kSecondCount), 8);
}

// What follows looks odd and is meant.

TEST_F(Import, MeantTheSidecarsLengthCountsInTheCatalogueOnly) {
    folder.File("LIAR.INF", "$.LIAR     000000 000000 000500   ");
    Take(File("LIAR", 10));
    EXPECT_EQ(ListFiles(0).at(0).Size, "000500");
    EXPECT_EQ(BlockText(512, 12), "xxxxxxxxxx" + std::string(2, '\0'));
    folder.File("SMALL.INF", "$.SMALL    000000 000000 000001   ");
    EXPECT_EQ(Refused(File("SMALL", 793 * 256 + 1)), "Not Enough Free Contiguous Space on Disc")
        << "the real length needs the room";
    folder.File("WIDE.INF", "$.WIDE     0E1900 031900 031234   ");
    Take(File("WIDE"));
    EXPECT_EQ(RowOf(0), "$.WIDE   021900 FF1900 FF1234 007");
    EXPECT_THAT(FreeRegions(0), IsEmpty()) << "such a length reads as more than the disc";
}

TEST_F(Import, MeantTheLowestFileOfAllHeadsTheCatalogue) {
    Disc(DiscBuilder().File(At(20, 256, "HIGH")).File(At(10, 256, "LOW")));
    Take(File("LOWEST"));
    EXPECT_THAT(Names(0), ElementsAre("$.LOWEST", "$.HIGH", "$.LOW"));
}

TEST_F(Import, MeantAFullFirstCatalogueCanLoseItsLastEntry) {
    DiscBuilder disc(0, DiscBuilder::kWatford);
    disc.File(At(100, 256, "TOP"));
    for (int i = 1; i < 31; ++i)
        disc.File(At(34 - i, 256, "A" + std::to_string(i)));
    Disc(disc);
    Take(File("NEW"));
    EXPECT_EQ(Byte(kCount), 0) << "248 and 8 are 0 in a byte";
    EXPECT_EQ(BlockText(kEntry + 8, 8), "NEW    $");
    EXPECT_EQ(BlockText(kEntry + 240, 8), "A29    $") << "A30 is lost";
}

TEST_F(Import, MeantAnEmptyFirstCatalogueTakesTheSlotFoundInTheSecond) {
    Disc(DiscBuilder(0, DiscBuilder::kWatford)
             .SecondFile(At(80, 256, "B0"))
             .SecondFile(At(4, 256, "B1")));
    Take(File("NEW", 0));
    EXPECT_EQ(Byte(kCount), 8);
    EXPECT_EQ(Byte(kSecondCount), 16);
    EXPECT_EQ(BlockText(kEntry + 8, 8), "NEW    $") << "slot 1, although the count says 1";
}

TEST_F(Import, MeantACountBeyondFullIsNotFull) {
    Disc(DiscBuilder().Fill(31).Byte(kCount, 249));
    Take(File("NEW"));
    EXPECT_EQ(Byte(kCount), 1);
    EXPECT_EQ(BlockText(kEntry, 8), "NEW    $");
}

// Hosts and files that do not do as expected.

TEST_F(Import, WhatCannotBeReadIsNamedAndLeavesTheDiscUnchanged) {
    ASSERT_EQ(::mkfifo((folder.path() / "PIPE").c_str(), 0666), 0);
    ASSERT_EQ(::mkfifo((folder.path() / "DATA.INF").c_str(), 0666), 0);
    EXPECT_EQ(Refused(folder.path() / "GONE"), "Cannot read GONE: No such file or directory");
    EXPECT_EQ(Refused(folder.path() / "PIPE"), "Cannot read PIPE: Not a regular file");
    EXPECT_EQ(Refused(File("DATA")), "Cannot read DATA.INF: Not a regular file");
}

// --- Export.

using Export = Import;

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
    EXPECT_EQ(TextOf(folder.path() / "$.X"), "five");
    EXPECT_EQ(TextOf(folder.path() / "$.X.INF"), "$.X        0  000004 L \n");
    EXPECT_EQ(fs::file_size(folder.path() / "$.BIG"), 256 + 204800U);
    EXPECT_EQ(TextOf(folder.path() / "$.BIG").substr(256, 16), "first of drive 1");
}

TEST_F(Export, WhatCannotBeWrittenIsNamedAndLeavesNothingHalfWritten) {
    DiscBuilder().File(At(2, 600, "X"));
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
