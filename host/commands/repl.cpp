// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/interrupt_scope.h"
#include "host/exchange/tables/table_view.h"
#include "host/language/display.h"
#include "host/language/entry_scan.h"
#include "host/language/interpreter.h"
#include "host/language/parser.h"
#include "host/library/functions.h"
#include "host/library/print.h"
#include "host/terminal/error_report.h"
#include "host/terminal/line_editor.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/utf8.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <string>

namespace host {
namespace {

using namespace core;

/// One console: entries come in lines, and what they make stays.
class Repl {
  public:
    explicit Repl(Console& console) : console_(console) {}

    /// Adds a line to the entry and carries the entry out when it is complete, or when no line follows.
    void take(wstring_view line, bool isLast) {
        try {
            entry_.append(line).append(u"\n");
            if (!scan_.mayBeComplete(entry_) && !isLast)
                return;
            const auto source = std::make_shared<const script::Source>("repl", entry_);
            try {
                run(script::parse(source, variables_, script::Mode::console));
            } catch (const script::ScriptError& error) {
                if (error.incomplete() && !isLast)
                    return;
                failed_ = true;
                console_.out.flush();
                show_error(console_.err, *source, error, console_.colour);
            }
        } catch (const Exception& e) {
            report(e.description());
        } catch (const std::bad_alloc&) {
            report(message_text("IDS_SCRIPT_NO_MEMORY"));
        }
        forget();
        console_.out.flush();
    }
    /// The same for a line in UTF-8, where nothing else is taken.
    void takeBytes(const std::string& line) {
        const wstring units = from_utf8(line);
        const std::string same = to_utf8(units);
        if (same == line)
            return take(units, false);
        const auto fault = std::mismatch(line.begin(), line.end(), same.begin(), same.end()).first;
        report(message_text(messages::kTextNotUtf8, {u"-", string_intto(fault - line.begin())}));
        forget();
    }
    void forget() noexcept {
        entry_.clear();
        scan_ = {};
    }

    [[nodiscard]] bool isInEntry() const noexcept { return !entry_.empty(); }
    [[nodiscard]] bool hasFailed() const noexcept { return failed_; }

    [[nodiscard]] Completion complete(wstring_view line) const {
        return host::complete(entry_ + wstring(line), interpreter_, variables_, alias_of(console_.language));
    }

  private:
    void report(const wstring& message) {
        failed_ = true;
        fail(console_, message, ExitCode::malformed);
    }
    void run(const script::Program& program) {
        const script::InterruptScope interrupts(interpreter_);
        interpreter_.run(program, [this](const GenericValue& value) { show(value); });
    }

    void show(const GenericValue& value) {
        if (console_.json || script::table_view(value))
            script::print_value(value, console_);
        else
            console_.out << terminal_text(script::display(value, alias_of(console_.language)),
                                          std::numeric_limits<std::size_t>::max())
                         << '\n';
    }

    Console& console_;
    script::Variables variables_;
    script::Interpreter interpreter_{script::create_globals(console_), variables_};
    wstring entry_;
    script::EntryScan scan_; // over the entry
    bool failed_ = false;
};

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
    Repl repl(console);
    LineEditor editor(
        console, [&repl](wstring_view before) { return repl.complete(before); }, HistoryFile::of_user());
    console.out << message("IDS_HOST_REPL_KEYS") << std::endl;
    while (console.out) {
        LineEditor::Line line = editor.read(repl.isInEntry() ? "  | " : "> ");
        switch (line.kind) {
        case LineEditor::Line::Kind::text:
            repl.take(line.text, false);
            break;
        case LineEditor::Line::Kind::cancelled:
            repl.forget();
            break;
        case LineEditor::Line::Kind::end:
            return ExitCode::done;
        }
    }
    return ExitCode::io;
}

/// Without a terminal there is nobody to see prompts, and whoever started it must learn of failures.
ExitCode read_entries(Console& console) {
    Repl repl(console);
    for (std::string line; console.out && std::getline(console.in, line);)
        repl.takeBytes(line);
    if (repl.isInEntry())
        repl.take({}, true);
    return repl.hasFailed() ? ExitCode::malformed : ExitCode::done;
}

ExitCode run_repl(Console& console) {
    return console.terminal ? converse(console) : read_entries(console);
}

} // namespace

void add_repl_command(CLI::App& app, Console& console, Action& action) {
    app.add_subcommand("repl", "Run statements as they are entered, and show values")
        ->callback([&console, &action] { action = [&console] { return run_repl(console); }; });
}

} // namespace host
