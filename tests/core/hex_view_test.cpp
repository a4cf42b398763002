#include "platform/text.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/hex_view.h"

#include <gmock/gmock.h>
#include <sstream>

namespace quoravel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

class HexView : public DiscTest {
  protected:
    static std::vector<std::string> View(int base, std::uint32_t length) {
        TextSink sink;
        ListHex(base, length, sink);
        return sink.pieces;
    }

    static void Put(int at, const std::string& bytes) {
        for (const char c : bytes)
            Module1::DiscImg.SetByte(at++, static_cast<std::uint8_t>(c));
    }
};

TEST_F(HexView, RowsHaveSixteenBytesAndTheLastWhatIsLeft) {
    Put(0x100, "0123456789ABCDEFGHIJKLMNOPQRSTUVHello\r");
    const std::string first =
        "000000 : 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  0123456789ABCDEF\r";
    EXPECT_THAT(View(0x100, 0), IsEmpty());
    EXPECT_THAT(View(0x100, 16), ElementsAre(first));
    EXPECT_THAT(View(0x100, 17),
                ElementsAre(first, "000010 : 47 " + std::string(15 * 3, ' ') + " G\r"));
    EXPECT_EQ(View(0x100, 0x26).back(),
              "000020 : 48 65 6C 6C 6F 0D " + std::string(30, ' ') + " Hello.\r");
}

TEST_F(HexView, MeantCharactersAreShownWithoutTheirTopBit) {
    Put(0, "\x7F\xFF\x1F\x9F\x20\xA0\x41\xC1\x7E\xFE\x00\x80"s);
    EXPECT_THAT(View(0, 12), ElementsAre("000000 : 7F FF 1F 9F 20 A0 41 C1 7E FE 00 80 " +
                                         std::string(4 * 3, ' ') + " ....  AA~~..\r"));
}

TEST_F(HexView, BehindTheBlockAFileIsZerosButALengthThatReadsFFEndsThere) {
    Module1::DiscImg.SetByte(kDiscBytes - 1, 'Z');
    const std::string end(14 * 3, ' ');
    EXPECT_THAT(View(kDiscBytes - 1, 2), ElementsAre("000000 : 5A 00 " + end + " Z.\r"));
    EXPECT_THAT(View(kDiscBytes - 1, 0xFF0000), ElementsAre("000000 : 5A    " + end + " Z\r"));
    EXPECT_THAT(View(kDiscBytes + 256, 0xFFFFFF), IsEmpty());
    EXPECT_EQ(View(kDriveBytes, 0xFF0000).size(), kDriveBytes / 16U);
}

/// Bytes and characters that a machine's *DUMP shows, eight in a row.
struct Dump {
    std::vector<std::string> digits;
    std::string characters;
};

Dump ReadDump(const std::vector<std::string>& lines) {
    Dump dump;
    for (const std::string& line : lines) {
        const std::size_t fields = line.find(' ') + 1; // behind four digits, six on a newer machine
        std::istringstream in(line.substr(fields, 8 * 3));
        std::size_t bytes = 0;
        for (std::string byte; in >> byte && byte != "**"; ++bytes)
            dump.digits.push_back(byte);
        dump.characters += line.substr(fields + 8 * 3, bytes);
    }
    return dump;
}

/// Our row for 16 bytes of the machine's dump from `at` on. The machine has a dot for a byte with
/// its top bit set; we show the character below it.
std::string RowOf(const Dump& dump, std::size_t at) {
    std::string digits;
    std::string characters;
    for (std::size_t i = at; i < at + 16 && i < dump.digits.size(); ++i) {
        digits += dump.digits[i] + " ";
        const auto code = HexValue(dump.digits[i]);
        const bool masked = code >= 0xA0 && code < 0xFF;
        characters += masked ? static_cast<char>(code - 0x80) : dump.characters[i];
    }
    digits.resize(48, ' ');
    return Hex(static_cast<std::uint32_t>(at), 6) + " : " + digits + " " + characters + "\r";
}

TEST_F(HexView, ShowsWhatTheMachineDumps) {
    for (const GoldenPage& page : GoldenPages("dump.txt")) {
        SCOPED_TRACE(page.image + " " + page.file);
        OpenDiscOf(page);
        const Dump dump = ReadDump(page.lines);
        std::vector<std::string> rows;
        for (std::size_t at = 0; at < dump.digits.size(); at += 16)
            rows.push_back(RowOf(dump, at));
        const auto [base, length] = PlaceOf(page);
        EXPECT_EQ(View(base, length), rows);
    }
}

} // namespace
} // namespace quoravel
