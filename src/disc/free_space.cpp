#include "disc/free_space.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "disc/sector_map.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace quoravel {

namespace {

/// Row of `drive` in one of the free space tables.
template<class Table>
auto& Row(Table& table, int drive) {
    return table[static_cast<std::size_t>(drive)];
}

void RecordRegion(int drive, int first, int length) {
    int& count = Row(Module1::FreeSpaceNum, drive);
    const auto region = static_cast<std::size_t>(count);
    Row(Module1::FreeSpaceMap, drive)[region] = first;
    Row(Module1::FreeSpaceLen, drive)[region] = length;
    ++count;
}

} // namespace

SectorMap SectorsOfFiles(int drive) {
    SectorMap used;
    const int files = GetNumberOfDirEntries(drive);
    for (int i = 0; i < files; ++i) {
        const int info = GetDirOffset(drive, i) + kInfoDistance;
        const int first = StartSector(info);
        const int end = std::min(first + SectorsOf(FileLength(info)), kDriveSectors);
        for (int s = first; s < end; ++s)
            used[static_cast<std::size_t>(s)] = true;
    }
    return used;
}

void GetFreeSpaceMap(int drive) {
    const int total = GetNumberOfSectors(drive);
    const SectorMap used = SectorsOfFiles(drive);
    Row(Module1::FreeSpaceNum, drive) = 0;
    int run = 0;
    int first = GetRootSector(drive);
    for (int s = first; s < total; ++s) {
        if (!used[static_cast<std::size_t>(s)]) {
            ++run;
            continue;
        }
        if (run > 0)
            RecordRegion(drive, first, run);
        run = 0;
        first = s + 1;
    }
    if (run > 0)
        RecordRegion(drive, first, run);
}

int FreeSectors(int drive) {
    const auto regions = static_cast<std::size_t>(Row(Module1::FreeSpaceNum, drive));
    const auto lengths = std::span(Row(Module1::FreeSpaceLen, drive)).first(regions);
    return std::accumulate(lengths.begin(), lengths.end(), 0);
}

void ShowFree(int drive) {
    const int total = GetNumberOfSectors(drive);
    const int free = FreeSectors(drive);
    Module1::MsgBar(drive, "Drive " + std::to_string(drive) + " : " +
                               std::to_string(GetNumberOfDirEntries(drive)) + " files(s), " +
                               std::to_string(free * kSectorBytes) + " Bytes Free, " +
                               std::to_string((total - free) * kSectorBytes) + " Bytes Used");
}

} // namespace quoravel
