// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// What an error number means, in the language of the messages. For a number that seldom comes it is the text
/// of the system, which speaks another language than English only where it has that locale.
[[nodiscard]] wstring system_reason(int error);

/// The text of the system for an error number.
[[nodiscard]] wstring text_of_system(int error);

} // namespace core
