#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quoravel {

/// What lies in a folder.
struct FolderItem {
    std::string name; ///< the host's bytes
    bool is_folder;
};

/// The items of `folder` in the order of their names' bytes. Links are left out, to files and to
/// folders alike. Of a folder that cannot be read, nothing. Pumps events.
[[nodiscard]] std::vector<FolderItem> ItemsOfFolder(const std::filesystem::path& folder);

} // namespace quoravel
