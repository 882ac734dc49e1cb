// SPDX-License-Identifier: Apache-2.0
// Concerns: the grammar of sort lists; the order of every kind of value; objects that compare, lie, throw or
// change the table.
#include "tests/tables/table_fixture.h"

#include <core/values/errors.h>

#include <algorithm>
#include <functional>
#include <random>

namespace {

using namespace script;

class TableSorts : public TableTest {
  protected:
    static wstring after_sort(wstring_view columns) {
        const GenericValue table = table_of(u"A,B", {{2, u"x"}, {1, u"y"}, {2, u"a"}, {3, u"b"}});
        call(table, u"Sort", {Value(columns)});
        return content(table);
    }
};

TEST_F(TableSorts, SortListsHaveTheirGrammar) {
    const wstring ascending = after_sort(u"A,B");
    EXPECT_EQ(ascending, u"1,y;2,a;2,x;3,b;");
    for (const wchar* same : {u" A , B ", u"a asc,b возр", u"A Asc, B", u"a   ВОЗР,b ASC"})
        EXPECT_EQ(after_sort(same), ascending) << to_utf8(same);
    EXPECT_EQ(after_sort(u"A Desc, B убыв"), u"3,b;2,x;2,a;1,y;");
    EXPECT_EQ(after_sort(u"B"), u"2,a;3,b;2,x;1,y;");
    for (const wchar* wrong : {u"A Up", u"A Asc B"})
        EXPECT_EQ(failure([&] { after_sort(wrong); }), message_text("IDS_VT_SORT_ITEM", {wrong}));
    for (const wchar* wrong : {u"", u"A,", u",", u"A,,B"})
        EXPECT_EQ(failure([&] { after_sort(wrong); }), value_mismatch(0)) << to_utf8(wrong);
    EXPECT_EQ(failure([&] { after_sort(u"A, C"); }), unknown_column(u"C"));
    EXPECT_EQ(failure([&] { after_sort(u"A, a Desc"); }), twice(u"a"));
    EXPECT_EQ(failure([&] { after_sort(u"C, A Up"); }), message_text("IDS_VT_SORT_ITEM", {u"A Up"}))
        << "first of all it must be a list";
}

/// Orders numbers by their last digit, and may do harm on the way.
class LastDigit : public IValueImpl, public ICompareValues {
  public:
    using Interfaces = InterfaceList<IValue, ICompareValues>;

    explicit LastDigit(std::function<int(int)> harm = [](int order) { return order; })
        : harm_(std::move(harm)) {}
    IType* getType() const noexcept override { return Type(Type::undefined).get(); }
    int compare(const Value& a, const Value& b) override {
        return harm_(static_cast<int>(*a.asNumeric()) % 10 - static_cast<int>(*b.asNumeric()) % 10);
    }

  private:
    std::function<int(int)> harm_;
};

TEST_F(TableSorts, AnObjectMayCompareAndDoNoHarm) {
    std::vector<Arguments> rows;
    for (int i = 0; i < 100; ++i)
        rows.push_back({i * 37 % 100});
    const GenericValue table = table_of(u"A", rows);
    const wstring before = content(table);
    const auto sort_with = [&](std::function<int(int)> harm) {
        call(table, u"Sort", {u"A", GenericValue(make_object<LastDigit>(std::move(harm)))});
    };
    EXPECT_EQ(
        failure([&] { sort_with([](int) -> int { throw_error<ContextException>("IDS_INDEX_OFFBOUND"); }); }),
        bad_index());
    EXPECT_EQ(content(table), before);
    bool harmed = false;
    const auto delete_a_row = [&](int order) {
        if (!std::exchange(harmed, true))
            call(table, u"Delete", {99});
        return order;
    };
    EXPECT_EQ(failure([&] { sort_with(delete_a_row); }), message_text("IDS_VT_CHANGED_WHILE_SORTING"));
    EXPECT_TRUE(call(table, u"Count").equals(99));
    harmed = false;
    const auto add_a_column = [&](int order) {
        if (!std::exchange(harmed, true))
            call(property(table, u"Columns"), u"Add", {u"B"});
        return order;
    };
    EXPECT_EQ(failure([&] { sort_with(add_a_column); }), message_text("IDS_VT_CHANGED_WHILE_SORTING"));
    call(property(table, u"Columns"), u"Delete", {u"B"});
    const GenericValue total = call(table, u"Total", {u"A"});
    int calls = 0;
    for (const int always : {-1, 0, 1})
        sort_with([&](int) { return ++calls, always; });
    EXPECT_LT(calls, 3 * 99 * 40) << "an inconsistent order costs no more than a consistent one";
    EXPECT_TRUE(call(table, u"Total", {u"A"}).equals(total)) << "a row was lost or shown twice";
    auto sorted = walk(call(table, u"UnloadColumn", {u"A"}));
    std::ranges::stable_sort(sorted, {},
                             [](const Value& value) { return static_cast<int>(*value.asNumeric()) % 10; });
    sort_with([](int order) { return order; });
    EXPECT_EQ(walk(call(table, u"UnloadColumn", {u"A"})), sorted);
    EXPECT_EQ(failure([&] { call(table, u"Sort", {u"A", 1}); }), type_mismatch(1));
    harmed = false;
    const auto add_a_row_and_delete_all = [&](int order) {
        if (!std::exchange(harmed, true)) {
            call(table, u"Add");
            call(table, u"Clear");
        }
        return order;
    };
    EXPECT_EQ(failure([&] { sort_with(add_a_row_and_delete_all); }),
              message_text("IDS_VT_CHANGED_WHILE_SORTING"));
    EXPECT_TRUE(call(table, u"Count").equals(0));
}

/// Decides the order while it is asked, always so that a sort by partitions learns
/// least (McIlroy's adversary).
class Adversary : public IValueImpl, public ICompareValues {
  public:
    using Interfaces = InterfaceList<IValue, ICompareValues>;

