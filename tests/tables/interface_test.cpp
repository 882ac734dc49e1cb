// SPDX-License-Identifier: Apache-2.0
// Concerns: tables, trees and lists through their interfaces for C++, beside std containers, under random
// operations; what the interfaces refuse.
#include "tests/tables/table_fixture.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using namespace script;

class Interfaces : public script::Test, public testing::WithParamInterface<unsigned> {
  public:
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(random_() % n); }
    /// A value of few different ones: numbers, texts, Undefined.
    Value value() {
        const auto small = static_cast<int>(below(5));
        return below(3) == 0 ? Value(u"t" + string_intto(small)) : below(6) == 0 ? Value() : Value(small);
    }

  protected:
    std::mt19937 random_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Seeds, Interfaces, testing::Range(1U, 5U));

/// Moves the element at `from` to where it will have the position `to`.
template <class T>
void move_element(std::vector<T>& elements, std::size_t from, std::size_t to) {
    T moved = std::move(elements[from]);
    elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(from));
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
}

/// A table beside a vector of columns, which are vectors of cells. The first column numbers the rows.
struct TableModel {
    struct Column {
        std::int32_t id;
        wstring name;
        std::vector<Value> cells;
    };

    Interfaces& test;
    InterfacePtr<IValueTable> table = create_value_table();
    std::vector<Column> columns;
    std::size_t rows = 0;
    int made = 0;

