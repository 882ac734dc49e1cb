// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/event_source.h>
#include <core/context/native_function.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iterator>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

/// How a class of script objects says what scripts reach of it:
///
///     static auto members() {
///         return core::members(core::property(u"Total", u"Всего", &Counter::total),
///                              core::method(u"Add", u"Добавить", &Counter::add, {u"Amount", u"Сумма"}));
///     }
///
/// Members are numbered in the order in which they stand, properties, methods and events each by themselves.
/// <core/context/events/event.h> declares events. Values convert as NativeValue says; a value that does not
/// convert is refused with the name of the property or the number of the parameter. Names are borrowed, as a
/// rule from literals.
namespace core {

/// The type of read_only.
struct ReadOnly {};
/// Behind a data member: scripts read it, and only C++ changes it.
inline constexpr ReadOnly read_only;

/// A property as a class declares it, see property().
template <class Get, class Set>
struct PropertyDeclaration {
    NamePair names; ///< English and Russian
    Get get;        ///< a data member, or what returns the value
    Set set;        ///< the same data member, what takes a value, or ReadOnly
};

/// A method as a class declares it, see method().
template <class F, std::size_t count>
struct MethodDeclaration {
    NamePair names;                  ///< English and Russian
    F function;                      ///< a member function, or a function of the object
    std::array<Param, count> params; ///< what is known of the parameters
};

/// The members of a class, see members().
template <class... Ds>
struct MemberList {
    std::tuple<Ds...> declarations; ///< in the order of their numbers
};

namespace detail {

/// The signature of a member function, or that of a function without its first parameter, the object.
template <class F>
struct MethodSignature;
template <class R, class First, class... As>
struct MethodSignature<Signature<R, First, As...>> : Signature<R, As...> {};
template <class R, class... As>
Signature<R, As...> signature_of(const Signature<R, As...>&);
template <class F>
using MethodSignatureOf = typename std::conditional_t<
    std::is_member_function_pointer_v<F>, std::type_identity<SignatureOf<F>>,
    std::type_identity<MethodSignature<decltype(signature_of(std::declval<SignatureOf<F>>()))>>>::type;

template <class M>
inline constexpr bool kIsWritableMember = false;
template <class M, class C>
inline constexpr bool kIsWritableMember<M C::*> = !std::is_const_v<M> && !std::is_function_v<M>;

/// Stands where the function has no further parameter: nothing can be said of it.
struct NoParameter {};
/// What a declaration may say of a parameter of `F`.
template <class F, std::size_t place>
using ParameterOf =
    std::conditional_t < place<MethodSignatureOf<F>::Parameters::kCount, Parameter, NoParameter>;

} // namespace detail

/// Declares a property. `get` is a data member, a member function without parameters, or a function of the
/// object:
/// `[](const Counter& counter) { return ...; }`. A data member that is not const can be written, too.
template <class Get>
[[nodiscard]] constexpr auto property(const wchar* english, const wchar* russian, Get get) {
    if constexpr (detail::kIsWritableMember<Get>)
        return PropertyDeclaration<Get, Get>{{english, russian}, get, get};
    else
        return PropertyDeclaration<Get, ReadOnly>{{english, russian}, get, {}};
}
/// Declares a property that `set` writes: a member function with one parameter, or a function of the object
/// and the new value. With read_only scripts only read the property.
template <class Get, class Set>
[[nodiscard]] constexpr auto property(const wchar* english, const wchar* russian, Get get, Set set) {
    return PropertyDeclaration<Get, Set>{{english, russian}, get, set};
}

/// Declares a method: a member function, or a function whose first parameter is the object. A function that
/// returns nothing is a procedure. Parameters are those of NativeFunction. The first of them, up to all, get
/// names and defaults: `{u"Amount", u"Сумма", by_default(1)}`.
template <class F>
[[nodiscard]] constexpr auto
method(const wchar* english, const wchar* russian, F function, const detail::ParameterOf<F, 0>& first = {},
       const detail::ParameterOf<F, 1>& second = {}, const detail::ParameterOf<F, 2>& third = {},
       const detail::ParameterOf<F, 3>& fourth = {}, const detail::ParameterOf<F, 4>& fifth = {},
       const detail::ParameterOf<F, 5>& sixth = {}, const detail::ParameterOf<F, 6>& seventh = {},
       const detail::ParameterOf<F, 7>& eighth = {}) {
    using Parameters = typename detail::MethodSignatureOf<F>::Parameters;
    MethodDeclaration<F, Parameters::kCount> declaration{
        {english, russian}, function, detail::parameter_rows(Parameters{})};
    const auto name = [&]<class Given>(std::size_t place, const Given& given) {
        if constexpr (std::same_as<Given, Parameter>)
            detail::name_parameter(declaration.params[place], given);
    };
    name(0, first), name(1, second), name(2, third), name(3, fourth);
    name(4, fifth), name(5, sixth), name(6, seventh), name(7, eighth);
    return declaration;
}

/// Returns the members of a class, in the order of their numbers.
template <class... Ds>
[[nodiscard]] constexpr MemberList<Ds...> members(const Ds&... declarations) {
    return {{declarations...}};
}

/// A property in the table of a class: a Property whose functions know the declaration.
template <class T>
struct BoundProperty {
    NamePair names;                                          ///< English and Russian
    GenericValue (*get)(const void* declaration, T& object); ///< reads it
    /// Writes it; null when it cannot be written.
    void (*set)(const void* declaration, T& object, const GenericValue& value);
    const GUID* type;        ///< the id of its type, or null
    const void* declaration; ///< borrowed from the tables

