// SPDX-License-Identifier: Apache-2.0
#include "core/strings/plain_numbers.h"

#include <locale.h>
#include <stdlib.h>
#include <string.h>

namespace core {

// The thread gets a locale of its own for the time; a thread that had one before keeps that, and its name is
// kept for it.
PlainNumbers::PlainNumbers() noexcept : before_(nullptr) {
    const int shared = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
    const char* const name = setlocale(LC_NUMERIC, nullptr);
    if (shared == _ENABLE_PER_THREAD_LOCALE && strcmp(name, "C") != 0)
        before_ = _strdup(name);
    setlocale(LC_NUMERIC, "C");
    if (shared != _ENABLE_PER_THREAD_LOCALE)
        before_ = this; // a mark: back to the program's locale
}

PlainNumbers::~PlainNumbers() {
    if (before_ == this) {
        _configthreadlocale(_DISABLE_PER_THREAD_LOCALE);
    } else if (before_ != nullptr) {
        setlocale(LC_NUMERIC, static_cast<const char*>(before_));
        free(before_);
    }
}

} // namespace core
