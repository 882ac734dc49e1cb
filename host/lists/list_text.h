// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

namespace host {

/// Whether a text is one bare token of a brace list: a number, a date or an id.
[[nodiscard]] bool is_list_token(core::wstring_view text);

} // namespace host
