// SPDX-License-Identifier: Apache-2.0
// Concerns: filters, searches and totals, with and without indexes; grouping.
#include "tests/tables/table_fixture.h"

#include <algorithm>
#include <map>
#include <random>

namespace {

using namespace script;

class TableQueries : public TableTest {};

/// Counts how often it is compared.
class Compared : public IValueImpl {
  public:
    using Interfaces = InterfaceList<IValue>;
    static inline int comparisons;

    explicit Compared(int number) noexcept : number_(number) {}
    IType* getType() const noexcept override { return Type(kValueArrayType).get(); }
    bool isEqual(const IValue* other) const noexcept override {
        ++comparisons;
        return this == other;
    }
    std::int32_t hashCode() const noexcept override { return number_; }

  private:
    int number_;
};

TEST_F(TableQueries, FindLooksIntoAnIndex) {
    constexpr int kRows = 2000;
    const GenericValue table = table_of(u"A,B", {});
    std::vector<GenericValue> values;
    for (int i = 0; i < kRows; ++i) {
        values.push_back(GenericValue(make_object<Compared>(i / 2)));
        const Value cells[] = {values.back(), i % 2 == 0 ? Value() : Value(i)};
        table.query<IValueTable>()->appendRow(cells);
    }
    call(property(table, u"Indexes"), u"Add", {u"A"});
    call(property(table, u"Indexes"), u"Add", {u"A,B"});
    const auto find = [&](const GenericValue& value, const wchar* columns) {
        Compared::comparisons = 0;
        const GenericValue row = call(table, u"Find", {value, columns});
        return row.isUndefined() ? -1 : static_cast<int>(*call(table, u"IndexOf", {row}).asSmallWhole());
    };
    static_cast<void>(find(values[1500], u"A")); // builds the index
    for (const int i : {0, 63, 64, 1001, kRows - 1}) {
        EXPECT_EQ(find(values[static_cast<std::size_t>(i)], u"A"), i);
        EXPECT_LT(Compared::comparisons, 100) << i;
    }
    EXPECT_EQ(find(make_object<Compared>(7), u"A"), -1);
    EXPECT_LT(Compared::comparisons, 100);
    EXPECT_EQ(find(1001, u"B,A"), 1001) << "what has no index of its own is looked for row by row";
    EXPECT_EQ(find(GenericValue(), u"A,B"), 0);
    call(table, u"Move", {1500, -1400});
    EXPECT_EQ(find(values[1500], u"A"), 100);
    call(table, u"FillValues", {values[3], u"A"});
    EXPECT_EQ(find(values[3], u"A,B"), 0) << "the first of many";
}

TEST_F(TableQueries, AnIndexHoldsManyKeysWhileRowsGo) {
    constexpr int kKeys = 10'000;
    const GenericValue table = table_of(u"Number,Text", {});
    const auto rows = table.query<IValueTable>();
    std::vector<int> keys;
    for (int i = 0; i < kKeys; ++i) {
        keys.push_back(i * 7919 % kKeys - kKeys / 2);
        const Value cells[] = {keys.back(), Value(u"key " + string_intto(keys.back()))};
        rows->appendRow(cells);
    }
    for (const wchar* columns : {u"Number", u"Text"})
        call(property(table, u"Indexes"), u"Add", {columns});
    const auto expect_all_found = [&] {
        std::map<int, std::size_t> positions;
        for (std::size_t i = 0; i < keys.size(); ++i)
            positions[keys[i]] = i;
        for (int key = -kKeys / 2; key < kKeys / 2; ++key) {
            const auto position = positions.find(key);
            const VTFindParam byNumber[] = {{0, key}};
            const VTFindParam byText[] = {{1, Value(u"key " + string_intto(key))}};
            std::vector<std::size_t> expected;
            if (position != positions.end())
                expected.push_back(position->second);
            ASSERT_EQ(rows->IValueTableBaseRO_findRows(byNumber), expected) << key;
            ASSERT_EQ(rows->IValueTableBaseRO_findRows(byText), expected) << key;
        }
    };
    expect_all_found();
    std::mt19937 random(23);
    for (int i = 0; i < kKeys / 2; ++i) {
        const std::size_t position = random() % keys.size();
        rows->removeRow(position);
        keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(position));
    }
    expect_all_found();
}

