#include "platform/text.h"
#include "support/disc_test.h"
#include "support/golden_pages.h"
#include "support/text_sink.h"
#include "view/basic.h"
#include "view/catalogue_pages.h"
#include "view/disassembler.h"
#include "view/hex_view.h"
#include "view/text_view.h"

#include <algorithm>
#include <map>
#include <span>
#include <sstream>

// What a real machine printed, held against our pages. Where the two differ, and ours holds, a
// function turns the machine's page into ours.

namespace quoravel {
namespace {

constexpr std::size_t kAssembly = 35; ///< columns up to where the bytes stand as characters

/// `line` with `from` replaced by `to`, if it is there.
std::string Replaced(std::string line, std::string_view from, std::string_view to) {
    if (const auto at = line.find(from); at != std::string::npos)
        line.replace(at, from.size(), to);
    return line;
}

/// Title trimmed, cycle number without a leading zero; option names in mixed case, four characters
/// each. The second side is drive 1, not 2, and directory and library are on the drive itself. Each
/// field is padded to 20, and the page ends with an empty line.
std::string OurCat(const GoldenPage& page) {
    std::vector<std::string> lines = page.lines;
    const std::size_t bracket = lines[0].find('(');
    lines[0] = std::string(Trim(std::string_view(lines[0]).substr(0, bracket))) + " " +
               Replaced(lines[0].substr(bracket), "(0", "(");
    for (const auto& [machine, ours] : std::map<std::string, const char*>{
             {"(off)", "(Off )"}, {"(LOAD)", "(Load)"}, {"(RUN)", "(Run )"}, {"(EXEC)", "(Exec)"}})
        lines[1] = Replaced(lines[1], machine, ours);
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

/// The machine ends what *TYPE prints with a line end more.
std::string OurText(const GoldenPage& page) {
    EXPECT_EQ(page.lines.back(), "");
    return JoinLines({page.lines.begin(), page.lines.end() - 1});
}

/// The machine prints as LISTO 1 has it. Only line numbers that lose bits differ.
std::string OurListing(const GoldenPage& page) {
    const std::string text = Replaced(JoinLines(page.lines), "THEN GOTO 32767", "THEN GOTO 16191");
    return Replaced(text, "32767 GOTO 16384", "32767 GOTO 0");
}

/// The machine dumps eight bytes in a row, behind four digits, six on a newer one. It has a dot for
/// a byte with its top bit set; we show the character below it.
std::string OurDump(const GoldenPage& page) {
    std::string text;
    std::string digits;
    std::string characters;
    auto end_row = [&, row = 0U]() mutable {
        digits.resize(48, ' ');
        text += Hex(row++ * 16, 6) + " : " + digits + " " + characters + "\r";
        digits.clear();
        characters.clear();
    };
    for (const std::string& line : page.lines) {
        std::size_t at = line.find(' ') + 1;
        std::size_t shown = at + 24;
        std::istringstream in(line.substr(at, 24));
        for (std::string byte; in >> byte && byte != "**"; ++shown) {
            digits += byte + " ";
            const auto code = HexValue(byte);
            const bool masked = code >= 0xA0 && code < 0xFF;
            characters += masked ? static_cast<char>(code - 0x80) : line[shown];
        }
        if (characters.size() == 16 || (&line == &page.lines.back() && !characters.empty()))
            end_row();
    }
    return text;
}

/// Address, bytes and source, without the label. The assembler knows names and writes numbers as
/// they were typed.
std::string OurAssembly(const GoldenPage& page) {
    const std::map<std::string, std::string> ours{{"msg,X", "&1910,X"}, {"done", "&190D"},
                                                  {"loop", "&1902"},    {"#0", "#&00"},
                                                  {"&FFE3", "osasci"},  {"&FFE7", "osnewl"}};
    std::vector<std::string> lines;
    for (const std::string& printed : page.lines) {
        std::string operand = printed.size() > 28 ? printed.substr(28) : "";
        if (const auto differs = ours.find(operand); differs != ours.end())
            operand = differs->second;
        std::string line = printed.substr(0, 4) + "  " + printed.substr(5, 9);
        line.resize(18, ' ');
        line += printed.substr(24, 3) + "  " + operand;
        line.resize(kAssembly, ' ');
        lines.push_back(line);
    }
    return JoinLines(lines);
}

template<void (*list)(int, std::uint32_t, ViewSink&)>
void ListFileOf(const GoldenPage& page, TextSink& sink) {
    const auto [base, length] = PlaceOf(page);
    list(base, length, sink);
}

/// As many instructions as the page has, without the bytes as characters.
void DisassembleFileOf(const GoldenPage& page, TextSink& sink) {
    const auto [base, length] = PlaceOf(page);
    const auto address = static_cast<std::uint16_t>(HexValue(page.lines.at(0).substr(0, 4)));
    Disassemble(base / kSectorBytes, length, address, sink);
    ASSERT_GT(sink.pieces.size(), page.lines.size()) << "text or the byte behind the file follows";
    sink.pieces.resize(page.lines.size());
    for (std::string& piece : sink.pieces)
        piece = piece.substr(0, kAssembly) + "\r";
}

class Golden : public DiscTest {};

TEST_F(Golden, PagesAreThoseOfTheMachine) {
    struct Row {
        const char* golden;
        std::string (*ours)(const GoldenPage&);
        void (*list)(const GoldenPage&, TextSink&);
    };

    for (const auto& [golden, ours, list] :
         {Row{"cat.txt", OurCat, [](const GoldenPage&, TextSink& sink) { ListCat(sink); }},
          Row{"ex.txt", OurEX, [](const GoldenPage&, TextSink& sink) { ListEX(sink); }},
          Row{"map.txt", OurMap, [](const GoldenPage&, TextSink& sink) { ListMap(sink); }},
          Row{"type.txt", OurText, ListFileOf<ListText>},
          Row{"dump.txt", OurDump, ListFileOf<ListHex>},
          Row{"list.txt", OurListing, ListFileOf<ListBasic>},
          Row{"assembly.txt", OurAssembly, DisassembleFileOf}})
        for (const GoldenPage& page : GoldenPages(golden)) {
            SCOPED_TRACE(testing::Message()
                         << golden << " " << page.image << " " << page.drive << " " << page.file);
            OpenDiscOf(page);
            TextSink sink;
            list(page, sink);
            EXPECT_EQ(sink.Text(), ours(page));
        }
}

} // namespace
} // namespace quoravel
