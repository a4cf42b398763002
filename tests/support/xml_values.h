#pragma once

#include "prefs/xml_dictionary.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace quoravel {

/// What loading `text` into an empty dictionary gives, nothing if it is refused.
[[nodiscard]] inline DictionaryRef Loaded(const std::string& text) {
    auto dict = std::make_shared<Dictionary>();
    return XMLDictionary::LoadXML(dict, std::string_view(text)) ? dict : nullptr;
}

[[nodiscard]] inline DictionaryRef
DictionaryOf(std::initializer_list<std::pair<const char*, Value>> entries) {
    auto dict = std::make_shared<Dictionary>();
    for (const auto& [key, value] : entries)
        dict->Set(key, value);
    return dict;
}

[[nodiscard]] inline CollectionRef CollectionOf(std::initializer_list<Value> items) {
    auto collection = std::make_shared<Collection>();
    for (const Value& item : items)
        collection->Add(item);
    return collection;
}

} // namespace quoravel
