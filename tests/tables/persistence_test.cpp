// SPDX-License-Identifier: Apache-2.0
// Concerns: tables, trees and lists written and read back equal, columns and all; malformed text refused with
// the object unchanged; trees as deep as values may stand in values, and deeper ones refused.
#include "tests/collections/script.h"

#include <core/descriptions.h>
#include <core/lists/list_in_stream.h>
#include <core/streams/memory_stream.h>
#include <core/tables.h>

#include <array>
#include <fstream>
#include <random>

namespace {

using namespace script;

class TableTexts : public script::Test {
  protected:
    static GenericValue sample_table() {
        const GenericValue table = make(u"ValueTable");
        const GenericValue columns = property(table, u"Columns");
        const GenericValue number =
            make(u"TypeDescription", {u"Number", create_qualifiers_value(NumericQualifiers(10, 2))});
        call(columns, u"Add", {u"Price", number, u"The \"price\"", 12});
        call(columns, u"Add", {u"Любое"});
        call(property(table, u"Indexes"), u"Add", {u"Любое, Price"});
        const Arguments cells = {1.25, u"text", Date(2024, 2, 29), Value::null(), GenericValue(), true};
        for (const GenericValue& cell : cells) {
            const GenericValue row = call(table, u"Add");
            call(row, u"Set", {0, cell});
            call(row, u"Set", {1, cell});
        }
        call(call(table, u"Add"), u"Set", {1, make(u"Structure", {u"A", make(u"ValueTable")})});
        return table;
    }
    static GenericValue sample_tree() {
        const GenericValue tree = make(u"ValueTree");
        call(property(tree, u"Columns"), u"Add", {u"A"});
        std::mt19937 random(9);
        std::vector<GenericValue> rows = {tree};
        for (int i = 0; i < 300; ++i) {
            const GenericValue parent = rows[random() % rows.size()];
            rows.push_back(call(property(parent, u"Rows"), u"Add"));
            call(rows.back(), u"Set", {0, i});
        }
        return tree;
    }
    static GenericValue sample_list() {
        const GenericValue list = make(u"ValueList");
        call(list, u"Add", {1, u"one", true, u"picture"});
        call(list, u"Add", {list_inner(), u"{inner}, \"\""});
        return list;
    }
    static GenericValue list_inner() {
        const GenericValue list = make(u"ValueList");
        const auto context = list.query<IContext_>();
        context->setPropVal(0, make(u"TypeDescription", {u"String, Date"}));
        call(list, u"Add", {Date(2000, 1, 1)});
        return list;
    }
};

TEST_F(TableTexts, TitlesAndPresentationsMayBeInSeveralLanguages) {
    const GenericValue title = make(u"LocalWString", {u"en='Price'; ru='Цена'"});
    for (const wchar* const type : {u"ValueTable", u"ValueTree"}) {
        const GenericValue table = make(type);
        call(property(table, u"Columns"), u"Add", {u"P", GenericValue(), title});
        call(property(table, u"Columns"), u"Add", {u"Q", GenericValue(), u"plain"});
        const GenericValue again = GenericValue::fromString(text(table));
        for (const GenericValue& each : {table, again}) {
            const GenericValue columns = property(each, u"Columns");
            EXPECT_TRUE(property(property(columns, u"P"), u"Title").equals(title));
            EXPECT_EQ(property(property(columns, u"P"), u"Title").presentation(), u"Price");
            EXPECT_TRUE(property(property(columns, u"Q"), u"Title").equals(u"plain"));
        }
        const GenericValue column = property(property(table, u"Columns"), u"P");
        const auto context = column.query<IContext_>();
        context->setPropVal(context->findProp(u"Title"), property(column, u"Title"));
        EXPECT_EQ(text(table), text(again));
        context->setPropVal(context->findProp(u"Title"), GenericValue());
        EXPECT_TRUE(property(column, u"Title").equals(u"P"));
        EXPECT_THROW(context->setPropVal(context->findProp(u"Title"), 1), ContextException);
    }
    const GenericValue list = make(u"ValueList");
    call(list, u"Add", {1, make(u"LocalWString", {u"en='b'; ru='а'"})});
    call(list, u"Add", {2, u"a"});
    call(list, u"SortByPresentation");
    const GenericValue read = GenericValue::fromString(text(list));
    EXPECT_EQ(text(read), text(list));
    const auto item = read.query<IValueList>()->get(1);
    EXPECT_EQ(item.presentation, LocalWString::fromString(u"en='b'; ru='а'"));
    EXPECT_EQ(item.presentation.text(), u"b");

    const auto columns = create_value_table();
    columns->addColumn(u"A", {}, LocalWString::fromString(u"ru='Цена'"));
    EXPECT_EQ(columns->column(0).title.text(), u"A") << "the name where no language fits";
    EXPECT_EQ(columns->column(0).title.text(Locale("ru"), Locale("en")), u"Цена");
}

TEST_F(TableTexts, ComeBackEqual) {
    for (const GenericValue& object : {sample_table(), sample_tree(), sample_list(), make(u"ValueTable"),
                                       make(u"ValueTree"), make(u"ValueList")}) {
        const wstring written = text(object);
        const GenericValue read = GenericValue::fromString(written);
        EXPECT_EQ(read.type(), object.type());
        EXPECT_EQ(text(read), written);
    }
    const GenericValue table = GenericValue::fromString(text(sample_table()));
    const GenericValue price = property(property(table, u"Columns"), u"Price");
    EXPECT_EQ(property(price, u"Title").presentation(), u"The \"price\"");
    EXPECT_TRUE(property(price, u"Width").equals(12));
    EXPECT_TRUE(property(call(table, u"Get", {0}), u"Price").equals(1.25));
    call(call(table, u"Get", {0}), u"Set", {u"Price", 9.999});
    EXPECT_TRUE(property(call(table, u"Get", {0}), u"Price").equals(10)) << "the type came back, too";
    EXPECT_TRUE(call(property(table, u"Indexes"), u"Count").equals(1));
    EXPECT_TRUE(
        property(call(GenericValue::fromString(text(sample_list())), u"Get", {0}), u"Check").isTrue());
}

TEST_F(TableTexts, LookAsTheirDescriptionSays) {
    const GenericValue table = make(u"ValueTable");
    const GenericValue columns = property(table, u"Columns");
    call(columns, u"Add", {u"Name"});
    const GenericValue price =
        make(u"TypeDescription", {u"Number", create_qualifiers_value(NumericQualifiers(10, 2))});
    call(columns, u"Add", {u"Price", price, u"Price, EUR", 12});
    call(property(table, u"Indexes"), u"Add", {u"Name"});
    const GenericValue row = call(table, u"Add");
    call(row, u"Set", {0, u"Tea"});
    call(row, u"Set", {1, 2.5});

    std::ifstream page(CORE_SOURCE_DIR "/docs/table-format.md");
    std::string example;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("{\"#\""))
            inside = true;
        if (line == "```")
            inside = false;
        if (inside)
            example += line + '\n';
    }
    EXPECT_EQ(to_utf8(text(table)) + '\n', example);
    EXPECT_EQ(text(GenericValue::fromString(from_utf8(example))), text(table));
}

