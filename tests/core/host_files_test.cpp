#include "exchange/host_names.h"
#include "exchange/sidecar.h"
#include "support/temp_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Row = std::tuple<std::string, std::string>;

TEST(HostNames, SeparatorsReservedWordsAndControlCodesAreMapped) {
    for (const auto& [name, host] :
         {Row{"/.\\:", "_.__"}, Row{"con", "con_"}, Row{"PRN", "PRN_"}, Row{"Lpt", "Lpt_"},
          Row{"COM", "COM_"}, Row{"$.CON", "$.CON"}, Row{"COM1", "COM1"},
          Row{"$.A\0B\x7F\n"s, "$.A_B__"}, Row{"..", "._"}, Row{"..A", "..A"}})
        EXPECT_EQ(HostFileName(name), host);
    EXPECT_EQ(DFS_TO_MAC("$.A\0B\x7F"s), "$.A\0B\x7F"s);
}

TEST(HostNames, CharactersBecomeTheLowByteOfTheirCode) {
    for (const auto& [name, bytes] :
         {Row{"caf\xC3\xA9", "caf\xE9"}, Row{"\xC5\x81X", "\x41X"}, Row{"\xE2\x82\xAC", "\xAC"},
          Row{"\xF0\x9F\x98\x80", "\x00"s}, Row{"\xE9t\xC3", "\xE9t\xC3"},
          Row{"\xFF\xC3\xA9", "\xFF\xE9"}})
        EXPECT_EQ(BytesOfHostName("/folder/" + name), bytes) << name;
}

TEST(HostNames, NamesAreShapedForTheCatalogue) {
    for (const auto& [name, shaped] :
         {Row{"B.GAME", "B.GAME"}, Row{"README.TXT", "$.README"}, Row{"my file.txt", "$.my_file"},
          Row{"A_TEST", "A.TEST"}, Row{"A HELLO", "A.HELLO"}, Row{"ABCDEFGHIJK", "$.ABCDEFG"},
          Row{".HIDDEN", ".HIDDEN"}, Row{"", "$."}, Row{"_", "$._"}, Row{"__X", "_.X"},
          Row{"A.B.C", "A.B.C"}, Row{"A_.TXT", "A."}, Row{"._X", "..X"},
          Row{"12345678.TXT", "$.1234567"}, Row{"AB CD.EFGH", "$.AB_CD"}})
        EXPECT_EQ(ShapeName(name), shaped) << name;
}

/// All that a sidecar says, in one text: "name load exec size lock", or "none".
std::string Said(std::string_view line) {
    const auto said = ParseSidecar(line);
    if (!said)
        return "none";
    return said->name + "|" + said->load + "|" + said->exec + "|" + said->size + "|" +
           (said->locked ? "L" : "");
}

TEST(Sidecar, BothFormsAreToldApartByTheirColumns) {
    const char* const hello = "$.HELLO|FF1900|FF8023|000100|";
    const char* const locked = "$.HELLO|FF1900|FF8023|000100|L";
    for (const auto& [line, said] :
         {Row{"$.HELLO    FF1900 FF8023 000100", hello},
          Row{"$.HELLO    FF1900 FF8023 000100 l", locked},
          Row{"$.HELLO    FF1900 FF8023 000100  L", hello}, // one letter counts
          Row{"$.HELLO  xxFF1900 FF8023 000100xL", "none"},
          Row{"$.HELLO  x FF1900 FF8023 000100xL", locked}, // columns 10 and 32 are free
          Row{"$.HELLO    FF1900 FF8023 00100", "$.HELLO|FF1900|FF8023|00100|"},
          Row{"$.HELLO    FF1900 FF8023 0010", "none"},
          Row{"HELLO      FF1900 FF8023 000100   ", "none"},
          Row{"$.HELLO    FF1900xFF8023 000100   ", "none"},
          Row{"$.HELLO    FF1900 FF8023x000100   ", "none"},
          Row{"$.HELLO    FFFF1900 FFFF8023 00000100 ", hello},
          Row{"$.HELLO    FFFF1900 FFFF8023 00000100 CRC=0 l", locked}, // anywhere
          Row{"$.HELLO    FFFF1900 FFFF8023 00000100", hello},
          Row{"$.HELLO    FFFF1900 FFFF8023 0000010", "none"},
          Row{"$.HELLO    FFFF1900 FFFF8023 00000100x", "none"},
          Row{"HELLO      FFFF1900 FFFF8023 00000100", "HELLO|FF1900|FF8023|000100|"},
          // Both: the short form would see a lock in column 33.
          Row{"$.A        123456 8 0123 567 01LL4567 x", "$.A|3456 8|23 567|LL4567|"}})
        EXPECT_EQ(Said(line), said) << line;
    EXPECT_EQ(SidecarText({"$.A/BCDEF", "L", "FF1900", "FF8023", "FF0100", "31F"}),
              "$.A/BCDEF  FF1900 FF8023 FF0100 L \n");
}

TEST(Sidecar, ItsNameDiffersFromTheFilesByTheExtension) {
    using Found = std::pair<std::vector<const char*>, const char*>;
    for (const auto& [there, expected] : {Found{{"DATA.INF", "DATA.inf", "DATA.Inf"}, "DATA.INF"},
                                          Found{{"DATA.inf", "DATA.Inf", "data.INF"}, "DATA.inf"},
                                          Found{{"data.inf", "Data.INF", "dATA.INF"}, "Data.INF"},
                                          Found{{"DATA2.INF", "DATAxINF", "DAT.INF"}, ""}}) {
        const TempFolder folder;
        for (const char* name : there)
            folder.File(name, "x");
        EXPECT_EQ(FindSidecar(folder.path() / "DATA").value_or("").filename(), expected);
        EXPECT_EQ(FindSidecar(folder.path() / "no-such-folder" / "DATA"), std::nullopt);
    }
    EXPECT_TRUE(IsSidecarName("/a/$.HELLO.inf"));
    EXPECT_FALSE(IsSidecarName("INF"));
    EXPECT_FALSE(IsSidecarName("/a.INF/b"));
}

TEST(Sidecar, OnlyTheFirstLineOfAFileCounts) {
    const TempFolder folder;
    fs::create_directory(folder.path() / "X.INF");
    EXPECT_EQ(FindSidecar(folder.path() / "X"), std::nullopt) << "a folder";
    std::string line = "old";
    for (const auto& [text, first] :
         {Row{"one\ntwo", "one"}, Row{"one\rtwo", "one"}, Row{"one", "one"}, Row{"", ""},
          Row{"\xEF\xBB\xBFone", "one"}, Row{"o\0e\n"s, "o\0e"s}}) {
        EXPECT_FALSE(ReadSidecarLine(folder.File("Y.INF", text), line));
        EXPECT_EQ(line, first);
    }
    const fs::path endless = folder.File("Z.INF", "$.A");
    fs::resize_file(endless, 100U << 20U);
    EXPECT_FALSE(ReadSidecarLine(endless, line));
    EXPECT_LE(line.size(), 4096U);
}

} // namespace
} // namespace quoravel
