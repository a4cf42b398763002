#include "platform/text.h"

#include <algorithm>

namespace quoravel {

namespace {

char UpperCaseOf(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

int HexDigitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char upper = UpperCaseOf(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

/// Length in bytes of the UTF-8 character that `text` (not empty) starts with; 0 if it is none.
/// The first two bytes tell overlong forms, surrogates and what lies beyond U+10FFFF.
std::size_t Utf8LengthAt(std::string_view text) {
    const auto at = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto continues = [&](std::size_t i) { return (at(i) & 0xC0U) == 0x80U; };
    const unsigned lead = at(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return continues(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const bool overlong = lead == 0xE0 && at(1) < 0xA0;
        const bool surrogate = lead == 0xED && at(1) >= 0xA0;
        return continues(1) && continues(2) && !overlong && !surrogate ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const bool overlong = lead == 0xF0 && at(1) < 0x90;
        const bool beyond = lead == 0xF4 && at(1) >= 0x90;
        return continues(1) && continues(2) && continues(3) && !overlong && !beyond ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), UpperCaseOf);
    return upper;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, UpperCaseOf, UpperCaseOf);
}

bool EndsIgnoringCase(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() &&
           EqualIgnoringCase(text.substr(text.size() - ending.size()), ending);
}

std::string Hex(std::uint32_t value, int digits) {
    std::string text(static_cast<std::size_t>(digits), '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value >>= 4U)
        *digit = "0123456789ABCDEF"[value & 15U];
    return text;
}

std::uint32_t HexValue(std::string_view text) {
    std::uint32_t value = 0;
    for (const char c : text) {
        const int digit = HexDigitOf(c);
        if (digit < 0)
            break;
        value = (value << 4U) | static_cast<std::uint32_t>(digit);
    }
    return value;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = Utf8LengthAt(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string LowBytesOfUtf8(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(Utf8LengthAt(text), 1);
        auto low = static_cast<unsigned char>(text[length - 1]);
        if (length > 1) // six bits of the code in the last byte, the next ones in that before it
            low = static_cast<unsigned char>((low & 0x3FU) |
                                             static_cast<unsigned char>(text[length - 2]) << 6U);
        bytes += static_cast<char>(low);
        text.remove_prefix(length);
    }
    return bytes;
}

std::string AddLineFeeds(std::string_view text) {
    std::string with;
    for (const char c : text)
        with.append(c == '\r' ? "\r\n" : std::string_view(&c, 1));
    return with;
}

std::span<const std::uint8_t> AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string Latin1ToUtf8(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0U | (byte >> 6U));
            utf8 += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return utf8;
}

} // namespace quoravel
