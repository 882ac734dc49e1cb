// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/line_editor.h"

#include "host/terminal/terminal_text.h"

#include <core/runtime/utf8.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>
#include <utility>

namespace host {
namespace {

constexpr std::size_t kLongest = 8192; // units of a line

core::wstring to_units(std::wstring_view text) {
    return {text.begin(), text.end()};
}

std::wstring to_system(core::wstring_view text) {
    return {text.begin(), text.end()};
}

} // namespace

/// The console of the system, which edits lines and has a history of its own. It gives a line back unfinished
/// when Tab is pressed, and takes one to begin with.
class LineEditor::Terminal {
  public:
    explicit Terminal(Complete complete) : complete_(std::move(complete)) {}

    Line read(const std::string& prompt) {
        std::wstring line;
        for (;;) {
            write(to_system(core::from_utf8(prompt)) + line);
            switch (readOn(line)) {
            case Ended::line:
                return {Line::Kind::text, to_units(line)};
            case Ended::cancelled:
                write(L"^C\r\n");
                return {Line::Kind::cancelled};
            case Ended::input:
                write(L"\r\n");
                return {Line::Kind::end};
            case Ended::completion:
                complete(line);
            }
        }
    }

  private:
    enum class Ended { line, completion, cancelled, input };

    static void write(const std::wstring& text) {
        DWORD done = 0;
        ::WriteConsoleW(::GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()),
                        &done, nullptr);
    }

    /// Lets the user go on with a line.
    static Ended readOn(std::wstring& line) {
        constexpr ULONG kTab = 1U << 9U;
        constexpr wchar_t kEndOfInput = 26; // Ctrl-Z
        std::array<wchar_t, kLongest> units{};
        CONSOLE_READCONSOLE_CONTROL control{};
        control.nLength = sizeof control;
        control.nInitialChars = static_cast<ULONG>(std::min(line.size(), units.size()));
        control.dwCtrlWakeupMask = kTab;
        std::ranges::copy_n(line.begin(), static_cast<std::ptrdiff_t>(control.nInitialChars), units.begin());
        DWORD count = 0;
        ::SetLastError(ERROR_SUCCESS);
        if (::ReadConsoleW(::GetStdHandle(STD_INPUT_HANDLE), units.data(), static_cast<DWORD>(units.size()),
                           &count, &control) == 0)
            return ::GetLastError() == ERROR_OPERATION_ABORTED ? Ended::cancelled : Ended::input;
        if (count == 0)
            return ::GetLastError() == ERROR_OPERATION_ABORTED ? Ended::cancelled : Ended::input;
        line.assign(units.data(), count);
        if (const auto tab = line.find(L'\t'); tab != std::wstring::npos) {
            line.resize(tab);
            return Ended::completion;
        }
        while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r'))
            line.pop_back();
        return !line.empty() && line.front() == kEndOfInput ? Ended::input : Ended::line;
    }

    /// Adds what all completions begin with; shows them where that adds nothing.
    void complete(std::wstring& line) const {
        write(L"\r");
        core::script::Completion found;
        try {
            found = complete_(to_units(line));
        } catch (const std::exception&) {
            return; // an object that fails when it is asked has nothing to offer
        }
        if (found.names.empty() && found.parameters.empty())
            return;
        const core::wstring common = found.common();
        if (found.names.size() == 1 || common.size() > found.typed) {
            line.resize(line.size() - found.typed);
            line += to_system(common);
            return;
        }
        std::string text = "\n";
        for (const core::wstring& name : found.names)
            text.append(terminal_text(name)).append("\n");
        if (!found.parameters.empty())
            text.append("(").append(terminal_text(found.parameters)).append(")\n");
        if (!found.summary.empty())
            text.append(terminal_text(found.summary)).append("\n");
        write(to_system(core::from_utf8(text)));
    }

    Complete complete_;
};

LineEditor::LineEditor(const Console&, Complete complete, HistoryFile)
    : terminal_(std::make_unique<Terminal>(std::move(complete))) {}

LineEditor::~LineEditor() = default;

LineEditor::Line LineEditor::read(const std::string& prompt) {
    return terminal_->read(prompt);
}

void LineEditor::remember(const core::wstring&) {} // the console does

} // namespace host
