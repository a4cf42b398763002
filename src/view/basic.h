#pragma once

#include "view/sink.h"

#include <cstdint>

namespace quoravel {

/// Lists the tokenised BBC BASIC program of `length` bytes at offset `base` of DiscImg, a program
/// line at a time in the form of the machine's LIST with LISTO 1. A file that does not start with
/// CR gives one message without a line end; anything else is listed, however odd. Yields.
void ListBasic(int base, std::uint32_t length, ViewSink& sink);

} // namespace quoravel
