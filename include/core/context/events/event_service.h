// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/script_object.h>
#include <core/runtime/code_hold.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/process.h>

#include <concepts>
#include <span>
#include <type_traits>
#include <utility>

namespace core {

/// Whether a connection keeps the object alive whose method is called.
enum class SinkHold {
    strong, ///< it does: the event holds a reference
    weak    ///< it does not: the connection ends with the object, which is an IWeakListener
};

/// An object whose methods can handle events without being kept alive by them: it keeps the connections,
/// which end with it. A class of script objects names it among its interfaces, and has it then.
///
/// The last reference to the object must not be released on one thread while another one raises the event.
class IWeakListener : public IUnknown {
  public:
    static constexpr GUID IID = "a65c7e03-5459-4b97-85f5-a53f66c6cacd"_guid;

    /// Returns the connections that end with the object, borrowed: valid as long as the object.
    [[nodiscard]] virtual Connections& connections() noexcept = 0;

  protected:
    ~IWeakListener() = default;
};

namespace detail {

/// The part of a script object that makes it an IWeakListener.
class WeakListenerPart : public IWeakListener {
  public:
    Connections& connections() noexcept override { return connections_; }

  protected:
    ~WeakListenerPart() = default;

  private:
    Connections connections_;
};
template <class T>
struct ScriptPart<T, IWeakListener> {
    using Type = WeakListenerPart;
};

} // namespace detail

/// Connects, disconnects and raises the events of objects by their names, in either language and any case. A
/// service. Objects may be null where said, and are queried for IEventSource.
///
/// All throw ContextException: "IDS_EVENT_NO_EVENTS" for an object that has none, "IDS_EVENT_UNKNOWN" for a
/// name that none has. Any thread may call it, with objects that it may use.
class IEventService : public IUnknown {
  public:
    static constexpr GUID IID = "ebf766aa-f32c-11d3-9851-008048da1252"_guid;

    /// Connects a sink, which must not be null, and returns the number of the connection, which `source`
    /// understands. `source` holds a reference to the sink.
    virtual ConnectionNumber connect(IUnknown* source, const wchar* event, IEventSink* sink) = 0;
    /// Connects a method of an object that scripts see, by its name; it gets as many of the event's arguments
    /// as it has parameters. Throws ContextException, too, for an object without that method
    /// ("IDS_EVENT_NO_METHOD"), for a method that needs more arguments than the event has
    /// ("IDS_EVENT_METHOD"), and for a weak connection with an object that is not an IWeakListener
    /// ("IDS_EVENT_NOT_WEAK").
    virtual ConnectionNumber connectMethod(IUnknown* source, const wchar* event, IUnknown* object,
                                           const wchar* method, SinkHold hold = SinkHold::strong) = 0;
    /// Removes a connection and returns true; returns false for one that is not there.
    virtual bool disconnect(IUnknown* source, ConnectionNumber connection) = 0;
    /// Calls the sinks of an event. Throws, too, as IEventSource::raiseEvent() does.
    virtual void raise(IUnknown* source, const wchar* event, std::span<const GenericValue> arguments) = 0;

  protected:
    ~IEventService() = default;
};

namespace detail {

/// The sink that calls a callable.
template <class F>
class CallableSink : public IEventSink, private CodeOf<F> {
  public:
    using Interfaces = InterfaceList<IEventSink>;

    explicit CallableSink(F callable) : CodeOf<F>(callable), callable_(std::move(callable)) {}
    void handle(std::span<const GenericValue> arguments) override { callable_(arguments); }

  private:
    F callable_;
};

} // namespace detail

/// Returns a sink that calls `callable` with the arguments of the event. Throws std::bad_alloc, and what
/// moving the callable throws.
template <class F>
requires std::invocable < std::decay_t<F>
&, std::span < const GenericValue >> [[nodiscard]] InterfacePtr<IEventSink> make_event_sink(F&& callable) {
    return make_object<detail::CallableSink<std::decay_t<F>>>(std::forward<F>(callable));
}

} // namespace core
