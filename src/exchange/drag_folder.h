#pragma once

#include "disc/listing.h"

#include <filesystem>
#include <span>
#include <vector>

namespace quoravel {

/// Where the files of drags lie: a folder in the host's temporary folder that this user alone can
/// enter, made for the first drag and removed with this object. Each drag has a folder of its own
/// in it, so that what an earlier drag has handed out stays as it was.
class DragFolder {
  public:
    DragFolder() = default;
    DragFolder(const DragFolder&) = delete;
    DragFolder& operator=(const DragFolder&) = delete;
    ~DragFolder();

    /// Writes the rows of a new drag. Gives the files in the order in which the drag offers them,
    /// data and sidecar of each row in turn; none after a failure, which has been told in a box.
    [[nodiscard]] std::vector<std::filesystem::path> Export(std::span<const ListRow> rows,
                                                            int drive);

  private:
    /// Makes the folder of a drag; false after a failure, which has been told in a box.
    bool MakeFolder(std::filesystem::path& folder);

    std::filesystem::path root_; ///< empty until there is one
    int drags_ = 0;
};

} // namespace quoravel
