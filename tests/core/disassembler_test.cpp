#include "disc/catalogue.h"
#include "platform/text.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/hex_bytes.h"
#include "support/text_sink.h"
#include "view/disassembler.h"

#include <chrono>
#include <gmock/gmock.h>
#include <map>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;
using Pieces = std::vector<std::string>;

constexpr int kSector = 3;
constexpr int kBase = kSector * kSectorBytes;
constexpr int kColumns = 35; ///< up to where the bytes stand as characters
const std::string kRefusal = "This appears to be a BASIC program";

Pieces Disassembly(int sector, std::uint32_t length, int address = 0x1900) {
    TextSink sink;
    Disassemble(sector, length, static_cast<std::uint16_t>(address), sink);
    return sink.pieces;
}

class Disassembler : public DiscTest {
  protected:
    /// The pieces of a file that holds `bytes`.
    static Pieces View(std::string_view bytes, int address = 0x1900) {
        const auto code = HexBytes(bytes);
        Module1::DiscImg.Write(kBase, code);
        return Disassembly(kSector, static_cast<std::uint32_t>(code.size()), address);
    }

    /// Mnemonic and operand of the first instruction of `bytes`.
    static std::string Instruction(std::string_view bytes, int address = 0x1900) {
        return std::string(Trim(std::string_view(View(bytes, address).at(0)).substr(18, 17)));
    }
};

TEST_F(Disassembler, WritesColumnsAndAnEmptyLineBehindRtsAndRti) {
    EXPECT_THAT(
        View("A9 41 20 EE FF D0 F9 60 0A 40 4C 00 19"),
        ElementsAre(
            "1900  A9 41       LDA  #&41        )A\r", "1902  20 EE FF    JSR  oswrch       n.\r",
            "1905  D0 F9       BNE  &1900       Py\r", "1907  60          RTS              `\r\r",
            "1908  0A          ASL  A           .\r", "1909  40          RTI              @\r\r",
            "190A  4C 00 19    JMP  &1900       L..\r", "190D  00          BRK              .\r"));
}

TEST_F(Disassembler, CharactersLoseBit7AndMeantCode31IsLetThrough) {
    for (const auto& [byte, shown] : std::map<std::string, std::string>{
             {"1E", "."}, {"1F", "\x1F"}, {"20", " "}, {"7F", "."}, {"9F", "\x1F"}, {"FF", "."}}) {
        SCOPED_TRACE(byte);
        EXPECT_THAT(View("A9 " + byte).at(0), EndsWith(")" + shown + "\r"));
    }
}

TEST_F(Disassembler, KnowsThe65C02AndMeantANopAtF4) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [bytes, instruction] :
         {Row{"1A", "INC  A"}, Row{"3A", "DEC  A"}, Row{"80 FE", "BRA  &1900"},
          Row{"89 12", "BIT  #&12"}, Row{"B2 12", "LDA  (&12)"}, Row{"7C 34 12", "JMP  (&1234,X)"},
          Row{"9C 34 12", "STZ  &1234"}, Row{"1C 34 12", "TRB  &1234"}, Row{"DA", "PHX"},
          Row{"7A", "PLY"}, Row{"F4", "NOP"}, Row{"FC", "???"}})
        EXPECT_EQ(Instruction(bytes), instruction) << bytes;
    EXPECT_THAT(View("F4 FC 54 EA"),
                ElementsAre(StartsWith("1900  F4 "), StartsWith("1901  FC "),
                            StartsWith("1902  54 "), StartsWith("1903  EA "), testing::_));
}

TEST_F(Disassembler, NamesTheSystemsEntryPointsInJmpAndJsrOnly) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [bytes, instruction] :
         {Row{"20 EE FF", "JSR  oswrch"}, Row{"4C B9 FF", "JMP  osrdrm"},
          Row{"4C F7 FF", "JMP  oscli"}, Row{"20 EF FF", "JSR  &FFEF"},
          Row{"20 EE FE", "JSR  &FEEE"}, Row{"6C EE FF", "JMP  (&FFEE)"},
          Row{"AD EE FF", "LDA  &FFEE"}})
        EXPECT_EQ(Instruction(bytes), instruction) << bytes;
}

TEST_F(Disassembler, AddressesAndBranchesWrapAt16Bits) {
    EXPECT_EQ(Instruction("D0 FD", 0x0000), "BNE  &FFFF");
    EXPECT_EQ(Instruction("D0 7F", 0xFFF0), "BNE  &0071");
    EXPECT_THAT(View("EA EA", 0xFFFF),
                ElementsAre(StartsWith("FFFF  "), StartsWith("0000  "), StartsWith("0001  ")));
}

