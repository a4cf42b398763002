#include "exchange/sidecar.h"
#include "support/temp_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace std::string_view_literals;

/// All that a sidecar says, in one text: "name load exec size lock", or "none".
std::string Said(std::string_view line) {
    const auto said = ParseSidecar(line);
    if (!said)
        return "none";
    return said->name + "|" + said->load + "|" + said->exec + "|" + said->size + "|" +
           (said->locked ? "L" : "");
}

TEST(Sidecar, BothFormsAreToldApartByTheirColumns) {
    using Row = std::tuple<const char*, const char*, const char*>;
    const char* const hello = "$.HELLO|FF1900|FF8023|000100|";
    const char* const locked = "$.HELLO|FF1900|FF8023|000100|L";
    for (const auto& [what, line, said] :
         {Row{"short", "$.HELLO    FF1900 FF8023 000100   ", hello},
          Row{"short, locked", "$.HELLO    FF1900 FF8023 000100 L ", locked},
          Row{"short, nothing behind the length", "$.HELLO    FF1900 FF8023 000100", hello},
          Row{"short, lock in lower case", "$.HELLO    FF1900 FF8023 000100 l", locked},
          Row{"short, one letter counts", "$.HELLO    FF1900 FF8023 000100  L", hello},
          Row{"short, columns 10 and 32 free", "$.HELLO  xxFF1900 FF8023 000100xL", "none"},
          Row{"short, column 10 free", "$.HELLO  x FF1900 FF8023 000100xL", locked},
          Row{"five digits of length", "$.HELLO    FF1900 FF8023 00100",
              "$.HELLO|FF1900|FF8023|00100|"},
          Row{"29 characters", "$.HELLO    FF1900 FF8023 0010", "none"},
          Row{"no directory", "HELLO      FF1900 FF8023 000100   ", "none"},
          Row{"column 11", "$.HELLO   xFF1900 FF8023 000100   ", "none"},
          Row{"column 18", "$.HELLO    FF1900xFF8023 000100   ", "none"},
          Row{"column 25", "$.HELLO    FF1900 FF8023x000100   ", "none"},
          Row{"long", "$.HELLO    FFFF1900 FFFF8023 00000100 ", hello},
          Row{"long, locked", "$.HELLO    FFFF1900 FFFF8023 00000100 Locked", locked},
          Row{"long, anywhere", "$.HELLO    FFFF1900 FFFF8023 00000100 CRC=0 l", locked},
          Row{"long, unlocked", "$.HELLO    FFFF1900 FFFF8023 00000100 00", hello},
          Row{"long, 37 characters", "$.HELLO    FFFF1900 FFFF8023 00000100", hello},
          Row{"long, 36 characters", "$.HELLO    FFFF1900 FFFF8023 0000010", "none"},
          Row{"long, column 38", "$.HELLO    FFFF1900 FFFF8023 00000100x", "none"},
          Row{"long, no directory", "HELLO      FFFF1900 FFFF8023 00000100",
              "HELLO|FF1900|FF8023|000100|"},
          // The short form would see a lock in column 33.
          Row{"both", "$.A        123456 8 0123 567 01LL4567 x", "$.A|3456 8|23 567|LL4567|"},
          Row{"empty", "", "none"}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Said(line), said);
    }
}

TEST(Sidecar, TheWrittenLineHasThirtyFourCharactersAndALineEnd) {
    EXPECT_EQ(SidecarText({"$.A/BCDEF", "L", "FF1900", "FF8023", "FF0100", "31F"}),
              "$.A/BCDEF  FF1900 FF8023 FF0100 L \n");
}

TEST(Sidecar, ItsNameDiffersFromTheFilesByTheExtension) {
    using Row = std::pair<std::vector<const char*>, const char*>;
    for (const auto& [there, expected] : {Row{{"DATA.INF", "DATA.inf", "DATA.Inf"}, "DATA.INF"},
                                          Row{{"DATA.inf", "DATA.Inf", "data.INF"}, "DATA.inf"},
                                          Row{{"data.inf", "Data.INF", "dATA.INF"}, "Data.INF"},
                                          Row{{"DATA2.INF", "DATAxINF", "DAT.INF"}, ""}}) {
        const TempFolder folder;
        for (const char* name : there)
            folder.File(name, "x"sv);
        EXPECT_EQ(FindSidecar(folder.path() / "DATA").value_or("").filename(), expected);
    }
}

TEST(Sidecar, AFolderIsNoSidecar) {
    const TempFolder folder;
    fs::create_directory(folder.path() / "DATA.INF");
    EXPECT_EQ(FindSidecar(folder.path() / "DATA"), std::nullopt);
    EXPECT_EQ(FindSidecar(folder.path() / "no-such-folder" / "DATA"), std::nullopt);
    const auto lower = folder.File("DATA.inf", "x"sv);
    EXPECT_EQ(FindSidecar(folder.path() / "DATA"), lower);
}

TEST(Sidecar, NamesOfSidecarsAreKnownInAnyCase) {
    EXPECT_TRUE(IsSidecarName("/a/$.HELLO.inf"));
    EXPECT_TRUE(IsSidecarName(".iNF"));
    EXPECT_FALSE(IsSidecarName("INF"));
    EXPECT_FALSE(IsSidecarName("$.INFO"));
    EXPECT_FALSE(IsSidecarName("/a.INF/b"));
}

TEST(Sidecar, OnlyTheFirstLineCounts) {
    const TempFolder folder;
    using Row = std::pair<std::string, std::string>;
    for (const auto& [text, first] :
         {Row{"one\ntwo", "one"}, Row{"one\rtwo", "one"}, Row{"one", "one"}, Row{"", ""},
          Row{"\none", ""}, Row{"\xEF\xBB\xBFone", "one"}, Row{"o\0e\n"s, "o\0e"s}}) {
        SCOPED_TRACE(text);
        std::string line = "old";
        EXPECT_FALSE(ReadSidecarLine(folder.File("X.INF", text), line));
        EXPECT_EQ(line, first);
    }
}

TEST(Sidecar, AnEndlessLineIsNotReadWhole) {
    const TempFolder folder;
    const fs::path file = folder.File("X.INF", "$.A"sv);
    fs::resize_file(file, 100U << 20U);
    std::string line;
    EXPECT_FALSE(ReadSidecarLine(file, line));
    EXPECT_LE(line.size(), 4096U);
}

} // namespace
} // namespace quoravel
