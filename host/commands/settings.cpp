// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/terminal/error_report.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/profiles/errors.h>
#include <core/profiles/profile.h>
#include <core/runtime/clock.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace host {
namespace {

using namespace core;

struct SettingsOptions {
    std::string path;
    std::string value;
    std::string file;
    ProfileLayer layer = ProfileLayer::user;
    bool asText = false;
};
using Run = ExitCode (*)(const SettingsOptions& options, IProfile& profile, Console& console);

const std::map<std::string, ProfileLayer> kLayers = {{"user", ProfileLayer::user},
                                                     {"system", ProfileLayer::system}};
constexpr const char* kLayerNames[] = {"built-in", "system", "user", "run"};

/// A value as it is shown, and as `set` reads it again, except texts that look like something else.
wstring shown(const Value& value) {
    if (const wstring_view* const text = value.asString())
        return wstring(*text);
    if (value.kind() == ValueKind::boolean)
        return value.isTrue() ? u"true" : u"false";
    if (const NumericRef number = value.asNumeric(); number != nullptr)
        return number->toString();
    wstring list;
    GenericValue(value).toString(list);
    return list;
}

/// What is written on the command line: true, false, a number as it would be shown, a brace list, else a
/// text.
GenericValue value_of(const SettingsOptions& options) {
    const wstring text = from_utf8(options.value);
    if (options.asText)
        return text;
    if (text == u"true" || text == u"false")
        return text == u"true";
    if (text.starts_with(u'{')) {
        try {
            return GenericValue::fromString(text);
        } catch (const Exception& e) {
            throw_error<ProfileException>("IDS_HOST_SETTINGS_VALUE", {text, e.description()});
        }
    }
    Numeric number;
    if (GenericValue(text).getNumeric(number) && number.toString() == text)
        return number;
    return text;
}

nlohmann::ordered_json report(const wstring& path, const ProfileValue& found) {
    return {{"path", to_utf8(path)},
            {"value", to_utf8(shown(found.value))},
            {"type", to_utf8(found.value.type().presentation())},
            {"layer", kLayerNames[static_cast<std::size_t>(found.layer)]}};
}

ExitCode get(const SettingsOptions& options, IProfile& profile, Console& console) {
    const wstring path = from_utf8(options.path);
    const std::optional<ProfileValue> found = profile.find(path);
    if (!found)
        return fail(console, message_text("IDS_HOST_SETTINGS_NONE", {path}), ExitCode::no);
    if (console.json)
        console.out << report(path, *found).dump(2) << '\n';
    else
        console.out << terminal_lines(shown(found->value)) << '\n';
    return ExitCode::done;
}

ExitCode set(const SettingsOptions& options, IProfile& profile, Console&) {
    profile.set(from_utf8(options.path), value_of(options), options.layer);
    return ExitCode::done;
}

ExitCode remove(const SettingsOptions& options, IProfile& profile, Console& console) {
    const wstring path = from_utf8(options.path);
    if (!profile.find(path) && profile.list(path).empty())
        return fail(console, message_text("IDS_HOST_SETTINGS_NONE", {path}), ExitCode::no);
    profile.remove(path, options.layer);
    return ExitCode::done;
}

void write_line(Console& console, const wstring& path, const ProfileValue& found) {
    console.out << message("IDS_HOST_SETTINGS_CHANGED",
                           {from_utf8(terminal_text(path)), from_utf8(terminal_text(shown(found.value)))})
                << '\n';
}

ExitCode list(const SettingsOptions& options, IProfile& profile, Console& console) {
    const std::vector<ProfileEntry> entries = profile.entries(from_utf8(options.path));
    if (console.json) {
        auto all = nlohmann::ordered_json::array();
        for (const ProfileEntry& entry : entries)
            all.push_back(report(entry.path, entry.found));
        console.out << all.dump(2) << '\n';
    } else {
        for (const ProfileEntry& entry : entries)
            write_line(console, entry.path, entry.found);
    }
    return ExitCode::done;
}

/// Tells changes until it is interrupted.
ExitCode watch(const SettingsOptions& options, IProfile& profile, Console& console) {
    const Connection connection = profile.watch(from_utf8(options.path), [&](const wstring& path) {
        const std::optional<ProfileValue> found = path.empty() ? std::nullopt : profile.find(path);
        if (console.json)
            console.out
                << (found ? report(path, *found) : nlohmann::ordered_json{{"path", to_utf8(path)}}).dump()
                << '\n';
        else if (found)
            write_line(console, path, *found);
        else
            console.out << message("IDS_HOST_SETTINGS_REMOVED", {from_utf8(terminal_text(path))}) << '\n';
    });
    const Interrupts interrupts;
    try {
        for (; console.out.flush(); current_clock().sleep(std::chrono::milliseconds(100))) {
            interrupts.check();
            profile.refresh();
        }
    } catch (const Interrupted&) {
        return ExitCode::interrupted;
    }
    return ExitCode::done;
}

ExitCode export_to(const SettingsOptions& options, IProfile& profile, Console&) {
    profile.exportTo(from_utf8(options.file), from_utf8(options.path));
    return ExitCode::done;
}

ExitCode import_from(const SettingsOptions& options, IProfile& profile, Console&) {
    profile.importFrom(from_utf8(options.file), from_utf8(options.path), options.layer);
    return ExitCode::done;
}

/// Adds the verbs, each with its help in the language of the console.
class Verbs {
  public:
    Verbs(CLI::App& command, Console& console, Action& action)
        : command_(command), console_(console), action_(action),
          options_(std::make_shared<SettingsOptions>()) {}

