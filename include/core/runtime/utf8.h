// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <string>
#include <string_view>

namespace core {

/// UTF-8 to UTF-16 and back. What is not well-formed (a lone surrogate, a broken sequence) becomes U+FFFD.
/// Throws ConverterException for a text of 2 GiB and more in UTF-8, or that could become one.
[[nodiscard]] CORE_API std::string to_utf8(wstring_view text);
[[nodiscard]] CORE_API wstring from_utf8(std::string_view text);

} // namespace core