TEST_F(TableQueries, IndexesAreListedWalkedAndDropped) {
    const GenericValue table = table_of(u"A,B", {{1, 2}});
    const GenericValue indexes = property(table, u"Indexes");
    const GenericValue first = call(indexes, u"Add", {u"B, A"});
    const GenericValue second = call(indexes, u"Add", {u"A"});
    EXPECT_EQ(walk(indexes), (std::vector{first, second}));
    EXPECT_TRUE(call(indexes, u"Get", {1}).equals(second));
    EXPECT_EQ(first.presentation(), u"Collection index");
    EXPECT_EQ(indexes.presentation(), u"Collection indexes");
    const GenericValue columns = property(table, u"Columns");
    EXPECT_EQ(walk(first), (std::vector{property(columns, u"B"), property(columns, u"A")}));
    EXPECT_TRUE(call(first, u"Count").equals(2));
    EXPECT_TRUE(call(first, u"Get", {1}).equals(property(columns, u"A")));
    EXPECT_EQ(failure([&] { call(first, u"Get", {2}); }), bad_index());
    call(indexes, u"Delete", {first});
    EXPECT_EQ(walk(indexes), std::vector{second});
    EXPECT_TRUE(call(first, u"Count").equals(0));
    EXPECT_TRUE(walk(first).empty());
    EXPECT_EQ(failure([&] { call(indexes, u"Delete", {first}); }),
              message_text("IDS_VT_UNKNOWN_INDEX_ERROR"));
    EXPECT_EQ(failure([&] { call(indexes, u"Delete", {u"A"}); }), type_mismatch(0));
    call(indexes, u"Clear");
    EXPECT_TRUE(call(indexes, u"Count").equals(0));
    EXPECT_EQ(failure([&] { call(second, u"Get", {0}); }), bad_index());
}

TEST_F(TableQueries, SumsHaveRoomForAll) {
    std::mt19937_64 random(31);
    for (const std::uint32_t scale : {0U, 2U}) {
        const GenericValue table = table_of(u"Key,Sum", {});
        const auto rows = table.query<IValueTable>();
        Numeric all;
        std::map<int, Numeric> sums;
        for (int i = 0; i < 500; ++i) {
            // Close to the largest word that a cell holds, more of them above zero than below.
            auto word = static_cast<std::int64_t>(random() >> 2 | std::uint64_t{1} << 62);
            word = random() % 4 == 0 ? -word : word;
            const int key = static_cast<int>(random() % 7) - 3;
            const Numeric number = Numeric::fromScaled(word, scale);
            const Value cells[] = {key, Value(number)};
            rows->appendRow(cells);
            all += number;
            sums[key] += number;
        }
        EXPECT_EQ(call(table, u"Total", {u"Sum"}), GenericValue(all));
        call(table, u"GroupBy", {u"Key", u"Sum"});
        ASSERT_EQ(rows->rowCount(), sums.size());
        for (std::size_t i = 0; i < sums.size(); ++i)
            EXPECT_EQ(rows->get(i, 1), GenericValue(sums[static_cast<int>(*rows->get(i, 0).asSmallWhole())]));
    }
}

TEST_F(TableQueries, ATotalOfNothingIsZeroInAColumnOfNumbers) {
    const GenericValue table = table_of(u"Any", {});
    const GenericValue columns = property(table, u"Columns");
    call(columns, u"Add", {u"N", description(u"Number")});
    call(columns, u"Add", {u"NS", description(u"Number, String")});
    call(columns, u"Add", {u"S", description(u"String")});
    for (const bool empty : {true, false}) {
        EXPECT_TRUE(call(table, u"Total", {u"N"}).equals(0));
        for (const wchar* column : {u"Any", u"NS", u"S"})
            EXPECT_TRUE(call(table, u"Total", {column}).isUndefined()) << to_utf8(column);
        if (empty)
            call(table, u"Add");
    }
}

