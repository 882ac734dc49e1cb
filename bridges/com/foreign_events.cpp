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
    explicit Listener(ForeignEvents& events) noexcept : events_(&events), id_(events.id_) {}
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
        *count = 0;
        return S_OK;
    }
    ::HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override {
        return DISP_E_BADINDEX;
    }
    ::HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                              DISPID* ids) noexcept override {
        const int number = events_ != nullptr && count > 0 ? events_->find(names[0]) : -1;
        std::fill_n(ids, count, DISPID_UNKNOWN);
        if (number >= 0)
            ids[0] = events_->at(number)->id;
        return number >= 0 && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
    }
    ::HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*,
                                       EXCEPINFO* info, UINT*) noexcept override {
        if (events_ == nullptr || given == nullptr)
            return S_OK;
        const auto& all = events_->events_;
        const auto found = std::ranges::find(all, member, [](const auto& one) { return one->known.id; });
        if (found == all.end())
            return DISP_E_MEMBERNOTFOUND;
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
    ComPtr<ITypeInfo> own;
    ComPtr<ITypeInfo> found;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    if (dispatch != nullptr && SUCCEEDED(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, own.typed())) && own &&
        SUCCEEDED(own->GetContainingTypeLib(library.typed(), &index)) && library)
        static_cast<void>(library->GetTypeInfoOfGuid(id, found.typed()));
    return found;
}

} // namespace

ForeignEvents::ForeignEvents(ComPtr<IConnectionPoint> point, const ::GUID& id, KnownMembers events)
    : point_(std::move(point)), id_(id) {
    for (KnownMember& event : events)
        events_.push_back(std::make_unique<Event>(std::move(event)));
}

std::unique_ptr<ForeignEvents> ForeignEvents::of(::IUnknown* object, IDispatch* dispatch) {
    ::GUID id{};
    auto point = default_point(object, id);
    const auto type = point ? listener_type(dispatch, id) : ComPtr<ITypeInfo>();
    if (!type)
        return nullptr;
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
