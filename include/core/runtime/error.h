// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/exceptions.h>

#include <initializer_list>

namespace core {

/// The message stored under a resource id ("IDS_..."), in the calling thread's resource locale, with {0},
/// {1}, ... replaced by `params`. Without a bundle, or for an unknown id, the id itself.
[[nodiscard]] CORE_API wstring message_text(const char* id, std::initializer_list<wstring> params = {});

/// Throws `E` with the message stored under `id`. The one way in which the library reports a failure.
template <class E>
[[noreturn]] void throw_error(const char* id, std::initializer_list<wstring> params = {},
                              IExceptionObject* cause = nullptr) {
    throw E(message_text(id, params), cause);
}

} // namespace core
