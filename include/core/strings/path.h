// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/strings/code_unit.h>

namespace core {

/// A file's path in four parts, each of which may be empty. Splitting loses nothing: the parts in their
/// order are the path.
template <CodeUnit C>
struct BasicPathParts {
    std::basic_string<C> drive;     ///< a letter and a colon
    std::basic_string<C> directory; ///< up to the last separator, "/" or "\", and with it
    std::basic_string<C> name;      ///< the file's name without its extension
    std::basic_string<C> extension; ///< the last dot of the name and what follows; a leading dot begins none
    friend bool operator==(const BasicPathParts&, const BasicPathParts&) = default;
};
/// The parts of a wide path.
using PathParts = BasicPathParts<wchar>;
/// The parts of a narrow path.
using NarrowPathParts = BasicPathParts<char>;

/// Splits a path at its separators, on every platform in the same way.
[[nodiscard]] CORE_API PathParts string_splitpath(wstring_view path);
/// Splits a narrow path at its separators, on every platform in the same way.
[[nodiscard]] CORE_API NarrowPathParts string_splitpath(std::string_view path);
/// Splits a path that is given by a pointer (code_unit.h) at its separators.
template <CodeUnit C, TextEnd<C>... End>
[[nodiscard]] BasicPathParts<C> string_splitpath(const C* path, End... end) {
    return string_splitpath(text_view(path, end...));
}

/// Returns the path of the parts. It adds what they leave out: the colon of the drive, the separator "/"
/// behind the directory, the dot of the extension.
[[nodiscard]] CORE_API wstring string_makepath(const PathParts& parts);
/// Returns the narrow path of the parts. It adds what they leave out: the colon of the drive, the separator
/// "/" behind the directory, the dot of the extension.
[[nodiscard]] CORE_API std::string string_makepath(const NarrowPathParts& parts);

} // namespace core
