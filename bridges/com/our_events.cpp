// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/our_events.h"

#include "bridges/com/errors.h"
#include "bridges/com/names.h"
#include "bridges/com/options.h"
#include "bridges/com/values.h"

#include <core/context/events/event_service.h>
#include <core/runtime/name_guid.h>
#include <core/strings/term.h>

#include <atomic>

namespace core::com {
namespace {

/// Calls a member of who listens.
void call_listener(IDispatch& listener, DISPID member, const wstring& name,
                   std::span<const GenericValue> values) {
    std::vector<Variant> arguments(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        to_variant(values[i], arguments[values.size() - 1 - i], for_results);
    DISPPARAMS given{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    EXCEPINFO info{};
    UINT wrong = 0;
    const ::HRESULT result = listener.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given,
                                             nullptr, &info, &wrong);
    if (FAILED(result) && result != DISP_E_MEMBERNOTFOUND) // not every listener hears everything
        throw_failed_call(name, result, &info);
}

DISPID member_of(IDispatch& listener, const IEventSource& source, int event) {
    for (const int alias : {kEnglish, kRussian}) {
        wstring name = source.getEventName(event, alias);
        LPOLESTR units = to_com(name.data());
        DISPID id = DISPID_UNKNOWN;
        if (SUCCEEDED(listener.GetIDsOfNames(IID_NULL, &units, 1, LOCALE_USER_DEFAULT, &id)))
            return id;
    }
    return id_of_name(source.getEventName(event, kEnglish));
}

/// The one connection point of an object, as a walk.
class OnePoint final : public IEnumConnectionPoints {
  public:
    OnePoint(ComPtr<IConnectionPoint> point, bool passed) noexcept
        : point_(std::move(point)), passed_(passed) {}

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        const bool known = iid == IID_IUnknown || iid == IID_IEnumConnectionPoints;
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
    ::HRESULT STDMETHODCALLTYPE Next(ULONG wanted, IConnectionPoint** out, ULONG* fetched) noexcept override {
        const bool given = wanted > 0 && !passed_;
        if (given) {
            *out = ComPtr(point_).detach();
            passed_ = true;
        }
        if (fetched != nullptr)
            *fetched = given ? 1 : 0;
        return (given ? 1 : 0) == wanted ? S_OK : S_FALSE;
    }
    ::HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
        const ULONG left = passed_ ? 0 : 1;
        passed_ = passed_ || count > 0;
        return count <= left ? S_OK : S_FALSE;
    }
    ::HRESULT STDMETHODCALLTYPE Reset() noexcept override {
        passed_ = false;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** out) noexcept override {
        *out = new (std::nothrow) OnePoint(point_, passed_);
        return *out != nullptr ? S_OK : E_OUTOFMEMORY;
    }

  private:
    std::atomic<ULONG> count_{1};
    ComPtr<IConnectionPoint> point_;
    bool passed_;
};

} // namespace

::GUID events_id(const Type& type) {
    return to_com(name_guid("5a1d0f2e-93c7-4b58-8e64-0d7a3f51c9b2"_guid, type.name(kEnglish)));
}

::HRESULT OurEvents::EnumConnectionPoints(IEnumConnectionPoints** out) noexcept {
    if (out == nullptr)
        return E_POINTER;
    *out = new (std::nothrow) OnePoint(ComPtr<IConnectionPoint>(&point_), false);
    return *out != nullptr ? S_OK : E_OUTOFMEMORY;
}

::HRESULT OurEvents::FindConnectionPoint(REFIID iid, IConnectionPoint** out) noexcept {
    if (out == nullptr)
        return E_POINTER;
    *out = nullptr;
    if (iid != point_.id() && iid != IID_IDispatch)
        return CONNECT_E_NOCONNECTION;
    point_.AddRef();
    *out = &point_;
    return S_OK;
}

::HRESULT OurEvents::Point::QueryInterface(REFIID iid, void** out) noexcept {
    if (out == nullptr)
        return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IConnectionPoint;
    *out = known ? this : nullptr;
    if (known)
        AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

::HRESULT OurEvents::Point::GetConnectionInterface(IID* out) noexcept {
    if (out == nullptr)
        return E_POINTER;
    *out = id_;
    return S_OK;
}

::HRESULT OurEvents::Point::GetConnectionPointContainer(IConnectionPointContainer** out) noexcept {
    if (out == nullptr)
        return E_POINTER;
    events_.AddRef();
    *out = &events_;
    return S_OK;
}

::HRESULT OurEvents::Point::Advise(::IUnknown* sink, DWORD* cookie) noexcept {
    if (sink == nullptr || cookie == nullptr)
        return E_POINTER;
    *cookie = 0;
    ComPtr<IDispatch> listener;
    if (FAILED(sink->QueryInterface(id_, listener.out())))
        listener = ComPtr<IDispatch>::query(sink);
    if (!listener)
        return CONNECT_E_CANNOTCONNECT;
    try {
        Advised advised{last_ + 1, {}};
        IEventSource& source = *events_.source_;
        for (int event = 0; event < source.getNEvents(); ++event) {
            const auto handler = make_event_sink(
                [listener, member = member_of(*listener.get(), source, event),
                 name = wstring(source.getEventName(event, kEnglish))](std::span<const GenericValue> values) {
                    call_listener(*listener.get(), member, name, values);
                });
            advised.connections.push_back(source.connectSink(event, handler.get()));
        }
        advised_.push_back(std::move(advised));
        *cookie = ++last_;
        return S_OK;
    } catch (...) {
        return report_failure(nullptr);
    }
}

::HRESULT OurEvents::Point::Unadvise(DWORD cookie) noexcept {
    return std::erase_if(advised_, [&](const Advised& one) { return one.cookie == cookie; }) > 0
               ? S_OK
               : CONNECT_E_NOCONNECTION;
}

::HRESULT OurEvents::Point::EnumConnections(IEnumConnections** out) noexcept {
    if (out != nullptr)
        *out = nullptr;
    return E_NOTIMPL;
}

} // namespace core::com
