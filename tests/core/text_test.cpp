#include "platform/text.h"

#include <gtest/gtest.h>

namespace quoravel {
namespace {

TEST(Text, OnlySpacesAreTrimmed) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\r\n "), "\ta\r\n");
    EXPECT_EQ(Trim("    "), "");
}

TEST(Text, OnlyAsciiLettersChangeCase) {
    EXPECT_EQ(UpperCase("a{z`\xE9"), "A{Z`\xE9");
    EXPECT_TRUE(EqualIgnoringCase("$.Hello", "$.hELLO"));
    EXPECT_FALSE(EqualIgnoringCase("$.[", "$.{"));
}

TEST(Text, HexWrapsAndNeverWidens) {
    EXPECT_EQ(Hex(0x1AB, 6), "0001AB");
    EXPECT_EQ(Hex(0x1ABCD, 3), "BCD");
}

TEST(Text, HexValueStopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(HexValue("ff1900"), 0xFF1900U);
    EXPECT_EQ(HexValue("1G"), 1U);
    EXPECT_EQ(HexValue(" 1"), 0U);
    EXPECT_EQ(HexValue(""), 0U);
}

TEST(Text, Latin1BytesBecomeTheirCharactersInUtf8) {
    EXPECT_EQ(Latin1ToUtf8("a\x7F\x80\xFF"), "a\x7F\xC2\x80\xC3\xBF");
}

} // namespace
} // namespace quoravel
