// SPDX-License-Identifier: Apache-2.0
#include <core/strings/char_class.h>
#include <core/strings/path.h>

namespace core {
namespace {

template <CodeUnit C>
bool is_separator(C c) noexcept {
    return c == '/' || c == '\\';
}

template <CodeUnit C, class View = std::basic_string_view<C>>
BasicPathParts<C> split(View path) {
    BasicPathParts<C> parts;
    if (path.size() >= 2 && path[1] == ':' && is_alpha(path[0])) {
        parts.drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
    std::size_t name = path.size();
    while (name > 0 && !is_separator(path[name - 1]))
        --name;
    parts.directory = path.substr(0, name);
    path.remove_prefix(name);

    // "." and ".." are names, and so is ".profile".
    const std::size_t firstOther = path.find_first_not_of(C{'.'});
    const std::size_t dot = path.rfind(C{'.'});
    const bool extended = dot != View::npos && firstOther < dot;
    parts.name = path.substr(0, extended ? dot : View::npos);
    parts.extension = extended ? path.substr(dot) : View();
    return parts;
}

template <CodeUnit C>
std::basic_string<C> join(const BasicPathParts<C>& parts) {
    std::basic_string<C> path = parts.drive;
    if (!path.empty() && path.back() != ':')
        path += C{':'};
    path += parts.directory;
    if (!parts.directory.empty() && !is_separator(path.back()))
        path += C{'/'};
    path += parts.name;
    if (!parts.extension.empty() && parts.extension.front() != '.')
        path += C{'.'};
    return path += parts.extension;
}

} // namespace

PathParts string_splitpath(wstring_view path) {
    return split<wchar>(path);
}

NarrowPathParts string_splitpath(std::string_view path) {
    return split<char>(path);
}

wstring string_makepath(const PathParts& parts) {
    return join(parts);
}

std::string string_makepath(const NarrowPathParts& parts) {
    return join(parts);
}

} // namespace core
