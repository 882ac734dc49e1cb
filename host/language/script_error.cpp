// SPDX-License-Identifier: Apache-2.0
#include "host/language/script_error.h"

#include "host/language/failure.h"

#include <core/runtime/exception_object.h>

#include <algorithm>
#include <string_view>

namespace core::script {

ScriptError::ScriptError(Span span, const Exception& cause)
    : ScriptError(span, cause.description(), wrap_exception(cause).get()) {
    setMessage(cause.messageId(), cause.parameters());
}

ScriptError::ScriptError(const Error& error) : ScriptError(Span(), error.description(), error.cause()) {
    setMessage(error.messageId(), error.parameters());
    located_ = std::make_shared<const Error>(error);
}

Error ScriptError::located(const Source& source) const {
    if (located_ != nullptr)
        return *located_;
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

void ScriptError::locate(const Source& source) {
    if (located_ == nullptr)
        located_ = std::make_shared<const Error>(located(source));
}

void fail_at(Span span, const char* id, std::initializer_list<wstring> params, IExceptionObject* cause) {
    throw_with_message(ScriptError(span, message_text(id, params), cause), id, params);
}

wstring unknown_text(const char* id, std::initializer_list<wstring> params, const NearestName& near) {
    wstring text = message_text(id, params);
    if (!near.best().empty())
        text.append(u" ").append(message_text("IDS_DID_YOU_MEAN", {near.best()}));
    return text;
}

bool ends_script(const Exception& failure) noexcept {
    static constexpr const char* kEnds[] = {messages::kScriptInterrupted, messages::kScriptStepLimit,
                                            messages::kScriptTimeLimit,   messages::kScriptDepthLimit,
                                            messages::kScriptMemoryLimit, messages::kScriptNoStack};
    return std::ranges::find(kEnds, std::string_view(failure.messageId())) != std::end(kEnds);
}

} // namespace core::script
