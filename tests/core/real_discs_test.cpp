#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "support/disc_test.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <filesystem>

// Discs written by the genuine system of a BBC Micro, and what that machine itself says of them.

namespace quoravel {
namespace {

namespace fs = std::filesystem;

fs::path RealDisc(std::string_view name) {
    return fs::path(TEST_DATA) / "discs" / name;
}

void Open(std::string_view name) {
    const bool interleaved = FormOfName(name) == ImageForm::Interleaved;
    const auto error = interleaved ? LoadDisc_DSD(RealDisc(name)) : LoadDisc_SSD(RealDisc(name));
    ASSERT_FALSE(error) << name << ": " << error->reason;
}

struct Side {
    const char* image;
    int drive;
    const char* title;
    int cycle, option, sectors;
    std::vector<std::pair<int, int>> free; ///< the machine's *MAP
    const char* info;                      ///< the machine's *INFO, behind a line end
};

// clang-format off
const std::vector<Side> kSides{
    {"demo-basic.ssd", 0, "DEMOBASIC", 0x10, 3, 800, {{0xE, 0x312}}, R"(
$.!BOOT       000000 000000 00000D 00D
$.SHORT       FF1900 FF8023 00004F 00C
$.NONE        FF1900 FF8023 000002 00B
G.WAVES       FF1900 FF8023 0001DF 009
$.SORT        FF1900 FF8023 00024A 006
$.SIEVE       FF1900 FF8023 000188 004
$.MENU        FF1900 FF8023 00014E 002
)"},
    {"demo-code.ssd", 0, "DEMOCODE", 0x08, 0, 800, {{0xD, 0x313}}, R"(
L.PART        008000 001900 00003D 00C
$.ONE         005000 002000 000001 00B
$.HELLO    L  FF1900 FF1900 00001E 00A
S.HELLO       FF0E00 FF802B 0000CD 009
$.OPS         FF2000 FF2000 0000F1 008
S.OPS         FF0E00 FF802B 0005BB 002
)"},
    {"demo-text.ssd", 0, "Demo texts", 0x15, 1, 400, {{0xC, 0x184}}, R"(
B.BLOCK       FF1F00 FF1F00 000201 009
$.EMPTY       000000 FFFFFF 000000 009
$.DATA        000000 FFFFFF 000013 008
$.OUTPUT      000000 FFFFFF 0000AA 007
$.LISTING     000000 FFFFFF 00021D 004
$.ONELINE     000000 FFFFFF 00000E 003
$.NOTES       000000 FFFFFF 000047 002
)"},
    {"demo-cat.ssd", 0, "DEMO-CAT", 0x18, 2, 800, {{0x4, 0x1}, {0x18, 0x308}}, R"(
$.NINE9       014000 00C166 000999 00E
X.SEVENCH     FF1900 FF8023 000040 00D
b.lower    L  010000 009AB8 000030 00C
A.TWO      L  FF1900 FF8023 000200 00A
A.ONE         00C000 00740A 0000FF 009
A.ZED         FF1900 FF8023 000001 008
$.!BOOT       008000 004D5C 000020 007
$.data2       FF1900 FF8023 000101 005
$.README   L  FF1900 FF8023 000123 002
$.NIL         001900 001900 000000 002
)"},
    {"demo-dual.dsd", 0, "SIDE A", 0x04, 0, 800, {{0x5, 0x31B}}, R"(
$.TEXT        000000 000000 000008 004
$.SIEVE       FF1900 FF8023 000188 002
)"},
    {"demo-dual.dsd", 1, "SIDE B", 0x07, 3, 800, {{0x8, 0x318}}, R"(
$.SIEVE    L  FF1900 FF8023 000188 006
$.TEXT        000000 000000 000016 005
$.SORT        FF1900 FF8023 00024A 002
)"},
    {"demo-gaps.ssd", 0, "DEMOGAPS", 0x10, 0, 800, {{0x4, 0x1}, {0xA, 0x2}, {0x14, 0x30C}}, R"(
$.F        L  001900 001900 0007D0 00C
D.D           001900 001900 000001 009
$.C           001900 001900 0003E8 005
$.A           001900 001900 0001F4 002
)"},
    {"demo-gaps-compacted.ssd", 0, "DEMOGAPS", 0x13, 0, 800, {{0x11, 0x30F}}, R"(
$.F        L  001900 001900 0007D0 009
D.D           001900 001900 000001 008
$.C           001900 001900 0003E8 004
$.A           001900 001900 0001F4 002
)"},
};

// clang-format on

/// The list of a drive in the form of *INFO.
std::string InfoOf(int drive) {
    std::string info = "\n";
    for (const ListRow& row : ListFiles(drive)) {
        std::string name = row.FileName;
        name.resize(9, ' ');
        info += name + "  " + row.Attr + "  " + row.Load + " " + row.Exec + " " + row.Size + " " +
                row.Sector + "\n";
    }
    return info;
}

class RealDiscs : public DiscTest {
  protected:
    TempFolder folder;
};

TEST_F(RealDiscs, ReadAsTheMachineReadsThem) {
    for (const Side& side : kSides) {
        SCOPED_TRACE(testing::Message() << side.image << " drive " << side.drive);
        Open(side.image);
        EXPECT_EQ(GetTitle(side.drive), side.title);
        EXPECT_EQ(Module1::DiscImg.Byte(GetStartSectorOfDrive(side.drive) + 260), side.cycle);
        EXPECT_EQ(BootOption(side.drive), side.option);
        EXPECT_EQ(GetNumberOfSectors(side.drive), side.sectors);
        EXPECT_EQ(InfoOf(side.drive), side.info);
        EXPECT_EQ(FreeRegions(side.drive), side.free);
    }
}

TEST_F(RealDiscs, SaveBackAsTheyWere) {
    Open("demo-dual.dsd");
    ASSERT_FALSE(SaveDisc_DSD(folder.path() / "saved"));
    EXPECT_TRUE(BytesOf(folder.path() / "saved") == BytesOf(RealDisc("demo-dual.dsd")));
    // A linear file is cut behind its last used sector.
    for (const char* image : {"demo-basic.ssd", "demo-text.ssd", "demo-cat.ssd", "demo-gaps.ssd"}) {
        Open(image);
        auto original = BytesOf(RealDisc(image));
        original.resize(static_cast<std::size_t>(GetSectorsUsed(0) + 1) * 256);
        ASSERT_FALSE(SaveDisc_SSD(folder.path() / "saved"));
        EXPECT_TRUE(BytesOf(folder.path() / "saved") == original) << image;
    }
}

// Ours differs from the machine in two points: the cycle number stays, and only the bytes of a file
// are moved, so that behind them stands what stood there before. No file here is empty.
TEST_F(RealDiscs, CompactAsTheMachineCompactsThem) {
    Open("demo-gaps.ssd");
    const auto before = BlockBytes();
    Compact(0);
    Module1::DiscImg.SetByte(260, 0x13);
    constexpr int kEndOfD = 8 * 256 + 1; // D.D, one byte, in sector 8
    auto expected = BytesOf(RealDisc("demo-gaps-compacted.ssd"));
    const auto used = static_cast<int>(expected.size());
    std::copy_n(before.begin() + kEndOfD, 255, expected.begin() + kEndOfD);
    EXPECT_TRUE(BlockBytes(0, used) == expected);
    EXPECT_EQ(GetSectorsUsed(0), used / 256 - 1);
    EXPECT_EQ(FreeRegions(0), (std::vector{std::pair{0x11, 0x30F}}));
}

// The machine lets an empty file share its start sector; we count a sector for it. Here it is the
// lowest file, and its neighbour, two sectors long, is moved up over its own second half.
TEST_F(RealDiscs, MeantAnEmptyFileCostsItsNeighbourASector) {
    Open("demo-cat.ssd");
    const std::string readme = BlockText(2 * 256, 0x123);
    Compact(0);
    EXPECT_EQ(GetSector(264 + 8 * 9), "002") << "$.NIL stays";
    EXPECT_EQ(GetSector(264 + 8 * 8), "003") << "$.README moves up";
    EXPECT_EQ(BlockText(3 * 256, 0x123), readme.substr(0, 256) + readme.substr(0, 0x23));
}

} // namespace
} // namespace quoravel
