#include "support/wordwise_test.h"

#include "disc/catalogue.h"
#include "support/golden_pages.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <utility>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

// --- The demonstration disc.

constexpr std::array<const char*, 4> kDocuments{"L.CLUB", "L.THANKS", "O.ODDS", "R.REPORT"};
constexpr const char* kDisc = "demo-wordwise.ssd";

std::string FileText(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// To make the disc anew, take the file that this test names when it fails.
TEST_F(WordWiseTest, TheDemonstrationDiscIsMadeOfItsSources) {
    const std::filesystem::path data(TEST_DATA);
    constexpr int kSectorsEach = 4;
    constexpr int kEnd = 2 + kSectorsEach * static_cast<int>(kDocuments.size());
    DiscBuilder disc;
    disc.Title("DOCUMENTS");
    int sector = kEnd;
    for (const char* name : kDocuments) {
        sector -= kSectorsEach;
        const std::string bytes = Document(FileText(data / "wordwise" / name));
        EXPECT_LE(bytes.size(), static_cast<std::size_t>(kSectorsEach * kSectorBytes));
        disc.File({.name = name + 2,
                   .dir = name[0],
                   .load = 0x3FFFF,
                   .exec = 0x3FFFF,
                   .length = static_cast<std::uint32_t>(bytes.size()),
                   .sector = sector});
        disc.Data(sector, bytes);
    }
    const std::string image = BlockText(0, kEnd * kSectorBytes);
    if (image == FileText(data / "discs" / kDisc))
        return;
    const auto made = std::filesystem::temp_directory_path() / kDisc;
    std::ofstream(made, std::ios::binary) << image;
    FAIL() << made << " is the disc of today's sources";
}

// The pages were worked out on paper.
TEST_F(WordWiseTest, ItsDocumentsComeOutAsWorkedOutByHand) {
    desktop.yes_no = {true};
    for (const GoldenPage& page : GoldenPages("wordwise.txt")) {
        SCOPED_TRACE(page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        Module1::gOffset = base;
        Module1::gSize = static_cast<int>(length);
        StyledSink sink;
        WordWise::FormatDocument(sink);
        EXPECT_EQ(sink.Page(), JoinLines(page.lines));
    }
    // Meant: each group of style commands but the first takes the document's first letters for a
    // command, and a command in the first line of a page is read twice.
    EXPECT_THAT(desktop.TakeBoxTexts(),
                ElementsAre("Unrecognised Command DD", "Unrecognised Command DD",
                            "Unrecognised Command DD", "Unrecognised Command ZZ",
                            "Unrecognised Command QQ"));
    ASSERT_EQ(desktop.questions.size(), 1U);
    EXPECT_THAT(desktop.questions[0].text, StartsWith("Unrecognised Command QQ\n"));
}

// --- Lines and pages.

TEST_F(WordWiseTest, LinesBreakWhereTheyCan) {
    const std::string long_word = "efghijklmno";
    Expect({
        {"nothing", "", ""},
        {"the last line has no end", "a\nb", "a\rb"},
        {"text ends at its mark", "a{129}b", "a"},
        {"full at a blank", "{LL11}hello world again", "hello world\ragain"},
        {"behind the last of two blanks", "{LL12}ab cd  " + long_word, "ab cd \r" + long_word},
        {"at a comma of its own kind", "{LL12}ab{172}cd " + long_word, "ab,cd\r" + long_word},
        {"a comma beyond the end is lost", "{LL11}abcdefghijk{172}l", "abcdefghijk\rl"},
        {"at a tab", "{LL15}ab{TAB}" + long_word, "ab" + Blanks(7) + "\r" + long_word},
        {"not at a tab that does nothing", "{LL12}{DT4}abc{TAB}defghijklmno", "abcdefghijkl\rmno"},
        {"what is behind the break is read again", "{LL12}ab cd {PP}" + long_word,
         "ab cd\r1" + long_word},
        {"no tab stops are left", "{LL200}" + Blanks(110) + "a{TAB}b", Blanks(110) + "ab"},
        {"the first stop of the list counts", "{DT20,5}a{TAB}b", "a" + Blanks(18) + "b"},
    });
}

TEST_F(WordWiseTest, JustificationWidensGapsToTheLinesEnd) {
    Expect({
        {"no gap", "{LL12}{JO}abc abcdefghijkl x", "abc\rabcdefghijkl\rx"},
        {"blanks at the end go first", "{LL12}{JO}ab cd  efghijklmno",
         "ab" + Blanks(8) + "cd\refghijklmno"},
        {"a line of blanks does not change sides",
         "{LL12}{JO}" + Blanks(13) + "ab cd efg hijklmn x", "\rab   cd  efg\rhijklmn x"},
        // Meant: see SpaceAt.
        {"but not those where a command waits", "{LL12}{JO}ab cd {ES} efghijklmno",
         "ab" + Blanks(7) + "cd \refghijklmno"},
    });
}

TEST_F(WordWiseTest, PagesHaveTheirHeadingsAndFootings) {
    Expect({
        {"a heading without a text", "{EP}{DH}Head\n", "\r\rHead\r\r\r\r"},
        {"a position below the space", "{EP}{TS1}{HP1}{DH}Head\nx", "\rx"},
        {"a text behind a bare end", "{EP}{TS1}{HP0}{2}DH\nHead\nx", "Head\rx"},
        {"no FI goes on behind a page", "{PL10}{BS3}{LL11}a\n{SP5}{FI}hello world ab\nc",
         "a" + Ends(6) + "hello world" + Ends(4) + "ab\rc"},
        {"a footing without paging", "{PL10}{BS2}{FP0}{DF}foot\nx\n{SP9}y",
         "x" + Ends(8) + "foot\r\ry"},
        {"BP fills the page", "{EP}{PL10}{TS0}{BS0}a\n{BP}b", "a" + Ends(10) + "b"},
        {"CP where there is room, and where not", "{PL10}{BS0}a\n{CP9}b\n{CP9}c\n{CP}d",
         "a\rb" + Ends(9) + "c\rd"},
        {"SP ends with the page", "{PL10}{BS0}a\n{SP99}b", "a" + Ends(10) + "b"},
    });
}

// Meant: the first line of a page is read twice.
TEST_F(WordWiseTest, CommandsInTheFirstLineOfAPageActBeforeIt) {
    Expect({
        {"an indent in the middle", "a{IN5}b\nc", Blanks(5) + "ab\r" + Blanks(5) + "c"},
        {"and the same further down", "x\na{IN5}b\nc", "x\rab\r" + Blanks(5) + "c"},
        {"a title's centring", "{EP}{TS1}{HP0}{LL20}{DH}Head\n{CE}Title\n",
         Blanks(8) + "Head\r" + Blanks(7) + "Title\r"},
    });
}

TEST_F(WordWiseTest, StylesOutliveTheirDocumentButNotTheNextOne) {
    EXPECT_EQ(Format("a{US}{DS}b"), "a<u><b>b");
    EXPECT_TRUE(WordWise::Underline && WordWise::DoubleStrike);
    EXPECT_EQ(Format("c"), "c");
}

// --- Boxes, and other things that happen meanwhile.

TEST_F(WordWiseTest, WhoHasSeenEnoughMessagesCanGoOnWithoutMore) {
    desktop.yes_no = {false, true};
    EXPECT_EQ(Format("x\n{ZZ}{zz}{Z}{}{ZZ}{ZZ}{ZZ}{ZZ}{ZZ}a"), "x\ra");
    EXPECT_THAT(desktop.TakeBoxTexts(),
                ElementsAre("Unrecognised Command ZZ", "Unrecognised Command ZZ",
                            "Unrecognised Command Z\a", "Unrecognised Command ZZ",
                            "Unrecognised Command ZZ"));
    EXPECT_EQ(desktop.questions.size(), 2U);
}

TEST_F(WordWiseTest, ADocumentFormattedWithinAnotherLeavesItAlone) {
    Put("one {DS}bold\n{CE2}two\nthree\n");
    const std::string alone = Format();
    std::string inner;
    bool inside = false;
    desktop.on_pump = [&] {
        desktop.now += std::chrono::hours(1); // so that each yield pumps
        if (std::exchange(inside, true))
            return;
        Module1::DiscImg.Write(0, std::array<std::uint8_t, 3>{'i', 13, 'i'});
        Module1::gOffset = 0;
        Module1::gSize = 3;
        inner = Format();
        inside = false;
    };
    Put("one {DS}bold\n{CE2}two\nthree\n");
    desktop.now += std::chrono::hours(1);
    EXPECT_EQ(Format(), alone);
    EXPECT_EQ(inner, "i\ri");
    EXPECT_TRUE(WordWise::DoubleStrike);
}

TEST_F(WordWiseTest, AViewThatIsClosedEndsARunWithoutAnEnd) {
    struct Closed {};

    class ClosingSink : public ViewSink {
      public:
        int left = 1000000;

        void ShowData(std::string_view /*text*/) override {
            if (--left == 0)
                throw Closed();
        }
    };

    Put("{FL999}{LS0}{PL999}" + Ends(2000));
    ClosingSink sink;
    EXPECT_THROW(WordWise::FormatDocument(sink), Closed);
    EXPECT_EQ(Format("a"), "a");
}

// --- Where the rules have no end of their own.

TEST_F(WordWiseTest, EveryDocumentEnds) {
    const std::string stuck = "{LL99}{IN80}{LL}";
    const std::string blank_page = Repeated(60, Blanks(80) + "\r");
    Expect({
        {"no room for text", stuck + "word", Repeated(3, blank_page + Ends(6))},
        {"until a footing makes room", "{DF}{CI}foot\n" + stuck + "word",
         blank_page + "\r\rfoot\r\r\r\rword"},
        {"many parameters", "a{JO" + Repeated(300, ",") + "}b", "ab"},
        {"a long parameter", "a{JO" + Repeated(300, "x") + "}b", "ab"},
        {"an indent above 255", "{LL999}{IN300}a\nb", "a\r" + Blanks(44) + "b"},
        {"a heading without its end", "a\n{DH}heading", "a\r"},
        {"a name without its quote", "a{GF\"NAME}b", "ab"},
        {"a line beyond the last position", "{LL999}{FI}ab\nc", Blanks(511) + "\rc"},
        {"as many commands as can wait", Repeated(39, "{ES}") + "{US}a{UE}b", "<u>ab"},
        {"more of them", Repeated(40, "{ES}") + "{US}a{UE}b", "ab"},
        {"more places than they have room for", Repeated(20, "c{ES}") + "d{US}a{UE}b",
         std::string(20, 'c') + "dab"},
    });
}

TEST_F(WordWiseTest, ADocumentBehindTheEndOfTheDiscIsZeros) {
    Module1::gOffset = kDiscBytes - 1;
    Module1::gSize = 1000;
    Module1::DiscImg.SetByte(kDiscBytes - 1, 'a');
    EXPECT_EQ(Format(), "a" + Ends(14));
    Module1::DiscImg.Write(kDiscBytes - 4, std::array<std::uint8_t, 4>{2, 'D', 'H', 7});
    Module1::gOffset = kDiscBytes - 4;
    EXPECT_EQ(Format(), "");
}

} // namespace
} // namespace quoravel
