// SPDX-License-Identifier: Apache-2.0
// Text documents: the same edits, made of bursts of typing, deletions and jumps, beside QTextDocument,
// Scintilla and a plain std::u16string, which has neither lines nor steps; a large text of many lines and of
// one.
#include <core/documents.h>

#include <Qsci/qsciscintillabase.h>
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using core::wchar;
using core::wstring;
using core::wstring_view;

struct RecordedEdit {
    std::uint64_t offset;
    std::uint64_t removed;
    wstring inserted;
};

/// What a person does in a long session: 260 000 edits of a character each.
const std::vector<RecordedEdit>& session() {
    static const std::vector<RecordedEdit> edits = [] {
        constexpr std::size_t kEdits = 260'000;
        std::vector<RecordedEdit> made;
        std::mt19937 random(11);
        std::uint64_t size = 0;
        while (made.size() < kEdits) {
            std::uint64_t at = random() % (size + 1);
            for (std::uint64_t count = 5 + random() % 60; count > 0; --count, ++at, ++size)
                made.push_back({at, 0, wstring(1, random() % 40 == 0 ? u'\n' : u'x')});
            for (std::uint64_t count = random() % 20; count > 0 && at > 0; --count, --size)
                made.push_back({--at, 1, {}});
        }
        made.resize(kEdits);
        return made;
    }();
    return edits;
}

void replay(core::TextManager& document) {
    for (const RecordedEdit& edit : session())
        document.replace({edit.offset, edit.offset + edit.removed}, edit.inserted);
}

void SessionOurs(benchmark::State& state) {
    for (auto _ : state) {
        core::TextManager document;
        replay(document);
        benchmark::DoNotOptimize(document.text().lineCount());
    }
}
BENCHMARK(SessionOurs)->Unit(benchmark::kMillisecond);

void SessionUndoneOurs(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        core::TextManager document;
        replay(document);
        state.ResumeTiming();
        while (document.undo()) {
        }
    }
}
BENCHMARK(SessionUndoneOurs)->Unit(benchmark::kMillisecond);

void SessionQt(benchmark::State& state) {
    for (auto _ : state) {
        QTextDocument document;
        QTextCursor cursor(&document);
        for (const RecordedEdit& edit : session()) {
            cursor.setPosition(static_cast<int>(edit.offset));
            if (edit.removed != 0)
                cursor.deleteChar();
            else
                cursor.insertText(QString::fromUtf16(edit.inserted.data(), 1));
        }
        benchmark::DoNotOptimize(document.blockCount());
    }
}
BENCHMARK(SessionQt)->Unit(benchmark::kMillisecond);

/// Scintilla is a widget, shown nowhere here.
class Editor {
  public:
    Editor() { send(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL); } // nobody listens

    template <class... Arguments>
    long send(unsigned message, Arguments... arguments) {
        return editor_.SendScintilla(message, arguments...);
    }

  private:
    static QApplication& application() {
        static int count = 1;
        static char name[] = "bench";
        static char* arguments[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static QApplication made(count, arguments);
        return made;
    }
    QApplication& application_ = application();
    QsciScintillaBase editor_;
};

void replay(Editor& editor) {
    for (const RecordedEdit& edit : session()) {
        if (edit.removed != 0) {
            editor.send(QsciScintillaBase::SCI_DELETERANGE, edit.offset, 1L);
        } else {
            const char text[] = {static_cast<char>(edit.inserted.front()), '\0'};
            editor.send(QsciScintillaBase::SCI_INSERTTEXT, edit.offset, text);
        }
    }
}

void SessionScintilla(benchmark::State& state) {
    for (auto _ : state) {
        Editor editor;
        replay(editor);
        benchmark::DoNotOptimize(editor.send(QsciScintillaBase::SCI_GETLINECOUNT));
    }
}
BENCHMARK(SessionScintilla)->Unit(benchmark::kMillisecond);

void SessionUndoneScintilla(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Editor editor;
        replay(editor);
        state.ResumeTiming();
        while (editor.send(QsciScintillaBase::SCI_CANUNDO) != 0)
            editor.send(QsciScintillaBase::SCI_UNDO);
    }
}
BENCHMARK(SessionUndoneScintilla)->Unit(benchmark::kMillisecond);

void SessionString(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string text;
        for (const RecordedEdit& edit : session())
            text.replace(edit.offset, edit.removed, edit.inserted);
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(SessionString)->Unit(benchmark::kMillisecond);

/// 100 million units: 1.5 million lines, or one.
const wstring& large(bool lines) {
    static const auto make = [](bool ended) {
        wstring text(100'000'000, u'x');
        for (std::size_t at = 66; ended && at < text.size(); at += 67)
            text[at] = u'\n';
        return text;
    };
    static const wstring many = make(true);
    static const wstring one = make(false);
    return lines ? many : one;
}

void LoadLarge(benchmark::State& state) {
    const wstring& text = large(state.range(0) != 0);
    for (auto _ : state) {
        const core::TextManager document(text);
        benchmark::DoNotOptimize(document.text().lineCount());
    }
}
BENCHMARK(LoadLarge)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void InsertIntoLarge(benchmark::State& state) {
    core::TextManager document(large(state.range(0) != 0));
    std::mt19937_64 random(5);
    const std::uint64_t size = document.text().size();
    for (auto _ : state)
        document.insert(random() % size, u"y");
}
BENCHMARK(InsertIntoLarge)->Arg(1)->Arg(0)->Iterations(100'000);

void InsertIntoLargeScintilla(benchmark::State& state) {
    Editor editor;
    const std::string text(large(state.range(0) != 0).begin(), large(state.range(0) != 0).end());
    editor.send(QsciScintillaBase::SCI_APPENDTEXT, text.size(), text.data());
    std::mt19937_64 random(5);
    for (auto _ : state)
        editor.send(QsciScintillaBase::SCI_INSERTTEXT, random() % text.size(), "y");
}
BENCHMARK(InsertIntoLargeScintilla)->Arg(1)->Arg(0)->Iterations(100);

void InsertBesideAMillionMarks(benchmark::State& state) {
    core::TextManager document(large(true));
    std::mt19937_64 random(5);
    const std::uint64_t size = document.text().size();
    for (int i = 0; i < 1'000'000; ++i)
        benchmark::DoNotOptimize(document.addMark(random() % size));
    for (auto _ : state)
        document.insert(random() % size, u"y");
}
BENCHMARK(InsertBesideAMillionMarks)->Iterations(100'000);

void LineOfOffset(benchmark::State& state) {
    const core::TextManager document(large(state.range(0) != 0));
    const core::TextSnapshot text = document.text();
    std::mt19937_64 random(5);
    for (auto _ : state)
        benchmark::DoNotOptimize(text.lineOf(random() % text.size()));
}
BENCHMARK(LineOfOffset)->Arg(1)->Arg(0);

void OffsetOfLine(benchmark::State& state) {
    const core::TextManager document(large(true));
    const core::TextSnapshot text = document.text();
    std::mt19937_64 random(5);
    for (auto _ : state)
        benchmark::DoNotOptimize(text.lineStart(random() % text.lineCount()));
}
BENCHMARK(OffsetOfLine);

} // namespace