TEST_F(TableTexts, ThatWereNeverWrittenAreRefused) {
    const auto read = [](wstring_view body, const GenericValue& object) {
        MemoryInStream memory(body);
        ListInStream in(memory);
        ListInStorage storage(in);
        object.query<IPersistableObject>()->deserialize(&storage);
    };
    const wstring columns = u"{{1,{\"A\",\"\",0,{0}}},";
    const GenericValue table = sample_table();
    const wstring before = text(table);
    const GenericValue row = call(table, u"Get", {0});
    read(columns + u"{0},{0}}", make(u"ValueTable"));
    for (const wstring& body :
         {wstring(u"{"), columns + u"{0},{1}}", columns + u"{0},{-1}}",
          columns + u"{0},{1,{{\"N\",1},{\"N\",2}}}}", columns + u"{1,{0}},{0}}", columns + u"{1,{1,1}},{0}}",
          columns + u"{1,{2,0,0}},{0}}", wstring(u"{{1,{\"A B\",\"\",0,{0}}},{0},{0}}"),
          wstring(u"{{1,{\"A\",\"\",-1,{0}}},{0},{0}}"),
          wstring(u"{{2,{\"A\",\"\",0,{0}},{\"a\",\"\",0,{0}}},{0},{0}}"),
          wstring(u"{{1,{\"A\",\"\",0,{1,{b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec,{0,0,0}}}}},{0},{1,{{\"S\","
                  u"\"text\"}}}}"),
          columns + u"{0},{4000000000000000000,{{\"N\",1}}}}"})
        EXPECT_NE(failure<ListStreamException>([&] { read(body, table); }), u"") << to_utf8(body);
    EXPECT_EQ(text(table), before);
    EXPECT_TRUE(property(row, u"Price").equals(1.25)) << "a row that is held is still there";
    read(columns + u"{0},{1,{{\"N\",7}}}}", table);
    EXPECT_EQ(failure([&] { return property(row, u"A"); }), message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
    EXPECT_TRUE(property(call(table, u"Get", {0}), u"A").equals(7));

    const GenericValue list = sample_list();
    const wstring listBefore = text(list);
    for (const wchar* body :
         {u"{{0},-1}", u"{{0},1}",
          u"{{1,{b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec,{0,0,0}}},1,{{\"S\",\"x\"},\"\",0,{\"U\"}}}"})
        EXPECT_NE(failure<ListStreamException>([&] { read(body, list); }), u"") << to_utf8(body);
    EXPECT_EQ(text(list), listBefore);
}

TEST_F(TableTexts, OfOneFormAreThoseOfTheOther) {
    for (const GenericValue& object : {sample_table(), sample_tree(), sample_list(), make(u"ValueTable")})
        EXPECT_EQ(text(GenericValue::fromBytes(object.toBytes())), text(object));
    const GenericValue table = GenericValue::fromBytes(sample_table().toBytes());
    call(call(table, u"Add"), u"Set", {u"Price", 9.999});
    EXPECT_TRUE(property(call(table, u"Get", {7}), u"Price").equals(10)) << "rows can be added";
    const GenericValue filter = make(u"Structure", {u"Price", 10});
    EXPECT_EQ(walk(call(table, u"FindRows", {filter})).size(), 1U) << "and found by the index";
    // A million equal rows of names and numbers take little more than a few bytes each.
    const GenericValue large = make(u"ValueTable");
    call(property(large, u"Columns"), u"Add", {u"Name"});
    call(property(large, u"Columns"), u"Add", {u"Price"});
    const auto rows = large.query<IValueTable>();
    for (int i = 0; i < 20'000; ++i)
        rows->appendRow(std::array<Value, 2>{i % 2 == 0 ? u"Tea" : u"Кофе", Value(i % 250)});
    EXPECT_LT(large.toBytes().size(), 20'000U * 2 + 200U);
}

TEST_F(TableTexts, InCompactFormThatWereNeverWrittenAreRefused) {
    // The one cell of a column of a type, with some bytes of it changed.
    const auto changed = [](const wchar* type, const GenericValue& cell, std::string_view from,
                            std::string_view to) {
        const GenericValue table = make(u"ValueTable");
        call(property(table, u"Columns"), u"Add", {u"A", make(u"TypeDescription", {type})});
        call(call(table, u"Add"), u"Set", {0, cell});
        const auto bytes = table.toBytes();
        std::string data(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const std::size_t at = data.rfind(from);
        if (at == std::string::npos)
            return wstring(u"not written like this");
        data.replace(at, from.size(), to);
        return failure<ListStreamException>(
            [&] { return GenericValue::fromBytes(std::as_bytes(std::span(data))); });
    };
    using namespace std::string_view_literals;
    // column {0, count, value, codes}
    const auto name = "\xC1\x00\x01\x81x\xD5\x01\x01\x01\xC0"sv;
    EXPECT_EQ(changed(u"String", u"x", name, name), u"");
    for (const auto wrong : {"\xC1\x00\x01\xC3\xD5\x01\x01\x01\xC0"sv,       // Null
                             "\xC1\x00\x01\x81x\xD5\x01\x01\x02\xC0"sv,      // a code behind the last one
                             "\xC1\x00\x01\x81x\xD5\x01\x01\x00\xC0"sv,      // Undefined
                             "\xC1\x00\x02\x81x\x81x\xD5\x01\x01\x01\xC0"sv, // a value twice
                             "\xC1\x00\x01\x81x\xD5\x02\x01\x01\x01\xC0"sv,  // more rows than the others have
                             "\xC1\x00\x01\x81x\xD5\x01\x01\x01\x01\xC0"sv,  // something behind
                             "\xC1\x04\x81x\xC0"sv,                          // no such form
                             "\xC1\x03\x05\xC0"sv})                          // a number among values
        EXPECT_NE(changed(u"String", u"x", name, wrong), u"");
    EXPECT_EQ(changed(u"String", u"x", name, "\xC1\x03\x81x\xC0"sv), u"") << "the form is a choice";
    // column {form, scale, base, step, empty, numbers}
    const auto number = "\xC1\x01\x00\x05\x01\xC4\xD5\x01\x01\x00\xC0"sv;
    EXPECT_EQ(changed(u"Number", 5, number, number), u"");
    for (const auto wrong : {"\xC1\x02\x00\x05\x01\xC4\xD5\x01\x01\x00\xC0"sv, // a date
                             "\xC1\x01\x00\x05\x01\xC5\xD5\x01\x01\x00\xC0"sv, // Undefined
                             "\xC1\x01\x13\x05\x01\xC4\xD5\x01\x01\x00\xC0"sv, // too many digits
                             "\xC1\x01\x00\x05\x00\xC4\xD5\x01\x01\x00\xC0"sv, // no step
                             "\xC1\x01\x00\x05\x01\xC4\xD5\x01\x09\x00\xC0"sv, // too wide
                             "\xC1\x01\x00\x05\x01\xC4\xD5\x01\x00\xC0"sv,     // of no width
                             "\xC1\x01\x00\x05\x01\xC4\xD5\x01\x08\xFB\xFF\xFF\xFF\xFF\xFF\xFF\x7F\xC0"sv})
        EXPECT_NE(changed(u"Number", 5, number, wrong), u"");
    EXPECT_EQ(changed(u"Number", 5, number,
                      "\xC1\x01\x00\x05\x01\xC4\xD5\x01\x08\xFA\xFF\xFF\xFF\xFF\xFF\xFF\x7F\xC0"sv),
              u"")
        << "the largest word";
    const auto date = "\xC1\x02\x00\x00\xC6\x80\xB0\xFE\x9B\x03\xC4\xD5\x01\x01\x00\xC0"sv;
    EXPECT_EQ(changed(u"Date", Date(), date, date), u"");
    EXPECT_NE(changed(u"Date", Date(), date, "\xC1\x02\x00\xC7\x00\x01\xC4\xD5\x01\x01\x00\xC0"sv), u"");
    EXPECT_NE(changed(u"Date", Date(), date, "\xC1\x02\x01\x00\x01\xC4\xD5\x01\x01\x00\xC0"sv), u"");
}

TEST_F(TableTexts, OfDeepTreesEndBeforeTheStackDoes) {
    const GenericValue tree = make(u"ValueTree");
    call(property(tree, u"Columns"), u"Add", {u"A"});
    GenericValue rows = property(tree, u"Rows");
    for (int depth = 0; depth < 900; ++depth)
        rows = property(call(rows, u"Add"), u"Rows");
    const wstring written = text(tree);
    EXPECT_EQ(text(GenericValue::fromString(written)), written);
    for (int depth = 0; depth < 100'000; ++depth)
        rows = property(call(rows, u"Add"), u"Rows");
    EXPECT_NE(failure<ListStreamException>([&] { text(tree); }), u"");
    EXPECT_TRUE(call(property(tree, u"Rows"), u"Find", {5, GenericValue(), true}).isUndefined());
    call(property(tree, u"Rows"), u"Sort", {u"A", true});
    call(property(tree, u"Rows"), u"Clear");
    EXPECT_EQ(failure([&] { call(rows, u"Count"); }), message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
}

} // namespace
