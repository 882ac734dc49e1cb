// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/class_entry.h>
#include <core/runtime/module_contract.h>
#include <core/runtime/process.h>
#include <core/runtime/resource_bundle.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace core {

/// What is known of a module, for people.
struct ModuleInfo {
    std::string name;    ///< what it is called; empty for a module that declares nothing of itself
    std::string version; ///< its own version, in whatever form its author gives it
    std::string file;    ///< the path of its file in UTF-8; empty where that is not known
    /// The interface of the library that it was built for.
    std::uint32_t interfaceVersion = kInterfaceVersion;
    bool leaves = false; ///< whether it can be unloaded: only the processes that loaded it have its classes
};

/// Identifies a loaded module to the registry; the address that the system or the program gave it.
using ModuleHandle = const void*;

/// A module: its table of classes and services, its message texts, and their way into a process. A process
/// remembers which module a class and its service came from, so what one module revokes is its own.
///
/// Threads: the table is only read after init().
class CORE_API SCOM_Module {
  public:
    /// `entries` is the head of the module's list of declarations, `bundle` its message texts;
    /// both are kept by reference. `info` says what module that is.
    SCOM_Module(ClassEntry* const& entries, SCOM_ResourceBundle& bundle, ModuleInfo info = {}) noexcept
        : entries_(entries), bundle_(bundle), info_(std::move(info)) {}
    SCOM_Module(const SCOM_Module&) = delete;
    SCOM_Module& operator=(const SCOM_Module&) = delete;
    ~SCOM_Module() { term(); }

    // life
    /// Gathers the declarations into the class table and enters the module into the library-wide registry.
    void init(ModuleHandle handle);
    /// Undoes init(), closing the message texts first. Harmless when there is nothing to undo.
    void term() noexcept;
    /// Makes the class table: a copy of every declaration's record in list order, then a record of zeros.
    void initialize();
    /// Frees the class table.
    void cleanup() noexcept;

    // registration
    /// Hands the factory of the declared class `clsid` to the process, and its service, if it is one. An
    /// unknown id, a class whose factory cannot be made, or a module without its table changes nothing.
    /// Throws what the process throws, ProcessException (kClassClaimed, kServiceClaimed) for what another
    /// module has; the process is then unchanged.
    void registerClass(const GUID& clsid, SCOM_Process* process) const;
    /// Takes the class back from the process. A class of another module stays.
    void revokeClass(const GUID& clsid, SCOM_Process* process) const;
    /// Hands over every declared class in list order. When one is refused, none stays; throws what
    /// registerClass() throws.
    void registerAll(SCOM_Process* process) const;
    /// Tells the process that the module's texts go, then revokes every class in list order. What other
    /// modules have registered stays.
    void revokeAll(SCOM_Process* process) const;
    /// Says that what some process has of the module's classes has changed, as registerAll() and revokeAll()
    /// do: types and enumerations are gathered again. A process that gives classes back says so itself.
    void classesChanged() const noexcept;

    // inspect
    /// Returns the class table with its closing record, borrowed until cleanup(); empty before initialize().
    [[nodiscard]] std::span<const ClassRecord> classTable() const noexcept { return {table_.get(), size_}; }
    /// Returns the name that errors call the module by: its own, or that of its bundle where it has none.
    /// Borrowed as long as the module lives.
    [[nodiscard]] const std::string& name() const noexcept {
        return info_.name.empty() ? bundle_.name() : info_.name;
    }
    /// Returns the message texts, borrowed from the maker of the module.
    [[nodiscard]] SCOM_ResourceBundle& resourceBundle() const noexcept { return bundle_; }
    /// Returns what is known of the module, borrowed as long as the module lives.
    [[nodiscard]] const ModuleInfo& info() const noexcept { return info_; }
    /// Returns what init() was given, null before.
    [[nodiscard]] ModuleHandle handle() const noexcept { return handle_; }
    /// Returns the head of the module's list of declarations, borrowed as long as its code; null for none.
    [[nodiscard]] const ClassEntry* declarations() const noexcept { return entries_; }

  private:
    void handOver(const ClassEntry& entry, const ClassRecord& record, SCOM_Process* process) const;

    std::unique_ptr<ClassRecord[]> table_;
    std::size_t size_ = 0;
    const ClassEntry* compared_ = nullptr; // the head of the list whose ids were compared with each other
    bool differ_ = false;                  // whether they are all different
    ClassEntry* const& entries_;
    SCOM_ResourceBundle& bundle_;
    ModuleInfo info_;
    ModuleHandle handle_ = nullptr;
};

/// While one lives, no loaded module goes: what registered_modules() returns stays valid. For a short time,
/// in which the thread does not load or unload a module. Threads: any number at the same time.
class CORE_API ModulesScope {
  public:
    /// Waits until a module that is going has gone.
    ModulesScope() noexcept;
    ModulesScope(const ModulesScope&) = delete;
    ModulesScope& operator=(const ModulesScope&) = delete;
    /// Lets modules go again.
    ~ModulesScope();
};

/// Returns the modules that are initialised now, oldest first: how a process finds every declared class. They
/// are borrowed, a loaded module by a ModulesScope; the code that ends another one first ends the processes
/// that use it. Threads: any.
[[nodiscard]] CORE_API std::vector<SCOM_Module*> registered_modules();
/// Returns a number that grows whenever a module comes, goes, or hands its classes to a process or takes them
/// back: what was gathered from the modules is still right while it is the same. Takes no lock. Threads: any.
[[nodiscard]] CORE_API std::uint32_t modules_generation() noexcept;

/// Returns the library's own module.
[[nodiscard]] CORE_API SCOM_Module& core_module() noexcept;

/// What the loader of a library tells its entry point.
enum class LibraryEvent {
    processDetach = 0, ///< the library goes
    processAttach = 1, ///< the library comes
    threadAttach = 2,  ///< a thread begins
    threadDetach = 3   ///< a thread ends
};

/// The library's entry point. On process attach it allocates the thread-local slots, initialises ICU and the
/// leak registry, gathers the class table and enters the module into the registry; on process detach it
/// undoes all that in reverse, closing the message texts first. Thread events do nothing. Always true. One
/// attach is undone by one detach, as often as wanted; most programs leave this to LibraryScope. An attach
/// that fails undoes what it did and throws: std::bad_alloc, or ProcessInitException (kThreadSlots) when the
/// system has no slots left. Threads: one call at a time.
CORE_API bool library_main(ModuleHandle handle, LibraryEvent event);

/// Keeps the library attached while at least one scope lives.
/// Threads: scopes may be made and destroyed on any thread, also at the same time.
class CORE_API LibraryScope {
  public:
    /// Attaches the library when this is the first scope; throws what attaching throws.
    LibraryScope();
    LibraryScope(const LibraryScope&) = delete;
    LibraryScope& operator=(const LibraryScope&) = delete;
    /// Detaches the library when this is the last scope.
    ~LibraryScope();
};

} // namespace core
