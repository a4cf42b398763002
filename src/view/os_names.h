#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quoravel {

/// An entry point of the machine's operating system on page FF.
struct OsEntry {
    std::uint8_t low;      ///< low byte of its address
    std::string_view name; ///< without "os" in front; always four characters
};

inline constexpr auto kOsEntries = std::to_array<OsEntry>({
    {0xB9, "rdrm"},
    {0xC2, "even"},
    {0xCE, "find"},
    {0xD1, "gbpb"},
    {0xD4, "bput"},
    {0xD7, "bget"},
    {0xDA, "args"},
    {0xDD, "file"},
    {0xE0, "rdch"},
    {0xE3, "asci"},
    {0xE7, "newl"},
    {0xEE, "wrch"},
    {0xF1, "word"},
    {0xF4, "byte"},
    {0xF7, "cli "},
});
static_assert(kOsEntries.size() == 15);

} // namespace quoravel
