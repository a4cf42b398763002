#include "disc/catalogue.h"
#include "platform/text.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/basic.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/text_view.h"

#include <gmock/gmock.h>
#include <map>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using namespace std::string_literals;
using Pieces = std::vector<std::string>;

constexpr int kSector = 3;
constexpr int kBase = kSector * kSectorBytes;

/// The bytes of "0D 00 0A": two digits each, one space between them.
std::string FromHex(std::string_view digits) {
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 3)
        bytes += static_cast<char>(HexValue(digits.substr(at, 2)));
    return bytes;
}

void Put(int at, std::string_view bytes) {
    Module1::DiscImg.Write(at, AsBytes(bytes));
}

/// What a renderer hands over of `length` bytes at `base`.
Pieces List(void (*list)(int, std::uint32_t, ViewSink&), int base, std::uint32_t length) {
    TextSink sink;
    list(base, length, sink);
    return sink.pieces;
}

Pieces Text(const std::string& bytes) {
    Put(kBase, bytes);
    return List(ListText, kBase, static_cast<std::uint32_t>(bytes.size()));
}

/// The listing of a program that is written as hex digits; `behind` follows on the disc.
Pieces Basic(std::string_view program, std::string_view behind = {}, int base = kBase) {
    const std::string bytes = FromHex(program);
    Put(base, bytes + FromHex(behind));
    return List(ListBasic, base, static_cast<std::uint32_t>(bytes.size()));
}

/// How line 10 of these bytes is listed, without its number and its end.
std::string BasicLine(const std::string& bytes) {
    const std::string line = Basic("0D 00 0A 00 " + bytes + " 0D FF").at(0);
    EXPECT_TRUE(line.starts_with("   10 ") && line.ends_with("\r")) << line;
    return line.substr(6, line.size() - 7);
}

Pieces Disassembly(int sector, std::uint32_t length, int address = 0x1900) {
    TextSink sink;
    Disassemble(sector, length, static_cast<std::uint16_t>(address), sink);
    return sink.pieces;
}

Pieces Code(std::string_view code, int address = 0x1900) {
    const std::string bytes = FromHex(code);
    Put(kBase, bytes);
    return Disassembly(kSector, static_cast<std::uint32_t>(bytes.size()), address);
}

/// Mnemonic and operand of the first instruction of `code`.
std::string Instruction(std::string_view code, int address = 0x1900) {
    return std::string(Trim(std::string_view(Code(code, address).at(0)).substr(18, 17)));
}

class FileViews : public DiscTest {};

TEST_F(FileViews, ATextIsHandedOverALineAtATimeWithoutItsLineFeeds) {
    EXPECT_THAT(Text("one\rtwo\r\nthree\n\rfour\nfive"),
                ElementsAre("one\r", "two\r", "three\r", "fourfive"));
    EXPECT_THAT(Text(""), IsEmpty());
}

TEST_F(FileViews, ATextKeepsEveryOtherByteAndHoldsUpNobody) {
    desktop.now = std::chrono::hours(1); // the last pump was long ago
    std::string all;
    for (int code = 0; code < kDriveBytes; ++code)
        all += static_cast<char>(code % 256 == '\r' || code % 256 == '\n' ? 'x' : code);
    EXPECT_THAT(Text(all), ElementsAre(all)) << "one piece";
    EXPECT_GT(desktop.pumps, 0);
}

TEST_F(FileViews, HexHasSixteenBytesInARowAndMeantCharactersWithoutTheirTopBit) {
    Put(0x100, "0123456789ABCDE\r\x7F\xFF\x1F\x9F\x20\xA0\x41\xC1\x7E\xFE\x00\x80"s);
    const std::string first =
        "000000 : 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 0D  0123456789ABCDE.\r";
    EXPECT_THAT(List(ListHex, 0x100, 0), IsEmpty());
    EXPECT_THAT(List(ListHex, 0x100, 16), ElementsAre(first));
    EXPECT_THAT(List(ListHex, 0x100, 28),
                ElementsAre(first, "000010 : 7F FF 1F 9F 20 A0 41 C1 7E FE 00 80 " +
                                       std::string(4 * 3, ' ') + " ....  AA~~..\r"));
}

