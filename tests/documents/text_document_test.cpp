// SPDX-License-Identifier: Apache-2.0
// The document as scripts have it: names in both languages, positions from 1, files, events, storing in every
// form.
#include "tests/collections/script.h"

#include <core/context/events/event_service.h>
#include <core/documents.h>
#include <core/files.h>
#include <core/streams/text_file.h>
#include <core/values/value_file.h>

namespace script {
namespace {

class TextDocumentObject : public script::Test {
  protected:
    static Value text(wstring_view units) { return Value(units); }
    static wstring content(const GenericValue& document) {
        wstring units;
        static_cast<void>(property(document, u"Text").getString(units));
        return units;
    }
};

TEST_F(TextDocumentObject, ReadsReplacesUndoesAndWrites) {
    save_text(*get_service<IFileSystem>(), u"mem://old.txt",
              [](wostream& out) { put_text(out, u"раз foo\r\nдва foo\n"); },
              {.encoding = Encoding(u"windows-1251")});
    const GenericValue document = make(u"ТекстовыйДокумент");
    call(document, u"Прочитать", {text(u"mem://old.txt"), text(u"windows-1251")});
    EXPECT_EQ(property(document, u"Encoding"), text(u"windows-1251"));
    EXPECT_EQ(property(document, u"КоличествоСтрок"), GenericValue(3));
    EXPECT_EQ(call(document, u"Replace", {text(u"foo"), text(u"bar")}), GenericValue(2));
    EXPECT_EQ(call(document, u"ПолучитьСтроку", {2}), text(u"два bar"));
    EXPECT_EQ(call(document, u"Undo"), GenericValue(true));
    EXPECT_EQ(call(document, u"Undo"), GenericValue(false));
    EXPECT_EQ(property(document, u"Modified"), GenericValue(false));
    EXPECT_EQ(call(document, u"Redo"), GenericValue(true));
    call(document, u"Write", {text(u"mem://new.txt"), text(u"utf-16le")});
    EXPECT_EQ(load_text(*get_service<IFileSystem>(), u"mem://new.txt", {.encoding = Encoding(u"utf-16le")}),
              u"раз bar\r\nдва bar\n");
    const std::vector<GenericValue> lines = walk(document);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], text(u"раз bar"));
}

TEST_F(TextDocumentObject, CountsFromOne) {
    const GenericValue document = make(u"TextDocument", {text(u"ab\ncd")});
    EXPECT_EQ(call(document, u"LineOf", {4}), GenericValue(2));
    EXPECT_EQ(call(document, u"ColumnOf", {5}), GenericValue(2));
    EXPECT_EQ(call(document, u"PositionOf", {2, 2}), GenericValue(5));
    EXPECT_EQ(call(document, u"Find",
                   {text(u"C"), GenericValue(),
                    property(Value(script_enumeration(TextQueryKind{})), u"БезУчетаРегистра")}),
              GenericValue(4));
    EXPECT_EQ(call(document, u"Find", {text(u"b"), 3}), GenericValue());
    const GenericValue mark = call(document, u"AddMark", {4});
    call(document, u"Insert", {1, text(u"x")});
    EXPECT_EQ(call(document, u"MarkPosition", {mark}), GenericValue(5));
    call(document, u"Select", {1, 1});
    call(document, u"Select", {5, 2, true});
    call(document, u"ReplaceSelection", {text(u"-")});
    EXPECT_EQ(content(document), u"-ab\n-");
    EXPECT_EQ(failure([&] { call(document, u"Insert", {0, text(u"x")}); }), value_mismatch(0));
    EXPECT_EQ(failure<DocumentException>([&] { call(document, u"GetLine", {3}); }),
              message_text(messages::kTextLine, {u"3", u"2"}));
}

