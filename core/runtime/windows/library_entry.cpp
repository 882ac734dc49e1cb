// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/library_entry.h"

#include "core/runtime/windows/system.h"

#include <exception>

// The system's events have the numbers of LibraryEvent.
static_assert(DLL_PROCESS_DETACH == static_cast<int>(core::LibraryEvent::processDetach));
static_assert(DLL_PROCESS_ATTACH == static_cast<int>(core::LibraryEvent::processAttach));
static_assert(DLL_THREAD_ATTACH == static_cast<int>(core::LibraryEvent::threadAttach));
static_assert(DLL_THREAD_DETACH == static_cast<int>(core::LibraryEvent::threadDetach));

/// The entry point of the library. `ending` is not null when the whole process ends: its other threads are
/// dead then, who knows with which locks, and the system takes everything back by itself.
extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD event, void* ending) {
    if (event == DLL_PROCESS_DETACH && ending != nullptr)
        return TRUE;
    try {
        return core::detail::enter_by_loader(library, static_cast<core::LibraryEvent>(event)) ? TRUE : FALSE;
    } catch (const std::exception&) {
        return FALSE; // the library cannot be loaded
    }
}
