#include "disc/catalogue.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "disc/listing.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

constexpr int kDrive1 = 204800;

class Catalogue : public DiscTest {};

TEST_F(Catalogue, MeantEighthsOfAFileAddUpOverBothCatalogues) {
    DiscBuilder(0, DiscBuilder::kWatford).Byte(261, 12).Byte(773, 12);
    EXPECT_EQ(GetNumberOfDirEntries(0), 3);
    EXPECT_EQ(GetDirOffset(0, 1), 520) << "everywhere else 12 eighths are one file";
    DiscBuilder(0).Byte(261, 12).Byte(773, 12);
    EXPECT_EQ(GetNumberOfDirEntries(0), 1) << "a plain disc has no second catalogue";
    DiscBuilder(0, DiscBuilder::kWatford).Byte(519, 0xAB);
    EXPECT_FALSE(IsWatfordDFS(0)) << "all eight marker bytes count";
}

TEST_F(Catalogue, TheCycleNumberCountsInDecimalAndMarksTheDiscAsChanged) {
    using Row = std::tuple<int, int>;
    for (const auto& [was, is] :
         {Row{0x00, 0x01}, Row{0x09, 0x10}, Row{0x99, 0x00}, Row{0xFF, 0x66}, Row{0x0F, 0x16}}) {
        DiscBuilder(1).Byte(260, was);
        Module1::gDirty = false;
        UpdateSequenceNumber(1);
        EXPECT_EQ(Module1::DiscImg.Byte(kDrive1 + 260), is) << was;
        EXPECT_TRUE(Module1::gDirty);
    }
}

TEST_F(Catalogue, ATitleEndsAtItsFirstNulAndLosesBlanksAndTopBits) {
    using Row = std::tuple<std::string, const char*>;
    for (const auto& [bytes, title] : {Row{"TWELVE CHARS"s, "TWELVE CHARS"},
                                       Row{"\xC1\xE2\x80Z"s, "Ab"}, Row{"  A \0   B"s, "A"}}) {
        DiscBuilder(1).Title(bytes);
        EXPECT_EQ(GetTitle(1), title) << bytes;
    }
}

TEST_F(Catalogue, ANewTitleIsTrimmedCutAndPaddedWithNuls) {
    using Row = std::tuple<std::string_view, std::string, std::string>;
    for (const auto& [typed, first, rest] :
         {Row{"  Games 1 ", "Games 1\0"s, "\0\0\0\0"s}, Row{"THIRTEEN CHAR", "THIRTEEN", " CHA"},
          Row{"~\x7F", "~\x7F\0\0\0\0\0\0"s, "\0\0\0\0"s}}) {
        SCOPED_TRACE(typed);
        DiscBuilder(1).Title("OLD TITLE OF").Byte(260, 0x41).Byte(261, 8);
        Module1::gDirty = false;
        SetTitle(1, typed);
        EXPECT_EQ(BlockText(kDrive1, 8), first);
        EXPECT_EQ(BlockText(kDrive1 + 256, 6), rest + "\x42\x08");
        EXPECT_TRUE(Module1::gDirty);
    }
    EXPECT_THAT(desktop.boxes, IsEmpty());
}

TEST_F(Catalogue, ARefusedTitleChangesNothing) {
    std::vector<std::pair<std::string, std::string>> rows{{" tab\there ", "tab\there"},
                                                          {"Caf\xE9", "Caf\xC3\xA9"}};
    for (const char c : "-.:*#$&@^\x1F\r"s)
        rows.emplace_back("A"s + c, "A"s + c);
    const auto before = BlockBytes();
    for (const auto& [typed, shown] : rows) {
        SetTitle(0, typed);
        EXPECT_THAT(desktop.TakeBoxTexts(),
                    ElementsAre("Title " + shown + " Contains Illegal Characters"));
    }
    EXPECT_EQ(BlockBytes(), before);
    EXPECT_FALSE(Module1::gDirty);
}

TEST_F(Catalogue, NamesAreFoundWhateverTheirCaseUpToANulDirectory) {
    DiscBuilder(1, DiscBuilder::kWatford)
        .File({.name = "HELLO"})
        .File({.name = "a b", .dir = 'x', .locked = true})
        .File({.name = "hello"})
        .SecondFile({.name = "\xC8IGH\xA0", .dir = 'B'})
        .SecondFile({.name = "B", .dir = '\0'})
        .SecondFile({.name = "C"});
    EXPECT_EQ(GetName(1, 1), "x.a b");
    EXPECT_EQ(GetName(1, 3), "B.HIGH") << "the top bit of each byte does not count";
    EXPECT_EQ(GetPos(1, "$.heLLo"), 0) << "the first match wins";
    EXPECT_EQ(GetPos(1, "X.A B"), 1);
    EXPECT_EQ(GetPos(1, "b.high"), 3);
    for (const std::string& none : {"HELLO"s, "\0.B"s, "$.C"s})
        EXPECT_EQ(GetPos(1, none), -1) << none;
    EXPECT_EQ(GetPos(0, "$.HELLO"), -1) << "nor on the other drive";
}

