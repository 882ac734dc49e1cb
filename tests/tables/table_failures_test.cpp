// SPDX-License-Identifier: Apache-2.0
// Concerns: every failure of tables, columns and indexes, each of which leaves the table as it was.
#include "tests/tables/table_fixture.h"

namespace {

using namespace script;

class TableFailures : public TableTest {};

TEST_F(TableFailures, RefuseWhatIsWrongAndStayAsTheyAre) {
    const GenericValue table = table_of(u"A,B", {{1, u"x"}, {2, u"y"}, {3, u"z"}});
    const GenericValue other = table_of(u"A,B", {{1, u"x"}});
    const GenericValue stranger = call(other, u"Get", {0});
    const GenericValue columns = property(table, u"Columns");
    const GenericValue indexes = property(table, u"Indexes");
    call(indexes, u"Add", {u"A"});
    const GenericValue structure = make(u"Structure", {u"A, C", 1, 2});
    const GenericValue array = make(u"Array");
    const GenericValue gone = call(columns, u"Add", {u"Gone"});
    call(columns, u"Delete", {gone});
    const wstring before = text(table);
    const struct {
        GenericValue object;
        const wchar* method;
        Arguments arguments;
        wstring message;
    } wrong[] = {
        {table, u"Get", {3}, bad_index()},
        {table, u"Get", {-1}, bad_index()},
        {table, u"Get", {u"0"}, type_mismatch(0)},
        {table, u"Insert", {4}, bad_index()},
        {table, u"Insert", {-1}, bad_index()},
        {table, u"Insert", {true}, type_mismatch(0)},
        {table, u"Delete", {3}, bad_index()},
        {table, u"Delete", {1e30}, bad_index()},
        {table, u"Delete", {stranger}, unknown_row()},
        {table, u"Delete", {table}, type_mismatch(0)},
        {table, u"IndexOf", {stranger}, unknown_row()},
        {table, u"IndexOf", {0}, type_mismatch(0)},
        {table, u"Move", {0, -1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {2, 1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {1, 1e30}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table, u"Move", {3, 0}, bad_index()},
        {table, u"Move", {stranger, 0}, unknown_row()},
        {table, u"Move", {0, u"1"}, type_mismatch(1)},
        {table, u"Find", {1, u"C"}, unknown_column(u"C")},
        {table, u"Find", {1, 5}, type_mismatch(1)},
        {table, u"Find", {1, u"A,A"}, twice(u"A")},
        {table, u"FindRows", {structure}, unknown_column(u"C")},
        {table, u"FindRows", {u"A"}, type_mismatch(0)},
        {table, u"Total", {u"C"}, unknown_column(u"C")},
        {table, u"Total", {2}, bad_index()},
        {table, u"Total", {GenericValue()}, type_mismatch(0)},
        {table, u"Sort", {5}, type_mismatch(0)},
        {table, u"LoadColumn", {5, u"A"}, type_mismatch(0)},
        {table, u"LoadColumn", {array, u"C"}, unknown_column(u"C")},
        {table, u"UnloadColumn", {true}, type_mismatch(0)},
        {table, u"Copy", {5}, type_mismatch(0)},
        {table, u"Copy", {structure}, unknown_column(u"C")},
        {table, u"Copy", {GenericValue(), u"A,,B"}, value_mismatch(1)},
        {table, u"CopyColumns", {u"1"}, unknown_column(u"1")},
        {table, u"GroupBy", {u"A", u"a"}, message_text("IDS_VT_GROUPBY_INTERSECT_ERROR", {u"A"})},
        {table, u"GroupBy", {u"A,a"}, twice(u"a")},
        {table, u"GroupBy", {u"A", u"B,B"}, twice(u"B")},
        {table, u"GroupBy", {u"A,"}, value_mismatch(0)},
        {table, u"GroupBy", {GenericValue()}, type_mismatch(0)},
        {table, u"FillValues", {1, u"C"}, unknown_column(u"C")},
        {table, u"ChooseRow", {5}, type_mismatch(0)},
        {table, u"ChooseRow", {u"", stranger}, unknown_row()},
        {columns, u"Add", {u"1A"}, message_text("IDS_VT_COLUMNCODE_ERROR", {u"1A"})},
        {columns, u"Add", {u""}, message_text("IDS_VT_COLUMNCODE_ERROR", {u""})},
        {columns, u"Add", {u" a "}, twice(u"a")},
        {columns, u"Add", {u"C", 5}, type_mismatch(1)},
        {columns, u"Add", {u"C", GenericValue(), 5}, type_mismatch(2)},
        {columns, u"Add", {u"C", GenericValue(), u"", -1}, value_mismatch(3)},
        {columns, u"Insert", {3, u"C"}, bad_index()},
        {columns, u"Insert", {0, 5}, type_mismatch(1)},
        {columns, u"Delete", {u"C"}, unknown_column(u"C")},
        {columns, u"Delete", {property(property(other, u"Columns"), u"A")}, unknown_column(u"A")},
        {columns, u"Delete", {gone}, unknown_column(u"Gone")},
        {table, u"Total", {gone}, unknown_column(u"Gone")},
        {columns, u"Move", {u"A", 2}, message_text("IDS_COLLECTION_BADOFFSET")},
        {columns, u"Get", {2}, bad_index()},
        {columns, u"IndexOf", {u"A"}, type_mismatch(0)},
        {indexes, u"Add", {u"A,C"}, unknown_column(u"C")},
        {indexes, u"Add", {u""}, value_mismatch(0)},
        {indexes, u"Delete", {1}, bad_index()},
        {indexes,
         u"Delete",
         {call(property(other, u"Indexes"), u"Add", {u"A"})},
         message_text("IDS_VT_UNKNOWN_INDEX_ERROR")},
        {indexes, u"Get", {u"A"}, type_mismatch(0)},
    };
    for (auto call_wrong : wrong) {
        EXPECT_EQ(failure([&] { call(call_wrong.object, call_wrong.method, call_wrong.arguments); }),
                  call_wrong.message)
            << to_utf8(call_wrong.method);
    }
    const auto name = property(columns, u"A").query<IContext_>();
    EXPECT_EQ(failure([&] { name->setPropVal(0, u"B"); }), twice(u"B"));
    EXPECT_EQ(failure([&] { name->setPropVal(0, u"a b"); }),
              message_text("IDS_VT_COLUMNCODE_ERROR", {u"a b"}));
    EXPECT_EQ(text(table), before);
}

} // namespace
