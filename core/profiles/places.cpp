// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/places.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace core {
namespace {

/// A variable of the environment that holds an absolute path; others do not count.
std::string path_variable(const char* name) {
    const char* const text = std::getenv(name);
    return text != nullptr && *text == '/' ? text : std::string();
}

std::string user_folder() {
    if (std::string folder = path_variable("XDG_CONFIG_HOME"); !folder.empty())
        return folder;
    const std::string home = path_variable("HOME");
    return home.empty() ? home : home + "/.config";
}

std::string system_folder() {
    const std::string folders = path_variable("XDG_CONFIG_DIRS");
    const std::string first = folders.substr(0, folders.find(':'));
    return first.empty() ? "/etc/xdg" : first;
}

wstring file_below(const std::string& folder, wstring_view application) {
    if (folder.empty())
        return {};
    return file_url(folder + '/' + to_utf8(application) + "/settings.list");
}

} // namespace

ProfilePlaces profile_places(const ProfileSettings& settings) {
    ProfilePlaces places{settings.system, settings.user};
    if (places.system.empty())
        places.system = file_below(system_folder(), settings.application);
    if (places.user.empty())
        places.user = file_below(user_folder(), settings.application);
    return places;
}

} // namespace core
