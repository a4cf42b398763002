#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace quoravel {

class Dictionary;
class Collection;

/// A run of bytes.
struct MemoryBlock {
    std::vector<std::uint8_t> bytes;
};

/// 0xRRGGBB.
struct Colour {
    std::uint32_t rgb = 0;
    bool operator==(const Colour&) const = default;
};

/// Some object that no document can hold.
struct OtherObject {
    bool operator==(const OtherObject&) const = default;
};

/// A moment in UTC, to the second.
using Date = std::chrono::sys_seconds;

// Storages and blocks are shared: a copy of the value is the same object, so a storage can even
// hold itself. Whoever makes such a ring has to break it again, or it is never freed.
using DictionaryRef = std::shared_ptr<Dictionary>;
using CollectionRef = std::shared_ptr<Collection>;
using MemoryBlockRef = std::shared_ptr<MemoryBlock>;

/// One typed value; std::monostate is nil, a path is a reference to a file. Strings are UTF-8.
using Value =
    std::variant<std::monostate, std::int32_t, double, Date, std::string, DictionaryRef,
                 MemoryBlockRef, CollectionRef, std::filesystem::path, OtherObject, bool, Colour>;

/// The key of a dictionary's entry; nothing where an entry has none.
using Key = std::optional<std::string>;

/// Run-time types, by the codes that they have always had.
enum class ValueType {
    kNil = 0,
    kInteger = 2,
    kDouble = 5,
    kDate = 7,
    kString = 8,
    kObject = 9,
    kBoolean = 11,
    kColour = 16
};

[[nodiscard]] ValueType TypeOf(const Value& value);

/// Values by key. Keys are compared byte by byte and keep the order of their first Set.
class Dictionary {
  public:
    [[nodiscard]] std::size_t Count() const { return entries_.size(); }

    /// Key and value by position, from 0; nothing and nil past the end.
    [[nodiscard]] Key KeyAt(std::size_t index) const;
    [[nodiscard]] Value ValueAt(std::size_t index) const;

    /// What is stored under `key`, nothing if the key is absent.
    [[nodiscard]] std::optional<Value> Find(const std::string& key) const;

    void Set(const std::string& key, Value value);

  private:
    std::vector<std::pair<std::string, Value>> entries_;
    std::unordered_map<std::string, std::size_t> places_;
};

/// Values in order.
class Collection {
  public:
    [[nodiscard]] std::size_t Count() const { return items_.size(); }

    /// The item by its number, from 1; nil for a number that it does not have.
    [[nodiscard]] Value Item(std::size_t number) const;

    void Add(Value value) { items_.push_back(std::move(value)); }

  private:
    std::vector<Value> items_;
};

} // namespace quoravel
