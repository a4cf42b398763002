#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
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

class RealDiscs : public DiscTest {
  protected:
    TempFolder folder;
};

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
