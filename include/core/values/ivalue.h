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
    static constexpr GUID IID = "0e4e05a9-96d4-450b-a013-df113a84cf58"_guid;

    /// The value's type object, borrowed; values of one type have one type object.
    [[nodiscard]] virtual IType* getType() const noexcept = 0;
    /// The payload inside the object: of a Boolean a `bool`, of a Number a `Numeric`, of a
    /// String a `wstring_view` (followed by a null unit), of a Date a `Date`, of a Type a
    /// `Type`; null for every other value.
    [[nodiscard]] virtual const void* getDataPtr() const noexcept = 0;

    /// The readings: true and the result when the value has one, else false and false, zero, the empty date.
    /// Every value has a string reading, its presentation, which may be empty.
    virtual bool getBoolean(bool& out) const = 0;
    virtual bool getNumeric(Numeric& out) const = 0;
    virtual bool getString(wstring& out) const = 0;
    virtual bool getDate(Date& out) const = 0;

    /// Values of different types are never equal. `other` may be null, which nothing equals.
    [[nodiscard]] virtual bool isEqual(const IValue* other) const noexcept = 0;
    /// Equal values have equal hashes.
    [[nodiscard]] virtual std::int32_t hashCode() const noexcept = 0;

  protected:
    ~IValue() = default;
};

/// Implemented by primitive values: writes the payload, without the type tag.
class IValueSerialize : public IUnknown {
  public:
    static constexpr GUID IID = "3eb50ec0-7383-47d7-9ce1-783827c32bf9"_guid;
    virtual void serialize(IOutPersistenceStorage* storage) const = 0;

  protected:
    ~IValueSerialize() = default;
};

/// Implemented by Numbers, which are empty when zero, and Dates, which are empty
/// when they are the empty date.
class IValueIsEmpty : public IUnknown {
  public:
    static constexpr GUID IID = "3f29105f-d8bf-43df-a07b-39d8e2b8639a"_guid;
    [[nodiscard]] virtual bool isEmpty() const noexcept = 0;

  protected:
    ~IValueIsEmpty() = default;
};

/// Implemented by what is made for the class id of values that exist once and for all: finds the one that was
/// written. Such values are not made and read, as other persistable objects are.
class IValueLoader : public IUnknown {
  public:
    static constexpr GUID IID = "46e5a1ec-a3b3-4a7c-9de0-b92c746d88f2"_guid;
    /// ListStreamException for a body that names none.
    [[nodiscard]] virtual GenericValue load(IInPersistenceStorage* storage) = 0;

  protected:
    ~IValueLoader() = default;
};

/// The type of a value as an object: there is one for every type, alive as long as the library.
class IType : public IUnknown {
  public:
    static constexpr GUID IID = "dbc8bd35-85c2-4afe-abbd-0e8527404eb7"_guid;

    /// 0 ... 5 and 1000 for the primitive types (Type::Code), -1 for all others.
    [[nodiscard]] virtual std::int32_t code() const noexcept = 0;
    /// The type's id.
    [[nodiscard]] virtual const GUID& id() const noexcept = 0;
    /// The class id of the objects that have this type; the null id for the primitive types.
    [[nodiscard]] virtual const GUID& valueClass() const noexcept = 0;
    /// The name by which scripts know the type; null for an alias above 1.
    [[nodiscard]] virtual const wchar* name(int alias) const noexcept = 0;
    /// What the user reads, in the language of the thread's messages.
    [[nodiscard]] virtual wstring presentation() const = 0;

    /// How many arguments construct() takes at the least and at the most; no limit is -1. Both are -1 when
    /// scripts cannot construct values of this type.
    struct Arguments {
        std::int32_t least;
        std::int32_t most;
    };
    [[nodiscard]] virtual Arguments arguments() const noexcept = 0;
    /// A new value from the arguments. CtorException when there is none,
    /// ContextException for a wrong argument.
    [[nodiscard]] virtual GenericValue construct(std::span<GenericValue> arguments) = 0;

  protected:
    ~IType() = default;
};

} // namespace core
