#pragma once

namespace quoravel {

/// Rebuilds the rows of FreeSpaceMap, FreeSpaceLen and FreeSpaceNum of `drive` from its catalogue:
/// regions in ascending order that never touch each other.
void GetFreeSpaceMap(int drive);

/// Sectors in the free regions of `drive`, as of the last GetFreeSpaceMap.
[[nodiscard]] int FreeSectors(int drive);

/// Writes the status line of `drive`: files, bytes free, bytes used (catalogue included).
void ShowFree(int drive);

} // namespace quoravel
