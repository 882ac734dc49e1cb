// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/runtime/refcount.h>
#include <core/runtime/settings.h>

namespace core {

class SCOM_Module;
class SCOM_ResourceBundle;

namespace detail {
struct AdoptedThread;
} // namespace detail

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
/// Threads: every thread that it has adopted may create objects and ask for services, also while another one
/// registers and revokes.
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

    // The operations below have a plain form in terms of those above, for processes that do not know modules
    // from each other.

    /// Returns the service `iid`, as a pointer to that interface, or null when it is not offered. It is
    /// borrowed: valid while the process holds the service. The first call makes it and throws what its
    /// constructor throws, then the next call tries again. Plain form: a query whose reference is given back.
    [[nodiscard]] virtual void* service(const GUID& iid) {
        void* answer = nullptr;
        if (QueryInterface(iid, &answer) == kOk)
            static_cast<IUnknown*>(answer)->Release();
        return answer;
    }
    /// Lets go of a service, whose class stays; unknown ids are ignored. Plain form: nothing.
    virtual void revokeService(const GUID& iid) { static_cast<void>(iid); }
    /// Does what registerClass() does, for a class of `owner`, which must live until the class is revoked.
    /// Throws ProcessException (kClassClaimed) for a class that another module has. Plain form:
    /// registerClass().
    virtual void registerModuleClass(const SCOM_Module& owner, const GUID& clsid, IClassFactory* factory,
                                     std::int32_t threading, std::int32_t attributes) {
        static_cast<void>(owner);
        registerClass(clsid, factory, threading, attributes);
    }
    /// Does what revokeClass() does, when the class belongs to `owner`, and nothing otherwise. Plain form:
    /// revokeClass().
    virtual void revokeModuleClass(const SCOM_Module& owner, const GUID& clsid) {
        static_cast<void>(owner);
        revokeClass(clsid);
    }
    /// Does what revokeResources() does, for the services of `owner` alone. `bundle` is that of `owner`.
    /// Plain form: revokeResources().
    virtual void revokeModuleResources(const SCOM_Module& owner, SCOM_ResourceBundle* bundle) {
        static_cast<void>(owner);
        revokeResources(bundle);
    }

  protected:
    ~SCOM_Process() = default;
};

/// Returns the process that has adopted the calling thread, borrowed; null when none has, and when the one
/// that had has ended.
[[nodiscard]] CORE_API SCOM_Process* current_process() noexcept;
/// Returns the process that has adopted the calling thread, borrowed. Throws ProcessException (kNoProcess)
/// when none has.
[[nodiscard]] CORE_API SCOM_Process& require_process();
/// Returns the data of the calling thread's process, borrowed; null without a process.
[[nodiscard]] CORE_API SCOM_ProcessData* current_process_data() noexcept;

/// Makes a process that of the calling thread, as long as the scope lives. Scopes of one thread end in any
/// order, and on any thread: the newest one whose process has not ended counts. It has no effect while the
/// library is not attached.
class CORE_API ProcessScope {
  public:
    /// Adopts the calling thread into `process`, which is borrowed; null has no effect. Throws
    /// std::bad_alloc.
    explicit ProcessScope(SCOM_Process* process);
    ProcessScope(const ProcessScope&) = delete;
    ProcessScope& operator=(const ProcessScope&) = delete;
    /// Gives the thread the process that it would have without this scope.
    ~ProcessScope();

  private:
    friend struct detail::AdoptedThread;

    SCOM_Process* process_;                   // null when it has ended
    detail::AdoptedThread* thread_ = nullptr; // null when it has ended, or the library is detached
    ProcessScope* before_ = nullptr;          // of the same thread
};

/// Lets go of all threads that `process` has adopted: they have none of it from now on. Its maker calls this
/// before it ends; a thread that is inside of it at that time must have left it before.
CORE_API void release_threads(SCOM_Process* process) noexcept;

/// Returns a new object of a class in the current process, queried for `T`. Null without a factory or a `T`.
/// Throws ProcessException (kNoProcess) without a process, and what the class's constructor throws.
template <Interface T>
[[nodiscard]] InterfacePtr<T> create_object(const GUID& clsid) {
    return require_process().createInstance(clsid).query<T>();
}

/// Returns the service that offers `T` in the current process. Null without a process, without such a
/// service, and when the service cannot be made; require_service() says which. It is borrowed: valid while
/// the process holds the service, and not to be released.
template <Interface T>
[[nodiscard]] T* get_service() noexcept {
    SCOM_Process* const process = current_process();
    if (process == nullptr)
        return nullptr;
    try {
        return static_cast<T*>(process->service(T::IID));
    } catch (...) { // each further call tries again, so nothing is lost for who asks why
        return nullptr;
    }
}

namespace detail {

/// Throws ProcessException (kNoService).
[[noreturn]] CORE_API void no_service(const GUID& iid);

} // namespace detail

/// Returns the service that offers `T` in the current process, borrowed as get_service() says. Throws
/// ProcessException without a process (kNoProcess), for a service that is not offered (kNoService) and for
/// one that asks for itself (kServiceCircle), and what the service's constructor throws.
template <Interface T>
[[nodiscard]] T& require_service() {
    void* const service = require_process().service(T::IID);
    if (service == nullptr)
        detail::no_service(T::IID);
    return *static_cast<T*>(service);
}

} // namespace core
