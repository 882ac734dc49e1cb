// SPDX-License-Identifier: Apache-2.0
#include "host/language/script_error.h"

#include <core/runtime/exception_object.h>

namespace core::script {

ScriptError::ScriptError(Span span, const Exception& cause)
    : ScriptError(span, cause.description(), wrap_exception(cause).get()) {
    setMessage(cause.messageId(), cause.parameters());
}

Error ScriptError::located(const Source& source) const {
    const Position position = source.position(span_.offset);
    const Span line = source.line_at(span_.offset);
    Error error(description(),
                {.file = source.name(),
                 .line = static_cast<std::int32_t>(position.line),
                 .column = static_cast<std::int32_t>(position.column),
                 .text = wstring(source.text(line)),
                 .offset = static_cast<std::int32_t>(span_.offset - line.offset),
                 .length = static_cast<std::int32_t>(span_.length)},
                cause());
    error.setMessage(messageId(), parameters());
    return error;
}

void fail_at(Span span, const char* id, std::initializer_list<wstring> params, IExceptionObject* cause) {
    throw_with_message(ScriptError(span, message_text(id, params), cause), id, params);
}

} // namespace core::script