    CLI::App& add(const char* name, const char* english, const char* russian, Run run) {
        return *add_subcommand(command_, name, help(console_, english, russian), action_,
                               [options = options_, &console = console_, run] {
                                   auto& profile = require_service<IProfile>();
                                   const ExitCode code = run(*options, profile, console);
                                   for (const wstring& text : profile.takeReports())
                                       show_failure(console, text);
                                   return code;
                               });
    }
    CLI::Option* addPath(CLI::App& sub) {
        return sub.add_option("path", options_->path,
                              help(console_, "Names with / between them, such as host/language",
                                   "Имена через /, например host/language"));
    }
    void addFile(CLI::App& sub) {
        sub.add_option("file", options_->file, help(console_, "The file", "Файл"))->required();
    }
    void addLayer(CLI::App& sub) {
        sub.add_option_function<std::string>(
               "--layer",
               [options = options_](const std::string& name) {
                   const auto found = kLayers.find(name);
                   if (found == kLayers.end())
                       throw CLI::ValidationError("--layer", name);
                   options->layer = found->second;
               },
               help(console_, "Whose settings are changed; default: the user's",
                    "Чьи настройки меняются; по умолчанию пользователя"))
            ->type_name("user|system");
    }
    void addValue(CLI::App& sub) {
        sub.add_option("value", options_->value,
                       help(console_, "true, false, a number, a brace list, or else a text",
                            "true, false, число, список в скобках или иначе текст"))
            ->required();
        sub.add_flag("--text", options_->asText,
                     help(console_, "The value is a text whatever it looks like",
                          "Значение — текст, как бы оно ни выглядело"));
    }

  private:
    CLI::App& command_;
    Console& console_;
    Action& action_;
    std::shared_ptr<SettingsOptions> options_;
};

} // namespace

void add_settings_command(CLI::App& app, Console& console, Action& action) {
    auto* const command =
        app.add_subcommand("settings", help(console, "The settings of the user and of the system",
                                            "Настройки пользователя и системы"));
    command->require_subcommand(1);
    command->fallthrough();
    Verbs verbs(*command, console, action);
    verbs.addPath(verbs.add("get", "Show a value", "Показать значение", get))->required();
    CLI::App& setting = verbs.add("set", "Set a value", "Установить значение", set);
    verbs.addPath(setting)->required();
    verbs.addValue(setting);
    verbs.addLayer(setting);
    CLI::App& removing = verbs.add("rm", "Remove a value, or a folder with all that it holds",
                                   "Удалить значение или папку со всем, что в ней", remove);
    verbs.addPath(removing)->required();
    verbs.addLayer(removing);
    verbs.addPath(verbs.add("list", "List values", "Показать список значений", list));
    verbs.addPath(verbs.add("watch", "Tell changes until it is interrupted",
                            "Сообщать об изменениях, пока не прервут", watch));
    CLI::App& exporting = verbs.add("export", "Write the values of a folder to a file",
                                    "Записать значения папки в файл", export_to);
    verbs.addFile(exporting);
    verbs.addPath(exporting);
    CLI::App& importing =
        verbs.add("import", "Set the values of a file", "Установить значения из файла", import_from);
    verbs.addFile(importing);
    verbs.addPath(importing);
    verbs.addLayer(importing);
}

} // namespace host
