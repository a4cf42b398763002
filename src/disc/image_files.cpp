#include "disc/image_files.h"

#include "disc/catalogue.h"
#include "disc/free_space.h"
#include "disc/module1.h"
#include "platform/saving.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quoravel {

namespace {

/// Where track `file_track` of an interleaved file lies in the block.
constexpr int BlockOffsetOfFileTrack(int file_track) {
    return (file_track / 2 + file_track % 2 * kDriveTracks) * kTrackBytes;
}

void SetSectorCount(int at, int sectors) {
    Module1::DiscImg.SetByte(at, static_cast<std::uint8_t>(sectors / 256));
    Module1::DiscImg.SetByte(at + 1, static_cast<std::uint8_t>(sectors % 256));
}

/// Makes of what the first `loaded` bytes leave two blank drives of 80 tracks.
void BlankBehind(int loaded) {
    Module1::DiscImg.Fill(loaded, kDiscBytes, 0);
    for (const int flags : {kFlagsByte, kDriveBytes + kFlagsByte}) {
        const int count = flags + 1;
        if (flags >= loaded)
            Module1::DiscImg.SetByte(flags, kDriveSectors / 256);
        if (count >= loaded)
            Module1::DiscImg.SetByte(count, kDriveSectors % 256);
    }
}

/// Replaces `file`, and only then takes the disc for saved.
std::optional<FileError> SaveBytes(const std::filesystem::path& file,
                                   std::span<const std::uint8_t> bytes) {
    auto error = ReplaceFile(file, bytes);
    if (!error)
        Module1::gDirty = false;
    return error;
}

} // namespace

std::optional<ImageForm> FormOfName(std::string_view name) {
    struct Form {
        std::string_view extension;
        ImageForm form;
    };

    constexpr std::array kForms{Form{".DSD", ImageForm::Interleaved},
                                Form{".SSD", ImageForm::Linear}, Form{".IMG", ImageForm::Linear}};
    const std::string upper = UpperCase(name);
    for (const Form& candidate : kForms)
        if (upper.find(candidate.extension) != std::string::npos)
            return candidate.form;
    return {};
}

void NewDisc(int drive, int tracks, bool watford) {
    const int start = GetStartSectorOfDrive(drive);
    const int sectors = tracks * kTrackSectors;
    Module1::gDirty = false;
    Module1::DiscImg.Fill(start, std::int64_t{tracks} * kTrackBytes, 0);
    SetSectorCount(start + kFlagsByte, sectors);
    if (watford) {
        const int second = start + kSecondCatalogue;
        Module1::DiscImg.Fill(second, kWatfordMarkerBytes, kWatfordMarker);
        SetSectorCount(second + kFlagsByte, sectors);
    }
    GetFreeSpaceMap(drive);
}

// A listing loads thousands of images: each is read to where it stays, and the blocks are kept.

std::optional<FileError> LoadDisc_SSD(const std::filesystem::path& file) {
    static DiscBlock block;
    std::size_t length = 0;
    if (auto error = ReadFileInto(file, block.Head(kDriveBytes), length))
        return error;
    std::swap(Module1::DiscImg, block);
    Module1::gDirty = false;
    BlankBehind(static_cast<int>(length));
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
    return {};
}

std::optional<FileError> LoadDisc_DSD(const std::filesystem::path& file) {
    static std::vector<std::uint8_t> bytes(kDiscBytes);
    std::size_t length = 0;
    if (auto error = ReadFileInto(file, bytes, length))
        return error;
    Module1::gDirty = false;
    BlankBehind(0);
    // Whole sectors only: a partial last one is dropped.
    auto rest = std::span(bytes).first(length / kSectorBytes * kSectorBytes);
    for (int file_track = 0; !rest.empty(); ++file_track) {
        const auto track = rest.first(std::min<std::size_t>(rest.size(), kTrackBytes));
        Module1::DiscImg.Write(BlockOffsetOfFileTrack(file_track), track);
        rest = rest.subspan(track.size());
    }
    GetFreeSpaceMap(0);
    GetFreeSpaceMap(1);
    return {};
}

std::optional<FileError> SaveDisc_SSD(const std::filesystem::path& file) {
    const int sectors = GetSectorsUsed(Module1::cur_drive) + 1;
    return SaveBytes(file, Module1::DiscImg.Part(0, std::int64_t{sectors} * kSectorBytes));
}

std::optional<FileError> SaveDisc_DSD(const std::filesystem::path& file) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(kDiscBytes);
    for (int file_track = 0; file_track < kDrives * kDriveTracks; ++file_track) {
        const auto track = Module1::DiscImg.Part(BlockOffsetOfFileTrack(file_track), kTrackBytes);
        bytes.insert(bytes.end(), track.begin(), track.end());
    }
    return SaveBytes(file, bytes);
}

} // namespace quoravel
