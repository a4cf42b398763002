#include "prefs/value.h"

#include <array>

namespace quoravel {

ValueType TypeOf(const Value& value) {
    // In the order of the alternatives of Value.
    static constexpr std::array kTypes{ValueType::kNil,    ValueType::kInteger, ValueType::kDouble,
                                       ValueType::kDate,   ValueType::kString,  ValueType::kObject,
                                       ValueType::kObject, ValueType::kObject,  ValueType::kObject,
                                       ValueType::kObject, ValueType::kBoolean, ValueType::kColour};
    static_assert(kTypes.size() == std::variant_size_v<Value>);
    return kTypes[value.index()];
}

Key Dictionary::KeyAt(std::size_t index) const {
    return index < entries_.size() ? Key(entries_[index].first) : std::nullopt;
}

Value Dictionary::ValueAt(std::size_t index) const {
    return index < entries_.size() ? entries_[index].second : Value();
}

std::optional<Value> Dictionary::Find(const std::string& key) const {
    const auto place = places_.find(key);
    if (place == places_.end())
        return {};
    return entries_[place->second].second;
}

void Dictionary::Set(const std::string& key, Value value) {
    const auto [place, is_new] = places_.try_emplace(key, entries_.size());
    if (is_new)
        entries_.emplace_back(key, std::move(value));
    else
        entries_[place->second].second = std::move(value);
}

Value Collection::Item(std::size_t number) const {
    return number >= 1 && number <= items_.size() ? items_[number - 1] : Value();
}

} // namespace quoravel
