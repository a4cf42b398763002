#pragma once

namespace quoravel {

/// Closes the gaps between the files of `drive`, lowest file first, and on a Watford disc fills the
/// first catalogue from the second. Marks the disc as changed; the cycle number stays. It relies on
/// entries in descending order of start sector: one out of order can be copied over a file that has
/// not moved yet, and that loss is how it behaves.
void Compact(int drive);

} // namespace quoravel
