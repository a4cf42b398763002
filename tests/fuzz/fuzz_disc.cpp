#include "disc/catalogue.h"
#include "disc/compact.h"
#include "disc/file_commands.h"
#include "disc/free_space.h"
#include "disc/image_files.h"
#include "disc/listing.h"
#include "disc/module1.h"
#include "support/scripted_host.h"
#include "support/temp_folder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <span>

// Any bytes are a disc. The last byte of the input says how the others get into the block, the rest
// is what an image file would hold.

namespace quoravel {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// Ends the run at the input that breaks a promise.
void Require(bool promise, const char* what) {
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

void LoadHalves(Bytes bytes) {
    NewDisc(0, kDriveTracks, false);
    NewDisc(1, kDriveTracks, false);
    Module1::DiscImg.Write(0, bytes.first(bytes.size() / 2));
    Module1::DiscImg.Write(kDriveBytes, bytes.subspan(bytes.size() / 2));
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
}

void LoadThroughFile(Bytes bytes, bool interleaved) {
    static const TempFolder folder;
    const auto file = folder.File("disc", bytes);
    const auto error = interleaved ? LoadDisc_DSD(file) : LoadDisc_SSD(file);
    Require(!error, "any bytes load");
    const auto first_sector = bytes.first(std::min<std::size_t>(bytes.size(), kSectorBytes));
    if (!interleaved || first_sector.size() == kSectorBytes)
        Require(
            std::ranges::equal(first_sector, Module1::DiscImg.Part(0, std::ssize(first_sector))),
            "the file starts with sector 0 of drive 0");
}

void Load(Bytes input) {
    const Bytes bytes = input.first(input.size() - 1);
    switch (input.back() % 3) {
    case 0:
        LoadHalves(bytes);
        break;
    case 1:
        LoadThroughFile(bytes, false);
        break;
    default:
        LoadThroughFile(bytes, true);
    }
}

void CheckFile(int drive, int file) {
    const int entry = GetDirOffset(drive, file);
    const int info = entry + kInfoDistance;
    Require(GetLoad(info).size() == 6 && GetExec(info).size() == 6 && GetSize(info).size() == 6,
            "addresses and sizes have six digits");
    Require(GetSector(info).size() == 3, "sectors have three digits");
    Require(GetFileAttr(entry) == "L" || GetFileAttr(entry) == " ", "a file is locked or not");
    const std::string name = GetName(drive, file);
    Require(name.size() >= 2 && name.size() <= 9 && name[1] == '.', "a name is D. and up to seven");
    Require(GetPos(drive, name) <= file, "a name is found, no later than at its file");
}

void CheckFreeSpace(int drive) {
    const auto row = static_cast<std::size_t>(drive);
    const int regions = Module1::FreeSpaceNum[row];
    Require(regions >= 0 && regions <= Module1::kFreeRegions, "the regions fit in their table");
    int end = GetRootSector(drive) - 1;
    for (std::size_t i = 0; i < static_cast<std::size_t>(regions); ++i) {
        Require(Module1::FreeSpaceMap[row][i] > end, "regions ascend and never touch");
        Require(Module1::FreeSpaceLen[row][i] > 0, "no region is empty");
        end = Module1::FreeSpaceMap[row][i] + Module1::FreeSpaceLen[row][i];
    }
    Require(regions == 0 || end <= GetNumberOfSectors(drive), "regions end with the disc");
    ShowFree(drive);
}

void CheckListing(int drive) {
    const auto rows = ListFiles(drive);
    Require(std::ssize(rows) <= GetNumberOfDirEntries(drive), "no more rows than files");
    for (const ListRow& row : rows) {
        Require(row.FileName.size() >= 2 && row.FileName.size() <= 9, "a name fits its cell");
        Require(row.Attr.size() == 1 && row.Load.size() == 6 && row.Exec.size() == 6 &&
                    row.Size.size() == 6 && row.Sector.size() == 3,
                "cells have their widths");
    }
    Require(SortedListFiles(drive).size() == rows.size(), "sorting loses no row");
}

void CheckDrive(int drive) {
    const int files = GetNumberOfDirEntries(drive);
    Require(files >= 0 && files <= 63, "63 files at most");
    for (int i = 0; i < files; ++i)
        CheckFile(drive, i);
    Require(GetTitle(drive).size() <= 12, "a title has up to 12 characters");
    Require(BootOption(drive) >= 0 && BootOption(drive) <= 3, "there are four boot options");
    Require(GetSectorsUsed(drive) >= 0 && GetSectorsUsed(drive) < kDriveSectors,
            "the last sector in use lies on the disc");
    CheckListing(drive);
    CheckFreeSpace(drive);
}

/// The commands on files, on the drive's first, last and middle one.
void ChangeFiles(int drive) {
    Module1::cur_drive = drive;
    const int files = GetNumberOfDirEntries(drive);
    if (files == 0)
        return;
    const std::string first = GetName(drive, 0);
    LockFile(first);
    SetFileAttr(first, GetLoad(GetDirOffset(drive, files - 1) + kInfoDistance), "FF8023");
    static_cast<void>(RenameFile(GetName(drive, files - 1), first, true));
    static_cast<void>(DeleteFile(GetName(drive, files / 2), true));
    CheckDrive(drive);
}

void Exercise(int drive) {
    GetFreeSpaceMap(drive); // compacting the other drive may have run over this one's catalogue
    CheckDrive(drive);
    SetTitle(drive, GetTitle(drive));
    ChangeFiles(drive);
    Compact(drive);
    Require(Module1::gDirty, "compacting is a change");
    CheckDrive(drive);
}

} // namespace

} // namespace quoravel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const quoravel::ScriptedHost host;
    quoravel::Load({data, size});
    quoravel::Exercise(0);
    quoravel::Exercise(1);
    return 0;
}
