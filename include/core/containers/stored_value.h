// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/objects/enumeration.h>
#include <core/values/value.h>

#include <cstdint>

/// How values stand in containers.
namespace core {

inline constexpr GUID kStoredValueClass = "161b8ba0-d574-4c5d-885a-dd579ab7996c"_guid; ///< class id
inline constexpr GUID kStoredValueType = "7c8b0087-aa43-45b4-9752-a23da2bc9c2c"_guid;  ///< type id

/// How a container keeps a value. Reading finds out which it was.
enum class ValueForm : std::int32_t {
    text,    ///< a brace list
    compact, ///< the compact form: smaller and faster
    parts,   ///< the compact form, each StoredValue inside in an inner file of its own
};
/// Returns the enumeration `ValueForms` (`ФормыЗначений`) of scripts, borrowed for ever.
[[nodiscard]] CORE_API Enumeration* script_enumeration(ValueForm) noexcept;

/// A value inside a value that asks for a file of its own, which scripts know as "StoredValue". Kept in
/// parts, it is read from its inner file when it is first touched, and two places that hold one such object
/// hold one again. In any other form it stands where it is held, as all objects do.
///
/// An object that has not been touched needs its container, which it keeps open, and its inner file: what was
/// removed or replaced meanwhile cannot be read any more. Objects that were read together are used by one
/// thread at a time.
class IStoredValue : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "13848da0-619c-4918-85c1-84ef75436e05"_guid;

    /// Returns the value, borrowed until it is set; reads it first where that has not happened yet. Throws
    /// StorageException when its inner file cannot be read, and ContextException when that holds no value.
    [[nodiscard]] virtual const Value& value() const = 0;
    /// Makes it hold another value.
    virtual void setValue(Value value) = 0;
    /// Returns whether the value is in memory.
    [[nodiscard]] virtual bool isLoaded() const noexcept = 0;

  protected:
    ~IStoredValue() = default;
};

/// Returns a new StoredValue that holds `value`. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IStoredValue> create_stored_value(Value value);

} // namespace core