TEST_F(TextDocumentObject, RangesMoveWithTheTextAsLongAsTheyAreHeld) {
    GenericValue document = make(u"TextDocument", {text(u"one two three")});
    const GenericValue fixed = call(document, u"AddRange", {5, 3});
    const GenericValue growing = call(document, u"ДобавитьДиапазон", {5, 3, true});
    auto& manager = document.query<ITextDocument>()->manager();
    EXPECT_EQ(manager.markCount(), 4U);
    const auto expect = [](const GenericValue& range, int position, int count, const wchar* units) {
        EXPECT_EQ(property(range, u"Начало"), GenericValue(position));
        EXPECT_EQ(property(range, u"Количество"), GenericValue(count));
        EXPECT_EQ(property(range, u"Text"), text(units));
    };
    call(document, u"Insert", {5, text(u"<")});
    call(document, u"Insert", {9, text(u">")});
    expect(fixed, 6, 3, u"two");
    wstring shown;
    EXPECT_TRUE(fixed.getString(shown));
    EXPECT_EQ(shown, u"two");
    expect(growing, 5, 5, u"<two>");
    call(document, u"Delete", {4, 7});
    expect(growing, 4, 0, u"");
    call(document, u"Undo");
    expect(growing, 5, 5, u"<two>");
    call(document, u"ReplaceRange", {5, 5, text(u"2")});
    expect(growing, 5, 1, u"2");
    call(document, u"Select", {1, 2});
    call(document, u"Select", {7, 2, true});
    const std::vector<GenericValue> selected = walk(property(document, u"Выделение"));
    ASSERT_EQ(selected.size(), 2U);
    expect(selected[1], 7, 2, u"th");
    call(document, u"Select", {1, 0});
    EXPECT_EQ(manager.markCount(), 10U) << "five ranges, of which one is the cursor";
    { const GenericValue shortLived = call(document, u"AddRange", {1, 2}); }
    EXPECT_EQ(manager.markCount(), 10U);
    EXPECT_EQ(failure<DocumentException>([&] {
                  call(document, u"AddRange", {10, 20});
              }),
              message_text(messages::kTextOffset, {u"29", u"11"}));
    document = GenericValue();
    expect(growing, 5, 1, u"2"); // a range keeps the text that it is of
}

TEST_F(TextDocumentObject, TellsScriptsWhatChanged) {
    const GenericValue document = make(u"TextDocument", {text(u"abc")});
    std::vector<GenericValue> seen;
    const auto sink = make_event_sink(
        [&](std::span<const GenericValue> arguments) { seen.assign(arguments.begin(), arguments.end()); });
    const auto service = get_service<IEventService>();
    const ConnectionNumber number = service->connect(document.object(), u"ПриИзменении", sink.get());
    call(document, u"ReplaceRange", {2, 1, text(u"xy")});
    EXPECT_EQ(seen, (std::vector<GenericValue>{2, text(u"b"), text(u"xy")}));
    EXPECT_TRUE(service->disconnect(document.object(), number));
}

TEST_F(TextDocumentObject, KeepsAsManyStepsAsItIsTold) {
    const GenericValue document = make(u"TextDocument");
    EXPECT_TRUE(property(document, u"UndoLimit").isUndefined());
    for (int i = 0; i < 5; ++i)
        call(document, u"Insert", {1, text(u"one\n")});
    const auto limit = [&](const GenericValue& steps) {
        const auto context = document.query<IContext_>();
        context->setPropVal(context->findProp(u"ПределОтмен"), steps);
    };
    limit(3);
    EXPECT_EQ(property(document, u"UndoLimit"), GenericValue(3));
    EXPECT_EQ(property(document, u"UndoCount"), GenericValue(3));
    limit(GenericValue());
    call(document, u"Insert", {1, text(u"one\n")});
    EXPECT_EQ(property(document, u"UndoCount"), GenericValue(4));
}

TEST_F(TextDocumentObject, IsStoredWithItsEnds) {
    const GenericValue document = make(u"TextDocument", {text(u"a\r\nб\u2028\""), true});
    for (const StoredForm form : {StoredForm::text, StoredForm::compact}) {
        const auto file = open_memory_file(create_memory_data());
        write_value(*file, document, form);
        file->seek(0, SeekOrigin::begin);
        const GenericValue again = read_value(*file);
        EXPECT_EQ(content(again), content(document));
        EXPECT_EQ(property(again, u"LineCount"), GenericValue(3));
        EXPECT_EQ(property(again, u"Encoding"), property(document, u"Encoding"));
    }
}

} // namespace
} // namespace script
