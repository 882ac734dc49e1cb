// SPDX-License-Identifier: Apache-2.0
// Concerns: the language of conditions, its failures, filters as values, and what takes them.
#include "tests/tables/table_fixture.h"

#include <core/tables/expression.h>
#include <core/tables/filter.h>

#include <algorithm>

namespace {

using namespace script;

class Filters : public TableTest {
  protected:
    /// Rows 0 to 4; Region of the last and Price of the third are not filled.
    static GenericValue sales() {
        return table_of(u"Day,Region,Price,Quantity,Paid",
                        {{Date(2024, 1, 2), u"North", 10, 3, true},
                         {Date(2024, 1, 31, 13), u"Юг", Numeric::fromScaled(1250, 2), 1, false},
                         {Date(2024, 2, 1), u"North", Value(), 2, true},
                         {Date(2025, 2, 3), u"в \"кавычках\"", 99, 0, false},
                         {Date(2025, 12, 31), Value::null(), -5, 7, true}});
    }
    /// The positions of the rows that pass, as "0 2 ".
    static std::string found(const Value& table, const Filter& filter) {
        std::string positions;
        for (const std::size_t position : find_rows(*table.query<IValueTable>(), filter))
            positions += std::to_string(position) + " ";
        return positions;
    }
    struct Failure {
        std::string id;
        std::size_t line = 0;
        std::size_t column = 0;
        std::optional<std::size_t> row = {};
        friend bool operator==(const Failure&, const Failure&) = default;
        friend std::ostream& operator<<(std::ostream& out, const Failure& failure) {
            return out << failure.id << ' ' << failure.line << ':' << failure.column << ' '
                       << (failure.row ? std::to_string(*failure.row) : "-");
        }
    };
    template <class Action>
    static Failure failed(Action action) {
        try {
            action();
        } catch (const ExpressionException& e) {
            return {e.messageId(), e.line(), e.column(), e.row()};
        }
        return {};
    }
    static Failure failed(const Value& table, wstring_view text) {
        return failed([&] { static_cast<void>(found(table, Filter(text))); });
    }
};

TEST_F(Filters, CompareColumnsWhoseScalesLieFarApart) {
    const Numeric large = Numeric::fromString("900000000000000000");
    const Numeric fine = Numeric::fromString("1.000000000000000001");
    const GenericValue table =
        table_of(u"A,B", {{large, fine}, {-large, -fine}, {1, 1}, {1, fine}, {Value(), fine}});
    for (const auto& [condition, positions] : {std::pair(u"A > B", "0 "),
                                               {u"A < B", "1 3 "},
                                               {u"A = B", "2 "},
                                               {u"A <> B", "0 1 3 "},
                                               {u"B < A", "0 "},
                                               {u"B > A", "1 3 "},
                                               {u"B >= A", "1 2 3 "}})
        EXPECT_EQ(found(table, Filter(condition)), positions) << to_utf8(condition);
}

TEST_F(Filters, SpeakBothLanguages) {
    const GenericValue table = sales();
    const std::pair<wstring_view, std::string> conditions[] = {
        {u"", "0 1 2 3 4 "},
        {u"Price > 10", "1 3 "},
        {u"PRICE >= 10 and region = \"North\"", "0 "},
        {u"Price > 10 И НЕ Region = \"Юг\"", "3 "},
        {u"Region В (\"North\", \"Юг\") Или Quantity = 7", "0 1 2 4 "},
        {u"Region Not In (\"North\")", "1 3 "},
        {u"Region = \"в \"\"кавычках\"\"\"", "3 "},
        {u"[Price] Между 10 И 12.5", "0 1 "},
        {u"Price Not Between 0 And 50", "3 4 "},
        {u"Region Подобно \"N%\"", "0 2 "},
        {u"Region Like \"%!\"\"%\" Escape \"!\"", "3 "},
        {u"Region Not Like \"N%\"", "1 3 "},
        {u"Price Is Undefined", "2 "},
        {u"Region Есть Null", "4 "},
        {u"Region Is Not Null And Price Есть Не Неопределено", "0 1 3 "},
        {u"Price = Undefined", "2 "},
        {u"Price <> Неопределено", "0 1 3 4 "},
        {u"Price In (10, Undefined)", "0 2 "},
        {u"Paid", "0 2 4 "},
        {u"Paid = Ложь", "1 3 "},
        {u"Not Paid Or Price < 0", "1 3 4 "},
        {u"Day = '20240201'", "2 "},
        {u"Day Between '20240102' And '20240131235959'", "0 1 "},
        {u"Year(Day) = 2025 And Месяц(Day) = 2", "3 "},
        {u"BegOfMonth(Day) = Date(2024, 1, 1)", "0 1 "},
        {u"Day < Date(\"2024-01-31T12:00:00\")", "0 "},
        {u"Price * Quantity > 12.49", "0 1 "},
        {u"Price % 4 = 2 Or Price - -5 = 0", "0 4 "},
        {u"-Price = 5", "4 "},
        {u"(Price + 1) * 2 / 2 = Price + 1", "0 1 3 4 "},
        {u"Upper(Left(Region, 2)) = \"NO\"", "0 2 "},
        {u"Region + \"!\" = \"Юг!\"", "1 "},
        {u"Coalesce(Price, 0) = 0", "2 "},
        {u"If(Paid, Price, Quantity) = 1", "1 "},
        {u"Max(Price, Quantity * 10) = 30", "0 "},
        {u"Round(Price) = 13 Or Int(Price / 100) = 0 And Abs(Price) = 5", "1 4 "},
        {u"Quantity <> 0 And Price / Quantity > 3", "0 1 "},
        {u"Number(String(Quantity)) = 7", "4 "},
    };
    for (const auto& [condition, rows] : conditions)
        EXPECT_EQ(found(table, condition), rows) << to_utf8(condition);
}

TEST_F(Filters, CompareExactly) {
    const GenericValue table =
        table_of(u"A,B", {{Numeric::parse("0.1").value(), Numeric::parse("0.10000000000000000001").value()},
                          {Numeric::parse("9223372036854775807").value(), 1},
                          {Numeric(10).pow(30), Numeric(10).pow(30)},
                          {Numeric::parse("922337203685477580.7").value(), 10}});
    EXPECT_EQ(found(table, u"A + 0.2 = 0.3"), "0 ");
    EXPECT_EQ(found(table, u"A < B"), "0 ");
    EXPECT_EQ(found(table, u"A > 9223372036854775806.9999"), "1 2 ");
    EXPECT_EQ(found(table, u"A = 1000000000000000000000000000000"), "2 ");
    EXPECT_EQ(found(table, u"A * 10 = 9223372036854775807"), "3 ");
    const GenericValue words = table_of(u"A", {{1}, {Numeric::fromScaled(25, 1)}, {-3}});
    EXPECT_EQ(found(words, u"A > 2.4999"), "1 ");
    EXPECT_EQ(found(words, u"A = 2.55 Or A < -99999999999999999999 Or A > 99999999999999999999"), "");
    EXPECT_EQ(found(words, u"A Between -99999999999999999999 And 99999999999999999999"), "0 1 2 ");
    EXPECT_EQ(found(words, u"A * 9223372036854775807 > 9223372036854775807"), "1 ");
}

TEST_F(Filters, SayWhereTheyFail) {
    const GenericValue table = sales();
    const std::pair<wstring_view, Failure> failures[] = {
        {u"Pric > 10", {messages::kExpressionColumnNear, 1, 1}},
        {u"Paid And\n  Xyz = 1", {messages::kUnknownColumn, 2, 3}},
        {u"Price = \"10\"", {messages::kExpressionCompared, 1, 7}},
        {u"Region > 5", {messages::kExpressionCompared, 1, 8}},
        {u"Day In (1, 2)", {messages::kExpressionCompared, 1, 5}},
        {u"Price", {messages::kExpressionNotCondition, 1, 1}},
        {u"Not Region", {messages::kExpressionNotCondition, 1, 5}},
        {u"Region + 1 = 2", {messages::kExpressionOperands, 1, 8}},
        {u"Price Like \"1%\"", {messages::kExpressionOperands, 1, 7}},
        {u"Yaer(Day) = 2024", {messages::kExpressionFunctionNear, 1, 1}},
        {u"Qwertyuiop(Day) = 2024", {messages::kExpressionFunction, 1, 1}},
        {u"Year() = 2024", {messages::kExpressionArgumentCount, 1, 1}},
        {u"Year(Price) = 2024", {messages::kExpressionArgument, 1, 1, 0}},
        {u"Price / Quantity > 3", {messages::kDivideByZero, 1, 7, 3}},
        {u"Price > &Limit", {messages::kExpressionParameter, 1, 9}},
        {u"Price > 10 Region", {messages::kExpressionExpected, 1, 12}},
        {u"(Price > 10", {messages::kExpressionExpected, 1, 12}},
        {u"Price >", {messages::kExpressionOperand, 1, 8}},
        {u"And", {messages::kExpressionOperand, 1, 1}},
        {u"1 < Price < 3", {messages::kExpressionExpected, 1, 11}},
        {u"Price Not 5", {messages::kExpressionExpected, 1, 11}},
        {u"Region = \"open", {messages::kExpressionOpen, 1, 10}},
        {u"[Region = 1", {messages::kExpressionOpen, 1, 1}},
        {u"Price > 10x", {messages::kExpressionNumber, 1, 9}},
        {u"Day > '2024'", {messages::kExpressionDate, 1, 7}},
        {u"Day > '20241301'", {messages::kExpressionDate, 1, 7}},
        {u"Price ! 5", {messages::kExpressionCharacter, 1, 7}},
        {u"Region Like \"a\" Escape \"ab\"", {messages::kExpressionArgument, 1, 24}},
    };
    for (const auto& [condition, failure] : failures)
        EXPECT_EQ(failed(table, condition), failure) << to_utf8(condition);

    const GenericValue mixed = table_of(u"A", {{1}, {Value()}, {u"text"}});
    EXPECT_EQ(failed(mixed, u"A > 0"), (Failure{messages::kExpressionCompared, 1, 3, 2}))
        << "in the first row that cannot be compared";
    EXPECT_EQ(found(mixed, u"A Is Undefined"), "1 ");
    const wstring deep = wstring(1000, u'(') + u"1" + wstring(1000, u')');
    EXPECT_EQ(failed(table, deep).id, messages::kExpressionDepth);
    wstring wide = u"Price = 0";
    for (int i = 1; i < 5000; ++i)
        wide += u" Or Price = " + string_intto(i);
    EXPECT_EQ(found(table, wide), "0 3 ") << "as many in a row as one likes";
    EXPECT_EQ(failed(table, wstring(2'000'000, u' ') + u"1").id, messages::kExpressionLength);
}

TEST_F(Filters, TakeParameters) {
    const GenericValue table = sales();
    EXPECT_EQ(found(table, Filter(u"Day >= &Begin And Region = &region",
                                  {{u"begin", Date(2024, 2, 1)}, {u"Region", u"North"}})),
              "2 ");
    const Value regions(create_value_array({Value(u"Юг"), Value(u"North")}).query<IValue>());
    EXPECT_EQ(found(table, Filter(u"Region In (&List)", {{u"List", regions}})), "0 1 2 ");
    EXPECT_EQ(found(table, Filter(u"Region Not In &List", {{u"List", regions}})), "3 ");
    const Value none(create_value_array().query<IValue>());
    EXPECT_EQ(found(table, Filter(u"Region In (&List)", {{u"List", none}})), "");
    EXPECT_EQ(found(table, Filter(u"Not Region In (&List)", {{u"List", none}})), "0 1 2 3 4 ");
    EXPECT_EQ(found(table, Filter(u"Price = &Price", {{u"Price", Value()}})), "2 ");
    EXPECT_EQ(found(table, "Region = \"Юг\""), "1 ") << "UTF-8";
    EXPECT_EQ(found(table,
                    Filter::where(u"Price", u"Between", Value(create_value_array({10, 20}).query<IValue>()))),
              "0 1 ");
    EXPECT_EQ(found(table, Filter::where(u"Region", u"not in", regions)), "3 ");
    EXPECT_EQ(failed([] { static_cast<void>(Filter::where(u"A", u"= 1 Or B =", 1)); }).id,
              messages::kExpressionExpected);
    EXPECT_EQ(failed([] { static_cast<void>(Filter::where(u"A = 1 Or B", u"=", 1)); }).id,
              messages::kExpressionOperand);
}

TEST_F(Filters, AreValues) {
    const Filter cheap(u"price<10");
    const Filter north(u"Region = &R", {{u"R", u"North"}});
    EXPECT_EQ((cheap && north && !Filter(u"Paid")).text(), u"price < 10 And Region = \"North\" And Not Paid");
    EXPECT_EQ(((cheap || north) && cheap).text(), u"(price < 10 Or Region = \"North\") And price < 10");
    EXPECT_EQ((Filter() && cheap), cheap);
    EXPECT_TRUE((Filter() || cheap).isEmpty());
    EXPECT_EQ(found(sales(), !Filter()), "");
    EXPECT_EQ(Filter(u"A = -5 И (b Или c) И Day = '20240102' И (x + 1) * 2 > y - (3 - z)").text(),
              u"A = -5 And (b Or c) And Day = '20240102' And (x + 1) * 2 > y - (3 - z)");

    const Value object(create_value_array({1}).query<IValue>());
    const Filter odd(u"[In] = &Object And Type = &Type", {{u"Object", object}, {u"Type", Type(kStringType)}});
    for (const Filter& filter : {cheap, north, odd, Filter(), Filter::where(u"A", u"Like", u"a\"%")}) {
        const GenericValue value = to_value(filter);
        EXPECT_EQ(from_value<Filter>(value), filter);
        if (filter != odd) { // an array is not equal to another one
            EXPECT_TRUE(GenericValue::fromString(text(value)).equals(value)) << to_utf8(filter.text());
        }
        EXPECT_EQ(from_value<Filter>(GenericValue::fromBytes(value.toBytes())).text(), filter.text());
    }
    EXPECT_FALSE(cheap == north);
    EXPECT_TRUE(to_value(cheap).equals(to_value(Filter(u"price < 10"))));
    EXPECT_EQ(to_value(cheap).hashCode(), to_value(Filter(u"price < 10")).hashCode());
}

TEST_F(Filters, AreMadeByScripts) {
    const GenericValue table = sales();
    const auto rows = [&](const GenericValue& filter) { return found(table, from_value<Filter>(filter)); };
    const GenericValue begin = make(u"Structure", {u"Begin", Date(2025, 1, 1)});
    EXPECT_EQ(rows(make(u"Отбор", {u"Day >= &Begin", begin})), "3 4 ");
    EXPECT_EQ(rows(make(u"Filter", {u"Region", u"Юг"})), "1 ");
    EXPECT_EQ(rows(make(u"Filter", {u"Price", u">", 10})), "1 3 ");
    const GenericValue dear = make(u"Filter", {u"Price > 10"});
    EXPECT_EQ(rows(call(dear, u"And", {u"Not Region = \"Юг\""})), "3 ");
    EXPECT_EQ(rows(call(dear, u"Или", {make(u"Structure", {u"Quantity,Paid", 7, true})})), "1 3 4 ");
    EXPECT_EQ(rows(call(dear, u"Not")), "0 4 ");
    EXPECT_EQ(property(dear, u"Текст"), GenericValue(u"Price > 10"));
    EXPECT_EQ(dear.presentation(), u"Price > 10");
    EXPECT_EQ(rows(make(u"Filter")), "0 1 2 3 4 ");
    EXPECT_EQ(failure([&] { static_cast<void>(make(u"Filter", {5})); }), type_mismatch(0));
}

TEST_F(Filters, AreTakenByTables) {
    const GenericValue filter = make(u"Filter", {u"Price > 10"});
    GenericValue table = sales();
    EXPECT_EQ(walk(call(table, u"FindRows", {u"Price > 10"})).size(), 2U);
    EXPECT_EQ(call(call(table, u"Find", {filter}), u"Get", {u"Price"}), Value(Numeric::fromScaled(1250, 2)));
    EXPECT_TRUE(call(table, u"Find", {make(u"Filter", {u"Price > 1000"})}).isUndefined());
    EXPECT_EQ(content(call(table, u"Copy", {filter, u"Region, Price"})), u"Юг,12.5;в \"кавычках\",99;");
    EXPECT_TRUE(call(table, u"Total", {u"Price * Quantity"}).equals(Numeric::fromScaled(750, 2)));
    EXPECT_TRUE(call(call(table, u"Copy", {filter}), u"Total", {u"Quantity"}).equals(1));
    EXPECT_TRUE(call(call(table, u"Copy", {u"Paid"}), u"Total", {u"Max(Price * Quantity)"}).equals(30));
    EXPECT_TRUE(total_rows(*table.query<IValueTable>(), u"Price * Quantity", u"Paid").equals(-5));

    const GenericValue first = call(table, u"Get", {0});
    const GenericValue second = call(table, u"Get", {1});
    const auto loop = table.query<IValueCollection>()->enumerate();
    GenericValue row;
    ASSERT_TRUE(loop->next(row));
    call(table, u"Filter", {u"Price > 10"});
    EXPECT_EQ(content(call(table, u"Copy", {Value(), u"Region"})), u"Юг;в \"кавычках\";");
    EXPECT_EQ(failure([&] { static_cast<void>(property(first, u"Price")); }), unknown_row());
    EXPECT_TRUE(call(table, u"IndexOf", {second}).equals(0)) << "a row that is kept stays this row";
    EXPECT_TRUE(loop->next(row) && row.equals(second)) << "a loop goes on with the rows that are left";
    EXPECT_TRUE(loop->next(row) && !loop->next(row));

    table = sales();
    call(table, u"Delete", {filter});
    call(table, u"Delete", {u"Price Is Undefined"});
    call(table, u"Delete", {0});
    EXPECT_EQ(content(call(table, u"Copy", {Value(), u"Price"})), u"-5;");
    const wstring before = text(table);
    EXPECT_NE(failure<ExpressionException>([&] { call(table, u"Filter", {u"Price = \"a\""}); }), u"");
    EXPECT_NE(failure<ExpressionException>([&] { call(table, u"Delete", {u"Nothing > 1"}); }), u"");
    EXPECT_EQ(text(table), before);
}

TEST_F(Filters, WorkOnTrees) {
    const GenericValue tree = make(u"ValueTree");
    call(property(tree, u"Columns"), u"Add", {u"N"});
    const GenericValue rows = property(tree, u"Rows");
    for (int i = 0; i < 3; ++i) {
        const GenericValue row = call(rows, u"Add");
        call(row, u"Set", {0, i});
        call(call(property(row, u"Rows"), u"Add"), u"Set", {0, 10 * i});
    }
    EXPECT_EQ(walk(call(rows, u"FindRows", {u"N > 0"})).size(), 2U);
    EXPECT_EQ(walk(call(rows, u"FindRows", {u"N > 0", true})).size(), 4U);
}

TEST_F(Filters, AddColumnsThatHoldWhatTheyAreMadeOf) {
    const auto types = [](const std::vector<Value>& cells) {
        const GenericValue table = table_of(u"A", {});
        const auto rows = table.query<IValueTable>();
        for (const Value& cell : cells)
            rows->appendRow({&cell, 1});
        const std::int32_t made = add_column(*rows, u"B", u"A");
        std::vector<GUID> found = rows->column(static_cast<std::size_t>(made)).domain.types();
        std::sort(found.begin(), found.end());
        return found;
    };
    for (const Value& value : {Value(u"text"), Value(1), Value(Date(2024, 2, 29)), Value(true)}) {
        EXPECT_EQ(types({value, value}), std::vector<GUID>{value.type().id()});
        std::vector<GUID> both{value.type().id(), kUndefinedType};
        std::sort(both.begin(), both.end());
        EXPECT_EQ(types({Value(), value}), both);
        EXPECT_EQ(types({value, Value()}), both);
    }
    EXPECT_EQ(types({Value(), Value()}), types({}));
}

TEST_F(Filters, AddColumnsAndOrderRows) {
    const GenericValue table = sales();
    const auto rows = table.query<IValueTable>();
    call(table, u"AddColumn", {u"Sum", u"Price * Quantity"});
    call(table, u"ДобавитьКолонку", {u"Dear", u"Price > &Limit", make(u"Structure", {u"Limit", 11})});
    EXPECT_EQ(content(call(table, u"Copy", {Value(), u"Sum,Dear"})), u"30,No;12.5,Yes;,;0,Yes;-35,No;");
    EXPECT_TRUE(rows->column(5).domain.containsType(kNumberType));
    EXPECT_TRUE(rows->column(6).domain.containsType(kBooleanType));
    const auto order = [&] { return content(call(table, u"Copy", {Value(), u"Sum"})); };
    call(table, u"Sort", {u"Price * -1, Day"});
    EXPECT_EQ(order(), u";0;12.5;30;-35;");
    call(table, u"Sort", {u"Year(Day) Desc, Coalesce(Price, 1000)"});
    EXPECT_EQ(order(), u"-35;0;30;12.5;;");
    sort_rows(*rows, u"Paid, Sum Убыв");
    EXPECT_EQ(order(), u"12.5;0;30;-35;;");
    const std::int32_t id = add_column(*rows, u"Month", u"BegOfMonth(Day)");
    EXPECT_TRUE(rows->get(0, id).equals(Date(2024, 1, 1)));
    EXPECT_EQ(rows->column(7).domain, TypeDomain(kDateType));
    EXPECT_EQ(failure([&] { add_column(*rows, u"Sum", u"1"); }), twice(u"Sum"));
    EXPECT_EQ(content(call(sales(), u"Group", {u"Paid", u"Sum(Price * Quantity) As Sum"})),
              u"Yes,-5;No,12.5;");
    EXPECT_EQ(rows->columnCount(), 8U);
}

} // namespace
