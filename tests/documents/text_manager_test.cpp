// SPDX-License-Identifier: Apache-2.0
// What makes a step, what is saved, lines by number, the selection, what listeners see, what is refused;
// snapshots that another thread reads.
#include "tests/support/bytes_in_use.h"

#include <core/documents/document_file.h>
#include <core/documents/errors.h>
#include <core/streams/text_file.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

namespace core {
namespace {

void type(TextManager& document, std::uint64_t at, wstring_view text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        document.insert(at + i, text.substr(i, 1));
}

std::string failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const DocumentException& e) {
        return e.messageId();
    }
    return {};
}

TEST(TextManager, TypingAndErasingJoin) {
    TextManager document;
    type(document, 0, u"one");
    type(document, 3, u" two");
    EXPECT_EQ(document.undoCount(), 1u);
    type(document, 7, u"\nthree"); // the end is a step, and what follows begins one
    EXPECT_EQ(document.undoCount(), 3u);
    type(document, 0, u"x"); // a jump
    type(document, 1, u"y");
    EXPECT_EQ(document.undoCount(), 4u);
    document.closeStep();
    type(document, 2, u"z");
    EXPECT_EQ(document.undoCount(), 5u);
    document.remove({2, 3}); // backspace, backspace, delete
    document.remove({1, 2});
    document.remove({1, 2});
    EXPECT_EQ(document.text().text(), u"xne two\nthree");
    EXPECT_EQ(document.undoCount(), 6u);
    document.insert(1, u"pasted");
    document.insert(7, u"pasted");
    EXPECT_EQ(document.undoCount(), 8u);
    for (const wstring_view text : {u"xpastedne two\nthree", u"xne two\nthree", u"xyzone two\nthree",
                                    u"xyone two\nthree", u"one two\nthree", u"one two\n", u"one two", u""}) {
        EXPECT_TRUE(document.undo());
        EXPECT_EQ(document.text().text(), text);
    }
    EXPECT_FALSE(document.undo());
}

TEST(TextManager, ErasingThatJoinedBringsMarksHome) {
    for (const bool back : {true, false}) {
        TextManager document(u"abcdef");
        std::vector<TextMark> marks;
        for (std::uint64_t offset = 0; offset <= 6; ++offset) {
            marks.push_back(document.addMark(offset, MarkGravity::left));
            marks.push_back(document.addMark(offset, MarkGravity::right));
        }
        for (std::uint64_t i = 0; i < 3; ++i)
            document.remove(back ? TextRange{4 - i, 5 - i} : TextRange{2, 3});
        ASSERT_EQ(document.undoCount(), 1u);
        document.undo();
        for (std::size_t i = 0; i < marks.size(); ++i)
            EXPECT_EQ(document.offset(marks[i]), i / 2);
        document.redo();
        document.moveMark(marks[6], 0); // by hand: later steps leave it
        document.undo();
        EXPECT_EQ(document.offset(marks[6]), 0u);
        EXPECT_EQ(document.offset(marks[7]), 3u);
    }
}

TEST(TextManager, KnowsWhatWasSaved) {
    TextManager document(u"a");
    EXPECT_FALSE(document.isModified());
    type(document, 1, u"b");
    EXPECT_TRUE(document.isModified());
    document.markSaved();
    type(document, 2, u"c"); // does not join what was saved
    EXPECT_TRUE(document.isModified());
    document.undo();
    EXPECT_FALSE(document.isModified());
    document.undo();
    EXPECT_TRUE(document.isModified());
    type(document, 1, u"d"); // the saved text cannot come back
    document.undo();
    EXPECT_TRUE(document.isModified());
    document.setUndoLimit(2);
    for (const wchar* const text : {u"1\n", u"2\n", u"3\n"})
        document.insert(0, text);
    EXPECT_EQ(document.undoCount(), 2u);
}

TEST(TextManager, EditsByLine) {
    TextManager document(u"one\r\ntwo\rthree");
    document.replaceLine(1, u"2");
    document.insertLine(1, u"1½");
    EXPECT_EQ(document.text().text(), u"one\r\n1½\r\n2\rthree");
    document.insertLine(4, u"four");
    EXPECT_EQ(document.text().text(), u"one\r\n1½\r\n2\rthree\rfour");
    document.removeLines(3, 2);
    EXPECT_EQ(document.text().text(), u"one\r\n1½\r\n2");
    EXPECT_EQ(document.convertLineEnds(LineEnd::lf), 2u);
    EXPECT_EQ(document.text().text(), u"one\n1½\n2");
    document.undo();
    EXPECT_EQ(document.text().text(), u"one\r\n1½\r\n2");
    document.removeLines(0, 3);
    EXPECT_TRUE(document.text().empty());
    EXPECT_EQ(document.text().lineCount(), 1u);
}

