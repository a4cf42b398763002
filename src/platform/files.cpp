#include "platform/files.h"

#include "platform/host.h"
#include "platform/posix_file.h"
#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

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

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
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

std::optional<fs::path> ShippedFile(std::string_view name) {
    std::error_code error;
    fs::path file = host().ProgramFolder() / name;
    return fs::exists(file, error) ? std::optional(std::move(file)) : std::nullopt;
}

std::string Utf8Of(const fs::path& path) {
    const std::string name = path.string();
    return IsUtf8(name) ? name : Latin1ToUtf8(name);
}

std::string FileName(const fs::path& file) {
    return Utf8Of(file.filename());
}

} // namespace quoravel
