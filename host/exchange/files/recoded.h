// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/text_reader.h>

#include <optional>

namespace host {

/// The bytes of a text in UTF-8, whatever encoding `bytes` bring it in; nothing is to be found. UTF-8 passes
/// as it is. ConverterException for what does not fit; `name` is what errors call the text.
[[nodiscard]] core::ByteReader in_utf8(core::ByteReader bytes, core::wstring_view name,
                                       std::optional<core::Encoding> encoding);

} // namespace host
