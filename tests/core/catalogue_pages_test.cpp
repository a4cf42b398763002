#include "disc/free_space.h"
#include "platform/text.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/catalogue_pages.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <span>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;

class CataloguePages : public DiscTest {
  protected:
    CataloguePages() { desktop.now = std::chrono::hours(1); } // the first Yield pumps

    static std::string Cat() {
        TextSink sink;
        ListCat(sink);
        return sink.Text();
    }

    /// *CAT behind its header.
    static std::string CatFiles() {
        const std::string page = Cat();
        return page.substr(page.find("\r\r") + 2);
    }

    static std::string EX() {
        TextSink sink;
        ListEX(sink);
        return sink.Text();
    }

    static std::vector<std::string> Map() {
        TextSink sink;
        ListMap(sink);
        return sink.pieces;
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
        TextSink sink;
        ListHeader(kDriveBytes, sink);
        EXPECT_THAT(sink.pieces,
                    ElementsAre("A LONG TITLE (" + std::string(number) + ") FM\r",
                                "Drive 1             Option " + std::string(option) + "\r",
                                "Dir. :1.$           Lib. :1.$\r\r"));
    }
}

TEST_F(CataloguePages, CatPutsTheFilesOfDollarInFrontOfTheOthers) {
    const auto file = [](const char* name, char dir) { return Entry{.name = name, .dir = dir}; };
    using Row = std::tuple<const char*, std::vector<Entry>, std::string>;
    for (const auto& [what, files, page] :
         {Row{"no files", {}, "\r\r"},
          Row{"two in $",
              {file("TWO", '$'), file("ONE", '$')},
              Field("  ONE") + Field("  TWO") + "\r\r"},
          Row{"three in $, two in A",
              {file("c", '$'), file("E", 'A'), file("B", '$'), file("D", 'A'), file("A", '$')},
              Field("  A") + Field("  B") + "\r" + Field("  c") + "\r\r" + Field("A.D") +
                  Field("A.E") + "\r\r"},
          Row{"none in $",
              {file("SEVENCH", 'b'), file("Y", 'C'), file("X", 'A')},
              Field("A.X") + Field("b.SEVENCH") + "\r" + Field("C.Y") + "\r\r"}}) {
        SCOPED_TRACE(what);
        DiscBuilder disc;
        for (const Entry& entry : files)
            disc.File(entry);
        EXPECT_EQ(CatFiles(), page);
    }
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
    for (const char end : {'\0', '\r'}) {
        SCOPED_TRACE(static_cast<int>(end));
        DiscBuilder()
            .File({.name = "LAST", .locked = true})
            .File({.name = std::string_view(&end, 1), .locked = true})
            .File({.name = "NEVER"});
        const std::string blank(20, ' ');
        EXPECT_EQ(CatFiles(), blank + blank + "\r" + Field("  LAST", 'L') + "\r\r");
        EXPECT_EQ(EX(), "\r\r$.LAST     L  000000  000000  000000  000\r");
    }
}

TEST_F(CataloguePages, MeantAnExchangeCarriesOneOfTwoEqualNamesPastTheOther) {
    DiscBuilder().File({.name = "abc"}).File({.name = "ABC"}).File({.name = "ABD"});
    EXPECT_EQ(CatFiles(), Field("  abc") + Field("  ABC") + "\r" + Field("  ABD") + "\r\r");
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
    EXPECT_GT(desktop.pumps, 0);
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
    EXPECT_THAT(Map(),
                ElementsAre("Address : Length\r", "000003  : 000007\r", "00000B  : 000315\r"));
    DiscBuilder(1); // the map stays as it was last counted
    EXPECT_EQ(Map().size(), 3U);
    Module1::cur_drive = 0;
    EXPECT_THAT(Map(), ElementsAre("Address : Length\r"));
}

// Where a page of ours differs from that of the machine, and ours holds. The rest is the same.

/// `line` with `from` replaced by `to`, if it is there.
std::string Replaced(std::string line, std::string_view from, std::string_view to) {
    if (const auto at = line.find(from); at != std::string::npos)
        line.replace(at, from.size(), to);
    return line;
}

/// Title trimmed, cycle number without a leading zero.
std::string OurTitleLine(const std::string& line) {
    const std::size_t bracket = line.find('(');
    return std::string(Trim(std::string_view(line).substr(0, bracket))) + " " +
           Replaced(line.substr(bracket), "(0", "(");
}

/// Option names in mixed case, four characters each.
std::string OurOptionLine(const std::string& line) {
    using Names = std::pair<const char*, const char*>;
    for (const auto& [machine, ours] : {Names{"(off)", "(Off )"}, Names{"(LOAD)", "(Load)"},
                                        Names{"(RUN)", "(Run )"}, Names{"(EXEC)", "(Exec)"}})
        if (line.ends_with(machine))
            return Replaced(line, machine, ours);
    return line;
}

/// The second side is drive 1, not 2, and directory and library are on the drive itself. Each field
/// is padded to 20, and the page ends with an empty line.
std::string OurCat(const GoldenPage& page) {
    std::vector<std::string> lines = page.lines;
    lines[0] = OurTitleLine(lines[0]);
    lines[1] = OurOptionLine(lines[1]);
    if (page.drive == 1) {
        lines[1] = Replaced(lines[1], "Drive 2", "Drive 1");
        lines[2] = Replaced(Replaced(lines[2], ":0", ":1"), ":0", ":1");
    }
    for (std::string& line : std::span(lines).subspan(4))
        line.resize((line.size() + 19) / 20 * 20, ' ');
    lines.emplace_back();
    return JoinLines(lines);
}

/// All directories together, sorted, with two blanks between all fields.
std::string OurEX(const GoldenPage& page) {
    std::vector<std::string> lines = page.lines;
    for (std::string& line : lines)
        for (const std::size_t gap : {20U, 28U, 36U})
            line.insert(gap, " ");
    std::ranges::sort(lines, {}, UpperCase);
    return JoinLines(lines);
}

/// Six digits in place of three, the colon in column 8 for all.
std::string OurMap(const GoldenPage& page) {
    std::vector<std::string> lines{"Address : Length"};
    for (const std::string& line : std::span(page.lines).subspan(1))
        lines.push_back("000" + line.substr(0, 3) + "  : 000" + line.substr(line.size() - 3));
    return JoinLines(lines);
}

TEST_F(CataloguePages, AreThoseOfTheMachine) {
    struct Row {
        const char* golden;
        std::string (*ours)(const GoldenPage&);
        void (*list)(ViewSink&);
    };

    for (const Row& r : {Row{"cat.txt", OurCat, ListCat},
                         Row{"ex.txt", OurEX, [](ViewSink& sink) { ListEX(sink); }},
                         Row{"map.txt", OurMap, ListMap}})
        for (const GoldenPage& page : GoldenPages(r.golden)) {
            SCOPED_TRACE(testing::Message() << r.golden << " " << page.image << " " << page.drive);
            OpenDiscOf(page);
            TextSink sink;
            r.list(sink);
            EXPECT_EQ(sink.Text(), r.ours(page));
        }
}

} // namespace
} // namespace quoravel
