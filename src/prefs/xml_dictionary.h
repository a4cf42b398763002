#pragma once

#include "prefs/value.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace quoravel::XMLDictionary {

// Dictionaries of typed values as XML text, in two forms: the property list ("plist"), which knows
// fewer types, and the program's own ("xmldict"). docs/preferences-format.md shows both. What works
// on the XML tree itself is in xml_tree.h.
//
// Whatever walks values or nodes yields to the event loop, so it needs a host.

/// Storages nested deeper than this are written empty, and documents nested deeper are refused.
inline constexpr int kDeepestLevel = 1000;

/// Texts of more bytes than this are refused, and so is one that its own entities blow up beyond
/// it.
inline constexpr std::size_t kLongestDocument = 16UL << 20U;

/// The document of `dict` as text, in the plist or the xmldict form.
[[nodiscard]] std::string ExportXMLString(const DictionaryRef& dict, bool plist);

/// Puts ExportXMLString into `file`; false if that failed, and then the old file is whole. A file
/// that holds just that already is left alone.
[[nodiscard]] bool SaveXML(const DictionaryRef& dict, const std::filesystem::path& file,
                           bool plist);

/// Reads a document of either form into `dict`, which is not cleared first: dictionaries merge,
/// other values replace what was stored under their key. False, and `dict` untouched, for a text
/// that is not well-formed, a version from the future, a plist without its dict, or a file that
/// cannot be read.
[[nodiscard]] bool LoadXML(const DictionaryRef& dict, std::string_view text);
[[nodiscard]] bool LoadXML(const DictionaryRef& dict, const std::filesystem::path& file);

// A storage is a value that holds others: a Dictionary or a Collection. These walk either; any
// other value has no entries and takes none.

/// In a Dictionary stores under the key (dropped without one); adds to the end of a Collection.
void StoreValue(const Key& key, const Value& value, const Value& store);

[[nodiscard]] std::size_t StorageCount(const Value& store);

/// The key at a position from 0; nothing in a Collection.
[[nodiscard]] Key StorageKey(const Value& store, std::size_t index);

/// The value at a position from 0, in a Collection too.
[[nodiscard]] Value StorageValue(const Value& store, std::size_t index);

/// What a Dictionary has under `key`, nil otherwise.
[[nodiscard]] Value StorageByKey(const Value& store, const Key& key);

} // namespace quoravel::XMLDictionary
