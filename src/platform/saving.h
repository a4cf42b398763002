#pragma once

#include "platform/files.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace quoravel {

/// Whether a written file is to outlive a power cut. Waiting for the disc takes far longer than the
/// writing; what can be written again at any time goes without.
enum class Flush { Yes, No };

/// Puts `bytes` in place of what `file` held, or makes the file. A new file is written beside the
/// old one, flushed to the disc and renamed over it, so that whatever happens one of the two is
/// there whole. Permissions are kept and a symbolic link is followed to its target. Where the
/// folder does not let a new file take the place but the old one can be written, the old content is
/// first copied to the folder "backup" of the host's state folder and the file is then written in
/// place. Nothing on success; after an error the old file is whole. Only a device that fails while
/// a file is written in place can harm it; the reason then tells where the copy is.
[[nodiscard]] std::optional<FileError> ReplaceFile(const std::filesystem::path& file,
                                                   std::span<const std::uint8_t> bytes,
                                                   Flush flush = Flush::Yes);

/// Gives the file `made` the name of `file`, which may exist: links are followed to their target
/// and a write-protected file is refused. After an error both are as they were.
[[nodiscard]] std::optional<FileError> TakePlaceOf(const std::filesystem::path& file,
                                                   const std::filesystem::path& made);

} // namespace quoravel
