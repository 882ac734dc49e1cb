// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/call_site.h"

#include "core/runtime/native_path.h"
#include "core/runtime/shared_object.h"
#include "core/runtime/windows/system.h"

#include <core/runtime/utf8.h>

#include <cstddef>
#include <cstdio>
#include <string>

namespace core::detail {
namespace {

constexpr int kShown = 3; // calls of one site

} // namespace

CallSite CallSite::here() noexcept {
    CallSite site;
    site.count =
        ::CaptureStackBackTrace(0, static_cast<DWORD>(site.calls.size()), site.calls.data(), nullptr);
    return site;
}

wstring CallSite::text() const {
    static const char anchor = 0;
    const void* const own = object_at(&anchor);
    std::string text;
    int shown = 0;
    for (int i = 0; i < count && shown < kShown; ++i) {
        const void* const call = calls[static_cast<std::size_t>(i)];
        const void* const base = object_at(call);
        if (base == nullptr || base == own)
            continue;
        char offset[24];
        std::snprintf(
            offset, sizeof offset, "+0x%zx",
            static_cast<std::size_t>(static_cast<const char*>(call) - static_cast<const char*>(base)));
        text += (shown++ > 0 ? " < " : "") + path_text(file_of(call).filename()) + offset;
    }
    return text.empty() ? wstring(u"?") : from_utf8(text);
}

} // namespace core::detail
