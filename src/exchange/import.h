#pragma once

#include <filesystem>

namespace quoravel {

/// Puts a host file onto `drive`, its name, addresses, length and lock from its sidecar if it has
/// one. True: a refusal has been told in a box, the disc is unchanged, the other files of this drop
/// are to be left out. False: it is imported, or it is a folder or a sidecar and passed over.
[[nodiscard]] bool ImportFile(int drive, const std::filesystem::path& file);

} // namespace quoravel
