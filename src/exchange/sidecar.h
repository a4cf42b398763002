#pragma once

#include "disc/listing.h"
#include "platform/files.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The one-line .INF file beside a data file: catalogue name, addresses, length and lock. Two forms
// are read, told apart by their columns; docs/sidecar-format.md shows both.

namespace quoravel {

/// What a sidecar says of its file. Digits are as they stand in the line, whatever they are: see
/// HighBits and StoreLowDigits.
struct Sidecar {
    std::string name; ///< trimmed, up to nine characters
    std::string load;
    std::string exec;
    std::string size;
    bool locked = false;
};

/// Reads a line without its line end. Nothing if its columns are of neither form.
[[nodiscard]] std::optional<Sidecar> ParseSidecar(std::string_view line);

/// The sidecar of a listed file: 34 characters of the short form and LF.
[[nodiscard]] std::string SidecarText(const ListRow& row);

/// True for a name that ends in ".INF" in any case.
[[nodiscard]] bool IsSidecarName(const std::filesystem::path& file);

/// The sidecar of `file`: the entry of its folder with ".INF" added to its name, then ".inf", then
/// the first in name order that differs in case alone. Folders do not count.
[[nodiscard]] std::optional<std::filesystem::path> FindSidecar(const std::filesystem::path& file);

/// Puts the first line of `sidecar` into `line`, without its line end (CR, LF or both) and a byte
/// order mark of UTF-8, and without what lies beyond some thousand characters.
[[nodiscard]] std::optional<FileError> ReadSidecarLine(const std::filesystem::path& sidecar,
                                                       std::string& line);

} // namespace quoravel
