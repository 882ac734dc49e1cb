// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"

#include <core/runtime/exception.h>
#include <core/script/errors.h>

#include <initializer_list>

namespace core::script {

/// What is wrong with a script, and where in its text: how a failure travels within the language. It becomes
/// an Error, which knows the text, where it leaves.
class ScriptError : public Exception {
  public:
    /// A failure of the script itself.
    ScriptError(Span span, const wstring& message, IExceptionObject* cause = nullptr)
        : Exception(kClassId, message, cause), span_(span) {}
    /// A failure from below, which becomes the cause.
    ScriptError(Span span, const Exception& cause);

    [[nodiscard]] Span span() const noexcept { return span_; }
    /// The same as an Error; `source` is the text that the span is of.
    [[nodiscard]] Error located(const Source& source) const;

  private:
    Span span_;
};

/// Throws a ScriptError with the message stored under `id`.
[[noreturn]] void fail_at(Span span, const char* id, std::initializer_list<wstring> params = {},
                          IExceptionObject* cause = nullptr);

} // namespace core::script
