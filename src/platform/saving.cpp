#include "platform/saving.h"

#include "platform/backup.h"
#include "platform/posix_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <variant>

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using Bytes = std::span<const std::uint8_t>;

constexpr mode_t kPermissions = 07777;
constexpr mode_t kEverybody = 0777; // without set-user-ID and its like
constexpr mode_t kNewFile = 0666;   // before the user's umask

/// The permissions that the replaced file had, or those that a new file gets.
mode_t PermissionsFor(const std::optional<struct stat>& old) {
    if (old)
        return old->st_mode & kPermissions;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return kNewFile & ~mask;
}

/// Gives the new file the owner and the permissions of the old one as far as the system lets us.
void TakeOver(int fd, const std::optional<struct stat>& old) {
    mode_t permissions = PermissionsFor(old);
    // Somebody else's file in a folder that we may write becomes ours. What let programs run as
    // somebody else must not let them run as us.
    if (old && ::fchown(fd, old->st_uid, old->st_gid) != 0) {
        std::ignore = ::fchown(fd, static_cast<uid_t>(-1), old->st_gid);
        permissions &= kEverybody;
    }
    // A file system that knows no permissions is no reason to fail.
    static_cast<void>(::fchmod(fd, permissions));
}

/// A new file in a folder. It has no name until it is whole, so that a save that is killed leaves
/// nothing behind; where the system has no nameless files it has one from the start.
class SideFile {
  public:
    explicit SideFile(const fs::path& folder);
    SideFile(const SideFile&) = delete;
    SideFile& operator=(const SideFile&) = delete;

    ~SideFile() {
        if (!name_.empty())
            ::unlink(name_.c_str());
    }

    [[nodiscard]] bool IsOpen() const { return out_.IsOpen(); }

    /// Fills it and closes it; from then on it has a name: `target` if that is free.
    [[nodiscard]] std::optional<FileError> Fill(const fs::path& target, Bytes bytes,
                                                const std::optional<struct stat>& old, Flush flush);

    /// Renames it to `target`, whatever that was; false if the system refuses.
    [[nodiscard]] bool MoveTo(const fs::path& target);

  private:
    void OpenWithName();
    bool GiveName(const fs::path& target);
    [[nodiscard]] std::optional<FileError> Write(Bytes bytes, const std::optional<struct stat>& old,
                                                 Flush flush);

    fs::path folder_;
    fs::path name_; ///< empty while it has none
    Descriptor out_;
};

/// Where a nameless file can be named.
constexpr const char* kOpenFiles = "/proc/self/fd/";

SideFile::SideFile(const fs::path& folder) : folder_(folder) {
    constexpr mode_t kPrivate = 0600; // until it is whole
    if (::access(kOpenFiles, X_OK) == 0)
        out_.Open(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kPrivate));
    if (!out_.IsOpen())
        OpenWithName();
}

void SideFile::OpenWithName() {
    std::string name = (folder_ / ".quoravel-XXXXXX").string();
    out_.Open(::mkostemp(name.data(), O_CLOEXEC));
    if (out_.IsOpen())
        name_ = name;
}

bool SideFile::GiveName(const fs::path& target) {
    const std::string from = kOpenFiles + std::to_string(out_.get());
    const std::string beside = (folder_ / ".quoravel-").string() + std::to_string(::getpid()) + "-";
    for (int i = 0; name_.empty(); ++i) {
        const fs::path name = i == 0 ? target : fs::path(beside + std::to_string(i));
        if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            name_ = name;
        else if (errno != EEXIST)
            return false;
    }
    return true;
}

std::optional<FileError> SideFile::Write(Bytes bytes, const std::optional<struct stat>& old,
                                         Flush flush) {
    if (auto error = WriteAll(out_.get(), bytes))
        return error;
    TakeOver(out_.get(), old); // now that it is whole: writing may take some permissions away again
    if (flush == Flush::Yes && ::fsync(out_.get()) != 0)
        return LastError();
    return {};
}

