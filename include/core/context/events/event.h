// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/events/event_base.h>
#include <core/context/native_value.h>
#include <core/runtime/code_hold.h>
#include <core/runtime/live_counter.h>

#include <array>
#include <concepts>
#include <cstring>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace core {

namespace detail {

/// The arguments of an emission whose event is in C++.
template <class... Args>
struct NativeEmission : Emission {
    using Native = std::tuple<const Args&...>;

    explicit NativeEmission(const Args&... arguments) noexcept : held(arguments...) {
        native = &held;
        if constexpr ((ToValue<Args> && ...))
            convert = [](Emission& self) { return static_cast<NativeEmission&>(self).makeValues(); };
    }
    Values makeValues() {
        if constexpr (sizeof...(Args) > 0) {
            std::size_t i = 0;
            std::apply([&](const Args&... argument) { ((made[i++] = to_value(argument)), ...); }, held);
        }
        return made;
    }

    Native held;
    std::array<GenericValue, sizeof...(Args)> made;
};

/// A callable that takes the arguments of an event, or none.
template <class F, class... Args>
concept SinkOf = std::invocable < std::decay_t<F>
&, const Args&... > || std::invocable<std::decay_t<F>&>;

/// A callable that two words hold as they are, to be copied for each call.
template <class F, class... Args>
inline constexpr bool is_small_sink =
    sizeof(F) <= sizeof(SinkData) && std::is_trivially_copyable_v<F>&& std::is_trivially_destructible_v<F> &&
    (std::invocable<const F&, const Args&...> || std::invocable<const F&>);

/// A callable behind a pointer. It is counted, so that a module stays while one of its callables is
/// connected.
template <class F>
struct ConnectedCallable : private LiveObjectTrackerImpl<ConnectedCallable<F>>, private CodeOf<F> {
    explicit ConnectedCallable(F&& given) : CodeOf<F>(given), callable(std::move(given)) {}
    F callable;
};

template <class F, class... Args>
void call_sink(F& callable, Emission& emission) {
    if constexpr (std::invocable<F&, const Args&...>)
        std::apply(callable, *static_cast<const std::tuple<const Args&...>*>(emission.native));
    else
        callable();
}

/// Makes a sink of a callable. Always inlined: of a call, g++ 12 believes that copying the bytes of a
/// callable lets none of the references in it escape, and keeps the variables behind them in registers over
/// an emission.
template <class F, class... Args>
[[nodiscard, gnu::always_inline]] inline Sink make_sink(F callable) {
    SinkData data;
    if constexpr (is_small_sink<F, Args...>) {
        if (!module_anchor.leaves.load(std::memory_order_relaxed)) { // nobody asks who holds this code
            std::memcpy(data.words, &callable, sizeof(F));
            return {data,
                    [](SinkData held, Emission& emission) {
                        alignas(F) std::byte room[sizeof(F)];
                        std::memcpy(room, held.words, sizeof(F));
                        call_sink<const F, Args...>(*std::launder(reinterpret_cast<const F*>(room)),
                                                    emission);
                    },
                    nullptr};
        }
    }
    using Held = ConnectedCallable<F>;
    data.words[0] = std::make_unique<Held>(std::move(callable)).release();
    return {data,
            [](SinkData held, Emission& emission) {
                call_sink<F, Args...>(static_cast<Held*>(held.words[0])->callable, emission);
            },
            [](SinkData held) noexcept { delete static_cast<Held*>(held.words[0]); }};
}

} // namespace detail

/// An event that C++ code raises and handles with its own types, as a data member of the object that has it:
///
///     core::Event<core::Numeric> changed{core::named<u"Changed", u"ПриИзменении">};
///     ...
///     changed.raise(total);
///
/// With no sink connected it is one word, and raising it is one test. Named among the members of its class,
/// by `core::event(&Counter::changed)`, it can be reached by name, too; `Args` then convert to and from
/// values.
///
/// A sink that throws does not stop an emission: its failure is reported to the process with the event's
/// name. Threads: as the object that has the event.
template <class... Args>
class Event : public EventBase {
    static_assert((!std::is_reference_v<Args> && ...),
                  "arguments are named by their types; sinks borrow them");

  public:
    /// Makes an event without sinks; `named` makes the names.
    explicit Event(const EventNames& names) noexcept : EventBase(names) {}

    /// Connects a callable behind the sinks that are connected; it takes the arguments, by value or by
    /// constant reference, or none. The result disconnects it when it ends. Throws std::bad_alloc, and what
    /// moving the callable throws; nothing is connected then.
    template <detail::SinkOf<Args...> F>
    [[nodiscard]] Connection connect(F&& callable) {
        return connectAny(detail::make_sink<std::decay_t<F>, Args...>(std::forward<F>(callable)));
    }

