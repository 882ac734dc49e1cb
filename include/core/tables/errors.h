// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/errors.h>
#include <core/tables/expression_errors.h>
#include <core/tables/losses.h>

#include <tuple>

/// The failures of tables, trees and lists; most travel in a ContextException.
namespace core {

namespace messages {

/// There is no such aggregate; {0} is its name.
inline constexpr const char* kAggregateUnknown = "IDS_VT_AGGREGATE_UNKNOWN";
/// An item of a list should be a function with its arguments; {0} is the item.
inline constexpr const char* kCallMalformed = "IDS_VT_CALL_MALFORMED";
/// A column has more different values than may become columns; {0} is its name, {1} how many may.
inline constexpr const char* kPivotColumns = "IDS_VT_PIVOT_COLUMNS";
/// A rank needs an order of the rows; {0} is the name of the rank.
inline constexpr const char* kRankWithoutOrder = "IDS_VT_RANK_WITHOUT_ORDER";
/// There is no such window function; {0} is its name.
inline constexpr const char* kWindowUnknown = "IDS_VT_WINDOW_UNKNOWN";
/// A value list would hold itself. No parameters.
inline constexpr const char* kListHoldsItself = "IDS_VL_CYCLING";
/// An item of a list did not keep what it was given; {0} is the item's position from 1, {1} why.
inline constexpr const char* kItemLost = "IDS_VL_ITEM_LOST";
/// A comparison object changed the table that was being sorted. No parameters.
inline constexpr const char* kChangedWhileSorting = "IDS_VT_CHANGED_WHILE_SORTING";
/// A cell did not keep what it was given; {0} is the row's position from 1, {1} the column, {2} why.
inline constexpr const char* kCellLost = "IDS_VT_CELL_LOST";
/// The same for a cell of a file; {0} is the file, {1} the line, {2} the column, {3} why.
inline constexpr const char* kCellOfFileLost = "IDS_VT_CELL_OF_FILE_LOST";
/// The same for a cell of a text without a name; {0} is the line, {1} the column, {2} why.
inline constexpr const char* kCellOfLineLost = "IDS_VT_CELL_OF_LINE_LOST";
/// More cells were lost than a message names; {0} is how many more.
inline constexpr const char* kMoreCellsLost = "IDS_VT_MORE_CELLS_LOST";
/// A column with numbers and other values cannot be totalled; {0} is the column, {1} one of the others, {2}
/// its row, from 1.
inline constexpr const char* kTotalOfMixed = "IDS_VT_TOTAL_OF_MIXED";
/// A column of texts cannot be totalled; {0} is the column, {1} the first text that is not a number, or else
/// the first one, {2} its row, from 1.
inline constexpr const char* kTotalOfTexts = "IDS_VT_TOTAL_OF_TEXTS";
/// A column cannot have that name; {0} is the name.
inline constexpr const char* kBadColumnName = "IDS_VT_COLUMNCODE_ERROR";
/// What is computed needs a name, as a column has one; {0} is how it is written.
inline constexpr const char* kColumnUnnamed = "IDS_VT_COLUMN_UNNAMED";
/// A column occurs twice, or its name is taken; {0} is the name.
inline constexpr const char* kColumnTwice = "IDS_VT_COLUMNS_NOT_UNIQUE";
/// A column is both grouped by and totalled; {0} is its name.
inline constexpr const char* kGroupedAndTotalled = "IDS_VT_GROUPBY_INTERSECT_ERROR";
/// GroupBy would leave a table without columns. No parameters.
inline constexpr const char* kGroupByNothing = "IDS_VT_GROUPBY_NO_COLUMN_ERROR";
/// A list of what a join is on has another form; {0} is the list.
inline constexpr const char* kJoinCondition = "IDS_VT_JOIN_CONDITION";
/// A join would have two columns of one name; {0} is the name.
inline constexpr const char* kJoinNameTaken = "IDS_VT_JOIN_NAME_TAKEN";
/// A join that only chooses rows was given columns to add; {0} are the columns.
inline constexpr const char* kJoinAddsNothing = "IDS_VT_JOIN_ADDS_NOTHING";
/// Two columns that are compared hold values of different types; {0} and {1} are the columns, {2} and {3} two
/// of the types.
inline constexpr const char* kNeverEqual = "IDS_VT_NEVER_EQUAL";
/// Two tables that are taken as sets have different columns; {0} is a column that one of them lacks.
inline constexpr const char* kColumnsDiffer = "IDS_VT_COLUMNS_DIFFER";
/// A result would have more rows than a table can; {0} is how many.
inline constexpr const char* kTooManyRows = "IDS_VT_TOO_MANY_ROWS";
/// An element of an array cannot be a row; {0} is its position from 1, {1} its type.
inline constexpr const char* kNotARow = "IDS_VT_NO_ROW";
/// A row is given more values than there are columns; {0} is its position from 1, {1} the values, {2} the
/// columns.
inline constexpr const char* kMoreValues = "IDS_VT_MORE_VALUES";
/// A row would be below itself; {0} is its position from 1, {1} its key.
inline constexpr const char* kTreeCircle = "IDS_VT_TREE_CIRCLE";
/// Two rows have one key; {0} is the position of the second from 1, {1} the key, {2} the column.
inline constexpr const char* kTreeKeyTwice = "IDS_VT_TREE_KEY_TWICE";
/// A row cannot have that level; {0} is its position from 1, {1} the level, {2} the column, {3} the largest
/// level that it can have.
inline constexpr const char* kTreeLevel = "IDS_VT_TREE_LEVEL";
/// A row has no key; {0} is its position from 1, {1} the column.
inline constexpr const char* kTreeNoKey = "IDS_VT_TREE_NO_KEY";
/// A row is below one that is not there; {0} is its position from 1, {1} the key that is missing, {2} the
/// column of keys.
inline constexpr const char* kTreeNoParent = "IDS_VT_TREE_NO_PARENT";
/// A row has no path; {0} is its position from 1, {1} the column.
inline constexpr const char* kTreeNoPath = "IDS_VT_TREE_NO_PATH";
/// A name in a path holds what separates names; {0} is the position of its row from 1, {1} the name, {2} the
/// column, {3} the separator.
inline constexpr const char* kTreeSeparator = "IDS_VT_TREE_SEPARATOR";
/// A table has no such column; {0} is what was asked for.
inline constexpr const char* kUnknownColumn = "IDS_VT_UNKNOWN_COLUMN_ERROR";
/// An index does not belong to the table. No parameters.
inline constexpr const char* kUnknownIndex = "IDS_VT_UNKNOWN_INDEX_ERROR";
/// A row was deleted, or does not belong to the rows. No parameters.
inline constexpr const char* kUnknownRow = "IDS_VT_UNKNOWN_ROW_ERROR";

} // namespace messages

/// A source of data that could not be opened or read.
class CORE_API DataSourceException : public BasicException<DataSourceException> {
  public:
    /// The class id of DataSourceExceptionObject.
    static constexpr GUID kClassId = "a1c2eb69-786f-47ac-9bda-d151db42d13d"_guid;
    using BasicException::BasicException;
};

/// A source of data that cannot be totalled by its dimensions.
class CORE_API PivotSourceException : public BasicException<PivotSourceException> {
  public:
    /// The class id of PivotSourceExceptionObject.
    static constexpr GUID kClassId = "34212dd6-31c7-4306-bc16-c1b43c60d8fa"_guid;
    using BasicException::BasicException;
};

/// Cells that could not keep what they were given, where nobody asked to go on. The description names the
/// first of them, a line each; the fields are those of the very first.
class CORE_API ConversionException : public BasicException<ConversionException> {
  public:
    /// The class id of ConversionExceptionObject.
    static constexpr GUID kClassId = "a991ffc6-67fd-4d6a-aa90-c268ef62712b"_guid;
    using BasicException::BasicException;
    /// Makes a failure with a copy of `description` for losses, at least one, the first of which is `first`.
    ConversionException(const wstring& description, const Loss& first, std::uint64_t count)
        : BasicException(description), column_(first.column), text_(first.text), reason_(first.reason),
          row_(static_cast<std::int32_t>(first.row)), line_(static_cast<std::int32_t>(first.line)),
          count_(static_cast<std::int32_t>(count)) {}

