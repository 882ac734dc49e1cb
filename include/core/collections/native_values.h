// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_array.h>
#include <core/collections/value_map.h>
#include <core/context/iteration.h>
#include <core/context/native_object.h>

#include <concepts>
#include <map>
#include <span>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

/// Collections as C++ containers, in both directions. A container is a copy: what becomes of it does not show
/// in the collection, and the other way round.
namespace core {

namespace detail {

/// A type that an element of a collection can be kept as: what it converts to must not borrow from the
/// element, which may be gone when the function runs. A text is a wstring then, and an object an ObjectPtr or
/// an InterfacePtr.
template <class T>
concept KeptValue = FromValue<T> && !std::is_pointer_v<T> &&
                    std::same_as<T, decltype(from_value<T>(Value()))> && !std::same_as<T, wstring_view>;

/// Calls `take` with each element of an array or of any other collection that can be walked.
template <class Take>
void walk_elements(const Value& value, ValueReceiver receiver, Take take) {
    if (const auto sequence = value.query<IValueSequence>()) {
        for (const Value& element : sequence->values())
            take(element);
        return;
    }
    const auto collection = value.query<IValueCollection>();
    if (!collection)
        receiver.refuseType();
    const InterfacePtr<IValueEnum> walk = collection->enumerate();
    GenericValue element;
    while (walk->next(element))
        take(element);
}

template <KeptValue T>
[[nodiscard]] std::vector<T> vector_from(const Value& value, ValueReceiver receiver) {
    std::vector<T> elements;
    walk_elements(value, receiver,
                  [&](const Value& element) { elements.push_back(from_value<T>(element, receiver)); });
    return elements;
}

template <ToValue T, class Range>
[[nodiscard]] Value array_of(const Range& elements) {
    std::vector<Value> values;
    values.reserve(elements.size());
    for (const auto& element : elements)
        values.push_back(to_value<T>(element));
    return value_of_pointer(create_value_array(std::move(values)).get());
}

/// The conversions of a container of keys and values.
template <class Map, class Key, class T>
struct NativePairs {
    /// Returns a copy of the pairs of a map or a structure; refuses the type of every other value, of a key
    /// and of a value. Of keys that convert to the same one the first stays.
    static Map from(const Value& value, ValueReceiver receiver) requires KeptValue<Key> && KeptValue<T> {
        const auto pairs = value.query<IValuePairs>();
        if (!pairs)
            receiver.refuseType();
        Map map;
        IValuePairs::View pair;
        for (std::size_t place = 0; pairs->next(place, pair);)
            map.emplace(from_value<Key>(*pair.key, receiver), from_value<T>(*pair.value, receiver));
        return map;
    }
    /// Returns a new "Map" with the pairs, in the order of the container.
    static Value to(const Map& map) requires ToValue<Key> && ToValue<T> {
        const InterfacePtr<IValueMap> made = create_value_map();
        for (const auto& [key, value] : map)
            made->insert(to_value<Key>(key), to_value<T>(value));
        return value_of_pointer(made.get());
    }
    /// Returns the id of Map.
    static const GUID* type() noexcept { return &kValueMapType; }
};

} // namespace detail

/// The elements of an array or of any other collection that can be walked.
template <class T>
struct NativeValue<std::vector<T>> {
    /// Returns a copy of the elements; refuses the type of any other value, and elements that do not convert.
    static std::vector<T> from(const Value& value, ValueReceiver receiver) requires detail::KeptValue<T> {
        return detail::vector_from<T>(value, receiver);
    }
    /// Returns a new "Array" of the elements.
    static Value to(const std::vector<T>& elements) requires ToValue<T> {
        return detail::array_of<T>(elements);
    }
    /// Returns the id of Array.
    static const GUID* type() noexcept { return &kValueArrayType; }
};

/// The same as a span: of what is kept while the function runs.
template <class T>
struct NativeValue<std::span<const T>> {
    /// Returns a copy of the elements, as for a vector.
    static std::vector<T> from(const Value& value, ValueReceiver receiver) requires detail::KeptValue<T> {
        return detail::vector_from<T>(value, receiver);
    }
    /// Returns a new "Array" of the elements.
    static Value to(const std::span<const T>& elements) requires ToValue<T> {
        return detail::array_of<T>(elements);
    }
    /// Returns the id of Array.
    static const GUID* type() noexcept { return &kValueArrayType; }
};

/// The pairs of a map or a structure, in the order of the keys.
template <class Key, class T, class Compare>
struct NativeValue<std::map<Key, T, Compare>> : detail::NativePairs<std::map<Key, T, Compare>, Key, T> {};
/// The pairs of a map or a structure, in no order.
template <class Key, class T, class Hash, class Equal>
struct NativeValue<std::unordered_map<Key, T, Hash, Equal>>
    : detail::NativePairs<std::unordered_map<Key, T, Hash, Equal>, Key, T> {};

} // namespace core
