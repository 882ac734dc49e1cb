// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/event_source.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace core {

namespace detail {

/// One emission, as its sinks see it: the arguments as the event has them, and as values where a sink wants
/// values. Lives on the stack of the code that raises.
struct Emission {
    using Values = std::span<const GenericValue>;

    const void* native = nullptr;                ///< the arguments of a typed event; its sinks know the type
    Values (*convert)(Emission& self) = nullptr; ///< makes the values; null where they are there
    Values converted;                            ///< the values, once they are there

    /// Returns the arguments as values, which are made for the first sink that asks.
    [[nodiscard]] Values values() {
        if (convert != nullptr) {
            converted = convert(*this);
            convert = nullptr; // now that it has not thrown
        }
        return converted;
    }
};

/// An emission to sinks of one interface: what is to be called on each, given as a pointer to the interface.
struct InterfaceEmission : Emission {
    void (*call)(const InterfaceEmission& self, void* sink) = nullptr;
    void* operation = nullptr;
};

/// What a sink is made of: two words, a pointer to what it is or the callable itself.
struct SinkData {
    void* words[2] = {};
};

/// A sink on its way into an event, which destroys itself when it does not arrive.
struct Sink {
    using Call = void (*)(SinkData data, Emission& emission);
    using Destroy = void (*)(SinkData data) noexcept;

    SinkData data;
    Call call = nullptr;
    Destroy destroy = nullptr; ///< null where there is nothing to destroy

    Sink() = default;
    Sink(SinkData held, Call how, Destroy end) noexcept : data(held), call(how), destroy(end) {}
    Sink(Sink&& other) noexcept
        : data(other.data), call(other.call), destroy(std::exchange(other.destroy, nullptr)) {}
    Sink& operator=(Sink&&) = delete;
    ~Sink() {
        if (destroy != nullptr)
            destroy(data);
    }
};

} // namespace detail

/// What all events have in common: names, and a row of sinks in the order of their connections. An event is
/// one word as long as nobody has connected. docs/threads-and-events.md has the rules of emission.
///
/// Threads: as the object that has the event.
class CORE_API EventBase {
  public:
    EventBase(const EventBase&) = delete;
    EventBase& operator=(const EventBase&) = delete;

    /// Returns the names of the event, borrowed for ever.
    [[nodiscard]] const EventNames& names() const noexcept;
    /// Returns whether no sink has ever been connected, so that raising has no effect.
    [[nodiscard]] bool isIdle() const noexcept { return table() == nullptr; }
    /// Returns how many sinks are connected.
    [[nodiscard]] std::size_t connectionCount() const noexcept;

    /// Connects a sink behind those that are connected. The event holds a reference to `sink`, which must not
    /// be null, until the result ends. Throws std::bad_alloc; nothing is connected then.
    [[nodiscard]] Connection connectSink(IEventSink* sink);
    /// Removes a connection and returns true; returns false for one that is not there. The event lets go of
    /// the sink at once, or at the end of the outermost emission where one is under way.
    bool disconnectSink(ConnectionNumber connection) noexcept;

  protected:
    /// Makes an event without sinks. The names are kept by address.
    explicit EventBase(const EventNames& names) noexcept : word_(reinterpret_cast<std::uintptr_t>(&names)) {}
    /// Lets go of all sinks. An emission that is under way calls no more of them.
    ~EventBase() {
        if (table() != nullptr)
            end();
    }

    /// Returns the table of sinks, borrowed; null while nobody has ever connected.
    [[nodiscard]] detail::SinkTable* table() const noexcept {
        return (word_ & kTableBit) != 0 ? reinterpret_cast<detail::SinkTable*>(word_ - kTableBit) : nullptr;
    }
    /// Connects a sink, as connectSink() does.
    [[nodiscard]] Connection connectAny(detail::Sink&& sink);
    /// Connects a sink that is called by the emission: an InterfaceEmission gets `sink`, a pointer to the
    /// interface; `object` is the same sink, to which the event holds a reference. The code of the connection
    /// is the library's, so that it does not matter whose code connects.
    [[nodiscard]] Connection connectInterface(void* sink, IUnknown* object);
    /// Calls the sinks of a table.
    static void emit(detail::SinkTable& table, detail::Emission& emission);

  private:
    static constexpr std::uintptr_t kTableBit = 1;

    detail::SinkTable& makeTable();
    void end() noexcept;

    std::uintptr_t word_; ///< the address of the names, or that of the table with kTableBit
};

} // namespace core
