// SPDX-License-Identifier: Apache-2.0
#include "host/commands/session.h"

#include "host/commands/commands.h"
#include "host/terminal/column_types.h"
#include "host/terminal/error_report.h"
#include "host/terminal/file_completion.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/print.h"
#include "host/terminal/script_console.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/descriptions/type_description.h>
#include <core/exchange/table_view.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>

#include <chrono>
#include <cstdio>
#include <limits>
#include <new>
#include <ostream>

namespace host {

using namespace core;

Session::Session(Console& console, Remember remember)
    : console_(console), remember_(std::move(remember)), commands_(console, engine_) {
    connect(engine_, console);
}

void Session::run(const Lines& lines) {
    while (console_.out && !left_ && !exit_) {
        try {
            const std::optional<wstring> line = nextLine(lines, false);
            if (!line)
                return;
            take(*line, lines);
        } catch (const EntryDropped&) {
            pasted_.clear();
        } catch (const Exception& e) {
            failed_ = true;
            fail(console_, e, ExitCode::malformed);
        } catch (const std::bad_alloc&) {
            report(message_text("IDS_SCRIPT_NO_MEMORY"));
        }
        entry_.clear();
        console_.out.flush();
        failed_ = !commands_.keepsOutput() || failed_;
    }
}

void Session::report(const wstring& message) {
    failed_ = true;
    fail(console_, message, ExitCode::malformed);
}

script::Completion Session::complete(wstring_view line) const {
    if (entry_.empty()) {
        if (auto found = commands_.complete(line); !found.names.empty() || line.starts_with(u'.'))
            return found;
    }
    script::Completion found = script::complete(engine_, entry_ + wstring(line), alias_of(console_.language));
    return found.names.empty() && found.parameters.empty() ? complete_file(line) : found;
}

/// What was pasted is cut into its lines.
std::optional<wstring> Session::nextLine(const Lines& lines, bool goesOn) {
    if (pasted_.empty()) {
        const std::optional<wstring> text = lines(goesOn);
        if (!text)
            return std::nullopt;
        for (std::size_t begin = 0; begin <= text->size();) {
            const std::size_t end = std::min(text->find(u'\n', begin), text->size());
            pasted_.push_back(text->substr(begin, end - begin));
            begin = end + 1;
        }
    }
    wstring line = std::move(pasted_.front());
    pasted_.pop_front();
    return line;
}

void Session::take(const wstring& line, const Lines& lines) {
    const auto remember = [this] {
        if (remember_)
            remember_(entry_.substr(0, entry_.size() - 1));
    };
    entry_.append(line).append(u"\n");
    if (commands_.isOne(line)) {
        remember();
        const DotCommands::Outcome outcome = commands_.carryOut(line);
        failed_ = failed_ || outcome.failed;
        left_ = outcome.leaves;
        exit_ = outcome.exit;
        return;
    }
    const auto more = [this, &lines] {
        std::optional<wstring> next = nextLine(lines, true);
        if (next)
            entry_.append(*next).append(u"\n");
        return next;
    };
    try {
        script::Script entry;
        try {
            entry = script::compile_entry(line, u"repl", more);
        } catch (const script::Error&) {
            remember(); // to be mended
            throw;
        }
        remember();
        carryOut(entry);
    } catch (const script::Error& error) {
        failed_ = true;
        console_.out.flush();
        show_error(console_, error);
        if (code_of(error) != ExitCode::interrupted)
            return;
        pasted_.clear();
        if (!console_.terminal)
            exit_ = ExitCode::interrupted;
    }
}

void Session::carryOut(const script::Script& entry) {
    const auto begin = std::chrono::steady_clock::now();
    const auto time = [&] {
        if (!commands_.isTimed())
            return;
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        char text[32];
        std::snprintf(text, sizeof text, "%.3f", taken.count());
        console_.out.flush();
        console_.err << message("IDS_HOST_TIME_TAKEN", {from_utf8(text)}) << '\n';
    };
    const Interrupts interrupts(&engine_);
    try {
        script::run_entry(engine_, entry, [this](const Value& value) { show(value); });
        time();
    } catch (...) {
        time();
        if (interrupts.asksForEnd())
            exit_ = ExitCode::interrupted;
        throw;
    }
    if (const auto code = engine_.exitCode())
        exit_ = static_cast<ExitCode>(*code);
}

void Session::show(const Value& value) {
    const int alias = alias_of(console_.language);
    if (console_.json || table_view(value) || value.query<IValueColumns>()) {
        print_value(value, console_);
        return;
    }
    const TypeDomain* const domain = type_domain_of(value);
    const wstring text = domain != nullptr
                             ? value.type().name(alias) + wstring(u" (") + type_text(*domain, alias) + u')'
                             : script::display(value, alias);
    console_.out << terminal_text(text, std::numeric_limits<std::size_t>::max()) << '\n';
}

} // namespace host
