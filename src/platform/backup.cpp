#include "platform/backup.h"

#include "platform/host.h"
#include "platform/posix_file.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

/// A name in `folder` for a copy of `file` that destroys no earlier copy.
fs::path FreeCopyName(const fs::path& folder, const fs::path& file) {
    fs::path copy = folder / file.filename();
    std::error_code error;
    // The number stands before the ending, by which the copy can be opened like its file.
    for (int i = 1; fs::exists(fs::symlink_status(copy, error)); ++i)
        copy =
            folder / (file.stem().string() + "-" + std::to_string(i) + file.extension().string());
    return copy;
}

/// The folder for the copies, made if need be.
std::variant<fs::path, FileError> BackupFolder() {
    const auto state = host().StateFolder();
    if (!state)
        return FileError{"No folder for a safety copy"};
    fs::path folder = *state / "backup";
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        return FileError{error.message()};
    fs::permissions(folder, fs::perms::owner_all, error); // where that cannot be, it is as it is
    return folder;
}

/// Forgets the oldest copies, never `newest`.
void Prune(const fs::path& folder, const fs::path& newest) {
    std::vector<std::pair<fs::file_time_type, fs::path>> copies;
    std::error_code error;
    for (auto i = fs::directory_iterator(folder, error); !error && i != fs::directory_iterator();
         i.increment(error))
        if (i->path() != newest && fs::is_regular_file(i->symlink_status(error)))
            copies.emplace_back(i->last_write_time(error), i->path());
    if (copies.size() < kBackups)
        return;
    const auto last = copies.end() - static_cast<std::ptrdiff_t>(kBackups - 1);
    std::ranges::nth_element(copies, last);
    std::for_each(copies.begin(), last, [&](const auto& copy) { fs::remove(copy.second, error); });
}

/// What a path leads to, whichever way it takes through links.
fs::path Identity(const fs::path& file) {
    std::error_code error;
    fs::path real = fs::weakly_canonical(file, error);
    return error ? file : real;
}

} // namespace

std::variant<fs::path, FileError> KeepCopy(const fs::path& file) {
    std::error_code error;
    if (const auto size = fs::file_size(file, error); !error && size > kLargestBackup)
        return FileError{"It is too large to be copied"};
    auto place = BackupFolder();
    const auto* folder = std::get_if<fs::path>(&place);
    if (folder == nullptr)
        return place;
    const fs::path copy = FreeCopyName(*folder, file);
    if (!fs::copy_file(file, copy, error)) {
        const FileError reason{error.message()};
        if (error != std::errc::file_exists)
            fs::remove(copy, error); // half a copy is no use to anybody
        return reason;
    }
    FlushToDisc(copy);
    Prune(*folder, copy);
    return copy;
}

void OpenedFiles::Note(const fs::path& file) {
    files_.insert(Identity(file));
}

std::optional<FileError> OpenedFiles::KeepCopyOf(const fs::path& file) {
    const auto opened = files_.find(Identity(file));
    std::error_code error;
    if (opened == files_.end() || !fs::exists(*opened, error))
        return {};
    const auto copy = KeepCopy(*opened);
    if (const auto* refused = std::get_if<FileError>(&copy))
        return *refused;
    files_.erase(opened);
    return {};
}

} // namespace quoravel
