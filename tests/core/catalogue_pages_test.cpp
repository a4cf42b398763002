#include "disc/free_space.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/text_sink.h"
#include "view/catalogue_pages.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;

class CataloguePages : public DiscTest {
  protected:
    CataloguePages() { desktop.now = std::chrono::hours(1); } // the first Yield pumps

    static std::string Page(void (*list)(ViewSink&)) {
        TextSink sink;
        list(sink);
        return sink.Text();
    }

    /// *CAT behind its header.
    static std::string CatFiles() {
        const std::string page = Page(ListCat);
        return page.substr(page.find("\r\r") + 2);
    }

    static std::string EX() {
        return Page([](ViewSink& sink) { ListEX(sink); });
    }
};

/// A field of *CAT.
std::string Field(const std::string& key, char attr = ' ') {
    std::string field = "  " + key;
    field.resize(13, ' ');
    return field + attr + "      ";
}

TEST_F(CataloguePages, AnyCycleByteAndOptionGiveAHeader) {
    using Row = std::tuple<int, int, const char*, const char*>;
    for (const auto& [cycle, flags, number, option] :
         {Row{0x12, 0xFF, "12", "3 (Exec)"}, Row{0x05, 0x1C, "5", "1 (Load)"},
          Row{0xFF, 0x2F, "65", "2 (Run )"}, Row{0xAB, 0xC3, "11", "0 (Off )"}}) {
        DiscBuilder(1).Title("A LONG TITLE").Byte(260, cycle).Byte(262, flags);
        Module1::cur_drive = 1;
        EXPECT_EQ(Page([](ViewSink& sink) { ListHeader(kDriveBytes, sink); }),
                  "A LONG TITLE (" + std::string(number) + ") FM\rDrive 1             Option " +
                      option + "\rDir. :1.$           Lib. :1.$\r\r");
    }
}

TEST_F(CataloguePages, CatPutsTheFilesOfDollarInFrontOfTheOthers) {
    EXPECT_EQ(CatFiles(), "\r\r");
    DiscBuilder()
        .File({.name = "c"})
        .File({.name = "E", .dir = 'A'})
        .File({.name = "B"})
        .File({.name = "SEVENCH", .dir = 'b'})
        .File({.name = "A"});
    EXPECT_EQ(CatFiles(), Field("  A") + Field("  B") + "\r" + Field("  c") + "\r\r" +
                              Field("A.E") + Field("b.SEVENCH") + "\r\r");
    DiscBuilder().File({.name = "TWO"}).File({.name = "ONE"});
    EXPECT_EQ(CatFiles(), Field("  ONE") + Field("  TWO") + "\r\r");
}

TEST_F(CataloguePages, ALockShowsAndLeavesTheDirectoryAlone) {
    DiscBuilder()
        .File({.name = "HELLO", .locked = true, .load = 0x31900, .exec = 0x38023, .length = 256})
        .File({.name = "SEVENCH", .dir = 'Z', .load = 0x21900, .length = 0x3FFFF, .sector = 0x31F});
    EXPECT_EQ(CatFiles(), Field("  HELLO", 'L') + "\r\r" + Field("Z.SEVENCH") + "\r\r");
    EXPECT_EQ(EX(), "$.HELLO    L  FF1900  FF8023  000100  000\r"
                    "Z.SEVENCH     021900  000000  FFFFFF  31F\r");
}

// The listing ends at an entry without a name, whatever the count says.
TEST_F(CataloguePages, RowsLeftEmptyComeFirst) {
    DiscBuilder()
        .File({.name = "LAST", .locked = true})
        .File({.name = "\r", .locked = true})
        .File({.name = "NEVER"});
    const std::string blank(20, ' ');
    EXPECT_EQ(CatFiles(), blank + blank + "\r" + Field("  LAST", 'L') + "\r\r");
    EXPECT_EQ(EX(), "\r\r$.LAST     L  000000  000000  000000  000\r");
}

TEST_F(CataloguePages, MeantAnExchangeCarriesOneOfTwoEqualNamesPastTheOther) {
    DiscBuilder().File({.name = "abc"}).File({.name = "ABC"}).File({.name = "ABB"});
    EXPECT_EQ(CatFiles(), Field("  ABB") + Field("  ABC") + "\r" + Field("  abc") + "\r\r");
}

TEST_F(CataloguePages, AWatfordDiscShowsAllOfItsFiles) {
    DiscBuilder(0, DiscBuilder::kWatford).Fill(31, 31);
    EXPECT_EQ(CatFiles().size(), 62 * 20 + 31 + 1U);
    const std::string ex = EX();
    EXPECT_EQ(std::ranges::count(ex, '\r'), 62);
    EXPECT_NE(ex.find("$.B30 "), std::string::npos);
}

TEST_F(CataloguePages, APageFollowsTheUserToTheOtherDriveUnlessItMustNotBeInterrupted) {
    DiscBuilder(0).File({.name = "FIRST0"}).File({.name = "SECOND0"});
    DiscBuilder(1).File({.name = "FIRST1"}).File({.name = "SECOND1"});
    TextSink sink;
    ListEX(sink, [] {});
    EXPECT_EQ(desktop.pumps, 0);
    EXPECT_EQ(sink.Text(), EX());
    desktop.now += std::chrono::hours(1);
    desktop.on_pump = [] { Module1::cur_drive = 1; };
    EXPECT_EQ(CatFiles(), Field("  FIRST0") + Field("  SECOND1") + "\r\r");
}

TEST_F(CataloguePages, TheMapHasALineForEachFreeRegion) {
    DiscBuilder(1)
        .File({.name = "B", .length = 256, .sector = 10})
        .File({.name = "A", .sector = 2});
    GetFreeSpaceMap(1);
    Module1::cur_drive = 1;
    DiscBuilder(1); // the map stays as it was last counted
    EXPECT_EQ(Page(ListMap), "Address : Length\r000003  : 000007\r00000B  : 000315\r");
    Module1::cur_drive = 0;
    EXPECT_EQ(Page(ListMap), "Address : Length\r");
}

} // namespace
} // namespace quoravel
