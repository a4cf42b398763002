#include "exchange/audit.h"

#include "disc/module1.h"
#include "platform/folders.h"
#include "platform/host.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace quoravel {

namespace {

bool IsImage(std::string_view name) {
    static constexpr std::array<std::string_view, 3> endings{".ssd", ".dsd", ".img"};
    return std::ranges::any_of(
        endings, [&](std::string_view ending) { return EndsIgnoringCase(name, ending); });
}

} // namespace

void AuditDirectories(ImageAudit& audit, const std::filesystem::path& folder) {
    if (Module1::gCancel)
        return;
    const auto items = ItemsOfFolder(folder);
    for (const FolderItem& item : items) {
        Yield();
        if (Module1::gCancel)
            return;
        if (!item.is_folder && IsImage(item.name)) {
            audit.ImageList.push_back(folder / item.name);
            audit.found(static_cast<int>(audit.ImageList.size()));
        }
    }
    for (const FolderItem& item : items) {
        if (Module1::gCancel)
            return;
        if (item.is_folder)
            AuditDirectories(audit, folder / item.name);
        Yield();
    }
}

} // namespace quoravel
