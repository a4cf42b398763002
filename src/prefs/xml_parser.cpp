#include "prefs/xml_parser.h"

#include "prefs/xml_dictionary.h"

#include <algorithm>
#include <expat.h>
#include <memory>
#include <string>
#include <type_traits>

namespace quoravel::XMLDictionary {

namespace {

// pugixml has a parser of its own, but that one takes nearly anything: two roots, text around the
// root, a bare "&", bytes that are no characters. A damaged preferences file would half load and
// then be overwritten. expat says no to every text that is not well-formed, never fetches anything,
// and does not recurse.

struct FreeParser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser>;

/// Hears of each piece of a document and grows the tree from them.
class TreeBuilder {
  public:
    TreeBuilder(XML_Parser parser, XmlDocument& document);

  private:
    static void StartElement(void* self, const char* name, const char** attributes);
    static void EndElement(void* self, const char* name);
    static void Characters(void* self, const char* text, int length);
    static void Comment(void* self, const char* text);
    static void Instruction(void* self, const char* target, const char* text);
    static void UnknownEntity(void* self, const char* name, int is_parameter);
    static int ExternalEntity(XML_Parser parser, const char* context, const char* base,
                              const char* system_id, const char* public_id);

    static TreeBuilder& From(void* self) { return *static_cast<TreeBuilder*>(self); }

    void Spend(std::size_t bytes);

    void Refuse() { XML_StopParser(parser_, XML_FALSE); }

    void FinishText();

    XML_Parser parser_;
    XmlNode current_;
    std::string text_; // arrives in pieces
    int depth_ = 0;
    int deepest_ = kDeepestLevel + 1;           // the root is no level
    std::size_t bytes_left_ = kLongestDocument; // guards against entities that multiply
};

TreeBuilder::TreeBuilder(XML_Parser parser, XmlDocument& document)
    : parser_(parser), current_(document) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, StartElement, EndElement);
    XML_SetCharacterDataHandler(parser, Characters);
    XML_SetCommentHandler(parser, Comment);
    XML_SetProcessingInstructionHandler(parser, Instruction);
    XML_SetSkippedEntityHandler(parser, UnknownEntity);
    XML_SetExternalEntityRefHandler(parser, ExternalEntity);
}

/// Every piece costs what it takes in a document at least, so only entities can spend more than
/// the document's own length (or an encoding in which UTF-8's longer characters are short).
void TreeBuilder::Spend(std::size_t bytes) {
    if (bytes > bytes_left_)
        Refuse();
    bytes_left_ -= std::min(bytes, bytes_left_);
}

void TreeBuilder::FinishText() {
    if (!text_.empty())
        current_.append_child(pugi::node_pcdata).set_value(text_.c_str());
    text_.clear();
}

void TreeBuilder::StartElement(void* self, const char* name, const char** attributes) {
    constexpr std::size_t kLeastTag = 2;       // "</" of the end tag, or "/>"
    constexpr std::size_t kLeastAttribute = 4; // blank, "=" and two quotes
    TreeBuilder& builder = From(self);
    builder.FinishText();
    builder.current_ = builder.current_.append_child(name);
    builder.Spend(std::string_view(name).size() + kLeastTag);
    for (; *attributes != nullptr; attributes += 2) {
        builder.current_.append_attribute(attributes[0]).set_value(attributes[1]);
        builder.Spend(std::string_view(attributes[0]).size() +
                      std::string_view(attributes[1]).size() + kLeastAttribute);
    }
    ++builder.depth_;
    if (builder.depth_ == 1 && std::string_view(name) == "plist")
        ++builder.deepest_; // neither is the dict in a plist
    if (builder.depth_ > builder.deepest_)
        builder.Refuse();
}

void TreeBuilder::EndElement(void* self, const char* /*name*/) {
    TreeBuilder& builder = From(self);
    builder.FinishText();
    builder.current_ = builder.current_.parent();
    --builder.depth_;
}

void TreeBuilder::Characters(void* self, const char* text, int length) {
    From(self).text_.append(text, static_cast<std::size_t>(length));
    From(self).Spend(static_cast<std::size_t>(length));
}

void TreeBuilder::Comment(void* self, const char* text) {
    From(self).FinishText();
    From(self).current_.append_child(pugi::node_comment).set_value(text);
    From(self).Spend(std::string_view(text).size());
}

void TreeBuilder::Instruction(void* self, const char* target, const char* text) {
    From(self).FinishText();
    XmlNode node = From(self).current_.append_child(pugi::node_pi);
    node.set_name(target);
    node.set_value(text);
    From(self).Spend(std::string_view(target).size() + std::string_view(text).size());
}

/// The DTD that may declare it is not read, and without it some text would be lost.
void TreeBuilder::UnknownEntity(void* self, const char* /*name*/, int /*is_parameter*/) {
    From(self).Refuse();
}

int TreeBuilder::ExternalEntity(XML_Parser /*parser*/, const char* /*context*/,
                                const char* /*base*/, const char* /*system_id*/,
                                const char* /*public_id*/) {
    return XML_STATUS_ERROR;
}

} // namespace

std::optional<XmlDocument> ParseDocument(std::string_view text) {
    if (text.size() > kLongestDocument)
        return {};
    const Parser parser(XML_ParserCreate(nullptr));
    if (!parser)
        return {};
    XmlDocument document;
    TreeBuilder builder(parser.get(), document);
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) !=
        XML_STATUS_OK)
        return {};
    return document;
}

} // namespace quoravel::XMLDictionary
