// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_object.h>

#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

/// Calls of C++ functions with values: each parameter is read from the argument at its place, and what the
/// function passes back is stored there after it has returned.
namespace core {

/// A parameter that only passes a value back: `void split(wstring_view text, Out<wstring> head)`. The
/// function assigns to it; what it does not assign is `T()`.
template <class T>
class Out {
  public:
    /// Refers to the place that receives the value, which must outlive the call.
    explicit Out(T& place) noexcept : place_(&place) {}
    /// Gives the parameter its value.
    const Out& operator=(T value) const {
        *place_ = std::move(value);
        return *this;
    }
    /// Returns the value that is passed back as it stands now.
    [[nodiscard]] T& operator*() const noexcept { return *place_; }

  private:
    T* place_;
};

namespace detail {

/// Throws ContextException: there is no argument for the parameter.
[[noreturn]] CORE_API void missing_argument(std::size_t param);

template <class... Ts>
struct TypeList {
    static constexpr std::size_t kCount = sizeof...(Ts);
};

template <class T>
concept ObjectType = ScriptClassType<std::remove_const_t<T>> || Interface<std::remove_const_t<T>>;

/// What a result is converted as: a reference to an object as its address.
template <class R>
using ResultType = std::conditional_t<std::is_lvalue_reference_v<R> && ObjectType<std::remove_reference_t<R>>,
                                      std::remove_reference_t<R>*, std::remove_cvref_t<R>>;

template <class R>
[[nodiscard]] GenericValue result_value(R&& result) {
    static_assert(ToValue<ResultType<R>>,
                  "the result does not convert to values: specialize core::NativeValue, or include "
                  "core/collections/native_values.h or core/objects/native_enumeration.h");
    if constexpr (std::is_pointer_v<ResultType<R>> && !std::is_pointer_v<std::remove_cvref_t<R>>)
        return to_value(&result);
    else
        return to_value<std::remove_cvref_t<R>>(result);
}

template <class R, class... As>
struct Signature {
    using Result = R;
    using Parameters = TypeList<As...>;
    static constexpr bool kReturns = !std::is_void_v<R>;
    static const GUID* resultType() noexcept { return native_type<ResultType<R>>(); }
};

/// The signature of a member function, whatever its qualifiers, without its object.
template <class F>
struct MemberSignature;
template <class R, class C, class... As, bool never>
struct MemberSignature<R (C::*)(As...) noexcept(never)> : Signature<R, As...> {};
template <class R, class C, class... As, bool never>
struct MemberSignature<R (C::*)(As...)& noexcept(never)> : Signature<R, As...> {};
template <class R, class C, class... As, bool never>
struct MemberSignature<R (C::*)(As...) const noexcept(never)> : Signature<R, As...> {};
template <class R, class C, class... As, bool never>
struct MemberSignature<R (C::*)(As...) const& noexcept(never)> : Signature<R, As...> {};

/// The signature of a callable: of a function object, of a member function or of a pointer to a function.
template <class F>
struct SignatureOf : MemberSignature<decltype(&F::operator())> {};
template <class F>
requires std::is_member_function_pointer_v<F>
struct SignatureOf<F> : MemberSignature<F> {
};
template <class R, class... As, bool never>
struct SignatureOf<R (*)(As...) noexcept(never)> : Signature<R, As...> {};

template <class F>
concept Callable = requires {
    typename SignatureOf<F>::Result;
};

template <class T>
inline constexpr bool kIsOut = false;
template <class T>
inline constexpr bool kIsOut<Out<T>> = true;
template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

template <class A>
concept ObjectReference = std::is_lvalue_reference_v<A> && ObjectType<std::remove_reference_t<A>>;
/// A reference to what the function changes; the new content is passed back.
template <class A>
concept InOutReference =
    std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>> && !ObjectReference<A>;
template <class A>
concept ValueReference = std::same_as<A, const Value&> || std::same_as<A, const GenericValue&>;
template <class A>
concept ObjectPointer = std::is_pointer_v<A> && ObjectType<std::remove_pointer_t<A>>;

template <class A>
inline constexpr bool kPassesIn = !kIsOut<std::remove_cvref_t<A>>;
template <class A>
inline constexpr bool kPassesBack = InOutReference<A> || kIsOut<std::remove_cvref_t<A>>;
template <class A>
inline constexpr bool kMayBeMissing = kIsOptional<std::remove_cvref_t<A>> && !InOutReference<A>;

/// What a parameter of type `A` is called with: read from its argument, kept while the function runs.
template <class A>
class Slot {
    using T = std::remove_cvref_t<A>;
    static_assert(FromValue<T>,
                  "values do not convert to this type: specialize core::NativeValue, or include "
                  "core/collections/native_values.h or core/objects/native_enumeration.h");

  public:
    Slot(const Value& argument, ValueReceiver receiver) : held_(NativeValue<T>::from(argument, receiver)) {}
    decltype(auto) pass() noexcept {
        if constexpr (std::is_lvalue_reference_v<A>)
            return std::as_const(held_);
        else
            return std::move(held_);
    }
    GenericValue back() const { return {}; }