TEST_F(FileViews, BehindTheBlockAFileIsZerosButALengthThatReadsFFEndsThere) {
    Put(kDiscBytes - 1, "Z");
    const std::string end(14 * 3, ' ');
    EXPECT_THAT(List(ListText, kDiscBytes - 1, 3), ElementsAre("Z\0\0"s));
    EXPECT_THAT(List(ListHex, kDiscBytes - 1, 2), ElementsAre("000000 : 5A 00 " + end + " Z.\r"));
    for (const std::uint32_t length : {0xFF0000U, 0xFFFFFFU}) {
        EXPECT_THAT(List(ListText, kDiscBytes - 1, length), ElementsAre("Z"));
        EXPECT_THAT(List(ListHex, kDiscBytes - 1, length),
                    ElementsAre("000000 : 5A    " + end + " Z\r"));
        EXPECT_THAT(List(ListHex, kDiscBytes + 256, length), IsEmpty());
    }
    Put(kDiscBytes - 9, FromHex("0D 00 0A 05 F1 0D 00 14 05"));
    for (const std::uint32_t length : {9U, 0x2FFFFU, 0xFF0000U})
        EXPECT_THAT(List(ListBasic, kDiscBytes - 9, length), ElementsAre("   10 PRINT\r"));
}

TEST_F(FileViews, BasicComesALineAtATimeWhateverItsLengthByteSays) {
    EXPECT_THAT(Basic("0D 00 0A 07 F1 20 31 0D 00 14 FF 0D FE FF 00 F4 0D FF", "00 0A 00 0D"),
                ElementsAre("   10 PRINT 1\r", "   20 \r", "65279 REM\r"));
    EXPECT_THAT(Basic("0D 00 0A 00 22 F1 0D 00 14 00 F1 0D FF"),
                ElementsAre("   10 \"\xF1\r", "   20 PRINT\r"))
        << "an open quote ends with its line";
}

TEST_F(FileViews, BasicKeywordsStandOutsideQuotesAndEverythingElseAsItIs) {
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [what, bytes, shown] :
         {Row{"first and last token", "80 FF", "ANDOSCLI"},
          Row{"each variable has two tokens", "8F 90 91 92 93 CF D0 D1 D2 D3",
              "PTRPAGETIMELOMEMHIMEMPTRPAGETIMELOMEMHIMEM"},
          Row{"a token without a keyword", "CE 41", "A"},
          Row{"in quotes, and behind them", "22 F1 8D 22 F1", "\"\xF1\x8D\"PRINT"},
          Row{"in REM and DATA", "F4 20 22 81 22 81 DC 8D 54 4A 40", "REM \"\x81\"DIVDATA10"},
          Row{"control codes, in quotes too", "00 41 22 1F 22", " [0x00] A\" [0x1F] \""},
          Row{"delete", "7F 22 7F", "\x7F\"\x7F"},
          // Meant: from 16384 on, numbers in a line come out too small.
          Row{"numbers", "8D 44 64 40 8D 74 64 40 8D 64 7F 7F", "10016416383"},
          Row{"large and odd numbers", "8D 50 40 40 8D 54 00 3F 8D FF FF FF", "0-32049087"}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(BasicLine(bytes), shown);
    }
}

TEST_F(FileViews, ABasicLineCutByTheEndOfTheFileIsShownOnlyIfACrFollows) {
    using Row = std::tuple<const char*, const char*, const char*, Pieces>;
    for (const auto& [what, bytes, behind, pieces] :
         {Row{"in its text", "0D 00 0A 05 F1", "0D FF", {}},
          Row{"in its header", "0D 00 0A", "05 0D FF", {"   10 \r"}},
          Row{"in its number", "0D 00", "0A 05 0D FF", {}},
          Row{"in a number in its text", "0D 00 0A 09 E5 8D", "44 64 40 0D FF", {}},
          Row{"before anything", "", "0D 00 0A 05 F1 0D FF", {}}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Basic(bytes, behind), pieces);
    }
}

