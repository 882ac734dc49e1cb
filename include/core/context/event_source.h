// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/connection.h>
#include <core/context/context_def_ext.h>
#include <core/context/name_cache.h>
#include <core/strings/term.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// The events of an object, beside its properties and methods: what it tells those who have connected.
/// <core/context/events/event.h> makes a data member an event, <core/context/events/event_service.h> connects
/// by names.
namespace core {

namespace detail {

/// A text as an argument of a template.
template <std::size_t size>
struct FixedText {
    wchar units[size] = {};
    consteval FixedText(const wchar (&text)[size]) noexcept {
        for (std::size_t i = 0; i < size; ++i)
            units[i] = text[i];
    }
};

} // namespace detail

/// The names of an event, kept for ever: `named` makes them. They are aligned so that an event can tell them
/// from its sinks by one bit.
struct alignas(8) EventNames {
    NamePair names; ///< English and Russian
};

/// The names of an event: `core::Event<> done{core::named<u"Done", u"ПриЗавершении">};`.
template <detail::FixedText english, detail::FixedText russian>
inline constexpr EventNames named{{english.units, russian.units}};

/// What is called when an event is raised.
///
/// Threads: as the object that has the event.
class IEventSink : public IUnknown {
  public:
    static constexpr GUID IID = "6e512f1a-3a5a-4c44-8111-6e49dcaeff49"_guid;

    /// Handles an event. The arguments are borrowed until it returns. It may connect, disconnect, raise and
    /// release whatever it likes. What it throws is reported and reaches neither the source nor other sinks.
    virtual void handle(std::span<const GenericValue> arguments) = 0;

  protected:
    ~IEventSink() = default;
};

/// An object with events, which are numbered from 0 as its properties and methods are. Names are borrowed:
/// valid as long as the object. For a number out of range a question has an empty answer (null, 0, -1,
/// false), and an action throws ContextException ("IDS_EVENT_UNKNOWN"). Threads: as the object.
class IEventSource : public IContextDefParams {
  public:
    static constexpr GUID IID = "cc0ffe28-7bf4-4b64-ab4f-01796ef73f4c"_guid;

    // what there is

    /// Returns how many events there are.
    [[nodiscard]] virtual int getNEvents() const = 0;
    /// Returns the name of an event in the language of `alias`, borrowed.
    [[nodiscard]] virtual const wchar* getEventName(int event, int alias) const = 0;
    /// Returns the number of the event with that name in either language, in any case, or -1.
    [[nodiscard]] virtual int findEvent(const wchar* name) const = 0;
    /// Returns how many arguments the sinks of an event get.
    [[nodiscard]] virtual int getNEventParams(int event) const = 0;
    /// Returns the name of a parameter in the language of `alias`, borrowed; null where it has none.
    [[nodiscard]] virtual const wchar* getEventParamName(int event, int param, int alias) const = 0;
    /// Stores what is known of the values of a parameter, as IContextDefExt::getPropInfo() does.
    virtual bool getEventParamInfo(int event, int param, ContextValueInfo& info) const = 0;

    // connections

    /// Connects a sink behind those that are connected. The object holds a reference to `sink`, which must
    /// not be null, until the result ends; Connection::release() makes that the end of the object. Throws
    /// std::bad_alloc; nothing is connected then.
    [[nodiscard]] virtual Connection connectSink(int event, IEventSink* sink) = 0;
    /// Removes a connection and returns true; returns false for one that is not there.
    virtual bool disconnectSink(ConnectionNumber connection) noexcept = 0;
    /// Calls the sinks of an event. Throws ContextException: "IDS_EVENT_ARGUMENTS" for too few or too many
    /// arguments, "IDS_PARAMETER_N_TYPE_MISMATCH" or "..._VALUE_MISMATCH" for one that the event does not
    /// take; nobody is called then.
    virtual void raiseEvent(int event, std::span<const GenericValue> arguments) = 0;

