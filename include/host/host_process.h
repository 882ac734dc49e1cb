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
/// Use it through HostProcess, which also brings the library up. Threads: creating objects and
/// asking for services is safe on every thread that has adopted the process; registering and
/// revoking is for the thread that made it.
class ProcessObject : public core::SCOM_Process {
  public:
    using Interfaces = core::InterfaceList<core::SCOM_Process>;

    explicit ProcessObject(const core::Settings& settings);

    // SCOM_Process
    void registerClass(const core::GUID& clsid, core::IClassFactory* factory, std::int32_t threading,
                       std::int32_t attributes) override;
    void revokeClass(const core::GUID& clsid) override;
    core::InterfacePtr<core::IUnknown> createInstance(const core::GUID& clsid) override;
    void registerService(const core::GUID& iid, const core::GUID& clsid) override;
    void revokeResources(core::SCOM_ResourceBundle* bundle) override;
    core::SCOM_ProcessData* data() noexcept override { return data_.get(); }

    /// Offers an object that is there already as the service `iid`.
    void offerService(const core::GUID& iid, core::IUnknown* object);
    /// Answers for the services: the one offered under `iid`, made on first use.
    core::HRESULT queryOther(const core::GUID& iid, void** out) noexcept;
    /// What a class was registered with: its factory (null for an unknown class) and attributes.
    struct Registration {
        core::InterfacePtr<core::IClassFactory> factory;
        std::int32_t threading = 0;
        std::int32_t attributes = 0;
    };
    [[nodiscard]] Registration registration(const core::GUID& clsid) const;
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
/// thread. Its destructor releases services, revokes the classes and detaches, so all objects made in it must
/// be gone by then. One that cannot be started throws ProcessInitException or std::bad_alloc and leaves the
/// thread as it was. It ends on the thread that started it.
class HostProcess {
  public:
    /// Throws TimeZoneException for settings whose time zone, or whose system, has a zone that is not known.
    explicit HostProcess(const core::Settings& settings = {});
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    ~HostProcess();

    /// The process object, borrowed.
    [[nodiscard]] core::SCOM_Process* get() const noexcept { return object_.get(); }
    [[nodiscard]] core::Settings& settings() noexcept { return object_->data()->settings; }

    /// Offers an object of the program as the service `iid`. It is let go of when the process ends.
    void offerService(const core::GUID& iid, core::IUnknown* object) { object_->offerService(iid, object); }

    /// Makes the process that of the calling thread while it lives, then restores the one before.
    class ThreadScope {
      public:
        explicit ThreadScope(const HostProcess& process) noexcept
            : before_(core::adopt_thread(process.get())) {}
        ThreadScope(const ThreadScope&) = delete;
        ThreadScope& operator=(const ThreadScope&) = delete;
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
