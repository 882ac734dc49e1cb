// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/exchange/csv/specials.h"

#include <core/streams/text_reader.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace core {

/// A row of a text in CSV, valid until the next one.
struct CsvRow {
    std::span<const std::string_view> fields; ///< at least one, in UTF-8 that nobody has checked
    std::uint64_t line = 0;                   ///< where the row begins, from 1
};

/// How a text is taken apart.
struct CsvRules {
    char delimiter = ',';
    bool strict = false; ///< a quote inside a field without quotes is an error
};

/// Takes a text in UTF-8 apart into rows, block by block, as RFC 4180 has them: fields in quotes may hold
/// delimiters, line breaks and doubled quotes; blanks belong to their fields; a line ends with LF, CR or
/// both. Blank lines are skipped, and so is a byte order mark.
class CsvScanner {
  public:
    /// `name` is what errors call the text; borrowed.
    CsvScanner(ByteReader bytes, wstring_view name);

    /// Reads the first block, unless that is done, and returns it without the mark; borrowed until next().
    [[nodiscard]] std::string_view look();
    /// Sets how the text is taken apart; before the first row alone.
    void setRules(const CsvRules& rules);
    /// Stores the next row and returns true; false at the end. Throws ContextException, with the line where
    /// the row begins, for quotes that are not closed or that a field goes on behind, and what reading
    /// throws.
    bool next(CsvRow& row);

    /// How many bytes the rows had that were returned.
    [[nodiscard]] std::uint64_t bytesTaken() const noexcept { return taken_; }

  private:
    enum class Outcome : unsigned char { whole, blank, cut };

    [[nodiscard]] Outcome scan();
    [[nodiscard]] const char* scanField(const char* begin);
    [[nodiscard]] const char* scanQuoted(const char* begin);
    [[nodiscard]] const char* rowEnd(const char* at);
    void unfold();
    bool more();
    [[noreturn]] void fail() const;

    [[nodiscard]] const char* end() const noexcept { return buffer_.get() + size_; }

    struct Field {
        const char* begin;
        const char* end;
        bool doubled; ///< it has quotes that stand twice
    };

    ByteReader bytes_;
    wstring_view name_;
    CsvRules rules_;
    Specials specials_{','};
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_ = 0;
    std::size_t size_ = 0;
    const char* at_ = nullptr; ///< where the next row begins
    bool started_ = false;
    bool ended_ = false;       ///< the source has no more
    bool marked_ = false;      ///< specials_ stands at the next row
    std::uint64_t line_ = 1;   ///< of the next row
    std::uint64_t breaks_ = 0; ///< in the fields of the row
    std::uint64_t taken_ = 0;
    std::vector<Field> found_;
    std::vector<std::string_view> fields_;
};

} // namespace core
