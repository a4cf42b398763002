#pragma once

#include "platform/files.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace quoravel {

/// How an image file lays out the bytes of a disc.
enum class ImageForm {
    Linear,      ///< .ssd, .img: the sectors of drive 0 one after the other
    Interleaved, ///< .dsd: whole tracks, the two drives in turn
};

/// The form that a file name asks for, whatever its case: ".DSD" anywhere in it is tested first,
/// then ".SSD" and ".IMG". Nothing if it holds none of them.
[[nodiscard]] std::optional<ImageForm> FormOfName(std::string_view name);

/// Formats a drive with 40 or 80 tracks: its tracks cleared, an empty catalogue, on request a
/// second one in the manner of Watford. Clears gDirty. The rest of the block keeps what it held.
void NewDisc(int drive, int tracks, bool watford);

// Reading an image file into DiscImg. Any bytes are a disc: a short file leaves the rest blank,
// what is too much is passed over. Both drives are blank before, and gDirty is cleared. When the
// file cannot be read nothing changes and the result says why.
[[nodiscard]] std::optional<FileError> LoadDisc_SSD(const std::filesystem::path& file);
[[nodiscard]] std::optional<FileError> LoadDisc_DSD(const std::filesystem::path& file);

// Writing DiscImg to an image file, gDirty cleared. When that fails the old file is whole, gDirty
// is as it was, and the result says why.

/// The linear form. Meant: its length follows the files of cur_drive, its bytes are those of drive
/// 0.
[[nodiscard]] std::optional<FileError> SaveDisc_SSD(const std::filesystem::path& file);

/// The interleaved form, always 409600 bytes.
[[nodiscard]] std::optional<FileError> SaveDisc_DSD(const std::filesystem::path& file);

} // namespace quoravel
