// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"

#include <core/runtime/exception.h>
#include <core/script/errors.h>

#include <initializer_list>
#include <memory>

namespace core::script {

/// What is wrong with a script, and where in its text: how a failure travels within the language. It becomes
/// an Error, which knows the text, where it leaves that text: at the end of a run, and where a procedure of
/// one file is called from another one.
class ScriptError : public Exception {
  public:
    /// A failure of the script itself.
    ScriptError(Span span, const wstring& message, IExceptionObject* cause = nullptr)
        : Exception(kClassId, message, cause), span_(span) {}
    /// A failure from below, which becomes the cause.
    ScriptError(Span span, const Exception& cause);
    /// A failure that a script caught and raises again, with its first place.
    explicit ScriptError(const Error& error);

    [[nodiscard]] Span span() const noexcept { return span_; }
    /// The same as an Error; `source` is the text that the span is of, unless that is known already.
    [[nodiscard]] Error located(const Source& source) const;
    /// Keeps what located() returns now: from here on the span means nothing.
    void locate(const Source& source);

  private:
    Span span_;
    std::shared_ptr<const Error> located_;
};

/// Throws a ScriptError with the message stored under `id`.
[[noreturn]] void fail_at(Span span, const char* id, std::initializer_list<wstring> params = {},
                          IExceptionObject* cause = nullptr);

} // namespace core::script
