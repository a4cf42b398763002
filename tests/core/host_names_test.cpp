#include "exchange/host_names.h"

#include <gtest/gtest.h>

namespace quoravel {
namespace {

using namespace std::string_literals;

TEST(HostNames, SeparatorsAndReservedWordsAreMapped) {
    struct Row {
        const char* name;
        const char* host;
    };

    for (const Row& r : {Row{"$.HELLO", "$.HELLO"}, Row{"$.A/B", "$.A_B"}, Row{"/.\\:", "_.__"},
                         Row{"con", "con_"}, Row{"PRN", "PRN_"}, Row{"Lpt", "Lpt_"},
                         Row{"COM", "COM_"}, Row{"$.CON", "$.CON"}, Row{"COM1", "COM1"}})
        EXPECT_EQ(DFS_TO_MAC(r.name), r.host);
}

TEST(HostNames, AHostFileNeverGetsAControlCodeOrTheParentFolderAsItsName) {
    EXPECT_EQ(DFS_TO_MAC("$.A\0B\x7F"s), "$.A\0B\x7F"s);
    EXPECT_EQ(HostFileName("$.A\0B\x7F\n"s), "$.A_B__");
    EXPECT_EQ(HostFileName(".."), "._");
    EXPECT_EQ(HostFileName("..A"), "..A");
}

TEST(HostNames, CharactersBecomeTheLowByteOfTheirCode) {
    struct Row {
        const char* what;
        std::string name;
        std::string bytes;
    };

    for (const Row& r :
         {Row{"plain", "$.HELLO", "$.HELLO"}, Row{"two bytes", "caf\xC3\xA9", "caf\xE9"},
          Row{"beyond Latin-1", "\xC5\x81X", "\x41X"}, Row{"three bytes", "\xE2\x82\xAC", "\xAC"},
          Row{"four bytes", "\xF0\x9F\x98\x80", "\x00"s}, Row{"no UTF-8", "\xE9t\xC3", "\xE9t\xC3"},
          Row{"UTF-8 behind others", "\xFF\xC3\xA9", "\xFF\xE9"}}) {
        SCOPED_TRACE(r.what);
        EXPECT_EQ(BytesOfHostName("/folder/" + r.name), r.bytes);
    }
}

TEST(HostNames, NamesAreShapedForTheCatalogue) {
    struct Row {
        const char* name;
        const char* shaped;
    };

    for (const Row& r :
         {Row{"$.HELLO", "$.HELLO"}, Row{"B.GAME", "B.GAME"}, Row{"HELLO", "$.HELLO"},
          Row{"README.TXT", "$.README"}, Row{"my file.txt", "$.my_file"}, Row{"A_TEST", "A.TEST"},
          Row{"A HELLO", "A.HELLO"}, Row{"ABCDEFGHIJK", "$.ABCDEFG"}, Row{"CON", "$.CON"},
          Row{".HIDDEN", ".HIDDEN"}, Row{"", "$."}, Row{"A", "$.A"}, Row{"_", "$._"},
          Row{"__X", "_.X"}, Row{"A.B.C", "A.B.C"}, Row{"A_.TXT", "A."}, Row{"._X", "..X"},
          Row{"12345678.TXT", "$.1234567"}, Row{"AB CD.EFGH", "$.AB_CD"}})
        EXPECT_EQ(ShapeName(r.name), r.shaped) << r.name;
}

} // namespace
} // namespace quoravel
