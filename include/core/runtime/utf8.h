// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <string>
#include <string_view>

namespace core {

/// Returns a text in UTF-8. Half of a surrogate pair that stands alone becomes U+FFFD. Throws
/// ConverterException for a text that could become 2 GiB or more.
[[nodiscard]] CORE_API std::string to_utf8(wstring_view text);
/// Returns a text in UTF-16. A sequence that is not UTF-8 becomes U+FFFD. Throws ConverterException for a
/// text of 2 GiB and more.
[[nodiscard]] CORE_API wstring from_utf8(std::string_view text);

} // namespace core
