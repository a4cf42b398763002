#pragma once

#include "platform/files.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <variant>

namespace quoravel {

/// So many copies are kept, the newest ones.
inline constexpr std::size_t kBackups = 50;

/// Of a file with more bytes no copy is kept: it is no disc image, and would fill the user's disc.
inline constexpr std::uintmax_t kLargestBackup = 64UL << 20U;

/// Keeps a copy of what `file` holds in the folder "backup" of the host's state folder, which this
/// user alone can enter, and forgets the oldest ones beyond kBackups. Gives where the copy is, or
/// why there is none; nothing of it is left then. A copy bears the name of its file, with a number
/// if there is one already.
[[nodiscard]] std::variant<std::filesystem::path, FileError>
KeepCopy(const std::filesystem::path& file);

/// The files that the user has opened and not saved over since: the first save keeps a copy of each
/// as it was.
class OpenedFiles {
  public:
    /// The user has opened `file`.
    void Note(const std::filesystem::path& file);

    /// Before a save over `file`: keeps a copy if that is due. Nothing on success, and if no copy
    /// is due or the file is gone.
    [[nodiscard]] std::optional<FileError> KeepCopyOf(const std::filesystem::path& file);

  private:
    std::set<std::filesystem::path> files_; ///< by what their links lead to
};

} // namespace quoravel
