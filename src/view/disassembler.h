#pragma once

#include "view/sink.h"

#include <cstdint>
#include <string>

namespace quoravel {

/// Disassembles the file of `length` bytes that starts in `sector` of cur_drive, an instruction at
/// a time from the first byte to the last and the one behind it, `address` being that of the first.
/// A file that looks like a BASIC program gives one message without a line end. Yields; when
/// cur_drive changes meanwhile, the end moves to where the file would end on that drive.
void Disassemble(int sector, std::uint32_t length, std::uint16_t address, ViewSink& sink);

inline namespace Module5 {

/// Appends to `text` the name of the operating system's entry point that the JMP or JSR at offset
/// `position` of DiscImg goes to. The characters added: 6, or 0 if it goes elsewhere.
[[nodiscard]] int os(int position, std::string& text);

} // namespace Module5

} // namespace quoravel