    std::size_t anyColumn() { return 1 + test.below(columns.size() - 1); }
    void addColumn(std::size_t position) {
        const wstring name = u"C" + string_intto(made++);
        const std::int32_t id = table->columns().insert(position, name);
        columns.insert(columns.begin() + static_cast<std::ptrdiff_t>(position),
                       {id, name, std::vector<Value>(rows)});
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
        if (numbers)
            ASSERT_EQ(table->total(column.id), Value(sum));
        else if (!texts)
            ASSERT_TRUE(table->total(column.id).isUndefined());
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

/// A row of a tree beside the row of the model.
struct TreeNode {
    Value cell;
    std::vector<TreeNode> below;
};

using TreePath = std::vector<std::size_t>;

/// The rows below a random row, or the topmost ones, on both sides.
std::pair<IValueTreeRows*, TreeNode*> any_rows(Interfaces& test, IValueTree& tree, TreeNode& root,
                                               InterfacePtr<IValueTreeRow>& held) {
    IValueTreeRows* rows = &tree.rows();
    TreeNode* node = &root;
    while (!node->below.empty() && test.below(3) != 0) {
        const std::size_t position = test.below(node->below.size());
        held = rows->row(position);
        rows = &held->rows();
        node = &node->below[position];
    }
    return {rows, node};
}

void expect_tree(IValueTreeRows& rows, const TreeNode& node, std::int32_t column) {
    ASSERT_EQ(rows.count(), node.below.size());
    for (std::size_t i = 0; i < node.below.size(); ++i) {
        ASSERT_EQ(rows.get(i, column), node.below[i].cell);
        const auto row = rows.row(i);
        ASSERT_EQ(row->position(), i);
        expect_tree(row->rows(), node.below[i], column);
    }
}

/// Calls `work` with each row below a node, a row before those below it.
template <class Work>
void walk_tree(const TreeNode& node, Work work) {
    for (const TreeNode& below : node.below) {
        work(below);
        walk_tree(below, work);
    }
}

void sort_tree(TreeNode& node, bool deep) {
    std::stable_sort(node.below.begin(), node.below.end(),
                     [](const TreeNode& a, const TreeNode& b) { return compare_values(a.cell, b.cell) < 0; });
    for (std::size_t i = 0; deep && i < node.below.size(); ++i)
        sort_tree(node.below[i], true);
}

TEST_P(Interfaces, ATreeIsRowsOfRows) {
    const auto tree = create_value_tree();
    const std::int32_t column = tree->columns().insert(0, u"A", TypeDomain(kNumberType));
    TreeNode root;
    int number = 0;
    for (int i = 0; i < 800 && !HasFatalFailure(); ++i) {
        InterfacePtr<IValueTreeRow> held;
        const auto [rows, node] = any_rows(*this, *tree, root, held);
        const std::size_t count = node->below.size();
        const bool deep = below(2) == 0;
        const RowDepth depth = deep ? RowDepth::all : RowDepth::children;
        const auto at = [&](std::size_t position) {
            return node->below.begin() + static_cast<std::ptrdiff_t>(position);
        };
        const Value fresh[] = {Value((number++ * 7919) % 1000)}; // no two rows are equal
        if (count < 2 || below(3) == 0) {
            const std::size_t position = below(count + 1);
            const auto row = position == count ? rows->add(fresh) : rows->insert(position, fresh);
            ASSERT_EQ(row->position(), position);
            ASSERT_EQ(row->parent().query<IValue>(), held.query<IValue>());
            node->below.insert(at(position), {fresh[0], {}});
        } else if (const std::size_t what = below(6); what == 0) {
            const std::size_t position = below(count);
            const auto row = rows->row(position);
            rows->remove(position);
            EXPECT_TRUE(row->isDeleted());
            EXPECT_EQ(failure([&] { static_cast<void>(row->position()); }),
                      message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
            node->below.erase(at(position));
        } else if (what == 1) {
            const std::size_t from = below(count);
            const std::size_t to = below(count);
            rows->move(from, to);
            move_element(node->below, from, to);
        } else if (what == 2) {
            const VTSortParam by[] = {{column}};
            rows->sort(by, depth);
            sort_tree(*node, deep);
        } else if (what == 3) {
            std::vector<Value> values = rows->unloadColumn(column);
            std::reverse(values.begin(), values.end());
            rows->loadColumn(column, values);
            for (std::size_t row = 0; row < count; ++row)
                node->below[row].cell = values[row];
        } else if (what == 4) {
            Numeric sum;
            const TreeNode* wanted = nullptr;
            const auto add = [&, wants = below(4)](const TreeNode& row) mutable {
                sum += *row.cell.asNumeric();
                if (wants-- == 0 || wanted == nullptr)
                    wanted = &row;
            };
            if (deep)
                walk_tree(*node, add);
            else
                std::for_each(node->below.begin(), node->below.end(), add);
            ASSERT_EQ(rows->total(column, depth), Value(sum));
            const auto found = rows->find(wanted->cell, std::span(&column, 1), depth);
            ASSERT_EQ(found->get(column), wanted->cell);
            ASSERT_EQ(found->rows().count(), wanted->below.size());
            const VTFindParam filter[] = {{column, wanted->cell}};
            ASSERT_EQ(rows->findRows(filter, depth).size(), 1U);
        } else {
            const std::size_t position = below(count);
            rows->set(position, column, fresh[0]);
            node->below[position].cell = fresh[0];
        }
        expect_tree(tree->rows(), root, column);
    }
}

TEST_P(Interfaces, AListIsItems) {
    const auto list = create_value_list();
    std::vector<IValueList::Item> model;
    const auto same = [](const IValueList::Item& a, const IValueList::Item& b) {
        return a.value == b.value && a.presentation == b.presentation && a.check == b.check &&
               a.picture == b.picture;
    };
    for (int i = 0; i < 1000 && !HasFatalFailure(); ++i) {
        const IValueList::Item item{value(), wstring(u"p") + string_intto(below(9)), below(2) == 0, value()};
        const std::size_t count = model.size();
        const std::size_t at = count != 0 ? below(count) : 0;
        const auto place = model.begin() + static_cast<std::ptrdiff_t>(at);
        const bool down = below(2) == 0;
        const auto direction = down ? SortDirection::descending : SortDirection::ascending;
        switch (count < 2 ? 0 : below(10)) {
        case 0:
        case 1:
            list->insert(at, item);
            model.insert(place, item);
            break;
        case 2:
            list->add(item);
            model.push_back(item);
            break;
        case 3:
            list->set(at, item);
            *place = item;
            break;
        case 4:
        case 5:
            list->remove(at);
            model.erase(place);
            break;
        case 6:
            list->move(at, count - 1);
            move_element(model, at, count - 1);
            break;
        case 7:
            list->sortByValue(direction);
            std::stable_sort(model.begin(), model.end(), [=](const auto& a, const auto& b) {
                return (down ? compare_values(b.value, a.value) : compare_values(a.value, b.value)) < 0;
            });
            break;
        case 8:
            list->sortByPresentation(direction);
            std::stable_sort(model.begin(), model.end(), [=](const auto& a, const auto& b) {
                const Value x(a.presentation.text());
                const Value y(b.presentation.text());
                return (down ? compare_values(y, x) : compare_values(x, y)) < 0;
            });
            break;
        default:
            list->setCheck(at, !place->check);
            place->check = !place->check;
        }
        ASSERT_EQ(list->count(), model.size());
        const auto copy = list->copy();
        for (std::size_t position = 0; position < model.size(); ++position) {
            ASSERT_TRUE(same(list->get(position), model[position])) << position;
            ASSERT_TRUE(same(copy->get(position), model[position])) << position;
        }
        const auto found = std::find_if(model.begin(), model.end(),
                                        [&](const auto& each) { return each.value == item.value; });
        ASSERT_EQ(list->find(item.value),
                  found != model.end()
                      ? std::optional<std::size_t>(static_cast<std::size_t>(found - model.begin()))
                      : std::nullopt);
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
