#pragma once

#include "disc/catalogue.h"
#include "disc/module1.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

// For fuzzers of views: the input is a file, and its last six bytes say where it lies.

namespace quoravel {

/// Ends the run at the input that breaks a promise.
inline void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

struct FileInput {
    int sector = 0;
    int base = 0;
    std::uint32_t length = 0;
    std::uint32_t load = 0;
};

inline constexpr std::size_t kFileInputTail = 6;

/// Puts the file of an input of kFileInputTail bytes and more on a disc of zeros and selects its
/// drive. The last bytes are: load address; length, of which 12 bits count, so that a run is short;
/// sector; flags. Bit 0 of the flags is the drive, with bit 2 the sector is one of the last 8 or
/// lies behind them, and with bit 3 the length reads as 0xFFxxxx, near the end of the block.
[[nodiscard]] inline FileInput LoadFileInput(std::span<const std::uint8_t> input) {
    const auto tail = input.last(kFileInputTail);
    const auto word = [&](std::size_t i) { return tail[i] + 256U * tail[i + 1]; };
    const unsigned flags = tail[5];
    const bool reads_ff = (flags & 8U) != 0;
    const bool near_end = reads_ff || (flags & 4U) != 0;
    const bool drive_1 = reads_ff || (flags & 1U) != 0;

    FileInput file;
    file.load = word(0);
    file.length = (word(2) & 0xFFFU) | (reads_ff ? 0xFF0000U : 0U);
    file.sector = tail[4] + (near_end ? kDriveSectors - 8 : 0);
    Module1::cur_drive = drive_1 ? 1 : 0;
    file.base = GetStartSectorOfDrive(Module1::cur_drive) + file.sector * kSectorBytes;
    Module1::DiscImg.Fill(0, kDiscBytes, 0);
    Module1::DiscImg.Write(file.base, input.first(input.size() - kFileInputTail));
    return file;
}

} // namespace quoravel
