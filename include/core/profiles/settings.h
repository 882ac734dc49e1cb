// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>
#include <core/runtime/settings.h>
#include <core/runtime/types.h>

namespace core {

/// Where a process keeps its settings. Part of its Settings.
struct ProfileSettings {
    /// Tells this part of the settings from others.
    static constexpr GUID kId = "3b96f9e8-c151-4770-bd5d-6b11a7d0de38"_guid;

    /// The folder of the program below the system's folders of settings.
    wstring application = u"core";
    /// The path or URL of the user's file; empty for "settings.list" in the program's folder below
    /// $XDG_CONFIG_HOME, or else below ".config" in $HOME; on Windows below %APPDATA%.
    wstring user;
    /// The path or URL of the system's file; empty for "settings.list" in the program's folder below the
    /// first folder of $XDG_CONFIG_DIRS, or else below "/etc/xdg"; on Windows below %PROGRAMDATA%.
    wstring system;
};

} // namespace core
