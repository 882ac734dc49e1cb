// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/line_editor.h"

#include "host/terminal/terminal_text.h"

#include <core/exchange/column_text.h>
#include <core/runtime/utf8.h>

#include <histedit.h>
#include <langinfo.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>

namespace host {
namespace {

// The editor's characters are code points.
static_assert(sizeof(wchar_t) == 4);

std::wstring to_points(core::wstring_view units) {
    std::wstring points;
    for (std::size_t i = 0; i < units.size();) {
        UChar32 c = 0;
        U16_NEXT(units.data(), i, units.size(), c);
        points += static_cast<wchar_t>(c);
    }
    return points;
}

core::wstring to_units(std::wstring_view points) {
    core::wstring units;
    for (const wchar_t point : points) {
        const auto c = static_cast<UChar32>(static_cast<char32_t>(point));
        if (U_IS_BMP(c)) {
            units += static_cast<core::wchar>(c);
        } else {
            units += U16_LEAD(c);
            units += U16_TRAIL(c);
        }
    }
    return units;
}

/// Text is UTF-8 here whatever the environment says, which in many a container is nothing.
class Utf8Locale {
  public:
    Utf8Locale() : before_(std::setlocale(LC_CTYPE, nullptr)) {
        std::setlocale(LC_CTYPE, "");
        if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0)
            std::setlocale(LC_CTYPE, "C.UTF-8");
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;
    ~Utf8Locale() { std::setlocale(LC_CTYPE, before_.c_str()); }

  private:
    std::string before_;
};

/// While it lives, the terminal marks what is pasted.
class PasteMarks {
  public:
    PasteMarks() { put("\033[?2004h"); }
    PasteMarks(const PasteMarks&) = delete;
    PasteMarks& operator=(const PasteMarks&) = delete;
    ~PasteMarks() { put("\033[?2004l"); }

  private:
    static void put(const char* code) {
        std::fputs(code, stdout);
        std::fflush(stdout);
    }
};

/// Names below each other, as many beside each other as the terminal takes.
std::string in_columns(const std::vector<core::wstring>& names, std::size_t lineWidth) {
    std::size_t width = 1;
    std::vector<std::string> cells;
    for (const core::wstring& name : names) {
        cells.push_back(terminal_text(name));
        width = std::max(width, core::column_count(cells.back()) + 2);
    }
    const std::size_t columns = std::max<std::size_t>((lineWidth - 1) / width, 1);
    const std::size_t rows = (cells.size() + columns - 1) / columns;
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t i = row; i < cells.size(); i += rows) {
            text += cells[i];
            if (i + rows < cells.size())
                text.append(width - core::column_count(cells[i]), ' ');
        }
        text += '\n';
    }
    return text;
}

} // namespace

class LineEditor::Terminal {
  public:
    Terminal(const Console& console, Complete complete, HistoryFile history)
        : console_(console), complete_(std::move(complete)), file_(std::move(history)),
          history_(history_winit()), editor_(el_init("corehost", stdin, stdout, stderr)) {
        if (history_ == nullptr || editor_ == nullptr)
            throw std::bad_alloc();
        HistEventW event;
        history_w(history_.get(), &event, H_SETSIZE, static_cast<int>(HistoryFile::kMostLines));
        history_w(history_.get(), &event, H_SETUNIQUE, 1);
        for (const std::string& entry : file_.load())
            history_w(history_.get(), &event, H_ENTER, to_points(core::from_utf8(entry)).c_str());

        EditLine* const editor = editor_.get();
        el_wset(editor, EL_CLIENTDATA, this);
        el_wset(editor, EL_HIST, history_w, history_.get());
        el_wset(editor, EL_PROMPT, &Terminal::prompt);
        el_wset(editor, EL_EDITOR, L"emacs");
        el_wset(editor, EL_SIGNAL, 1); // the terminal is as it was while the program is stopped
        el_wset(editor, EL_ADDFN, L"complete-name", L"Complete a name", &Terminal::completeName);
        el_wset(editor, EL_BIND, L"^I", L"complete-name", nullptr);
        el_wset(editor, EL_BIND, L"^R", L"em-inc-search-prev", nullptr);
        // While a line is edited Ctrl-C is a key like any other.
        el_wset(editor, EL_SETTY, L"-d", L"intr=", nullptr);
        el_wset(editor, EL_ADDFN, L"cancel-line", L"Forget what was entered", &Terminal::cancelLine);
        el_wset(editor, EL_BIND, L"^C", L"cancel-line", nullptr);
        el_wset(editor, EL_ADDFN, L"take-pasted", L"Insert what is pasted as it is", &Terminal::takePasted);
        el_wset(editor, EL_BIND, L"\\e[200~", L"take-pasted", nullptr);
    }

