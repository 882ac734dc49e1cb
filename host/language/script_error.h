// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/source.h"

#include <core/runtime/exception.h>

#include <initializer_list>

namespace host::script {

/// What is wrong with a script, and where in its text. Met while reading the script or while running it; in
/// the second case the cause is the library's failure, if it was one.
class ScriptError : public core::Exception {
  public:
    ScriptError(Span span, const core::wstring& message, core::IExceptionObject* cause = nullptr)
        : Exception(kClassId, message, cause), span_(span) {}

    [[nodiscard]] Span span() const noexcept { return span_; }

  private:
    Span span_;
};

/// Throws a ScriptError with the message stored under `id`.
[[noreturn]] void fail_at(Span span, const char* id, std::initializer_list<core::wstring> params = {});

} // namespace host::script
