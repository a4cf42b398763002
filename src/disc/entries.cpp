#include "disc/entries.h"

#include "disc/module1.h"
#include "platform/text.h"

namespace quoravel {

namespace {

constexpr std::size_t kNameStart = 2; // in D.NAME

/// Pair 0, 1 or 2 of six hex digits.
unsigned Pair(std::string_view digits, std::size_t pair) {
    const std::size_t at = 2 * pair;
    return at < digits.size() ? HexValue(digits.substr(at, 2)) : 0;
}

} // namespace

void StoreByte(int offset, unsigned value) {
    Module1::DiscImg.SetByte(offset, static_cast<std::uint8_t>(value));
}

void CopyEntry(int from, int to) {
    Module1::DiscImg.CopyAscending(from, to, kEntryBytes);
    Module1::DiscImg.CopyAscending(from + kInfoDistance, to + kInfoDistance, kEntryBytes);
}

void ClearEntry(int at) {
    Module1::DiscImg.Fill(at, kEntryBytes, 0);
    Module1::DiscImg.Fill(at + kInfoDistance, kEntryBytes, 0);
}

void AddToCount(int base, int files) {
    const int count = Module1::DiscImg.Byte(base + kCountByte) + 8 * files;
    Module1::DiscImg.SetByte(base + kCountByte, static_cast<std::uint8_t>(count));
}

unsigned HighBits(std::string_view digits) {
    return Pair(digits, 0) & 3U;
}

void StoreLowDigits(int at, std::string_view digits) {
    StoreByte(at, Pair(digits, 2));
    StoreByte(at + 1, Pair(digits, 1));
}

void StoreName(int entry, std::string_view name) {
    for (int i = 0; i < kNameBytes; ++i) {
        const std::size_t at = kNameStart + static_cast<std::size_t>(i);
        const char c = at < name.size() ? name[at] : ' ';
        Module1::DiscImg.SetByte(entry + i, static_cast<std::uint8_t>(c));
    }
}

} // namespace quoravel
