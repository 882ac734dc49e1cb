// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exception.h>

#include <cstdint>
#include <tuple>

/// The failures of exact numbers.
namespace core {

namespace messages {

/// A division by zero. No parameters.
inline constexpr const char* kDivideByZero = "IDS_NUMERROR_DIVIDEBYZERO";
/// A negative number to a power that has no exact result. No parameters.
inline constexpr const char* kNegativePower = "IDS_NUMERROR_NEGATIVEPOW";
/// A floating-point operand that is not a number. No parameters.
inline constexpr const char* kNotANumber = "IDS_NUMERROR_NOTANUMBER";
/// A result that is too large, or an infinite operand. No parameters.
inline constexpr const char* kNumericOverflow = "IDS_NUMERROR_OVERFLOW";

} // namespace messages

/// Arithmetic without a result.
class CORE_API NumericException : public BasicException<NumericException> {
  public:
    /// The class id of NumericExceptionObject.
    static constexpr GUID kClassId = "e62f19b5-a855-418f-a162-77d8571e9ddc"_guid;
    /// What went wrong.
    enum class Error : std::int32_t {
        none = 0,          ///< not said
        divideByZero = 1,  ///< kDivideByZero
        negativePower = 2, ///< kNegativePower
        overflow = 3,      ///< kNumericOverflow
        notANumber = 4     ///< kNotANumber
    };

    using BasicException::BasicException;
    /// Makes a failure with the message of `error`. Takes a reference to `cause`, which may be null.
    explicit NumericException(Error error, IExceptionObject* cause = nullptr);
    /// Makes a failure with a message of its own. Takes a reference to `cause`, which may be null.
    NumericException(Error error, const wstring& description, IExceptionObject* cause = nullptr)
        : BasicException(description, cause), error_(error) {}
    /// Returns what went wrong.
    [[nodiscard]] Error error() const noexcept { return error_; }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept { return std::tie(self.error_); }

    Error error_ = Error::none;
};

/// The error object of NumericException.
using NumericExceptionObject = IExceptionObjectImpl<NumericException>;

} // namespace core
