// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_object.h>
#include <core/context/native_value.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace core::script {

/// A parameter of a function that a program offers to scripts.
struct Parameter {
    bool optional = false; ///< a call may leave the argument out; the function then gets Undefined
    bool out = false;      ///< the function passes a value back
};

/// A function that a program offers to scripts, in the form that fits all.
struct Function {
    std::vector<Parameter> parameters; ///< in order; a call with more arguments is refused
    bool returns = true;               ///< whether it is a function and not a procedure
    /// What is called, with one value for each parameter. It throws what it likes: the script fails with
    /// script::Error then.
    std::function<GenericValue(std::span<GenericValue>)> call;
};

namespace detail {

template <class T>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<std::optional<T>> = true;

/// A parameter by which a C++ function passes a value back.
template <class A>
inline constexpr bool is_out = std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;

/// What holds an argument while the function runs.
template <class A>
auto held_argument(const GenericValue& value, int param) {
    using T = std::remove_cvref_t<A>;
    static_assert(FromValue<T>, "no NativeValue says how a value becomes this parameter");
    if constexpr (is_out<A> && std::default_initializable<T>) {
        if (value.isUndefined()) // a variable that has no value yet
            return T();
    }
    if constexpr (is_out<A>)
        return T(from_value<T>(value, ValueReceiver::parameter(param)));
    else
        return from_value<T>(value, ValueReceiver::parameter(param));
}

template <class A, class Held>
void pass_back(GenericValue& value, const Held& held) {
    if constexpr (is_out<A>)
        value = to_value(held);
}

/// The parameters and the result of something that can be called.
template <class F>
struct Signature : Signature<decltype(&F::operator())> {};

template <class R, class... A>
struct Signature<R (*)(A...)> {
    template <class F>
    static Function function(F callable) {
        return {{Parameter{is_optional<std::remove_cvref_t<A>>, is_out<A>}...},
                !std::is_void_v<R>,
                [callable = std::move(callable)](std::span<GenericValue> arguments) mutable {
                    return call(callable, arguments, std::index_sequence_for<A...>());
                }};
    }

  private:
    template <class F, std::size_t... I>
    static GenericValue call(F& callable, [[maybe_unused]] std::span<GenericValue> arguments,
                             std::index_sequence<I...>) {
        std::tuple held{held_argument<A>(arguments[I], static_cast<int>(I))...};
        const auto pass = [&] { (pass_back<A>(arguments[I], std::get<I>(held)), ...); };
        if constexpr (std::is_void_v<R>) {
            callable(static_cast<argument_t<A, I, decltype(held)>>(std::get<I>(held))...);
            pass();
            return {};
        } else {
            static_assert(ToValue<std::remove_cvref_t<R>>,
                          "no NativeValue says how the result becomes a value");
            GenericValue result =
                to_value(callable(static_cast<argument_t<A, I, decltype(held)>>(std::get<I>(held))...));
            pass();
            return result;
        }
    }
    /// What is passed as `A`: the held object itself by reference, or what converts from it.
    template <class A2, std::size_t I, class Held>
    using argument_t = std::conditional_t<is_out<A2>, A2, std::tuple_element_t<I, Held>&>;
};

template <class R, class... A>
struct Signature<R (*)(A...) noexcept> : Signature<R (*)(A...)> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...)> : Signature<R (*)(A...)> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const> : Signature<R (*)(A...)> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) noexcept> : Signature<R (*)(A...)> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const noexcept> : Signature<R (*)(A...)> {};

} // namespace detail

/// Returns a Function that calls `callable`, a function or an object with one operator(). Arguments and
/// result convert by NativeValue. A parameter `T&` passes a value back, and one of std::optional may be left
/// out.
template <class F>
[[nodiscard]] Function make_function(F callable) {
    return detail::Signature<F>::function(std::move(callable));
}

} // namespace core::script
