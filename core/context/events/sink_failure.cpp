// SPDX-License-Identifier: Apache-2.0
#include "core/context/events/sink_table.h"

#include <core/context/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/uncaught.h>

#include <exception>

namespace core::detail {

void report_sink_failure(const EventNames& event) noexcept {
    const std::exception_ptr failure = std::current_exception();
    try {
        const int alias = Thread::getResourceLocale().isRussian() ? kRussian : kEnglish;
        report_uncaught(failure, message_text(messages::kEventSink, {term_string(event.names, alias)}));
    } catch (...) { // no memory for the words
        report_uncaught(failure, wstring());
    }
}

} // namespace core::detail
