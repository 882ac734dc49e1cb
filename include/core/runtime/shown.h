// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/runtime/utf8.h>

#include <concepts>
#include <ostream>
#include <string>

/// Types of the library on streams of bytes, in UTF-8. Text itself, a wstring, is not among them: it is a
/// type of the standard library, whose output is not for others to define; to_utf8() makes bytes of it.
namespace core {

/// Says of a type that to_utf8() makes the text of it that people and programs read: such a type can be
/// written to streams and formatted. A program specializes it for a type of its own.
template <class T>
inline constexpr bool kShown = false;

/// A type that can be written to streams of bytes.
template <class T>
concept Shown = kShown<T> && requires(const T& shown) {
    { to_utf8(shown) } -> std::same_as<std::string>;
};

/// Writes the text of to_utf8() and returns the stream, with its width and fill. Takes the types themselves,
/// so that nothing else becomes one of them in order to be written. Throws std::bad_alloc.
template <Shown T>
std::ostream& operator<<(std::ostream& out, const T& shown) {
    return out << to_utf8(shown);
}

/// Returns the 36 characters of an id. Throws std::bad_alloc.
[[nodiscard]] inline std::string to_utf8(const GUID& id) {
    return to_utf8(to_string(id));
}
/// Ids are written to streams.
template <>
inline constexpr bool kShown<GUID> = true;

} // namespace core
