// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/adoption.h"
#include "core/runtime/library_entry.h"
#include "core/runtime/native_path.h"
#include "core/runtime/program_module.h"
#include "core/runtime/shared_object.h"
#include "core/runtime/thread_slots.h"

#include <core/runtime/errors.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/module.h>

#include <unicode/uclean.h>

#include <mutex>

namespace core {
namespace {

SCOM_ResourceBundle& core_bundle() {
    static SCOM_ResourceBundle bundle("core");
    return bundle;
}

/// What is known of the library as a module; without memory, no more than its name.
ModuleInfo core_info() noexcept {
    static const char anchor = 0;
    ModuleInfo info;
    info.name = "core"; // short enough to take none
    try {
        info.version = CORE_VERSION;
        info.file = path_text(detail::file_of(&anchor));
    } catch (const std::bad_alloc&) {
    }
    return info;
}

void detach() noexcept {
    detail::end_program_module();
    // Twice on purpose: the texts are closed once for the library and once for its module.
    core_bundle().cleanup();
    core_module().term();
    LeaksCounter::setTerm(nullptr, nullptr);
    // ICU stays initialised: other users of it in this program hold its data, and
    // attaching again finds it ready.
    detail::end_all_adoptions();
    detail::thread_slots.data.free();
    detail::thread_slots.process.free();
    detail::thread_slots.locale.free();
}

void attach(ModuleHandle handle) {
    try {
        auto& slots = detail::thread_slots;
        if (!slots.locale.allocate() || !slots.process.allocate(&detail::end_adopted_thread) ||
            !slots.data.allocate())
            throw_error<ProcessInitException>(messages::kThreadSlots);
        UErrorCode status = U_ZERO_ERROR;
        u_init(&status);
        LeaksCounter::setTerm(u"Objects alive", u"Живые объекты");
        core_module().init(handle);
    } catch (...) {
        detach();
        throw;
    }
}

void begin_program() {
    try {
        detail::begin_program_module();
    } catch (...) {
        detach();
        throw;
    }
}

std::mutex& scope_lock() {
    static std::mutex lock;
    return lock;
}

int scopes = 0;
bool by_loader = false; // attached, and detached, by the loader of the system

} // namespace

SCOM_Module& core_module() noexcept {
    static SCOM_Module module(module_class_entries, core_bundle(), core_info());
    return module;
}

bool library_main(ModuleHandle handle, LibraryEvent event) {
    if (by_loader)
        return true; // the loader has attached the library, and detaches it
    if (event == LibraryEvent::processAttach) {
        attach(handle);
        begin_program();
    } else if (event == LibraryEvent::processDetach) {
        detach();
    }
    return true;
}

bool detail::enter_by_loader(ModuleHandle handle, LibraryEvent event) {
    if (event == LibraryEvent::processAttach) {
        attach(handle);
        by_loader = true;
    } else if (event == LibraryEvent::processDetach) {
        by_loader = false;
        detach();
    }
    return true;
}

LibraryScope::LibraryScope() {
    const std::lock_guard guard(scope_lock());
    if (scopes == 0 && by_loader)
        detail::begin_program_module();
    else if (scopes == 0)
        library_main(&core_module(), LibraryEvent::processAttach);
    ++scopes;
}

LibraryScope::~LibraryScope() {
    const std::lock_guard guard(scope_lock());
    if (--scopes > 0)
        return;
    if (by_loader)
        detail::end_program_module();
    else
        detach();
}

} // namespace core
