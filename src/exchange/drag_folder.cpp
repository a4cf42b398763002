#include "exchange/drag_folder.h"

#include "exchange/export.h"
#include "platform/files.h"
#include "platform/host.h"

namespace quoravel {

namespace fs = std::filesystem;

DragFolder::~DragFolder() {
    std::error_code ignored;
    if (!root_.empty())
        fs::remove_all(root_, ignored);
}

std::vector<fs::path> DragFolder::Export(std::span<const ListRow> rows, int drive) {
    fs::path folder;
    if (!MakeFolder(folder))
        return {};
    std::vector<fs::path> offered;
    for (const ListRow& row : rows) {
        auto files = ExportRow(row, drive, folder);
        if (!files)
            return {};
        offered.push_back(std::move(files->data));
        offered.push_back(std::move(files->sidecar));
    }
    return offered;
}

bool DragFolder::MakeFolder(fs::path& folder) {
    std::error_code error;
    // In a long run something may have cleared the temporary folder.
    if (root_.empty() || !fs::exists(root_, error))
        if (const auto failed = MakePrivateFolder(root_)) {
            host().MsgBox("Cannot write temporary folder: " + failed->reason);
            return false;
        }
    folder = root_ / std::to_string(++drags_);
    fs::create_directory(folder, error);
    if (error)
        host().MsgBox("Cannot write " + FileName(folder) + ": " + error.message());
    return !error;
}

} // namespace quoravel
