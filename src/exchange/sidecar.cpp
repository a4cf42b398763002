#include "exchange/sidecar.h"

#include "platform/text.h"

#include <algorithm>

namespace quoravel {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".INF";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLongestLine = 4096; // any sidecar of sense has less than 100
constexpr std::size_t kNameWidth = 10;

/// Columns `first` to `last` of a line, counted from 1; fewer if the line ends before.
std::string Columns(std::string_view line, std::size_t first, std::size_t last) {
    return std::string(line.substr(std::min(first - 1, line.size()), last - first + 1));
}

bool IsBlank(std::string_view line, std::size_t column) {
    return line[column - 1] == ' ';
}

std::string NameIn(std::string_view line) {
    return std::string(Trim(Columns(line, 1, 9)));
}

bool MeansLocked(std::string_view attribute) {
    return attribute.find_first_of("Ll") != std::string_view::npos;
}

std::optional<Sidecar> ParseShortForm(std::string_view line) {
    if (line.size() < 30 || line[1] != '.' || !IsBlank(line, 11) || !IsBlank(line, 18) ||
        !IsBlank(line, 25))
        return {};
    // A line of exactly 30 characters has a size of five digits, taken as they stand.
    return Sidecar{NameIn(line), Columns(line, 12, 17), Columns(line, 19, 24),
                   Columns(line, 26, 31), MeansLocked(Columns(line, 33, 33))};
}

std::optional<Sidecar> ParseLongForm(std::string_view line) {
    if (line.size() < 37 || !IsBlank(line, 11) || !IsBlank(line, 20) || !IsBlank(line, 29))
        return {};
    if (line.size() > 37 && !IsBlank(line, 38)) // real programs end the line behind the length
        return {};
    return Sidecar{NameIn(line), Columns(line, 14, 19), Columns(line, 23, 28),
                   Columns(line, 32, 37), MeansLocked(Columns(line, 39, line.size()))};
}

bool IsFile(const fs::path& file) {
    std::error_code ignored;
    const fs::file_status status = fs::status(file, ignored);
    return fs::exists(status) && !fs::is_directory(status);
}

/// The first entry in name order whose name is `name` but for the case.
std::optional<fs::path> FindInAnyCase(const fs::path& folder, const std::string& name) {
    std::optional<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const fs::path& candidate = entry->path();
        if (EqualIgnoringCase(candidate.filename().string(), name) && IsFile(candidate) &&
            (!found || candidate < *found))
            found = candidate;
    }
    return found;
}

} // namespace

std::optional<Sidecar> ParseSidecar(std::string_view line) {
    // Where the columns fit both forms, the long one's values win.
    auto sidecar = ParseLongForm(line);
    return sidecar ? sidecar : ParseShortForm(line);
}

std::string SidecarText(const ListRow& row) {
    std::string name = row.FileName;
    name.resize(kNameWidth, ' ');
    return name + " " + row.Load + " " + row.Exec + " " + row.Size + " " + row.Attr + " \n";
}

bool IsSidecarName(const fs::path& file) {
    return EndsIgnoringCase(file.filename().string(), kExtension);
}

std::optional<fs::path> FindSidecar(const fs::path& file) {
    const fs::path folder = FolderOf(file);
    const std::string name = file.filename().string();
    for (const char* extension : {".INF", ".inf"})
        if (fs::path exact = folder / (name + extension); IsFile(exact))
            return exact;
    return FindInAnyCase(folder, name + ".INF");
}

std::optional<FileError> ReadSidecarLine(const fs::path& sidecar, std::string& line) {
    std::vector<std::uint8_t> bytes;
    if (auto error = ReadFile(sidecar, kLongestLine, bytes))
        return error;
    line.assign(bytes.begin(), bytes.end());
    if (line.starts_with(kByteOrderMark))
        line.erase(0, kByteOrderMark.size());
    line.resize(std::min(line.size(), line.find_first_of("\r\n")));
    return {};
}

} // namespace quoravel
