// SPDX-License-Identifier: Apache-2.0
// Text readers and writers as scripts have them: what is written is read, by lines and pieces, with ends,
// encoding and places; arguments that make no sense are refused before a file is touched.
#include "tests/collections/script.h"

#include <core/files.h>
#include <core/objects.h>
#include <core/runtime/utf8.h>

namespace script {
namespace {

class TextStreams : public testing::Test {
  protected:
    GenericValue end(const wchar* name) { return property(Value(script_enumeration(LineEnd{})), name); }
    static Value text(wstring_view units) { return Value(units); }
    std::string bytes(wstring_view url) {
        const auto file = get_service<IFileSystem>()->openURL(wstring(url), OpenMode::read);
        const auto all = read_whole(*file);
        return {reinterpret_cast<const char*>(all.data()), all.size()};
    }

    const host::HostProcess process_;
};

TEST_F(TextStreams, WhatAScriptWritesItReads) {
    {
        const GenericValue writer =
            make(u"ЗаписьТекста", {text(u"mem://t"), text(u"cp1251"), GenericValue(false), end(u"ВКПС")});
        call(writer, u"WriteLine", {text(u"раз\nдва")});
        call(writer, u"Записать", {text(u"три\r")});
        call(writer, u"Write", {text(u"\nчетыре")});
        EXPECT_EQ(property(writer, u"Position"), GenericValue(21));
        EXPECT_EQ(property(writer, u"Encoding"), text(u"windows-1251"));
    } // without Close
    EXPECT_EQ(bytes(u"mem://t").size(), 21U);
    const GenericValue more =
        make(u"TextWriter", {text(u"mem://t"), text(u"windows-1251"), GenericValue(true)});
    call(more, u"WriteLine");
    call(more, u"Close");
    call(more, u"Close");

    const GenericValue reader = make(u"TextReader", {text(u"mem://t"), text(u"windows-1251")});
    EXPECT_EQ(call(reader, u"ReadLine"), text(u"раз"));
    EXPECT_EQ(property(reader, u"LineEnd"), end(u"CRLF"));
    EXPECT_EQ(property(reader, u"Line"), GenericValue(2));
    EXPECT_EQ(property(reader, u"Position"), GenericValue(6));
    EXPECT_EQ(call(reader, u"Прочитать", {GenericValue(2)}), text(u"дв"));
    EXPECT_EQ(walk(reader).size(), 3U);
    EXPECT_EQ(property(reader, u"LineEnd"), end(u"LF"));
    EXPECT_EQ(call(reader, u"ReadLine"), GenericValue());
    EXPECT_EQ(call(reader, u"Read"), GenericValue());
    EXPECT_EQ(property(reader, u"Progress"), GenericValue(100));
    const GenericValue whole = make(u"TextReader", {text(u"mem://t"), text(u"cp1251")});
    EXPECT_EQ(call(whole, u"Read"), text(u"раз\r\nдва\r\nтри\r\nчетыре\n"));
}

TEST_F(TextStreams, AReaderFindsTheEncodingAndAProgramHandsOutItsFiles) {
    const auto data = create_memory_data();
    const Value writer =
        create_text_writer(open_memory_file(data), {.encoding = Encoding(u"UTF-16"), .mark = true});
    call(writer, u"Write", {text(u"текст\u2028конец")});
    call(writer, u"Close");
    const Value reader = create_text_reader(open_memory_file(data), {.unicodeEnds = true});
    EXPECT_TRUE(property(reader, u"HasMark").isTrue());
    EXPECT_EQ(property(reader, u"Certainty"), GenericValue(100));
    EXPECT_EQ(call(reader, u"ReadLine"), text(u"текст"));
    EXPECT_EQ(property(reader, u"LineEnd"), end(u"LineSeparator"));
}

TEST_F(TextStreams, WhatMakesNoSenseIsRefused) {
    get_service<IFileSystem>()->writeFile(
        u"mem://old", [](IFile& file) { write_all(file, std::as_bytes(std::span("a\xFF", 2))); });
    EXPECT_THROW(make(u"TextWriter", {text(u"mem://old"), text(u"klingon")}), ConverterException);
    EXPECT_THROW(make(u"TextWriter", {text(u"mem://old"), {}, {}, end(u"None")}), ContextException);
    EXPECT_THROW(make(u"TextWriter", {text(u"mem://old"), GenericValue(1)}), ContextException);
    EXPECT_THROW(make(u"TextReader", {text(u"mem://none")}), FileException);
    EXPECT_EQ(bytes(u"mem://old"), "a\xFF") << "a refused writer has emptied the file";

    const GenericValue strict = make(u"TextReader", {text(u"mem://old"), text(u"utf-8")});
    EXPECT_THROW(call(strict, u"Read"), ConverterException);
    const Value escape = property(Value(script_enumeration(CodingErrorAction{})), u"Экранировать");
    const GenericValue escaped = make(u"TextReader", {text(u"mem://old"), text(u"utf-8"), escape});
    EXPECT_EQ(call(escaped, u"Read"), text(u"a\\xFF"));
    EXPECT_EQ(property(escaped, u"Faults"), GenericValue(1));

    const GenericValue writer = make(u"TextWriter", {text(u"mem://new"), text(u"koi8-r")});
    EXPECT_THROW(call(writer, u"Write", {text(u"€")}), ConverterException);
    EXPECT_THROW(call(writer, u"Write", {text(u"a")}), ConverterException) << "a text with a hole goes on";
}

} // namespace
} // namespace script
