#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Names of files on their way between a catalogue and the host. Catalogue names are byte strings.

namespace quoravel {

/// A catalogue name with "/", "\" and ":" as "_", and with a "_" added where the whole of it, in
/// any case, is CON, PRN, LPT or COM.
[[nodiscard]] std::string DFS_TO_MAC(std::string_view name);

/// The host's name for a file of that catalogue name: DFS_TO_MAC, and "_" for what no host name
/// should hold (control codes; the second "." where there is nothing else). Names that differ in a
/// catalogue can be the same here.
[[nodiscard]] std::string HostFileName(std::string_view name);

/// The name of a host file as bytes: each character becomes the low byte of its code.
[[nodiscard]] std::string BytesOfHostName(const std::filesystem::path& file);

/// The catalogue name of up to nine characters that an arriving file gets from its sidecar's or its
/// own name: without a host extension, with a directory, $ if it has none. Characters that a
/// catalogue should not hold are not looked at.
[[nodiscard]] std::string ShapeName(std::string_view name);

} // namespace quoravel
