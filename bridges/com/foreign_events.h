// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/type_info.h"

#include <core/context/events/event_base.h>

#include <memory>
#include <vector>

namespace core::com {

/// The events of an object of others: those of its default connection point, under the names that its type
/// library has for them. Connects with the object when somebody first connects with an event.
class ForeignEvents {
  public:
    /// Returns whether an object, which may be null, has a connection point.
    [[nodiscard]] static bool has(::IUnknown* object) noexcept;
    /// Returns the events of an object. Throws COMException (COM_NO_EVENTS) where nothing says which it has.
    [[nodiscard]] static std::unique_ptr<ForeignEvents> of(::IUnknown* object, IDispatch* dispatch);
    ForeignEvents(const ForeignEvents&) = delete;
    ForeignEvents& operator=(const ForeignEvents&) = delete;
    /// Disconnects from the object.
    ~ForeignEvents();

    /// Returns how many events there are.
    [[nodiscard]] int count() const noexcept { return static_cast<int>(events_.size()); }
    /// Returns what the type library says of an event; null for a number out of range.
    [[nodiscard]] const KnownMember* at(int number) const noexcept;
    /// Returns the number of the event with a name, or -1.
    [[nodiscard]] int find(wstring_view name) const noexcept;
    /// Connects a sink with an event. Throws COMException when the object refuses.
    [[nodiscard]] Connection connect(int number, IEventSink* sink);
    /// Disconnects a sink; false for a connection that is not there.
    bool disconnect(ConnectionNumber connection) noexcept;
    /// Calls the sinks of an event.
    void raise(int number, std::span<const GenericValue> values);

  private:
    class Listener;
    struct Event;

    ForeignEvents(ComPtr<IConnectionPoint> point, const ::GUID& id, KnownMembers events);

    ComPtr<IConnectionPoint> point_;
    ::GUID id_;
    std::vector<std::unique_ptr<Event>> events_;
    ComPtr<Listener> listener_; // null until somebody connects
    DWORD cookie_ = 0;
};

} // namespace core::com