  protected:
    ~IEventSource() = default;
};

namespace detail {

/// What can be done with all events of one type.
struct EventOps {
    int params;                     ///< how many arguments sinks get
    const GUID* (*type)(int param); ///< the id of a parameter's type, or null; `param` is in range
    void (*raise)(EventBase& event, std::span<const GenericValue> arguments);
};

// For EventSourceImpl, which knows no more of events than that there are some.
[[nodiscard]] CORE_API const EventNames& event_names(const EventBase& event) noexcept;
[[nodiscard]] CORE_API Connection event_connect(EventBase& event, IEventSink* sink, int number);
[[nodiscard]] CORE_API bool event_disconnect(EventBase& event, ConnectionNumber connection) noexcept;
/// Throws ContextException: no event has that number.
[[noreturn]] CORE_API void bad_event(int event);

/// An object tells the connections of its events apart by the number of the event, in the bits above those
/// that the event uses.
inline constexpr int kEventShift = 48;

} // namespace detail

/// An event as a class declares it among its members, see event().
template <class T, class E, std::size_t count>
struct EventDeclaration {
    E T::*member;                       ///< the data member
    std::array<NamePair, count> params; ///< the names of the parameters; empty ones where they have none
    const detail::EventOps* ops;        ///< what can be done with events of its type
};

/// An event of a class of objects, as an entry of the table `T::events()`. event() makes it of a data member,
/// and a class with members has it from there.
template <class T>
struct EventEntry {
    const detail::EventOps* ops;                            ///< what can be done with events of its type
    EventBase& (*find)(const void* declaration, T& object); ///< returns the event of an object
    std::span<const NamePair> params;  ///< the names of the parameters, as far as they have names; borrowed
    const void* declaration = nullptr; ///< what `find` needs; null in a table that is written by hand
};

/// Implements the extended description and the events of `T` from its tables `T::properties()`,
/// `T::methods()` and `T::events()`. `Ext` is ContextDefExtImpl over IEventSource. One table of names serves
/// all objects of the class.
template <class T, class Ext>
class EventSourceImpl : public Ext {
  public:
    /// Returns how many entries the table of events has.
    int getNEvents() const override { return static_cast<int>(T::events().size()); }
    /// Returns the name that the event itself has, borrowed for ever.
    const wchar* getEventName(int event, int alias) const override {
        const auto* const entry = entryAt(event);
        return entry != nullptr ? term_string(detail::event_names(eventOf(*entry)).names, alias) : nullptr;
    }
    /// Returns the number of the event with that name, or -1. Builds the table of names on the first call.
    int findEvent(const wchar* name) const override {
        static const NameTable names = [this] {
            NameTable table;
            table.build(getNEvents(), [this](int event, int alias) { return getEventName(event, alias); });
            return table;
        }();
        return names.find(name);
    }
    /// Returns how many arguments an event of that type has.
    int getNEventParams(int event) const override {
        const auto* const entry = entryAt(event);
        return entry != nullptr ? entry->ops->params : 0;
    }
    /// Returns a name from the entry of the event, borrowed for ever.
    const wchar* getEventParamName(int event, int param, int alias) const override {
        const auto* const entry = entryAt(event);
        const NamePair* const names = entry != nullptr ? detail::entry_at(entry->params, param) : nullptr;
        return names != nullptr ? term_string(*names, alias) : nullptr; // null in a pair without names
    }
    /// Stores the type that the argument's C++ type stands for.
    bool getEventParamInfo(int event, int param, ContextValueInfo& info) const override {
        const auto* const entry = entryAt(event);
        const bool known = entry != nullptr && param >= 0 && param < entry->ops->params;
        return detail::describe_type(known ? entry->ops->type(param) : nullptr, info);
    }

    /// Connects the sink with the event of this object.
    Connection connectSink(int event, IEventSink* sink) override {
        const auto* const entry = entryAt(event);
        if (entry == nullptr)
            detail::bad_event(event);
        return detail::event_connect(eventOf(*entry), sink, event);
    }
    /// Disconnects the sink from the event that the number says.
    bool disconnectSink(ConnectionNumber connection) noexcept override {
        const auto* const entry = entryAt(static_cast<int>(connection >> detail::kEventShift));
        return entry != nullptr && detail::event_disconnect(eventOf(*entry), connection);
    }
    /// Raises the event of this object.
    void raiseEvent(int event, std::span<const GenericValue> arguments) override {
        const auto* const entry = entryAt(event);
        if (entry == nullptr)
            detail::bad_event(event);
        entry->ops->raise(eventOf(*entry), arguments);
    }

    /// Answers queries for IEventSource where the class has events. It stands in the place of IContextDefExt,
    /// so that an object does not grow by it.
    HRESULT queryOther(const GUID& iid, void** out) noexcept {
        if (T::events().empty() || !(iid == IEventSource::IID))
            return kNoInterface;
        auto* const source = static_cast<IEventSource*>(this);
        source->AddRef();
        *out = source;
        return kOk;
    }

  protected:
    ~EventSourceImpl() = default;

  private:
    [[nodiscard]] static const EventEntry<T>* entryAt(int event) noexcept {
        return detail::entry_at(T::events(), event);
    }
    [[nodiscard]] EventBase& eventOf(const EventEntry<T>& entry) const {
        return entry.find(entry.declaration, static_cast<T&>(const_cast<EventSourceImpl&>(*this)));
    }
};

} // namespace core
