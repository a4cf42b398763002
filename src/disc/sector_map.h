#pragma once

#include "disc/disc_block.h"

#include <array>
#include <cstdint>

namespace quoravel {

/// For each sector of a drive 1 if it is in use, else 0: bytes, as runs of those are found fast.
using SectorMap = std::array<std::uint8_t, kDriveSectors>;

/// The sectors that the catalogue of `drive` says its files take. Sectors from 800 up are passed
/// over; overlaps go unnoticed; the sectors of the catalogue itself are not marked.
[[nodiscard]] SectorMap SectorsOfFiles(int drive);

} // namespace quoravel