TEST_F(FileViews, WhatStartsWithoutCrIsNoBasicProgram) {
    const auto refused = ElementsAre("This does not appear to be a BASIC program");
    EXPECT_THAT(Basic("00 0D 00 0A 05 F1 0D FF"), refused);
    EXPECT_THAT(List(ListBasic, kDiscBytes + 256, 0xFFFFFF), refused);
}

TEST_F(FileViews, EventsRunWithinABasicLineAsLongAsADrive) {
    Put(0, FromHex("0D 00 0A 05"));
    Module1::DiscImg.Fill(4, kDriveBytes, 0x8D); // a number every four bytes
    EXPECT_THAT(List(ListBasic, 0, kDriveBytes), IsEmpty());
    desktop.now = std::chrono::hours(1); // the last pump was long ago
    desktop.on_pump = [] { Put(kDriveBytes - 4, "\r"); };
    EXPECT_THAT(List(ListBasic, 0, kDriveBytes), SizeIs(1)) << "now its end is there";
}

TEST_F(FileViews, CodeHasItsColumnsAndAnEmptyLineBehindRtsAndRti) {
    EXPECT_THAT(
        Code("A9 41 20 EE FF D0 F9 60 0A 40 4C 00 19"),
        ElementsAre(
            "1900  A9 41       LDA  #&41        )A\r", "1902  20 EE FF    JSR  oswrch       n.\r",
            "1905  D0 F9       BNE  &1900       Py\r", "1907  60          RTS              `\r\r",
            "1908  0A          ASL  A           .\r", "1909  40          RTI              @\r\r",
            "190A  4C 00 19    JMP  &1900       L..\r", "190D  00          BRK              .\r"));
    for (const auto& [byte, shown] : std::map<std::string, std::string>{
             {"1E", "."}, {"1F", "\x1F"}, {"7F", "."}, {"9F", "\x1F"}}) // Meant: 31 is let through.
        EXPECT_THAT(Code("A9 " + byte).at(0), EndsWith(")" + shown + "\r")) << byte;
}

TEST_F(FileViews, CodeIsThatOfThe65C02AndMeantANopAtF4) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [bytes, instruction] :
         {Row{"80 FE", "BRA  &1900"}, Row{"F4", "NOP"}, Row{"FC", "???"},
          // The system's entry points have names in JMP and JSR only.
          Row{"4C B9 FF", "JMP  osrdrm"}, Row{"4C F7 FF", "JMP  oscli"},
          Row{"20 EF FF", "JSR  &FFEF"}, Row{"20 EE FE", "JSR  &FEEE"},
          Row{"6C EE FF", "JMP  (&FFEE)"}, Row{"AD EE FF", "LDA  &FFEE"}})
        EXPECT_EQ(Instruction(bytes), instruction) << bytes;
    EXPECT_THAT(Code("F4 FC", 0xFFFF),
                ElementsAre(StartsWith("FFFF  "), StartsWith("0000  "), StartsWith("0001  ")));
    EXPECT_EQ(Instruction("D0 FD", 0), "BNE  &FFFF") << "addresses wrap at 16 bits";
}

TEST_F(FileViews, CodeGoesOnToTheByteBehindTheFile) {
    Put(kBase, FromHex("EA A9 41 EA"));
    EXPECT_THAT(Disassembly(kSector, 1), SizeIs(2));
    EXPECT_THAT(Disassembly(kSector, 2), SizeIs(2)) << "the file ends within an instruction";
    Module1::cur_drive = 1;
    Put(kDiscBytes - 1, "\x20");
    using Row = std::tuple<const char*, int, std::uint32_t, std::size_t>;
    for (const auto& [what, sector, length, lines] :
         {Row{"runs past the block", 799, 300, 299}, Row{"reads FF0000", 799, 0xFF0000, 256},
          Row{"starts behind it", 1023, 0xFFFFFF, 1}})
        EXPECT_THAT(Disassembly(sector, length), SizeIs(lines)) << what;
}

