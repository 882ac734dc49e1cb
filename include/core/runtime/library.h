// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/module.h>

/// Bringing the library to life and letting it go.
namespace core {

enum class LibraryEvent { processDetach = 0, processAttach = 1, threadAttach = 2, threadDetach = 3 };

/// The library's entry point. On process attach it allocates the thread-local slots, initialises ICU and the
/// leak registry, gathers the class table and enters the module into the registry; on process detach it
/// undoes all that in reverse, closing the message texts first. Thread events do nothing. Always true. One
/// attach is undone by one detach, as often as wanted; most programs leave this to LibraryScope. An attach
/// that runs out of memory undoes what it did and throws std::bad_alloc. Threads: one call at a time.
CORE_API bool library_main(ModuleHandle handle, LibraryEvent event);

/// The library's own module.
[[nodiscard]] CORE_API SCOM_Module& core_module() noexcept;

/// Keeps the library attached while at least one scope lives. The first one throws what attaching throws.
/// Threads: scopes may be made and destroyed on any thread, also at the same time.
class CORE_API LibraryScope {
  public:
    LibraryScope();
    LibraryScope(const LibraryScope&) = delete;
    LibraryScope& operator=(const LibraryScope&) = delete;
    ~LibraryScope();
};

} // namespace core
