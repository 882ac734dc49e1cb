// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/call_site.h"

#include <core/runtime/utf8.h>

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#if __has_include(<execinfo.h>)
#include <execinfo.h>
#endif
#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#endif

namespace core::detail {
namespace {

constexpr int kShown = 3; // calls of one site

std::string readable(const char* symbol) {
#if __has_include(<cxxabi.h>)
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(symbol, nullptr, nullptr, &status),
                                                      std::free);
    if (name != nullptr)
        return name.get();
#endif
    return symbol;
}

std::string describe(const void* call, const Dl_info& info) {
    const std::string_view file = info.dli_fname != nullptr ? info.dli_fname : "";
    const char* const base =
        static_cast<const char*>(info.dli_sname != nullptr ? info.dli_saddr : info.dli_fbase);
    char offset[24];
    std::snprintf(offset, sizeof offset, "+0x%zx",
                  static_cast<std::size_t>(static_cast<const char*>(call) - base));
    const std::string place = info.dli_sname != nullptr
                                  ? readable(info.dli_sname)
                                  : std::string(file.substr(file.find_last_of('/') + 1));
    return place + offset;
}

} // namespace

CallSite CallSite::here() noexcept {
    CallSite site;
#if __has_include(<execinfo.h>)
    site.count = backtrace(site.calls.data(), static_cast<int>(site.calls.size()));
#endif
    return site;
}

wstring CallSite::text() const {
    static const char anchor = 0;
    Dl_info own{};
    dladdr(&anchor, &own);
    std::string text;
    int shown = 0;
    for (int i = 0; i < count && shown < kShown; ++i) {
        const void* const call = calls[static_cast<std::size_t>(i)];
        Dl_info info{};
        if (dladdr(call, &info) == 0 || info.dli_fbase == own.dli_fbase)
            continue;
        text += (shown++ > 0 ? " < " : "") + describe(call, info);
    }
    return text.empty() ? wstring(u"?") : from_utf8(text);
}

} // namespace core::detail
