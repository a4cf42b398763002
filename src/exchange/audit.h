#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace quoravel {

/// The images found so far; `found` is called with each new count.
struct ImageAudit {
    std::vector<std::filesystem::path> ImageList;
    std::function<void(int count)> found;
};

/// Adds every file below `folder` whose name ends in ".ssd", ".dsd" or ".img", in any case: those
/// of a folder before those of its subfolders, each in the order of their names. Links are not
/// followed, and folders that cannot be read are passed over. Ends early when Module1::gCancel is
/// set. Pumps events.
void AuditDirectories(ImageAudit& audit, const std::filesystem::path& folder);

} // namespace quoravel
