// SPDX-License-Identifier: Apache-2.0
#include "core/context/events/sink_table.h"

#include <core/context/errors.h>
#include <core/runtime/utf8.h>

#if __has_include(<core/runtime/uncaught.h>)
#include <core/runtime/uncaught.h>
#endif

#include <cstdio>
#include <exception>

namespace core::detail {

#if __has_include(<core/runtime/uncaught.h>)

void report_sink_failure(const EventNames& event) noexcept {
    const std::exception_ptr failure = std::current_exception();
    try {
        report_uncaught(failure, message_text(messages::kEventSink, {event.names.text[kEnglish]}));
    } catch (...) { // no memory for the words
        report_uncaught(failure, wstring());
    }
}

#else

void report_sink_failure(const EventNames& event) noexcept {
    try {
        const std::string where = to_utf8(message_text(messages::kEventSink, {event.names.text[kEnglish]}));
        const char* what = "?"; // any type may be thrown, and says nothing
        try {
            throw;
        } catch (const std::exception& e) {
            what = e.what();
            std::fprintf(stderr, "core: %s: %s\n", where.c_str(), what);
            return;
        } catch (...) {
        }
        std::fprintf(stderr, "core: %s: %s\n", where.c_str(), what);
    } catch (...) { // no memory for the words
        std::fputs("core: a handler of an event failed\n", stderr);
    }
}

#endif

} // namespace core::detail