TEST_F(Catalogue, MeantARowCutAtAReturnIsNotFoundByItsName) {
    DiscBuilder(0).File({.name = " AB\rCD"}).File({.name = "\x80XY"}).File({.name = "C"});
    const auto rows = ListFiles(0); // which end at a name that starts with NUL
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].FileName, "$.AB");
    EXPECT_EQ(GetPos(0, "$.AB"), -1);
}

// --- Commands on a file.

constexpr bool kOverride = true;
constexpr int kCycle = 260;
constexpr int kCount = 261;
constexpr int kInfo = 264; ///< its information block

int Byte(int offset) {
    return Module1::DiscImg.Byte(offset);
}

/// The seven name bytes of file 0 and its directory byte, bit 7 included.
std::string StoredName(int drive = 0) {
    return BlockText(drive * kDriveBytes + 8, 8);
}

class FileCommands : public DiscTest {
  protected:
    /// Runs a command that is to be refused: the block and gDirty must stay as they are. Gives the
    /// texts of the boxes.
    template<class Command>
    std::vector<std::string> Refused(Command command) {
        const auto before = BlockBytes();
        Module1::gDirty = false;
        EXPECT_TRUE(command());
        EXPECT_EQ(BlockBytes(), before) << "the disc has changed";
        EXPECT_FALSE(Module1::gDirty);
        return desktop.TakeBoxTexts();
    }
};

TEST_F(FileCommands, LockAndUnlockChangeOnlyTheLock) {
    DiscBuilder().File({.name = "HELLO"});
    LockFile("$.hello");
    LockFile("$.HELLO");
    EXPECT_EQ(StoredName(), "HELLO  \xA4");
    UnlockFile("$.HELLO");
    EXPECT_EQ(StoredName(), "HELLO  $");
    EXPECT_EQ(Byte(kCycle), 3) << "meant: to lock a locked file counts as a change";
}

TEST_F(FileCommands, ANameThatIsNotThereIsPassedOverInSilence) {
    DiscBuilder().File({.name = "A"});
    const auto before = BlockBytes();
    LockFile("$.B");
    SetFileAttr("$.B", "001900", "008023");
    EXPECT_FALSE(DeleteFile("$.B", kOverride));
    EXPECT_TRUE(RenameFile("$.C", "$.B", kOverride));
    EXPECT_EQ(BlockBytes(), before);
    EXPECT_THAT(desktop.boxes, IsEmpty());
}

TEST_F(FileCommands, CommandsActOnTheCurrentDrive) {
    DiscBuilder(0).File({.name = "A"});
    DiscBuilder(1).File({.name = "A", .sector = 2});
    GetFreeSpaceMap(1);
    const auto drive_0 = BlockBytes(0, kDriveBytes);
    Module1::cur_drive = 1;
    LockFile("$.A");
    SetFileAttr("$.A", "001900", "008023");
    RenameFile("$.B", "$.A", kOverride);
    EXPECT_EQ(StoredName(1), "B      \xA4");
    DeleteFile("$.B", kOverride);
    EXPECT_EQ(Byte(kDrive1 + kCycle), 4);
    EXPECT_THAT(FreeRegions(1), ElementsAre(std::pair(2, 798)));
    EXPECT_EQ(BlockBytes(0, kDriveBytes), drive_0);
}

TEST_F(FileCommands, DeletingMovesAllLaterSlotsUp) {
    DiscBuilder().Fill(31).Data(2, "the lowest file");
    EXPECT_FALSE(DeleteFile("$.A0", false));
    EXPECT_EQ(Byte(kCount), 240);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(GetName(0, i), "$.A" + std::to_string(i + 1));
    EXPECT_EQ(GetSector(kInfo), "01F") << "the information moves with the name";
    EXPECT_EQ(BlockText(248, 8) + BlockText(504, 8), std::string(16, '\0'));
    EXPECT_FALSE(DeleteFile("$.A30", false));
    EXPECT_EQ(BlockText(512, 15), "the lowest file") << "data stay where they were";
}

TEST_F(FileCommands, DeletingInOneCatalogueLeavesTheOtherAlone) {
    DiscBuilder(0, DiscBuilder::kWatford).Fill(2, 2);
    DeleteFile("$.B0", false);
    EXPECT_EQ(Byte(kCycle), 1) << "the cycle number is that of the first catalogue";
    EXPECT_EQ(Byte(512 + kCycle), 0);
    EXPECT_EQ(Byte(kCount), 16);
    DeleteFile("$.A0", false);
    EXPECT_EQ(Byte(kCount), 8);
    EXPECT_EQ(GetName(0, 1), "$.B1");
    // Meant: a count below one file wraps around. 4 and 4 make one file, in the second catalogue.
    DiscBuilder(0, DiscBuilder::kWatford).SecondFile({.name = "X"}).Byte(261, 4).Byte(773, 4);
    EXPECT_FALSE(DeleteFile("$.X", false));
    EXPECT_EQ(Byte(773), 252);
}

