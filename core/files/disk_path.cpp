// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_path.h"

#include "core/files/disk_node.h"

namespace core {

std::string folder_of(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string without_end_slash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

bool is_same_file(const std::string& a, const std::string& b) {
    const auto first = disk_node(a, Links::followed);
    const auto second = disk_node(b, Links::followed);
    return first && second && first->disk == second->disk && first->number == second->number;
}

void flush_folder_of(const std::string& path) {
    flush_folder(folder_of(path));
}

bool rename_durably(const std::string& from, const std::string& to) {
    const std::string source = folder_of(from);
    const std::string target = folder_of(to);
    if (!rename_node(from, to))
        return false;
    flush_folder(target);
    if (source != target)
        flush_folder(source);
    return true;
}

} // namespace core
