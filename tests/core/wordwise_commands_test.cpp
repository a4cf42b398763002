#include "support/wordwise_test.h"

namespace quoravel {
namespace {

using WordWise::State;
using WordWiseCommands = WordWiseTest;

TEST_F(WordWiseCommands, SetNumbers) {
    struct Setting {
        const char* document;
        int State::*variable;
        int value;
    };

    for (const Setting& r : std::vector<Setting>{
             {"{IN59}", &State::Indent, 59},
             {"{IN60}", &State::Indent, 0}, // too near the line's end
             {"{IN5}{IN}", &State::Indent, 0},
             {"{IN5}{CI}", &State::Indent, 0},
             {"{IN5}{TI9}", &State::Indent, 5},
             {"{FL6}", &State::FLValue, 6},
             {"{FL6}{FL}", &State::FLValue, 0},
             {"{LM6}", &State::FLValue, 6},
             {"{FL6}{LM}", &State::FLValue, 6},
             {"{LL11}", &State::LineLength, 11},
             {"{LL10}", &State::LineLength, 70},
             {"{LL20}{LL0}", &State::LineLength, 70},
             {"{LL20}{LL}", &State::LineLength, 70},
             {"{IN9}{LL20}", &State::LineLength, 20},
             {"{IN9}{LL19}", &State::LineLength, 70},
             {"{PL10}", &State::PageLength, 10},
             {"{PL5}", &State::PageLength, 66},
             {"{PL20}{PL}", &State::PageLength, 66},
             {"{TS79}", &State::TopSpace, 79},
             {"{TS0}", &State::TopSpace, 0},
             {"{TS80}", &State::TopSpace, 6},
             {"{BS9}{BS}", &State::BottomSpace, 6},
             {"{HP79}", &State::HeadingPosition, 79},
             {"{HP80}", &State::HeadingPosition, 2},
             {"{FP9}{FP}", &State::FootingPosition, 2},
             {"{LS0}", &State::LineSpacing, 0},
             {"{LS3}{LS}", &State::LineSpacing, 1},
             {"{LS3}{SS}", &State::LineSpacing, 1},
             {"{CE3}", &State::CentreValue, 3},
             {"{CE}", &State::CentreValue, 1},
             {"{PN7}{PN}", &State::PageNumber, 7},
             {"{PC#}", &State::PadCharacter, '#'},
             {"{PC#}{PC}", &State::PadCharacter, 124},
             {"{2}PC{127}", &State::PadCharacter, 124},
             {"{DP163}", &State::PoundSign, 163},
             {"{DP163}{DP}", &State::PoundSign, 96},
             // How numbers and commands are written.
             {"{LS12345}", &State::LineSpacing, 123},
             {"{LS12,9}", &State::LineSpacing, 12},
             {"{LS 5}", &State::LineSpacing, 1},
             {"{ls5}", &State::LineSpacing, 5},
             {"{LS5{2}", &State::LineSpacing, 5},
         }) {
        SCOPED_TRACE(r.document);
        Format(r.document);
        EXPECT_EQ(WordWise::state.*r.variable, r.value);
        EXPECT_TRUE(desktop.boxes.empty());
    }
}

TEST_F(WordWiseCommands, SwitchThingsOnAndOff) {
    struct Switch {
        const char* on;
        const char* off;
        bool State::*flag;
    };

    for (const Switch& r :
         {Switch{"{JO}", "{NJ}", &State::Justify}, Switch{"{EP}", "{CO}", &State::EnablePaging},
          Switch{"{EM}", "{DM}", &State::EnableMessage}}) {
        SCOPED_TRACE(r.on);
        Format(r.on);
        EXPECT_TRUE(WordWise::state.*r.flag);
        Format(std::string(r.on) + r.off);
        EXPECT_FALSE(WordWise::state.*r.flag);
    }
}

TEST_F(WordWiseCommands, MoveAndPlaceText) {
    Expect({
        {"TI", "{IN5}a\n{TI2}b\nc", Blanks(5) + "a\r  b\r" + Blanks(5) + "c"},
        {"TI with too much", "{TI60}a", "a"},
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

TEST_F(WordWiseCommands, PutThingsIntoTheText) {
    Expect({
        {"PP", "{PN41}page {PP}.", "page 41."},
        {"DP: the low byte", "{DP300}a`b", "a,b"},
        {"DP: whatever it is", "{DP13}a`b", "a\rb"},
        {"PC: never the pound sign's code", "{PC`}a`b|c", "a`b|c"},
        {"US, UE, DS, DE", "{US}a{DS}b{UE}c{DE}", "<u>a<b>b</u>c"},
        {"ES, GF, OC", "a{ES}b{GF\"NAME\"}c{OC27,69,1}d", "abcd"},
        {"comments", "a{* any words, and more}b{**}c", "abc"},
        {"a comment of nothing goes on", "a{*}b{ES}c", "ac"},
        {"no letters", "a{2}{1}{7}b", "ab"},
        {"ended by a paragraph's end", "x\n{2}JO\ny", "x\ry"},
        {"ended by the next one", "{2}JO{2}NJ{7}a", "a"},
    });
}

// Meant: what a command in the line leaves in the register is what SP and BP then count by.
TEST_F(WordWiseCommands, CodesForThePrinterChangeTheCountOfBlankLines) {
    Expect({
        {"one digit", "x\n{OC1}{SP5}y", "x\r\ry"},
        {"two and more", "x\n{OC999}{SP5}y", "x\r\r\ry"},
        {"none, and the end of a paragraph", "x\n{CE2}{2}OC\n{SP9}y", "x\r" + Blanks(35) + "\ry"},
        {"none: a line as any other", "x\n{LS4}{OC}{SP9}y", "x\r\r\r\r\ry"},
    });
}

// Meant: each later group of commands on a line begins with the command behind the first byte.
TEST_F(WordWiseCommands, OfTheFirstLettersRunOncePerLaterGroup) {
    Expect({
        {"a page number beyond the end is not shown", "{PP}a{US}b{UE}c", "1a<u>b</u>c"},
        {"centring starts anew", "{CE2}x\n{LL20}a{US}b{UE}c\nd\n",
         Blanks(34) + "x\r" + Blanks(8) + "a<u>b</u>c\r" + Blanks(9) + "d\r"},
    });
}

} // namespace
} // namespace quoravel