TEST_F(TableQueries, RefuseToTotalWhatIsNoNumber) {
    const struct {
        GenericValue table;
        const char* id;
        const wchar* named; ///< what keeps the column from being one of numbers
        const wchar* row;
    } cases[] = {
        {table_of(u"Key,Price", {{1, u"1.5"}, {2, u""}, {1, u"abc"}}), messages::kTotalOfTexts, u"abc", u"3"},
        {table_of(u"Key,Price", {{1, 1.5}, {2, u" "}, {1, u"7"}}), messages::kTotalOfMixed, u"7", u"3"},
        {table_of(u"Key,Price", {{1, true}, {2, u"abc"}, {1, 1}}), messages::kTotalOfMixed, u"abc", u"2"},
        {table_of(u"Key,Price", {{1, GenericValue()}, {2, 1}, {1, true}}), messages::kTotalOfMixed, u"Yes",
         u"3"},
    };
    for (const auto& c : cases) {
        const wstring before = content(c.table);
        for (const bool grouped : {false, true}) {
            try {
                if (grouped)
                    call(c.table, u"GroupBy", {u"Key", u"Price"});
                else
                    call(c.table, u"Total", {u"Price"});
                FAIL() << to_utf8(before);
            } catch (const ContextException& e) {
                EXPECT_EQ(std::string_view(e.messageId()), c.id);
                EXPECT_EQ(e.parameters()[1], c.named);
                EXPECT_EQ(e.parameters()[2], c.row);
            }
        }
        EXPECT_EQ(content(c.table), before);
    }
    const GenericValue others = table_of(u"Key,Price", {{1, true}, {2, u"x"}});
    EXPECT_TRUE(call(others, u"Total", {u"Price"}).isUndefined()) << "no number is left out";
}

TEST_F(TableQueries, AColumnOfTotalsHoldsItsTotals) {
    const GenericValue table = make(u"ValueTable");
    const auto rows = table.query<IValueTable>();
    TypeDomain price(kNumberType);
    price.setNumericQualifiers(NumericQualifiers(5, 2, true));
    TypeDomain mixed({kNumberType, kStringType});
    mixed.setNumericQualifiers(NumericQualifiers(3, 0));
    mixed.setStringQualifiers(StringQualifiers(4, true));
    rows->addColumn(u"Key", price);
    rows->addColumn(u"Price", price);
    rows->addColumn(u"Mixed", mixed);
    rows->addColumn(u"Text", TypeDomain(kStringType));
    for (int i = 0; i < 10; ++i) {
        const Value cells[] = {i % 2, 999.99, i % 2 == 0 ? Value() : Value(-999), u""};
        rows->appendRow(cells);
    }
    call(table, u"GroupBy", {u"Key", u"Price, Mixed, Text"});
    EXPECT_EQ(content(table), u"0,4999.95,,;1,4999.95,-4995,;");
    EXPECT_TRUE(rows->get(0, 2).isUndefined());
    EXPECT_TRUE(rows->get(0, 3).equals(u"")) << "the default where there is no sum";
    for (std::size_t i = 0; i < rows->columnCount(); ++i) {
        for (std::size_t row = 0; row < rows->rowCount(); ++row) {
            const GenericValue cell = rows->get(row, rows->column(i).id);
            EXPECT_TRUE(rows->column(i).domain.adjust(cell).equals(cell)) << i;
        }
    }
    EXPECT_EQ(rows->column(0).domain, price);
    EXPECT_TRUE(rows->column(1).domain.numericQualifiers().nonnegative());
    EXPECT_EQ(rows->column(2).domain.stringQualifiers(), mixed.stringQualifiers());
    EXPECT_EQ(text(GenericValue::fromString(text(table))), text(table));
}

TEST_F(TableQueries, GroupingLeavesColumns) {
    const GenericValue table = table_of(u"A,B", {{1, 2}});
    const wstring before = text(table);
    for (const Arguments& nothing : {Arguments{u""}, Arguments{u" ", u" "}})
        EXPECT_EQ(failure([&] { call(table, u"GroupBy", Arguments(nothing)); }),
                  message_text("IDS_VT_GROUPBY_NO_COLUMN_ERROR"));
    EXPECT_EQ(text(table), before);
}

