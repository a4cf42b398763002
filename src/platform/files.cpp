#include "platform/files.h"

#include "platform/host.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <variant>

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using Bytes = std::span<const std::uint8_t>;

constexpr mode_t kPermissions = 07777;
constexpr mode_t kNewFile = 0666; // before the user's umask
constexpr int kMostLinks = 40;    // as many as the kernel follows

FileError ErrorOf(int number) {
    return {std::generic_category().message(number)};
}

FileError LastError() {
    return ErrorOf(errno);
}

/// A file descriptor that closes itself.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor() { static_cast<void>(Close()); }

    /// Takes another one, which may be -1.
    void Open(int fd) {
        static_cast<void>(Close());
        fd_ = fd;
    }

    [[nodiscard]] bool IsOpen() const { return fd_ >= 0; }

    [[nodiscard]] int get() const { return fd_; }

    /// False if the system reported a late write error.
    [[nodiscard]] bool Close() { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

/// Why something that is no plain file is refused.
std::optional<FileError> RefuseUnlessPlain(const struct stat& status) {
    if (S_ISREG(status.st_mode))
        return {};
    return S_ISDIR(status.st_mode) ? ErrorOf(EISDIR) : FileError{"Not a regular file"};
}

/// Reads until `buffer` is full or the file ends; `filled` is then what was read.
std::optional<FileError> ReadAll(int fd, std::span<std::uint8_t> buffer, std::size_t& filled) {
    filled = 0;
    while (filled < buffer.size()) {
        const ssize_t got = ::read(fd, buffer.data() + filled, buffer.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return LastError();
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    return {};
}

/// A plain file opened to be read; `length` is what the system says of it.
std::optional<FileError> OpenToRead(const fs::path& file, Descriptor& in, std::size_t& length) {
    in.Open(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));

    struct stat status {};

    if (!in.IsOpen() || ::fstat(in.get(), &status) != 0)
        return LastError();
    length = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
    return RefuseUnlessPlain(status);
}

std::optional<FileError> WriteAll(int fd, Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t put = ::write(fd, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return LastError();
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
    return {};
}

/// Makes a rename or a copy last through a power cut. A file system that cannot do it is no reason
/// to fail.
void FlushToDisc(const fs::path& file_or_folder) {
    const Descriptor descriptor(::open(file_or_folder.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.IsOpen())
        static_cast<void>(::fsync(descriptor.get()));
}

/// Where the bytes of `file` really lie: symbolic links followed, the last of which may point to
/// nothing yet.
fs::path FollowLinks(fs::path file) {
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(file, error)); ++i) {
        const fs::path target = fs::read_symlink(file, error);
        if (error)
            break;
        file = file.parent_path() / target;
    }
    return file;
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// The name of a new file beside `file`, made with `permissions`, which `out` then writes.
struct SideFile {
    fs::path path;
    Descriptor out;
};

SideFile MakeSideFile(const fs::path& file) {
    std::string name = (FolderOf(file) / ".quoravel-XXXXXX").string();
    const int fd =
        ::mkostemp(name.data(), O_CLOEXEC); // readable by the user alone until it is whole
    return {name, Descriptor(fd)};
}

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
    // Somebody else's file in a folder that we may write becomes ours.
    if (old && ::fchown(fd, old->st_uid, old->st_gid) != 0)
        static_cast<void>(::fchown(fd, static_cast<uid_t>(-1), old->st_gid));
    // A file system that knows no permissions is no reason to fail.
    static_cast<void>(::fchmod(fd, PermissionsFor(old)));
}

/// Only the whole file gets its permissions: writing may take some of them away again.
std::optional<FileError> FillSideFile(SideFile& side, Bytes bytes,
                                      const std::optional<struct stat>& old, Flush flush) {
    if (auto error = WriteAll(side.out.get(), bytes))
        return error;
    TakeOver(side.out.get(), old);
    if ((flush == Flush::Yes && ::fsync(side.out.get()) != 0) || !side.out.Close())
        return LastError();
    return {};
}

/// A name in `folder` for a copy of `file` that destroys no earlier copy.
fs::path FreeCopyName(const fs::path& folder, const fs::path& file) {
    fs::path copy = folder / file.filename();
    std::error_code error;
    for (int i = 1; fs::exists(fs::symlink_status(copy, error)); ++i)
        copy = folder / (file.filename().string() + "." + std::to_string(i));
    return copy;
}

/// Keeps a copy of what `file` holds in the user's state folder; gives where, or why not.
std::variant<fs::path, FileError> KeepCopy(const fs::path& file) {
    const auto state = host().StateFolder();
    if (!state)
        return FileError{"No folder for a safety copy"};
    std::error_code error;
    const fs::path folder = *state / "backup";
    fs::create_directories(folder, error);
    if (error)
        return FileError{error.message()};
    const fs::path copy = FreeCopyName(folder, file);
    if (!fs::copy_file(file, copy, error)) {
        const FileError reason{error.message()};
        if (error != std::errc::file_exists)
            fs::remove(copy, error); // half a copy is no use to anybody
        return reason;
    }
    FlushToDisc(copy);
    return copy;
}

/// Takes the room first, so that a full disc is noticed while the old content is still whole, and
/// cuts what is too long last.
std::optional<FileError> Overwrite(Descriptor& out, Bytes bytes, off_t old_size) {
    const auto size = static_cast<off_t>(bytes.size());
    if (const int failed = size > 0 ? ::posix_fallocate(out.get(), 0, size) : 0) {
        static_cast<void>(::ftruncate(out.get(), old_size));
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

std::optional<FileError> ReadFile(const fs::path& file, std::size_t limit,
                                  std::vector<std::uint8_t>& bytes) {
    Descriptor in;
    std::size_t length = 0;
    if (auto error = OpenToRead(file, in, length))
        return error;
    std::vector<std::uint8_t> read(std::min(limit, length));
    if (auto error = ReadAll(in.get(), read, length))
        return error;
    read.resize(length);
    bytes = std::move(read);
    return {};
}

std::optional<FileError> ReadFileInto(const fs::path& file, std::span<std::uint8_t> buffer,
                                      std::size_t& filled) {
    Descriptor in;
    std::size_t length = 0;
    if (auto error = OpenToRead(file, in, length))
        return error;
    return ReadAll(in.get(), buffer.first(std::min(buffer.size(), length)), filled);
}

std::optional<FileError> LengthOfFile(const fs::path& file, std::uint64_t& length) {
    struct stat status {};

    if (::stat(file.c_str(), &status) != 0)
        return LastError();
    if (auto error = RefuseUnlessPlain(status))
        return error;
    length = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    return {};
}

std::optional<FileError> ReplaceFile(const fs::path& file, Bytes bytes, Flush flush) {
    const fs::path target = FollowLinks(file);
    std::optional<struct stat> old;
    if (auto error = LookAtOld(target, old))
        return error;
    SideFile side = MakeSideFile(target);
    if (!side.out.IsOpen())
        return WithoutNewFile(errno, target, bytes, old);
    auto error = FillSideFile(side, bytes, old, flush);
    if (!error && ::rename(side.path.c_str(), target.c_str()) == 0) {
        if (flush == Flush::Yes)
            FlushToDisc(FolderOf(target));
        return {};
    }
    const int reason = errno;
    ::unlink(side.path.c_str());
    return error ? error : WithoutNewFile(reason, target, bytes, old);
}

std::optional<FileError> MakePrivateFolder(fs::path& folder) {
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    if (error)
        return FileError{error.message()};
    std::string name = (parent / "quoravel-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        return LastError();
    folder = name;
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

GrowingFile::~GrowingFile() {
    Close();
}

std::optional<FileError> GrowingFile::Create(const fs::path& file) {
    Close();
    constexpr int kHow = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    fd_ = ::open(file.c_str(), kHow, kNewFile);

    struct stat status {};

    if (fd_ < 0 || ::fstat(fd_, &status) != 0)
        return LastError();
    auto error = RefuseUnlessPlain(status);
    if (!error && ::ftruncate(fd_, 0) != 0)
        error = LastError();
    if (error)
        Close();
    file_ = file;
    return error;
}

// NOLINTNEXTLINE(readability-make-member-function-const): what changes is the file
std::optional<FileError> GrowingFile::WriteAt(std::uint64_t offset, Bytes bytes) {
    if (::lseek(fd_, static_cast<off_t>(offset), SEEK_SET) < 0)
        return LastError();
    return WriteAll(fd_, bytes);
}

std::optional<FileError> GrowingFile::Finish() {
    Descriptor out(std::exchange(fd_, -1));
    if (::fsync(out.get()) != 0 || !out.Close())
        return LastError();
    FlushToDisc(FolderOf(FollowLinks(file_)));
    return {};
}

void GrowingFile::Close() {
    static_cast<void>(Descriptor(std::exchange(fd_, -1)).Close());
}

std::optional<fs::path> ShippedFile(std::string_view name) {
    const fs::path folder = host().ProgramFolder();
    std::error_code error;
    for (const fs::path& file : {folder / name, folder / "../share/quoravel" / name})
        if (fs::exists(file, error))
            return file;
    return {};
}

std::string Utf8Of(const fs::path& path) {
    const std::string name = path.string();
    return IsUtf8(name) ? name : Latin1ToUtf8(name);
}

std::string FileName(const fs::path& file) {
    return Utf8Of(file.filename());
}

} // namespace quoravel
