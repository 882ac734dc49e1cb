// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/exchange/table_view.h>
#include <core/runtime/locale.h>
#include <core/runtime/threads/stop_token.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>
#include <core/tables/table.h>

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

/// Value tables as comma-separated values. Fields in quotes may hold delimiters, line breaks and doubled
/// quotes; blanks belong to their fields; a line ends with LF, CR or both; blank lines are skipped.
namespace core {

/// How a text in CSV is read. Whatever is not given is found.
struct CsvReadOptions {
    /// What stands between fields: any unit of ASCII except quotes and line breaks. Found among comma,
    /// semicolon, tab and "|" when not given.
    std::optional<char> delimiter{};
    /// The encoding of the bytes. Found when not given; where that is a guess, the text must be UTF-8.
    std::optional<Encoding> encoding{};
    /// Columns by name, each with or without its type: "Day Date, Price Number(10,2)". The others get the
    /// narrowest type that all their cells have: Number, Date, Boolean, else String.
    wstring columns{};
    /// Whether the first row holds the titles. When not given, it does unless `columns` names columns
    /// without any type.
    std::optional<bool> headers{};
    /// Whose forms numbers and dates have, beside the ISO forms of dates; the plain forms when not given.
    std::optional<Locale> locale{};
    bool strict = false;      ///< whether a quote inside a field without quotes is an error, not a character
    Losses* losses = nullptr; ///< receives what does not fit; null: reading throws when something does not
    StopToken stop{};         ///< is asked a hundred times a second or more often; ThreadDeath ends reading
    std::uint64_t length = 0; ///< how many bytes there are, as far as it is known: memory is taken at once
    std::function<void(std::uint64_t)> progress{}; ///< is told how many bytes were read, from time to time
};

/// How a table is written.
struct CsvWriteOptions {
    char delimiter = ','; ///< as in CsvReadOptions
    Encoding encoding{};  ///< of the bytes; UTF-8 when not given
    StopToken stop{};     ///< is asked now and then; ThreadDeath ends writing
};

/// Returns whether a unit may stand between fields: any of ASCII except quotes and line breaks.
[[nodiscard]] CORE_API bool is_csv_delimiter(wchar unit) noexcept;

/// Returns the table in the bytes that `bytes` brings; messages call it `name`. Titles become names: each
/// character that is not a letter, a digit or "_" becomes "_", and a name that is taken gets a number. An
/// empty cell of a column that is not of texts is Undefined. The table keeps its losses, too.
///
/// Throws ContextException, with name and line, for a row that is malformed or, unless losses are wanted, has
/// another number of fields than there are columns; ConversionException for cells that do not fit a type that
/// was given, with the first of them; ConverterException for a fault of encoding, and what `bytes` throws.
[[nodiscard]] CORE_API Table read_csv(ByteReader bytes, wstring_view name,
                                      const CsvReadOptions& options = {});
/// Returns the table in a file, a path or a URL in UTF-8. Throws as read_csv() does, and FileException.
[[nodiscard]] CORE_API Table load_csv(std::string_view file, CsvReadOptions options = {});

/// Hands the names of the columns and the cells of the rows to `write`, in pieces; messages call the text
/// `name`. Undefined and Null are empty, numbers plain, Booleans True and False, dates in the ISO form, a
/// midnight without its time: in every language the same, and what is read back is equal. `table` is a value
/// table, tree or list, of which a tree begins with a column Level, 0 for topmost rows. Throws
/// ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any other value, ConverterException for what the
/// encoding does not have, and what `write` throws.
CORE_API void write_csv(const ByteWriter& write, const Value& table, wstring_view name,
                        const CsvWriteOptions& options = {});
/// Writes a table to a stream of bytes, as write_csv() does; a stream that does not take them becomes bad.
CORE_API void save_csv(std::ostream& out, const InterfacePtr<IValueTable>& table,
                       const CsvWriteOptions& options = {});
/// Makes a table the content of a file, a path in UTF-8; the old file stays until the new one is whole.
/// Throws as write_csv() does, and FileException.
CORE_API void save_csv(const std::string& file, const Value& table, const CsvWriteOptions& options = {});

} // namespace core
