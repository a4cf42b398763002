#include "fuzz/disc_promises.h"

#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "fuzz/fuzz.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace quoravel {

namespace {

using Region = std::pair<int, int>; ///< first sector and the one behind the last

std::vector<Region> KeptRegions(int drive) {
    const auto row = static_cast<std::size_t>(drive);
    const int regions = Module1::FreeSpaceNum[row];
    Require(regions >= 0 && regions <= Module1::kFreeRegions, "the regions fit in their table");
    std::vector<Region> kept;
    for (std::size_t i = 0; i < static_cast<std::size_t>(regions); ++i) {
        const int first = Module1::FreeSpaceMap[row][i];
        kept.emplace_back(first, first + Module1::FreeSpaceLen[row][i]);
    }
    return kept;
}

bool IsListedWhereverItGoes(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    const int in_first = Module1::DiscImg.Byte(start + kCountByte);
    const int in_second = Module1::DiscImg.Byte(start + kSecondCatalogue + kCountByte);
    const bool watford = IsWatfordDFS(drive);
    return in_first % 8 == 0 && in_first < kFullCount &&
           std::ssize(ListFiles(drive)) == GetNumberOfDirEntries(drive) &&
           (!watford || (in_first > 0 && in_second % 8 == 0 && in_second < kFullCount));
}

/// File numbers from the lowest file on.
std::vector<int> InOrderOfCompaction(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    const int in_first = FilesInCatalogue(start);
    const int in_second = IsWatfordDFS(drive) ? FilesInCatalogue(start + kSecondCatalogue) : 0;
    std::vector<int> files;
    for (int i = in_first - 1; i >= 0; --i)
        files.push_back(i);
    for (int i = in_second - 1; i >= 0; --i)
        files.push_back(in_first + i);
    return files;
}

} // namespace

Range CatalogueOf(int drive) {
    const std::int64_t start = GetStartSectorOfDrive(drive);
    return {start,
            start + (IsWatfordDFS(drive) ? 4 * kSectorBytes + kEntryBytes : 2 * kSectorBytes)};
}

Range WhereCompactWrites(int drive) {
    const std::int64_t start = GetStartSectorOfDrive(drive);
    std::int64_t end = start + kDriveBytes;
    std::int64_t next = GetRootSector(drive);
    for (const int file : InOrderOfCompaction(drive)) {
        const int info = GetDirOffset(drive, file) + kInfoDistance;
        if (StartSector(info) != next)
            end = std::max(end, start + next * kSectorBytes + std::int64_t{FileLength(info)});
        next += SectorsOf(FileLength(info));
    }
    return {start, std::min<std::int64_t>(end, kDiscBytes)};
}

std::optional<DriveContents> ContentsOfSoundDrive(int drive) {
    const auto rows = ListFiles(drive);
    const auto files = InOrderOfCompaction(drive);
    if (rows.size() != files.size() || std::ssize(rows) != GetNumberOfDirEntries(drive))
        return {};
    DriveContents contents;
    int next = GetRootSector(drive);
    for (const int file : files) {
        const ListRow& row = rows[static_cast<std::size_t>(file)];
        const int sector = static_cast<int>(HexValue(row.Sector));
        const std::uint32_t bytes = HexValue(row.Size);
        if (sector < next || sector + SectorsOf(bytes) > kDriveSectors)
            return {};
        const auto data = Module1::DiscImg.Part(
            GetStartSectorOfDrive(drive) + std::int64_t{sector} * kSectorBytes, bytes);
        contents.emplace(row.FileName + row.Attr + row.Load + row.Exec + row.Size, AsText(data));
        next = sector + SectorsOf(bytes);
    }
    return contents;
}

void CheckCatalogue(int drive) {
    const int files = GetNumberOfDirEntries(drive);
    const auto rows = ListFiles(drive);
    Require(files <= 63 && std::ssize(rows) <= files, "no more rows than files, 63 at most");
    for (const ListRow& row : rows) {
        const std::int64_t start =
            GetStartSectorOfDrive(drive) + std::int64_t{HexValue(row.Sector)} * kSectorBytes;
        const std::int64_t size = HexValue(row.Size);
        const std::int64_t room = std::max<std::int64_t>(kDiscBytes - start, 0);
        Require(std::ssize(Module1::DiscImg.Part(start, size)) == std::min(size, room),
                "a listed file reads, up to the end of the block");
    }
    Require(SortedListFiles(drive).size() == rows.size(), "sorting loses no row");
    Require(GetSectorsUsed(drive) >= 0 && GetSectorsUsed(drive) < kDriveSectors,
            "the last sector in use lies on the disc");
}

void CheckFreeSpace(int drive) {
    const auto regions = KeptRegions(drive);
    GetFreeSpaceMap(drive);
    Require(KeptRegions(drive) == regions, "the free space is kept up to date");
    int end = GetRootSector(drive) - 1;
    for (const auto& [first, behind] : regions) {
        Require(first > end, "regions ascend and never touch");
        Require(behind > first, "no region is empty");
        end = behind;
    }
    Require(regions.empty() || end <= GetNumberOfSectors(drive), "regions end with the disc");
    for (int i = GetNumberOfDirEntries(drive) - 1; i >= 0; --i) {
        const int info = GetDirOffset(drive, i) + kInfoDistance;
        const int start = StartSector(info);
        const int behind = start + SectorsOf(FileLength(info));
        Require(std::ranges::all_of(regions,
                                    [&](const Region& region) {
                                        return behind <= region.first || start >= region.second;
                                    }),
                "no file lies in free space");
    }
    ShowFree(drive);
}

Range RegionFor(int drive, std::size_t bytes) {
    const int sectors = SectorsOf(static_cast<std::uint32_t>(bytes));
    for (const auto& [first, behind] : KeptRegions(drive))
        if (sectors <= behind - first) {
            const std::int64_t start =
                GetStartSectorOfDrive(drive) + std::int64_t{first} * kSectorBytes;
            return {start, start + sectors * kSectorBytes};
        }
    return {};
}

bool ArrivesWhole(const ListRow& row, int drive) {
    return std::ranges::all_of(row.FileName, [](char c) { return c > ' ' && c < 127; }) &&
           IsListedWhereverItGoes(drive);
}

void CheckCopy(const ListRow& row, int drive) {
    const auto rows = ListFiles(drive);
    const auto copy = std::ranges::find(rows, row.FileName, &ListRow::FileName);
    Require(copy != rows.end() && copy->Attr == row.Attr && copy->Load == row.Load &&
                copy->Exec == row.Exec && copy->Size == row.Size,
            "a copied file is listed as it was");
}

void BlockWatch::Restart() {
    std::memcpy(before_.data(), Module1::DiscImg.bytes().data(), before_.size());
}

void BlockWatch::Check(const std::vector<Range>& changed) {
    const auto* now = Module1::DiscImg.bytes().data();
    std::int64_t at = 0;
    const auto same_up_to = [&](std::int64_t end) {
        const auto count = static_cast<std::size_t>(std::max(end - at, std::int64_t{0}));
        Require(std::memcmp(before_.data() + at, now + at, count) == 0,
                "nothing changes but what the command is for");
    };
    for (const auto& [begin, end] : changed) {
        same_up_to(begin);
        if (end > begin)
            std::memcpy(before_.data() + begin, now + begin, static_cast<std::size_t>(end - begin));
        at = std::max(at, end);
    }
    same_up_to(kDiscBytes);
}

} // namespace quoravel
