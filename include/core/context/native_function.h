// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_table.h>
#include <core/context/native_call.h>
#include <core/runtime/code_hold.h>
#include <core/runtime/live_counter.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <utility>
#include <vector>

/// C++ functions as scripts call them: with several values, from which the parameters are read.
namespace core {

/// What a parameter is when it is left out: see by_default().
struct ByDefault {
    ParamDefault kind = ParamDefault::none; ///< none where the parameter cannot be left out
    ParamLiteral literal = {};              ///< of ParamDefault::literal
};

/// The parameter may be left out and is Undefined then.
[[nodiscard]] constexpr ByDefault by_default() noexcept {
    return {ParamDefault::undefined, {}};
}
/// The parameter may be left out and is that Boolean then.
[[nodiscard]] constexpr ByDefault by_default(std::same_as<bool> auto value) noexcept {
    return {ParamDefault::literal, value};
}
/// The parameter may be left out and is that Number then.
[[nodiscard]] constexpr ByDefault by_default(NumericInteger auto value) noexcept {
    return {ParamDefault::literal, static_cast<std::int64_t>(value)};
}
/// The parameter may be left out and is the shortest decimal that reads back to `value` then.
[[nodiscard]] constexpr ByDefault by_default(double value) noexcept {
    return {ParamDefault::literal, value};
}
/// The parameter may be left out and is that String then; the text is borrowed, as a rule from a literal.
[[nodiscard]] constexpr ByDefault by_default(const wchar* text) noexcept {
    return {ParamDefault::literal, text};
}

/// How a declaration names a parameter: `{u"Amount", u"Сумма"}`, `{u"Amount", u"Сумма",
/// core::by_default(1)}`.
struct Parameter {
    /// A parameter that the declaration does not name.
    constexpr Parameter() noexcept = default;
    /// A parameter by its names, of which the Russian one may be missing (null), and what it is when it is
    /// left out. The texts are borrowed, as a rule from literals.
    constexpr Parameter(const wchar* english, const wchar* russian = nullptr,
                        const ByDefault& leftOut = {}) noexcept
        : names(english, russian), byDefault(leftOut) {}

    NamePair names;      ///< English and Russian
    ByDefault byDefault; ///< what it is when it is left out
};

namespace detail {

/// The rows of the parameters of a signature: what their types say.
template <class... As>
[[nodiscard]] constexpr auto parameter_rows(TypeList<As...>) noexcept {
    return std::array<Param, sizeof...(As)>{
        Param{.byDefault = kMayBeMissing<As> ? ParamDefault::undefined : ParamDefault::none,
              .in = kPassesIn<As>,
              .out = kPassesBack<As>}...};
}
/// Adds to the row of a parameter what a declaration says of it.
constexpr void name_parameter(Param& row, const Parameter& given) noexcept {
    row.names = given.names;
    if (given.byDefault.kind != ParamDefault::none) {
        row.byDefault = given.byDefault.kind;
        row.literal = given.byDefault.literal;
    }
}

} // namespace detail

/// A C++ callable of any signature that converts (see NativeValue) as a function of scripts, which it owns.
/// Parameters: by value, by const reference, as a pointer or reference to an object; an std::optional may be
/// left out; `T&` passes a value in and back, Out<T> only back. Threads: as the callable.
class NativeFunction {
  public:
    /// Wraps a function object or a pointer to a function. `parameters` names the first parameters and gives
    /// their defaults; their texts are borrowed. Throws std::bad_alloc.
    template <class F>
    requires detail::Callable<F>
    explicit NativeFunction(F function, std::initializer_list<Parameter> parameters = {})
        : held_(std::make_unique<Held<F>>(std::move(function))) {
        const auto rows = detail::parameter_rows(typename detail::SignatureOf<F>::Parameters{});
        params_.assign(rows.begin(), rows.end());
        for (std::size_t i = 0; i < std::min(params_.size(), parameters.size()); ++i)
            detail::name_parameter(params_[i], parameters.begin()[i]);
        returns_ = detail::SignatureOf<F>::kReturns;
        type_ = detail::SignatureOf<F>::resultType();
    }

    /// Returns what is known of the parameters, borrowed from the function.
    [[nodiscard]] std::span<const Param> params() const noexcept { return params_; }
    /// Returns whether a call has a value.
    [[nodiscard]] bool returns() const noexcept { return returns_; }
    /// Returns the id of the type of what a call returns, null where it is not known or a call returns
    /// nothing; borrowed, valid as long as the type.
    [[nodiscard]] const GUID* type() const noexcept { return type_; }

    /// Calls the function with as many arguments as there are parameters, and stores in them what is passed
    /// back. Returns its value, Undefined for none. Throws ContextException for an argument that does not
    /// convert and for too few arguments, before the function is called, and what the function throws;
    /// the arguments are then unchanged.
    GenericValue operator()(std::span<GenericValue> arguments) const {
        if (arguments.size() < params_.size())
            detail::missing_argument(arguments.size());
        return held_->call(arguments);
    }

  private:
    struct Base {
        virtual ~Base() = default;
        virtual GenericValue call(std::span<GenericValue> arguments) = 0;
    };
    template <class F>
    struct Held final : Base, private LiveObjectTrackerImpl<Held<F>>, private detail::CodeOf<F> {
        // Counted in both ways: it keeps its module.
        explicit Held(F&& taken) : detail::CodeOf<F>(taken), function(std::move(taken)) {}
        GenericValue call(std::span<GenericValue> arguments) override {
            return call_native(function, arguments);
        }
        F function;
    };

    std::unique_ptr<Base> held_;
    std::vector<Param> params_;
    const GUID* type_ = nullptr;
    bool returns_ = false;
};

} // namespace core
