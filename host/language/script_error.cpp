// SPDX-License-Identifier: Apache-2.0
#include "host/language/script_error.h"

namespace host::script {

void fail_at(Span span, const char* id, std::initializer_list<core::wstring> params) {
    throw ScriptError(span, core::message_text(id, params));
}

} // namespace host::script