    /// Returns the position of the first row that lost something.
    [[nodiscard]] std::size_t row() const noexcept { return static_cast<std::size_t>(row_); }
    /// Returns the line of its file where that row begins, from 1; 0 where there is no file.
    [[nodiscard]] std::uint64_t line() const noexcept { return static_cast<std::uint64_t>(line_); }
    /// Returns the name of its column, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& column() const noexcept { return column_; }
    /// Returns the text that was not kept, borrowed: valid as long as this exception.
    [[nodiscard]] const wstring& text() const noexcept { return text_; }
    /// Returns why it was not kept.
    [[nodiscard]] LossReason reason() const noexcept { return reason_; }
    /// Returns how many cells lost something.
    [[nodiscard]] std::uint64_t count() const noexcept { return static_cast<std::uint64_t>(count_); }

  private:
    template <class>
    friend class IExceptionObjectImpl;
    static auto fields(auto& self) noexcept {
        return std::tie(self.column_, self.text_, self.reason_, self.row_, self.line_, self.count_);
    }

    wstring column_;
    wstring text_;
    LossReason reason_ = LossReason::notOfType;
    std::int32_t row_ = 0;
    std::int32_t line_ = 0;
    std::int32_t count_ = 0;
};

/// The error object of ConversionException.
using ConversionExceptionObject = IExceptionObjectImpl<ConversionException>;
/// The error object of DataSourceException.
using DataSourceExceptionObject = IExceptionObjectImpl<DataSourceException>;
/// The error object of PivotSourceException.
using PivotSourceExceptionObject = IExceptionObjectImpl<PivotSourceException>;

} // namespace core
