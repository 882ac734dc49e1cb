// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/our_object.h"

#include "bridges/com/call_arguments.h"
#include "bridges/com/errors.h"
#include "bridges/com/options.h"
#include "bridges/com/our_enumerator.h"
#include "bridges/com/our_events.h"
#include "bridges/com/our_members.h"
#include "bridges/com/values.h"

#include <core/runtime/live_counter.h>
#include <core/runtime/process.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace core::com {
namespace {

class OurObject;

/// The objects that the automation system holds, by the values that they stand for.
struct Held {
    std::mutex mutex;
    std::unordered_map<const IValue*, OurObject*> objects;

    static Held& all() noexcept {
        static Held held;
        return held;
    }
};

/// A value as an automation object. Its references are those of the automation system; it holds one to the
/// value.
class OurObject final : public IDispatch,
                        public ISupportErrorInfo,
                        public IOurObject,
                        private LiveObjectTrackerImpl<OurObject> {
  public:
    explicit OurObject(const Value& value)
        : value_(value), context_(value.query<IContext_>()), thread_(GetCurrentThreadId()),
          process_(current_process()) {}

    // IUnknown

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        *out = nullptr;
        if (iid == IID_IUnknown || iid == IID_IDispatch) {
            *out = static_cast<IDispatch*>(this);
        } else if (iid == kOurObject) {
            *out = static_cast<IOurObject*>(this);
        } else if (iid == IID_ISupportErrorInfo) {
            *out = static_cast<ISupportErrorInfo*>(this);
        } else if (iid == IID_IConnectionPointContainer && hasEvents()) {
            *out = static_cast<IConnectionPointContainer*>(events_.get());
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        ULONG left = count_.load();
        while (left > 1) {
            if (count_.compare_exchange_weak(left, left - 1))
                return left - 1;
        }
        { // the last reference is given back where nobody can take another one meanwhile
            Held& held = Held::all();
            const std::scoped_lock lock(held.mutex);
            if (--count_ != 0)
                return count_;
            held.objects.erase(value_.object());
        }
        delete this;
        return 0;
    }

    /// Takes the object over to the thread that hands it out.
    void handOut() noexcept {
        ++count_;
        thread_ = GetCurrentThreadId();
        process_ = current_process();
    }

    // IDispatch

    ::HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr)
            return E_POINTER;
        *count = 0;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** out) noexcept override {
        if (out != nullptr)
            *out = nullptr;
        return DISP_E_BADINDEX;
    }
    ::HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                              DISPID* ids) noexcept override {
        if (names == nullptr || ids == nullptr || count == 0)
            return E_INVALIDARG;
        std::fill_n(ids, count, DISPID_UNKNOWN);
        if (!isHere())
            return RPC_E_WRONG_THREAD;
        try {
            return find_members(context_.get(), {names, count}, ids);
        } catch (...) {
            return report_failure(nullptr);
        }
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* given,
                                       VARIANT* result, EXCEPINFO* info, UINT* argument) noexcept override {
        if (given == nullptr || given->cNamedArgs > given->cArgs ||
            (given->cArgs > 0 && given->rgvarg == nullptr) ||
            (given->cNamedArgs > 0 && given->rgdispidNamedArgs == nullptr))
            return E_INVALIDARG;
        if (!isHere())
            return RPC_E_WRONG_THREAD;
        AddRef(); // the call may let go of the last reference of its caller
        ::HRESULT answer = S_OK;
        try {
            const CallArguments arguments(*given);
            GenericValue returned;
            if (member == DISPID_NEWENUM)
                answer = enumerate(result);
            else if (invoke_member({value_, context_.get()}, member, flags, arguments, returned) &&
                     result != nullptr) {
                VariantInit(result);
                to_variant(returned, *result, for_results);
            }
        } catch (const BadCall& bad) {
            if (argument != nullptr)
                *argument = bad.argument;
            answer = bad.result;
        } catch (...) {
            answer = report_failure(info);
            if (info == nullptr && answer != E_OUTOFMEMORY && answer != E_ABORT)
                answer = DISP_E_EXCEPTION; // what it is stands in the thread's IErrorInfo
        }
        Release();
        return answer;
    }

    // ISupportErrorInfo

    ::HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID) noexcept override { return S_OK; }

    // IOurObject

    const Value& STDMETHODCALLTYPE ourValue() noexcept override { return value_; }

  private:
    /// Objects belong to the thread that handed them out, and to its process. Another apartment has a proxy.
    [[nodiscard]] bool isHere() const noexcept {
        return thread_ == GetCurrentThreadId() && process_ == current_process();
    }

    ::HRESULT enumerate(VARIANT* result) {
        const auto collection = value_.query<IValueCollection>();
        if (!collection || result == nullptr)
            return DISP_E_MEMBERNOTFOUND;
        VariantInit(result);
        V_UNKNOWN(result) = our_enumerator(collection).detach();
        V_VT(result) = VT_UNKNOWN;
        return S_OK;
    }

    [[nodiscard]] bool hasEvents() noexcept {
        if (!events_) {
            try {
                if (const auto source = value_.query<IEventSource>())
                    events_ =
                        std::make_unique<OurEvents>(static_cast<IDispatch&>(*this), source, value_.type());
            } catch (...) {
                return false; // without memory
            }
        }
        return events_ != nullptr;
    }

    std::atomic<ULONG> count_{1};
    Value value_;
    InterfacePtr<IContext_> context_; // null where scripts reach no members
    std::unique_ptr<OurEvents> events_;
    DWORD thread_;
    SCOM_Process* process_;
};

} // namespace

ComPtr<IDispatch> dispatch_of(const Value& value) {
    Held& held = Held::all();
    const std::scoped_lock lock(held.mutex);
    const auto [place, added] = held.objects.try_emplace(value.object());
    if (added) {
        try {
            place->second = new OurObject(value);
        } catch (...) {
            held.objects.erase(place);
            throw;
        }
    } else {
        place->second->handOut();
    }
    return ComPtr<IDispatch>::adopt(place->second);
}

std::size_t held_objects() noexcept {
    Held& held = Held::all();
    const std::scoped_lock lock(held.mutex);
    return held.objects.size();
}

} // namespace core::com
