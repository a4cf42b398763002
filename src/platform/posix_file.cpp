#include "platform/posix_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quoravel {

namespace fs = std::filesystem;

namespace {

constexpr int kMostLinks = 40; // as many as the kernel follows

} // namespace

FileError ErrorOf(int number) {
    return {std::generic_category().message(number)};
}

FileError LastError() {
    return ErrorOf(errno);
}

bool Descriptor::Close() {
    return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0;
}

std::optional<FileError> RefuseUnlessPlain(const struct stat& status) {
    if (S_ISREG(status.st_mode))
        return {};
    return S_ISDIR(status.st_mode) ? ErrorOf(EISDIR) : FileError{"Not a regular file"};
}

std::optional<FileError> WriteAll(int fd, std::span<const std::uint8_t> bytes) {
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

void FlushToDisc(const fs::path& file_or_folder) {
    const Descriptor descriptor(::open(file_or_folder.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.IsOpen())
        static_cast<void>(::fsync(descriptor.get()));
}

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

} // namespace quoravel
