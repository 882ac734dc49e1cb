// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <iterator>

namespace core {
namespace {

/// The last part of a pattern as it stands behind the URL of a folder.
wstring mask_in_url(wstring_view pattern) {
    wstring_view rest = pattern.substr(pattern.rfind(u'/') + 1); // all of it without a "/"
    if (is_file_url(pattern))
        return wstring(rest);
    wstring mask;
    while (!rest.empty()) {
        const std::size_t count = std::min(rest.find_first_of(u"*?"), rest.size());
        mask += escape_url(to_utf8(rest.substr(0, count)));
        mask += rest.substr(count, 1);
        rest.remove_prefix(std::min(count + 1, rest.size()));
    }
    return mask;
}

} // namespace

std::vector<FileInfo> find_below(IFileSystem& files, const wstring& pattern) {
    std::vector<FileInfo> found = files.findFile(pattern);
    if (!files.capabilities(pattern).folders)
        return found;
    const wstring mask = mask_in_url(pattern);
    std::vector<wstring> ahead{pattern.substr(0, pattern.rfind(u'/') + 1)}; // the last one comes next
    while (!ahead.empty()) {
        std::vector<FileInfo> entries = files.findFile(std::move(ahead.back()) + u"*");
        ahead.pop_back();
        std::erase_if(entries, [](const FileInfo& entry) { return !entry.isFolder || entry.isLink; });
        for (auto folder = entries.rbegin(); folder != entries.rend(); ++folder)
            ahead.push_back(folder->url + u"/");
        if (!ahead.empty())
            std::ranges::move(files.findFile(ahead.back() + mask), std::back_inserter(found));
    }
    return found;
}

} // namespace core
