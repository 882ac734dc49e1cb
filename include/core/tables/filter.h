// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_value.h>
#include <core/tables/expression_errors.h>
#include <core/tables/expression_parameter.h>
#include <core/tables/value_table.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Filters: which rows of a table are meant. A filter is a value, made of the text of a condition over the
/// columns of a row or of parts, and is looked up in a table only when it is used:
///
///     find_rows(sales, u"Price > 10 And Region In (\"North\", \"Юг\")");
///     keep_rows(sales, Filter(u"Day >= &Begin", {{u"Begin", Date(2024, 1, 1)}}) && !Filter(u"Paid"));
///
/// docs/tables.md describes the language of conditions. Scripts know filters as "Filter".
namespace core {

struct ExpressionNode;
class IInPersistenceStorage;
class IOutPersistenceStorage;

/// The class id of "Filter".
inline constexpr GUID kFilterClass = "5c1cedd2-3b0c-4473-81a5-40b6bcf9f580"_guid;
/// The type id of "Filter".
inline constexpr GUID kFilterType = "f464d65a-0d26-42e9-94ed-48de11ce7418"_guid;

/// A condition over the rows of a table. A value type that never changes; copies share what they hold.
class CORE_API Filter {
  public:
    /// Makes the filter that all rows pass.
    Filter() noexcept = default;
    /// Makes a filter of the text of a condition, which writes its parameters as "&Name". A blank text is
    /// passed by all rows. Throws ExpressionException for a text that is malformed.
    Filter(wstring_view text, const ExpressionParameters& parameters = {});
    /// Makes a filter of a text. Throws as the constructor above does.
    Filter(const wstring& text, const ExpressionParameters& parameters = {})
        : Filter(wstring_view(text), parameters) {}
    /// Makes a filter of a text that a null unit ends. Throws as the constructor above does.
    Filter(const wchar* text, const ExpressionParameters& parameters = {})
        : Filter(wstring_view(text), parameters) {}
    /// Makes a filter of a text in UTF-8. Throws as the constructor above does, and ConverterException for a
    /// text that is not UTF-8.
    Filter(std::string_view text, const ExpressionParameters& parameters = {});
    /// Makes a filter of a text in UTF-8. Throws as the constructor above does.
    Filter(const std::string& text, const ExpressionParameters& parameters = {})
        : Filter(std::string_view(text), parameters) {}
    /// Makes a filter of a text in UTF-8 that a null character ends. Throws as the constructor above does.
    Filter(const char* text, const ExpressionParameters& parameters = {})
        : Filter(std::string_view(text), parameters) {}
    /// Makes a filter that compares a column with a value. The comparison is one of =, <>, <, <=, >, >=,
    /// Like, In, Between, or Not with one of the last three, in either language; In takes an array, a value
    /// list or a standard period, whose dates are those of the day on which the filter is used; Between takes
    /// an array of two values. Throws ExpressionException for another comparison.
    [[nodiscard]] static Filter where(wstring_view column, wstring_view comparison, const Value& value);

    /// Returns the filter that the rows pass that pass both.
    friend CORE_API Filter operator&&(const Filter& a, const Filter& b);
    /// Returns the filter that the rows pass that pass either.
    friend CORE_API Filter operator||(const Filter& a, const Filter& b);
    /// Returns the opposite. A row in which the condition is unknown passes neither of the two.
    friend CORE_API Filter operator!(const Filter& filter);

    /// Returns whether all rows pass, because there is no condition.
    [[nodiscard]] bool isEmpty() const noexcept { return condition_ == nullptr; }
    /// Returns the condition in its one written form, with English words and the values of parameters; the
    /// empty text for an empty filter.
    [[nodiscard]] wstring text() const;
    /// Returns whether the conditions are the same in writing. Two conditions that mean the same and are
    /// written in different ways are different.
    friend CORE_API bool operator==(const Filter& a, const Filter& b);

    /// Writes the filter as one list. Throws ContextException for a value in it that cannot be written.
    void serialize(IOutPersistenceStorage* storage) const;
    /// Reads what serialize() wrote. Throws ListStreamException for anything else.
    [[nodiscard]] static Filter deserialize(IInPersistenceStorage* storage);

    /// Returns the condition, borrowed as long as the filter; null for an empty filter. For the library.
    [[nodiscard]] const ExpressionNode* condition() const noexcept { return condition_.get(); }

  private:
    explicit Filter(std::shared_ptr<const ExpressionNode> condition) noexcept
        : condition_(std::move(condition)) {}

    std::shared_ptr<const ExpressionNode> condition_;
};

// All of these look into the indexes of the table. They throw ExpressionException for a column that is not
// there and for values that cannot be compared, and ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for a
// table that is not one of this library. If they throw, nothing has changed.

/// Returns the positions of the rows that pass, in order.
[[nodiscard]] CORE_API std::vector<std::size_t> find_rows(const IValueTableBaseRO& table,
                                                          const Filter& filter);
/// Returns a new table with the columns of another one and those of its rows that pass.
[[nodiscard]] CORE_API InterfacePtr<IValueTable> copy_rows(const IValueTableBaseRO& table,
                                                           const Filter& filter);
/// Returns the sum of the numbers of a column, or of an expression as "Price * Quantity", over the rows that
/// pass; an aggregate as "Max(Price)" gives what it says. Without any number the result is 0 in a column of
/// Numbers alone, else Undefined. Throws ContextException ("IDS_VT_TOTAL_OF_TEXTS") for texts, too.
[[nodiscard]] CORE_API GenericValue total_rows(const IValueTableBaseRO& table, wstring_view expression,
                                               const Filter& filter = {});
/// Keeps the rows that pass and deletes the others. Returns how many were deleted.
CORE_API std::size_t keep_rows(IValueTable& table, const Filter& filter);
/// Deletes the rows that pass. Returns how many these were.
CORE_API std::size_t delete_rows(IValueTable& table, const Filter& filter);

/// A filter, a String with a condition, or a Structure of columns and the values that they equal.
template <>
struct NativeValue<Filter> {
    /// Returns the filter.
    static CORE_API Filter from(const Value& value, ValueReceiver receiver);
    /// Returns a Filter as scripts know it.
    static CORE_API Value to(const Filter& filter);
    /// Returns the id of Filter.
    static const GUID* type() noexcept { return &kFilterType; }
};

} // namespace core
