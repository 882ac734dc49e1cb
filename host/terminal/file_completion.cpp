// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/file_completion.h"

#include "host/terminal/disk_entry.h"

#include <core/runtime/utf8.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

namespace host {

namespace fs = std::filesystem;

namespace {

/// What stands in the string that the line ends in.
std::optional<core::wstring> open_string(core::wstring_view line) {
    std::optional<core::wstring> text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool last = i + 1 == line.size();
        if (!text) {
            if (line[i] == u'"')
                text.emplace();
            else if (line[i] == u'/' && !last && line[i + 1] == u'/')
                return std::nullopt;
        } else if (line[i] != u'"') {
            *text += line[i];
        } else if (!last && line[i + 1] == u'"') {
            *text += line[i++];
        } else {
            text.reset();
        }
    }
    return text;
}

} // namespace

core::script::Completion complete_path(core::wstring_view begun, core::wstring_view end) {
    const std::string path = core::to_utf8(begun);
    const std::size_t slash = path.rfind('/') + 1; // 0 without one
    const std::string beginning = path.substr(slash);
    core::script::Completion found;
    found.typed = begun.size() - (begun.rfind(u'/') + 1);
    std::error_code error;
    for (fs::directory_iterator entry(native_path(slash == 0 ? "." : path.substr(0, slash)), error), none;
         !error && entry != none; entry.increment(error)) {
        const std::string name = path_text(entry->path().filename());
        if (!name.starts_with(beginning) || (beginning.empty() && name.starts_with('.')))
            continue;
        std::error_code gone;
        found.names.push_back(core::from_utf8(name) +
                              core::wstring(entry->is_directory(gone) ? core::wstring_view(u"/") : end));
    }
    std::sort(found.names.begin(), found.names.end());
    return found;
}

core::script::Completion complete_file(core::wstring_view line) {
    const auto text = open_string(line);
    return text ? complete_path(*text, u"\"") : core::script::Completion();
}

} // namespace host
