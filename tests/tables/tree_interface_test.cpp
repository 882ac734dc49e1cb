// SPDX-License-Identifier: Apache-2.0
// Concerns: trees and lists through their interfaces for C++, beside std containers, under random operations.
#include "tests/tables/random_fixture.h"

#include <algorithm>

namespace {

using namespace script;

class TreesAndLists : public RandomTest {};

INSTANTIATE_TEST_SUITE_P(Seeds, TreesAndLists, testing::Range(1U, 5U));

/// A row of the model, with the rows below it.
struct Node {
    Value cell;
    std::vector<Node> below;
};

/// Calls `work` with each row below a node, a row before those below it.
template <class Work>
void walk_tree(const Node& node, Work work) {
    for (const Node& below : node.below) {
        work(below);
        walk_tree(below, work);
    }
}

void sort_tree(Node& node, bool deep) {
    std::sort(node.below.begin(), node.below.end(),
              [](const Node& a, const Node& b) { return compare_values(a.cell, b.cell) < 0; });
    for (std::size_t i = 0; deep && i < node.below.size(); ++i)
        sort_tree(node.below[i], true);
}

/// A tree of one column beside nodes. All cells are different.
struct TreeModel {
    RandomTest& test;
    InterfacePtr<IValueTree> tree = create_value_tree();
    std::int32_t column = tree->columns().insert(0, u"A", TypeDomain(kNumberType));
    Node root{};
    int made = 0;

    // the rows that a step works on, on both sides
    InterfacePtr<IValueTreeRow> above{};
    IValueTreeRows* rows = nullptr;
    Node* node = nullptr;

