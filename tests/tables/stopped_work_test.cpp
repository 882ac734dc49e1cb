// SPDX-License-Identifier: Apache-2.0
// Concerns: long work on tables, wherever it is stopped, leaves everything as it was; and none of it takes
// long because of how the values of columns go together.
#include "tests/tables/table_fixture.h"

#include <ctime>

namespace {

using namespace script;

class StoppedWork : public TableTest {
  protected:
    static InterfacePtr<IValueTable> sales() {
        return table_of(u"Region,Product,Price,Id", {{u"North", u"apple", 1.2, 1},
                                                     {u"South", u"pear", 3, 2},
                                                     {u"North", u"pear", GenericValue(), 3},
                                                     {u"South", u"apple", u"free", 4},
                                                     {u"South", u"apple", u"free", 4}})
            .query<IValueTable>();
    }
    static wstring text_of(const InterfacePtr<IValueTable>& table) {
        return text(Value(table.query<IValue>()));
    }
    /// The processor time of one call, the least of several.
    template <class Work>
    static std::clock_t time_of(Work work) {
        std::clock_t least = std::numeric_limits<std::clock_t>::max();
        for (int i = 0; i < 3; ++i) {
            const std::clock_t begin = std::clock();
            work();
            least = std::min(least, std::clock() - begin);
        }
        return least;
    }

    struct Operation {
        const char* name;
        std::function<void(const TableWork&)> run;
        bool changes = false; // the first table, once it is done
    };
    /// Everything that asks how long it may go on.
    [[nodiscard]] std::vector<Operation> operations() const {
        const auto &a = a_, &b = b_;
        const auto& tree = tree_;
        return {
            {"join",
             [=](const TableWork& work) {
                 (void)join(*a, *b, u"Product", u"Id As Other", JoinKind::full, work);
             }},
            {"semi", [=](const TableWork& work) { (void)join(*a, *b, u"Id", u"", JoinKind::semi, work); }},
            {"unite", [=](const TableWork& work) { (void)unite(*a, *b, EqualRows::once, work); }},
            {"except", [=](const TableWork& work) { (void)core::except(*a, *b, work); }},
            {"intersect", [=](const TableWork& work) { (void)intersect(*a, *b, work); }},
            {"distinct", [=](const TableWork& work) { (void)distinct(*a, {}, work); }},
            {"group",
             [=](const TableWork& work) {
                 (void)group(*a, {u"Region"}, {sum(u"Id"), list(u"Price")}, u"L", work);
             }},
            {"pivot",
             [=](const TableWork& work) { (void)pivot(*a, {u"Region"}, u"Product", {max(u"Id")}, 9, work); }},
            {"unpivot",
             [=](const TableWork& work) {
                 (void)unpivot(*a, {u"Price", u"Id"}, u"N", u"V", EmptyCells::skip, work);
             }},
            {"structures", [=](const TableWork& work) { (void)structures_of(*a, work); }},
            {"tree by path", [=](const TableWork& work) { (void)tree_by_path(*a, u"Product", u"/", work); }},
            {"table by path",
             [=](const TableWork& work) { (void)table_by_path(*tree, u"Product", u"/", work); }},
            {"table by level", [=](const TableWork& work) { (void)table_by_level(*tree, u"Level", work); }},
            {"copy of a tree", [=](const TableWork& work) { (void)copy_tree(*tree, {}, work); }},
            {"windows",
             [=](const TableWork& work) { add_windows(*a, {row_number()}, {u"Region"}, u"Id", work); }, true},
            {"rows", [=](const TableWork& work) { add_rows(*a, Value(b.query<IValue>()), nullptr, work); },
             true},
        };
    }

    const InterfacePtr<IValueTable> a_ = sales();
    const InterfacePtr<IValueTable> b_ = sales();
    const InterfacePtr<IValueTree> tree_ = tree_by_path(*a_, u"Product");
};

TEST_F(StoppedWork, LeavesEverythingAsItWas) {
    const auto &a = a_, &b = b_;
    const auto& tree = tree_;
    b->set(0, b->column(2).id, 7);
    const wstring second = text_of(b);
    const wstring branches = text(Value(tree.query<IValue>()));
    for (const Operation& operation : operations()) {
        const wstring first = text_of(a);
        for (int after = 0;; ++after) {
            int asked = 0;
            StopSource source;
            const TableWork work{.stop = source.token(), .progress = [&](std::uint64_t, std::uint64_t) {
                                     if (++asked > after)
                                         throw ThreadDeath();
                                 }};
            ASSERT_LT(after, 1000) << operation.name;
            try {
                operation.run(work);
                EXPECT_GE(after, 1) << operation.name << " never asks";
                break;
            } catch (const ThreadDeath&) {
                EXPECT_EQ(text_of(a), first) << operation.name << after;
            }
        }
        EXPECT_EQ(text_of(a) != first, operation.changes) << operation.name;
        EXPECT_EQ(text_of(b), second) << operation.name;
        EXPECT_EQ(text(Value(tree.query<IValue>())), branches) << operation.name;
    }
}

TEST_F(StoppedWork, GroupsGridsOfNumbersAsFastAsOthers) {
    constexpr int kSide = 300;
    const auto grid = [](std::int64_t step) {
        const auto table = create_value_table();
        for (const wchar* const name : {u"A", u"B"})
            table->addColumn(name);
        for (std::int64_t i = 0; i < kSide * kSide; ++i) {
            const Value cells[] = {i / kSide, i % kSide * step};
            table->appendRow(cells);
        }
        const Value far[] = {0, std::int64_t{1} << 40}; // too many pairs are possible to count them off
        table->appendRow(far);
        return table;
    };
    const auto near = grid(1);
    const auto wide = grid(std::int64_t{1} << 24);
    EXPECT_EQ(distinct(*near)->rowCount(), std::size_t{kSide * kSide + 1});
    EXPECT_LT(time_of([&] { (void)distinct(*near); }), 3 * time_of([&] { (void)distinct(*wide); }));
}

} // namespace
