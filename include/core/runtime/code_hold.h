// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/live_counter.h>

#include <concepts>
#include <functional>
#include <type_traits>
#include <utility>

/// Callables that a module hands over: who keeps one keeps the module from being unloaded.
namespace core {

/// Counts as an object of the module that some code or data lies in, while that module is one that can be
/// unloaded. Copies count each. Threads: as any value.
class CORE_API CodeHold {
  public:
    /// Holds nothing.
    CodeHold() noexcept = default;
    /// Holds the loaded module that has `address` in its memory; nothing where none has.
    explicit CodeHold(const void* address) noexcept;
    /// Holds the module of what `function` calls; nothing for an empty function.
    template <class R, class... Args>
    explicit CodeHold(const std::function<R(Args...)>& function) noexcept : CodeHold(codeOf(function)) {}
    /// Holds what `other` holds, too.
    CodeHold(const CodeHold& other) noexcept : counter_(other.counter_) { count(); }
    /// Takes the hold over.
    CodeHold(CodeHold&& other) noexcept : counter_(std::exchange(other.counter_, nullptr)) {}
    /// Holds what `other` holds instead.
    CodeHold& operator=(CodeHold other) noexcept {
        std::swap(counter_, other.counter_);
        return *this;
    }
    ~CodeHold() {
        if (counter_ != nullptr)
            counter_->lower();
    }

  private:
    /// A function is where it is; of an object, the description of its type is where its code is.
    template <class R, class... Args>
    static const void* codeOf(const std::function<R(Args...)>& function) noexcept {
        using Pointer = R (*)(Args...);
        if (const Pointer* const plain = function.template target<Pointer>())
            return reinterpret_cast<const void*>(*plain);
        return &function.target_type();
    }
    void count() const noexcept {
        if (counter_ != nullptr)
            counter_->raise();
    }

    LiveCounter* counter_ = nullptr; // of the module, which stays as long as it counts something
};

/// A std::function, of the class `Function`, that holds the module of what it calls: for code that keeps a
/// callable which it was given. Threads: as std::function.
template <class Function>
class HeldFunction : private CodeHold, public Function {
  public:
    /// Makes an empty one.
    HeldFunction() noexcept = default;
    /// Takes a callable over. Throws what copying it throws, and std::bad_alloc.
    template <class F>
    requires(!std::derived_from<std::decay_t<F>, Function> && std::constructible_from<Function, F>)
        HeldFunction(F&& callable)
        : HeldFunction(Function(std::forward<F>(callable))) {}
    /// Takes a callable over.
    HeldFunction(Function function) noexcept : CodeHold(function), Function(std::move(function)) {}
    HeldFunction(const HeldFunction& other) = default;
    HeldFunction(HeldFunction&& other) noexcept = default;
    /// Takes a callable over; the one before has gone when its module is let go of.
    HeldFunction& operator=(HeldFunction other) noexcept {
        std::swap(static_cast<Function&>(*this), static_cast<Function&>(other));
        std::swap(static_cast<CodeHold&>(*this), static_cast<CodeHold&>(other));
        return *this;
    }
    ~HeldFunction() = default;
};

namespace detail {

/// A base of what keeps a callable of any class `F`. The code of most is compiled beside the class that keeps
/// them, which is counted itself; a std::function may come from anywhere.
template <class F>
struct CodeOf {
    constexpr explicit CodeOf(const F&) noexcept {}
};
template <class Signature>
struct CodeOf<std::function<Signature>> : CodeHold {
    using CodeHold::CodeHold;
};

} // namespace detail
} // namespace core
