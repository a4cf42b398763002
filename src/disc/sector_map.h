#pragma once

#include "disc/disc_block.h"

#include <bitset>

namespace quoravel {

/// One flag for each sector of a drive.
using SectorMap = std::bitset<kDriveSectors>;

/// The sectors that the catalogue of `drive` says its files take. Sectors from 800 up are passed
/// over; overlaps go unnoticed; the sectors of the catalogue itself are not marked.
[[nodiscard]] SectorMap SectorsOfFiles(int drive);

} // namespace quoravel
