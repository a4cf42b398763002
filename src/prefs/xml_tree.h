#pragma once

#include "prefs/value.h"

#include <pugixml.hpp>
#include <string>
#include <unordered_set>

namespace quoravel {

using XmlDocument = pugi::xml_document;
using XmlNode = pugi::xml_node;

namespace XMLDictionary {

// The half of XMLDictionary that works on the tree of a document. Only its own sources and its
// tests include this; everybody else is served by xml_dictionary.h.

/// The storages that have been written already.
using Visited = std::unordered_set<const void*>;

/// A document of `dict`, indented, without a DOCTYPE (a tree has no room for the identifiers).
[[nodiscard]] XmlDocument ExportXML(const DictionaryRef& dict, bool plist);

/// As LoadXML of a text, for a tree that has kept its white space.
[[nodiscard]] bool LoadXML(const DictionaryRef& dict, const XmlDocument& document);

/// Begins a line with `level` tabs in front of `node`; with `closing` its end tag gets one as well.
void IndentNode(XmlNode node, int level, bool closing);

/// The text in `node`; children that are no text count with their XML.
[[nodiscard]] std::string NodeContents(const XmlNode& node);

/// Writes the entries of the storage `value` under `parent`. The inner form takes the storages to
/// pass over, to which it adds, and the tabs in front of each entry.
void ParseStorage(const Value& value, XmlNode parent, bool plist);
void ParseStorage(const Value& value, XmlNode parent, Visited& visited, int level, bool plist);

/// Reads the children of `node` into `store`.
void ParseXML(const XmlNode& node, const Value& store);

/// `node` and all below it as text, nothing added; a whole document with its declaration.
[[nodiscard]] std::string TextOfNode(const XmlNode& node);

} // namespace XMLDictionary

} // namespace quoravel
