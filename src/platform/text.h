#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quoravel {

// Texts that come from a disc, a sidecar or the wire are byte strings: one byte is one character of
// Latin-1. Texts for message boxes and host file names are UTF-8. Latin1ToUtf8 is the way across.

/// `text` without the spaces (code 32, nothing else) at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text);

/// `text` with a to z in capitals; every other byte stays.
[[nodiscard]] std::string UpperCase(std::string_view text);

/// True if both are the same but for the case of the letters a to z.
[[nodiscard]] bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// True if `text` ends in `ending`, whatever the case of the letters a to z.
[[nodiscard]] bool EndsIgnoringCase(std::string_view text, std::string_view ending);

/// The lowest `digits` hex digits of `value`, upper case, padded with zeros: it wraps, never
/// widens.
[[nodiscard]] std::string Hex(std::uint32_t value, int digits);

/// The number that `text` starts with in hex digits of either case, read up to the first other
/// character; 0 if there is none. Only the lowest 32 bits are kept.
[[nodiscard]] std::uint32_t HexValue(std::string_view text);

/// True if `text` is well-formed UTF-8.
[[nodiscard]] bool IsUtf8(std::string_view text);

/// The characters of UTF-8 text as one byte each, the low byte of their code. Bytes that are not
/// UTF-8 count as themselves.
[[nodiscard]] std::string LowBytesOfUtf8(std::string_view text);

/// `text` with a LF behind each CR.
[[nodiscard]] std::string AddLineFeeds(std::string_view text);

/// A byte as dumps show it: without its bit 7, and "." for what is then no character, so that C1
/// is "A" and 9F a dot.
[[nodiscard]] constexpr char DumpCharacter(unsigned byte) {
    const unsigned c = byte & 127U;
    return c < 32 || c == 127 ? '.' : static_cast<char>(c);
}

/// The bytes of `text` as files take them; `text` must outlive them.
[[nodiscard]] std::span<const std::uint8_t> AsBytes(std::string_view text);

/// Each byte as the Latin-1 character that it is, in UTF-8.
[[nodiscard]] std::string Latin1ToUtf8(std::string_view text);

} // namespace quoravel
