#pragma once

#include "disc/disc_block.h"
#include "disc/listing.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

// What holds of DiscImg whatever catalogue its bytes are taken for.

namespace quoravel {

/// Bytes of the block from `begin` up to `end`.
struct Range {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// Where the catalogue of `drive` lies. One whose count bytes claim parts of files can have a 32nd
/// entry in its second half, with a block of information behind that.
[[nodiscard]] Range CatalogueOf(int drive);

/// Where compacting `drive` writes. Files that take more than the drive has run on past its end.
[[nodiscard]] Range WhereCompactWrites(int drive);

/// All files of a drive: what their rows show but for the sector, and their bytes.
using DriveContents = std::multimap<std::string, std::string>;

/// Nothing for a drive whose catalogue is damaged, or not in the order that compaction relies on.
[[nodiscard]] std::optional<DriveContents> ContentsOfSoundDrive(int drive);

/// Reads all of a catalogue as lists, views and commands do, and every file that it lists.
void CheckCatalogue(int drive);

/// The free regions of `drive`, as they are kept, are those of its catalogue, ascend, never touch
/// and hold no sector of a file.
void CheckFreeSpace(int drive);

/// The lowest free region that takes a file of so many bytes, as far as the file goes.
[[nodiscard]] Range RegionFor(int drive, std::size_t bytes);

/// True if a copy of the file will be listed on `drive` as it is here: its name fits a sidecar and
/// the catalogue is neither damaged nor full, nor one whose first half alone is empty.
[[nodiscard]] bool ArrivesWhole(const ListRow& row, int drive);

/// The file of that row is listed on `drive`, too.
void CheckCopy(const ListRow& row, int drive);

/// Holds what the block was, to be compared with what it becomes.
class BlockWatch {
  public:
    BlockWatch() : before_(kDiscBytes) {}

    /// Everything may have changed.
    void Restart();

    /// Nothing has changed but within `changed`, in ascending order. Goes on from what there is
    /// now.
    void Check(const std::vector<Range>& changed);

    /// The block as it was at the last call.
    [[nodiscard]] const std::vector<std::uint8_t>& before() const { return before_; }

  private:
    std::vector<std::uint8_t> before_;
};

} // namespace quoravel
