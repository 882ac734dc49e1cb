// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_file.h>

#include <cstdint>
#include <functional>
#include <span>

/// Comma-separated values, as RFC 4180 has them: fields in quotes may hold delimiters, line breaks and
/// doubled quotes; blanks belong to their fields. Line breaks are LF, CR or both.
namespace host {

/// A row of a text, valid until the next one.
struct CsvRow {
    std::span<const core::wstring_view> fields; ///< at least one
    std::uint64_t line = 0;                     ///< where the row begins, from 1
};

/// Reads a text in UTF-8, with or without a byte order mark, and calls `onRow` for each row; blank lines are
/// none. ContextException, with the line where the row begins, for bytes that are not UTF-8 and for quotes
/// that are not closed or stand inside of a field without quotes. What `bytes` or `onRow` throws ends the
/// reading. `name` is what errors call the text.
void read_csv(const core::ByteReader& bytes, core::wstring_view name, char delimiter,
              const std::function<void(const CsvRow&)>& onRow);

} // namespace host
