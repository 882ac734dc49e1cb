// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_reader.h>

#include <optional>
#include <string_view>

namespace core {

/// Returns the delimiter that divides the first rows into equally many fields, more than one, a comma before
/// others. Where none does, it is the one with most fields in the first row, so that the rows that differ are
/// told; where that has one field, it is `otherwise`. `text` is how a text in CSV begins; `isWhole` says that
/// nothing follows.
[[nodiscard]] char find_delimiter(std::string_view text, bool isWhole, char otherwise);

/// Returns the bytes of a text in UTF-8, whatever encoding `bytes` bring it in. Without an `encoding` it is
/// found by the first bytes; where that is a guess, the text counts as UTF-8, so that whatever does not fit
/// is an error. Throws ConverterException for what does not fit the encoding; `name` is what errors call the
/// text.
[[nodiscard]] ByteReader in_utf8(ByteReader bytes, wstring_view name, std::optional<Encoding> encoding);

} // namespace core
