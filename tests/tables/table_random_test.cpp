// SPDX-License-Identifier: Apache-2.0
// Concerns: every method against a vector of rows under random operations, with indexes coming and going,
// columns changing their form, rows held by scripts, and walks disturbed; in tables that fit one run of rows
// and in large ones.
#include "tests/tables/table_model.h"

namespace {

using namespace script;

class RandomTables : public script::Test, public testing::WithParamInterface<unsigned> {
  public:
    using script::Test::process_;
};

void one_operation(model::Table& table, std::size_t wanted) {
    const std::size_t rows = table.rows.size();
    if (rows < 2 || table.below(2 * wanted) > rows) {
        table.insert(table.below(3) == 0 ? table.below(rows + 1) : rows);
        return;
    }
    switch (table.below(16)) {
    case 0:
        table.sort();
        break;
    case 1:
        table.find();
        break;
    case 2:
    case 3:
        table.filter();
        break;
    case 4:
        table.total();
        break;
    case 5:
        table.below(4) == 0 ? table.fill() : table.load();
        break;
    case 6:
        table.changeIndexes();
        break;
    case 7:
        if (table.below(50) == 0)
            table.clear();
        break;
    case 8:
        if (table.columns.size() < 7)
            table.addColumn(u"C" + string_intto(table.columns.size()));
        break;
    case 9:
        if (table.below(4) == 0)
            table.walkAndChange();
        break;
    case 10:
        table.move(table.below(rows), table.below(rows));
        break;
    case 11:
    case 12:
        table.remove(table.below(3) == 0 ? 0 : table.below(rows));
        break;
    default:
        table.write(table.below(rows), table.anyColumn());
    }
}

TEST_P(RandomTables, BehaveAsAVectorOfRows) {
    model::Table table(GetParam());
    for (int i = 1; i < 4; ++i)
        table.addColumn(u"C" + string_intto(i));
    const std::size_t wanted = GetParam() % 2 == 0 ? 20 : 150;
    for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
        one_operation(table, wanted);
        if (i % 25 == 0)
            table.check();
    }
    table.check();
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomTables, testing::Range(1U, 9U));

TEST_F(RandomTables, StayInOrderWhenTheyAreLarge) {
    model::Table table(100);
    table.addColumn(u"A");
    for (int i = 0; i < 4000; ++i)
        table.insert(table.rows.size());
    for (int i = 0; i < 3000; ++i) {
        const std::size_t rows = table.rows.size();
        switch (table.below(5)) {
        case 0:
            table.insert(table.below(rows + 1));
            break;
        case 1:
            table.move(table.below(rows), table.below(rows));
            break;
        case 2:
            table.insert(1000);
            break;
        default:
            table.remove(i % 3 == 0 ? 0 : i % 3 == 1 ? table.below(rows) : rows - 1);
        }
    }
    table.check();
    while (!table.rows.empty())
        table.remove(table.below(2) == 0 ? 0 : table.rows.size() / 2);
    table.insert(0);
    table.check();
}

} // namespace
