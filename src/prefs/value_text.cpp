#include "prefs/value_text.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace quoravel {

namespace {

constexpr std::size_t kMostDecimals = 15;
constexpr std::string_view kBlanks = " \t\r\n";

std::string_view SkipBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text;
}

bool IsDigitAt(std::string_view text, std::size_t index) {
    return index < text.size() && text[index] >= '0' && text[index] <= '9';
}

/// Takes a sign off `text`, if there is one; true if it is a minus.
bool TakeMinus(std::string_view& text) {
    const bool minus = text.starts_with('-');
    if (minus || text.starts_with('+'))
        text.remove_prefix(1);
    return minus;
}

/// The whole number that `digits` (which may carry a sign) stand for, far out if it is too long.
long ExponentOf(std::string_view digits) {
    constexpr long kFarOut = 1'000'000'000;
    const bool minus = TakeMinus(digits);
    long exponent = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec != std::errc())
        exponent = kFarOut;
    exponent = std::min(exponent, kFarOut);
    return minus ? -exponent : exponent;
}

/// For a number that no double can hold: true if it is too large, false if it is too small.
bool IsTooLarge(std::string_view number) {
    const std::size_t e = number.find_first_of("eE");
    const long exponent = e == std::string_view::npos ? 0 : ExponentOf(number.substr(e + 1));
    const std::string_view digits = number.substr(0, e);
    const auto point = static_cast<long>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<long>(std::min(digits.find_first_not_of("0."), digits.size()));
    return point - first + exponent > 0;
}

double Magnitude(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::result_out_of_range)
        value = IsTooLarge({text.data(), stop}) ? std::numeric_limits<double>::max() : 0;
    return value;
}

std::string FixedText(double value) {
    std::array<char, 400> buffer{}; // the longest double needs 345
    char* const begin = buffer.data();
    char* end = std::to_chars(begin, begin + buffer.size(), value, std::chars_format::fixed).ptr;
    const std::string_view shortest(begin, end);
    if (shortest.size() - std::min(shortest.find('.'), shortest.size()) > kMostDecimals + 1)
        end = std::to_chars(begin, begin + buffer.size(), value, std::chars_format::fixed,
                            kMostDecimals)
                  .ptr;
    return {begin, end};
}

/// True if `text` has the shape of `pattern`, where a 0 stands for any digit.
bool HasShape(std::string_view text, std::string_view pattern) {
    return std::ranges::equal(
        text, pattern, [](char c, char p) { return p == '0' ? c >= '0' && c <= '9' : c == p; });
}

/// The number in the `count` digits of `text` at `index`.
int DigitsAt(std::string_view text, std::size_t index, std::size_t count) {
    int number = 0;
    for (const char c : text.substr(index, count))
        number = number * 10 + (c - '0');
    return number;
}

/// Length in bytes of a forbidden character that `text` (UTF-8) starts with, 0 if it is allowed.
std::size_t ForbiddenAt(std::string_view text) {
    const auto c = static_cast<unsigned char>(text.front());
    if (c < 0x20)
        return c == '\t' || c == '\n' || c == '\r' ? 0 : 1;
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

} // namespace

double Val(std::string_view text) {
    text = SkipBlanks(text);
    const bool minus = TakeMinus(text);
    // Anything else that the library would take ("inf", "nan") is no number here.
    if (!IsDigitAt(text, 0) && !(text.starts_with('.') && IsDigitAt(text, 1)))
        return 0;
    return minus ? -Magnitude(text) : Magnitude(text);
}

std::int32_t IntegerFromText(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<double>(std::trunc(Val(text)), Limits::min(), Limits::max()));
}

std::string RealText(double value) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    std::string text = FixedText(std::isnan(value) ? 0 : std::clamp(value, -kLargest, kLargest));
    if (text.find('.') == std::string::npos)
        return text + ".0";
    while (text.ends_with('0') && !text.ends_with(".0"))
        text.pop_back();
    return text;
}

std::string DateText(Date date) {
    using namespace std::chrono;
    using namespace std::chrono_literals;
    date = std::clamp<Date>(date, sys_days(0y / 1 / 1), sys_days(9999y / 12 / 31) + 86399s);
    const auto midnight = floor<days>(date);
    const year_month_day day(midnight);
    const hh_mm_ss time(date - midnight);
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

std::optional<Date> DateFromText(std::string_view text) {
    using namespace std::chrono;
    text = SkipBlanks(text);
    text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
    if (!HasShape(text, "0000-00-00T00:00:00Z"))
        return {};
    const year_month_day day(year(DigitsAt(text, 0, 4)),
                             month(static_cast<unsigned>(DigitsAt(text, 5, 2))),
                             std::chrono::day(static_cast<unsigned>(DigitsAt(text, 8, 2))));
    const hours hour(DigitsAt(text, 11, 2));
    const minutes minute(DigitsAt(text, 14, 2));
    const seconds second(DigitsAt(text, 17, 2));
    if (!day.ok() || hour >= days(1) || minute >= hours(1) || second >= minutes(1))
        return {};
    return sys_days(day) + hour + minute + second;
}

std::string ColourText(Colour colour) {
    const std::string digits = Hex(colour.rgb, 8);
    return "#" + digits.substr(std::min<std::size_t>(digits.find_first_not_of('0'), 7));
}

Colour ColourFromText(std::string_view text) {
    text = SkipBlanks(text);
    if (text.starts_with('#'))
        text.remove_prefix(1);
    return {HexValue(text)};
}

std::string XmlText(std::string_view text) {
    const std::string utf8 = IsUtf8(text) ? std::string(text) : Latin1ToUtf8(text);
    std::string allowed;
    allowed.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t forbidden = ForbiddenAt(std::string_view(utf8).substr(i));
        if (forbidden == 0)
            allowed += utf8[i];
        i += std::max<std::size_t>(forbidden, 1);
    }
    return allowed;
}

} // namespace quoravel
