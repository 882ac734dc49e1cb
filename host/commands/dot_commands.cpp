// SPDX-License-Identifier: Apache-2.0
#include "host/commands/dot_commands.h"

#include "host/commands/commands.h"
#include "host/commands/usage_error.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/error_report.h"
#include "host/terminal/file_completion.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/text_columns.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/compare.h>
#include <core/strings/nearest.h>
#include <core/strings/trim.h>

#include <CLI/CLI.hpp>

#include <array>
#include <cerrno>
#include <charconv>
#include <ostream>
#include <span>
#include <utility>

namespace host {

using namespace core;

struct DotCommands::Command {
    std::array<const wchar*, 2> names;
    std::array<const char*, 2> arguments; ///< as the help shows them
    std::array<const char*, 2> help;
    Outcome (DotCommands::*run)(const wstring& argument);
};

constexpr DotCommands::Command DotCommands::kCommands[] = {
    {{u".describe", u".описание"},
     {"NAME", "ИМЯ"},
     {"A type, a member of one or a function", "Тип, его член или функция"},
     &DotCommands::describe},
    {{u".exit", u".выход"}, {"[CODE]", "[КОД]"}, {"Leave", "Выйти"}, &DotCommands::exit},
    {{u".help", u".справка"},
     {"[NAME]", "[ИМЯ]"},
     {"This list; with a name as .describe", "Этот список; с именем как .описание"},
     &DotCommands::help},
    {{u".mode", u".форма"},
     {"[FORM]", "[ФОРМА]"},
     {"The form of tables: table, csv, json, jsonl, markdown, html, list, fixed",
      "Форма таблиц: table, csv, json, jsonl, markdown, html, list, fixed"},
     &DotCommands::mode},
    {{u".output", u".вывод"},
     {"[FILE]", "[ФАЙЛ]"},
     {"Write what is shown to a file; without one to the terminal again",
      "Писать показанное в файл; без имени снова на терминал"},
     &DotCommands::output},
    {{u".read", u".прочитать"},
     {"FILE", "ФАЙЛ"},
     {"Run a script here", "Выполнить скрипт здесь"},
     &DotCommands::read},
    {{u".timer", u".время"},
     {"[on|off]", "[вкл|выкл]"},
     {"Show how long each entry takes", "Показывать, сколько занял каждый ввод"},
     &DotCommands::timer},
};

namespace {

constexpr const wchar* kLeave[] = {u"exit", u"quit", u"выход"};
constexpr const wchar* kAskForHelp[] = {u"help", u"справка", u"помощь"};

bool is_word(wstring_view line, std::span<const wchar* const> words) {
    return std::ranges::any_of(words, [&](const wchar* word) { return compare_nocase(line, word) == 0; });
}

/// A command and what stands behind it.
std::pair<wstring_view, wstring_view> divided(wstring_view line) {
    const std::size_t end = std::min(line.find_first_of(u" \t"), line.size());
    return {line.substr(0, end), trim_all(line.substr(end))};
}

bool begins(wstring_view name, wstring_view with) {
    return name.size() >= with.size() && compare_nocase(name.substr(0, with.size()), with) == 0;
}

constexpr std::string_view kForms[] = {"table", "csv", "json", "jsonl", "markdown", "html", "list", "fixed"};

} // namespace

DotCommands::~DotCommands() {
    endOutput();
}

bool DotCommands::isOne(wstring_view line) const {
    const wstring_view text = trim_all(line);
    if (text.size() > 1 && text[0] == u'.' && is_alpha(text[1]))
        return true;
    return (is_word(text, kLeave) || is_word(text, kAskForHelp)) && !engine_.has(text);
}

DotCommands::Outcome DotCommands::carryOut(wstring_view line) {
    const wstring_view text = trim_all(line);
    if (is_word(text, kLeave))
        return exit({});
    if (is_word(text, kAskForHelp))
        return help({});
    const auto [name, argument] = divided(text);
    name_ = name;
    if (const Command* const command = find(name); command != nullptr)
        return (this->*command->run)(wstring(argument));
    NearestName near(name);
    for (const Command& command : kCommands)
        std::ranges::for_each(command.names, [&near](wstring_view known) { near.add(known); });
    return refuse("IDS_HOST_DOT_UNKNOWN", {name_}, near.best());
}

script::Completion DotCommands::complete(wstring_view before) const {
    script::Completion found;
    if (before.empty() || before.front() != u'.')
        return found;
    const std::size_t end = before.find_first_of(u" \t");
    if (end == wstring_view::npos) {
        found.typed = before.size();
        for (const Command& command : kCommands) {
            for (const wchar* const name : command.names) {
                if (before.size() > 1
                        ? begins(name, before)
                        : name == command.names[static_cast<std::size_t>(alias_of(console_.language))])
                    found.names.push_back(name + wstring(u" "));
            }
        }
        return found;
    }
    const Command* const command = find(before.substr(0, end));
    const wstring_view argument =
        before.substr(std::min(before.find_first_not_of(u" \t", end), before.size()));
    if (command == nullptr)
        return found;
    if (command->run == &DotCommands::read || command->run == &DotCommands::output)
        return complete_path(argument, u"");
    if (command->run == &DotCommands::describe || command->run == &DotCommands::help)
        return script::complete(engine_, u"New " + wstring(argument), alias_of(console_.language));
    if (command->run == &DotCommands::mode) {
        found.typed = argument.size();
        for (const std::string_view form : kForms) {
            if (wstring name = from_utf8(form); begins(name, argument))
                found.names.push_back(std::move(name));
        }
    }
    return found;
}

const DotCommands::Command* DotCommands::find(wstring_view name) const {
    for (const Command& command : kCommands) {
        if (is_word(name, command.names))
            return &command;
    }
    return nullptr;
}

DotCommands::Outcome DotCommands::refuse(const char* id, std::initializer_list<wstring> parameters,
                                         const wstring& nearest) const {
    wstring text = message_text(id, parameters);
    if (!nearest.empty())
        text.append(u" ").append(message_text("IDS_DID_YOU_MEAN", {nearest}));
    show_failure(console_, text, id);
    return {.failed = true};
}

DotCommands::Outcome DotCommands::refuseArgument(const wstring& argument, const wstring& nearest) const {
    return refuse("IDS_HOST_DOT_ARGUMENT", {name_, argument}, nearest);
}

DotCommands::Outcome DotCommands::help(const wstring& argument) {
    if (!argument.empty())
        return describe(argument);
    const auto alias = static_cast<std::size_t>(alias_of(console_.language));
    Columns lines;
    for (const Command& command : kCommands)
        lines.add({to_utf8(command.names[alias]) + ' ' + command.arguments[alias], command.help[alias]});
    lines.write(console_.out);
    console_.out << message("IDS_HOST_REPL_KEYS") << '\n';
    return {};
}

DotCommands::Outcome DotCommands::exit(const wstring& argument) {
    if (argument.empty())
        return {.leaves = true};
    const std::string text = to_utf8(argument);
    unsigned char code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (error != std::errc() || end != text.data() + text.size())
        return refuseArgument(argument);
    return {.exit = static_cast<ExitCode>(code)};
}

DotCommands::Outcome DotCommands::mode(const wstring& argument) {
    if (argument.empty()) {
        console_.mode.reset();
        return {};
    }
    const auto form = table_form(to_utf8(argument));
    if (!form) {
        NearestName near(argument);
        for (const std::string_view known : kForms)
            near.add(from_utf8(known));
        return refuseArgument(argument, near.best());
    }
    console_.mode = form;
    return {};
}

DotCommands::Outcome DotCommands::timer(const wstring& argument) {
    constexpr const wchar* kOn[] = {u"on", u"вкл", u"да"};
    constexpr const wchar* kOff[] = {u"off", u"выкл", u"нет"};
    if (!argument.empty() && !is_word(argument, kOn) && !is_word(argument, kOff))
        return refuseArgument(argument);
    timed_ = argument.empty() ? !timed_ : is_word(argument, kOn);
    return {};
}

DotCommands::Outcome DotCommands::read(const wstring& argument) {
    if (argument.empty())
        return refuse("IDS_HOST_DOT_ARGUMENT_MISSING", {name_});
    const wstring text = read_text(console_, to_utf8(argument));
    const Interrupts interrupts(&engine_);
    try {
        engine_.run(script::compile(text, argument));
    } catch (const script::Error& error) {
        console_.out.flush();
        show_error(console_, error);
        if (interrupts.asksForEnd())
            return {.failed = true, .exit = ExitCode::interrupted};
        return {.failed = true};
    }
    if (const auto code = engine_.exitCode())
        return {.exit = static_cast<ExitCode>(*code)};
    return {};
}

DotCommands::Outcome DotCommands::output(const wstring& argument) {
    std::ofstream next;
    if (!argument.empty()) {
        errno = 0;
        next.open(to_utf8(argument), std::ios::binary);
        if (!next)
            throw_file_error(messages::kFileOpen, file_url(to_utf8(argument)), errno);
    }
    const bool whole = endOutput();
    if (!argument.empty()) {
        file_ = std::move(next);
        own_ = console_.out.rdbuf(file_.rdbuf());
    }
    if (!whole)
        fail(console_, "IDS_HOST_OUTPUT_FAILED", ExitCode::io);
    return {.failed = !whole};
}

bool DotCommands::keepsOutput() {
    if (own_ == nullptr || console_.out)
        return true;
    static_cast<void>(endOutput());
    fail(console_, "IDS_HOST_OUTPUT_FAILED", ExitCode::io);
    return false;
}

bool DotCommands::endOutput() {
    if (own_ == nullptr)
        return true;
    const bool written = console_.out.flush().good();
    console_.out.rdbuf(std::exchange(own_, nullptr));
    file_.close();
    return written && !file_.fail();
}

DotCommands::Outcome DotCommands::describe(const wstring& argument) {
    CLI::App app("", "corehost");
    Action action;
    add_describe_command(app, console_, action);
    std::vector<std::string> words = CLI::detail::split_up(to_utf8(argument));
    words.insert(words.begin(), "describe");
    std::reverse(words.begin(), words.end());
    try {
        app.parse(std::move(words));
    } catch (const CLI::Success& e) {
        app.exit(e, console_.out, console_.err);
        return {};
    } catch (const CLI::ParseError& e) {
        fail(console_, from_utf8(usage_text(app, e, console_)), ExitCode::usage);
        return {.failed = true};
    }
    return {.failed = action() != ExitCode::done};
}

} // namespace host
