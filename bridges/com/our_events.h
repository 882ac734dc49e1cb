// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/context/event_source.h>
#include <core/values/type.h>

#include <vector>

namespace core::com {

/// Returns the id of the interface that those implement who listen to objects of a type: it follows from the
/// English name of the type.
[[nodiscard]] ::GUID events_id(const Type& type);

/// The events of an object of ours as its one connection point, a part of its automation object. Who listens
/// has an IDispatch; each event calls the member with its name, where the listener has one, else the one with
/// the number of the name. Connections end with the automation object, at the latest.
class OurEvents final : public IConnectionPointContainer {
  public:
    /// Lets others listen to `source`; `owner` is its automation object, of which this is a part.
    OurEvents(IDispatch& owner, InterfacePtr<IEventSource> source, const Type& type)
        : owner_(owner), source_(std::move(source)), point_(*this, events_id(type)) {}

    ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override {
        return owner_.QueryInterface(iid, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return owner_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return owner_.Release(); }

    ::HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** out) noexcept override;
    ::HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** out) noexcept override;

  private:
    class Point final : public IConnectionPoint {
      public:
        Point(OurEvents& events, const ::GUID& id) noexcept : events_(events), id_(id) {}

        ::HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) noexcept override;
        ULONG STDMETHODCALLTYPE AddRef() noexcept override { return events_.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() noexcept override { return events_.Release(); }

        ::HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* out) noexcept override;
        ::HRESULT STDMETHODCALLTYPE
        GetConnectionPointContainer(IConnectionPointContainer** out) noexcept override;
        ::HRESULT STDMETHODCALLTYPE Advise(::IUnknown* sink, DWORD* cookie) noexcept override;
        ::HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
        ::HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** out) noexcept override;

        [[nodiscard]] const ::GUID& id() const noexcept { return id_; }

      private:
        struct Advised {
            DWORD cookie;
            std::vector<Connection> connections;
        };

        OurEvents& events_;
        ::GUID id_;
        std::vector<Advised> advised_;
        DWORD last_ = 0;
    };

    IDispatch& owner_;
    InterfacePtr<IEventSource> source_;
    Point point_;
};

} // namespace core::com
