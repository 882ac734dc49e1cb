// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/process.h>
#include <core/values/generic_value.h>

/// The automation system for C++ code that does not include its headers: an `IUnknown*` or a `VARIANT*` of it
/// is a `void*` here.
namespace core::com {

/// What becomes of numbers that no exact form holds.
enum class ComNumbers {
    refuse,  ///< a COMException
    text,    ///< a text that reads back to the same number
    doubles, ///< VT_R8 for every number that is not a small whole one, where it reads back to the same number
};

/// What becomes of arrays, binary data and tables.
enum class ComArrays {
    objects, ///< objects, which stay what they are
    copies,  ///< safe arrays with the same content
};

/// How values are handed over.
struct ComOptions {
    ComNumbers numbers = ComNumbers::refuse; ///< for numbers
    ComArrays arrays = ComArrays::objects;   ///< for arrays, binary data and tables
};

/// Automation objects as values and values as automation objects. A service. All throw COMException for what
/// automation refuses, and TypeException for a value that is not an automation object.
///
/// Threads: an object is used on the thread that it came from.
class ICOMTypeService : public IUnknown {
  public:
    static constexpr GUID IID = "b9b2ca7e-1e85-4e4b-8432-b2764bda7f3a"_guid; ///< the interface's id

    /// Returns a new automation object of the class with a name ("Scripting.Dictionary") or an id, with or
    /// without braces.
    [[nodiscard]] virtual Value create(wstring_view nameOrId) = 0;
    /// Returns an automation object, given as its `IUnknown*`, as a value; one of ours is what it was. Null
    /// is the object that is nothing.
    [[nodiscard]] virtual Value fromUnknown(void* unknown) = 0;
    /// Returns the `IDispatch*` of a value that is an object or a type, with a reference that the caller
    /// owns.
    [[nodiscard]] virtual void* toDispatch(const Value& value) = 0;
    /// Returns the value of a `VARIANT*`.
    [[nodiscard]] virtual Value fromVariant(const void* variant) = 0;
    /// Sets a `VARIANT*`, which must be empty, to a value.
    virtual void toVariant(const Value& value, void* variant, const ComOptions& options) = 0;
    /// Returns the type library that a file, or the object of a value, has, as a value with the properties
    /// Name, Description, Version, Id and Types.
    [[nodiscard]] virtual Value typeLibrary(const Value& fileOrObject) = 0;
    /// Writes a type library of the types that scripts of this process can make into a file.
    virtual void writeTypeLibrary(wstring_view file) = 0;

    /// Returns how values are handed to the objects of others, borrowed, to be changed.
    [[nodiscard]] virtual ComOptions& forArguments() noexcept = 0;
    /// Returns how values are handed to those who call our objects, borrowed, to be changed.
    [[nodiscard]] virtual ComOptions& forResults() noexcept = 0;

  protected:
    ~ICOMTypeService() = default;
};

} // namespace core::com
