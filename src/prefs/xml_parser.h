#pragma once

#include "prefs/xml_tree.h"

#include <optional>
#include <string_view>

namespace quoravel::XMLDictionary {

/// The tree of a document with all its white space; CDATA is text in it. Nothing if `text` is not
/// well-formed, is longer or nested deeper than xml_dictionary.h allows, or needs anything from
/// outside: no DTD and no external entity is ever fetched.
[[nodiscard]] std::optional<XmlDocument> ParseDocument(std::string_view text);

} // namespace quoravel::XMLDictionary
