// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/session.h"
#include "host/terminal/line_editor.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/utf8.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <istream>
#include <optional>
#include <ostream>
#include <string>

namespace host {
namespace {

using namespace core;

/// A signal between two scripts must not end the program.
class IgnoreInterrupts {
  public:
    IgnoreInterrupts() : before_(std::signal(SIGINT, [](int) {})) {}
    IgnoreInterrupts(const IgnoreInterrupts&) = delete;
    IgnoreInterrupts& operator=(const IgnoreInterrupts&) = delete;
    ~IgnoreInterrupts() { std::signal(SIGINT, before_); }

  private:
    void (*before_)(int);
};

ExitCode converse(Console& console) {
    const IgnoreInterrupts ignore;
    std::optional<LineEditor> editor;
    Session session(console, [&editor](const wstring& entry) { editor->remember(entry); });
    editor.emplace(
        console, [&session](wstring_view before) { return session.complete(before); },
        console.history ? HistoryFile::of_user() : HistoryFile({}));
    console.out << message("IDS_HOST_REPL_KEYS") << std::endl;
    bool ended = false;
    session.run([&](bool goesOn) -> std::optional<wstring> {
        if (ended)
            return std::nullopt;
        LineEditor::Line line = editor->read(goesOn ? "  | " : "> ");
        if (line.kind == LineEditor::Line::Kind::text)
            return std::move(line.text);
        ended = line.kind == LineEditor::Line::Kind::end;
        throw EntryDropped();
    });
    return session.answer(ended || session.hasLeft() ? ExitCode::done : ExitCode::io);
}

/// Without a terminal there is nobody to see prompts, and the program that started it must learn of failures.
ExitCode read_entries(Console& console) {
    Session session(console);
    session.run([&](bool) -> std::optional<wstring> {
        std::string line;
        if (!std::getline(console.in, line))
            return std::nullopt;
        wstring units = from_utf8(line);
        const std::string same = to_utf8(units);
        if (same == line)
            return units;
        const auto fault = std::mismatch(line.begin(), line.end(), same.begin(), same.end()).first;
        session.report(message_text(messages::kTextNotUtf8, {u"-", string_intto(fault - line.begin())}));
        throw EntryDropped();
    });
    return session.answer(session.hasFailed() ? ExitCode::malformed : ExitCode::done);
}

ExitCode run_repl(Console& console) {
    return console.terminal ? converse(console) : read_entries(console);
}

} // namespace

void add_repl_command(CLI::App& app, Console& console, Action& action) {
    app.add_subcommand("repl", help(console, "Run statements as they are entered, and show values",
                                    "Выполнять операторы по мере ввода и показывать значения"))
        ->callback([&console, &action] { action = [&console] { return run_repl(console); }; });
}

} // namespace host
