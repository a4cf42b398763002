#include "platform/growing_file.h"

#include "platform/posix_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quoravel {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kNewFile = 0666; // before the user's umask

} // namespace

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
std::optional<FileError> GrowingFile::WriteAt(std::uint64_t offset,
                                              std::span<const std::uint8_t> bytes) {
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

} // namespace quoravel
