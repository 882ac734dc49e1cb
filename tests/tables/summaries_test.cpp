// SPDX-License-Identifier: Apache-2.0
// Concerns: what aggregates, pivots and windows make of types, names, empty cells and large numbers, and what
// they refuse.
#include "tests/tables/table_fixture.h"

#include <core/collections/value_array.h>

#include <random>

namespace {

using namespace script;

class Summaries : public TableTest {
  protected:
    static GenericValue sales() {
        return table_of(u"Region,Product,Price,Day",
                        {{u"North", u"apple", 1.2, Date(2024, 1, 2)},
                         {u"South", u"pear", 3, Date(2024, 1, 3)},
                         {u"North", u"pear", 2, GenericValue()},
                         {u"South", u"apple", GenericValue(), Date(2024, 1, 1)}});
    }
    static wstring refusal(const GenericValue& table, const wchar* method, Arguments arguments) {
        return failure([&] { call(table, method, std::move(arguments)); });
    }
    static wstring columns(const GenericValue& table) {
        wstring names;
        const auto rows = table.query<IValueTable>();
        for (std::size_t i = 0; i < rows->columnCount(); ++i)
            names += rows->column(i).name + u",";
        return names;
    }
    /// Every cell is one that its column's description holds.
    static void expect_described(const GenericValue& table) {
        const auto rows = table.query<IValueTable>();
        for (std::size_t i = 0; i < rows->columnCount(); ++i) {
            for (std::size_t row = 0; row < rows->rowCount(); ++row) {
                const GenericValue cell = rows->get(row, rows->column(i).id);
                EXPECT_TRUE(rows->column(i).domain.fits(cell)) << to_utf8(rows->column(i).name);
            }
        }
        EXPECT_EQ(text(GenericValue::fromString(text(table))), text(table));
    }
};

TEST_F(Summaries, AreOfAllRowsOfATable) {
    const auto table = create_value_table();
    table->addColumn(u"N");
    table->addColumn(u"S");
    constexpr int kRows = 5000;
    for (int i = 0; i < kRows; ++i)
        table->appendRow(std::vector<Value>{Value(i), Value(string_intto(i % 2000))});
    const GenericValue all(table.query<IValue>());
    EXPECT_EQ(content(call(all, u"Group",
                           {u"", u"Sum(N), Count(S), CountDistinct(S) As D, Max(N) As M, Last(S) As L"})),
              u"12497500,5000,2000,4999,999;");
}

TEST_F(Summaries, AreCalledInBothLanguages) {
    const GenericValue table = sales();
    const GenericValue english =
        call(table, u"Group",
             {u"Product", u"Count() As Sales, Sum(Price) As Price, Max(Day) As Last, CountDistinct(Region)"});
    EXPECT_EQ(columns(english), u"Product,Sales,Price,Last,Region,");
    EXPECT_EQ(call(english, u"Get", {0}).query<IContext_>() != nullptr, true);
    EXPECT_EQ(text(call(table, u"группировать",
                        {u"Product", u"количество() как Sales, СУММА(Price), Макс(Day) Как Last, "
                                     u"КоличествоРазличных(Region)"})),
              text(english));
    EXPECT_TRUE(english.query<IValueTable>()->get(0, 2).equals(1.2));
    EXPECT_TRUE(english.query<IValueTable>()->get(1, 2).equals(5));
    EXPECT_EQ(content(call(table, u"Group", {u"Region", u"Price"})), u"North,3.2;South,3;")
        << "a name alone is its sum";
    EXPECT_EQ(
        content(call(table, u"Group",
                     {u"", u"Count(), Average(Price), Min(Product), First(Region) As F, Last(Region) As L"})),
        wstring(u"4,") + (Numeric(6.2) / 3).toString() + u",apple,North,South;");
    EXPECT_EQ(content(table).size(), content(sales()).size()) << "the table stays";
    expect_described(english);
}

TEST_F(Summaries, GroupByExpressions) {
    const GenericValue table = sales();
    const GenericValue days = call(table, u"Group", {u"Day(Day) As D, [Region]", u"Count() As N"});
    EXPECT_EQ(columns(days), u"D,Region,N,");
    EXPECT_EQ(content(days), u"2,North,1;3,South,1;,North,1;1,South,1;");
    EXPECT_EQ(content(call(table, u"Group", {u"Region Как Where", u"Count() As N", true})),
              u"0,,4;1,North,2;1,South,2;");
    EXPECT_EQ(content(call(table, u"Pivot", {u"Upper(Region) As R", u"Left(Product, 1)", u"Count()"})),
              u"NORTH,1,1;SOUTH,1,1;");
    call(table, u"AddWindow", {u"RowNumber() As N", u"Month(Day) = 1, Upper(Region)"});
    EXPECT_EQ(content(call(table, u"Copy", {GenericValue(), u"N"})), u"1;1;1;2;");
    EXPECT_EQ(columns(Value(group(*table.query<IValueTable>(), {u"Region", u"Price * 2 As Twice"}, {count()})
                                .query<IValue>())),
              u"Region,Twice,Count,");
    expect_described(days);
}

TEST_F(Summaries, TotalTakesAnyAggregate) {
    const GenericValue table = sales();
    EXPECT_TRUE(call(table, u"Total", {u"Max(Day)"}).equals(Date(2024, 1, 3)));
    EXPECT_TRUE(call(table, u"Total", {u"Price"}).equals(6.2));
    EXPECT_TRUE(call(table, u"Итог", {u"Количество()"}).equals(4));
    EXPECT_TRUE(call(table, u"Total", {u"Count(Price)"}).equals(3));
    EXPECT_EQ(refusal(table, u"Total", {u"Max(Day), Min(Day)"}), value_mismatch(0));
    call(table, u"Clear");
    EXPECT_TRUE(call(table, u"Total", {u"CountDistinct(Day)"}).equals(0));
    EXPECT_TRUE(call(table, u"Total", {u"Max(Day)"}).isUndefined());
    EXPECT_EQ(call(table, u"Total", {u"List(Day)"}).query<IValueSequence>()->count(), 0U);
    EXPECT_TRUE(call(table, u"Group", {u"", u"Count()", true}).query<IValueTable>()->rowCount() == 0);

    const GenericValue tree = make(u"ValueTree");
    call(property(tree, u"Columns"), u"Add", {u"N"});
    const GenericValue top = call(property(tree, u"Rows"), u"Add");
    call(top, u"Set", {0, 1});
    call(call(property(top, u"Rows"), u"Add"), u"Set", {0, 7});
    EXPECT_TRUE(call(property(tree, u"Rows"), u"Total", {u"Max(N)", true}).equals(7));
    EXPECT_TRUE(call(property(tree, u"Rows"), u"Total", {u"Max(N)"}).equals(1));
}

TEST_F(Summaries, TotalsStandBeforeWhatTheyAddUp) {
    const GenericValue totals = call(sales(), u"Group", {u"Region, Product", u"Sum(Price)", true});
    EXPECT_EQ(columns(totals), u"Level,Region,Product,Price,");
    EXPECT_EQ(content(totals),
              u"0,,,6.2;1,North,,3.2;2,North,apple,1.2;2,North,pear,2;1,South,,3;2,South,pear,3;"
              u"2,South,apple,;");
    expect_described(totals);
    EXPECT_EQ(columns(call(sales(), u"Group", {u"Region", u"Count()", u"Depth"})), u"Depth,Region,Count,");
}

TEST_F(Summaries, HaveRoomForExactTotals) {
    std::mt19937_64 random(5);
    for (const bool typed : {true, false}) {
        const auto table = create_value_table();
        TypeDomain price(kNumberType);
        price.setNumericQualifiers(NumericQualifiers(20, 2));
        table->addColumn(u"Key");
        table->addColumn(u"Price", typed ? price : TypeDomain());
        std::vector<Numeric> sums(3);
        std::vector<std::int64_t> counts(3);
        for (int i = 0; i < 400; ++i) {
            const std::size_t key = random() % 3;
            Numeric number = Numeric::fromScaled(static_cast<std::int64_t>(random() >> 2), 2);
            if (!typed && i % 50 == 7)
                number *= Numeric(10).pow(30);
            const Value cells[] = {key, Value(number)};
            table->appendRow(cells);
            sums[key] += number;
            ++counts[key];
        }
        const auto grouped = group(*table, {u"Key"}, {sum(u"Price", u"Sum"), average(u"Price", u"Average")});
        const std::vector<wstring> order = {u"Key"};
        add_windows(*table, {running_total(u"Price", u"Running"), share(u"Price", u"Share")}, order);
        for (std::size_t row = 0; row < 3; ++row) {
            const auto key = static_cast<std::size_t>(*grouped->get(row, 0).asSmallWhole());
            EXPECT_EQ(grouped->get(row, 1), GenericValue(sums[key]));
            EXPECT_EQ(grouped->get(row, 2), GenericValue(sums[key] / Numeric(counts[key])));
        }
        std::vector<Numeric> running(3);
        for (std::size_t row = 0; row < table->rowCount(); ++row) {
            const auto key = static_cast<std::size_t>(*table->get(row, 0).asSmallWhole());
            const Numeric number = *table->get(row, 1).asNumeric();
            running[key] += number;
            ASSERT_EQ(table->get(row, 2), GenericValue(running[key]));
            ASSERT_EQ(table->get(row, 3), GenericValue(number / sums[key]));
        }
        expect_described(GenericValue(grouped.query<IValue>()));
        expect_described(GenericValue(table.query<IValue>()));
    }
}

TEST_F(Summaries, EmptyCellsTakeNoPart) {
    const GenericValue table =
        table_of(u"A", {{GenericValue()}, {Value::null()}, {u"x"}, {Value::null()}, {u"a"}, {true}});
    EXPECT_EQ(
        content(call(table, u"Group",
                     {u"", u"Count() As N, Count(A) As F, CountDistinct(A) As D, Min(A) As L, Max(A) As M, "
                           u"First(A) As B, Last(A) As E"})),
        u"6,3,3,Yes,x,x,Yes;");
    call(table, u"FillValues", {Value::null()});
    EXPECT_EQ(content(call(table, u"Group", {u"", u"Count(A) As F, Min(A) As L, Last(A) As E"})), u"0,,;");
}

TEST_F(Summaries, PivotNamesColumnsByTheirValues) {
    const GenericValue table = table_of(u"Who,What,N", {{u"a", u"North-East", 1},
                                                        {u"b", u"2024", 2},
                                                        {u"a", u"Who", 3},
                                                        {u"a", u"2024", 4},
                                                        {u"b", GenericValue(), 5}});
    const GenericValue pivoted = call(table, u"Pivot", {u"Who", u"What", u"Sum(N)"});
    EXPECT_EQ(columns(pivoted), u"Who,Empty,_2024,North_East,Who_2,");
    EXPECT_EQ(content(pivoted), u"a,,4,1,3;b,5,2,,;");
    EXPECT_EQ(*pivoted.query<IValueTable>()->column(3).title.find(Locale()), u"North-East");
    EXPECT_EQ(columns(call(table, u"повернуть", {u"", u"What", u"Count() As C, Max(N) As M"})),
              u"Empty_C,Empty_M,_2024_C,_2024_M,North_East_C,North_East_M,Who_C,Who_M,");
    EXPECT_EQ(refusal(table, u"Pivot", {u"Who", u"What", u"Sum(N)", 3}),
              message_text("IDS_VT_PIVOT_COLUMNS", {u"What", u"3"}));
    EXPECT_EQ(refusal(table, u"Pivot", {u"Who", u"What", u""}), value_mismatch(2));
    expect_described(pivoted);
    const GenericValue back = call(pivoted, u"Unpivot", {u"_2024, Who_2", u"Key", u"Sum"});
    EXPECT_EQ(columns(back), u"Who,Empty,North_East,Key,Sum,");
    EXPECT_EQ(content(back), u"a,,1,_2024,4;a,,1,Who_2,3;b,5,,_2024,2;");
    EXPECT_EQ(
        walk(call(pivoted, u"ПовернутьОбратно", {u"_2024, Who_2", GenericValue(), GenericValue(), true}))
            .size(),
        4U);
    EXPECT_EQ(refusal(pivoted, u"Unpivot", {u"_2024", u"Who"}), twice(u"Who"));
    expect_described(back);
}

TEST_F(Summaries, WindowsOfDatesAndTexts) {
    GenericValue table = sales();
    call(table, u"AddWindow",
         {u"Difference(Day) As Seconds, Lag(Product, 2) As Before, Lead(Product) As Behind"});
    EXPECT_EQ(content(call(table, u"Copy", {GenericValue(), u"Seconds, Before, Behind"})),
              u",,pear;86400,,pear;,apple,apple;,pear,;");
    table = sales();
    call(table, u"ДобавитьОкно",
         {u"НарастающийИтог(Price) Как Cum, Ранг() Как Place, НомерСтроки()", u"Region", u"Price Убыв"});
    EXPECT_EQ(content(call(table, u"Copy", {GenericValue(), u"Cum, Place, НомерСтроки"})),
              u"3.2,2,2;3,1,1;2,1,1;3,2,2;");
    expect_described(table);
}

TEST_F(Summaries, RefuseWhatIsWrongAndChangeNothing) {
    const GenericValue table = sales();
    const wstring before = text(table);
    const auto malformed = [](const wchar* item) { return message_text("IDS_VT_CALL_MALFORMED", {item}); };
    const struct {
        const wchar* method;
        Arguments arguments;
        wstring message;
    } cases[] = {
        {u"Group", {u"Region", u"Median(Price)"}, message_text("IDS_VT_AGGREGATE_UNKNOWN", {u"Median"})},
        {u"Group", {u"Region", u"Sum(Cost)"}, unknown_column(u"Cost")},
        {u"Group", {u"Nowhere", u"Count()"}, unknown_column(u"Nowhere")},
        {u"Group",
         {u"Regoin", u"Count()"},
         message_text("IDS_EXPRESSION_COLUMN_NEAR", {u"Regoin", u"Region"})},
        {u"Group", {u"Region, region", u"Count()"}, twice(u"region")},
        {u"Group", {u"[Region], Upper(Product) As P, Region", u"Count()"}, twice(u"Region")},
        {u"Group", {u"Region As P, Product As P", u"Count()"}, twice(u"P")},
        {u"Group",
         {u"Upper(Product)", u"Count()"},
         message_text("IDS_VT_COLUMN_UNNAMED", {u"Upper(Product)"})},
        {u"Group", {u"Region", u"Count() As Region"}, twice(u"Region")},
        {u"Group", {u"Region", u"Sum(Price), Max(Price)"}, twice(u"Price")},
        {u"Group", {u"", u""}, message_text("IDS_VT_GROUPBY_NO_COLUMN_ERROR")},
        {u"Group",
         {u"Region", u"Sum(Product)"},
         message_text("IDS_VT_TOTAL_OF_TEXTS", {u"Product", u"apple", u"1"})},
        {u"Group", {u"Region", u"Count(), Sum()"}, malformed(u"Sum()")},
        {u"Group", {u"Region", u"Sum(Price) * 2 As Twice"}, malformed(u"Sum(Price) * 2")},
        {u"Group", {u"Region", u"Sum(Price * 2)"}, message_text("IDS_VT_COLUMN_UNNAMED", {u"Price * 2"})},
        {u"AddWindow", {u"Lag(Price, many)"}, message_text("IDS_VT_WINDOW_MALFORMED", {u"Lag(Price, many)"})},
        {u"AddWindow", {u"Rank()"}, message_text("IDS_VT_RANK_WITHOUT_ORDER", {u"Rank"})},
        {u"AddWindow", {u"Lag(Day) As Before, Lead(Day) As Price"}, twice(u"Price")},
        {u"AddWindow", {u"Lag(Day) As Before, Lead(Day) As Before"}, twice(u"Before")},
        {u"AddWindow",
         {u"Share(Product)"},
         message_text("IDS_VT_TOTAL_OF_TEXTS", {u"Product", u"apple", u"1"})},
        {u"AddWindow", {u"Sum(Price)"}, message_text("IDS_VT_WINDOW_UNKNOWN", {u"Sum"})},
        {u"AddWindow", {u"Rank()", u"Region", u"Day Up"}, message_text("IDS_VT_SORT_ITEM", {u"Day Up"})},
        {u"AddWindow", {u""}, value_mismatch(0)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(refusal(table, c.method, c.arguments), c.message) << to_utf8(text(c.arguments[0]));
    for (const wchar* wrong :
         {u"Sum(Price", u"Sum(Price) Named X", u"Sum(Price * Product) As X", u"Sum(Pric + 1) As X"}) {
        EXPECT_THROW(call(table, u"Group", {u"Region", wrong}), ExpressionException) << to_utf8(wrong);
        EXPECT_THROW(call(table, u"AddWindow", {wrong}), Exception) << to_utf8(wrong);
    }
    EXPECT_EQ(text(table), before);
}

TEST_F(Summaries, OfExpressions) {
    const GenericValue table = sales();
    const GenericValue grouped = call(table, u"Group",
                                      {u"Region", u"Sum(Price * 10) As Tens, Max(Upper(Product)) As Name, "
                                                  u"CountDistinct(Month(Day)) As Months"});
    EXPECT_EQ(content(grouped), u"North,32,PEAR,1;South,30,PEAR,1;");
    expect_described(grouped);
    EXPECT_TRUE(call(table, u"Total", {u"Max(Price * 10)"}).equals(30));
    EXPECT_EQ(total(*table.query<IValueTable>(), core::min(u"Price + 1")), GenericValue(2.2));
    call(table, u"AddWindow", {u"RunningTotal(Price * 10) As Cum", u"Region"});
    EXPECT_EQ(content(call(table, u"Copy", {GenericValue(), u"Cum"})), u"12;30;32;30;");
}

TEST_F(Summaries, EndWhenTheyAreAskedTo) {
    const GenericValue table = sales();
    const auto rows = table.query<IValueTable>();
    const wstring before = text(table);
    StopSource source;
    source.request();
    const TableWork stopped{.stop = source.token()};
    EXPECT_THROW(static_cast<void>(group(*rows, {u"Region"}, {count()}, {}, stopped)), ThreadDeath);
    EXPECT_THROW(static_cast<void>(pivot(*rows, {}, u"Region", {count()}, 9, stopped)), ThreadDeath);
    EXPECT_THROW(static_cast<void>(unpivot(*rows, {u"Day"}, u"N", u"V", EmptyCells::keep, stopped)),
                 ThreadDeath);
    EXPECT_THROW(add_windows(*rows, {row_number()}, {}, {}, stopped), ThreadDeath);
    EXPECT_EQ(text(table), before);
    std::uint64_t last = 0;
    const TableWork watched{.progress = [&](std::uint64_t done, std::uint64_t all) {
        EXPECT_LE(last, done);
        EXPECT_LE(done, all);
        last = done;
    }};
    EXPECT_EQ(group(*rows, {u"Region"}, {count(), sum(u"Price")}, {}, watched)->rowCount(), 2U);
    EXPECT_NE(last, 0U);
}

TEST_F(Summaries, KeepColumnsOfManyNamesCoded) {
    // The forms that a column may come to have give the same groups: names that repeat late, and all
    // different ones.
    for (const std::uint32_t names : {1000U, 50'000U, 4'000'000'000U}) {
        std::mt19937 random(names);
        const auto table = create_value_table();
        table->addColumn(u"Name");
        table->addColumn(u"N");
        std::vector<std::pair<std::uint32_t, int>> drawn;
        for (int i = 0; i < 30'000; ++i) {
            drawn.emplace_back(random() % names, i);
            const Value cells[] = {Value(u"customer " + string_intto(drawn.back().first)), i};
            table->appendRow(cells);
        }
        const auto grouped = group(*table, {u"Name"}, {sum(u"N"), count(u"Count")});
        std::ranges::stable_sort(drawn, {}, [](const auto& one) { return one.first; });
        std::vector<std::pair<int, std::pair<std::uint32_t, std::int64_t>>> expected; // by first row
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            if (i == 0 || drawn[i].first != drawn[i - 1].first)
                expected.push_back({drawn[i].second, {drawn[i].first, 0}});
            expected.back().second.second += drawn[i].second;
        }
        std::ranges::sort(expected);
        ASSERT_EQ(grouped->rowCount(), expected.size());
        for (std::size_t row = 0; row < expected.size(); ++row) {
            ASSERT_TRUE(
                grouped->get(row, 0).equals(Value(u"customer " + string_intto(expected[row].second.first))));
            ASSERT_TRUE(grouped->get(row, 1).equals(expected[row].second.second));
        }
    }
}

} // namespace
