#include "prefs/xml_dictionary.h"

#include "platform/files.h"
#include "platform/saving.h"
#include "platform/text.h"
#include "prefs/xml_parser.h"
#include "prefs/xml_tree.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace quoravel::XMLDictionary {

namespace {

// Nobody fetches these; they only name the forms.
constexpr std::string_view kPlistDoctype =
    R"(<!DOCTYPE plist PUBLIC "-//Apple Computer//DTD PLIST 1.0//EN" )"
    R"("http://www.apple.com/DTDs/PropertyList-1.0.dtd">)";
constexpr std::string_view kXmldictDoctype =
    R"(<!DOCTYPE xmldict PUBLIC "-//Velmarsh//DTD XMLDICT 1.1//EN" )"
    R"("http://velmarsh.example/DTDs/XMLDictionary-1.1.dtd">)";

/// The object of type T that `value` refers to, or nullptr.
template<class T>
T* ObjectIn(const Value& value) {
    const auto* ref = std::get_if<std::shared_ptr<T>>(&value);
    return ref == nullptr ? nullptr : ref->get();
}

bool Holds(const std::filesystem::path& file, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> present;
    return !ReadFile(file, bytes.size() + 1, present) && std::ranges::equal(present, bytes);
}

} // namespace

std::string ExportXMLString(const DictionaryRef& dict, bool plist) {
    std::string text = TextOfNode(ExportXML(dict, plist));
    // Behind the declaration's line end, which is in front of the root.
    const std::size_t second_line = text.find('\n') + 1;
    text.insert(second_line, std::string(plist ? kPlistDoctype : kXmldictDoctype) + "\n");
    return text;
}

bool SaveXML(const DictionaryRef& dict, const std::filesystem::path& file, bool plist) {
    const std::string text = ExportXMLString(dict, plist);
    const auto bytes = AsBytes(text);
    return Holds(file, bytes) || !ReplaceFile(file, bytes);
}

bool LoadXML(const DictionaryRef& dict, std::string_view text) {
    const auto document = ParseDocument(text);
    return document && LoadXML(dict, *document);
}

bool LoadXML(const DictionaryRef& dict, const std::filesystem::path& file) {
    std::vector<std::uint8_t> bytes;
    // One byte more than may be, so that a file that is too long is not taken for a whole one.
    if (ReadFile(file, kLongestDocument + 1, bytes))
        return false;
    return LoadXML(dict,
                   std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

void StoreValue(const Key& key, const Value& value, const Value& store) {
    if (auto* const dict = ObjectIn<Dictionary>(store)) {
        if (key)
            dict->Set(*key, value);
    } else if (auto* const collection = ObjectIn<Collection>(store)) {
        collection->Add(value);
    }
}

std::size_t StorageCount(const Value& store) {
    if (const auto* const dict = ObjectIn<Dictionary>(store))
        return dict->Count();
    const auto* const collection = ObjectIn<Collection>(store);
    return collection == nullptr ? 0 : collection->Count();
}

Key StorageKey(const Value& store, std::size_t index) {
    const auto* const dict = ObjectIn<Dictionary>(store);
    return dict == nullptr ? Key() : dict->KeyAt(index);
}

Value StorageValue(const Value& store, std::size_t index) {
    if (const auto* const dict = ObjectIn<Dictionary>(store))
        return dict->ValueAt(index);
    const auto* const collection = ObjectIn<Collection>(store);
    return collection == nullptr ? Value() : collection->Item(index + 1);
}

Value StorageByKey(const Value& store, const Key& key) {
    const auto* const dict = ObjectIn<Dictionary>(store);
    return dict == nullptr || !key ? Value() : dict->Find(*key).value_or(Value());
}

} // namespace quoravel::XMLDictionary
