#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// A folder for one test, empty at first and gone with it.
class TempFolder {
  public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Writes a file of that name into the folder and gives its path.
    std::filesystem::path File(std::string_view name, std::span<const std::uint8_t> bytes) const;
    std::filesystem::path File(std::string_view name, std::string_view text) const;

    /// The names of all entries, sorted, or those in a folder in it.
    [[nodiscard]] std::vector<std::string> Names(std::string_view folder = {}) const;

  private:
    std::filesystem::path path_;
};

/// What a file holds; the test fails if it cannot be read.
[[nodiscard]] std::vector<std::uint8_t> BytesOf(const std::filesystem::path& file);
[[nodiscard]] std::string TextOf(const std::filesystem::path& file);

} // namespace quoravel
