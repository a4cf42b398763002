#include "disc/catalogue.h"
#include "support/disc_builder.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/wordwise_documents.h"
#include "view/wordwise/formatter.h"
#include "view/wordwise/state.h"

#include <gmock/gmock.h>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using WordWise::State;

/// Documents, formatted into the notation of StyledSink. They lie on the second drive, with
/// something behind them that is none of theirs.
class WordWiseTest : public DiscTest {
  protected:
    struct Row {
        const char* what;
        std::string document;
        std::string text;
    };

    static void Put(std::string_view written) {
        const std::string bytes = Document(written);
        Module1::gOffset = kDriveBytes + 512;
        Module1::gSize = static_cast<int>(bytes.size());
        DiscBuilder(1).Data(2, bytes + "X");
    }

    static std::string Format() {
        StyledSink sink;
        WordWise::FormatDocument(sink);
        return sink.text;
    }

    static std::string Format(std::string_view written) {
        Put(written);
        return Format();
    }

    /// Formats each document, none of which may have anything to tell.
    void Expect(const std::vector<Row>& rows) {
        for (const Row& r : rows) {
            SCOPED_TRACE(r.what);
            EXPECT_EQ(Format(r.document), r.text);
            EXPECT_EQ(desktop.TakeBoxTexts(), std::vector<std::string>{});
        }
    }
};

std::string Repeated(int count, std::string_view text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string Blanks(int count) {
    return Repeated(count, " ");
}

std::string Ends(int count) {
    return Repeated(count, "\r");
}

// --- The demonstration disc.

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
        {"the last line has no end", "a\nb", "a\rb"},
        {"text ends at its mark", "a{129}b", "a"},
        {"full at a blank", "{LL11}hello world again", "hello world\ragain"},
        {"behind the last of two blanks", "{LL12}ab cd  " + long_word, "ab cd \r" + long_word},
        {"at a comma of its own kind", "{LL12}ab{172}cd " + long_word, "ab,cd\r" + long_word},
        {"a comma beyond the end is lost", "{LL11}abcdefghijk{172}l", "abcdefghijk\rl"},
        {"at a tab", "{LL15}ab{TAB}" + long_word, "ab" + Blanks(7) + "\r" + long_word},
        {"not at a tab that does nothing", "{LL12}{DT4}abc{TAB}defghijklmno", "abcdefghijkl\rmno"},
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
        {"a title's centring", "{EP}{TS1}{HP0}{LL20}{DH}Head\n{CE}Title\n",
         Blanks(8) + "Head\r" + Blanks(7) + "Title\r"},
    });
}

// --- Commands.

TEST_F(WordWiseTest, CommandsSetNumbers) {
    using Setting = std::tuple<const char*, int State::*, int>;
    for (const auto& [document, variable, value] :
         {Setting{"{IN59}", &State::Indent, 59},
          Setting{"{IN60}", &State::Indent, 0}, // too near the line's end
          Setting{"{IN5}{IN}", &State::Indent, 0}, Setting{"{IN5}{CI}", &State::Indent, 0},
          Setting{"{IN5}{TI9}", &State::Indent, 5}, Setting{"{FL6}{FL}", &State::FLValue, 0},
          Setting{"{FL6}{LM}", &State::FLValue, 6}, Setting{"{LL11}", &State::LineLength, 11},
          Setting{"{LL10}", &State::LineLength, 70}, Setting{"{LL20}{LL}", &State::LineLength, 70},
          Setting{"{IN9}{LL20}", &State::LineLength, 20},
          Setting{"{IN9}{LL19}", &State::LineLength, 70}, Setting{"{PL5}", &State::PageLength, 66},
          Setting{"{PL20}{PL}", &State::PageLength, 66}, Setting{"{TS79}", &State::TopSpace, 79},
          Setting{"{TS80}", &State::TopSpace, 6}, Setting{"{BS9}{BS}", &State::BottomSpace, 6},
          Setting{"{HP79}", &State::HeadingPosition, 79},
          Setting{"{HP80}", &State::HeadingPosition, 2},
          Setting{"{FP9}{FP}", &State::FootingPosition, 2},
          Setting{"{LS0}", &State::LineSpacing, 0}, Setting{"{LS3}{LS}", &State::LineSpacing, 1},
          Setting{"{LS3}{SS}", &State::LineSpacing, 1}, Setting{"{CE3}", &State::CentreValue, 3},
          Setting{"{CE}", &State::CentreValue, 1}, Setting{"{PN7}{PN}", &State::PageNumber, 7},
          Setting{"{PC#}", &State::PadCharacter, '#'},
          Setting{"{PC#}{PC}", &State::PadCharacter, 124},
          Setting{"{2}PC{127}", &State::PadCharacter, 124},
          Setting{"{DP163}", &State::PoundSign, 163}, Setting{"{DP163}{DP}", &State::PoundSign, 96},
          // How numbers and commands are written.
          Setting{"{LS12345}", &State::LineSpacing, 123},
          Setting{"{LS12,9}", &State::LineSpacing, 12}, Setting{"{LS 5}", &State::LineSpacing, 1},
          Setting{"{ls5}", &State::LineSpacing, 5}, Setting{"{LS5{2}", &State::LineSpacing, 5}}) {
        Format(document);
        EXPECT_EQ(WordWise::state.*variable, value) << document;
        EXPECT_TRUE(desktop.boxes.empty());
    }
}

