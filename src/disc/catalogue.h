#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The DFS catalogue, read and written in the bytes of Module1::DiscImg. docs/disc-formats.md has
// the tables of its bytes. A drive is 0 or 1; a file number counts over both catalogues of a drive,
// as GetPos gives it; an offset is a byte offset into the block. Nothing here fails: a damaged
// catalogue gives odd names and numbers and nothing worse.

namespace quoravel {

inline constexpr int kSlots = 31;             ///< files in one catalogue
inline constexpr int kEntryBytes = 8;         ///< of a name entry, and of an information block
inline constexpr int kFullCount = kSlots * 8; ///< count byte of a full catalogue
inline constexpr int kSecondCatalogue = 512;  ///< from the first catalogue to Watford's second
inline constexpr int kInfoDistance = 256;     ///< from a name entry to its information block

// Offsets from the start of a catalogue.
inline constexpr int kCycleByte = 260;
inline constexpr int kCountByte = 261; ///< number of files times 8
inline constexpr int kFlagsByte = 262; ///< bits 0-1 sector count high, bits 4-5 boot option
inline constexpr int kSectorCountByte = 263;

inline constexpr int kNameBytes = 7;     ///< of a name entry, padded with spaces
inline constexpr int kDirectoryByte = 7; ///< behind them: bit 7 is the lock

// Characters of a name as lists show it, without and with its directory: NAME, D.NAME.
inline constexpr std::size_t kLongestBareName = kNameBytes;
inline constexpr std::size_t kLongestName = kLongestBareName + 2;

// What fills the first name entry of Watford's second catalogue, to be known by.
inline constexpr std::uint8_t kWatfordMarker = 0xAA;
inline constexpr int kWatfordMarkerBytes = kEntryBytes;

/// Fields of the information block at `info` as numbers. An address or length whose two high bits
/// are both set reads as 0xFFxxxx, lengths included: that is how this system has always shown them.
[[nodiscard]] std::uint32_t LoadAddress(int info);
[[nodiscard]] std::uint32_t ExecAddress(int info);
[[nodiscard]] std::uint32_t FileLength(int info);
[[nodiscard]] int StartSector(int info);

/// Sectors that a file of `bytes` takes; a file of no bytes takes one.
[[nodiscard]] constexpr int SectorsOf(std::uint32_t bytes) {
    return bytes == 0 ? 1 : static_cast<int>((bytes - 1) / 256 + 1);
}

/// Files in the catalogue that starts at `base`: its count byte / 8, whole.
[[nodiscard]] int FilesInCatalogue(int base);

/// Cycle number of the catalogue that starts at `base`, 0 to 99: two decimal digits in one byte;
/// what is none goes through the same sum.
[[nodiscard]] unsigned CycleNumber(int base);

/// Boot option of a drive, 0 to 3.
[[nodiscard]] int BootOption(int drive);

/// Stores a boot option of 0 to 3. Meant: neither the cycle number nor gDirty takes note of it, so
/// a changed boot option alone can be lost without a question.
void SetBootOption(int drive, int option);

inline namespace Module7 {

/// True exactly if bytes 512 to 519 of the drive are all 0xAA.
[[nodiscard]] bool IsWatfordDFS(int drive);

/// First sector for files: 4 on a Watford disc, otherwise 2.
[[nodiscard]] int GetRootSector(int drive);

/// Files on the drive by the count bytes of its catalogues, 0 to 63.
[[nodiscard]] int GetNumberOfDirEntries(int drive);

/// Offset of the name entry of a file; its information block is 256 further on. A number from the
/// first catalogue's count up lies in the second, whether the disc has one or not.
[[nodiscard]] int GetDirOffset(int drive, int file_number);

/// Size of the disc in sectors, 0 to 800: a catalogue that claims more gets 800.
[[nodiscard]] int GetNumberOfSectors(int drive);

/// Byte offset of a drive in the block, despite the name.
[[nodiscard]] constexpr int GetStartSectorOfDrive(int drive) {
    return drive * 256 * 800;
}

/// Advances the cycle number (decimal, 00 to 99 and round) and marks the disc as changed.
void UpdateSequenceNumber(int drive);

} // namespace Module7

inline namespace Module2 {

/// `text` repeated `count` times; empty for a count below 1.
[[nodiscard]] std::string MyString(int count, std::string_view text);

/// The name of a file as `D.NAME`, each byte without its bit 7; the seven characters trimmed.
[[nodiscard]] std::string GetName(int drive, int file_number);

/// File number of the first file of that name, whatever its case, or -1. An entry whose directory
/// character is NUL ends the search.
[[nodiscard]] int GetPos(int drive, std::string_view name);

/// Title of a drive up to its first NUL, trimmed.
[[nodiscard]] std::string GetTitle(int drive);

/// Stores a trimmed title of up to 12 characters and advances the cycle number. A character outside
/// 32 to 127 or one of -.:*#$&@^ is refused with a box, the disc unchanged.
void SetTitle(int drive, std::string_view text);

} // namespace Module2

inline namespace Module3 {

// The same fields as upper-case hex text, the form that lists, views and sidecars show: six digits,
// three for a sector. They take the offset of an information block, GetFileAttr that of a name
// entry.
[[nodiscard]] std::string GetLoad(int info);
[[nodiscard]] std::string GetExec(int info);
[[nodiscard]] std::string GetSize(int info);
[[nodiscard]] std::string GetSector(int info);

/// "L" for a locked file, otherwise " ".
[[nodiscard]] std::string GetFileAttr(int name_entry);

/// Index of the highest sector in use below the disc's sector count; 0 on a disc without sectors.
[[nodiscard]] int GetSectorsUsed(int drive);

} // namespace Module3

} // namespace quoravel
