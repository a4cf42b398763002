#include "platform/host.h"
#include "platform/text.h"
#include "prefs/base64.h"
#include "prefs/value_text.h"
#include "prefs/xml_dictionary.h"
#include "prefs/xml_tree.h"

#include <array>
#include <string_view>

namespace quoravel::XMLDictionary {

namespace {

constexpr double kPlistVersion = 1.0;
constexpr double kXmldictVersion = 1.1;

XmlNode FirstElement(const XmlNode& node) {
    return node.find_child([](const XmlNode& child) { return child.type() == pugi::node_element; });
}

/// A missing version counts as 0.
double VersionOf(const XmlNode& root) {
    return Val(root.attribute("version").value());
}

Value ReadDate(const XmlNode& element) {
    const auto date = DateFromText(NodeContents(element));
    return date ? Value(*date) : Value();
}

Value ReadData(const XmlNode& element) {
    return std::make_shared<MemoryBlock>(MemoryBlock{DecodeBase64(NodeContents(element))});
}

Value ReadFileReference(const XmlNode& element) {
    const auto location = DecodeBase64(NodeContents(element));
    return std::filesystem::path(std::string(location.begin(), location.end()));
}

Value ReadArray(const XmlNode& element) {
    const auto array = std::make_shared<Collection>();
    ParseXML(element, array);
    return array;
}

/// A dictionary merges into `present`, the one that is stored in its place already, so that loading
/// over defaults keeps what the file does not name.
Value ReadDict(const XmlNode& element, const Value& present) {
    const auto* stored = std::get_if<DictionaryRef>(&present);
    const DictionaryRef dict =
        stored != nullptr && *stored ? *stored : std::make_shared<Dictionary>();
    ParseXML(element, dict);
    return dict;
}

struct Reading {
    std::string_view name;
    Value (*read)(const XmlNode& element);
};

/// All elements but dict.
constexpr std::array kReadings{
    Reading{"null", [](const XmlNode&) { return Value(); }},
    Reading{"integer", [](const XmlNode& e) { return Value(IntegerFromText(NodeContents(e))); }},
    Reading{"real", [](const XmlNode& e) { return Value(Val(NodeContents(e))); }},
    Reading{"date", ReadDate},
    Reading{"string", [](const XmlNode& e) { return Value(NodeContents(e)); }},
    Reading{"array", ReadArray},
    Reading{"data", ReadData},
    Reading{"file", ReadFileReference},
    Reading{"true", [](const XmlNode&) { return Value(true); }},
    Reading{"false", [](const XmlNode&) { return Value(false); }},
    Reading{"color", [](const XmlNode& e) { return Value(ColourFromText(NodeContents(e))); }},
};

void ReadElement(const XmlNode& element, const Key& key, const Value& store) {
    if (EqualIgnoringCase(element.name(), "dict"))
        return StoreValue(key, ReadDict(element, StorageByKey(store, key)), store);
    for (const Reading& reading : kReadings) {
        if (EqualIgnoringCase(element.name(), reading.name))
            return StoreValue(key, reading.read(element), store);
    }
}

} // namespace

bool LoadXML(const DictionaryRef& dict, const XmlDocument& document) {
    XmlNode entries = document.document_element();
    if (!entries)
        return false;
    const bool plist = std::string_view(entries.name()) == "plist";
    if (VersionOf(entries) > (plist ? kPlistVersion : kXmldictVersion))
        return false;
    if (plist) {
        entries = FirstElement(entries);
        if (std::string_view(entries.name()) != "dict")
            return false;
    }
    ParseXML(entries, dict);
    return true;
}

std::string NodeContents(const XmlNode& node) {
    std::string contents;
    for (const XmlNode& child : node.children()) {
        const bool is_text = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
        contents += is_text ? child.value() : TextOfNode(child);
    }
    return contents;
}

/// Calls itself by way of ReadElement, no deeper than kDeepestLevel.
void ParseXML(const XmlNode& node, const Value& store) {
    Key key;
    for (const XmlNode& child : node.children()) {
        Yield();
        if (child.type() != pugi::node_element)
            continue;
        if (!key && std::string_view(child.name()) == "key") {
            key = NodeContents(child);
            continue;
        }
        // A second key in a row ends up here, has no value to give and takes the first with it.
        ReadElement(child, key, store);
        key.reset();
    }
}

} // namespace quoravel::XMLDictionary
