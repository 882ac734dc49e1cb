// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/errors.h>

/// The failures of tables, trees and lists; most travel in a ContextException.
namespace core {

namespace messages {

/// A value list would hold itself. No parameters.
inline constexpr const char* kListHoldsItself = "IDS_VL_CYCLING";
/// A comparison object changed the table that was being sorted. No parameters.
inline constexpr const char* kChangedWhileSorting = "IDS_VT_CHANGED_WHILE_SORTING";
/// A column cannot have that name; {0} is the name.
inline constexpr const char* kBadColumnName = "IDS_VT_COLUMNCODE_ERROR";
/// A column occurs twice, or its name is taken; {0} is the name.
inline constexpr const char* kColumnTwice = "IDS_VT_COLUMNS_NOT_UNIQUE";
/// A column is both grouped by and totalled; {0} is its name.
inline constexpr const char* kGroupedAndTotalled = "IDS_VT_GROUPBY_INTERSECT_ERROR";
/// GroupBy would leave a table without columns. No parameters.
inline constexpr const char* kGroupByNothing = "IDS_VT_GROUPBY_NO_COLUMN_ERROR";
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

/// The error object of DataSourceException.
using DataSourceExceptionObject = IExceptionObjectImpl<DataSourceException>;
/// The error object of PivotSourceException.
using PivotSourceExceptionObject = IExceptionObjectImpl<PivotSourceException>;

} // namespace core
