// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/encoding.h>

namespace core {

/// What is believed of the encoding of a text.
struct DetectedEncoding {
    Encoding encoding{};      ///< the most likely one; UTF-8 where nothing speaks for any
    int certainty = 0;        ///< of a hundred such answers so many are right; 0 where it is a guess
    std::size_t markSize = 0; ///< how many bytes of a byte order mark stand in front
    /// Whether all bytes are those of ASCII, in which nearly all encodings are alike: what follows may yet
    /// show another one.
    bool isAscii = false;
};

/// Says which encoding a text has, by what it begins with: a byte order mark; else bytes that are UTF-8, or
/// UTF-16 or UTF-32 without a mark; else by how often letters follow each other in languages. `isWhole` says
/// that nothing follows, so that a character which is cut does not fit. Some thousand bytes are enough; all
/// that are given are read. Throws std::bad_alloc. Threads: any.
[[nodiscard]] CORE_API DetectedEncoding detect_encoding(std::span<const std::byte> bytes, bool isWhole);

} // namespace core
