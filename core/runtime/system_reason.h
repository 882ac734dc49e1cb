// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace core {

/// What the system says of an error number, in the language of the messages as far as it can: its texts in
/// another language than English are there where the system has that locale.
[[nodiscard]] wstring system_reason(int error);

} // namespace core