    Adversary(std::vector<int>& order, std::size_t& calls) noexcept : order_(order), calls_(calls) {}
    IType* getType() const noexcept override { return Type(Type::undefined).get(); }
    int compare(const Value& a, const Value& b) override {
        ++calls_;
        const auto x = static_cast<std::size_t>(*a.asSmallWhole());
        const auto y = static_cast<std::size_t>(*b.asSmallWhole());
        const int open = static_cast<int>(order_.size());
        if (order_[x] == open && order_[y] == open)
            order_[x == pivot_ ? x : y] = decided_++;
        if (order_[x] == open)
            pivot_ = x;
        else if (order_[y] == open)
            pivot_ = y;
        return order_[x] - order_[y];
    }

  private:
    std::vector<int>& order_; // by number; all open at first, which is their count
    std::size_t& calls_;
    std::size_t pivot_ = 0;
    int decided_ = 0;
};

TEST_F(TableSorts, AreSortedInTimeWhateverTheOrder) {
    constexpr std::size_t kRows = 1 << 12;
    const GenericValue table = table_of(u"A", {});
    const auto rows = table.query<IValueTable>();
    for (std::size_t i = 0; i < kRows; ++i) {
        const Value number(i);
        rows->appendRow(std::span(&number, 1));
    }
    std::vector<int> order(kRows, static_cast<int>(kRows));
    std::size_t calls = 0;
    call(table, u"Sort", {u"A", GenericValue(make_object<Adversary>(order, calls))});
    EXPECT_LT(calls, 5 * kRows * 12);
    for (std::size_t i = 1; i < kRows; ++i)
        ASSERT_LE(order[static_cast<std::size_t>(*rows->get(i - 1, 0).asSmallWhole())],
                  order[static_cast<std::size_t>(*rows->get(i, 0).asSmallWhole())]);
}

TEST_F(TableSorts, PutValuesOfEveryKindInOrder) {
    std::mt19937 random(11);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const GenericValue exotic[] = {Numeric(10).pow(30),
                                   -Numeric(10).pow(30),
                                   Numeric::fromScaled(-1, 17),
                                   GenericValue(),
                                   Value::null(),
                                   true,
                                   Date(2000, 1, 1),
                                   u"text",
                                   Type(Type::date)};
    for (const bool mixed : {false, true}) {
        const GenericValue table = table_of(u"A", {});
        const GenericValue list = make(u"ValueList");
        for (int i = 0; i < 600; ++i) {
            GenericValue value = Numeric(below(2000) - 1000) / (1 << below(4));
            if (mixed && below(10) == 0) // different numbers that are one double
                value = Numeric(10).pow(20) + below(50);
            else if (mixed && below(3) == 0)
                value = exotic[below(static_cast<int>(std::size(exotic)))];
            call(call(table, u"Add"), u"Set", {0, value});
            call(list, u"Add", {value});
        }
        call(table, u"Sort", {u"A"});
        call(list, u"SortByValue");
        for (const GenericValue& values :
             {call(table, u"UnloadColumn", {u"A"}), call(list, u"UnloadValues")}) {
            const auto sorted = walk(values);
            for (std::size_t i = 1; i < sorted.size(); ++i)
                ASSERT_LE(compare_values(sorted[i - 1], sorted[i]), 0)
                    << to_utf8(sorted[i - 1].presentation() + u" before " + sorted[i].presentation());
        }
    }
}

} // namespace
