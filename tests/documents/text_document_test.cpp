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
