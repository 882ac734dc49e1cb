// SPDX-License-Identifier: Apache-2.0
// Concerns: rows given as values, structures, arrays and tables, all or none; tables as arrays of structures.
#include "tests/tables/table_fixture.h"

namespace {

using namespace script;

class Structures : public TableTest {
  protected:
    static GenericValue array(const Arguments& values) {
        return Value(create_value_array({values.begin(), values.end()}).query<IValue>());
    }
    static GenericValue typed_table() {
        const auto table = create_value_table();
        TypeDomain price(kNumberType);
        price.setNumericQualifiers(NumericQualifiers(5, 2));
        table->addColumn(u"Name", TypeDomain(kStringType));
        table->addColumn(u"Price", price);
        return Value(table.query<IValue>());
    }
};

TEST_F(Structures, BecomeRowsByTheirKeys) {
    const GenericValue table = table_of(u"A", {{0}});
    const GenericValue other = table_of(u"B,C", {{7, 8}, {9, 10}});
    const GenericValue rows =
        array({make(u"Structure", {u"a, B", 1, u"x"}), make(u"Structure"),
               make(u"Structure", {u"C,A", true, 3}), array({4}), call(other, u"Get", {1})});
    call(table, u"AddRows", {rows});
    EXPECT_EQ(content(table), u"0,,;1,x,;,,;3,,Yes;4,,;,9,10;");
    EXPECT_EQ(failure([&] { static_cast<void>(table_of_rows(rows)); }),
              message_text("IDS_VT_MORE_VALUES", {u"4", u"1", u"0"}))
        << "an array names no columns";
}

TEST_F(Structures, AndTablesAreTheSame) {
    const GenericValue table =
        table_of(u"A,B", {{1, u"x"}, {GenericValue(), Date(2024, 1, 2)}, {Numeric(10).pow(30), true}});
    const GenericValue structures = call(table, u"ВыгрузитьСтроки");
    EXPECT_EQ(property(walk(structures)[0], u"b").presentation(), u"x");
    const auto again = table_of_rows(structures);
    EXPECT_EQ(text(Value(again.query<IValue>())), text(table));

    call(table, u"ДобавитьСтроки", {table});
    EXPECT_EQ(walk(table).size(), 6U) << "to itself";
    const auto both = table_of_rows(table);
    EXPECT_EQ(text(Value(both.query<IValue>())), text(table));
    call(table, u"AddRows", {table_of(u"C,a", {{5, 6}})});
    EXPECT_EQ(property(call(table, u"Get", {6}), u"A").presentation(), u"6");
    EXPECT_EQ(property(call(table, u"Get", {6}), u"C").presentation(), u"5");
}

TEST_F(Structures, StopsLeaveEverythingAsItWas) {
    const GenericValue table = table_of(u"A", {{1}, {2}});
    const auto rows = table.query<IValueTable>();
    const wstring before = text(table);
    const GenericValue structures = call(table_of(u"A,B", {{3, 4}, {5, 6}, {7, 8}}), u"UnloadRows");
    StopSource source;
    std::uint64_t steps = 0;
    const TableWork counted{.progress = [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_LE(done, total);
        ++steps;
    }};
    static_cast<void>(table_of_rows(structures, counted));
    ASSERT_GT(steps, 0U);
    for (std::uint64_t end = 1; end <= steps; ++end) {
        std::uint64_t step = 0;
        const TableWork ended{.progress = [&](std::uint64_t, std::uint64_t) {
            if (++step == end)
                throw std::runtime_error("stop");
        }};
        EXPECT_THROW(add_rows(*rows, structures, nullptr, ended), std::runtime_error);
        EXPECT_EQ(text(table), before) << "at step " << end;
    }
    source.request();
    const TableWork stopped{.stop = source.token()};
    EXPECT_THROW(add_rows(*rows, structures, nullptr, stopped), ThreadDeath);
    EXPECT_THROW(static_cast<void>(structures_of(*rows, stopped)), ThreadDeath);
    EXPECT_EQ(text(table), before);
}

TEST_F(Structures, ThatDoNotFitAddNothing) {
    const GenericValue table = typed_table();
    call(table, u"AddRow", {u"pear", 1.5});
    const GenericValue before = text(table);
    const auto refused = [&](const GenericValue& rows) {
        const wstring why = failure<Exception>([&] { call(table, u"AddRows", {rows}); });
        EXPECT_EQ(GenericValue(text(table)), before);
        return why;
    };
    const GenericValue good = make(u"Structure", {u"Name, Extra", u"plum", 1});
    EXPECT_EQ(refused(array({good, make(u"Structure", {u"Price", u"abc"})})),
              u"Row 3, column Price: “abc” is not a number.");
    EXPECT_EQ(refused(array({good, array({u"fig", 1234})})),
              u"Row 3, column Price: “1234” has more digits than the type.");
    EXPECT_EQ(refused(array({good, array({1, 2, 3})})),
              message_text("IDS_VT_MORE_VALUES", {u"2", u"3", u"2"}));
    EXPECT_EQ(refused(array({good, 5})), message_text("IDS_VT_NO_ROW", {u"2", u"Number"}));
    EXPECT_EQ(refused(table_of(u"Name,Price", {{u"fig", 1.234}})).substr(0, 20), u"Row 2, column Price:");
    EXPECT_EQ(refused(u"x"), type_mismatch(0));

    call(table, u"AddRows", {array({good, make(u"Structure", {u"Price", u"abc"})}), true});
    EXPECT_EQ(content(table), u"pear,1.5,;plum,0,1;,0,;");
    EXPECT_TRUE(property(table, u"LossCount").equals(1));
}

TEST_F(Structures, ValuesAreTheCellsOfARow) {
    const GenericValue table = typed_table();
    EXPECT_EQ(property(call(table, u"AddRow", {u"pear", 1.5}), u"Price").presentation(), u"1.5");
    call(table, u"ДобавитьСтроку", {u"plum"});
    call(table, u"Add");
    EXPECT_EQ(content(table), u"pear,1.5;plum,0;,0;");
    EXPECT_EQ(failure<ConversionException>([&] {
                  call(table, u"AddRow", {u"fig", u"abc"});
              }),
              u"Row 4, column Price: “abc” is not a number.");
    EXPECT_EQ(failure([&] {
                  call(table, u"AddRow", {u"fig", 1, 2});
              }),
              message_text("IDS_VT_MORE_VALUES", {u"4", u"3", u"2"}));
    EXPECT_TRUE(call(table, u"Count").equals(3));
    const GenericValue tree = make(u"ValueTree");
    call(property(tree, u"Columns"), u"Add", {u"A"});
    const GenericValue row = call(property(tree, u"Rows"), u"AddRow", {1});
    EXPECT_EQ(property(call(property(row, u"Rows"), u"AddRow", {2}), u"A").presentation(), u"2");
}

} // namespace
