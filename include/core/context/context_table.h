// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_error.h>
#include <core/context/name_cache.h>
#include <core/strings/term.h>

#include <cstdint>
#include <span>

/// The properties and methods of a class as data: tables at one place in its source file.
namespace core {

/// The default of a parameter that may be left out.
enum class ParamDefault : std::uint8_t { none, undefined, emptyString, falseValue, resourceText };

/// A parameter of a method. Most are `{}`: a value goes in, and it cannot be left out.
struct Param {
    ParamDefault byDefault = ParamDefault::none;
    const char* resource = nullptr; ///< the text of a resourceText default
    bool in = true;
    bool out = false;

    /// Whether there is a default, stored in `*value` when that is not null.
    CORE_API bool getDefault(GenericValue* value) const;
};

/// A property: how it is read and written. A null function means that it cannot be.
template <class T>
struct Property {
    const wchar* const* names;
    GenericValue (T::*get)() const;
    void (T::*set)(const GenericValue& value) = nullptr;
    const GUID* type = nullptr; ///< the id of its type, where it always has the same
};

/// A method. It is called with as many arguments as it has parameters; what it returns
/// counts for functions only.
template <class T>
struct Method {
    const wchar* const* names;
    std::span<const Param> params;
    bool returns;
    GenericValue (T::*call)(std::span<GenericValue> arguments);
    const GUID* type = nullptr; ///< the id of what it returns, where that is always of the same type
};

/// Names for the entries of a table of methods.
inline constexpr bool kFunction = true;
inline constexpr bool kProcedure = false;
/// Parameters without defaults.
inline constexpr Param kRequired[8] = {};
[[nodiscard]] constexpr std::span<const Param> required(std::size_t count) noexcept {
    return std::span(kRequired).first(count);
}

namespace detail {

/// ContextException: a property or method number that does not exist, a property that
/// cannot be read or written.
[[noreturn]] CORE_API void bad_property(int prop);
[[noreturn]] CORE_API void bad_method(int method);
[[noreturn]] CORE_API void unreadable_property(const wchar* name);
[[noreturn]] CORE_API void unwritable_property(const wchar* name);
/// Completes the arguments of a call with defaults. ContextException when there are too many, or one without
/// a default is missing.
CORE_API void complete_arguments(std::span<const Param> params, std::vector<GenericValue>& arguments,
                                 const wchar* method);

} // namespace detail
} // namespace core
