#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quoravel {

/// What went wrong with a host file, in words for a person ("No such file or directory").
struct FileError {
    std::string reason;
};

/// Puts the first `limit` bytes of a plain file into `bytes`, fewer if the file is shorter.
/// Folders, devices, pipes and sockets are an error at once: nothing here ever waits for a writer.
/// Nothing on success; after an error `bytes` is as it was.
[[nodiscard]] std::optional<FileError>
ReadFile(const std::filesystem::path& file, std::size_t limit, std::vector<std::uint8_t>& bytes);

/// The same into a buffer that is there already: fills it from its start and gives in `filled` how
/// much it took. After an error the buffer may hold a part.
[[nodiscard]] std::optional<FileError> ReadFileInto(const std::filesystem::path& file,
                                                    std::span<std::uint8_t> buffer,
                                                    std::size_t& filled);

/// Length in bytes of a plain file, looked at without opening it. What ReadFile refuses is an error
/// here too.
[[nodiscard]] std::optional<FileError> LengthOfFile(const std::filesystem::path& file,
                                                    std::uint64_t& length);

/// The folder that `file` lies in; "." for a bare name.
[[nodiscard]] std::filesystem::path FolderOf(const std::filesystem::path& file);

/// Makes a new folder in the host's temporary folder that this user alone can enter. Its name
/// starts with "quoravel-".
[[nodiscard]] std::optional<FileError> MakePrivateFolder(std::filesystem::path& folder);

/// Where the file `name` that comes with the program lies, beside the executable. Nothing if it is
/// not there.
[[nodiscard]] std::optional<std::filesystem::path> ShippedFile(std::string_view name);

/// `path` in UTF-8, as FileName gives its last part.
[[nodiscard]] std::string Utf8Of(const std::filesystem::path& path);

/// The last part of `file` in UTF-8, as titles and messages show it. Bytes that are not UTF-8 are
/// shown as the Latin-1 characters that they would be.
[[nodiscard]] std::string FileName(const std::filesystem::path& file);

} // namespace quoravel
