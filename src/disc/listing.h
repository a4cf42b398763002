#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quoravel {

/// One row of a drive's list, as text in the forms that the list shows. Commands find their file
/// again by these texts.
struct ListRow {
    std::string FileName; ///< `D.NAME`
    std::string Attr;     ///< "L" or " "
    std::string Load;     ///< six hex digits, as Exec and Size
    std::string Exec;
    std::string Size;
    std::string Sector; ///< three hex digits
};

/// The row of the file whose name entry lies at `entry`. A name ends before its first carriage
/// return. Nothing for an empty name and one that starts with NUL: there every listing ends,
/// whatever the count says.
[[nodiscard]] std::optional<ListRow> ListFile(int entry);

/// The files of a drive for display, in catalogue order up to the first that has no row.
[[nodiscard]] std::vector<ListRow> ListFiles(int drive);

/// The same, ascending by the upper-cased name by character code; equal names stay in catalogue
/// order.
[[nodiscard]] std::vector<ListRow> SortedListFiles(int drive);

} // namespace quoravel
