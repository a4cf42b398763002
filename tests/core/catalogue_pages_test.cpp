#include "disc/free_space.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/text_sink.h"
#include "view/catalogue_pages.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

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

// The listing ends at an entry without a name, whatever the count says.
TEST_F(CataloguePages, RowsLeftEmptyComeFirst) {
    DiscBuilder()
        .File({"LAST", '$', true, 0x31900, 0x18023, 0x2FFFF, 0x31F})
        .File({.name = "\r", .locked = true})
        .File({.name = "NEVER"});
    const std::string blank(20, ' ');
    EXPECT_EQ(CatFiles(), blank + blank + "\r" + Field("  LAST", 'L') + "\r\r");
    EXPECT_EQ(EX(), "\r\r$.LAST     L  FF1900  018023  02FFFF  31F\r");
}

TEST_F(CataloguePages, MeantAnExchangeCarriesOneOfTwoEqualNamesPastTheOther) {
    DiscBuilder().File({.name = "abc"}).File({.name = "ABC"}).File({.name = "ABD"});
    EXPECT_EQ(CatFiles(), Field("  abc") + Field("  ABC") + "\r" + Field("  ABD") + "\r\r");
    DiscBuilder().File({.name = "abc"}).File({.name = "ABC"}).File({.name = "ABB"});
    EXPECT_EQ(CatFiles(), Field("  ABB") + Field("  ABC") + "\r" + Field("  abc") + "\r\r");
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
    DiscBuilder(1).File(At(10, 256, "B")).File({.name = "A", .sector = 2});
    GetFreeSpaceMap(1);
    Module1::cur_drive = 1;
    DiscBuilder(1); // the map stays as it was last counted
    EXPECT_EQ(Page(ListMap), "Address : Length\r000003  : 000007\r00000B  : 000315\r");
    Module1::cur_drive = 0;
    EXPECT_EQ(Page(ListMap), "Address : Length\r");
}

} // namespace
} // namespace quoravel
