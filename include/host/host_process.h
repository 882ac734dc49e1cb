// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>
#include <core/runtime/loaded_module.h>
#include <core/runtime/module.h>
#include <core/runtime/process.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

namespace detail {
class ClassTable;
class ServiceTable;
} // namespace detail

/// The reference process object: keeps factories and services in tables, and its settings.
///
/// Use it through HostProcess, which also attaches the library. All operations may be called on any thread,
/// at the same time; creating objects and finding services take no lock.
class ProcessObject : public core::SCOM_Process {
  public:
    /// What QueryInterface() answers.
    using Interfaces = core::InterfaceList<core::SCOM_Process>;

    /// Makes a process without classes and services, with a copy of `settings`.
    explicit ProcessObject(const core::Settings& settings);
    ProcessObject(const ProcessObject&) = delete;
    ProcessObject& operator=(const ProcessObject&) = delete;

    // SCOM_Process

    /// Keeps a reference to the factory of a class of the program, in place of an earlier one. Throws
    /// ProcessException (kClassClaimed) for a class of a module.
    void registerClass(const core::GUID& clsid, core::IClassFactory* factory, std::int32_t threading,
                       std::int32_t attributes) override;
    /// Lets go of the factory of a class, of any owner, and of its services. An unknown class is ignored.
    void revokeClass(const core::GUID& clsid) override;
    /// Returns a new object of a class; null for an unknown class. Throws what the factory throws.
    core::InterfacePtr<core::IUnknown> createInstance(const core::GUID& clsid) override;
    /// Offers an object of the class `clsid` as the service `iid`; it is made when it is first asked for. The
    /// owner of the class owns the service. Throws ProcessException (kServiceClaimed) for a service of
    /// another owner.
    void registerService(const core::GUID& iid, const core::GUID& clsid) override;
    /// Lets go of the services of the modules whose messages come from `bundle`.
    void revokeResources(core::SCOM_ResourceBundle* bundle) override;
    /// Returns the settings and the data of the process, borrowed as long as it lives.
    core::SCOM_ProcessData* data() noexcept override { return data_.get(); }
    /// Returns a service or null, as SCOM_Process says. The first of several threads that ask makes it, in
    /// this process, and the others wait. Throws ProcessException (kServiceCircle) for a service that would
    /// wait for itself.
    void* service(const core::GUID& iid) override;
    /// Lets go of a service, of any owner.
    void revokeService(const core::GUID& iid) override;
    /// Keeps a reference to the factory of a class of `owner`, in place of an earlier one of the same owner.
    /// Throws ProcessException (kClassClaimed) for a class of another owner.
    void registerModuleClass(const core::SCOM_Module& owner, const core::GUID& clsid,
                             core::IClassFactory* factory, std::int32_t threading,
                             std::int32_t attributes) override;
    /// Lets go of the factory of a class of `owner` and of its services; any other class is ignored.
    void revokeModuleClass(const core::SCOM_Module& owner, const core::GUID& clsid) override;
    /// Lets go of the services of `owner`.
    void revokeModuleResources(const core::SCOM_Module& owner, core::SCOM_ResourceBundle* bundle) override;

    /// Adds all classes and services of the library, in a time that does not depend on how many classes there
    /// are. Throws std::bad_alloc, and ProcessException (kClassClaimed, kServiceClaimed) for one that another
    /// owner has.
    void addLibrary();
    /// Takes the classes and services of the library back, those services that were made last first.
    void removeLibrary() noexcept;
    /// Offers an object as the service `iid`, in place of any other, and keeps a reference to it. Throws
    /// ProcessException (kNoService) when the object does not have the interface.
    void offerService(const core::GUID& iid, core::IUnknown* object);
    /// Sets `out` to the service `iid` with a reference, made on first use; returns kNoInterface if none is
    /// offered, and when making it throws.
    core::HRESULT queryOther(const core::GUID& iid, void** out) noexcept;
    /// What a class was registered with.
    struct Registration {
        core::InterfacePtr<core::IClassFactory> factory; ///< null for an unknown class
        std::int32_t threading = 0;                      ///< the first attribute
        std::int32_t attributes = 0;                     ///< the second attribute
        const core::SCOM_Module* owner = nullptr; ///< the module that declared it; null for the program
    };
    /// Returns whether objects of a class can be made. Takes no lock.
    [[nodiscard]] bool hasClass(const core::GUID& clsid) const noexcept;
    /// Makes no objects of the classes of `owner`, a loaded module, any more, and lets go of those that are
    /// its services, the last one made first. What is registered stays, for resume().
    void suspend(const core::SCOM_Module& owner) noexcept;
    /// Undoes suspend(): services are made again when they are next asked for.
    void resume(const core::SCOM_Module& owner) noexcept;
    /// Returns what a class was registered with.
    [[nodiscard]] Registration registration(const core::GUID& clsid) const;
    /// Lets go of all services, the last one made first.
    void releaseServices() noexcept;
    /// Lets go of the factories of revoked classes. False, keeping them, while any thread creates an object:
    /// the code of a module may then still run.
    bool settle() noexcept;

