// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

/// Paths of settings, and the keys by which layers hold what stands at them:
///
///     report/period      the value at that path
///     report/period!     the lock of that path and of what is below it
///     report/            the folder as a whole, where it is removed; "/" is everything
namespace core {

/// Throws ProfileException unless `path` is one.
void require_path(wstring_view path);
/// Throws ProfileException unless `folder` is a path or empty.
void require_folder(wstring_view folder);

/// Returns what the keys below a folder begin with.
[[nodiscard]] wstring keys_below(wstring_view folder);
/// Returns the two paths as one; an empty one adds nothing.
[[nodiscard]] wstring join_paths(wstring_view folder, wstring_view path);
/// Returns whether `path` is `folder` or lies below it.
[[nodiscard]] bool is_within(wstring_view path, wstring_view folder) noexcept;

/// What a key ends with that stands for a lock. No name has it.
inline constexpr wchar kLockMark = u'!';
/// Returns whether a key is that of a lock.
[[nodiscard]] constexpr bool is_lock(wstring_view key) noexcept {
    return key.ends_with(kLockMark);
}
/// Returns whether a key is a folder as a whole.
[[nodiscard]] constexpr bool is_folder(wstring_view key) noexcept {
    return key.ends_with(u'/');
}
/// Returns the path that a key is about.
[[nodiscard]] constexpr wstring_view path_of_key(wstring_view key) noexcept {
    return is_lock(key) || is_folder(key) ? key.substr(0, key.size() - 1) : key;
}

} // namespace core