TEST_F(TableQueries, MeetEveryConditionOfAFilter) {
    const GenericValue table = table_of(u"A,B", {{1, 1}, {1, 2}, {2, 2}});
    const auto rows = table.query<IValueTable>();
    const VTFindParam twice[] = {{0, 1}, {1, 2}, {0, 1}};
    const VTFindParam never[] = {{0, 1}, {1, 2}, {0, 2}};
    for (const wchar* index : {u"", u"A", u"B", u"B, A"}) {
        if (*index != u'\0')
            call(property(table, u"Indexes"), u"Add", {index});
        EXPECT_EQ(rows->IValueTableBaseRO_findRows(twice), std::vector<std::size_t>{1});
        EXPECT_TRUE(rows->IValueTableBaseRO_findRows(never).empty()) << to_utf8(index);
    }
}

TEST_F(TableQueries, AreGroupedInOrderOfFirstAppearance) {
    const auto sales = [] {
        return table_of(u"City,Item,Sum,Note", {{u"B", 1, 10.5, u"n"},
                                                {u"A", 1, 1, u"n"},
                                                {u"B", 2, GenericValue(), u"n"},
                                                {u"B", 1, Numeric(10).pow(30), u"n"},
                                                {u"C", GenericValue(), GenericValue(), u"n"}});
    };
    GenericValue table = sales();
    const GenericValue row = call(table, u"Get", {0});
    call(property(table, u"Indexes"), u"Add", {u"Note"});
    call(property(table, u"Indexes"), u"Add", {u"City"});
    call(table, u"GroupBy", {u"Item, City", u"Sum"});
    EXPECT_EQ(content(table), u"1,B,1000000000000000000000000000010.5;1,A,1;2,B,;,C,;");
    EXPECT_EQ(failure([&] { return property(row, u"City"); }), unknown_row());
    EXPECT_TRUE(call(property(table, u"Indexes"), u"Count").equals(1)) << "that of a dropped column is gone";
    EXPECT_EQ(walk(call(table, u"FindRows", {make(u"Structure", {u"City", u"B"})})).size(), 2U);

    table = sales();
    call(table, u"GroupBy", {u"", u"Item, Sum"});
    EXPECT_EQ(content(table), u"5,1000000000000000000000000000011.5;");
    table = sales();
    call(table, u"GroupBy", {u"Note"});
    EXPECT_EQ(content(table), u"n;");
    call(table, u"Clear");
    call(table, u"GroupBy", {u"", u"Note"});
    EXPECT_TRUE(call(table, u"Count").equals(0)) << "no row makes no group";
}

TEST_F(TableQueries, GroupManyRowsAsAMapWould) {
    std::mt19937 random(5);
    for (const int range : {50, 20'000, 1'000'000'000}) {
        const GenericValue table = table_of(u"A,B,C", {});
        const auto rows = table.query<IValueTable>();
        std::vector<std::pair<std::pair<int, int>, std::int64_t>> expected;
        for (int i = 0; i < 20'000; ++i) {
            const int a = static_cast<int>(random() % static_cast<unsigned>(range)) - range / 2;
            const int b = static_cast<int>(random() % 3);
            const Value cells[] = {a, b == 0 ? Value() : Value(u"text" + string_intto(b)), i};
            rows->appendRow(cells);
            if (i % 3 == 1 && range == 1'000'000'000) // some that occur twice
                rows->appendRow(cells);
            const int times = i % 3 == 1 && range == 1'000'000'000 ? 2 : 1;
            expected.push_back({{a, b}, std::int64_t{i} * times});
        }
        std::map<std::pair<int, int>, std::int64_t> sums;
        for (const auto& [key, value] : expected)
            sums[key] += value;
        call(table, u"GroupBy", {u"A,B", u"C"});
        ASSERT_EQ(rows->rowCount(), sums.size());
        for (std::size_t i = 0; i < rows->rowCount(); ++i) {
            const GenericValue b = rows->get(i, 1);
            const int bKey = b.isUndefined() ? 0 : b.asString()->back() - u'0';
            const auto found = sums.find({static_cast<int>(*rows->get(i, 0).asNumeric()), bKey});
            ASSERT_NE(found, sums.end());
            ASSERT_TRUE(rows->get(i, 2).equals(found->second));
        }
    }
}

} // namespace