  protected:
    ~ProcessObject();

  private:
    core::SCOM_ProcessDataPtr data_;
    std::unique_ptr<detail::ClassTable> classes_;
    std::unique_ptr<detail::ServiceTable> services_;
};

/// A running process: attaches the library, registers the classes of every module, and adopts the calling
/// thread. Several processes of one thread end in any order; all objects made in a process must be gone when
/// it ends.
class HostProcess {
  public:
    /// Starts a process with a copy of `settings`. Throws ProcessInitException or std::bad_alloc,
    /// ProcessException when two modules declare one class or service, and TimeZoneException for settings
    /// whose time zone, or whose system's, is not known; the thread then stays as it was.
    explicit HostProcess(const core::Settings& settings = {});
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Asks each core::Thread that was started in the process to stop and waits for its end, lets go of the
    /// services, revokes the classes, lets go of the other threads and detaches the library. The thread that
    /// started the process has the one of before. Other threads that work in it must have been joined, or
    /// have left it; one that comes back finds no process.
    ~HostProcess();

    /// Returns the process object, borrowed as long as the process lives.
    [[nodiscard]] core::SCOM_Process* get() const noexcept { return object_.get(); }
    /// Returns the settings of the process, borrowed as long as it lives.
    [[nodiscard]] core::Settings& settings() noexcept { return object_->data()->settings; }

    /// Offers an object of the program as the service `iid`, in place of any other, and keeps a reference to
    /// it until the process ends. Throws ProcessException (kNoService) when the object does not have the
    /// interface.
    void offerService(const core::GUID& iid, core::IUnknown* object) { object_->offerService(iid, object); }

    // modules

    /// Loads a module: its classes, services, types and enumerations are part of the process from now on, for
    /// objects that exist, too. Returns it, borrowed until it is unloaded. Throws ModuleException: what
    /// core::LoadedModule::load() throws, and kModuleTwice for a name that the process has already. Throws
    /// ProcessException for a class that another module has, ProcessInitException and std::bad_alloc without
    /// memory. The process is then unchanged.
    ///
    /// Threads: one thread at a time loads and unloads; others may work in the process meanwhile.
    const core::SCOM_Module& loadModule(const std::filesystem::path& file);
    /// Takes the classes of a loaded module back, lets go of its services, and of its file when no other
    /// process uses it. Throws ModuleException: kModuleNotLoaded; kModuleInUse, which names what is alive of
    /// it: objects, callables of events and scripts, types and enumerations that values hold; kModuleBusy.
    /// It then stays, with all that it registered, and its services are made again when they are next asked
    /// for; so it does when memory runs out. The caller sees to it that no thread is inside the module's
    /// functions and nobody keeps what was borrowed from it.
    void unloadModule(std::string_view name);
    /// Returns the modules of the process, borrowed until they are unloaded: the library, those that the
    /// program is made of, and those that were loaded, in that order.
    [[nodiscard]] std::vector<const core::SCOM_Module*> modules() const;

    /// Makes a process that of the calling thread, as long as the scope lives.
    class ThreadScope : public core::ProcessScope {
      public:
        /// Adopts the calling thread into `process`. Throws std::bad_alloc.
        explicit ThreadScope(const HostProcess& process) : ProcessScope(process.get()) {}
    };

  private:
    void take(const core::SCOM_Module& module);
    void settle(std::string_view module) const;
    void unloadAll() noexcept;

    core::LibraryScope library_;
    core::InterfacePtr<ProcessObject> object_;
    std::vector<core::LoadedModule::Use> loaded_;
    std::optional<core::ProcessScope> scope_; // of the thread that started it
};

} // namespace host
