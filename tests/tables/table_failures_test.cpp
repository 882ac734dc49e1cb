// SPDX-License-Identifier: Apache-2.0
// Concerns: every failure of tables, columns and indexes, each of which leaves the table as it was.
#include "tests/tables/table_fixture.h"

namespace {

using namespace script;

class TableFailures : public TableTest {
  protected:
    struct Wrong {
        GenericValue object;
        const wchar* method;
        Arguments arguments;
        wstring message;
    };

    TableFailures() {
        call(indexes_, u"Add", {u"A"});
        call(columns_, u"Delete", {gone_});
    }
    void refused(std::vector<Wrong> calls) {
        const wstring before = text(table_);
        for (Wrong& wrong : calls)
            EXPECT_EQ(failure([&] { call(wrong.object, wrong.method, wrong.arguments); }), wrong.message)
                << to_utf8(wrong.method);
        EXPECT_EQ(text(table_), before);
    }

    const GenericValue table_ = table_of(u"A,B", {{1, u"x"}, {2, u"y"}, {3, u"z"}});
    const GenericValue other_ = table_of(u"A,B", {{1, u"x"}});
    const GenericValue stranger_ = call(other_, u"Get", {0});
    const GenericValue columns_ = property(table_, u"Columns");
    const GenericValue gone_ = call(columns_, u"Add", {u"Gone"});
    const GenericValue indexes_ = property(table_, u"Indexes");
    const GenericValue structure_ = make(u"Structure", {u"A, C", 1, 2});
};

TEST_F(TableFailures, OfRowsAreRefused) {
    refused({
        {table_, u"Get", {3}, bad_index()},
        {table_, u"Get", {-1}, bad_index()},
        {table_, u"Get", {u"0"}, type_mismatch(0)},
        {table_, u"Insert", {4}, bad_index()},
        {table_, u"Insert", {-1}, bad_index()},
        {table_, u"Insert", {true}, type_mismatch(0)},
        {table_, u"Delete", {3}, bad_index()},
        {table_, u"Delete", {1e30}, bad_index()},
        {table_, u"Delete", {stranger_}, unknown_row()},
        {table_, u"Delete", {table_}, type_mismatch(0)},
        {table_, u"IndexOf", {stranger_}, unknown_row()},
        {table_, u"IndexOf", {0}, type_mismatch(0)},
        {table_, u"Move", {0, -1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table_, u"Move", {2, 1}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table_, u"Move", {1, 1e30}, message_text("IDS_COLLECTION_BADOFFSET")},
        {table_, u"Move", {3, 0}, bad_index()},
        {table_, u"Move", {stranger_, 0}, unknown_row()},
        {table_, u"Move", {0, u"1"}, type_mismatch(1)},
    });
}

TEST_F(TableFailures, OfSearchesAndCopiesAreRefused) {
    refused({
        {table_, u"Find", {1, u"C"}, unknown_column(u"C")},
        {table_, u"Find", {1, 5}, type_mismatch(1)},
        {table_, u"Find", {1, u"A,A"}, twice(u"A")},
        {table_, u"FindRows", {structure_}, unknown_column(u"C")},
        {table_, u"FindRows", {5}, type_mismatch(0)},
        {table_, u"Total", {u"C"}, unknown_column(u"C")},
        {table_, u"Total", {2}, bad_index()},
        {table_, u"Total", {GenericValue()}, type_mismatch(0)},
        {table_, u"Sort", {5}, type_mismatch(0)},
        {table_, u"LoadColumn", {5, u"A"}, type_mismatch(0)},
        {table_, u"LoadColumn", {make(u"Array"), u"C"}, unknown_column(u"C")},
        {table_, u"UnloadColumn", {true}, type_mismatch(0)},
        {table_, u"Copy", {5}, type_mismatch(0)},
        {table_, u"Copy", {structure_}, unknown_column(u"C")},
        {table_, u"Copy", {GenericValue(), u"A,,B"}, value_mismatch(1)},
        {table_, u"CopyColumns", {u"1"}, unknown_column(u"1")},
        {table_, u"GroupBy", {u"A", u"a"}, message_text("IDS_VT_GROUPBY_INTERSECT_ERROR", {u"A"})},
        {table_, u"GroupBy", {u"A,a"}, twice(u"a")},
        {table_, u"GroupBy", {u"A", u"B,B"}, twice(u"B")},
        {table_, u"GroupBy", {u"A,"}, value_mismatch(0)},
        {table_, u"GroupBy", {GenericValue()}, type_mismatch(0)},
        {table_, u"FillValues", {1, u"C"}, unknown_column(u"C")},
        {table_, u"ChooseRow", {5}, type_mismatch(0)},
        {table_, u"ChooseRow", {u"", stranger_}, unknown_row()},
        {table_, u"Total", {gone_}, unknown_column(u"Gone")},
    });
}

TEST_F(TableFailures, OfColumnsAndIndexesAreRefused) {
    refused({
        {columns_, u"Add", {u"1A"}, message_text("IDS_VT_COLUMNCODE_ERROR", {u"1A"})},
        {columns_, u"Add", {u""}, message_text("IDS_VT_COLUMNCODE_ERROR", {u""})},
        {columns_, u"Add", {u" a "}, twice(u"a")},
        {columns_, u"Add", {u"C", 5}, type_mismatch(1)},
        {columns_, u"Add", {u"C", GenericValue(), 5}, type_mismatch(2)},
        {columns_, u"Add", {u"C", GenericValue(), u"", -1}, value_mismatch(3)},
        {columns_, u"Insert", {3, u"C"}, bad_index()},
        {columns_, u"Insert", {0, 5}, type_mismatch(1)},
        {columns_, u"Delete", {u"C"}, unknown_column(u"C")},
        {columns_, u"Delete", {property(property(other_, u"Columns"), u"A")}, unknown_column(u"A")},
        {columns_, u"Delete", {gone_}, unknown_column(u"Gone")},
        {columns_, u"Move", {u"A", 2}, message_text("IDS_COLLECTION_BADOFFSET")},
        {columns_, u"Get", {2}, bad_index()},
        {columns_, u"IndexOf", {u"A"}, type_mismatch(0)},
        {indexes_, u"Add", {u"A,C"}, unknown_column(u"C")},
        {indexes_, u"Add", {u""}, value_mismatch(0)},
        {indexes_, u"Delete", {1}, bad_index()},
        {indexes_,
         u"Delete",
         {call(property(other_, u"Indexes"), u"Add", {u"A"})},
         message_text("IDS_VT_UNKNOWN_INDEX_ERROR")},
        {indexes_, u"Get", {u"A"}, type_mismatch(0)},
    });
    const GenericValue a = property(columns_, u"A");
    const wstring before = text(table_);
    EXPECT_EQ(failure([&] { assign(a, u"Name", u"B"); }), twice(u"B"));
    EXPECT_EQ(failure([&] { assign(a, u"Name", u"a b"); }),
              message_text("IDS_VT_COLUMNCODE_ERROR", {u"a b"}));
    EXPECT_EQ(text(table_), before);
}

} // namespace