TEST_F(WordWiseTest, CommandsMoveAndPlaceText) {
    Expect({
        {"TI", "{IN5}a\n{TI2}b\nc", Blanks(5) + "a\r  b\r" + Blanks(5) + "c"},
        {"FL, LM", "{FL3}x\n{LM}y\n{LM2}z\n{FL}w", "   x\r   y\r  z\rw"},
        {"CE", "x\n{LL20}{CE2}ab\ncd\nef", "x\r" + Blanks(9) + "ab\r" + Blanks(9) + "cd\ref"},
        {"FI", "x\n{LL20}{FI}ab\ncd", "x\r" + Blanks(18) + "ab\rcd"},
        {"FI of a paragraph that is longer", "{LL11}{FI}hello world ab", "hello world\rab"},
        {"SP", "x\n{SP3}y\n{SP0}z\n{SP}w\na{SP2}b", "x\r\r\r\ry\rz\rw\ra\r\r\rb"},
        {"LS", "{LS2}a\n{LS}b\nc", "a\r\rb\rc"},
        {"DT: the first eleven", "{DT1,2,3,4,5,6,7,8,9,10,11,99}{LL200}abcdefghijkl{TAB}m",
         "abcdefghijklm"},
        {"DT: none", "{DT3}{DT}a{TAB}b", "a" + Blanks(8) + "b"},
    });
}

TEST_F(WordWiseTest, CommandsPutThingsIntoTheText) {
    Expect({
        {"PP", "{PN41}page {PP}.", "page 41."},
        {"DP: the low byte", "{DP300}a`b", "a,b"},
        {"DP: whatever it is", "{DP13}a`b", "a\rb"},
        {"PC: never the pound sign's code", "{PC`}a`b|c", "a`b|c"},
        {"US, UE, DS, DE", "{US}a{DS}b{UE}c{DE}", "<u>a<b>b</u>c"},
        {"ES, GF, OC", "a{ES}b{GF\"NAME\"}c{OC27,69,1}d", "abcd"},
        {"comments", "a{* any words, and more}b{**}c", "abc"},
        {"a comment of nothing goes on", "a{*}b{ES}c", "ac"},
        {"ended by a paragraph's end", "x\n{2}JO\ny", "x\ry"},
        {"ended by the next one", "{2}JO{2}NJ{7}a", "a"},
    });
}

// Meant: what a command in the line leaves in the register is what SP and BP then count by.
TEST_F(WordWiseTest, CodesForThePrinterChangeTheCountOfBlankLines) {
    Expect({
        {"one digit", "x\n{OC1}{SP5}y", "x\r\ry"},
        {"two and more", "x\n{OC999}{SP5}y", "x\r\r\ry"},
        {"none, and the end of a paragraph", "x\n{CE2}{2}OC\n{SP9}y", "x\r" + Blanks(35) + "\ry"},
        {"none: a line as any other", "x\n{LS4}{OC}{SP9}y", "x\r\r\r\r\ry"},
    });
}

// Meant: each later group of commands on a line begins with the command behind the first byte.
TEST_F(WordWiseTest, OfTheFirstLettersRunOncePerLaterGroup) {
    Expect({
        {"a page number beyond the end is not shown", "{PP}a{US}b{UE}c", "1a<u>b</u>c"},
        {"centring starts anew", "{CE2}x\n{LL20}a{US}b{UE}c\nd\n",
         Blanks(34) + "x\r" + Blanks(8) + "a<u>b</u>c\r" + Blanks(9) + "d\r"},
    });
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
    const std::string document = "one {DS}bold\n{CE2}two\nthree\n";
    const std::string alone = Format(document);
    std::string inner;
    Put(document);
    desktop.now = std::chrono::hours(1); // so that the first yield pumps
    desktop.on_pump = [&] {
        if (!inner.empty())
            return;
        inner = "begun";
        Module1::DiscImg.Write(0, std::array<std::uint8_t, 3>{'i', 13, 'i'});
        Module1::gOffset = 0;
        Module1::gSize = 3;
        inner = Format();
    };
    EXPECT_EQ(Format(), alone);
    EXPECT_EQ(inner, "i\ri");
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
        {"an indent above 255", "{LL999}{IN300}a\nb", "a\r" + Blanks(44) + "b"},
        {"a heading without its end", "a\n{DH}heading", "a\r"},
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
