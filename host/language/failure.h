// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/script_error.h"
#include "host/language/script_exit.h"

#include <core/runtime/exception_object.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/nearest.h>
#include <core/values/errors.h>

#include <cxxabi.h>

#include <new>
#include <stdexcept>

namespace core::script {

/// Carries out `work`, and gives every failure of the library and of the program the place in the script
/// where it happened.
template <class Work>
auto at(Span span, Work work) {
    try {
        return work();
    } catch (const ScriptError&) {
        throw;
    } catch (const Exception& e) {
        throw ScriptError(span, e);
    } catch (const std::bad_alloc&) {
        fail_at(span, messages::kScriptNoMemory);
    } catch (const std::length_error&) { // longer than memory could ever be
        fail_at(span, messages::kScriptNoMemory);
    } catch (const std::exception& e) {
        const Exception cause(from_utf8(e.what()));
        fail_at(span, messages::kScriptForeignFailure, {cause.description()}, wrap_exception(cause).get());
    } catch (const ScriptExit&) {
        throw;
    } catch (const ThreadDeath&) { // the thread was asked to stop
        throw;
    } catch (const abi::__forced_unwind&) { // it is being cancelled
        throw;
    } catch (...) {
        fail_at(span, messages::kScriptUnknownFailure);
    }
}

/// A message about a name that nothing has, with the name that was probably meant.
[[nodiscard]] wstring unknown_text(const char* id, std::initializer_list<wstring> params,
                                   const NearestName& near);
/// Throws `E` with that message.
template <class E = ContextException>
[[noreturn]] void throw_unknown(const char* id, std::initializer_list<wstring> params,
                                const NearestName& near) {
    throw_with_message(E(unknown_text(id, params, near)), id, params);
}

/// Whether a failure ends the script whatever it says behind Except: bounds and interrupts would not be such
/// if the script could go on.
[[nodiscard]] bool ends_script(const Exception& failure) noexcept;

} // namespace core::script