TEST_F(FileViews, WhatStartsWithCrAndEndsWith255IsTakenForBasic) {
    const auto refused = ElementsAre("This appears to be a BASIC program");
    EXPECT_THAT(Code("0D EA FF"), refused) << "machine code even";
    for (const char* bytes : {"0D", "0D 00 0A 05 F1 0D FE", "0C 00 0A 05 F1 0D FF"})
        EXPECT_THAT(Code(bytes), testing::Not(refused)) << bytes;
    Put(kBase - 1, FromHex("FF 0D"));
    EXPECT_THAT(Disassembly(kSector, 0), refused) << "an empty file has the last byte of the one "
                                                     "before it";
    Put(0, "\r");
    EXPECT_THAT(Disassembly(0, 0), ElementsAre(StartsWith("1900  0D ")));
}

TEST_F(FileViews, TheEndOfCodeFollowsTheCurrentDrive) {
    Module1::DiscImg.Fill(0, kDiscBytes, 0xAD); // three bytes each
    desktop.now = std::chrono::hours(1);        // the last pump was long ago
    desktop.on_pump = [] { Module1::cur_drive = 1 - Module1::cur_drive; };
    EXPECT_THAT(Disassembly(0, 10), SizeIs((kDriveBytes + 10U) / 3 + 1));
    desktop.now += std::chrono::hours(1);
    EXPECT_THAT(Disassembly(0, 10), SizeIs(1)) << "back on drive 0, the end lies behind";
}

// --- What a real machine printed.

TEST_F(FileViews, BasicIsListedAsByTheMachine) {
    for (const GoldenPage& page : GoldenPages("list.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        std::string text = JoinLines(page.lines);
        // Only line numbers that lose bits differ.
        for (const auto& [machine, ours] : std::map<std::string, std::string>{
                 {"THEN GOTO 32767", "THEN GOTO 16191"}, {"GOTO 16384", "GOTO 0"}})
            if (const auto at = text.find(machine); at != std::string::npos)
                text.replace(at, machine.size(), ours);
        TextSink sink;
        ListBasic(base, length, sink);
        EXPECT_EQ(sink.Text(), text);
    }
}

/// A line of the machine's assembler in our columns: address, bytes and source, without the label.
/// It knows names and writes numbers as they were typed.
std::string OurAssembly(const std::string& printed) {
    const std::map<std::string, std::string> ours{{"msg,X", "&1910,X"}, {"done", "&190D"},
                                                  {"loop", "&1902"},    {"#0", "#&00"},
                                                  {"&FFE3", "osasci"},  {"&FFE7", "osnewl"}};
    std::string operand = printed.size() > 28 ? printed.substr(28) : "";
    if (const auto differs = ours.find(operand); differs != ours.end())
        operand = differs->second;
    std::string line = printed.substr(0, 4) + "  " + printed.substr(5, 9);
    line.resize(18, ' ');
    line += printed.substr(24, 3) + "  " + operand;
    line.resize(35, ' ');
    return line;
}

TEST_F(FileViews, CodeAgreesWithTheMachinesAssembler) {
    for (const GoldenPage& page : GoldenPages("assembly.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        const auto address = static_cast<int>(HexValue(page.lines.at(0).substr(0, 4)));
        const Pieces pieces = Disassembly(base / kSectorBytes, length, address);
        ASSERT_GT(pieces.size(), page.lines.size()) << "text or the byte behind the file follows";
        for (std::size_t i = 0; i < page.lines.size(); ++i)
            EXPECT_EQ(pieces[i].substr(0, 35), OurAssembly(page.lines[i]));
    }
}

} // namespace
} // namespace quoravel
