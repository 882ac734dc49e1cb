// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_pair.h>

/// The map: any value leads to another. Scripts know it as "Map".
namespace core {

/// The class id of "Map".
inline constexpr GUID kValueMapClass = "ca8cb955-479c-4fae-819c-d7cd6b78d678"_guid;
/// The type id of "Map".
inline constexpr GUID kValueMapType = "3d48feae-a9c6-4c5a-a099-9eb6477630c6"_guid;

/// A map keeps its pairs in the order of insertion. Keys are equal as values are (IValue::isEqual). Threads:
/// one at a time.
class IValueMap : public IValuePairs {
  public:
    static constexpr GUID IID = "d656c5d9-9ece-490d-abc6-d629a0d6a08f"_guid;

    /// Adds the pair, or replaces the value of a key that is here. Throws std::bad_alloc and changes nothing
    /// then.
    virtual void insert(const Value& key, Value value) = 0;
    /// Returns the value of the key, borrowed until the next change; null when the key is not here.
    [[nodiscard]] virtual const Value* find(const Value& key) const noexcept = 0;
    /// Removes the pair of the key. Returns false when the key is not here.
    virtual bool remove(const Value& key) noexcept = 0;

  protected:
    ~IValueMap() = default;
};

/// Returns a new map without pairs. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueMap> create_value_map();

} // namespace core