TEST_F(FileCommands, ALockIsNoObstacleUnderTheOverride) {
    DiscBuilder().File({.name = "A", .locked = true}).File({.name = "B", .locked = true});
    EXPECT_THAT(Refused([] { return DeleteFile("$.a", false); }),
                ElementsAre("Cannot Delete Locked File : $.a"));
    EXPECT_THAT(Refused([] { return RenameFile("$.C", "$.A", false); }),
                ElementsAre("Cannot Rename Locked File : $.A"));
    EXPECT_FALSE(RenameFile("$.C", "$.A", kOverride));
    EXPECT_EQ(StoredName(), "C      \xA4") << "a renamed file stays locked";
    EXPECT_FALSE(DeleteFile("$.B", kOverride));
    EXPECT_EQ(Byte(kCount), 8);
}

TEST_F(FileCommands, RenamingShapesTheTypedName) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [typed, stored] :
         {Row{"HELLOWORLD", "HELLOWO$"}, Row{"B.GAME", "GAME   B"}, Row{"  $.PAD ", "PAD    $"},
          Row{"$.A.B", "A.B    $"}, Row{"X.ABCDEFGHI", "ABCDEFGX"}, Row{"..", "       ."},
          Row{"   ", "       $"}, Row{"$.\x7F~!", "\x7F~!    $"}}) {
        SCOPED_TRACE(typed);
        DiscBuilder().File({.name = "OLD"});
        EXPECT_FALSE(RenameFile(typed, "$.OLD", false));
        EXPECT_EQ(StoredName(), stored);
        EXPECT_EQ(Byte(kCycle), 1);
    }
}

TEST_F(FileCommands, RenamingRefusesNamesInTheOrderOfItsChecks) {
    DiscBuilder().File({.name = "OLD"}).File({.name = "A-B"});
    const auto refuse = [&](const std::string& typed, const std::string& told) {
        SCOPED_TRACE(typed);
        EXPECT_THAT(Refused([&] { return RenameFile(typed, "$.OLD", false); }), ElementsAre(told));
    };
    refuse("$.old", "$.old Already Exists");
    refuse("A-B", "$.A-B Already Exists");
    for (const char* typed :
         {"$.A B", "$.A-C", "$.A:", "*.A", "$.#", "$.&", "$.@", "$.^", "$.A\tB", "AB.-"})
        refuse(typed, "File " + std::string(typed) + " Contains Illegal Characters");
    refuse("$.\xE9", "File $.\xC3\xA9 Contains Illegal Characters");
    refuse("AB.C", "File AB.C Does Not Contain A Valid Directory Name");
    refuse(".", "File . Does Not Contain A Valid Directory Name");
}

TEST_F(FileCommands, AddressesAreStoredWithEighteenBits) {
    DiscBuilder().File(At(0x31F, 0x3ABCD, "A"));
    using Row = std::tuple<const char*, const char*, const char*>;
    // Meant: the high bits of the load address follow those of the exec address.
    for (const auto& [load, exec, stored] :
         {Row{"FE1900", "FE8023", "021900 028023"}, Row{"000001", "000002", "000001 000002"},
          Row{"FF1900", "008023", "001900 008023"}, Row{"001900", "FF8023", "FF1900 FF8023"}}) {
        SetFileAttr("$.A", load, exec);
        EXPECT_EQ(GetLoad(kInfo) + " " + GetExec(kInfo), stored);
    }
    EXPECT_EQ(GetSize(kInfo) + " " + GetSector(kInfo), "FFABCD 31F");
}

TEST_F(FileCommands, TypedAddressesAreCheckedInOrder) {
    using Row = std::tuple<std::string, std::string, const char*>;
    for (auto [load, exec, told] :
         {Row{"1234567", "", "Load Address Is Wrong Length"},
          Row{"", "0", "Load Address Is Wrong Length"},
          Row{"12G", "1234567", "Exec Address Is Wrong Length"},
          Row{"12G", "x", "Load Address Contains Illegal Characters"},
          Row{"1900", " 8023", "Exec Address Contains Illegal Characters"}})
        EXPECT_EQ(CheckAddresses(load, exec), told) << load << "," << exec;
    std::string load = "19";
    std::string exec = "ff8023";
    EXPECT_EQ(CheckAddresses(load, exec), std::nullopt);
    EXPECT_EQ(load + " " + exec, "000019 FF8023") << "padded and in capitals";
}

TEST_F(FileCommands, MeantABootOptionIsNoChangeOfTheDisc) {
    DiscBuilder(1).Byte(262, 0xFF);
    for (const int option : {0, 3, 1, 2}) {
        SetBootOption(1, option);
        EXPECT_EQ(Byte(kDriveBytes + 262), 0xCF | option << 4) << "the other bits stay";
    }
    EXPECT_EQ(Byte(kDrive1 + kCycle), 0);
    EXPECT_FALSE(Module1::gDirty);
}

} // namespace
} // namespace quoravel
