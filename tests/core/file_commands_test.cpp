#include "disc/catalogue.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr bool kOverride = true;
constexpr int kCycle = 260;
constexpr int kCount = 261;
constexpr int kFlags = 262;
constexpr int kEntry = 8;  ///< name entry of file 0
constexpr int kInfo = 264; ///< its information block
constexpr int kDrive1 = 204800;

int Byte(int offset) {
    return Module1::DiscImg.Byte(offset);
}

/// The seven name bytes of a slot and its directory byte, bit 7 included.
std::string StoredName(int entry = kEntry) {
    return BlockText(entry, 8);
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
    EXPECT_EQ(StoredName(kDrive1 + kEntry), "B      \xA4");
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
    DiscBuilder().File({.name = "A", .length = 0x3ABCD, .sector = 0x31F});
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
    DiscBuilder(1).Byte(kFlags, 0xFF);
    for (const int option : {0, 3, 1, 2}) {
        SetBootOption(1, option);
        EXPECT_EQ(Byte(kDrive1 + kFlags), 0xCF | option << 4) << "the other bits stay";
    }
    EXPECT_EQ(Byte(kDrive1 + kCycle), 0);
    EXPECT_FALSE(Module1::gDirty);
}

} // namespace
} // namespace quoravel
