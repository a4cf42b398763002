#include "prefs/value_text.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace quoravel {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr double kLargest = std::numeric_limits<double>::max();

TEST(PrefsText, ValReadsTheNumberInFrontOrTheNearestOneThatCanBeHeld) {
    const std::string zeros(400, '0');
    using Row = std::pair<std::string, double>;
    for (const auto& [text, value] :
         {Row{"", 0}, Row{"  \n\t42", 42}, Row{"-1.5e2x", -150}, Row{"+7", 7}, Row{".5", 0.5},
          Row{"5.", 5}, Row{"1e", 1}, Row{"1,5", 1}, Row{"--1", 0}, Row{".", 0}, Row{"inf", 0},
          Row{"nan", 0}, Row{"0x10", 0}, Row{"1e400", kLargest}, Row{"1" + zeros, kLargest},
          Row{"-1e99999999999999999999", -kLargest}, Row{"0.1e400", kLargest}, Row{"1e-400", 0},
          Row{"0." + zeros + "1", 0}})
        EXPECT_EQ(Val(text), value) << text;
    EXPECT_EQ(IntegerFromText("2147483648"), 2147483647);
    EXPECT_EQ(IntegerFromText("-1e30"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(IntegerFromText("-7.9"), -7);
}

TEST(PrefsText, ARealHasDigitsOnBothSidesOfThePointAndReadsBack) {
    using Row = std::pair<double, const char*>;
    for (const auto& [value, text] :
         {Row{-1, "-1.0"}, Row{0, "0.0"}, Row{0.1, "0.1"}, Row{1e15, "1000000000000000.0"},
          Row{2.0 / 3, "0.666666666666667"}, Row{1e-20, "0.0"},
          Row{std::numeric_limits<double>::quiet_NaN(), "0.0"}})
        EXPECT_EQ(RealText(value), text);
    for (const double value : {123456.789, 1e300, -kLargest, 9007199254740993.0, 1e-15})
        EXPECT_EQ(Val(RealText(value)), value) << RealText(value);
    EXPECT_EQ(Val(RealText(std::numeric_limits<double>::infinity())), kLargest);
}

TEST(PrefsText, ADateIsWrittenInUtcAndReadsBack) {
    const Date leap_day = std::chrono::sys_days(2024y / 2 / 29) + 23h + 5min + 59s;
    EXPECT_EQ(DateText(leap_day), "2024-02-29T23:05:59Z");
    EXPECT_EQ(DateFromText("\n\t2024-02-29T23:05:59Z\n"), leap_day);
    EXPECT_EQ(DateText(Date::max()), "9999-12-31T23:59:59Z");
    EXPECT_EQ(DateText(Date::min()), "0000-01-01T00:00:00Z");
    for (const char* text : {"", "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z",
                             "2024-01-01T24:00:00Z", "2024-01-01T00:60:00Z", "2024-01-01",
                             "2024-01-01T00:00:00Z and more", "-024-01-01T00:00:00Z"})
        EXPECT_FALSE(DateFromText(text)) << text;
}

TEST(PrefsText, AColourHasNoLeadingZeros) {
    EXPECT_EQ(ColourText({0x00AB0C}) + ColourText({0}), "#AB0C#0");
    EXPECT_EQ(ColourFromText("#AB0C"), Colour{0x00AB0C});
    EXPECT_EQ(ColourFromText(" ff8000"), Colour{0xFF8000});
    EXPECT_EQ(ColourFromText("red"), Colour{0});
}

TEST(PrefsText, OnlyWhatADocumentMayHoldIsLeft) {
    EXPECT_EQ(XmlText("a\0b\x01\x1F"
                      "c\t\r\n\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD"s),
              "abc\t\r\n\xEF\xBF\xBD");
    EXPECT_EQ(XmlText("Gr\xC3\xBC\xC3\x9F"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(XmlText("Gr\xFC\xDF"), "Gr\xC3\xBC\xC3\x9F"); // not UTF-8, so taken as Latin-1
}

} // namespace
} // namespace quoravel
