// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/errors.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/process.h>
#include <core/runtime/uncaught.h>
#include <core/runtime/utf8.h>

#include <cstdio>

namespace core {
namespace {

/// One line, so that the lines of several threads do not mix.
void print(const wstring& where, const wstring& text) {
    const std::string line = "core: " + to_utf8(where) + ": " + to_utf8(text) + '\n';
    std::fputs(line.c_str(), stderr);
}

} // namespace

InterfacePtr<IExceptionObject> wrap_exception(const std::exception_ptr& failure) {
    wstring known = u"?"; // any type may be thrown, and says nothing
    try {
        std::rethrow_exception(failure);
    } catch (const Exception& e) {
        return wrap_exception(e);
    } catch (const std::exception& e) {
        known = from_utf8(e.what());
    } catch (...) {
    }
    Exception e(message_text(messages::kUnknownFailure, {known}));
    e.setMessage(messages::kUnknownFailure, {&known, 1});
    return wrap_exception(e);
}

void report_uncaught(const std::exception_ptr& failure, const wstring& where) noexcept {
    try {
        const auto object = wrap_exception(failure);
        IUncaughtExceptions* const sink = get_service<IUncaughtExceptions>();
        if (sink != nullptr) {
            try {
                sink->uncaught(object.get(), where);
                return;
            } catch (...) {
                print(where, wrap_exception(std::current_exception())->exception().description());
            }
        }
        print(where, object->exception().description());
    } catch (...) { // no memory for anything
        std::fputs("core: a failure was not caught, and there is no memory to say which\n", stderr);
    }
}

} // namespace core
