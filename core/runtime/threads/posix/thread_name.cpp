// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/thread_name.h"

#include <core/runtime/utf8.h>

#include <pthread.h>

#include <cstddef>
#include <string>

namespace core::detail {

void name_system_thread(const wstring& name) {
    constexpr std::size_t kLongest = 15;
    std::string text = to_utf8(name);
    if (text.size() > kLongest) {
        std::size_t end = kLongest;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            --end;
        text.resize(end);
    }
#if defined(__linux__)
    pthread_setname_np(pthread_self(), text.c_str());
#endif
}

} // namespace core::detail
