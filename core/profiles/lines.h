// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/profiles/record.h"

#include <core/files/file.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace core {

/// The lines of a file from any offset on, read a piece at a time.
class Lines {
  public:
    Lines() = default;
    explicit Lines(InterfacePtr<IFile> file) noexcept : file_(std::move(file)) {}

    /// A line, borrowed until the next call.
    struct Line {
        std::string_view text;  // without its line feed
        std::uint64_t next = 0; // the offset behind it
        bool isWhole = false;   // whether a line feed ends it
    };
    /// Returns the line from `offset`, which is before `end`; nothing behind `end` belongs to it.
    [[nodiscard]] Line at(std::uint64_t offset, std::uint64_t end);
    /// Returns where the first line begins that begins at or behind `offset`; `end` where none does.
    /// `offset` is not 0.
    [[nodiscard]] std::uint64_t beginFrom(std::uint64_t offset, std::uint64_t end);

  private:
    [[nodiscard]] std::string_view piece(std::uint64_t offset, std::size_t least, std::uint64_t end);

    InterfacePtr<IFile> file_;
    std::string piece_;       // what was read last
    std::uint64_t begin_ = 0; // its offset
};

/// The sorted part of a settings file: each line sets one key, and each key stands once. A line is found by
/// halving the range of offsets in which it can begin, so that nothing has to be read before.
class SortedLines {
  public:
    SortedLines() = default;
    SortedLines(InterfacePtr<IFile> file, std::uint64_t begin, std::uint64_t end) noexcept
        : lines_(std::move(file)), begin_(begin), end_(end) {}

    /// An entry and the offset behind its line.
    struct Entry {
        KeyChange set;
        std::uint64_t next = 0;
    };
    /// Returns the offset of the first line whose key is not before `key`; that of the end where none is.
    [[nodiscard]] std::uint64_t lowerBound(wstring_view key);
    /// Reads the first whole line from `offset` on; false at the end. Damaged lines are passed over.
    [[nodiscard]] bool read(std::uint64_t offset, Entry& entry);
    /// Returns whether a damaged line was passed over.
    [[nodiscard]] bool isDamaged() const noexcept { return damaged_; }

  private:
    Lines lines_;
    std::uint64_t begin_ = 0;
    std::uint64_t end_ = 0;
    bool damaged_ = false;
};

} // namespace core
