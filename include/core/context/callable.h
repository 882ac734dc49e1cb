// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/values/generic_value.h>

#include <functional>
#include <span>

/// Procedures as values: what functions of the library take to call back into a script, and what handles an
/// event. Scripts know the type as "Procedure" and write the name of a procedure for its value.
namespace core {

/// Something that can be called with values. Threads: as the script that it is of.
class ICallable : public IUnknown {
  public:
    static constexpr GUID IID = "a64c5ccc-5663-4e15-ba67-d97d351c91c8"_guid; ///< the interface's id

    /// Returns the name that it was declared with, borrowed: valid as long as the object.
    [[nodiscard]] virtual const wstring& name() const noexcept = 0;
    /// Returns how many arguments a call needs at the least.
    [[nodiscard]] virtual int leastArguments() const noexcept = 0;
    /// Returns how many arguments a call takes at the most.
    [[nodiscard]] virtual int mostArguments() const noexcept = 0;
    /// Returns whether a call has a value.
    [[nodiscard]] virtual bool returns() const noexcept = 0;
    /// Returns an address that tells what is called apart: two values of one procedure have the same.
    [[nodiscard]] virtual const void* target() const noexcept = 0;
    /// Calls it and returns its value, Undefined where it has none. Throws ContextException for too few or
    /// too many arguments, and what it throws itself.
    virtual GenericValue call(std::span<const GenericValue> arguments) = 0;

  protected:
    ~ICallable() = default;
};

/// What a callable value is made of.
struct CallableParts {
    wstring name;                 ///< see ICallable::name()
    int leastArguments = 0;       ///< see ICallable::leastArguments()
    int mostArguments = 0;        ///< see ICallable::mostArguments()
    bool returns = true;          ///< see ICallable::returns()
    const void* target = nullptr; ///< see ICallable::target()
    /// Is called with a number of arguments between the two.
    std::function<GenericValue(std::span<const GenericValue>)> call;
};

/// Returns a value of the type "Procedure", which is an ICallable and equals those with the same target.
/// Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<ICallable> create_callable(CallableParts parts);

/// Returns the callable that an argument is, with a reference. Throws ContextException
/// ("IDS_PARAMETER_N_TYPE_MISMATCH") for another value, and ("IDS_PARAMETER_N_VALUE_MISMATCH") for a callable
/// that cannot be called with `count` arguments; `param` counts from 0.
[[nodiscard]] CORE_API InterfacePtr<ICallable> callable_argument(const Value& argument, int param, int count);

} // namespace core
