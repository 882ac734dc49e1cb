// SPDX-License-Identifier: Apache-2.0
// Concerns: tables through their interface for C++, beside std containers, under random operations; what the
// interfaces refuse.
#include "tests/tables/random_fixture.h"

#include <algorithm>
#include <numeric>

namespace {

using namespace script;

class Interfaces : public RandomTest {};

INSTANTIATE_TEST_SUITE_P(Seeds, Interfaces, testing::Range(1U, 5U));

/// A table beside a vector of columns, which are vectors of cells. The first column numbers the rows.
struct TableModel {
    struct Column {
        std::int32_t id;
        wstring name;
        std::vector<Value> cells;
    };

    RandomTest& test;
    InterfacePtr<IValueTable> table = create_value_table();
    std::vector<Column> columns{};
    std::size_t rows = 0;
    int made = 0;

    std::size_t anyColumn() { return 1 + test.below(columns.size() - 1); }
    void addColumn(std::size_t position) {
        const wstring name = u"C" + string_intto(made++);
        const std::int32_t id = table->columns().insert(position, name);
        columns.insert(columns.begin() + static_cast<std::ptrdiff_t>(position),
                       Column{id, name, std::vector<Value>(rows)});
    }
    void addRow(std::size_t position) {
        std::vector<Value> cells{Value(made++)};
        while (cells.size() < columns.size() && test.below(8) != 0)
            cells.push_back(test.value());
        if (position == rows)
            table->appendRow(cells);
        else
            table->insertRow(position, cells);
        cells.resize(columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i].cells.insert(columns[i].cells.begin() + static_cast<std::ptrdiff_t>(position),
                                    cells[i]);
        ++rows;
    }
    void changeColumns() {
        const std::size_t column = anyColumn();
        const std::size_t other = anyColumn();
        switch (test.below(4)) {
        case 0:
            if (columns.size() < 6)
                addColumn(other);
            break;
        case 1:
            if (columns.size() > 3) {
                table->columns().remove(columns[column].id);
                columns.erase(columns.begin() + static_cast<std::ptrdiff_t>(column));
            }
            break;
        case 2:
            columns[column].name = u"R" + string_intto(made++);
            table->columns().rename(columns[column].id, columns[column].name);
            break;
        default:
            table->columns().move(columns[column].id, other);
            move_element(columns, column, other);
        }
    }
    void sort() {
        const std::size_t column = anyColumn();
        const bool down = test.below(2) == 0;
        const VTSortParam by[] = {{columns[column].id, down}, {columns[0].id}};
        table->sort(by);
        std::vector<std::size_t> order(rows);
        std::iota(order.begin(), order.end(), std::size_t{0});
        const auto& keys = columns[column].cells;
        const auto& numbers = columns[0].cells;
        std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            const int difference = compare_values(keys[a], keys[b]);
            return difference != 0 ? (difference < 0) != down : compare_values(numbers[a], numbers[b]) < 0;
        });
        for (Column& sorted : columns) {
            std::vector<Value> cells;
            for (const std::size_t row : order)
                cells.push_back(sorted.cells[row]);
            sorted.cells = std::move(cells);
        }
    }
    void search() {
        const Column& a = columns[anyColumn()];
        const Column& b = columns[anyColumn()];
        const Value wanted = test.value();
        std::optional<std::size_t> first;
        std::vector<std::size_t> both;
        for (std::size_t row = 0; row < rows; ++row) {
            const bool inA = a.cells[row] == wanted;
            const bool inB = b.cells[row] == wanted;
            if ((inA || inB) && !first)
                first = row;
            if (inA && inB)
                both.push_back(row);
        }
        const std::int32_t ids[] = {a.id, b.id};
        ASSERT_EQ(table->find(wanted, std::span(ids).first(a.id == b.id ? 1 : 2)), first);
        const VTFindParam filter[] = {{a.id, wanted}, {b.id, wanted}};
        ASSERT_EQ(table->IValueTableBaseRO_findRows(filter), both);
        const auto copy = table->copyRows(both, std::span(ids).first(1));
        ASSERT_EQ(copy->rowCount(), both.size());
        ASSERT_EQ(copy->columnCount(), 1U);
        for (std::size_t i = 0; i < both.size(); ++i)
            ASSERT_EQ(Value(copy->get(i, copy->columns().idAt(0))), a.cells[both[i]]);
    }
    void total() {
        const Column& column = columns[anyColumn()];
        bool texts = false;
        bool numbers = false;
        Numeric sum;
        for (const Value& cell : column.cells) {
            texts = texts || cell.kind() == ValueKind::string;
            if (const auto number = cell.asNumeric()) {
                numbers = true;
                sum += *number;
            }
        }
        if (!texts) {
            ASSERT_EQ(table->total(column.id), numbers ? Value(sum) : Value());
        }
    }
    /// Groups a copy by a column and counts the rows of each group, in a column of ones.
    void group() {
        const Column& by = columns[anyColumn()];
        const std::int32_t kept[] = {by.id};
        const auto copy = table->copy(kept);
        const std::int32_t key = copy->columns().idAt(0);
        const std::int32_t ones = copy->addColumn(u"Ones");
        copy->fill(Value(1), std::span(&ones, 1));
        copy->groupBy(std::span(&key, 1), std::span(&ones, 1));
        std::vector<std::pair<Value, int>> groups;
        for (const Value& cell : by.cells) {
            const auto found = std::find_if(groups.begin(), groups.end(),
                                            [&](const auto& group) { return group.first == cell; });
            if (found != groups.end())
                ++found->second;
            else
                groups.emplace_back(cell, 1);
        }
        ASSERT_EQ(copy->rowCount(), groups.size());
        for (std::size_t i = 0; i < groups.size(); ++i) {
            ASSERT_EQ(Value(copy->get(i, key)), groups[i].first);
            ASSERT_EQ(Value(copy->get(i, ones)), Value(groups[i].second));
        }
    }
    void fillOrLoad() {
        Column& column = columns[anyColumn()];
        if (test.below(4) == 0) {
            std::fill(column.cells.begin(), column.cells.end(), test.value());
            table->fill(rows != 0 ? column.cells.front() : Value(), std::span(&column.id, 1));
            return;
        }
        std::vector<Value> values(test.below(rows + 3));
        for (Value& value : values)
            value = test.value();
        table->loadColumn(column.id, values);
        std::copy_n(values.begin(), std::min(rows, values.size()), column.cells.begin());
    }
    void changeIndexes() {
        if (table->indexCount() > 1) {
            table->removeIndex(test.below(table->indexCount()));
            return;
        }
        const std::int32_t ids[] = {columns[anyColumn()].id, columns[0].id};
        table->addIndex(ids);
        ASSERT_EQ(table->index(table->indexCount() - 1), std::vector<std::int32_t>(ids, ids + 2));
    }
    void check() {
        ASSERT_EQ(table->rowCount(), rows);
        ASSERT_EQ(table->columnCount(), columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i) {
            ASSERT_EQ(table->columns().idAt(i), columns[i].id);
            ASSERT_EQ(table->columns().positionOf(columns[i].id), i);
            ASSERT_EQ(table->findColumn(columns[i].name), columns[i].id);
            ASSERT_EQ(table->unloadColumn(columns[i].id), columns[i].cells);
        }
        if (rows != 0) {
            const std::size_t row = test.below(rows);
            const auto object = table->row(row).query<IValueRow>();
            ASSERT_EQ(object->position(), row);
            ASSERT_EQ(table->indexOf(table->row(row)), row);
            ASSERT_EQ(object->get(columns[0].id), columns[0].cells[row]);
        }
    }
    void step() {
        if (rows < 2 || test.below(3 * rows) < 20) {
            addRow(test.below(3) == 0 ? test.below(rows + 1) : rows);
            return;
        }
        const std::size_t row = test.below(rows);
        const std::size_t other = test.below(rows);
        Column& column = columns[anyColumn()];
        switch (test.below(12)) {
        case 0:
            changeColumns();
            break;
        case 1:
            sort();
            break;
        case 2:
            search();
            break;
        case 3:
            total();
            break;
        case 4:
            group();
            break;
        case 5:
            fillOrLoad();
            break;
        case 6:
            changeIndexes();
            break;
        case 7:
            table->moveRow(row, other);
            for (Column& moved : columns)
                move_element(moved.cells, row, other);
            break;
        case 8:
        case 9:
            table->removeRow(row);
            for (Column& cut : columns)
                cut.cells.erase(cut.cells.begin() + static_cast<std::ptrdiff_t>(row));
            --rows;
            break;
        default:
            column.cells[row] = test.value();
            if (test.below(2) == 0)
                table->set(row, column.id, column.cells[row]);
            else
                table->row(row).query<IValueRow>()->set(column.id, column.cells[row]);
        }
    }
};