  private:
    decltype(NativeValue<T>::from(std::declval<const Value&>(), ValueReceiver::parameter(0))) held_;
};
template <ValueReference A>
class Slot<A> {
  public:
    Slot(const GenericValue& argument, ValueReceiver) noexcept : argument_(argument) {}
    A pass() const noexcept { return argument_; }
    GenericValue back() const { return {}; }

  private:
    A argument_;
};
template <class A>
requires ObjectReference<A> || ObjectPointer<A>
class Slot<A> {
    using T = std::remove_pointer_t<std::remove_reference_t<A>>;

  public:
    Slot(const Value& argument, ValueReceiver receiver) : held_(NativeValue<T*>::from(argument, receiver)) {}
    A pass() const noexcept {
        T* const object = std::to_address(held_);
        if constexpr (std::is_pointer_v<A>)
            return object;
        else
            return *object;
    }
    GenericValue back() const { return {}; }

  private:
    decltype(NativeValue<T*>::from(std::declval<const Value&>(), ValueReceiver::parameter(0))) held_;
};
template <InOutReference A>
class Slot<A> {
    using T = std::remove_reference_t<A>;
    static_assert(FromValue<T> && ToValue<T>, "values do not convert to this type and back");

  public:
    Slot(const Value& argument, ValueReceiver receiver) : held_(NativeValue<T>::from(argument, receiver)) {}
    T& pass() noexcept { return held_; }
    GenericValue back() const { return to_value(held_); }

  private:
    T held_;
};
template <class T>
class Slot<Out<T>> {
    static_assert(ToValue<T>, "this type does not convert to values");

  public:
    Slot(const Value&, ValueReceiver) {}
    Out<T> pass() noexcept { return Out<T>(held_); }
    GenericValue back() const { return to_value(held_); }

  private:
    T held_{};
};

/// The slots of all parameters. Bases are made from left to right, so the first wrong argument is the one
/// that is refused.
template <std::size_t place, class A>
struct PlacedSlot : Slot<A> {
    using Slot<A>::Slot;
};
template <class Places, class... As>
struct Slots;
template <std::size_t... places, class... As>
struct Slots<std::index_sequence<places...>, As...> : PlacedSlot<places, As>... {
    explicit Slots([[maybe_unused]] std::span<GenericValue> arguments)
        : PlacedSlot<places, As>(arguments[places], ValueReceiver::parameter(static_cast<int>(places)))... {}

    template <class Call>
    decltype(auto) apply(Call&& call) {
        return call(static_cast<PlacedSlot<places, As>&>(*this).pass()...);
    }
    /// All conversions come before the first argument changes.
    void passBack([[maybe_unused]] std::span<GenericValue> arguments) {
        if constexpr ((kPassesBack<As> || ...)) {
            GenericValue values[] = {static_cast<PlacedSlot<places, As>&>(*this).back()...};
            ((kPassesBack<As> ? void(arguments[places] = std::move(values[places])) : void()), ...);
        }
    }
};

template <class... As>
using SlotsOf = Slots<std::index_sequence_for<As...>, As...>;

/// Reads the parameters, calls `call` with them, passes back and returns the result.
template <class R, class... As, class Call>
GenericValue call_with(TypeList<As...>, Call&& call, std::span<GenericValue> arguments) {
    SlotsOf<As...> slots(arguments);
    if constexpr (std::is_void_v<R>) {
        slots.apply(call);
        slots.passBack(arguments);
        return {};
    } else {
        GenericValue result = result_value<R>(slots.apply(call));
        slots.passBack(arguments);
        return result;
    }
}

/// Calls a member function of `object`, as call_native() calls a function.
template <class T, class F>
GenericValue call_member(T& object, F function, std::span<GenericValue> arguments) {
    using Signed = SignatureOf<F>;
    return call_with<typename Signed::Result>(
        typename Signed::Parameters{},
        [&]<class... Passed>(Passed&&... passed) ->
        typename Signed::Result { return (object.*function)(std::forward<Passed>(passed)...); },
        arguments);
}

} // namespace detail

/// Calls a C++ callable with arguments that are values, at least as many as it has parameters, and stores in
/// them what it passes back. Returns its value, Undefined for none. Throws ContextException for an argument
/// that does not convert, before the callable is called, and what the callable throws; the arguments are then
/// unchanged.
template <class F>
requires detail::Callable<std::remove_const_t<F>>
    GenericValue call_native(F& callable, std::span<GenericValue> arguments) {
    using Signed = detail::SignatureOf<std::remove_const_t<F>>;
    return detail::call_with<typename Signed::Result>(
        typename Signed::Parameters{},
        [&]<class... Passed>(Passed&&... passed) ->
        typename Signed::Result { return callable(std::forward<Passed>(passed)...); },
        arguments);
}

} // namespace core
