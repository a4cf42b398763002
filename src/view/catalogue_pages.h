#pragma once

#include "platform/host.h"
#include "view/sink.h"

#include <string_view>

// Pages about the disc in the drive cur_drive. That variable is read anew wherever the drive
// matters, so that a page follows the user to the other drive from the entry on at which it is.

namespace quoravel {

// Titles of the windows, and the name under which a map is saved. The other two have no name.
inline constexpr std::string_view kCatTitle = "*CAT";
inline constexpr std::string_view kEXTitle = "*EX";
inline constexpr std::string_view kMapTitle = "Free Disc Space Map";
inline constexpr std::string_view kMapName = "FreeSpace";

/// Title, drive, boot option, directory and library in three lines, then an empty one. `start` is
/// where the drive begins in the block.
void ListHeader(int start, ViewSink& sink);

/// The header and all files in two columns: those of directory $ first, the others behind an empty
/// line. Files after an entry that ends the listing come out as blank fields at the top.
void ListCat(ViewSink& sink);

/// One line for each file, without a header; after an entry that ends the listing, as many empty
/// lines at the top as files are left. `step` is called between entries; whoever must not be
/// interrupted passes one that does nothing.
void ListEX(ViewSink& sink, void (*step)() = Yield);

/// The free regions, as the last GetFreeSpaceMap left them: first sector and number of sectors.
void ListMap(ViewSink& sink);

} // namespace quoravel
