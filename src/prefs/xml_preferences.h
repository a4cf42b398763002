#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quoravel::XMLPreferences {

// What the program remembers from one run to the next: a typed store of keys and values in one file
// of the user's preferences folder. A key keeps the type that it was first stored with. Used before
// InitPrefFile, or with another type, everything here shows a box and goes on with defaults.
// docs/preferences-format.md has the keys.

/// Opens the store of that name and loads what the file holds. An empty name does nothing.
void InitPrefFile(std::string_view name);

/// Saves. What InitPrefFile could not read is first moved aside, to "<name>.bad".
void WritePrefFile();

/// The value under `key`, or `otherwise` if there is none of that type.
[[nodiscard]] std::string GetPrefString(const std::string& key, const std::string& otherwise);
[[nodiscard]] std::int32_t GetPrefInteger(const std::string& key, std::int32_t otherwise);
[[nodiscard]] bool GetPrefBoolean(const std::string& key, bool otherwise);

/// Stores in memory; WritePrefFile makes it last.
void SetPrefString(const std::string& key, const std::string& value);
void SetPrefInteger(const std::string& key, std::int32_t value);
void SetPrefBoolean(const std::string& key, bool value);

/// Back to how it was before InitPrefFile, the file untouched: for tests, which share a process.
void ForgetPrefFile();

} // namespace quoravel::XMLPreferences
