#include "prefs/base64.h"

#include <algorithm>
#include <cstddef>

namespace quoravel {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kAlphabet.size() == 64);

constexpr std::size_t kLineLength = 45;

/// Four characters for the first one to three of `bytes`.
void AppendGroup(std::string& text, std::span<const std::uint8_t> bytes) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
        bits = (bits << 8U) | (i < bytes.size() ? bytes[i] : 0U);
    for (std::size_t i = 0; i < 4; ++i, bits <<= 6U)
        text += i <= bytes.size() ? kAlphabet[(bits >> 18U) & 63U] : '=';
}

std::string InLines(std::string_view text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); i += kLineLength) {
        if (i > 0)
            lines += "\r\n";
        lines += text.substr(i, kLineLength);
    }
    return lines;
}

} // namespace

std::string EncodeBase64(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3)
        AppendGroup(text, bytes.subspan(i, std::min<std::size_t>(3, bytes.size() - i)));
    return InLines(text);
}

std::vector<std::uint8_t> DecodeBase64(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    std::uint32_t bits = 0;
    unsigned held = 0; // how many of the low bits are not given out yet
    for (const char c : text.substr(0, text.find('='))) {
        const std::size_t value = kAlphabet.find(c);
        if (value == std::string_view::npos)
            continue;
        bits = (bits << 6U) | static_cast<std::uint32_t>(value);
        held += 6;
        if (held >= 8) {
            held -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> held));
        }
    }
    return bytes;
}

} // namespace quoravel
