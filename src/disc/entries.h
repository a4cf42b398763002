#pragma once

#include "disc/catalogue.h"

#include <string_view>

// Catalogue entries as commands move and write them. An entry is given by the offset of its name;
// its information block moves with it.

namespace quoravel {

// Fields of an information block.
inline constexpr int kLoadField = 0;
inline constexpr int kExecField = 2;
inline constexpr int kLengthField = 4;
inline constexpr int kPackedByte = 6; ///< the two high bits of each field and of the start sector
inline constexpr int kSectorByte = 7;

// Where the high bits lie in the packed byte; those of the start sector lie lowest.
inline constexpr unsigned kLoadShift = 2;
inline constexpr unsigned kLengthShift = 4;
inline constexpr unsigned kExecShift = 6;

/// The entry in `slot` (from 0, on a sound disc to 30) of the catalogue that starts at `base`.
[[nodiscard]] constexpr int SlotOffset(int base, int slot) {
    return base + kEntryBytes + kEntryBytes * slot;
}

/// Stores the lowest eight bits of `value` at `offset` of the block.
void StoreByte(int offset, unsigned value);

void CopyEntry(int from, int to);
void ClearEntry(int at);

/// Adds `files`, which may be negative, to the count of the catalogue at `base`. The count byte
/// wraps.
void AddToCount(int base, int files);

// An address or length in hex digits, as lists and sidecars hold it, is taken pair by pair from the
// left. A pair counts up to its first character that is no hex digit; what is missing counts as 0.

/// Digits 1 and 2, of which the catalogue has room for two bits.
[[nodiscard]] unsigned HighBits(std::string_view digits);

/// Digits 3 to 6, stored at `at` and behind it, low byte first.
void StoreLowDigits(int at, std::string_view digits);

/// Stores characters 3 to 9 of `D.NAME`, padded with spaces. The directory byte is the caller's.
void StoreName(int entry, std::string_view name);

} // namespace quoravel
