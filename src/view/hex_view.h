#pragma once

#include "view/sink.h"

#include <cstdint>

namespace quoravel {

/// Hands over a hex dump of the file of `length` bytes at `base` in the block, one row of up to 16
/// bytes a piece: offset from the start of the file in six digits, " : ", the bytes, a space, and
/// each byte without its bit 7 as a character, "." for what is none.
void ListHex(int base, std::uint32_t length, ViewSink& sink);

} // namespace quoravel
