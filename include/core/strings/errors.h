// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of texts; all travel in a ConverterException.
namespace core::messages {

/// A directive of a format string is malformed or does not fit its argument; {0} is the directive.
inline constexpr const char* kPrintfDirective = "IDS_STRING_PRINTF_ERROR";
/// A text that should be UTF-8 is not; {0} is the offset of the first byte that does not fit.
inline constexpr const char* kNotUtf8 = "IDS_SCRIPT_NOT_UTF8";

} // namespace core::messages
