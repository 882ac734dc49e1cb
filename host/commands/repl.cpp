// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/interrupt_scope.h"
#include "host/terminal/error_report.h"
#include "host/terminal/line_editor.h"
#include "host/terminal/print.h"
#include "host/terminal/script_console.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/exchange/table_view.h>
#include <core/runtime/utf8.h>
#include <core/script/console.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <functional>
#include <istream>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace host {
namespace {

using namespace core;

/// Thrown where the lines of an entry are read, to drop what it has so far.
struct EntryDropped {};

/// One console: entries come in lines, and what they make stays.
class Repl {
  public:
    /// Returns the next line, the first of an entry or one that it goes on with; nothing at the end. Throws
    /// EntryDropped.
    using Lines = std::function<std::optional<wstring>(bool goesOn)>;

    explicit Repl(Console& console) : console_(console) { connect(engine_, console); }

    /// Carries entries out until the lines end, one of them exits, or nothing can be shown any more.
    void run(const Lines& lines) {
        while (console_.out && !engine_.exitCode()) {
            try {
                const std::optional<wstring> line = lines(false);
                if (!line)
                    return;
                take(*line, lines);
            } catch (const EntryDropped&) {
            } catch (const Exception& e) {
                report(e.description());
            } catch (const std::bad_alloc&) {
                report(message_text("IDS_SCRIPT_NO_MEMORY"));
            }
            entry_.clear();
            console_.out.flush();
        }
    }
    /// Tells what has gone wrong.
    void report(const wstring& message) {
        failed_ = true;
        fail(console_, message, ExitCode::malformed);
    }

    /// What the program answers: what an entry asked to exit with, or else `code`.
    [[nodiscard]] ExitCode answer(ExitCode code) const noexcept {
        const auto asked = engine_.exitCode();
        return asked ? static_cast<ExitCode>(*asked) : code;
    }
    [[nodiscard]] bool hasFailed() const noexcept { return failed_; }

    [[nodiscard]] script::Completion complete(wstring_view line) const {
        return script::complete(engine_, entry_ + wstring(line), alias_of(console_.language));
    }

  private:
    void take(wstring_view line, const Lines& lines) {
        entry_.append(line).append(u"\n");
        const auto more = [this, &lines] {
            const std::optional<wstring> next = lines(true);
            if (next)
                entry_.append(*next).append(u"\n");
            return next;
        };
        try {
            const script::Script entry = script::compile_entry(line, u"repl", more);
            const InterruptScope interrupts(engine_);
            script::run_entry(engine_, entry, [this](const Value& value) { show(value); });
        } catch (const script::Error& error) {
            failed_ = true;
            console_.out.flush();
            show_error(console_.err, error, console_.colour);
        }
    }

    void show(const Value& value) {
        if (console_.json || core::table_view(value))
            print_value(value, console_);
        else
            console_.out << terminal_text(script::display(value, alias_of(console_.language)),
                                          std::numeric_limits<std::size_t>::max())
                         << '\n';
    }

    Console& console_;
    script::Engine engine_;
    wstring entry_; // the lines of the one that is read and carried out
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
    bool ended = false;
    repl.run([&](bool goesOn) -> std::optional<wstring> {
        if (ended)
            return std::nullopt;
        LineEditor::Line line = editor.read(goesOn ? "  | " : "> ");
        if (line.kind == LineEditor::Line::Kind::text)
            return std::move(line.text);
        ended = line.kind == LineEditor::Line::Kind::end;
        throw EntryDropped();
    });
    return repl.answer(ended ? ExitCode::done : ExitCode::io);
}

/// Without a terminal there is nobody to see prompts, and the program that started it must learn of failures.
ExitCode read_entries(Console& console) {
    Repl repl(console);
    repl.run([&](bool) -> std::optional<wstring> {
        std::string line;
        if (!std::getline(console.in, line))
            return std::nullopt;
        wstring units = from_utf8(line);
        const std::string same = to_utf8(units);
        if (same == line)
            return units;
        const auto fault = std::mismatch(line.begin(), line.end(), same.begin(), same.end()).first;
        repl.report(message_text(messages::kTextNotUtf8, {u"-", string_intto(fault - line.begin())}));
        throw EntryDropped();
    });
    return repl.answer(repl.hasFailed() ? ExitCode::malformed : ExitCode::done);
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