    /// Returns the value.
    GenericValue read(T& object) const { return get(declaration, object); }
    /// Gives the property a value; `set` must not be null.
    void write(T& object, const GenericValue& value) const { set(declaration, object, value); }
};

/// A method in the table of a class: a Method whose function knows the declaration.
template <class T>
struct BoundMethod {
    NamePair names;                ///< English and Russian
    std::span<const Param> params; ///< borrowed from the tables
    bool returns;                  ///< kFunction or kProcedure
    /// Called with as many arguments as there are parameters.
    GenericValue (*call)(const void* declaration, T& object, std::span<GenericValue> arguments);
    const GUID* type;        ///< the id of the type of what it returns, or null
    const void* declaration; ///< borrowed from the tables

    /// Calls the method.
    GenericValue invoke(T& object, std::span<GenericValue> arguments) const {
        return call(declaration, object, arguments);
    }
};

namespace detail {

template <class T, class Get, class Set>
struct PropertyThunks {
    using Declaration = PropertyDeclaration<Get, Set>;
    using Returned = std::invoke_result_t<const Get&, T&>;
    using Result = ResultType<Returned>;

    static GenericValue get(const void* declaration, T& object) {
        return result_value<Returned>(std::invoke(static_cast<const Declaration*>(declaration)->get, object));
    }
    static void set(const void* declaration, T& object, const GenericValue& value) {
        const auto& row = *static_cast<const Declaration*>(declaration);
        const auto receiver = ValueReceiver::property(row.names[kEnglish]);
        if constexpr (std::is_member_object_pointer_v<Set>) {
            static_assert(FromValue<Result>, "values do not convert to the property's type");
            object.*row.set = from_value<Result>(value, receiver);
        } else {
            write(row.set, object, value, receiver, typename MethodSignatureOf<Set>::Parameters{});
        }
    }
    template <class A>
    static void write(const Set& set, T& object, const GenericValue& value, ValueReceiver receiver,
                      TypeList<A>) {
        Slot<A> slot(value, receiver);
        std::invoke(set, object, slot.pass());
    }
};

template <class T, class Get, class Set>
void add_row(const PropertyDeclaration<Get, Set>& declaration, BoundProperty<T>*& end) {
    using Thunks = PropertyThunks<T, Get, Set>;
    *end = {declaration.names, &Thunks::get, nullptr, native_type<typename Thunks::Result>(), &declaration};
    if constexpr (!std::same_as<Set, ReadOnly>)
        end->set = &Thunks::set;
    ++end;
}

template <class T, class F, std::size_t count>
void add_row(const MethodDeclaration<F, count>& declaration, BoundMethod<T>*& end) {
    using Signed = MethodSignatureOf<F>;
    *end++ = {declaration.names,
              declaration.params,
              Signed::kReturns,
              [](const void* row, T& object, std::span<GenericValue> arguments) {
                  const F& function = static_cast<const MethodDeclaration<F, count>*>(row)->function;
                  return call_with<typename Signed::Result>(
                      typename Signed::Parameters{},
                      [&]<class... Passed>(Passed&&... passed) -> typename Signed::Result {
                          return std::invoke(function, object, std::forward<Passed>(passed)...);
                      },
                      arguments);
              },
              Signed::resultType(),
              &declaration};
}

template <class T, class E, std::size_t count>
void add_row(const EventDeclaration<T, E, count>& declaration, EventEntry<T>*& end) {
    *end++ = {declaration.ops,
              [](const void* row, T& object) -> EventBase& {
                  return object.*static_cast<const EventDeclaration<T, E, count>*>(row)->member;
              },
              declaration.params, &declaration};
}

template <class D>
inline constexpr bool kIsProperty = false;
template <class Get, class Set>
inline constexpr bool kIsProperty<PropertyDeclaration<Get, Set>> = true;
template <class D>
inline constexpr bool kIsMethod = false;
template <class F, std::size_t count>
inline constexpr bool kIsMethod<MethodDeclaration<F, count>> = true;
template <class D>
inline constexpr bool kIsEvent = false;
template <class T, class E, std::size_t count>
inline constexpr bool kIsEvent<EventDeclaration<T, E, count>> = true;

/// The tables of a class, made of its declarations, on which the rows stand.
template <class T, class List>
class MemberTables;
template <class T, class... Ds>
class MemberTables<T, MemberList<Ds...>> {
  public:
    explicit MemberTables(const MemberList<Ds...>& list) : list_(list) {
        BoundProperty<T>* nextProperty = properties_.data();
        BoundMethod<T>* nextMethod = methods_.data();
        EventEntry<T>* nextEvent = events_.data();
        const auto add = [&]<class D>(const D& declaration) {
            if constexpr (kIsProperty<D>)
                add_row(declaration, nextProperty);
            else if constexpr (kIsMethod<D>)
                add_row(declaration, nextMethod);
            else if constexpr (kIsEvent<D>)
                add_row(declaration, nextEvent);
        };
        std::apply([&](const Ds&... declarations) { (add(declarations), ...); }, list_.declarations);
    }
    MemberTables(const MemberTables&) = delete;
    MemberTables& operator=(const MemberTables&) = delete;

