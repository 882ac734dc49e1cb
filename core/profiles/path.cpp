// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/path.h"

#include <core/profiles/errors.h>
#include <core/profiles/profile.h>

namespace core {
namespace {

bool is_path(wstring_view path) noexcept {
    if (path.empty() || path.size() > kMaxProfilePath)
        return false;
    wchar before = u'/';
    for (const wchar unit : path) {
        const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
        if (isControl || unit == u'"' || unit == kLockMark || (unit == u'/' && before == u'/'))
            return false;
        before = unit;
    }
    return before != u'/';
}

} // namespace

void require_path(wstring_view path) {
    if (!is_path(path))
        throw_error<ProfileException>(messages::kProfilePath, {wstring(path)});
}

void require_folder(wstring_view folder) {
    if (!folder.empty())
        require_path(folder);
}

wstring keys_below(wstring_view folder) {
    return folder.empty() ? wstring() : wstring(folder) + u'/';
}

wstring join_paths(wstring_view folder, wstring_view path) {
    return path.empty() ? wstring(folder) : keys_below(folder) + wstring(path);
}

bool is_within(wstring_view path, wstring_view folder) noexcept {
    return folder.empty() ||
           (path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == u'/'));
}

} // namespace core
