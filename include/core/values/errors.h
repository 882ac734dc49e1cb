// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

#include <cstdint>
#include <tuple>

/// The failures of values and types. A value that cannot be made is a CtorException.
namespace core {

namespace messages {

/// A type makes no value of that many arguments; {0} is the type.
inline constexpr const char* kBadParameterCount = "IDS_CTORERROR_BADPARAMCOUNT";
/// Scripts cannot make values of a type; {0} is the type.
inline constexpr const char* kNoConstructor = "IDS_CTORERROR_NOCONSTRUCTOR";
/// There is no such type; {0} is the name or the id that was asked for.
inline constexpr const char* kTypeNotDefined = "IDS_TYPEERROR_TYPENOTDEFINED";
/// A value has no written form; {0} is its type.
inline constexpr const char* kNotSerializable = "IDS_VALUE_NOT_SERIALIZABLE";

} // namespace messages

/// A type that is not registered, or a value without the type that is needed.
class CORE_API TypeException : public BasicException<TypeException> {
  public:
    /// The class id of TypeExceptionObject.
    static constexpr GUID kClassId = "96a351f3-7957-48c1-80f4-80ac15b233da"_guid;
    using BasicException::BasicException;
};

/// A value or an object that was asked for what it cannot do: an unknown name, an argument of a wrong type or
/// value, an index out of bounds.
class CORE_API ContextException : public BasicException<ContextException> {
  public:
    /// The class id of ContextExceptionObject.
    static constexpr GUID kClassId = "f08d92f8-9eb2-4e19-9dd9-977d907cec2d"_guid;
    using BasicException::BasicException;
};

/// A value that cannot tell whether it is filled.
class CORE_API ValueIsFilledException : public BasicException<ValueIsFilledException> {
  public:
    /// The class id of ValueIsFilledExceptionObject.
    static constexpr GUID kClassId = "692be45e-09da-4328-9a57-bc5237164046"_guid;
    using BasicException::BasicException;
};

/// Two values that have no order between them.
class CORE_API ComparatorException : public BasicException<ComparatorException> {
  public:
    /// The class id of ComparatorExceptionObject.
    static constexpr GUID kClassId = "f3553ff2-2831-469a-a033-0c2abba6cd03"_guid;
    /// What went wrong.
    enum class Error : std::int32_t {
        none = 0,        ///< not said
        incomparable = 1 ///< no order is defined for values of these types
    };

    using BasicException::BasicException;
    /// Makes a failure with a copy of `description`. Takes a reference to `cause`, which may be null.
    explicit ComparatorException(Error error, const wstring& description = wstring(),
                                 IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error) {}
    /// Returns what went wrong.
    [[nodiscard]] Error error() const noexcept { return error_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.error_); }

    Error error_ = Error::none;
};

/// The error object of TypeException.
using TypeExceptionObject = IExceptionObjectImpl<TypeException>;
/// The error object of ContextException.
using ContextExceptionObject = IExceptionObjectImpl<ContextException>;
/// The error object of ValueIsFilledException.
using ValueIsFilledExceptionObject = IExceptionObjectImpl<ValueIsFilledException>;
/// The error object of ComparatorException.
using ComparatorExceptionObject = IExceptionObjectImpl<ComparatorException>;

} // namespace core
