// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/places.h"

#include "core/profiles/config_folders.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>

#include <string>
#include <string_view>

namespace core {
namespace {

wstring file_below(const std::string& folder, wstring_view application) {
    if (folder.empty())
        return {};
    return file_url(folder + '/' + to_utf8(application) + "/settings.list");
}

} // namespace

ProfilePlaces profile_places(const ProfileSettings& settings) {
    ProfilePlaces places{settings.system, settings.user};
    if (places.system.empty())
        places.system = file_below(system_config_folder(), settings.application);
    if (places.user.empty())
        places.user = file_below(user_config_folder(), settings.application);
    return places;
}

} // namespace core
