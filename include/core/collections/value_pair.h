// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>

/// Pairs of a key and a value: what walking a structure or a map yields. Scripts know them as "KeyAndValue".
namespace core {

/// The class id of "KeyAndValue".
inline constexpr GUID kValuePairClass = "556b08ab-8ef5-4635-9698-c19f7e52aaf3"_guid;
/// The type id of "KeyAndValue".
inline constexpr GUID kValuePairType = "850afa6f-5244-482f-9729-d78ec65ff607"_guid;

/// A pair as it was when the walk began: what happens to the collection afterwards does not change it.
class IValuePair : public IUnknown {
  public:
    static constexpr GUID IID = "f5b3254c-60ea-4917-840d-becc7d7083c6"_guid;

    /// Returns the key, borrowed; valid as long as the pair.
    [[nodiscard]] virtual const Value& key() const noexcept = 0;
    /// Returns the value, borrowed; valid as long as the pair.
    [[nodiscard]] virtual const Value& value() const noexcept = 0;

  protected:
    ~IValuePair() = default;
};

/// Returns a new pair. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValuePair> create_value_pair(Value key, Value value);

/// What structures and maps have in common. Everything borrowed from them is valid until their next change;
/// reaching a structure's keys as properties counts as one, since it may close the gaps of erased pairs.
class IValuePairs : public IUnknown {
  public:
    static constexpr GUID IID = "0312d65c-4795-41d2-9b55-1e002d5aad45"_guid;

    /// A pair that stands in its collection.
    struct View {
        const Value* key = nullptr;   ///< borrowed from the collection
        const Value* value = nullptr; ///< borrowed from the collection
    };

    /// Returns how many pairs there are.
    [[nodiscard]] virtual std::size_t count() const noexcept = 0;
    /// Stores the next pair in the order of insertion and returns true; returns false at the end. Makes no
    /// object of the pair. `position` begins at 0 and is for this function alone; a change of the collection
    /// ends the walk.
    virtual bool next(std::size_t& position, View& pair) const noexcept = 0;
    /// Removes all pairs.
    virtual void clear() noexcept = 0;

  protected:
    ~IValuePairs() = default;
};

} // namespace core
