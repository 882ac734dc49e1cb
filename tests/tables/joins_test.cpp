// SPDX-License-Identifier: Apache-2.0
// Concerns: joins and sets as scripts and programs call them: names, types, order, refusals, progress and
// stop.
#include "tests/tables/table_fixture.h"

namespace {

using namespace script;

class Joins : public TableTest {
  protected:
    static InterfacePtr<IValueTable> rows_of(const GenericValue& table) { return table.query<IValueTable>(); }
    const GenericValue sales_ = table_of(u"Product,Region,Price", {{1, u"North", 10},
                                                                   {2, u"South", 20},
                                                                   {GenericValue(), u"North", 5},
                                                                   {1, u"South", 7},
                                                                   {4, u"West", 1}});
    const GenericValue products_ =
        table_of(u"Code,Name", {{2, u"pear"}, {1, u"apple"}, {GenericValue(), u"?"}, {3, u"fig"}});
    static GenericValue kind(std::int32_t number) {
        return script_enumeration(JoinKind::inner)->value(number);
    }
};

TEST_F(Joins, HaveEveryKindInBothLanguages) {
    const auto joined = [&](std::int32_t number) {
        return content(call(sales_, u"Join", {products_, u"Product = Code", GenericValue(), kind(number)}));
    };
    EXPECT_EQ(joined(0), u"1,North,10,apple;2,South,20,pear;1,South,7,apple;");
    EXPECT_EQ(joined(1), u"1,North,10,apple;2,South,20,pear;,North,5,;1,South,7,apple;4,West,1,;");
    EXPECT_EQ(joined(2),
              u"1,North,10,apple;2,South,20,pear;,North,5,;1,South,7,apple;4,West,1,;,,,?;3,,,fig;");
    EXPECT_EQ(joined(3), u"1,North,10;2,South,20;1,South,7;");
    EXPECT_EQ(joined(4), u",North,5;4,West,1;");
    EXPECT_EQ(
        content(call(sales_, u"Соединить", {products_, u" product=CODE ", u"Name Как Товар, Code As K"})),
        u"1,North,10,apple,1;2,South,20,pear,2;1,South,7,apple,1;");
    EXPECT_EQ(content(call(sales_, u"Join", {sales_, u"Product, Region, Price", u""})),
              u"1,North,10;2,South,20;1,South,7;4,West,1;")
        << "with itself";
    EXPECT_EQ(content(sales_), u"1,North,10;2,South,20;,North,5;1,South,7;4,West,1;") << "unchanged";
}

TEST_F(Joins, RefuseWhatWouldMatchNothing) {
    const auto failed = [&](const GenericValue& other, const wchar* on, GenericValue columns = {},
                            std::int32_t number = 0) {
        return failure([&] { call(sales_, u"Join", {other, on, columns, kind(number)}); });
    };
    const GenericValue texts = table_of(u"Code,Name", {{GenericValue(), u"?"}, {u"1", u"apple"}});
    EXPECT_EQ(failed(texts, u"Product = Code"),
              u"The columns “Product” and “Code” hold values of the types Number and String, which are never "
              u"equal. Give both columns one type first.");
    EXPECT_EQ(failed(table_of(u"Code", {{1}, {u"x"}}), u"Product = Code"),
              message_text("IDS_VT_NEVER_EQUAL", {u"Product", u"Code", u"Number", u"String"}));
    EXPECT_EQ(failed(table_of(u"Code", {}), u"Product = Code"), u"") << "an empty table has no types";
    for (const wchar* on : {u"", u"Product =", u"Product = Code = Name", u"Product = Code,"})
        EXPECT_EQ(failed(products_, on), message_text("IDS_VT_JOIN_CONDITION", {on}));
    EXPECT_EQ(failed(products_, u"Product"), unknown_column(u"Product"));
    EXPECT_EQ(failed(products_, u"Product = Code", u"Nam"),
              unknown_column(u"Nam") + u" Did you mean “Name”?");
    EXPECT_EQ(failed(products_, u"Product = Code", u"Name As region"),
              message_text("IDS_VT_JOIN_NAME_TAKEN", {u"region"}));
    EXPECT_EQ(failed(products_, u"Product = Code", u"Name, Name"),
              message_text("IDS_VT_JOIN_NAME_TAKEN", {u"Name"}));
    EXPECT_EQ(failed(products_, u"Product = Code", u"Name As 1"),
              message_text("IDS_VT_COLUMNCODE_ERROR", {u"1"}));
    EXPECT_EQ(failed(sales_, u"Product"), message_text("IDS_VT_JOIN_NAME_TAKEN", {u"Region"}));
    EXPECT_EQ(failed(products_, u"Product = Code", u"Name", 3),
              message_text("IDS_VT_JOIN_ADDS_NOTHING", {u"Name"}));
    EXPECT_EQ(failed(u"Product", u"Product = Code"), type_mismatch(0));
    EXPECT_EQ(failure([&] {
                  call(sales_, u"Join", {products_, u"Product = Code", u"Name", 1});
              }),
              type_mismatch(3));
}

TEST_F(Joins, DescribeWhatTheirColumnsHold) {
    const auto left = create_value_table();
    left->addColumn(u"Key", TypeDomain(kNumberType));
    left->addColumn(u"Own", TypeDomain(kStringType), LocalWString(), 7);
    const auto right = create_value_table();
    TypeDomain number(kNumberType);
    number.setNumericQualifiers(NumericQualifiers(5, 2));
    right->addColumn(u"Id", number);
    right->addColumn(u"Any");
    right->addColumn(u"Day", TypeDomain(kDateType));
    const auto joined = [&](JoinKind kind) {
        return core::join(*left, *right, u"Key = Id", std::nullopt, kind);
    };
    const auto inner = joined(JoinKind::inner);
    EXPECT_EQ(inner->column(0).domain, TypeDomain(kNumberType));
    EXPECT_EQ(inner->column(1).width, 7);
    EXPECT_EQ(inner->column(3).domain, TypeDomain(kDateType));
    const auto outer = joined(JoinKind::left);
    EXPECT_EQ(outer->column(1).domain, TypeDomain(kStringType));
    EXPECT_TRUE(outer->column(2).domain.isEmpty());
    EXPECT_EQ(outer->column(3).domain, (TypeDomain{kDateType, kUndefinedType}));
    const auto full = joined(JoinKind::full);
    EXPECT_EQ(full->column(0).domain, TypeDomain(kNumberType)) << "rows of the other table have a key, too";
    EXPECT_EQ(full->column(1).domain, (TypeDomain{kStringType, kUndefinedType}));
}

TEST_F(Joins, CanBeWatchedAndStopped) {
    const auto left = create_value_table();
    left->addColumn(u"A");
    for (int i = 0; i < 300'000; ++i) {
        const Value cells[] = {i % 1000};
        left->appendRow(cells);
    }
    std::vector<std::uint64_t> told;
    const TableWork work{.progress = [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_LE(done, total);
        told.push_back(done);
    }};
    const auto all = core::distinct(*left, {}, work);
    EXPECT_EQ(all->rowCount(), 1000U);
    told.clear();
    EXPECT_EQ(core::join(*left, *all, u"A", u"", JoinKind::inner, work)->rowCount(), 300'000U);
    EXPECT_GE(told.size(), 6U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    StopSource source;
    const TableWork stopped{.stop = source.token(), .progress = [&](std::uint64_t done, std::uint64_t) {
                                if (done > 200'000)
                                    source.request();
                            }};
    EXPECT_THROW(static_cast<void>(core::join(*left, *all, u"A", u"", JoinKind::inner, stopped)),
                 ThreadDeath);
    EXPECT_THROW(static_cast<void>(core::unite(*left, *left, EqualRows::all, stopped)), ThreadDeath);
    EXPECT_EQ(left->rowCount(), 300'000U);
}

TEST_F(Joins, RefuseMoreRowsThanATableHolds) {
    const auto same = create_value_table();
    same->addColumn(u"A");
    const auto refused = [&](wstring_view rows) {
        EXPECT_EQ(failure([&] { static_cast<void>(core::join(*same, *same, u"A")); }),
                  message_text("IDS_VT_TOO_MANY_ROWS", {wstring(rows)}));
    };
    const Value cells[] = {1};
    while (same->rowCount() < 40'000)
        same->appendRow(cells);
    if (sizeof(std::size_t) == 4) // there are ids for them, but no room
        refused(u"1600000000");
    while (same->rowCount() < 70'000)
        same->appendRow(cells);
    refused(u"4900000000");
}

using Sets = Joins;

TEST_F(Sets, AreRowsByTheNamesOfTheirColumns) {
    const GenericValue a = table_of(u"N,T", {{1, u"a"}, {2, u"b"}, {1, u"a"}, {GenericValue(), u"c"}});
    const GenericValue b = table_of(u"t,n", {{u"b", 2}, {u"c", GenericValue()}, {u"d", 4}});
    EXPECT_EQ(content(call(a, u"Union", {b})), u"1,a;2,b;,c;4,d;");
    EXPECT_EQ(content(call(a, u"Объединить", {b, true})), u"1,a;2,b;1,a;,c;2,b;,c;4,d;");
    EXPECT_EQ(content(call(a, u"Except", {b})), u"1,a;");
    EXPECT_EQ(content(call(a, u"Пересечь", {b})), u"2,b;,c;");
    EXPECT_EQ(content(call(a, u"Distinct")), u"1,a;2,b;,c;");
    EXPECT_EQ(content(call(a, u"Различные", {u"T"})), u"a;b;c;");
    EXPECT_EQ(content(call(a, u"Except", {call(a, u"CopyColumns")})), u"1,a;2,b;,c;");

    const auto differ = [&](const wchar* column) { return message_text("IDS_VT_COLUMNS_DIFFER", {column}); };
    EXPECT_EQ(failure([&] { call(a, u"Union", {table_of(u"N", {})}); }), differ(u"T"));
    EXPECT_EQ(failure([&] { call(a, u"Except", {table_of(u"N,T,More", {})}); }), differ(u"More"));
    EXPECT_EQ(failure([&] { call(a, u"Distinct", {u"Q"}); }), unknown_column(u"Q"));
    EXPECT_EQ(failure([&] { call(a, u"Distinct", {u"T,t"}); }), twice(u"t"));
    EXPECT_EQ(failure([&] {
                  call(a, u"Except", {table_of(u"N,T", {{u"1", u"a"}})});
              }),
              message_text("IDS_VT_NEVER_EQUAL", {u"N", u"N", u"Number", u"String"}));
    EXPECT_EQ(content(call(a, u"Except", {table_of(u"N,T", {{u"1", u"a"}, {2, u"b"}})})), u"1,a;,c;")
        << "values of several types, some of which can be equal";
    EXPECT_EQ(content(call(make(u"ValueTable"), u"Union", {make(u"ValueTable")})), u"");
}

TEST_F(Sets, AdmitWhatEitherTableDoes) {
    const auto a = create_value_table();
    a->addColumn(u"N", TypeDomain(kNumberType));
    const auto b = create_value_table();
    b->addColumn(u"N", TypeDomain(kStringType));
    const Value number[] = {1};
    const Value text[] = {u"1"};
    a->appendRow(number);
    b->appendRow(text);
    const auto both = unite(*a, *b);
    EXPECT_EQ(both->column(0).domain, (TypeDomain{kNumberType, kStringType}));
    EXPECT_EQ(both->rowCount(), 2U) << "1 and the text 1 differ";
    EXPECT_TRUE(both->get(1, 0).equals(u"1"));
}

} // namespace
