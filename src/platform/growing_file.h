#pragma once

#include "platform/files.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace quoravel {

/// A file that comes to be piece by piece and bears its name meanwhile. Closed when it goes.
class GrowingFile {
  public:
    GrowingFile() = default;
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;
    ~GrowingFile();

    /// Makes `file`, empty, and opens it; what it held before is gone. Closes the one before.
    [[nodiscard]] std::optional<FileError> Create(const std::filesystem::path& file);

    /// Puts all of `bytes` at `offset`. After an error a part of them may be there.
    [[nodiscard]] std::optional<FileError> WriteAt(std::uint64_t offset,
                                                   std::span<const std::uint8_t> bytes);

    /// Closes the file once its bytes lie on the disc. After an error it is closed too.
    [[nodiscard]] std::optional<FileError> Finish();

    /// Closes the file without waiting for the disc.
    void Close();

  private:
    int fd_ = -1;
    std::filesystem::path file_;
};

} // namespace quoravel
