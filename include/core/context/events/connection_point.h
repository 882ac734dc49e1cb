// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/events/event_base.h>
#include <core/context/script_object.h>
#include <core/runtime/interface_ptr.h>

#include <concepts>
#include <type_traits>
#include <utility>
#include <vector>

/// Sinks that are interfaces: an object calls operations of an interface that others implement, and each such
/// interface has a connection point, found by the id of the interface. For C++ code on both sides; what
/// scripts are to hear is an Event.
namespace core {

class IConnectionPointContainer;

/// Where sinks of one interface connect with an object. It is a part of the object: a reference to it keeps
/// the object alive. Threads: as the object.
class IConnectionPoint : public IUnknown {
  public:
    static constexpr GUID IID = "58881b40-eee0-4964-b76b-0b6500c4e3e7"_guid;

    /// Returns the id of the interface that the object calls.
    [[nodiscard]] virtual const GUID& sinkInterface() const noexcept = 0;
    /// Returns the object that has the connection point.
    [[nodiscard]] virtual InterfacePtr<IConnectionPointContainer> container() noexcept = 0;
    /// Queries `sink` for the interface, connects it behind those that are connected and returns the number
    /// of the connection. Throws TypeException ("IDS_EVENT_SINK_INTERFACE") for a sink without the interface,
    /// and std::bad_alloc; nothing is connected then.
    virtual ConnectionNumber advise(IUnknown* sink) = 0;
    /// Removes a connection and returns true; returns false for one that is not there.
    virtual bool unadvise(ConnectionNumber connection) noexcept = 0;
    /// Returns how many sinks are connected.
    [[nodiscard]] virtual std::size_t connectionCount() const noexcept = 0;

  protected:
    ~IConnectionPoint() = default;
};

/// An object with connection points. A class of script objects names it among its interfaces and has
/// `auto points()`, which returns an array of the addresses of its data members. Threads: as the
/// object.
class IConnectionPointContainer : public IUnknown {
  public:
    static constexpr GUID IID = "96072b07-ff96-4425-af52-5d7506171b94"_guid;

    /// Returns the connection point for sinks of an interface; null when the object does not call that.
    [[nodiscard]] virtual InterfacePtr<IConnectionPoint> findConnectionPoint(const GUID& sinkInterface) = 0;
    /// Returns all connection points.
    [[nodiscard]] virtual std::vector<InterfacePtr<IConnectionPoint>> connectionPoints() = 0;

  protected:
    ~IConnectionPointContainer() = default;
};

namespace detail {

/// Throws TypeException: a sink has not the interface that a connection point calls.
[[noreturn]] CORE_API void bad_sink(const GUID& sinkInterface);

template <class T>
class ConnectionPointsPart : public IConnectionPointContainer {
  public:
    InterfacePtr<IConnectionPoint> findConnectionPoint(const GUID& sinkInterface) override {
        for (IConnectionPoint* const point : static_cast<T&>(*this).points()) {
            if (point->sinkInterface() == sinkInterface)
                return point;
        }
        return nullptr;
    }
    std::vector<InterfacePtr<IConnectionPoint>> connectionPoints() override {
        std::vector<InterfacePtr<IConnectionPoint>> all;
        for (IConnectionPoint* const point : static_cast<T&>(*this).points())
            all.emplace_back(point);
        return all;
    }

  protected:
    ~ConnectionPointsPart() = default;
};
template <class T>
struct ScriptPart<T, IConnectionPointContainer> {
    using Type = ConnectionPointsPart<T>;
};

} // namespace detail

/// The sinks of the interface `I` as a data member of the object that calls them:
///
///     core::ConnectionPoint<IProgress> progress{*this, core::named<u"Progress", u"ХодРаботы">};
///     ...
///     progress.raise([&](IProgress& sink) { sink.advanced(done, total); });
///
/// The rules of emission are those of events; the name stands in reports of sinks that fail.
template <Interface I>
class ConnectionPoint final : public IConnectionPoint, public EventBase {
  public:
    /// Makes a connection point without sinks. `owner` is the object that has it, kept by address; the names
    /// are kept by address, too.
    template <class Owner>
    ConnectionPoint(Owner& owner, const EventNames& names) noexcept
        : EventBase(names), owner_(*static_cast<IConnectionPointContainer*>(&owner)) {}

    /// Calls `operation(sink)` for the sinks that are connected now, in the order of their connections, each
    /// that is still connected when its turn comes.
    template <std::invocable<I&> F>
    void raise(F&& operation) {
        detail::SinkTable* const sinks = table();
        if (sinks == nullptr)
            return;
        detail::InterfaceEmission emission;
        emission.operation = const_cast<void*>(static_cast<const void*>(std::addressof(operation)));
        emission.call = [](const detail::InterfaceEmission& self, void* sink) {
            (*static_cast<std::remove_reference_t<F>*>(self.operation))(*static_cast<I*>(sink));
        };
        emit(*sinks, emission);
    }
    /// Connects a sink behind those that are connected; it must not be null. The result disconnects it when
    /// it ends. Throws std::bad_alloc; nothing is connected then.
    [[nodiscard]] Connection connect(I* sink) { return connectInterface(sink, sink); }

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        if (out == nullptr)
            return kNoInterface;
        const bool known = iid == IUnknown::IID || iid == IConnectionPoint::IID;
        *out = known ? static_cast<IConnectionPoint*>(this) : nullptr;
        if (known)
            AddRef();
        return known ? kOk : kNoInterface;
    }
    std::uint32_t AddRef() noexcept override { return owner_.AddRef(); }
    std::uint32_t Release() noexcept override { return owner_.Release(); }

    const GUID& sinkInterface() const noexcept override { return I::IID; }
    InterfacePtr<IConnectionPointContainer> container() noexcept override { return &owner_; }
    ConnectionNumber advise(IUnknown* sink) override {
        const InterfacePtr<I> known(sink);
        if (!known)
            detail::bad_sink(I::IID);
        return connect(known.get()).release();
    }
    bool unadvise(ConnectionNumber connection) noexcept override { return disconnectSink(connection); }
    std::size_t connectionCount() const noexcept override { return EventBase::connectionCount(); }

  private:
    IConnectionPointContainer& owner_;
};

} // namespace core
