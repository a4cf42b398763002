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

/// Whether a written file is to outlive a power cut. Waiting for the disc takes far longer than the
/// writing; what can be written again at any time goes without.
enum class Flush { Yes, No };

/// Puts `bytes` in place of what `file` held, or makes the file. A new file is written beside the
/// old one, flushed to the disc and renamed over it, so that whatever happens one of the two is
/// there whole. Permissions are kept and a symbolic link is followed to its target. Where the
/// folder does not let a new file take the place but the old one can be written, the old content is
/// first copied to the folder "backup" of the host's state folder and the file is then written in
/// place. Nothing on success; after an error the old file is whole. Only a device that fails while
/// a file is written in place can harm it; the reason then tells where the copy is.
[[nodiscard]] std::optional<FileError> ReplaceFile(const std::filesystem::path& file,
                                                   std::span<const std::uint8_t> bytes,
                                                   Flush flush = Flush::Yes);

/// Gives the file `made` the name of `file`, which may exist: links are followed to their target
/// and a write-protected file is refused. After an error both are as they were.
[[nodiscard]] std::optional<FileError> TakePlaceOf(const std::filesystem::path& file,
                                                   const std::filesystem::path& made);

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

/// Makes a new folder in the host's temporary folder that this user alone can enter. Its name
/// starts with "quoravel-".
[[nodiscard]] std::optional<FileError> MakePrivateFolder(std::filesystem::path& folder);

/// Where the file `name` that comes with the program lies: beside the executable, or in the data
/// folder of an installed package (../share/quoravel). Nothing if it is in neither.
[[nodiscard]] std::optional<std::filesystem::path> ShippedFile(std::string_view name);

/// `path` in UTF-8, as FileName gives its last part.
[[nodiscard]] std::string Utf8Of(const std::filesystem::path& path);

/// The last part of `file` in UTF-8, as titles and messages show it. Bytes that are not UTF-8 are
/// shown as the Latin-1 characters that they would be.
[[nodiscard]] std::string FileName(const std::filesystem::path& file);

} // namespace quoravel
