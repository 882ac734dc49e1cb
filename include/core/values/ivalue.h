// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>

#include <cstdint>
#include <span>

namespace core {

class Date;
class GenericValue;
class IInPersistenceStorage;
class IOutPersistenceStorage;
class IType;
class Numeric;

/// The universal value: everything that a script sees is an object behind this interface.
///
/// Threads: primitive values never change and may be read from any thread; an object is
/// used by one thread at a time.
class alignas(8) IValue : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "0e4e05a9-96d4-450b-a013-df113a84cf58"_guid;

    /// Returns the value's type object, borrowed as long as the value lives. Values of one type have one
    /// type object.
    [[nodiscard]] virtual IType* getType() const noexcept = 0;
    /// Returns the payload inside the object, borrowed as long as the object lives: of a Boolean a `bool`, of
    /// a Number a `Numeric`, of a String a `wstring_view` (followed by a null unit), of a Date a `Date`, of a
    /// Type a `Type`; null for every other value.
    [[nodiscard]] virtual const void* getDataPtr() const noexcept = 0;

    /// Sets the Boolean reading and returns true; sets false and returns false when the value has none.
    virtual bool getBoolean(bool& out) const = 0;
    /// Sets the numeric reading and returns true; sets zero and returns false when the value has none.
    virtual bool getNumeric(Numeric& out) const = 0;
    /// Sets the presentation, which may be empty, and returns true.
    virtual bool getString(wstring& out) const = 0;
    /// Sets the date reading and returns true; sets the empty date and returns false when the value has none.
    virtual bool getDate(Date& out) const = 0;

    /// Returns whether the values are equal. Values of different types never are, and null `other` equals
    /// nothing.
    [[nodiscard]] virtual bool isEqual(const IValue* other) const noexcept = 0;
    /// Returns a hash; equal values have equal ones.
    [[nodiscard]] virtual std::int32_t hashCode() const noexcept = 0;

  protected:
    ~IValue() = default;
};

/// Implemented by primitive values: what they hold, in the brace-list form.
class IValueSerialize : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "3eb50ec0-7383-47d7-9ce1-783827c32bf9"_guid;
    /// Writes the payload to the storage's list, without the type tag.
    virtual void serialize(IOutPersistenceStorage* storage) const = 0;

  protected:
    ~IValueSerialize() = default;
};

/// Implemented by Numbers, which are empty when zero, and Dates, which are empty
/// when they are the empty date.
class IValueIsEmpty : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "3f29105f-d8bf-43df-a07b-39d8e2b8639a"_guid;
    /// Returns whether the Number is zero or the Date is the empty date.
    [[nodiscard]] virtual bool isEmpty() const noexcept = 0;

  protected:
    ~IValueIsEmpty() = default;
};

/// Implemented by what is made for the class id of values that exist once and for all: finds the one that was
/// written. Such values are not made and read, as other persistable objects are.
class IValueLoader : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "46e5a1ec-a3b3-4a7c-9de0-b92c746d88f2"_guid;
    /// Reads the body and returns the value that it names. Throws ListStreamException when it names none.
    [[nodiscard]] virtual GenericValue load(IInPersistenceStorage* storage) = 0;

  protected:
    ~IValueLoader() = default;
};

/// The type of a value as an object: there is one for every type, alive as long as its module is loaded.
class IType : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "dbc8bd35-85c2-4afe-abbd-0e8527404eb7"_guid;

    /// Returns 0 to 5 or 1000 for the primitive types (Type::Code), -1 for all others.
    [[nodiscard]] virtual std::int32_t code() const noexcept = 0;
    /// Returns the type's id.
    [[nodiscard]] virtual const GUID& id() const noexcept = 0;
    /// Returns the class id of the objects that have this type; the null id for the primitive types.
    [[nodiscard]] virtual const GUID& valueClass() const noexcept = 0;
    /// Returns the name by which scripts know the type, English for alias 0 and Russian for 1; null above
    /// that.
    [[nodiscard]] virtual const wchar* name(int alias) const noexcept = 0;
    /// Returns what the user reads, in the language of the thread's messages.
    [[nodiscard]] virtual wstring presentation() const = 0;

    /// How many arguments construct() takes. Both are -1 when scripts cannot construct values of this type.
    struct Arguments {
        std::int32_t least; ///< at the least
        std::int32_t most;  ///< at the most; -1 means no limit
    };
    /// Returns how many arguments construct() takes.
    [[nodiscard]] virtual Arguments arguments() const noexcept = 0;
    /// Returns a new value from the arguments. Throws CtorException when scripts cannot make one or the count
    /// is wrong, and ContextException for a wrong argument.
    [[nodiscard]] virtual GenericValue construct(std::span<GenericValue> arguments) = 0;

  protected:
    ~IType() = default;
};

} // namespace core
