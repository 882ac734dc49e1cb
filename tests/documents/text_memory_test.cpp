// SPDX-License-Identifier: Apache-2.0
// Memory that runs out at every point of an edit, of reading and of saving.
#include "tests/support/allocation_limit.h"

#include <core/documents/document_file.h>
#include <core/streams/text_file.h>

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <vector>

namespace core {
namespace {

/// Each kind of edit with memory for 0, 1, 2 … allocations: whole, or nothing.
TEST(TextManager, AFailedEditLeavesEverythingAsItWas) {
    const std::vector<std::function<void(TextManager&)>> edits = {
        [](TextManager& d) { d.insert(7, u"x"); },
        [](TextManager& d) {
            d.remove({3, 4});
        },
        [](TextManager& d) {
            d.replace({2, 9}, wstring_view(u"long\r\n"));
        },
        [](TextManager& d) { d.replaceAll({u"a"}, u"bb"); },
        [](TextManager& d) { d.convertLineEnds(LineEnd::crlf); },
        [](TextManager& d) { d.replaceSelection(u"s"); },
        [](TextManager& d) { static_cast<void>(d.undo()); },
        [](TextManager& d) { static_cast<void>(d.redo()); },
        [](TextManager& d) { d.assign(u"other"); },
        [](TextManager& d) { d.insertLine(3, u"line"); },
        [](TextManager& d) {
            static_cast<void>(d.addRange({2, 5}));
        },
        [](TextManager& d) { d.select(d.selection()); },
    };
    for (const auto& edit : edits) {
        for (int allocations = 0;; ++allocations) {
            TextManager document(u"a\nb\na\nb\na\nb\na\nb\n");
            std::vector<TextMark> marks;
            for (std::uint64_t offset = 0; offset <= 16; ++offset)
                marks.push_back(
                    document.addMark(offset, offset % 2 == 0 ? MarkGravity::left : MarkGravity::right));
            document.select(std::vector<TextRange>{{1, 2}, {5, 6}});
            document.insert(4, u"one");
            document.insert(0, u"two\n");
            document.remove({3, 6});
            document.undo();
            const TextSnapshot before = document.text();
            const std::vector<TextRange> selected = document.selection();
            const std::size_t markCount = document.markCount();
            std::vector<std::uint64_t> offsets;
            for (const TextMark& mark : marks)
                offsets.push_back(document.offset(mark));
            bool failed = false;
            try {
                const ::test::AllocationLimit limit(allocations);
                edit(document);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            if (!failed)
                break;
            ASSERT_EQ(document.text(), before) << allocations;
            ASSERT_EQ(document.selection(), selected) << allocations;
            ASSERT_EQ(document.markCount(), markCount) << allocations;
            for (std::size_t i = 0; i < marks.size(); ++i)
                ASSERT_EQ(document.offset(marks[i]), offsets[i]) << allocations;
            ASSERT_EQ(document.undoCount(), 2u);
            ASSERT_EQ(document.redoCount(), 1u);
            ASSERT_TRUE(document.redo() && document.undo() && document.undo() && document.undo());
            ASSERT_EQ(document.text().text(), u"a\nb\na\nb\na\nb\na\nb\n");
        }
    }
}

TEST(TextManager, ReadingAndSavingWithoutMemoryLeaveTextAndFileAsTheyWere) {
    const wstring url = u"mem://document.txt";
    const auto files = create_file_system();
    const wstring line = u"строка\r\n";
    const std::function<void(TextManager&)> works[] = {
        [&](TextManager& d) { static_cast<void>(load_document(d, *files, url)); },
        [&](TextManager& d) { save_document(d, *files, url, {.encoding = Encoding(u"utf-16le")}); },
    };
    for (const auto& work : works) {
        bool failed = true;
        for (int allocations = 0; failed; ++allocations) {
            save_text(*files, url, [&](wostream& out) { put_text(out, line); });
            TextManager document(u"old");
            document.insert(3, u"er");
            const TextMark mark = document.addMark(5);
            failed = false;
            try {
                const ::test::AllocationLimit limit(allocations);
                work(document);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            if (!failed)
                break;
            ASSERT_EQ(document.text().text(), u"older") << allocations;
            ASSERT_EQ(document.offset(mark), 5U);
            ASSERT_EQ(document.undoCount(), 1U);
            ASSERT_TRUE(document.isModified());
            ASSERT_EQ(load_text(*files, url), line);
        }
    }
}

} // namespace
} // namespace core