std::optional<FileError> SideFile::Fill(const fs::path& target, Bytes bytes,
                                        const std::optional<struct stat>& old, Flush flush) {
    auto error = Write(bytes, old, flush);
    if (!error && !GiveName(target)) { // there are systems that make nameless files and name none
        OpenWithName();
        error = out_.IsOpen() ? Write(bytes, old, flush) : LastError();
    }
    if (!error && !out_.Close())
        error = LastError();
    return error;
}

bool SideFile::MoveTo(const fs::path& target) {
    if (name_ != target && ::rename(name_.c_str(), target.c_str()) != 0)
        return false;
    name_.clear();
    return true;
}

/// Takes the room first, so that a full disc is noticed while the old content is still whole, and
/// cuts what is too long last.
std::optional<FileError> Overwrite(Descriptor& out, Bytes bytes, off_t old_size) {
    const auto size = static_cast<off_t>(bytes.size());
    if (const int failed = size > 0 ? ::posix_fallocate(out.get(), 0, size) : 0) {
        std::ignore = ::ftruncate(out.get(), old_size);
        return ErrorOf(failed);
    }
    if (auto error = WriteAll(out.get(), bytes))
        return error;
    if (::ftruncate(out.get(), size) != 0 || ::fsync(out.get()) != 0 || !out.Close())
        return LastError();
    return {};
}

/// For a file that may be written in a folder that may not.
std::optional<FileError> WriteInPlace(const fs::path& file, Bytes bytes, off_t old_size) {
    Descriptor out(::open(file.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
    if (!out.IsOpen())
        return LastError();
    const auto copy = KeepCopy(file);
    if (const auto* refused = std::get_if<FileError>(&copy))
        return *refused;
    auto error = Overwrite(out, bytes, old_size);
    if (error)
        error->reason += " (a copy is in " + Utf8Of(std::get<fs::path>(copy)) + ")";
    return error;
}

/// What `file` is now, nothing if it is not there yet. Refuses what no save may replace.
std::optional<FileError> LookAtOld(const fs::path& file, std::optional<struct stat>& old) {
    struct stat status {};

    if (::stat(file.c_str(), &status) != 0)
        return errno == ENOENT ? std::nullopt : std::optional(LastError());
    old = status;
    if (auto error = RefuseUnlessPlain(status))
        return error;
    // The folder's permissions would let a rename go over a write-protected file.
    const int refused = ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS);
    return refused == 0 ? std::nullopt : std::optional(LastError());
}

/// What is left when no new file can take the place of the old one: if only its folder is in the
/// way, the old file itself is written.
std::optional<FileError> WithoutNewFile(int reason, const fs::path& file, Bytes bytes,
                                        const std::optional<struct stat>& old) {
    // A rename also fails over somebody else's file in a folder like /tmp, and over a mount point.
    constexpr std::array kFolderIsClosed{EACCES, EROFS, EPERM, EBUSY};
    if (old && std::ranges::find(kFolderIsClosed, reason) != kFolderIsClosed.end())
        return WriteInPlace(file, bytes, old->st_size);
    return ErrorOf(reason);
}

} // namespace

std::optional<FileError> ReplaceFile(const fs::path& file, Bytes bytes, Flush flush) {
    const fs::path target = FollowLinks(file);
    std::optional<struct stat> old;
    if (auto error = LookAtOld(target, old))
        return error;
    SideFile side(FolderOf(target));
    if (!side.IsOpen())
        return WithoutNewFile(errno, target, bytes, old);
    if (auto error = side.Fill(target, bytes, old, flush))
        return error;
    if (!side.MoveTo(target))
        return WithoutNewFile(errno, target, bytes, old);
    if (flush == Flush::Yes)
        FlushToDisc(FolderOf(target));
    return {};
}

std::optional<FileError> TakePlaceOf(const fs::path& file, const fs::path& made) {
    const fs::path target = FollowLinks(file);
    std::optional<struct stat> old;
    if (auto error = LookAtOld(target, old))
        return error;
    if (::rename(made.c_str(), target.c_str()) != 0)
        return LastError();
    FlushToDisc(FolderOf(target));
    return {};
}

} // namespace quoravel