    /// Calls the sinks that are connected now, in the order of their connections, each that is still
    /// connected when its turn comes.
    void raise(const Args&... arguments) {
        if (detail::SinkTable* const sinks = table()) {
            detail::NativeEmission<Args...> emission(arguments...);
            emit(*sinks, emission);
        }
    }
    /// Calls the sinks with arguments that are values. Throws ContextException: "IDS_EVENT_ARGUMENTS" for too
    /// few or too many, "IDS_PARAMETER_N_TYPE_MISMATCH" or "..._VALUE_MISMATCH" for one that does not
    /// convert; no sink is called then.
    void raiseValues(std::span<const GenericValue> arguments) requires(FromValue<Args>&&...);

  private:
    template <std::size_t... index>
    void raiseConverted([[maybe_unused]] std::span<const GenericValue> values, std::index_sequence<index...>);
};

namespace detail {

/// Throws ContextException: an event was raised with a wrong number of arguments.
[[noreturn]] CORE_API void bad_event_arguments(const EventNames& event, std::size_t expected);

template <class E>
struct EventTraits;
template <class... Args>
struct EventTraits<Event<Args...>> {
    static constexpr EventOps ops = {
        .params = sizeof...(Args),
        .type =
            [](int param) {
                const std::array<const GUID*, sizeof...(Args) + 1> types = {native_type<Args>()..., nullptr};
                return types[static_cast<std::size_t>(param)];
            },
        .raise =
            [](EventBase& event, std::span<const GenericValue> arguments) {
                static_cast<Event<Args...>&>(event).raiseValues(arguments);
            },
    };
};

template <auto member, class T, class E, std::size_t count>
[[nodiscard]] constexpr EventEntry<T> event_entry_of(const EventDeclaration<T, E, count>& declaration,
                                                     std::span<const NamePair> names) noexcept {
    return {declaration.ops, [](const void*, T& object) -> EventBase& { return object.*member; }, names};
}

/// The names of the parameter that has the type.
template <class>
using NameFor = NamePair;

} // namespace detail

template <class... Args>
void Event<Args...>::raiseValues(std::span<const GenericValue> arguments) requires(FromValue<Args>&&...) {
    if (arguments.size() != sizeof...(Args))
        detail::bad_event_arguments(names(), sizeof...(Args));
    raiseConverted(arguments, std::index_sequence_for<Args...>());
}

template <class... Args>
template <std::size_t... index>
void Event<Args...>::raiseConverted([[maybe_unused]] std::span<const GenericValue> values,
                                    std::index_sequence<index...>) {
    // What from_value() returns may own what the argument borrows, a text in UTF-8 for one.
    [[maybe_unused]] const std::tuple<decltype(from_value<Args>(values[index]))...> held{
        from_value<Args>(values[index], ValueReceiver::parameter(static_cast<int>(index)))...};
    [[maybe_unused]] const std::tuple<Args...> native(std::get<index>(held)...);
    if (detail::SinkTable* const sinks = table()) {
        detail::NativeEmission<Args...> emission(std::get<index>(native)...);
        emission.convert = nullptr;
        emission.converted = values;
        emit(*sinks, emission);
    }
}

/// Declares an event of a class, as one of its members: `core::event(&Counter::changed, {u"Total",
/// u"Всего"})`. Its own names are those that the data member was made with; `names` are those of its
/// arguments.
template <class T, class... Args>
[[nodiscard]] constexpr auto event(Event<Args...> T::*member,
                                   const detail::NameFor<Args>&... names) noexcept {
    return EventDeclaration<T, Event<Args...>, sizeof...(Args)>{
        member, {names...}, &detail::EventTraits<Event<Args...>>::ops};
}
/// Declares an event of a class whose arguments have no names.
template <class T, class First, class... Args>
[[nodiscard]] constexpr auto event(Event<First, Args...> T::*member) noexcept {
    return EventDeclaration<T, Event<First, Args...>, 0>{
        member, {}, &detail::EventTraits<Event<First, Args...>>::ops};
}

/// Returns the entry of an event for a table that a class writes itself:
/// `event_entry<&Counter::changed>(kNames)`. `names` are those of the arguments, kept by address.
template <auto member>
[[nodiscard]] constexpr auto event_entry(std::span<const NamePair> names = {}) noexcept {
    return detail::event_entry_of<member>(event(member), names);
}

} // namespace core
