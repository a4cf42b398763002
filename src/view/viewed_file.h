#pragma once

#include "disc/disc_block.h"

#include <algorithm>
#include <cstdint>

namespace quoravel {

/// Bytes that a view shows of a file of `length` bytes that starts at `base` in the block. A file
/// that runs past the block is shown whole, with 0 for what is not there. A length that reads as
/// FFxxxx is none that a file can have: such a view stops at the end of the block.
[[nodiscard]] constexpr int ViewedLength(int base, std::uint32_t length) {
    constexpr std::uint32_t kNoLength = 0xFF0000;
    return length < kNoLength ? static_cast<int>(length) : std::max(kDiscBytes - base, 0);
}

/// Asking the clock at every byte would take most of the time; this many pass in microseconds.
inline constexpr int kBytesPerYield = 256;

} // namespace quoravel
