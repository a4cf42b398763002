#include "disc/free_space.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "disc/sector_map.h"

#include <algorithm>
#include <cstring>
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

constexpr int kFree = 0;
constexpr int kUsed = 1;

/// The first sector of that kind from `from` on, or `total`.
int FirstOf(int kind, const SectorMap& used, int from, int total) {
    if (from >= total)
        return total;
    const auto* start = used.data() + from;
    const auto* found = std::memchr(start, kind, static_cast<std::size_t>(total - from));
    return found == nullptr
               ? total
               : static_cast<int>(static_cast<const std::uint8_t*>(found) - used.data());
}

} // namespace

SectorMap SectorsOfFiles(int drive) {
    SectorMap used{};
    const int files = GetNumberOfDirEntries(drive);
    for (int i = 0; i < files; ++i) {
        const int info = GetDirOffset(drive, i) + kInfoDistance;
        const int first = StartSector(info);
        const int end = std::min(first + SectorsOf(FileLength(info)), kDriveSectors);
        for (int s = first; s < end; ++s)
            used[static_cast<std::size_t>(s)] = 1;
    }
    return used;
}

void GetFreeSpaceMap(int drive) {
    const int total = GetNumberOfSectors(drive);
    const SectorMap used = SectorsOfFiles(drive);
    Row(Module1::FreeSpaceNum, drive) = 0;
    for (int first = GetRootSector(drive); first < total;) {
        const int end = FirstOf(kUsed, used, first, total);
        if (end > first)
            RecordRegion(drive, first, end - first);
        first = FirstOf(kFree, used, end, total);
    }
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
