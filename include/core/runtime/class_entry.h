// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>

#include <cstddef>
#include <cstdint>

/// How a module declares its classes and services: one static object each, linked into one list before the
/// module's first line runs.
namespace core {

/// What the module's class table holds of a class: nine words, all zero in the table's last record.
struct ClassRecord {
    const GUID* clsid = nullptr; ///< the class id, borrowed: valid as long as the module
    /// Makes an object and queries it for `iid`, as IClassFactory::CreateInstance does.
    HRESULT (*createInstance)(IUnknown* outer, const GUID& iid, void** out) = nullptr;
    /// Makes the class's factory and queries it for `iid`.
    HRESULT (*getFactory)(const ClassRecord& record, const GUID& iid, void** out) = nullptr;
    const char* name = nullptr;      ///< the implementing class, for reports
    const GUID* service = nullptr;   ///< the interface under which a service is offered; null for a class
    std::uintptr_t scriptClass = 0;  ///< 1 for the type and factory classes of the script layer
    std::uintptr_t reserved[3] = {}; ///< zero
};
static_assert(sizeof(ClassRecord) == 9 * sizeof(void*));

/// A declared class: its record, what its registration passes on, and the entry declared before it.
struct ClassEntry {
    ClassRecord record;          ///< what the class table copies
    std::int32_t threading = 0;  ///< 0: objects may be made and used on any thread, one thread at a time
    std::int32_t attributes = 0; ///< passed on at registration; no bit has a meaning yet
    ClassEntry* next = nullptr;  ///< the entry declared before, null for the first
};

/// What the registration of a class passes on, as ClassEntry says.
struct ClassAttributes {
    std::int32_t threading = 0;  ///< 0: objects may be made and used on any thread, one thread at a time
    std::int32_t attributes = 0; ///< no bit has a meaning yet; a process may give them one
};

/// The head of the calling module's list. Each module (a shared library or a program) has its own.
[[gnu::visibility("hidden")]] inline constinit ClassEntry* module_class_entries = nullptr;

/// Puts a declaration at the head of the calling module's list.
[[gnu::visibility("hidden")]] inline void declare_class(ClassEntry& entry) noexcept {
    entry.next = module_class_entries;
    module_class_entries = &entry;
}

/// Makes the class factory of a record and stores its interface `iid` in `*out` with a reference. Never
/// throws; returns kNoInterface, with null stored, for an interface that a factory does not have and without
/// memory.
CORE_API HRESULT create_class_factory(const ClassRecord& record, const GUID& iid, void** out) noexcept;

namespace detail {

/// What makes the objects of `T`: SCOM_InternalClass<T>, or `T::instance()` for one
/// object that everybody shares.
template <class T>
HRESULT create_instance(IUnknown* outer, const GUID& iid, void** out) {
    if (out == nullptr)
        return kNoInterface;
    *out = nullptr;
    if (outer != nullptr)
        return kNoInterface;
    if constexpr (requires { T::instance(); }) {
        return T::instance()->QueryInterface(iid, out);
    } else {
        const auto object = SCOM_InternalClass<T>::create();
        return object ? object->QueryInterface(iid, out) : kNoInterface;
    }
}

template <class T>
constexpr ClassRecord class_record(const GUID& clsid, const char* name, bool scriptClass,
                                   const GUID* service) noexcept {
    return {.clsid = &clsid,
            .createInstance = &create_instance<T>,
            .getFactory = &create_class_factory,
            .name = name,
            .service = service,
            .scriptClass = scriptClass ? 1U : 0U};
}

} // namespace detail

/// Declares class `T` under a class id, as a static object of a source file of its module. `scriptClass` is
/// true for the type and factory classes of the script layer.
template <class T, const GUID* clsid, bool scriptClass = false>
class SCOM_ClassEntryInit {
  public:
    /// Declares the class under `name`, which reports show, to be registered with `attributes`. The name is
    /// kept by address.
    explicit SCOM_ClassEntryInit(const char* name, ClassAttributes attributes = {}) noexcept
        : SCOM_ClassEntryInit(name, attributes, nullptr) {}
    SCOM_ClassEntryInit(const SCOM_ClassEntryInit&) = delete;
    SCOM_ClassEntryInit& operator=(const SCOM_ClassEntryInit&) = delete;

  protected:
    /// Declares the class and, if `service` is not null, offers it as that service. Both are kept by address.
    SCOM_ClassEntryInit(const char* name, ClassAttributes attributes, const GUID* service) noexcept {
        entry_.record = detail::class_record<T>(*clsid, name, scriptClass, service);
        entry_.threading = attributes.threading;
        entry_.attributes = attributes.attributes;
        declare_class(entry_);
    }

  private:
    ClassEntry entry_;
};

/// Another name of SCOM_ClassEntryInit.
template <class T, const GUID* clsid, bool scriptClass = false>
using SCOM_Class = SCOM_ClassEntryInit<T, clsid, scriptClass>;

/// Declares a service: the class that implements it and the interface under which processes offer it.
template <class Impl, const GUID* clsid, const GUID* iid>
class SCOM_ServiceEntryInit : public SCOM_ClassEntryInit<Impl, clsid> {
  public:
    /// Declares the class and its service under `name`, which reports show, to be registered with
    /// `attributes`. The name is kept by address.
    explicit SCOM_ServiceEntryInit(const char* name, ClassAttributes attributes = {}) noexcept
        : SCOM_ClassEntryInit<Impl, clsid>(name, attributes, iid) {}
};

} // namespace core
