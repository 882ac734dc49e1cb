// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/module.h>

#include <filesystem>
#include <memory>
#include <vector>

namespace core {

struct LiveClass;

namespace detail {
class ModuleCode;
} // namespace detail

/// The module of a file, loaded into the program. All processes that use it share it, and the system lets go
/// of the file with the last of them. How a process object loads modules; programs use
/// host::HostProcess::loadModule().
///
/// Threads: all operations may be called from any thread.
class CORE_API LoadedModule {
  public:
    /// One use of a module, which unload() ends.
    using Use = std::shared_ptr<LoadedModule>;

    /// Loads the module of a file, or finds it loaded. Throws ModuleException, and nothing of the file stays
    /// loaded then: kModuleMissing, kModuleNotLoadable, kModuleNone, kModuleInterface, kModuleName.
    [[nodiscard]] static Use load(const std::filesystem::path& file);
    /// Ends a use. With the last one the system lets go of the file, unless objects of the module are still
    /// alive: then it stays in memory.
    static void unload(Use use) noexcept;
    /// Returns whether a use is the last one.
    [[nodiscard]] static bool isLast(const Use& use) noexcept;

    /// Returns the module, borrowed as long as the use.
    [[nodiscard]] const SCOM_Module& module() const noexcept { return module_; }
    /// Returns the classes of which objects are alive, over all processes. A held type or enumeration counts
    /// under the name that scripts know. Throws std::bad_alloc.
    [[nodiscard]] std::vector<LiveClass> living() const;

    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule();

  private:
    LoadedModule(const ModuleDeclaration& declaration, const std::filesystem::path& file, void* handle);

    struct All;
    static All& all() noexcept;

    const ModuleDeclaration& declaration_;
    std::filesystem::path file_;
    void* handle_;        // the system's
    ClassEntry* entries_; // what the module lists, then what its static objects declare
    SCOM_ResourceBundle bundle_;
    SCOM_Module module_;
    std::unique_ptr<detail::ModuleCode> code_; // by which callables of the module hold it
};

} // namespace core