TEST_P(Interfaces, ATableIsColumnsOfCells) {
    TableModel model{*this};
    for (std::size_t i = 0; i < 3; ++i)
        model.addColumn(i);
    for (int i = 0; i < 1500 && !HasFatalFailure(); ++i) {
        model.step();
        model.check();
    }
}

class InterfacesRefuse : public script::Test {};

TEST_F(InterfacesRefuse, WhatIsNotThere) {
    const auto table = create_value_table();
    const std::int32_t a = table->addColumn(u"A");
    const std::int32_t b = table->addColumn(u"B");
    table->appendRow({});
    const std::int32_t twice[] = {a, b, a};
    const std::int32_t unknown[] = {a, 7};
    const Value three[] = {1, 2, 3};
    const std::size_t rows[] = {0, 1};
    const wstring index = bad_index();
    const auto refused = [&](auto work) { return failure([&] { work(); }); };
    EXPECT_EQ(refused([&] { table->insertRow(2); }), index);
    EXPECT_EQ(refused([&] { table->insertRow(0, three); }), index);
    EXPECT_EQ(refused([&] { table->moveRow(0, 1); }), index);
    EXPECT_EQ(refused([&] { static_cast<void>(table->copyRows(rows)); }), index);
    EXPECT_EQ(refused([&] { table->columns().move(a, 2); }), index);
    EXPECT_EQ(refused([&] { table->columns().insert(3, u"C"); }), index);
    EXPECT_EQ(refused([&] { static_cast<void>(table->columns().idAt(2)); }), index);
    EXPECT_EQ(refused([&] { table->removeIndex(0); }), index);
    EXPECT_EQ(refused([&] { table->fill(1, twice); }), message_text("IDS_VT_COLUMNS_NOT_UNIQUE", {u"A"}));
    EXPECT_EQ(refused([&] { table->fill(1, unknown); }), message_text("IDS_VT_UNKNOWN_COLUMN_ERROR", {u"7"}));
    EXPECT_EQ(refused([&] { table->columns().rename(a, u"b"); }),
              message_text("IDS_VT_COLUMNS_NOT_UNIQUE", {u"b"}));
    EXPECT_EQ(refused([&] { table->columns().setWidth(a, -1); }), value_mismatch(1));
    EXPECT_EQ(refused([&] { table->addIndex({}); }), value_mismatch(0));
    EXPECT_EQ(refused([&] { table->groupBy({}, {}); }), message_text("IDS_VT_GROUPBY_NO_COLUMN_ERROR"));
    EXPECT_EQ(refused([&] { static_cast<void>(table->indexOf(0)); }), type_mismatch(0));
    EXPECT_EQ(refused([&] { static_cast<void>(table->indexOf(create_value_table()->row(0))); }), index);
    EXPECT_EQ(table->unloadColumn(a), std::vector<Value>(1));

    const auto list = create_value_list();
    EXPECT_EQ(refused([&] { list->insert(1, {}); }), index);
    EXPECT_EQ(refused([&] { list->remove(0); }), index);
    list->add({});
    EXPECT_EQ(refused([&] { list->move(0, 1); }), index);
    EXPECT_EQ(refused([&] {
                  list->set(0, {.value = Value(list.query<IValue>()), .presentation = {}, .picture = {}});
              }),
              message_text("IDS_VL_CYCLING"));
    const GenericValue gone = list->item(0);
    list->clear();
    EXPECT_EQ(refused([&] { static_cast<void>(list->indexOf(gone)); }), value_mismatch(0));
}

} // namespace