    void chooseRows() {
        above.reset();
        rows = &tree->rows();
        node = &root;
        while (!node->below.empty() && test.below(3) != 0) {
            const std::size_t position = test.below(node->below.size());
            above = rows->row(position);
            rows = &above->rows();
            node = &node->below[position];
        }
    }
    auto at(std::size_t position) { return node->below.begin() + static_cast<std::ptrdiff_t>(position); }
    Value fresh() { return (made++ * 7919) % 10'007; }

    void add() {
        const std::size_t position = test.below(node->below.size() + 1);
        const Value cells[] = {fresh()};
        const auto row = position == node->below.size() ? rows->add(cells) : rows->insert(position, cells);
        ASSERT_EQ(row->position(), position);
        ASSERT_EQ(row->parent().query<IValue>(), above.query<IValue>());
        node->below.insert(at(position), Node{cells[0], {}});
    }
    void remove() {
        const std::size_t position = test.below(node->below.size());
        const auto row = rows->row(position);
        rows->remove(position);
        ASSERT_TRUE(row->isDeleted());
        ASSERT_EQ(failure([&] { static_cast<void>(row->position()); }),
                  message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
        node->below.erase(at(position));
    }
    void search(bool deep) {
        std::vector<const Node*> all;
        const auto take = [&all](const Node& row) { all.push_back(&row); };
        if (deep)
            walk_tree(*node, take);
        else
            std::for_each(node->below.begin(), node->below.end(), take);
        const RowDepth depth = deep ? RowDepth::all : RowDepth::children;
        Numeric sum;
        for (const Node* const row : all)
            sum += *row->cell.asNumeric();
        ASSERT_EQ(rows->total(column, depth), Value(sum));
        const Node& wanted = *all[test.below(all.size())];
        const auto found = rows->find(wanted.cell, std::span(&column, 1), depth);
        ASSERT_EQ(found->get(column), wanted.cell);
        ASSERT_EQ(found->rows().count(), wanted.below.size());
        const VTFindParam filter[] = {{column, wanted.cell}};
        ASSERT_EQ(rows->findRows(filter, depth).size(), 1U);
        ASSERT_EQ(rows->findRows({}, depth).size(), all.size());
        ASSERT_FALSE(rows->find(-1));
    }
    void reverse() {
        std::vector<Value> values = rows->unloadColumn(column);
        std::reverse(values.begin(), values.end());
        rows->loadColumn(column, values);
        for (std::size_t row = 0; row < values.size(); ++row)
            node->below[row].cell = values[row];
    }
    void step() {
        chooseRows();
        const std::size_t count = node->below.size();
        if (count < 2 || test.below(3) == 0) {
            add();
            return;
        }
        const bool deep = test.below(2) == 0;
        const std::size_t position = test.below(count);
        const std::size_t other = test.below(count);
        const VTSortParam by[] = {{column}};
        switch (test.below(6)) {
        case 0:
            remove();
            break;
        case 1:
            rows->move(position, other);
            move_element(node->below, position, other);
            break;
        case 2:
            rows->sort(by, deep ? RowDepth::all : RowDepth::children);
            sort_tree(*node, deep);
            break;
        case 3:
            reverse();
            break;
        case 4:
            search(deep);
            break;
        default:
            node->below[position].cell = fresh();
            rows->set(position, column, node->below[position].cell);
        }
    }
    void check(IValueTreeRows& real, const Node& expected) {
        ASSERT_EQ(real.count(), expected.below.size());
        for (std::size_t i = 0; i < expected.below.size(); ++i) {
            ASSERT_EQ(real.get(i, column), expected.below[i].cell);
            const auto row = real.row(i);
            ASSERT_EQ(row->position(), i);
            check(row->rows(), expected.below[i]);
        }
    }
};

TEST_P(TreesAndLists, ATreeIsRowsOfRows) {
    TreeModel model{*this};
    for (int i = 0; i < 800 && !HasFatalFailure(); ++i) {
        model.step();
        model.check(model.tree->rows(), model.root);
    }
}

/// A list beside a vector of items.
struct ListModel {
    using Item = IValueList::Item;

    RandomTest& test;
    InterfacePtr<IValueList> list = create_value_list();
    std::vector<Item> items{};

    template <class Key>
    void sort(bool down, Key key) {
        std::stable_sort(items.begin(), items.end(), [=](const Item& a, const Item& b) {
            return (down ? compare_values(key(b), key(a)) : compare_values(key(a), key(b))) < 0;
        });
    }
    void step(const Item& item) {
        const std::size_t at = items.empty() ? 0 : test.below(items.size());
        const auto place = items.begin() + static_cast<std::ptrdiff_t>(at);
        const bool down = test.below(2) == 0;
        const auto direction = down ? SortDirection::descending : SortDirection::ascending;
        switch (items.size() < 2 ? 0 : test.below(10)) {
        case 0:
        case 1:
            list->insert(at, item);
            items.insert(place, item);
            break;
        case 2:
            list->add(item);
            items.push_back(item);
            break;
        case 3:
            list->set(at, item);
            *place = item;
            break;
        case 4:
        case 5:
            list->remove(at);
            items.erase(place);
            break;
        case 6:
            list->move(at, items.size() - 1);
            move_element(items, at, items.size() - 1);
            break;
        case 7:
            list->sortByValue(direction);
            sort(down, [](const Item& each) { return each.value; });
            break;
        case 8:
            list->sortByPresentation(direction);
            sort(down, [](const Item& each) { return Value(each.presentation.text()); });
            break;
        default:
            list->setCheck(at, !place->check);
            place->check = !place->check;
        }
    }
    void check(IValueList& real) const {
        ASSERT_EQ(real.count(), items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            const Item item = real.get(i);
            ASSERT_EQ(item.value, items[i].value);
            ASSERT_EQ(item.presentation, items[i].presentation);
            ASSERT_EQ(item.check, items[i].check);
            ASSERT_EQ(item.picture, items[i].picture);
            ASSERT_EQ(real.indexOf(real.item(i)), i);
        }
    }
};

TEST_P(TreesAndLists, AListIsItems) {
    ListModel model{*this};
    for (int i = 0; i < 1000 && !HasFatalFailure(); ++i) {
        const IValueList::Item item{value(), u"p" + string_intto(below(9)), below(2) == 0, value()};
        model.step(item);
        model.check(*model.list);
        const auto found = std::find_if(model.items.begin(), model.items.end(),
                                        [&](const auto& each) { return each.value == item.value; });
        const auto position = model.list->find(item.value);
        ASSERT_EQ(position.has_value(), found != model.items.end());
        ASSERT_TRUE(!position || *position == static_cast<std::size_t>(found - model.items.begin()));
    }
    model.check(*model.list->copy());
    std::vector<Value> values;
    for (const auto& item : model.items)
        values.push_back(item.value);
    EXPECT_EQ(model.list->values(), values);
    model.list->load(values);
    model.list->fillChecks(true);
    EXPECT_TRUE(model.list->get(0).check);
    EXPECT_TRUE(model.list->get(0).presentation.empty());
    model.list->setValueType(TypeDomain(kStringType));
    EXPECT_EQ(model.list->valueType(), TypeDomain(kStringType));
    EXPECT_EQ(model.list->get(0).value.kind(), ValueKind::string);
}

} // namespace
