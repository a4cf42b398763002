#include "platform/host.h"
#include "platform/text.h"
#include "prefs/base64.h"
#include "prefs/value_text.h"
#include "prefs/xml_dictionary.h"
#include "prefs/xml_tree.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace quoravel::XMLDictionary {

namespace {

void AppendText(XmlNode parent, const std::string& text) {
    if (!text.empty())
        parent.append_child(pugi::node_pcdata).set_value(text.c_str());
}

/// Writes one value as an element of its own at the end of `parent`.
class ElementWriter {
  public:
    ElementWriter(XmlNode parent, Visited& visited, int level, bool plist)
        : parent_(parent), visited_(visited), level_(level), plist_(plist) {}

    void operator()(std::monostate) { AppendNil(); }

    void operator()(std::int32_t value) { AppendLeaf("integer", std::to_string(value)); }

    void operator()(double value) { AppendLeaf("real", RealText(value)); }

    void operator()(Date value) { AppendLeaf("date", DateText(value)); }

    void operator()(const std::string& value) { AppendLeaf("string", XmlText(value)); }

    void operator()(const DictionaryRef& value) { AppendStorage("dict", value); }

    void operator()(const CollectionRef& value) { AppendStorage("array", value); }

    void operator()(const MemoryBlockRef& value) {
        value ? AppendBytes("data", value->bytes) : AppendNil();
    }

    void operator()(const std::filesystem::path& value);

    void operator()(OtherObject) { AppendNil(); }

    void operator()(bool value) { AppendLeaf(value ? "true" : "false", {}); }

    void operator()(Colour value) { plist_ ? AppendNil() : AppendLeaf("color", ColourText(value)); }

  private:
    void AppendLeaf(const char* name, const std::string& text);

    /// A property list has no element for "nothing".
    void AppendNil() { AppendLeaf(plist_ ? "false" : "null", {}); }

    template<class Ref>
    void AppendStorage(const char* name, const Ref& storage);
    void AppendBytes(const char* name, std::span<const std::uint8_t> bytes);

    XmlNode parent_;
    Visited& visited_;
    int level_;
    bool plist_;
};

void ElementWriter::AppendLeaf(const char* name, const std::string& text) {
    const XmlNode element = parent_.append_child(name);
    AppendText(element, text);
    IndentNode(element, level_, false);
}

void ElementWriter::operator()(const std::filesystem::path& value) {
    if (plist_)
        return AppendNil();
    AppendBytes("file", AsBytes(value.native()));
}

template<class Ref>
void ElementWriter::AppendStorage(const char* name, const Ref& storage) {
    if (!storage)
        return AppendNil();
    const XmlNode element = parent_.append_child(name);
    if (level_ < kDeepestLevel) // what no reader would take back is not written
        ParseStorage(storage, element, visited_, level_ + 1, plist_);
    IndentNode(element, level_, true);
}

void ElementWriter::AppendBytes(const char* name, std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kLineEnd = "\r\n";
    XmlNode element = parent_.append_child(name);
    const std::string text = EncodeBase64(bytes);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(kLineEnd, begin), text.size());
        XmlNode line = element.append_child(pugi::node_pcdata);
        line.set_value(text.substr(begin, end - begin).c_str());
        IndentNode(line, level_, false);
        begin = end + kLineEnd.size();
    }
    IndentNode(element, level_, true);
}

/// Takes the text of nodes. A reader would turn a bare CR into a line end, so it is written as a
/// reference; markup has none.
class TextSink : public pugi::xml_writer {
  public:
    void write(const void* data, std::size_t size) override {
        for (const char c : std::string_view(static_cast<const char*>(data), size)) {
            if (c == '\r')
                text += "&#13;";
            else
                text += c;
        }
    }

    std::string text;
};

} // namespace

XmlDocument ExportXML(const DictionaryRef& dict, bool plist) {
    XmlDocument document;
    XmlNode declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";

    XmlNode root = document.append_child(plist ? "plist" : "xmldict");
    root.append_attribute("version") = plist ? "1.0" : "1.1";
    const XmlNode entries = plist ? root.append_child("dict") : root;
    ParseStorage(dict, entries, plist);
    IndentNode(root, 0, true);
    if (plist)
        IndentNode(entries, 0, true);
    AppendText(document, "\n");
    return document;
}

void IndentNode(XmlNode node, int level, bool closing) {
    const std::string indent = "\n" + std::string(static_cast<std::size_t>(level), '\t');
    node.parent().insert_child_before(pugi::node_pcdata, node).set_value(indent.c_str());
    if (closing)
        AppendText(node, indent);
}

void ParseStorage(const Value& value, XmlNode parent, bool plist) {
    Visited visited;
    ParseStorage(value, parent, visited, 1, plist);
}

void ParseStorage(const Value& value, XmlNode parent, Visited& visited, int level, bool plist) {
    const auto address = [](const auto& held) -> const void* {
        if constexpr (requires { held.get(); })
            return held.get();
        return nullptr;
    };
    if (!visited.insert(std::visit(address, value)).second)
        return; // a storage that contains itself is written once
    for (std::size_t i = 0; i < StorageCount(value); ++i) {
        Yield();
        if (const Key key = StorageKey(value, i)) {
            const XmlNode element = parent.append_child("key");
            IndentNode(element, level, false);
            AppendText(element, XmlText(*key));
        }
        std::visit(ElementWriter(parent, visited, level, plist), StorageValue(value, i));
    }
}

std::string TextOfNode(const XmlNode& node) {
    TextSink sink;
    node.print(sink, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return sink.text;
}

} // namespace quoravel::XMLDictionary