TEST_F(Disassembler, TheByteBehindTheFileIsShownIfTheSweepLandsOnIt) {
    Module1::DiscImg.Write(kBase, HexBytes("EA A9 41 EA"));
    using Row = std::tuple<const char*, std::uint32_t, std::size_t>;
    for (const auto& [what, length, lines] :
         {Row{"empty file", 0, 1}, Row{"ends with an instruction", 1, 2},
          Row{"ends within one", 2, 2}, Row{"the next ends with it", 3, 3}})
        EXPECT_EQ(Disassembly(kSector, length).size(), lines) << what;
}

TEST_F(Disassembler, WhatStartsWithCrAndEndsWith255IsTakenForBasic) {
    using Row = std::tuple<const char*, const char*, bool>;
    for (const auto& [what, bytes, refused] :
         {Row{"machine code even", "0D EA FF", true}, Row{"one byte", "0D", false},
          Row{"last byte differs", "0D 00 0A 05 F1 0D FE", false},
          Row{"first byte differs", "0C 00 0A 05 F1 0D FF", false}})
        EXPECT_EQ(View(bytes) == Pieces{kRefusal}, refused) << what;
    Module1::DiscImg.Write(kBase - 1, HexBytes("FF 0D"));
    EXPECT_THAT(Disassembly(kSector, 0), ElementsAre(kRefusal)) << "an empty file has the last "
                                                                   "byte of the one before it";
    Module1::DiscImg.Write(0, HexBytes("0D"));
    EXPECT_THAT(Disassembly(0, 0), ElementsAre(StartsWith("1900  0D ")));
}

TEST_F(Disassembler, TheEndFollowsTheCurrentDrive) {
    Module1::DiscImg.Fill(0, kDiscBytes, 0xAD); // three bytes each
    desktop.now = std::chrono::hours(1);        // the last pump was long ago
    desktop.on_pump = [] { Module1::cur_drive = 1 - Module1::cur_drive; };
    EXPECT_EQ(Disassembly(0, 10).size(), (kDriveBytes + 10U) / 3 + 1);
    desktop.now += std::chrono::hours(1);
    EXPECT_EQ(Disassembly(0, 10).size(), 1U) << "back on drive 0, the end lies behind";
}

TEST_F(Disassembler, BehindTheBlockAreZerosButALengthThatReadsFFEndsThere) {
    Module1::cur_drive = 1;
    Module1::DiscImg.SetByte(kDiscBytes - 1, 0x20);
    using Row = std::tuple<const char*, int, std::uint32_t, std::size_t>;
    for (const auto& [what, sector, length, lines] :
         {Row{"runs past the end", 799, 300, 299}, Row{"starts there", 800, 9, 10},
          Row{"reads FF0000", 799, 0xFF0000, 256}, Row{"reads FFFFFF", 1023, 0xFFFFFF, 1}})
        EXPECT_EQ(Disassembly(sector, length).size(), lines) << what;
    EXPECT_THAT(Disassembly(799, 256).back(), StartsWith("19FF  20 00 00    JSR  &0000"));
}

/// A line of the machine's assembler in our columns: address, bytes, a label, the source.
std::string InOurColumns(const std::string& printed) {
    // The assembler knows names and writes numbers as they were typed.
    static const std::map<std::string, std::string> ours{
        {"msg,X", "&1910,X"}, {"done", "&190D"},   {"loop", "&1902"},
        {"#0", "#&00"},       {"&FFE3", "osasci"}, {"&FFE7", "osnewl"},
    };
    const std::string source = printed.substr(24);
    std::string operand = source.size() > 4 ? source.substr(4) : "";
    if (const auto differs = ours.find(operand); differs != ours.end())
        operand = differs->second;
    std::string line = printed.substr(0, 4) + "  " + printed.substr(5, 9);
    line.resize(18, ' ');
    line += source.substr(0, 3) + "  " + operand;
    line.resize(kColumns, ' ');
    return line;
}

TEST_F(Disassembler, AgreesWithTheMachinesAssembler) {
    for (const GoldenPage& page : GoldenPages("assembly.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        const auto [base, length] = PlaceOf(page);
        const auto address = static_cast<int>(HexValue(page.lines.at(0).substr(0, 4)));
        const Pieces pieces = Disassembly(base / kSectorBytes, length, address);
        ASSERT_GT(pieces.size(), page.lines.size()) << "text or the byte behind the file follows";
        for (std::size_t i = 0; i < page.lines.size(); ++i)
            EXPECT_EQ(pieces[i].substr(0, kColumns), InOurColumns(page.lines[i]));
    }
}

} // namespace
} // namespace quoravel