TEST(TextManager, EditsTheSelectionAsOne) {
    TextManager document(u"a, b, c");
    document.select(std::vector<TextRange>{{6, 7}, {0, 1}, {3, 4}, {3, 3}});
    EXPECT_EQ(document.selection(), (std::vector<TextRange>{{0, 1}, {3, 4}, {6, 7}}));
    document.replaceSelection(u"xx");
    EXPECT_EQ(document.text().text(), u"xx, xx, xx");
    EXPECT_EQ(document.selection(), (std::vector<TextRange>{{2, 2}, {6, 6}, {10, 10}}));
    EXPECT_EQ(document.undoCount(), 1u);
    document.undo();
    EXPECT_EQ(document.text().text(), u"a, b, c");
    EXPECT_EQ(document.selection(), (std::vector<TextRange>{{0, 1}, {3, 4}, {6, 7}}));
}

/// A sink that edits: all sinks hear of its edit after the one that it heard of.
TEST(TextManager, TellsChangesInOrder) {
    TextManager document;
    std::vector<wstring> first;
    std::vector<wstring> second;
    const auto line = [](const TextChange& change) {
        return change.removed.text() + u">" + change.inserted.text();
    };
    const Connection one = document.changed.connect([&](const TextChange& change) {
        first.push_back(line(change));
        if (change.inserted.text() == u"a")
            document.replace({0, 1}, u"b");
    });
    const Connection two =
        document.changed.connect([&](const TextChange& change) { second.push_back(line(change)); });
    document.insert(0, u"a");
    EXPECT_EQ(first, (std::vector<wstring>{u">a", u"a>b"}));
    EXPECT_EQ(second, first);
}

TEST(TextManager, RefusesWhatTheTextDoesNotHave) {
    TextManager document(u"ab\n");
    const TextMark mark = document.addMark(1);
    document.removeMark(mark);
    EXPECT_EQ(failure([&] { document.insert(4, u"x"); }), messages::kTextOffset);
    EXPECT_EQ(failure([&] { document.replace({2, 1}, u"x"); }), messages::kTextRange);
    EXPECT_EQ(failure([&] { static_cast<void>(document.text().line(2)); }), messages::kTextLine);
    EXPECT_EQ(failure([&] { static_cast<void>(document.offset(mark)); }), messages::kTextMark);
    EXPECT_EQ(failure([&] { document.convertLineEnds(LineEnd::none); }), messages::kTextNoLineEnd);
    EXPECT_EQ(failure([&] { document.endGroup(); }), messages::kTextNoGroup);
    const std::vector<TextReplacement> overlap{{{0, 2}, u"x"}, {{1, 3}, u"y"}};
    EXPECT_EQ(failure([&] { document.replace(overlap); }), messages::kTextRangesOverlap);
    {
        const TextEditGroup ended(document);
        document.endGroup();
    }
    const TextEditGroup group(document);
    EXPECT_EQ(failure([&] { document.undo(); }), messages::kTextGroupOpen);
    EXPECT_EQ(failure([&] { document.assign(u""); }), messages::kTextGroupOpen);
    EXPECT_EQ(document.text().text(), u"ab\n");
}

TEST(TextManager, SnapshotsAreReadWhileEditingGoesOn) {
    TextManager document(u"line\n");
    std::mutex lock;
    TextSnapshot shared = document.text();
    std::atomic<bool> ends = false;
    std::thread reader([&] {
        while (!ends) {
            TextSnapshot mine;
            {
                const std::lock_guard guard(lock);
                mine = shared;
            }
            const wstring text = mine.text();
            ASSERT_EQ(mine.lineCount(),
                      static_cast<std::uint64_t>(std::count(text.begin(), text.end(), u'\n')) + 1);
        }
    });
    for (std::uint64_t i = 0; i < 3000; ++i) {
        document.insert(i * 7 % (document.text().size() + 1), i % 5 == 0 ? u"\n" : u"x");
        if (i % 3 == 0) {
            const std::lock_guard guard(lock);
            shared = document.text();
        }
    }
    ends = true;
    reader.join();
}

TEST(TextManager, TakesLittleMoreMemoryThanItsUnits) {
    const std::size_t before = ::test::bytes_in_use();
    if (before == 0)
        GTEST_SKIP() << "the allocator cannot be asked";
    wstring text;
    while (text.size() < 8'000'000)
        text += u"\nsome line of the usual length, which ends here";
    const std::size_t bytes = text.size() * sizeof(wchar);
    const TextManager document(text);
    wstring().swap(text); // assigning an empty one keeps the memory
    EXPECT_LE(::test::bytes_in_use() - before, bytes + bytes * 15 / 100);
}

} // namespace
} // namespace core
