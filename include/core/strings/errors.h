// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>

/// The failures of texts; all travel in a ConverterException.
namespace core::messages {

/// A directive of a format string is malformed or does not fit its argument; {0} is the directive.
inline constexpr const char* kPrintfDirective = "IDS_STRING_PRINTF_ERROR";

} // namespace core::messages
