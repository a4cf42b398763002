#include "platform/folders.h"

#include "platform/host.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace quoravel {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// The kind of an entry in DT_ terms. Few file systems leave it to be asked for.
unsigned char KindOf(DIR* folder, const dirent& entry) {
    struct stat status {};

    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type;
    if (::fstatat(::dirfd(folder), std::data(entry.d_name), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return DT_LNK; // gone since: as good as a link
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

} // namespace

std::vector<FolderItem> ItemsOfFolder(const std::filesystem::path& folder) {
    std::vector<FolderItem> items;
    const std::unique_ptr<DIR, CloseFolder> open(::opendir(folder.c_str()));
    if (!open)
        return items;
    while (const dirent* entry = ::readdir(open.get())) {
        Yield(); // a folder can have hundreds of thousands
        const std::string_view name = std::data(entry->d_name);
        const unsigned char kind = KindOf(open.get(), *entry);
        if (name != "." && name != ".." && kind != DT_LNK)
            items.push_back({std::string(name), kind == DT_DIR});
    }
    std::ranges::sort(items, {}, &FolderItem::name);
    return items;
}

} // namespace quoravel
