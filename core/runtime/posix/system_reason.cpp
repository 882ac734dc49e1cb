// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/system_reason.h"

#include "core/runtime/thread_locale.h"

#include <core/runtime/utf8.h>

#include <clocale>
#include <cstring>

namespace core {

wstring text_of_system(int error) {
    // By a locale of its own: that of the program may be any other, and strerror() is not for several
    // threads.
    const bool russian = detail::resource_locale().isRussian();
    ::locale_t locale = ::newlocale(LC_ALL_MASK, russian ? "ru_RU.UTF-8" : "C", nullptr);
    if (locale == nullptr)
        locale = ::newlocale(LC_ALL_MASK, "C", nullptr); // which is always there
    wstring reason = from_utf8(::strerror_l(error, locale));
    ::freelocale(locale);
    return reason;
}

} // namespace core
