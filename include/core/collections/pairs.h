// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/errors.h>
#include <core/collections/native_values.h>
#include <core/collections/value_map.h>
#include <core/collections/value_structure.h>
#include <core/context/any_value.h>
#include <core/strings/text.h>

#include <concepts>
#include <cstddef>
#include <iterator>
#include <utility>

/// Maps and structures in the hand of a program.
namespace core {

/// A pair of a map or a structure as a walk shows it: `for (const auto& [key, value] : map)`. Both are
/// borrowed from the collection until its next change.
struct PairRef {
    const Value& key;   ///< the key
    const Value& value; ///< the value
};

/// A walk over the pairs of a map or a structure in the order of insertion. It borrows the collection, and a
/// change of that ends it.
class PairIterator {
  public:
    using iterator_concept = std::input_iterator_tag;  ///< one walk at a time
    using iterator_category = std::input_iterator_tag; ///< one walk at a time
    using difference_type = std::ptrdiff_t;            ///< between two places of one walk
    using value_type = PairRef;                        ///< a pair
    using reference = PairRef;                         ///< a pair borrowed from the collection
    using pointer = void;                              ///< a pair has no address

    /// The end of every walk.
    PairIterator() noexcept = default;
    /// Begins a walk over `pairs`.
    explicit PairIterator(const IValuePairs& pairs) noexcept : pairs_(&pairs) { ++*this; }

    /// Returns the pair.
    PairRef operator*() const noexcept { return {*view_.key, *view_.value}; }
    /// Goes on to the next pair.
    PairIterator& operator++() noexcept {
        if (!pairs_->next(position_, view_))
            pairs_ = nullptr;
        return *this;
    }
    /// Goes on to the next pair.
    void operator++(int) noexcept { ++*this; }
    /// Returns whether both are at the end, or neither is.
    friend bool operator==(const PairIterator& a, const PairIterator& b) noexcept {
        return a.pairs_ == b.pairs_;
    }

  private:
    const IValuePairs* pairs_ = nullptr; // null at the end
    std::size_t position_ = 0;
    IValuePairs::View view_;
};

/// Begins a walk over the pairs of a map or a structure: `for (const auto& [key, value] : *map)`.
[[nodiscard]] inline PairIterator begin(const IValuePairs& pairs) noexcept {
    return PairIterator(pairs);
}
/// Returns the end of every such walk.
[[nodiscard]] inline PairIterator end(const IValuePairs&) noexcept {
    return {};
}

namespace detail {

[[noreturn]] CORE_API void throw_no_key(const Value& key);

} // namespace detail

/// What Map and Structure have in common: a handle of pairs, whose copies share one collection and whose
/// functions change it even where they are const. `I` is the interface, and `->` leads to it. What is
/// borrowed is valid until the next change. Threads: one at a time.
template <class I>
class PairsHandle {
  public:
    /// Returns the collection, borrowed: valid as long as this handle.
    [[nodiscard]] I* operator->() const noexcept { return pairs_.get(); }
    /// Returns the collection, borrowed: valid as long as this handle.
    operator const InterfacePtr<I>&() const noexcept { return pairs_; }
    /// Returns the collection as a value.
    operator Value() const { return detail::value_of_pointer(pairs_.get()); }

    /// Returns how many pairs there are.
    [[nodiscard]] std::size_t size() const noexcept { return pairs_->count(); }
    /// Returns whether there are none.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Begins a walk over the pairs in the order of insertion.
    [[nodiscard]] PairIterator begin() const noexcept { return PairIterator(*pairs_); }
    /// Returns the end of a walk.
    [[nodiscard]] PairIterator end() const noexcept { return {}; }
    /// Removes all pairs.
    void clear() const noexcept { pairs_->clear(); }

    /// Returns the value of a key, borrowed; null when the key is not here.
    [[nodiscard]] const Value* find(const AnyValue& key) const { return pairs_->find(key.value()); }
    /// Returns whether a key is here.
    [[nodiscard]] bool contains(const AnyValue& key) const { return find(key) != nullptr; }
    /// Returns the value of a key; Undefined when the key is not here.
    [[nodiscard]] Value operator[](const AnyValue& key) const {
        const Value* const found = find(key);
        return found != nullptr ? *found : Value();
    }
    /// Returns the value of a key, borrowed. Throws ContextException ("IDS_COLLECTION_NO_KEY"), which names
    /// the key, when it is not here.
    [[nodiscard]] const Value& at(const AnyValue& key) const {
        const Value* const found = find(key);
        if (found == nullptr)
            detail::throw_no_key(key);
        return *found;
    }
    /// Returns the value of a key as a `T`, which must not borrow from it. Throws as at() does, and
    /// ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for a value that is not one.
    template <detail::KeptValue T>
    [[nodiscard]] T get(const AnyValue& key) const {
        return from_value<T>(at(key));
    }
    /// Adds the pair, or replaces the value of a key that is here.
    void insert(const AnyValue& key, const AnyValue& value) const { pairs_->insert(key, value.value()); }
    /// Removes the pair of a key. Returns false when the key is not here.
    bool remove(const AnyValue& key) const { return pairs_->remove(key); }

  protected:
    /// Holds pairs that are there, which must not be null.
    explicit PairsHandle(InterfacePtr<I> pairs) noexcept : pairs_(std::move(pairs)) {}

  private:
    InterfacePtr<I> pairs_;
};

/// A map: any value leads to another.
///
///     Map prices;
///     prices.insert("apple", Numeric::parse("1.20").value());
///     for (const auto& [name, price] : prices)
///         std::cout << name << ' ' << price << '\n';
class Map : public PairsHandle<IValueMap> {
  public:
    /// Makes a map without pairs. Throws std::bad_alloc.
    Map() : PairsHandle(create_value_map()) {}
    /// Holds a map that is there, which must not be null.
    Map(InterfacePtr<IValueMap> map) noexcept : PairsHandle(std::move(map)) {}
    /// Holds the map that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any other
    /// value.
    explicit Map(const Value& value) : PairsHandle(from_value<InterfacePtr<IValueMap>>(value)) {}
};

/// A structure: names, in any case, lead to values. Functions that take a key throw ContextException
/// ("IDS_VS_BADPROPNAME_ERROR") where it is not a name.
class Structure : public PairsHandle<IValueStructure> {
  public:
    /// Makes a structure without keys. Throws std::bad_alloc.
    Structure() : PairsHandle(create_value_structure()) {}
    /// Holds a structure that is there, which must not be null.
    Structure(InterfacePtr<IValueStructure> structure) noexcept : PairsHandle(std::move(structure)) {}
    /// Holds the structure that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any
    /// other value.
    explicit Structure(const Value& value) : PairsHandle(from_value<InterfacePtr<IValueStructure>>(value)) {}
};

/// A map.
template <>
struct NativeValue<Map> {
    /// Returns the map; refuses the type of every other value.
    static Map from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueMap>>(value, receiver);
    }
    /// Returns the map as a value.
    static Value to(const Map& map) { return map; }
    /// Returns the type of maps.
    static const GUID* type() noexcept { return &kValueMapType; }
};

/// A structure.
template <>
struct NativeValue<Structure> {
    /// Returns the structure; refuses the type of every other value.
    static Structure from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueStructure>>(value, receiver);
    }
    /// Returns the structure as a value.
    static Value to(const Structure& structure) { return structure; }
    /// Returns the type of structures.
    static const GUID* type() noexcept { return &kValueStructureType; }
};

} // namespace core
