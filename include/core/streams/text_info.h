// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

namespace core {

/// What a whole text is like.
struct TextInfo {
    DetectedEncoding encoding{};   ///< how it was read
    std::uint64_t bytes = 0;       ///< its length
    std::uint64_t units = 0;       ///< its length without a mark, in UTF-16 units
    std::uint64_t lines = 0;       ///< an end at the very end of a text does not begin another line
    std::uint64_t lf = 0;          ///< lines that end with LF
    std::uint64_t cr = 0;          ///< lines that end with CR
    std::uint64_t crlf = 0;        ///< lines that end with CR and LF
    std::uint64_t longest = 0;     ///< the units of the longest line, without its end
    std::uint64_t longestLine = 0; ///< the number of the first such line, from 1; 0 for an empty text
    std::uint64_t faults = 0;      ///< sequences of bytes that do not fit the encoding
    std::uint64_t firstFault = 0;  ///< the offset of the first of them
};

/// Reads the rest of a text and says what it is like. Memory does not grow with the text nor with its lines.
/// Throws what reading throws; a reader that replaces what does not fit counts it here.
[[nodiscard]] CORE_API TextInfo examine_text(TextReader& text);

/// Writes the rest of a text. Does not finish it. Throws what reading and writing throw.
CORE_API void copy_text(TextReader& from, TextWriter& to);

} // namespace core
