#include "disc/listing.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quoravel {

namespace {

/// The name of an entry as lists show it, or nothing where the listing ends.
std::optional<std::string> ListedName(int entry) {
    const auto at = [&](int i) {
        return static_cast<char>(Module1::DiscImg.Byte(entry + i) & 127);
    };
    std::array<char, kNameBytes> bytes{};
    for (int i = 0; i < kNameBytes; ++i)
        bytes[static_cast<std::size_t>(i)] = at(i);
    std::string_view name(bytes.data(), bytes.size());
    name = name.substr(0, name.find('\r'));
    if (name.empty() || name.front() == '\0')
        return {};
    return std::string{at(kDirectoryByte), '.'}.append(Trim(name));
}

} // namespace

std::optional<ListRow> ListFile(int entry) {
    auto name = ListedName(entry);
    if (!name)
        return {};
    const int info = entry + kInfoDistance;
    return ListRow{std::move(*name), GetFileAttr(entry), GetLoad(info),
                   GetExec(info),    GetSize(info),      GetSector(info)};
}

std::vector<ListRow> ListFiles(int drive) {
    std::vector<ListRow> rows;
    const int files = GetNumberOfDirEntries(drive);
    for (int i = 0; i < files; ++i) {
        auto row = ListFile(GetDirOffset(drive, i));
        if (!row)
            break;
        rows.push_back(std::move(*row));
    }
    return rows;
}

std::vector<ListRow> SortedListFiles(int drive) {
    std::vector<ListRow> rows = ListFiles(drive);
    std::ranges::stable_sort(rows, {}, [](const ListRow& row) { return UpperCase(row.FileName); });
    return rows;
}

} // namespace quoravel
