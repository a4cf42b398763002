#include "exchange/import.h"

#include "disc/catalogue.h"
#include "disc/entries.h"
#include "disc/free_space.h"
#include "disc/module1.h"
#include "exchange/host_names.h"
#include "exchange/sidecar.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/text.h"

#include <optional>
#include <span>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

/// The text of the box that refuses a file.
using Refusal = std::string;

struct Place {
    int base; ///< of the catalogue
    int slot;
};

Refusal CannotRead(const fs::path& file, const FileError& error) {
    return "Cannot read " + FileName(file) + ": " + error.reason;
}

/// First sector of the lowest free region that takes `bytes`. A file of no bytes needs one too.
std::optional<int> FirstFit(int drive, std::uint64_t bytes) {
    const auto row = static_cast<std::size_t>(drive);
    const auto regions = static_cast<std::size_t>(Module1::FreeSpaceNum[row]);
    for (std::size_t r = 0; r < regions; ++r)
        if (bytes <= static_cast<std::uint64_t>(Module1::FreeSpaceLen[row][r]) * kSectorBytes)
            return Module1::FreeSpaceMap[row][r];
    return {};
}

/// Meant: a count byte of 249 and more is not taken for full.
bool IsFull(int base) {
    return Module1::DiscImg.Byte(base + kCountByte) == kFullCount;
}

bool IsDriveFull(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    return IsFull(start) && (!IsWatfordDFS(drive) || IsFull(start + kSecondCatalogue));
}

/// What the catalogue is to hold of `file`. Meant: its length is that of the sidecar, even if the
/// file has another.
std::optional<Refusal> Describe(const fs::path& file, std::uint64_t length, Sidecar& described) {
    described = {{}, "000000", "000000", Hex(static_cast<std::uint32_t>(length), 6)};
    const auto sidecar = FindSidecar(file);
    if (!sidecar) {
        described.name = Trim(BytesOfHostName(file));
        return {};
    }
    std::string line;
    if (const auto error = ReadSidecarLine(*sidecar, line))
        return CannotRead(*sidecar, *error);
    // Meant: a sidecar without a usable line leaves the name empty, and the file becomes "$.".
    if (auto parsed = ParseSidecar(line))
        described = std::move(*parsed);
    return {};
}

/// The first of `count` files from number `first` on that starts below sector `target`.
std::optional<int> FirstBelow(int drive, int first, int count, int target) {
    for (int i = first; i < first + count; ++i)
        if (StartSector(GetDirOffset(drive, i) + kInfoDistance) < target)
            return i;
    return {};
}

/// The file number that a file at sector `target` gets. Meant: with no file below it stays 0, so
/// that the lowest file of all heads the catalogue.
int ChooseFileNumber(int drive, int target) {
    const int start = GetStartSectorOfDrive(drive);
    const int in_first = FilesInCatalogue(start);
    int number = FirstBelow(drive, 0, in_first, target).value_or(0);
    if (!IsWatfordDFS(drive))
        return number;
    const int in_second = FilesInCatalogue(start + kSecondCatalogue);
    number = FirstBelow(drive, in_first, in_second, target).value_or(number);
    return number == 0 && in_first == kSlots ? kSlots : number;
}

Place ChoosePlace(int drive, int target) {
    const int start = GetStartSectorOfDrive(drive);
    const int in_first = FilesInCatalogue(start);
    const int number = ChooseFileNumber(drive, target);
    if (number >= in_first && in_first >= 1)
        return {start + kSecondCatalogue, number - in_first};
    return {start, number};
}

bool IsFullSecondCatalogue(int drive, const Place& place) {
    return place.base != GetStartSectorOfDrive(drive) && IsFull(place.base);
}

/// Moves the entries from the chosen slot on one down. Meant: up to the last slot, whatever the
/// count says, so that a full first catalogue loses its last entry and its count wraps to 0.
void OpenSlot(const Place& place) {
    for (int slot = kSlots - 1; slot > place.slot; --slot)
        CopyEntry(SlotOffset(place.base, slot - 1), SlotOffset(place.base, slot));
    AddToCount(place.base, 1);
}

void WriteEntry(int entry, const Sidecar& file, int sector) {
    StoreName(entry, file.name);
    const unsigned directory = static_cast<unsigned char>(file.name.front());
    StoreByte(entry + kDirectoryByte, directory + (file.locked ? 128U : 0U));
    const int info = entry + kInfoDistance;
    StoreLowDigits(info + kLoadField, file.load);
    StoreLowDigits(info + kExecField, file.exec);
    StoreLowDigits(info + kLengthField, file.size);
    StoreByte(info + kPackedByte,
              HighBits(file.load) << kLoadShift | HighBits(file.exec) << kExecShift |
                  HighBits(file.size) << kLengthShift | (static_cast<unsigned>(sector) >> 8U & 3U));
    StoreByte(info + kSectorByte, static_cast<unsigned>(sector));
}

void WriteData(int drive, int sector, std::span<const std::uint8_t> bytes) {
    const int at = GetStartSectorOfDrive(drive) + sector * kSectorBytes;
    const int sectors = SectorsOf(static_cast<std::uint32_t>(bytes.size()));
    Module1::DiscImg.Fill(at, std::int64_t{sectors} * kSectorBytes, 0);
    Module1::DiscImg.Write(at, bytes);
}

/// The bytes of a file whose length has been asked before. A file of none is not opened.
std::optional<FileError> ReadWhole(const fs::path& file, std::uint64_t length,
                                   std::vector<std::uint8_t>& bytes) {
    if (length == 0)
        return {};
    auto error = ReadFile(file, static_cast<std::size_t>(length), bytes);
    if (!error && bytes.size() != length)
        error = FileError{"It changed while it was read"};
    return error;
}

/// All that can refuse the file comes before the first change of the disc.
std::optional<Refusal> Import(int drive, const fs::path& file) {
    std::uint64_t length = 0;
    if (const auto error = LengthOfFile(file, length))
        return CannotRead(file, *error);
    const auto sector = FirstFit(drive, length);
    if (!sector)
        return "Not Enough Free Contiguous Space on Disc";
    if (IsDriveFull(drive))
        return "Directory Full";
    Sidecar described;
    if (auto refusal = Describe(file, length, described))
        return refusal;
    described.name = ShapeName(described.name);
    if (GetPos(drive, described.name) >= 0)
        return "File " + Latin1ToUtf8(described.name) + " Already Exists";
    const Place place = ChoosePlace(drive, *sector);
    if (IsFullSecondCatalogue(drive, place))
        return "Second Directory Full - Please Compact Disc";
    std::vector<std::uint8_t> bytes;
    if (const auto error = ReadWhole(file, length, bytes))
        return CannotRead(file, *error);

    OpenSlot(place);
    WriteEntry(SlotOffset(place.base, place.slot), described, *sector);
    WriteData(drive, *sector, bytes);
    UpdateSequenceNumber(drive);
    GetFreeSpaceMap(drive);
    return {};
}

} // namespace

bool ImportFile(int drive, const fs::path& file) {
    std::error_code ignored;
    if (IsSidecarName(file) || fs::is_directory(file, ignored))
        return false;
    const auto refusal = Import(drive, file);
    if (refusal)
        host().MsgBox(*refusal);
    return refusal.has_value();
}

} // namespace quoravel