    [[nodiscard]] std::span<const BoundProperty<T>> properties() const noexcept { return properties_; }
    [[nodiscard]] std::span<const BoundMethod<T>> methods() const noexcept { return methods_; }
    [[nodiscard]] std::span<const EventEntry<T>> events() const noexcept { return events_; }

  private:
    MemberList<Ds...> list_;
    std::array<BoundProperty<T>, (std::size_t{kIsProperty<Ds>} + ... + 0)> properties_{};
    std::array<BoundMethod<T>, (std::size_t{kIsMethod<Ds>} + ... + 0)> methods_{};
    std::array<EventEntry<T>, (std::size_t{kIsEvent<Ds>} + ... + 0)> events_{};
};

template <class T>
concept DeclaresMembers = requires {
    T::members();
};

/// The tables of a class, made when they are first asked for.
template <DeclaresMembers T>
[[nodiscard]] const auto& member_tables() noexcept {
    static const MemberTables<T, decltype(T::members())> tables(T::members());
    return tables;
}

/// What a class declares as its members of one kind, as a span of the rows; of a class without members, none.
template <class T, class Row, class Rows>
[[nodiscard]] auto declared(Rows rows) noexcept {
    if constexpr (DeclaresMembers<T>)
        return rows(member_tables<T>());
    else
        return std::span<const Row>();
}

} // namespace detail
} // namespace core
