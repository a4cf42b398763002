#include "disc/compact.h"

#include "disc/catalogue.h"
#include "disc/entries.h"
#include "disc/free_space.h"
#include "disc/module1.h"

#include <algorithm>

namespace quoravel {

namespace {

/// Moves one file down to sector `next`; gives the sector behind it there.
int SlideDown(int drive, int file_number, int next) {
    const int info = GetDirOffset(drive, file_number) + kInfoDistance;
    const int sector = StartSector(info);
    const std::uint32_t bytes = FileLength(info);
    if (sector != next) {
        // Meant: the data move within cur_drive, the entry is that of the argument. The only caller
        // passes cur_drive.
        const int base = GetStartSectorOfDrive(Module1::cur_drive);
        Module1::DiscImg.CopyAscending(base + std::int64_t{sector} * kSectorBytes,
                                       base + std::int64_t{next} * kSectorBytes, bytes);
        const auto sector_now = static_cast<unsigned>(next);
        const unsigned others = Module1::DiscImg.Byte(info + kPackedByte) & ~3U;
        StoreByte(info + kPackedByte, others | sector_now / 256);
        StoreByte(info + kSectorByte, sector_now);
    }
    return next + SectorsOf(bytes);
}

/// Fills the first catalogue from the second. Its last entries are its lowest files, so at the
/// front of the first catalogue they keep the descending order.
void MoveEntriesToFirstCatalogue(int drive) {
    const int first = GetStartSectorOfDrive(drive);
    const int second = first + kSecondCatalogue;
    const int in_first = FilesInCatalogue(first);
    const int in_second = FilesInCatalogue(second);
    const int moved = std::min(kSlots - in_first, in_second);
    for (int i = in_first - 1; i >= 0; --i)
        CopyEntry(SlotOffset(first, i), SlotOffset(first, i + moved));
    for (int k = 0; k < moved; ++k) {
        const int source = SlotOffset(second, in_second - 1 - k);
        CopyEntry(source, SlotOffset(first, moved - 1 - k));
        ClearEntry(source);
    }
    AddToCount(first, moved);
    AddToCount(second, -moved);
}

} // namespace

void Compact(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    const bool watford = IsWatfordDFS(drive); // asked before anything moves
    int next = GetRootSector(drive);
    const int in_first = FilesInCatalogue(start);
    for (int i = in_first - 1; i >= 0; --i)
        next = SlideDown(drive, i, next);
    if (watford) {
        for (int j = FilesInCatalogue(start + kSecondCatalogue) - 1; j >= 0; --j)
            next = SlideDown(drive, in_first + j, next);
        MoveEntriesToFirstCatalogue(drive);
    }
    Module1::gDirty = true;
    GetFreeSpaceMap(drive);
}

} // namespace quoravel