    Line read(const std::string& prompt) {
        prompt_ = to_points(core::from_utf8(prompt));
        cancelled_ = false;
        int count = 0;
        errno = 0;
        const PasteMarks marks;
        const wchar_t* const points = el_wgets(editor_.get(), &count);
        const bool interrupted = points == nullptr && count < 0 && errno == EINTR;
        if (cancelled_ || interrupted) {
            std::fputs("^C\n", stdout);
            std::fflush(stdout);
            return {Line::Kind::cancelled};
        }
        if (points == nullptr || count <= 0) {
            std::fputs("\n", stdout);
            std::fflush(stdout);
            return {Line::Kind::end};
        }
        std::wstring line(points, static_cast<std::size_t>(count));
        while (!line.empty() && line.back() == L'\n')
            line.pop_back();
        return {Line::Kind::text, to_units(line)};
    }

    void remember(const core::wstring& entry) {
        const std::wstring points = to_points(entry);
        if (points == last_ || points.find_first_not_of(L" \t\n") == std::wstring::npos)
            return;
        last_ = points;
        HistEventW event;
        history_w(history_.get(), &event, H_ENTER, points.c_str());
        file_.append(core::to_utf8(entry));
    }

  private:
    struct End {
        void operator()(EditLine* editor) const { el_end(editor); }
        void operator()(HistoryW* history) const { history_wend(history); }
    };

    static Terminal& of(EditLine* editor) {
        void* terminal = nullptr;
        el_wget(editor, EL_CLIENTDATA, &terminal);
        return *static_cast<Terminal*>(terminal);
    }

    static wchar_t* prompt(EditLine* editor) { return of(editor).prompt_.data(); }

    static unsigned char cancelLine(EditLine* editor, int) {
        Terminal& terminal = of(editor);
        terminal.cancelled_ = true;
        const LineInfoW* const line = el_wline(editor);
        el_cursor(editor, static_cast<int>(line->lastchar - line->cursor));
        el_wset(editor, EL_REFRESH);
        return CC_NEWLINE;
    }

    static unsigned char completeName(EditLine* editor, int) {
        const LineInfoW* const line = el_wline(editor);
        const auto before = to_units({line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)});
        core::script::Completion found;
        try {
            found = of(editor).complete_(before);
        } catch (const std::exception&) {
            return CC_ERROR; // an object that fails when it is asked has nothing to offer
        }
        if (found.names.empty() && found.parameters.empty())
            return CC_ERROR;
        const core::wstring common = found.common();
        if (found.names.size() != 1 && common.size() <= found.typed) {
            std::string text = "\n" + in_columns(found.names, line_width(of(editor).console_));
            if (!found.parameters.empty())
                text.append("(").append(terminal_text(found.parameters)).append(")\n");
            if (!found.summary.empty())
                text.append(terminal_text(found.summary)).append("\n");
            std::fputs(text.c_str(), stdout);
            std::fflush(stdout);
            return CC_REDISPLAY;
        }
        const auto typed = to_points(core::wstring_view(before).substr(before.size() - found.typed));
        el_deletestr(editor, static_cast<int>(typed.size()));
        el_winsertstr(editor, to_points(common).c_str());
        return found.names.size() == 1 ? CC_REFRESH : CC_REFRESH_BEEP;
    }

    /// Tabs do not complete and line ends do not end the line in what is pasted.
    static unsigned char takePasted(EditLine* editor, int) {
        constexpr std::wstring_view kEnd = L"\033[201~";
        std::wstring text;
        for (wchar_t point = 0; !text.ends_with(kEnd);) {
            if (el_wgetc(editor, &point) != 1)
                return CC_EOF;
            text += point == L'\r' ? L'\n' : point;
        }
        text.resize(text.size() - kEnd.size());
        while (!text.empty() && text.back() == L'\n') // Enter carries it out, and not the paste
            text.pop_back();
        return text.empty() || el_winsertstr(editor, text.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    }

    const Console& console_;
    Utf8Locale locale_;
    Complete complete_;
    HistoryFile file_;
    std::unique_ptr<HistoryW, End> history_;
    std::unique_ptr<EditLine, End> editor_;
    std::wstring prompt_;
    std::wstring last_; // remembered
    bool cancelled_ = false;
};

LineEditor::LineEditor(const Console& console, Complete complete, HistoryFile history)
    : terminal_(std::make_unique<Terminal>(console, std::move(complete), std::move(history))) {}

LineEditor::~LineEditor() = default;

LineEditor::Line LineEditor::read(const std::string& prompt) {
    return terminal_->read(prompt);
}

void LineEditor::remember(const core::wstring& entry) {
    terminal_->remember(entry);
}

} // namespace host
