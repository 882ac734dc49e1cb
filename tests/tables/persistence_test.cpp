// SPDX-License-Identifier: Apache-2.0
// Concerns: tables, trees and lists written and read back equal, columns and all; malformed text refused with
// the object unchanged; trees as deep as values may stand in values, and deeper ones refused.
#include "tests/collections/script.h"

#include <core/descriptions.h>
#include <core/lists/list_in_stream.h>
#include <core/streams/memory_stream.h>
#include <core/tables.h>

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
