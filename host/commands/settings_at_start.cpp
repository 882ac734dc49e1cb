// SPDX-License-Identifier: Apache-2.0
#include "host/commands/settings_at_start.h"

#include "host/terminal/error_report.h"

#include <core/files/disk_file.h>
#include <core/locales/bool_format.h>
#include <core/locales/date_format.h>
#include <core/locales/numeric_format.h>
#include <core/profiles/profile.h>
#include <core/profiles/settings.h>
#include <core/runtime/exception.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <exception>
#include <filesystem>
#include <string>
#include <system_error>

namespace host {
namespace {

using namespace core;

/// One setting of the program: a text, which `take` accepts or not; it may throw an Exception instead.
template <class Take>
void read_setting(IProfile& profile, Console& console, const wchar* path, Take take) {
    const auto text = profile.get(path, wstring());
    if (text.empty())
        return;
    bool accepted = false;
    try {
        accepted = take(text);
    } catch (const Exception&) { // which says why, but not where
    }
    if (!accepted)
        show_failure(console, message_text("IDS_HOST_SETTINGS_REFUSED", {path, text}));
}

void read_all(IProfile& profile, Console& console) {
    read_setting(profile, console, u"host/language", [&](const wstring& text) {
        if (text == u"ru" || text == u"en")
            console.language = text == u"ru" ? Language::russian : Language::english;
        return text == u"ru" || text == u"en";
    });
    read_setting(profile, console, u"host/locale", [&](const wstring& text) {
        console.locale = Locale(to_utf8(text));
        return true;
    });
    read_setting(profile, console, u"host/mode", [&](const wstring& text) {
        const auto mode = table_form(to_utf8(text));
        if (mode)
            console.mode = mode;
        return mode.has_value();
    });
    read_setting(profile, console, u"host/numberFormat", [&](const wstring& text) {
        (void)NumericFormat(text);
        console.formats.numericFormat = text;
        return true;
    });
    read_setting(profile, console, u"host/dateFormat", [&](const wstring& text) {
        (void)DateFormat(text);
        console.formats.dateFormat = text;
        return true;
    });
    read_setting(profile, console, u"host/booleanFormat", [&](const wstring& text) {
        (void)BoolFormat(text);
        console.formats.boolFormat = text;
        return true;
    });
    console.history = profile.get(u"host/history", console.history);
}

/// Whether anybody has set anything, or that cannot be told. Only then a process is started to read it: most
/// users have set nothing, and should not wait for one.
bool has_file(const ProfileSettings& places) {
    const auto profile = create_profile(places);
    for (const ProfileLayer layer : {ProfileLayer::user, ProfileLayer::system}) {
        const wstring url = profile->fileOf(layer);
        std::error_code failure;
        if (!url.empty() && (std::filesystem::exists(file_path(url), failure) || failure))
            return true;
    }
    return false;
}

} // namespace

Settings settings_of_program() {
    Settings settings;
    settings.part<ProfileSettings>().application = u"corehost";
    return settings;
}

void read_settings_at_start(Console& console) {
    try {
        Settings settings = settings_of_program();
        if (!has_file(settings.part<ProfileSettings>()))
            return;
        settings.language = Locale(console.language == Language::russian ? "ru" : "en");
        const HostProcess process(settings);
        auto& profile = require_service<IProfile>();
        read_all(profile, console);
        for (const wstring& report : profile.takeReports())
            show_failure(console, report);
    } catch (const std::exception& e) {
        show_failure(console, from_utf8(e.what()));
    }
}

} // namespace host
