#include "exchange/host_names.h"

#include <gtest/gtest.h>
#include <tuple>

namespace quoravel {
namespace {

using namespace std::string_literals;

TEST(HostNames, SeparatorsAndReservedWordsAreMapped) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [name, host] :
         {Row{"$.A/B", "$.A_B"}, Row{"/.\\:", "_.__"}, Row{"con", "con_"}, Row{"PRN", "PRN_"},
          Row{"Lpt", "Lpt_"}, Row{"COM", "COM_"}, Row{"$.CON", "$.CON"}, Row{"COM1", "COM1"}})
        EXPECT_EQ(DFS_TO_MAC(name), host);
}

TEST(HostNames, AHostFileNeverGetsAControlCodeOrTheParentFolderAsItsName) {
    EXPECT_EQ(DFS_TO_MAC("$.A\0B\x7F"s), "$.A\0B\x7F"s);
    EXPECT_EQ(HostFileName("$.A\0B\x7F\n"s), "$.A_B__");
    EXPECT_EQ(HostFileName(".."), "._");
    EXPECT_EQ(HostFileName("..A"), "..A");
}

TEST(HostNames, CharactersBecomeTheLowByteOfTheirCode) {
    using Row = std::tuple<const char*, std::string, std::string>;
    for (const auto& [what, name, bytes] :
         {Row{"two bytes", "caf\xC3\xA9", "caf\xE9"}, Row{"beyond Latin-1", "\xC5\x81X", "\x41X"},
          Row{"three bytes", "\xE2\x82\xAC", "\xAC"},
          Row{"four bytes", "\xF0\x9F\x98\x80", "\x00"s}, Row{"no UTF-8", "\xE9t\xC3", "\xE9t\xC3"},
          Row{"UTF-8 behind others", "\xFF\xC3\xA9", "\xFF\xE9"}}) {
        SCOPED_TRACE(what);
        EXPECT_EQ(BytesOfHostName("/folder/" + name), bytes);
    }
}

TEST(HostNames, NamesAreShapedForTheCatalogue) {
    using Row = std::tuple<const char*, const char*>;
    for (const auto& [name, shaped] :
         {Row{"B.GAME", "B.GAME"}, Row{"README.TXT", "$.README"}, Row{"my file.txt", "$.my_file"},
          Row{"A_TEST", "A.TEST"}, Row{"A HELLO", "A.HELLO"}, Row{"ABCDEFGHIJK", "$.ABCDEFG"},
          Row{".HIDDEN", ".HIDDEN"}, Row{"", "$."}, Row{"A", "$.A"}, Row{"_", "$._"},
          Row{"__X", "_.X"}, Row{"A.B.C", "A.B.C"}, Row{"A_.TXT", "A."}, Row{"._X", "..X"},
          Row{"12345678.TXT", "$.1234567"}, Row{"AB CD.EFGH", "$.AB_CD"}})
        EXPECT_EQ(ShapeName(name), shaped) << name;
}

} // namespace
} // namespace quoravel
