// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/name_cache.h>
#include <core/runtime/module_anchor.h>
#include <core/strings/term.h>

#include <cstdint>
#include <span>
#include <variant>

/// The properties and methods of a class as data: tables at one place in its source file.
namespace core {

/// The default of a parameter that may be left out.
enum class ParamDefault : std::uint8_t {
    none,         ///< it may not be left out
    undefined,    ///< Undefined
    emptyString,  ///< the empty String
    falseValue,   ///< False
    resourceText, ///< the text of the message Param::resource, in the language of the thread
    literal       ///< Param::literal
};

/// A value that a table writes down: a Boolean, a Number or a String; Undefined where it holds nothing. A
/// text is borrowed, as a rule from a literal.
using ParamLiteral = std::variant<std::monostate, bool, std::int64_t, double, const wchar*>;

/// A parameter of a method. Most are `{}`: a value goes in, and it cannot be left out.
struct Param {
    ParamDefault byDefault = ParamDefault::none; ///< what it is when it is left out
    const char* resource = nullptr;              ///< the message id of a resourceText default
    bool in = true;                              ///< passes a value in
    bool out = false;                            ///< passes a value back
    NamePair names = {};                         ///< English and Russian; none where tools show the number
    ParamLiteral literal = {};                   ///< a literal default
    const ModuleAnchor* module = &module_anchor; ///< where the message is found: the module with the table

    /// Returns whether there is a default, and stores it in `*value` when that is not null.
    CORE_API bool getDefault(GenericValue* value) const;
};

/// A property: how it is read and written.
template <class T>
struct Property {
    NamePair names;                                      ///< English and Russian
    GenericValue (T::*get)() const;                      ///< reads it; null when it cannot be read
    void (T::*set)(const GenericValue& value) = nullptr; ///< writes it; null when it cannot be written
    const GUID* type = nullptr;                          ///< the id of its type, where that never varies

    /// Calls `get`, which must not be null.
    GenericValue read(const T& object) const { return (object.*get)(); }
    /// Calls `set`, which must not be null.
    void write(T& object, const GenericValue& value) const { (object.*set)(value); }
};

/// A method.
template <class T>
struct Method {
    NamePair names;                ///< English and Russian
    std::span<const Param> params; ///< borrowed; lives as long as the table
    bool returns;                  ///< kFunction or kProcedure
    /// Called with as many arguments as there are parameters. What it returns counts for functions only.
    GenericValue (T::*call)(std::span<GenericValue> arguments);
    const GUID* type = nullptr; ///< the id of the type of what it returns, where that never varies

    /// Calls `call`.
    GenericValue invoke(T& object, std::span<GenericValue> arguments) const {
        return (object.*call)(arguments);
    }
};

inline constexpr bool kFunction = true;   ///< for Method::returns: the call has a value
inline constexpr bool kProcedure = false; ///< for Method::returns: the call has none

inline constexpr Param kRequired[8] = {}; ///< what required() hands out
/// Returns `count` parameters, 8 at the most, that cannot be left out.
[[nodiscard]] constexpr std::span<const Param> required(std::size_t count) noexcept {
    return std::span(kRequired).first(count);
}

/// Returns a parameter that passes a value in: its names, kept by address, and what it is when it is left
/// out.
[[nodiscard]] constexpr Param named_param(NamePair names,
                                          ParamDefault byDefault = ParamDefault::none) noexcept {
    return {.byDefault = byDefault, .names = names};
}

namespace detail {

// Each throws ContextException: for the number of a property or a method that does not exist, for a property
// that cannot be read or written.
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
