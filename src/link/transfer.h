#pragma once

#include "link/windows.h"

#include <filesystem>
#include <string_view>

// Whole discs over the cable. All of these run until the disc is through, a step before the first
// track fails (told in a box) or the user cancels. The caller holds a LinkUse.

namespace quoravel {

/// Reads the disc in `drive` (0 to 3) of the micro into an .ssd file that it asks for, and gives
/// that file. True if all of it has been received and lies on the host's disc. A part of a disc
/// stays where it is.
[[nodiscard]] bool RX_SSD(int drive, TransferDesk& desk, std::filesystem::path& file);

/// The same for both sides of the disc in `drive` (0 or 1), into a .dsd file.
[[nodiscard]] bool RX_DSD(int drive, TransferDesk& desk, std::filesystem::path& file);

/// Writes an image file that it asks for to the disc in `drive`: one side, or with `single_sided`
/// false both (drives 0 and 2 or 1 and 3), from a file in which they alternate.
void TX_DISC(int drive, bool single_sided, TransferDesk& desk);

/// Plays the sound of that name that lies with the program, if there is one.
void PlayWAV(std::string_view name);

} // namespace quoravel
