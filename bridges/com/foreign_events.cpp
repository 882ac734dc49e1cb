// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/foreign_events.h"

#include "bridges/com/errors.h"
#include "bridges/com/values.h"

#include <core/runtime/live_counter.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <atomic>

namespace core::com {

/// An event whose sinks get values.
struct ForeignEvents::Event {
    struct Raised : EventBase {
        explicit Raised(const EventNames& names) noexcept : EventBase(names) {}
        void raise(std::span<const GenericValue> values) {
            if (detail::SinkTable* const sinks = table()) {
                detail::Emission emission;
                emission.converted = values;
                emit(*sinks, emission);
            }
        }
    };

    explicit Event(KnownMember&& member)
        : known(std::move(member)), names{{known.name.c_str(), nullptr}}, raised(names) {}

    KnownMember known;
    EventNames names;
    Raised raised;
};

/// What the object calls. It may outlive the events, which then hear nothing.
class ForeignEvents::Listener final : public IDispatch, private LiveObjectTrackerImpl<Listener> {
  public:
    explicit Listener(ForeignEvents& events) noexcept
        : events_(&events), id_(events.id_), thread_(GetCurrentThreadId()) {}
    void end() noexcept { events_ = nullptr; }

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        if (out == nullptr)
            return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == id_;
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
        if (count == 0 || names == nullptr || names[0] == nullptr || ids == nullptr)
            return E_INVALIDARG;
        const int number = events_ != nullptr ? events_->find(from_com(names[0])) : -1;
        std::fill_n(ids, count, DISPID_UNKNOWN);
        if (number >= 0)
            ids[0] = events_->at(number)->id;
        return number >= 0 && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*,
                                       EXCEPINFO* info, UINT*) noexcept override {
        if (given == nullptr || (given->cArgs > 0 && given->rgvarg == nullptr))
            return E_INVALIDARG;
        if (thread_ != GetCurrentThreadId())
            return RPC_E_WRONG_THREAD;
        if (events_ == nullptr)
            return S_OK;
        const auto& all = events_->events_;
        const auto found = std::ranges::find(all, member, [](const auto& one) { return one->known.id; });
        if (found == all.end())
            return DISP_E_MEMBERNOTFOUND;
        if (given->cNamedArgs > 0)
            return DISP_E_NONAMEDARGS;
        if (given->cArgs > (*found)->known.params.size())
            return DISP_E_BADPARAMCOUNT; // the library of the object says that there are fewer
        try {
            std::vector<GenericValue> values(given->cArgs);
            for (UINT i = 0; i < given->cArgs; ++i)
                values[given->cArgs - 1 - i] = from_variant(given->rgvarg[i]);
            (*found)->raised.raise(values);
            return S_OK;
        } catch (...) {
            return report_failure(info);
        }
    }

  private:
    std::atomic<ULONG> count_{0};
    ForeignEvents* events_; // null when they have gone
    ::GUID id_;
    DWORD thread_; // where the handlers run
};

namespace {

/// The connection point that most listeners want, and the id of its interface.
ComPtr<IConnectionPoint> default_point(::IUnknown* object, ::GUID& id) {
    ComPtr<IConnectionPoint> point;
    const auto container = ComPtr<IConnectionPointContainer>::query(object);
    if (!container)
        return point;
    const auto info = ComPtr<IProvideClassInfo2>::query(object);
    if (info && SUCCEEDED(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id)) &&
        SUCCEEDED(container->FindConnectionPoint(id, point.typed())))
        return point;
    ComPtr<IEnumConnectionPoints> all;
    ULONG count = 0;
    if (FAILED(container->EnumConnectionPoints(all.typed())) || !all ||
        all->Next(1, point.typed(), &count) != S_OK || FAILED(point->GetConnectionInterface(&id)))
        return {};
    return point;
}

/// The interface of listeners as the library of the object describes it.
ComPtr<ITypeInfo> listener_type(IDispatch* dispatch, const ::GUID& id) {
    const wstring what = to_string(from_com(id));
    check_given(S_OK, dispatch, messages::kNoEventNames, what);
    ComPtr<ITypeInfo> own;
    check_given(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, own.typed()), own, messages::kNoEventNames,
                what);
    ComPtr<ITypeLib> library;
    UINT index = 0;
    check_given(own->GetContainingTypeLib(library.typed(), &index), library, messages::kNoEventNames, what);
    ComPtr<ITypeInfo> found;
    check_given(library->GetTypeInfoOfGuid(id, found.typed()), found, messages::kNoEventNames, what);
    return found;
}

} // namespace

ForeignEvents::ForeignEvents(ComPtr<IConnectionPoint> point, const ::GUID& id, KnownMembers events)
    : point_(std::move(point)), id_(id) {
    for (KnownMember& event : events)
        events_.push_back(std::make_unique<Event>(std::move(event)));
}

bool ForeignEvents::has(::IUnknown* object) noexcept {
    ::GUID id{};
    return static_cast<bool>(default_point(object, id));
}

std::unique_ptr<ForeignEvents> ForeignEvents::of(::IUnknown* object, IDispatch* dispatch) {
    ::GUID id{};
    auto point = default_point(object, id);
    check_given(S_OK, point, messages::kNoEventNames, to_string(from_com(id)));
    const auto type = listener_type(dispatch, id);
    return std::unique_ptr<ForeignEvents>(new ForeignEvents(std::move(point), id, read_members(*type.get())));
}

ForeignEvents::~ForeignEvents() {
    if (listener_) {
        listener_->end();
        point_->Unadvise(cookie_);
    }
}

const KnownMember* ForeignEvents::at(int number) const noexcept {
    return number >= 0 && number < count() ? &events_[static_cast<std::size_t>(number)]->known : nullptr;
}

int ForeignEvents::find(wstring_view name) const noexcept {
    for (int number = 0; number < count(); ++number) {
        if (compare_nocase(at(number)->name, name) == 0)
            return number;
    }
    return -1;
}

Connection ForeignEvents::connect(int number, IEventSink* sink) {
    if (!listener_) {
        ComPtr<Listener> listener(new Listener(*this));
        check(point_->Advise(listener.get(), &cookie_), messages::kCallFailed, at(number)->name);
        listener_ = std::move(listener);
    }
    return detail::event_connect(events_[static_cast<std::size_t>(number)]->raised, sink, number);
}

bool ForeignEvents::disconnect(ConnectionNumber connection) noexcept {
    const auto number = static_cast<int>(connection >> detail::kEventShift);
    return at(number) != nullptr &&
           detail::event_disconnect(events_[static_cast<std::size_t>(number)]->raised, connection);
}

void ForeignEvents::raise(int number, std::span<const GenericValue> values) {
    events_[static_cast<std::size_t>(number)]->raised.raise(values);
}

} // namespace core::com
