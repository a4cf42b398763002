#pragma once

#include "view/sink.h"

#include <cstdint>

namespace quoravel {

/// Hands over the file of `length` bytes at `base` in the block line by line, each ended by its CR.
/// Every LF is left out; all other bytes go through as they are. A file without CR is one piece,
/// however long.
void ListText(int base, std::uint32_t length, ViewSink& sink);

} // namespace quoravel
