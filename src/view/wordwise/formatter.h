#pragma once

#include "view/sink.h"

#include <string_view>

namespace quoravel::WordWise {

/// True for a file with these cells in its row: load and exec address, six hex digits of any case.
[[nodiscard]] bool IsDocument(std::string_view load, std::string_view exec);

/// Formats the document of Module1::gSize bytes at Module1::gOffset in DiscImg and writes it to
/// `view`, one character a call, in the style that Underline and DoubleStrike have at that moment.
/// The event loop runs meanwhile; another document can be formatted within it. Any bytes will do:
/// commands that nobody knows are told in boxes, and the formatting goes on.
void FormatDocument(ViewSink& view);

} // namespace quoravel::WordWise
