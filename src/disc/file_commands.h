#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quoravel {

/// Looks at two addresses as they were typed. If both have one to six hex digits, they are padded
/// with zeros to six and put in capitals, and the result is nothing. Otherwise it is the text for
/// the box.
[[nodiscard]] std::optional<std::string_view> CheckAddresses(std::string& load, std::string& exec);

inline namespace Module2 {

// Commands on a file of cur_drive. They find it by its name as GetPos does, and pass over a name
// that is not there in silence. Names and digits are byte strings; a refusal is told in a box and
// leaves the disc as it was. `override_lock` lifts the lock for this command.

/// Sets or clears the lock. It counts as a change even where the lock was so already.
void LockFile(std::string_view name);
void UnlockFile(std::string_view name);

/// Takes the file out of the catalogue that holds it; its data stay where they are. True if a
/// locked file was refused.
bool DeleteFile(std::string_view name, bool override_lock);

/// Gives the file `old_name` the name `new_name`, trimmed and then cut to nine characters. A name
/// without "." goes into directory $. False on success; true if the name was refused or the file
/// is not there.
bool RenameFile(std::string_view new_name, std::string_view old_name, bool override_lock);

/// Stores both addresses, each six hex digits of which 18 bits are kept. Meant: the high bits of
/// both come from `exec`.
void SetFileAttr(std::string_view name, std::string_view load, std::string_view exec);

} // namespace Module2

} // namespace quoravel
