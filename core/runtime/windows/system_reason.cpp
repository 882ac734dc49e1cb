// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_reason.h"

#include <core/runtime/utf8.h>

#include <string.h>

namespace core {

wstring text_of_system(int error) {
    char text[256] = {};
    ::strerror_s(text, sizeof text, error); // in English: the system has texts for its own errors alone
    return from_utf8(text);
}

} // namespace core
