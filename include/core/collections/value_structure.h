// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_pair.h>

/// The structure: names lead to values. Scripts know it as "Structure" and reach its keys as properties, too.
namespace core {

/// The class id of "Structure".
inline constexpr GUID kValueStructureClass = "c6bdae87-2280-4624-af03-2c1b4371b2e4"_guid;
/// The type id of "Structure".
inline constexpr GUID kValueStructureType = "4238019d-7e49-4fc9-91db-b6b951d5cf8e"_guid;

/// A structure keeps its pairs in the order of insertion. Keys are names (is_valid_name), trimmed of white
/// space and found in any case; the spelling kept is that of the first insertion.
///
/// Operations with a key throw ContextException ("IDS_VS_BADPROPNAME_ERROR") where the key is not a name.
/// Threads: one at a time.
class IValueStructure : public IValuePairs {
  public:
    static constexpr GUID IID = "816ba9b1-1b12-4123-aa84-b6893727695e"_guid;

    /// Adds the pair, or replaces the value of a key that is here. The pair shares the String of the key
    /// where nothing had to be trimmed.
    virtual void insert(const Value& key, Value value) = 0;
    /// Returns the value of a key, borrowed until the next change; null when the key is not here.
    [[nodiscard]] virtual const Value* find(const Value& key) const = 0;
    /// Returns the value of a name that is not trimmed, borrowed until the next change; null when it is not
    /// here or not a name.
    [[nodiscard]] virtual const Value* find(wstring_view name) const noexcept = 0;
    /// Removes the pair of the key. Returns false when the key is not here.
    virtual bool remove(const Value& key) = 0;

  protected:
    ~IValueStructure() = default;
};

/// Returns a new structure without keys. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueStructure> create_value_structure();

} // namespace core
