// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/streams/converter.h>
#include <core/streams/detection.h>
#include <core/streams/line_end.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace core {

namespace detail {
class TextSource;
} // namespace detail

/// Reads some bytes, at least one, into a span and returns their count; 0 at the end of the text.
using ByteReader = std::function<std::size_t(std::span<std::byte>)>;

/// How a TextReader reads.
struct TextReaderOptions {
    std::optional<Encoding> encoding{};                   ///< found by detect_encoding() when not given
    CodingErrorAction action = CodingErrorAction::report; ///< what is done with what does not fit
    bool unicodeEnds = false;                             ///< whether U+2028 and U+2029 end lines, too
    std::size_t bufferSize = std::size_t{64} << 10;       ///< bytes that are read at a time, at least 1
};

/// Reads a text of any length, by lines of any length or by pieces. A byte order mark in front is skipped. A
/// text of ASCII alone, as far as it was seen, is read as such; the encoding is looked for again where the
/// first other byte stands. One thread at a time.
///
/// Every function that reads throws what the source throws, and ConverterException for bytes that do not fit;
/// all that stands before them has been read then.
class CORE_API TextReader {
  public:
    /// Reads the bytes that `read` brings; messages call the text `name`.
    TextReader(ByteReader read, wstring name, const TextReaderOptions& options = {});
    /// Reads from the current position of `file`, which the reader keeps open.
    explicit TextReader(const InterfacePtr<IFile>& file, const TextReaderOptions& options = {});
    ~TextReader();
    /// Takes the text over in the middle; `other` may then only be destroyed.
    TextReader(TextReader&& other) noexcept;
    /// Takes the text over in the middle; `other` may then only be destroyed.
    TextReader& operator=(TextReader&& other) noexcept;

    /// Stores the next line in `line`, without its end, and returns true; returns false at the end of the
    /// text. An end at the very end of a text does not begin another line. When it throws, `line` holds what
    /// stands before the fault.
    bool readLine(wstring& line);
    /// Returns what ended the line that readLine() has stored last.
    [[nodiscard]] LineEnd lineEnd() const noexcept;
    /// Stores the next units in `text`, at most `count` of them and at least one, and returns true; returns
    /// false at the end of the text. Line ends stay as they are. A surrogate pair is not divided, so that a
    /// `count` of 1 may bring two units.
    bool read(wstring& text, std::size_t count);
    /// Returns the rest of the text, with line ends as they are.
    [[nodiscard]] wstring readAll();
    /// Returns the units that are at hand, after reading on if there are none; empty at the end of the text.
    /// Borrowed until the next call. consume() takes them.
    [[nodiscard]] wstring_view look();
    /// Takes the first `count` units of those that look() has returned.
    void consume(std::size_t count) noexcept;

    /// Returns the number of the line that will be read next, from 1; read() and consume() count line ends,
    /// too.
    [[nodiscard]] std::uint64_t line() const noexcept;
    /// Returns how many units have been read.
    [[nodiscard]] std::uint64_t position() const noexcept;
    /// Returns how many bytes the source has brought: what a display of progress sets beside the length of
    /// the file. It runs ahead of position().
    [[nodiscard]] std::uint64_t bytesRead() const noexcept;
    /// Returns how many sequences of bytes have been replaced or escaped.
    [[nodiscard]] std::uint64_t faults() const noexcept;
    /// Returns the offset in the text of the first of them, 0 when there are none.
    [[nodiscard]] std::uint64_t firstFault() const noexcept;
    /// Returns what is known of the encoding, with certainty 100 for one that was given. Reads the beginning
    /// of the text when nothing has been read, and throws what that throws.
    [[nodiscard]] const DetectedEncoding& encoding();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace core
