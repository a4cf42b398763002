#pragma once

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "fuzz/fuzz.h"

// For fuzzers of views: the input is a file, and its last six bytes say where it lies.

namespace quoravel {

struct FileInput {
    int sector = 0;
    int base = 0;
    std::uint32_t length = 0;
    std::uint32_t load = 0;
};

inline constexpr std::size_t kFileInputTail = 6;

/// Puts `bytes` at `offset` of a disc of zeros. Clears only what the last call put there, as
/// clearing everything takes longer than most inputs.
inline void PutOnBlankDisc(std::int64_t offset, Bytes bytes) {
    static std::int64_t last_offset = 0;
    static std::int64_t last_length = kDiscBytes;
    Module1::DiscImg.Fill(last_offset, last_length, 0);
    Module1::DiscImg.Write(offset, bytes);
    last_offset = offset;
    last_length = std::ssize(bytes);
}

/// Puts the file of an input of kFileInputTail bytes and more on a disc of zeros and selects its
/// drive. The last bytes are: load address; length, held near that of the file, so that a run is
/// short; sector; flags. Bit 0 of the flags is the drive, with bit 2 the sector is one of the last
/// 8 or lies behind them, and with bit 3 the length reads as 0xFFxxxx, near the end of the block.
[[nodiscard]] inline FileInput LoadFileInput(Bytes input) {
    const auto tail = input.last(kFileInputTail);
    const auto bytes = input.first(input.size() - kFileInputTail);
    const auto word = [&](std::size_t i) { return tail[i] + 256U * tail[i + 1]; };
    const unsigned flags = tail[5];
    const bool reads_ff = (flags & 8U) != 0;
    const bool near_end = reads_ff || (flags & 4U) != 0;
    const bool drive_1 = reads_ff || (flags & 1U) != 0;
    const auto longest = static_cast<std::uint32_t>(bytes.size()) + (near_end ? 600U : 64U);

    FileInput file;
    file.load = word(0);
    file.length = reads_ff ? word(2) | 0xFF0000U : word(2) % longest;
    file.sector = tail[4] + (near_end ? kDriveSectors - 8 : 0);
    Module1::cur_drive = drive_1 ? 1 : 0;
    file.base = GetStartSectorOfDrive(Module1::cur_drive) + file.sector * kSectorBytes;
    PutOnBlankDisc(file.base, bytes);
    return file;
}

} // namespace quoravel
