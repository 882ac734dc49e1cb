// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>

/// The failures of expressions over the rows of a table: malformed texts, unknown names, values that do not
/// go together.
namespace core {

namespace messages {

/// Where a failure stands in the text of an expression; {0} is the line, {1} the character there, {2} what is
/// wrong.
inline constexpr const char* kExpressionAt = "IDS_EXPRESSION_AT";
/// The same of a failure that came up in a row; {0} is the line of the text, {1} the character there, {2}
/// what is wrong, {3} the number of the row, from 1.
inline constexpr const char* kExpressionAtRow = "IDS_EXPRESSION_AT_ROW";
/// A function does not take a value; {0} is the function, {1} the number of the argument, from 1, {2} the
/// value.
inline constexpr const char* kExpressionArgument = "IDS_EXPRESSION_ARGUMENT";
/// A function takes another number of arguments; {0} is the function, {1} how many it takes, {2} how many
/// there are.
inline constexpr const char* kExpressionArgumentCount = "IDS_EXPRESSION_ARGUMENT_COUNT";
/// A character means nothing here; {0} is the character.
inline constexpr const char* kExpressionCharacter = "IDS_EXPRESSION_CHARACTER";
/// There is no such column, but one with a similar name; {0} is the name, {1} the similar one.
inline constexpr const char* kExpressionColumnNear = "IDS_EXPRESSION_COLUMN_NEAR";
/// Two values cannot be compared; {0} and {1} are their types.
inline constexpr const char* kExpressionCompared = "IDS_EXPRESSION_COMPARED";
/// What stands between single quotes is not a date. No parameters.
inline constexpr const char* kExpressionDate = "IDS_EXPRESSION_DATE";
/// The parts of an expression stand inside each other too deeply; {0} is how deep they may.
inline constexpr const char* kExpressionDepth = "IDS_EXPRESSION_DEPTH";
/// Something else is expected; {0} is what stands there, {1} what is expected.
inline constexpr const char* kExpressionExpected = "IDS_EXPRESSION_EXPECTED";
/// There is no such function; {0} is the name.
inline constexpr const char* kExpressionFunction = "IDS_EXPRESSION_FUNCTION";
/// There is no such function, but one with a similar name; {0} is the name, {1} the similar one.
inline constexpr const char* kExpressionFunctionNear = "IDS_EXPRESSION_FUNCTION_NEAR";
/// The text is too long; {0} is how many characters it may have.
inline constexpr const char* kExpressionLength = "IDS_EXPRESSION_LENGTH";
/// The name of a result is expected; {0} is what stands there.
inline constexpr const char* kExpressionName = "IDS_EXPRESSION_NAME";
/// What should be a condition is neither true nor false; {0} is its type.
inline constexpr const char* kExpressionNotCondition = "IDS_EXPRESSION_NOT_CONDITION";
/// A letter stands directly behind a number. No parameters.
inline constexpr const char* kExpressionNumber = "IDS_EXPRESSION_NUMBER";
/// A text or a name in brackets does not end; {0} is the character that is missing.
inline constexpr const char* kExpressionOpen = "IDS_EXPRESSION_OPEN";
/// A value, a column or a function is expected; {0} is what stands there.
inline constexpr const char* kExpressionOperand = "IDS_EXPRESSION_OPERAND";
/// An operation is not defined for two values; {0} is its sign, {1} and {2} are their types.
inline constexpr const char* kExpressionOperands = "IDS_EXPRESSION_OPERANDS";
/// A parameter was not given a value; {0} is its name.
inline constexpr const char* kExpressionParameter = "IDS_EXPRESSION_PARAMETER";

} // namespace messages

/// An expression that is malformed, that does not suit its table, or that cannot be computed in a row. The
/// message id and the parameters are those of the reason; the description says the place, too.
class CORE_API ExpressionException : public BasicException<ExpressionException> {
  public:
    /// The class id of ExpressionExceptionObject.
    static constexpr GUID kClassId = "4d5cf794-b58e-406a-adc0-39e7af0883c3"_guid;
    using BasicException::BasicException;
    /// Makes a failure with a copy of `description` for a place in the text of an expression. `row` is the
    /// position of the row in which it came up; nothing where no row is concerned.
    ExpressionException(const wstring& description, const wstring& reason, std::uint32_t line,
                        std::uint32_t column, std::optional<std::size_t> row = std::nullopt)
        : BasicException(description), reason_(reason), line_(static_cast<std::int32_t>(line)),
          column_(static_cast<std::int32_t>(column)), row_(row ? static_cast<std::int32_t>(*row) : -1) {}

    /// Returns what is wrong, without the place; borrowed as long as this exception.
    [[nodiscard]] const wstring& reason() const noexcept { return reason_; }
    /// Returns the line of the text, from 1; 0 where it is not known.
    [[nodiscard]] std::size_t line() const noexcept { return static_cast<std::size_t>(line_); }
    /// Returns the character in that line, from 1; 0 where it is not known.
    [[nodiscard]] std::size_t column() const noexcept { return static_cast<std::size_t>(column_); }
    /// Returns the position of the row in which the failure came up; nothing where it stands in the text
    /// alone.
    [[nodiscard]] std::optional<std::size_t> row() const noexcept {
        return row_ >= 0 ? std::optional(static_cast<std::size_t>(row_)) : std::nullopt;
    }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept {
        return std::tie(self.reason_, self.line_, self.column_, self.row_);
    }

    wstring reason_;
    std::int32_t line_ = 0;
    std::int32_t column_ = 0;
    std::int32_t row_ = -1;
};

/// The error object of ExpressionException.
using ExpressionExceptionObject = IExceptionObjectImpl<ExpressionException>;

} // namespace core
