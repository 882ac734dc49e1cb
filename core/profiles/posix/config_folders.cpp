// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/config_folders.h"

#include <cstdlib>

namespace core {
namespace {

/// A variable of the environment that holds an absolute path; others do not count.
std::string path_variable(const char* name) {
    const char* const text = std::getenv(name);
    return text != nullptr && *text == '/' ? text : std::string();
}

} // namespace

std::string user_config_folder() {
    if (std::string folder = path_variable("XDG_CONFIG_HOME"); !folder.empty())
        return folder;
    const std::string home = path_variable("HOME");
    return home.empty() ? home : home + "/.config";
}

std::string system_config_folder() {
    const std::string folders = path_variable("XDG_CONFIG_DIRS");
    const std::string first = folders.substr(0, folders.find(':'));
    return first.empty() ? "/etc/xdg" : first;
}

} // namespace core
