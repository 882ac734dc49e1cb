// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/errors.h>
#include <core/values/errors.h>

/// The failures of texts that hold tables and values. What is malformed is a ContextException, cells that do
/// not fit are a ConversionException.
namespace core::messages {

/// A list of columns with types is malformed; {0} is the item that is.
inline constexpr const char* kBadColumnList = "IDS_COLUMN_LIST_ITEM";
/// A row of a text in CSV has another number of fields than there are columns; {0} is the text, {1} the line,
/// {2} how many fields, {3} how many columns.
inline constexpr const char* kCsvFields = "IDS_CSV_FIELDS";
/// A row of a text in CSV is not UTF-8; {0} is the text, {1} the line.
inline constexpr const char* kCsvNotUtf8 = "IDS_CSV_NOT_UTF8";
/// A text in CSV has no row of titles; {0} is the text.
inline constexpr const char* kCsvNoHeader = "IDS_CSV_NO_HEADER";
/// A row of a text in CSV has a quote where none may stand; {0} is the text, {1} the line.
inline constexpr const char* kCsvQuote = "IDS_CSV_QUOTE";
/// A text is not JSON; {0} is the line, {1} the column, {2} why.
inline constexpr const char* kJsonMalformed = "IDS_JSON_MALFORMED";
/// The same for a text with a name; {0} is the name, {1} the line, {2} the column, {3} why.
inline constexpr const char* kJsonMalformedInFile = "IDS_JSON_MALFORMED_IN_FILE";
/// A JSON text does not hold a table; {0} is the number of the element that is not an object, from 1.
inline constexpr const char* kJsonNoTable = "IDS_JSON_NO_TABLE";
/// A number of a JSON text is too large or too small; {0} is the number.
inline constexpr const char* kJsonNumber = "IDS_JSON_NUMBER";
/// JSON is well-formed and still refused; {0} is the line, {1} the column, {2} why.
inline constexpr const char* kJsonRefused = "IDS_JSON_REFUSED";
/// The same for a text with a name; {0} is the name, {1} the line, {2} the column, {3} why.
inline constexpr const char* kJsonRefusedInFile = "IDS_JSON_REFUSED_IN_FILE";
/// Two keys would be one name in JSON; {0} is the name.
inline constexpr const char* kJsonSameNames = "IDS_JSON_SAME_NAMES";
/// JSON is nested too deep; {0} is how deep it may be.
inline constexpr const char* kJsonTooDeep = "IDS_JSON_TOO_DEEP";

} // namespace core::messages
