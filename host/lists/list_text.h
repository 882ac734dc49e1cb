// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/unit_sink.h>

namespace host {

/// Writes what stands between the quotes of a brace-list string, or a piece of that, as the library's writer
/// does: quotes doubled, surrogates escaped.
void write_list_characters(core::UnitSink& sink, core::wstring_view text);

/// Whether a text is one bare token of a brace list: a number, a date or an id.
[[nodiscard]] bool is_list_token(core::wstring_view text);

} // namespace host
