// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/runtime/refcount.h>
#include <core/runtime/settings.h>

namespace core {

class SCOM_ResourceBundle;

/// Makes objects of one class.
class IClassFactory : public IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "00000001-0000-0000-c000-000000000046"_guid;

    /// Stores the interface `iid` of a new object in `*out` with a reference. `outer` must be
    /// null: no class of this library can be a part of another object's identity. Throws what
    /// the class's constructor throws.
    virtual HRESULT CreateInstance(IUnknown* outer, const GUID& iid, void** out) = 0;
    /// Has no effect; the library stays loaded as long as its process needs it.
    virtual HRESULT LockServer(bool lock) noexcept = 0;

  protected:
    ~IClassFactory() = default;
};

/// What all code of one process shares. Held by the process object.
class SCOM_ProcessData : private LiveObjectTrackerImpl<SCOM_ProcessData> {
  public:
    Settings settings; ///< changed by the host before other threads work in the process, only read later
};

/// How a process holds its data.
using SCOM_ProcessDataPtr = CountedPtr<SCOM_ProcessData, ExtrinsicRefcount<SCOM_ProcessData, AtomicCounter>>;

/// The host's process object: it keeps class factories, makes objects by class id and answers its own
/// QueryInterface with the services that it offers.
///
/// Threads: the library reads it from every thread that has adopted it; registration happens before that.
class SCOM_Process : public IUnknown {
  public:
    static constexpr GUID IID = "ff081281-8fe0-48ce-9a38-610ac60cd37a"_guid;

    /// Keeps `factory`, taking a reference, as what makes objects of class `clsid`; the attributes are those
    /// of the class's declaration.
    virtual void registerClass(const GUID& clsid, IClassFactory* factory, std::int32_t threading,
                               std::int32_t attributes) = 0;
    /// Forgets the factory of a class; unknown ids are ignored.
    virtual void revokeClass(const GUID& clsid) = 0;
    /// Returns a new object of the class, to be queried for the interface that is needed. Null when no
    /// factory is registered; throws what the class's constructor throws.
    [[nodiscard]] virtual InterfacePtr<IUnknown> createInstance(const GUID& clsid) = 0;
    /// Offers, as the service `iid`, one object of class `clsid`, made when it is first asked for.
    virtual void registerService(const GUID& iid, const GUID& clsid) = 0;
    /// Told once, before the classes of a module are revoked, which bundle its messages come from.
    virtual void revokeResources(SCOM_ResourceBundle* bundle) = 0;
    /// Returns the data of the process, borrowed: valid as long as the process.
    [[nodiscard]] virtual SCOM_ProcessData* data() noexcept = 0;

  protected:
    ~SCOM_Process() = default;
};

/// Returns the process that has adopted the calling thread, borrowed; null when none has.
[[nodiscard]] CORE_API SCOM_Process* current_process() noexcept;
/// Returns the data of the calling thread's process, borrowed; null without a process.
[[nodiscard]] CORE_API SCOM_ProcessData* current_process_data() noexcept;
/// Makes `process` (borrowed, null for none) the process of the calling thread and returns the one before.
/// Has no effect while the library is not attached.
CORE_API SCOM_Process* adopt_thread(SCOM_Process* process) noexcept;

/// Returns a new object of a class in the current process, queried for `T`. Null without a process, a factory
/// or a `T`; throws what the class's constructor throws.
template <Interface T>
[[nodiscard]] InterfacePtr<T> create_object(const GUID& clsid) {
    SCOM_Process* const process = current_process();
    return process != nullptr ? process->createInstance(clsid).query<T>() : InterfacePtr<T>();
}

/// Returns the service that offers `T` in the current process, or null. It is borrowed: valid while the
/// process holds the service, and not to be released.
template <Interface T>
[[nodiscard]] T* get_service() noexcept {
    SCOM_Process* const process = current_process();
    return process != nullptr ? InterfacePtr<T>(process).get() : nullptr;
}

} // namespace core
