#pragma once

#include "disc/listing.h"

#include <filesystem>
#include <optional>

namespace quoravel {

/// The two host files of one exported file.
struct ExportedFiles {
    std::filesystem::path data;
    std::filesystem::path sidecar;
};

/// Writes the file of a list row, as the cells tell it, and its sidecar into `folder`. Files of
/// those names are replaced without a question; a length that reaches beyond the block ends there.
/// If one cannot be written a box names it, nothing half-written stays under its name, and the
/// result is nothing: whoever exports more rows stops.
[[nodiscard]] std::optional<ExportedFiles> ExportRow(const ListRow& row, int drive,
                                                     const std::filesystem::path& folder);

} // namespace quoravel
