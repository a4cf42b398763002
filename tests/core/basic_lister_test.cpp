#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/hex_bytes.h"
#include "support/text_sink.h"
#include "view/basic.h"

#include <chrono>
#include <gmock/gmock.h>
#include <map>
#include <tuple>

namespace quoravel {
namespace {

using testing::ElementsAre;
using Pieces = std::vector<std::string>;

constexpr int kBase = 0x300;

class BasicLister : public DiscTest {
  protected:
    /// The pieces of the listing of a file at `base` that holds `bytes`; `behind` follows on the
    /// disc.
    static Pieces List(std::string_view bytes, std::string_view behind = {}, int base = kBase) {
        const auto program = HexBytes(bytes);
        Module1::DiscImg.Write(base, program);
        Module1::DiscImg.Write(base + std::ssize(program), HexBytes(behind));
        return ListFile(base, static_cast<std::uint32_t>(program.size()));
    }

    static Pieces ListFile(int base, std::uint32_t length) {
        TextSink sink;
        ListBasic(base, length, sink);
        return sink.pieces;
    }

    /// How line 10 of these bytes is listed, without its number and its end.
    static std::string Line(const std::string& bytes) {
        const Pieces pieces = List("0D 00 0A 00 " + bytes + " 0D FF");
        EXPECT_EQ(pieces.size(), 1U);
        const std::string line = pieces.empty() ? "" : pieces[0];
        EXPECT_TRUE(line.starts_with("   10 ") && line.ends_with("\r")) << line;
        return line.substr(6, line.size() - 7);
    }
};

TEST_F(BasicLister, HandsOverALineAtATimeWhateverItsLengthByteSays) {
    EXPECT_THAT(List("0D 00 0A 07 F1 20 31 0D 00 14 FF 0D FE FF 00 F4 0D FF", "00 0A 00 0D"),
                ElementsAre("   10 PRINT 1\r", "   20 \r", "65279 REM\r"));
    EXPECT_THAT(List("0D 00 0A 00 22 F1 0D 00 14 00 F1 0D FF"),
                ElementsAre("   10 \"\xF1\r", "   20 PRINT\r"))
        << "an open quote ends with its line";
}

TEST_F(BasicLister, WritesKeywordsOutsideQuotesAndEverythingElseAsItIs) {
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [what, bytes, shown] :
         {Row{"no space of its own", "E7 58 8C 8B", "IFXTHENELSE"},
          Row{"first and last token", "80 FF", "ANDOSCLI"},
          Row{"each variable has two tokens", "8F 90 91 92 93 CF D0 D1 D2 D3",
              "PTRPAGETIMELOMEMHIMEMPTRPAGETIMELOMEMHIMEM"},
          Row{"a token without a keyword", "CE 41", "A"},
          Row{"in quotes, and behind them", "22 F1 8D 22 F1", "\"\xF1\x8D\"PRINT"},
          Row{"in REM and DATA", "F4 20 22 81 22 81 DC 8D 54 4A 40", "REM \"\x81\"DIVDATA10"},
          Row{"control codes, in quotes too", "00 41 07 22 1F 22", " [0x00] A [0x07] \" [0x1F] \""},
          Row{"delete", "7F 22 7F", "\x7F\"\x7F"}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Line(bytes), shown);
    }
}

TEST_F(BasicLister, LineNumbersInALineAreRightBelow16384AndTooSmallFromThereOn) {
    using Row = std::tuple<std::string, const char*>;
    for (const auto& [bytes, shown] :
         {Row{"44 64 40", "100"}, Row{"74 64 40", "164"}, Row{"64 7F 7F", "16383"},
          Row{"50 40 40", "0"}, Row{"54 00 3F", "-320"}, Row{"FF FF FF", "49087"}}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(Line("E5 8D " + bytes), std::string("GOTO") + shown);
    }
}

TEST_F(BasicLister, ALineCutByTheEndOfTheFileIsShownOnlyIfACrFollows) {
    using Row = std::tuple<const char*, const char*, const char*, Pieces>;
    for (const auto& [what, bytes, behind, pieces] :
         {Row{"in its text", "0D 00 0A 05 F1", "0D FF", {}},
          Row{"behind its header", "0D 00 0A 05", "0D FF", {"   10 \r"}},
          Row{"behind its header, no CR", "0D 00 0A 05", "F1 0D FF", {}},
          Row{"in its header", "0D 00 0A", "05 0D FF", {"   10 \r"}},
          Row{"in its number", "0D 00", "0A 05 0D FF", {}},
          Row{"in a number in its text", "0D 00 0A 09 E5 8D", "44 64 40 0D FF", {}},
          Row{"before the end", "0D 00 0A 05 F1 0D", "00 14 05 F1", {"   10 PRINT\r"}},
          Row{"before anything", "", "0D 00 0A 05 F1 0D FF", {}}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(List(bytes, behind), pieces);
    }
}

TEST_F(BasicLister, AFileThatStartsWithoutCrGetsOneMessageWithoutALineEnd) {
    const auto refused = ElementsAre("This does not appear to be a BASIC program");
    EXPECT_THAT(List("00 0D 00 0A 05 F1 0D FF"), refused);
    EXPECT_THAT(List("", "FF"), refused);
    EXPECT_THAT(ListFile(kDiscBytes + 256, 0xFFFFFF), refused);
}

TEST_F(BasicLister, AFileThatRunsPastTheBlockListsWhatIsThere) {
    EXPECT_THAT(List("0D 00 0A 05 F1 0D 00 14 05", {}, kDiscBytes - 9),
                ElementsAre("   10 PRINT\r"));
    for (const std::uint32_t length : {0x100U, 0x2FFFFU, 0xFF0000U})
        EXPECT_THAT(ListFile(kDiscBytes - 9, length), ElementsAre("   10 PRINT\r")) << length;
}

TEST_F(BasicLister, EventsRunWithinALineAsLongAsADrive) {
    Module1::DiscImg.Write(0, HexBytes("0D 00 0A 05"));
    Module1::DiscImg.Fill(4, kDriveBytes, 0x8D); // a number every four bytes
    EXPECT_THAT(ListFile(0, kDriveBytes), ElementsAre());
    desktop.now = std::chrono::hours(1); // the last pump was long ago
    desktop.on_pump = [] { Module1::DiscImg.SetByte(kDriveBytes - 4, 13); };
    EXPECT_EQ(ListFile(0, kDriveBytes).size(), 1U) << "now its end is there";
}

// The pages are as LISTO 1 prints them; only the line numbers that lose bits differ.
TEST_F(BasicLister, ListsWhatTheMachineLists) {
    const std::map<std::string, std::string> ours{
        {"16384 REPORT:PRINT \" at line \";ERL:IF ERL>16384 THEN GOTO 32767",
         "16384 REPORT:PRINT \" at line \";ERL:IF ERL>16384 THEN GOTO 16191"},
        {"32767 GOTO 16384", "32767 GOTO 0"},
    };
    for (GoldenPage& page : GoldenPages("list.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        for (std::string& line : page.lines)
            if (const auto differs = ours.find(line); differs != ours.end())
                line = differs->second;
        const auto [base, length] = PlaceOf(page);
        TextSink sink;
        ListBasic(base, length, sink);
        EXPECT_EQ(sink.Text(), JoinLines(page.lines));
        EXPECT_EQ(sink.pieces.size(), page.lines.size());
    }
}

} // namespace
} // namespace quoravel
