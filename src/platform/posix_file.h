#pragma once

#include "platform/files.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

struct stat;

// What the files of this room share when they ask the system for a file. Nobody else needs it.

namespace quoravel {

/// The error that the system gives this number.
[[nodiscard]] FileError ErrorOf(int number);

/// Why the last call to the system failed.
[[nodiscard]] FileError LastError();

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
    [[nodiscard]] bool Close();

  private:
    int fd_;
};

/// Why something that is no plain file is refused.
[[nodiscard]] std::optional<FileError> RefuseUnlessPlain(const struct stat& status);

/// Writes all of `bytes` where the file stands. After an error a part of them may be there.
[[nodiscard]] std::optional<FileError> WriteAll(int fd, std::span<const std::uint8_t> bytes);

/// Makes a rename or a copy last through a power cut. A file system that cannot do it is no reason
/// to fail.
void FlushToDisc(const std::filesystem::path& file_or_folder);

/// Where the bytes of `file` really lie: symbolic links followed, the last of which may point to
/// nothing yet.
[[nodiscard]] std::filesystem::path FollowLinks(std::filesystem::path file);

} // namespace quoravel
