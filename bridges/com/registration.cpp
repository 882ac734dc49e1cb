// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/errors.h"
#include "bridges/com/our_object.h"
#include "bridges/com/system.h"

#include <core/runtime/process.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>
#include <host/host_process.h>

#include <atomic>
#include <memory>
#include <mutex>

/// What lets other programs of the system make our objects: a class object for each type that scripts can
/// make without arguments, under the id of the type.
namespace core::com {
namespace {

std::atomic<long> factories{0};
std::atomic<long> locks{0};

/// The process that objects live in when no program of ours has loaded the bridge, and the thread that it
/// belongs to.
struct OwnProcess {
    std::mutex mutex;
    std::unique_ptr<::host::HostProcess> process;

    static OwnProcess& get() noexcept {
        static OwnProcess* const own =
            new OwnProcess; // never ends by itself: the system unloads in any order
        return *own;
    }
    /// Starts the process on the first thread that asks. Others find none and get an error.
    void start() {
        const std::scoped_lock lock(mutex);
        if (current_process() == nullptr && !process)
            process = std::make_unique<::host::HostProcess>();
    }
    /// Ends the process; false while anything of it is in use.
    bool end() {
        const std::scoped_lock lock(mutex);
        if (factories != 0 || locks != 0 || held_objects() != 0)
            return false;
        process.reset();
        return true;
    }
};

/// Makes objects of a type.
class Factory final : public ::IClassFactory {
  public:
    explicit Factory(IType* type) noexcept : type_(type) { ++factories; }
    ~Factory() { --factories; }

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *out = known ? this : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --count_;
        if (left == 0)
            delete this;
        return left;
    }
    ::HRESULT STDMETHODCALLTYPE CreateInstance(::IUnknown* outer, REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        *out = nullptr;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        try {
            return dispatch_of(type_->construct({}))->QueryInterface(iid, out);
        } catch (...) {
            return report_failure(nullptr);
        }
    }
    ::HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        locks += lock ? 1 : -1;
        return S_OK;
    }

  private:
    std::atomic<ULONG> count_{0};
    IType* type_;
};

bool can_be_made(IType& type) {
    return type.arguments().least == 0 && type.name(kEnglish) != nullptr;
}

/// The file of this library, as the system names it.
wstring own_file() {
    HMODULE module = nullptr;
    WCHAR name[4096];
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const WCHAR*>(&system_is_here), &module);
    const DWORD length = GetModuleFileNameW(module, name, sizeof name / sizeof *name);
    return {from_com(name), length};
}

void set_key(const wstring& key, const wchar* name, wstring_view text) {
    const wstring value(text);
    check(HRESULT_FROM_WIN32(static_cast<DWORD>(
              RegSetKeyValueW(HKEY_CLASSES_ROOT, to_com(key.c_str()), to_com(name), REG_SZ, value.c_str(),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar))))),
          messages::kNoClass, key);
}

/// Enters the classes under "Core.<English name>", or takes them back.
void enter_classes(bool enter) {
    for (IType* const type : require_service<ITypeValueService>().types()) {
        if (!can_be_made(*type))
            continue;
        const wstring id = u"{" + to_string(type->id()) + u"}";
        const wstring name = wstring(u"Core.") + type->name(kEnglish);
        if (enter) {
            set_key(u"CLSID\\" + id, nullptr, type->name(kEnglish));
            set_key(u"CLSID\\" + id + u"\\InprocServer32", nullptr, own_file());
            set_key(u"CLSID\\" + id + u"\\InprocServer32", u"ThreadingModel", u"Apartment");
            set_key(u"CLSID\\" + id + u"\\ProgID", nullptr, name);
            set_key(name + u"\\CLSID", nullptr, id);
        } else {
            RegDeleteTreeW(HKEY_CLASSES_ROOT, to_com((u"CLSID\\" + id).c_str()));
            RegDeleteTreeW(HKEY_CLASSES_ROOT, to_com(name.c_str()));
        }
    }
}

::HRESULT register_classes(bool enter) noexcept {
    try {
        OwnProcess::get().start();
        enter_classes(enter);
        OwnProcess::get().end();
        return S_OK;
    } catch (...) {
        return report_failure(nullptr);
    }
}

} // namespace
} // namespace core::com

using namespace core::com;

/// Tells the bridge that the system has loaded it.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH)
        system_is_here();
    return TRUE;
}

/// Gives the factory of the type with an id. On a thread where no program has started a process of ours, the
/// first call starts one, to which the thread belongs from then on.
extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    if (out == nullptr)
        return E_POINTER;
    *out = nullptr;
    try {
        OwnProcess::get().start();
        if (core::current_process() == nullptr)
            return RPC_E_WRONG_THREAD;
        core::IType* const type = core::require_service<core::ITypeValueService>().findType(from_com(clsid));
        if (type == nullptr || !can_be_made(*type))
            return CLASS_E_CLASSNOTAVAILABLE;
        return ComPtr<::IClassFactory>(new Factory(type))->QueryInterface(iid, out);
    } catch (...) {
        return report_failure(nullptr);
    }
}

/// Says whether nothing of ours is in use, and ends the process that the bridge has started if so.
extern "C" HRESULT WINAPI DllCanUnloadNow() {
    try {
        return OwnProcess::get().end() ? S_OK : S_FALSE;
    } catch (...) {
        return S_FALSE;
    }
}

/// Enters the classes into the registry, under "Core." and their English names.
extern "C" HRESULT WINAPI DllRegisterServer() {
    return register_classes(true);
}

/// Takes the classes out of the registry.
extern "C" HRESULT WINAPI DllUnregisterServer() {
    return register_classes(false);
}
