#include "disc/catalogue.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"

#include <gmock/gmock.h>
#include <random>

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
    EXPECT_EQ(StoredName(), "HELLO  \xA4");
    UnlockFile("$.HELLO");
    EXPECT_EQ(StoredName(), "HELLO  $");
    EXPECT_EQ(Byte(kCycle), 2);
    EXPECT_TRUE(Module1::gDirty);
}

TEST_F(FileCommands, MeantLockingALockedFileCountsAsAChange) {
    DiscBuilder().File({.name = "A"});
    LockFile("$.A");
    LockFile("$.A");
    EXPECT_EQ(Byte(kCycle), 2);
}

TEST_F(FileCommands, ANameThatIsNotThereIsPassedOverInSilence) {
    DiscBuilder().File({.name = "A"});
    const auto before = BlockBytes();
    LockFile("$.B");
    UnlockFile("$.B");
    SetFileAttr("$.B", "001900", "008023");
    EXPECT_FALSE(DeleteFile("$.B", kOverride));
    EXPECT_TRUE(RenameFile("$.C", "$.B", kOverride));
    EXPECT_EQ(BlockBytes(), before);
    EXPECT_THAT(desktop.boxes, IsEmpty());
}

TEST_F(FileCommands, CommandsActOnTheCurrentDrive) {
    DiscBuilder(0).File({.name = "A"});
    DiscBuilder(1).File({.name = "A", .sector = 2});
    GetFreeSpaceMap(0);
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
    GetFreeSpaceMap(0);
    EXPECT_FALSE(DeleteFile("$.A0", false));
    EXPECT_EQ(Byte(kCount), 240);
    EXPECT_EQ(Byte(kCycle), 1);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(GetName(0, i), "$.A" + std::to_string(i + 1));
    EXPECT_EQ(GetSector(kInfo), "01F") << "the information moves with the name";
    EXPECT_EQ(BlockText(248, 8), std::string(8, '\0'));
    EXPECT_EQ(BlockText(504, 8), std::string(8, '\0'));
    EXPECT_THAT(FreeRegions(0), ElementsAre(std::pair(32, 768)));
    EXPECT_FALSE(DeleteFile("$.A30", false));
    EXPECT_EQ(BlockText(512, 15), "the lowest file") << "data stay where they were";
}

TEST_F(FileCommands, DeletingTheOnlyFileLeavesNothingOfIt) {
    DiscBuilder().File({.name = "A", .load = 0x1900, .length = 10, .sector = 2});
    DeleteFile("$.A", false);
    EXPECT_EQ(Byte(kCount), 0);
    EXPECT_EQ(StoredName(), std::string(8, '\0'));
    EXPECT_EQ(BlockText(kInfo, 8), std::string(8, '\0'));
}

TEST_F(FileCommands, DeletingInTheSecondCatalogueLeavesTheFirstAlone) {
    DiscBuilder(0, DiscBuilder::kWatford).Fill(2, 2);
    DeleteFile("$.B0", false);
    EXPECT_EQ(Byte(kCount), 16);
    EXPECT_EQ(Byte(512 + kCount), 8);
    EXPECT_EQ(GetName(0, 2), "$.B1");
    EXPECT_EQ(Byte(kCycle), 1) << "the cycle number is that of the first catalogue";
    EXPECT_EQ(Byte(512 + kCycle), 0);
    DeleteFile("$.A0", false);
    EXPECT_EQ(Byte(kCount), 8) << "the first catalogue is not filled from the second";
    EXPECT_EQ(GetName(0, 1), "$.B1");
}

TEST_F(FileCommands, MeantACountBelowOneFileWrapsAround) {
    // 4 and 4 make one file that lies in the second catalogue.
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
    struct Row {
        const char* typed;
        const char* stored; ///< name and directory byte
    };

    for (const Row& r :
         {Row{"b", "b      $"}, Row{"HELLOWORLD", "HELLOWO$"}, Row{"B.GAME", "GAME   B"},
          Row{"  $.PAD ", "PAD    $"}, Row{"$.A$B", "A$B    $"}, Row{"$.A.B", "A.B    $"},
          Row{"X.ABCDEFGHI", "ABCDEFGX"}, Row{"..", "       ."}, Row{"   ", "       $"},
          Row{"$.\x7F~!", "\x7F~!    $"}}) {
        SCOPED_TRACE(r.typed);
        DiscBuilder().File({.name = "OLD"});
        EXPECT_FALSE(RenameFile(r.typed, "$.OLD", false));
        EXPECT_EQ(StoredName(), r.stored);
        EXPECT_EQ(Byte(kCycle), 1);
    }
}

