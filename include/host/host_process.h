// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>
#include <core/runtime/module.h>
#include <core/runtime/process.h>

#include <mutex>
#include <unordered_map>

namespace host {

/// The reference process object: keeps factories and services in tables, and its settings.
///
/// Use it through HostProcess, which also attaches the library. Every thread that has adopted the process may
/// create objects and ask for services; only the thread that made it registers and revokes.
class ProcessObject : public core::SCOM_Process {
  public:
    /// What QueryInterface() answers.
    using Interfaces = core::InterfaceList<core::SCOM_Process>;

    /// Makes a process without classes and services, with a copy of `settings`.
    explicit ProcessObject(const core::Settings& settings);

    // SCOM_Process

    /// Keeps a reference to the factory of a class, in place of an earlier one.
    void registerClass(const core::GUID& clsid, core::IClassFactory* factory, std::int32_t threading,
                       std::int32_t attributes) override;
    /// Lets go of the factory of a class; an unknown class is ignored.
    void revokeClass(const core::GUID& clsid) override;
    /// Returns a new object of a class; null for an unknown class. Throws what the factory throws.
    core::InterfacePtr<core::IUnknown> createInstance(const core::GUID& clsid) override;
    /// Offers an object of the class `clsid` as the service `iid`; it is made when it is first asked for.
    void registerService(const core::GUID& iid, const core::GUID& clsid) override;
    /// Closes what the bundle of a module has opened.
    void revokeResources(core::SCOM_ResourceBundle* bundle) override;
    /// Returns the settings and the data of the process, borrowed as long as it lives.
    core::SCOM_ProcessData* data() noexcept override { return data_.get(); }

    /// Offers an object as the service `iid` and keeps a reference to it.
    void offerService(const core::GUID& iid, core::IUnknown* object);
    /// Sets `out` to the service `iid` with a reference, made on first use; returns kNoInterface if none is
    /// offered.
    core::HRESULT queryOther(const core::GUID& iid, void** out) noexcept;
    /// What a class was registered with.
    struct Registration {
        core::InterfacePtr<core::IClassFactory> factory; ///< null for an unknown class
        std::int32_t threading = 0;                      ///< the first attribute
        std::int32_t attributes = 0;                     ///< the second attribute
    };
    /// Returns what a class was registered with.
    [[nodiscard]] Registration registration(const core::GUID& clsid) const;
    /// Lets go of all services.
    void releaseServices() noexcept;

  private:
    struct Service {
        core::GUID clsid;
        core::InterfacePtr<core::IUnknown> object; // null until it is first asked for
    };

    mutable std::recursive_mutex lock_; // a service may ask for another while it is made
    std::unordered_map<core::GUID, Registration> classes_;
    std::unordered_map<core::GUID, Service> services_;
    core::SCOM_ProcessDataPtr data_;
};

/// A running process: attaches the library, registers the classes of every module, and adopts the calling
/// thread. It ends on the thread that started it, and all objects made in it must be gone by then.
class HostProcess {
  public:
    /// Starts a process with a copy of `settings`. Throws ProcessInitException or std::bad_alloc, and
    /// TimeZoneException for settings whose time zone, or whose system's, is not known; the thread then stays
    /// as it was.
    explicit HostProcess(const core::Settings& settings = {});
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    /// Lets go of the services, revokes the classes, detaches the library and gives the thread its process of
    /// before.
    ~HostProcess();

    /// Returns the process object, borrowed as long as the process lives.
    [[nodiscard]] core::SCOM_Process* get() const noexcept { return object_.get(); }
    /// Returns the settings of the process, borrowed as long as it lives.
    [[nodiscard]] core::Settings& settings() noexcept { return object_->data()->settings; }

    /// Offers an object of the program as the service `iid` and keeps a reference to it until the process
    /// ends.
    void offerService(const core::GUID& iid, core::IUnknown* object) { object_->offerService(iid, object); }

    /// Makes a process that of the calling thread, as long as it lives. It ends on the same thread.
    class ThreadScope {
      public:
        /// Adopts `process`, which must outlive the scope.
        explicit ThreadScope(const HostProcess& process) noexcept
            : before_(core::adopt_thread(process.get())) {}
        ThreadScope(const ThreadScope&) = delete;
        ThreadScope& operator=(const ThreadScope&) = delete;
        /// Gives the thread its process of before.
        ~ThreadScope() { core::adopt_thread(before_); }

      private:
        core::SCOM_Process* before_;
    };

  private:
    core::LibraryScope library_;
    core::InterfacePtr<ProcessObject> object_;
    core::SCOM_Process* before_;
};

} // namespace host
