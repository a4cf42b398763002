#include "disc/catalogue.h"

#include "disc/entries.h"
#include "disc/module1.h"
#include "disc/sector_map.h"
#include "platform/text.h"

namespace quoravel {

namespace {

char CharAt(int offset) {
    return static_cast<char>(ByteAt(offset) & 127U);
}

/// A field of 18 bits: 16 at `field`, two more in the packed byte from bit `shift` on. 3 in those
/// two reads as FF.
std::uint32_t WideField(int info, int field, unsigned shift) {
    const int low = info + field;
    const unsigned high = (ByteAt(info + kPackedByte) >> shift) & 3U;
    return (high == 3 ? 0xFFU : high) << 16U | ByteAt(low + 1) << 8U | ByteAt(low);
}

} // namespace

std::uint32_t LoadAddress(int info) {
    return WideField(info, kLoadField, kLoadShift);
}

std::uint32_t ExecAddress(int info) {
    return WideField(info, kExecField, kExecShift);
}

std::uint32_t FileLength(int info) {
    return WideField(info, kLengthField, kLengthShift);
}

int StartSector(int info) {
    return static_cast<int>((ByteAt(info + kPackedByte) & 3U) << 8U | ByteAt(info + kSectorByte));
}

int FilesInCatalogue(int base) {
    return Module1::DiscImg.Byte(base + kCountByte) / 8;
}

unsigned CycleNumber(int base) {
    const unsigned digits = ByteAt(base + kCycleByte);
    return (digits / 16 * 10 + (digits & 15U)) % 100;
}

int BootOption(int drive) {
    return static_cast<int>(ByteAt(GetStartSectorOfDrive(drive) + kFlagsByte) >> 4U & 3U);
}

void SetBootOption(int drive, int option) {
    const int flags = GetStartSectorOfDrive(drive) + kFlagsByte;
    const unsigned stored = (ByteAt(flags) & 207U) | (static_cast<unsigned>(option) & 3U) << 4U;
    StoreByte(flags, stored);
}

inline namespace Module7 {

bool IsWatfordDFS(int drive) {
    const int marker = GetStartSectorOfDrive(drive) + kSecondCatalogue;
    for (int i = 0; i < kWatfordMarkerBytes; ++i)
        if (ByteAt(marker + i) != kWatfordMarker)
            return false;
    return true;
}

int GetRootSector(int drive) {
    return IsWatfordDFS(drive) ? 4 : 2;
}

int GetNumberOfDirEntries(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    // Meant: eighths of a file add up over both catalogues before the fraction is dropped, so that
    // count bytes of 12 and 12 give 3 files.
    unsigned eighths = ByteAt(start + kCountByte);
    if (IsWatfordDFS(drive))
        eighths += ByteAt(start + kSecondCatalogue + kCountByte);
    return static_cast<int>(eighths / 8);
}

int GetDirOffset(int drive, int file_number) {
    const int start = GetStartSectorOfDrive(drive);
    const int first = FilesInCatalogue(start);
    if (file_number < first)
        return SlotOffset(start, file_number);
    return SlotOffset(start + kSecondCatalogue, file_number - first);
}

int GetNumberOfSectors(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    const unsigned count =
        (ByteAt(start + kFlagsByte) & 3U) * 256 + ByteAt(start + kSectorCountByte);
    return count > kDriveSectors ? kDriveSectors : static_cast<int>(count);
}

void UpdateSequenceNumber(int drive) {
    const int start = GetStartSectorOfDrive(drive);
    const unsigned next = (CycleNumber(start) + 1) % 100;
    StoreByte(start + kCycleByte, next / 10 * 16 + next % 10);
    Module1::gDirty = true;
}

} // namespace Module7

inline namespace Module2 {

std::string MyString(int count, std::string_view text) {
    std::string repeated;
    for (int i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

std::string GetName(int drive, int file_number) {
    const int entry = GetDirOffset(drive, file_number);
    std::string name;
    for (int i = 0; i < kNameBytes; ++i)
        name += CharAt(entry + i);
    return std::string{CharAt(entry + kDirectoryByte), '.'}.append(Trim(name));
}

int GetPos(int drive, std::string_view name) {
    const int files = GetNumberOfDirEntries(drive);
    for (int i = 0; i < files; ++i) {
        const std::string found = GetName(drive, i);
        if (found.front() == '\0')
            return -1;
        if (EqualIgnoringCase(found, name))
            return i;
    }
    return -1;
}

} // namespace Module2

inline namespace Module3 {

std::string GetLoad(int info) {
    return Hex(LoadAddress(info), 6);
}

std::string GetExec(int info) {
    return Hex(ExecAddress(info), 6);
}

std::string GetSize(int info) {
    return Hex(FileLength(info), 6);
}

std::string GetSector(int info) {
    return Hex(static_cast<std::uint32_t>(StartSector(info)), 3);
}

std::string GetFileAttr(int name_entry) {
    return (ByteAt(name_entry + kDirectoryByte) & 128U) != 0 ? "L" : " ";
}

int GetSectorsUsed(int drive) {
    SectorMap used = SectorsOfFiles(drive);
    for (int s = 0; s < GetRootSector(drive); ++s)
        used[static_cast<std::size_t>(s)] = 1;
    for (int s = GetNumberOfSectors(drive) - 1; s > 0; --s)
        if (used[static_cast<std::size_t>(s)] != 0)
            return s;
    return 0;
}

} // namespace Module3

} // namespace quoravel