TEST_F(FileCommands, RenamingRefusesNamesInTheOrderOfItsChecks) {
    struct Row {
        const char* typed;
        const char* told;
    };

    DiscBuilder().File({.name = "OLD"}).File({.name = "A-B"}).File({.name = "\x7F", .dir = 'Q'});
    for (const Row& r :
         {Row{"$.OLD", "$.OLD Already Exists"}, Row{"$.old", "$.old Already Exists"},
          Row{"A-B", "$.A-B Already Exists"}, Row{"A B", "File $.A B Contains Illegal Characters"},
          Row{"$.A-C", "File $.A-C Contains Illegal Characters"},
          Row{"$.A:", "File $.A: Contains Illegal Characters"},
          Row{"*.A", "File *.A Contains Illegal Characters"},
          Row{"$.#&@^", "File $.#&@^ Contains Illegal Characters"},
          Row{"$.A\tB", "File $.A\tB Contains Illegal Characters"},
          Row{"$.\xE9", "File $.\xC3\xA9 Contains Illegal Characters"},
          Row{"AB.-", "File AB.- Contains Illegal Characters"},
          Row{"AB.C", "File AB.C Does Not Contain A Valid Directory Name"},
          Row{".", "File . Does Not Contain A Valid Directory Name"}}) {
        SCOPED_TRACE(r.typed);
        EXPECT_THAT(Refused([&] { return RenameFile(r.typed, "$.OLD", false); }),
                    ElementsAre(r.told));
    }
}

TEST_F(FileCommands, AddressesAreStoredWithEighteenBits) {
    DiscBuilder().File({.name = "A", .length = 0x3ABCD, .sector = 0x31F});
    SetFileAttr("$.A", "FE1900", "FE8023");
    EXPECT_EQ(GetLoad(kInfo), "021900");
    EXPECT_EQ(GetExec(kInfo), "028023");
    SetFileAttr("$.A", "000001", "000002");
    EXPECT_EQ(GetLoad(kInfo), "000001");
    EXPECT_EQ(GetExec(kInfo), "000002");
    EXPECT_EQ(GetSize(kInfo), "FFABCD");
    EXPECT_EQ(GetSector(kInfo), "31F");
    EXPECT_EQ(Byte(kCycle), 2);
}

TEST_F(FileCommands, MeantHighLoadBitsFollowTheExecText) {
    DiscBuilder().File({.name = "A"});
    SetFileAttr("$.A", "FF1900", "008023");
    EXPECT_EQ(GetLoad(kInfo), "001900");
    SetFileAttr("$.A", "001900", "FF8023");
    EXPECT_EQ(GetLoad(kInfo), "FF1900");
    EXPECT_EQ(GetExec(kInfo), "FF8023");
}

TEST_F(FileCommands, TypedAddressesArePaddedAndPutInCapitals) {
    std::string load = "19";
    std::string exec = "ff8023";
    EXPECT_EQ(CheckAddresses(load, exec), std::nullopt);
    EXPECT_EQ(load, "000019");
    EXPECT_EQ(exec, "FF8023");
}

TEST_F(FileCommands, TypedAddressesAreRefusedInTheOrderOfTheChecks) {
    struct Row {
        std::string load, exec;
        const char* told;
    };

    for (const Row& r : {Row{"1234567", "", "Load Address Is Wrong Length"},
                         Row{"", "0", "Load Address Is Wrong Length"},
                         Row{"12G", "", "Exec Address Is Wrong Length"},
                         Row{"12G", "1234567", "Exec Address Is Wrong Length"},
                         Row{"12G", "x", "Load Address Contains Illegal Characters"},
                         Row{"&1900", "0", "Load Address Contains Illegal Characters"},
                         Row{"1900", " 8023", "Exec Address Contains Illegal Characters"}}) {
        SCOPED_TRACE(r.load + "," + r.exec);
        std::string load = r.load;
        std::string exec = r.exec;
        EXPECT_EQ(CheckAddresses(load, exec).value_or("taken"), r.told);
    }
}

TEST_F(FileCommands, MeantABootOptionIsNoChangeOfTheDisc) {
    DiscBuilder(1).Byte(kFlags, 0xFF);
    for (const int option : {0, 3, 1, 2}) {
        SetBootOption(1, option);
        EXPECT_EQ(BootOption(1), option);
        EXPECT_EQ(Byte(kDrive1 + kFlags), 0xCF | option << 4) << "the other bits stay";
    }
    EXPECT_EQ(Byte(kDrive1 + kCycle), 0);
    EXPECT_FALSE(Module1::gDirty);
}

/// Fills the first sectors of a drive with chance; every other disc gets the Watford marker.
void Damage(int drive, std::mt19937& random, int round) {
    for (int i = 0; i < 1024; ++i)
        Module1::DiscImg.SetByte(drive * kDriveBytes + i, static_cast<std::uint8_t>(random()));
    if (round % 2 == 0)
        Module1::DiscImg.Fill(drive * kDriveBytes + 512, 8, 0xAA);
}

TEST_F(FileCommands, DamagedCataloguesLeaveTheOtherDriveAlone) {
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        const int drive = round / 2 % 2;
        Module1::cur_drive = drive;
        Damage(drive, random, round);
        const auto other = BlockBytes((1 - drive) * kDriveBytes, kDriveBytes);
        for (int i = 0; i < GetNumberOfDirEntries(drive); ++i) {
            const std::string name = GetName(drive, i);
            LockFile(name);
            SetFileAttr(name, "FFFFFF", "FFFFFF");
            RenameFile("Z." + std::to_string(i), name, i % 2 == 0);
            DeleteFile(GetName(drive, i), i % 3 == 0);
        }
        EXPECT_EQ(BlockBytes((1 - drive) * kDriveBytes, kDriveBytes), other);
    }
}

} // namespace
} // namespace quoravel
