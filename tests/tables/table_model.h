// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/collections/script.h"

#include <core/descriptions.h>
#include <core/strings/trim.h>
#include <core/tables.h>

#include <algorithm>
#include <deque>
#include <random>

/// A value table beside the plainest one there could be, a vector of rows: every operation is done to both
/// through the script's methods, and both must stay the same.
namespace model {

using namespace script;

struct Row {
    int id; ///< the cell of column 0, different in every row
    std::vector<GenericValue> cells;
    GenericValue handle; ///< the script's row, where it is held
};

class Table {
  public:
    explicit Table(unsigned seed) : table(make(u"ValueTable")), random_(seed) { addColumn(u"Id"); }

    const GenericValue table;
    std::vector<wstring> columns;
    std::vector<Row> rows;

    std::size_t below(std::size_t n) { return static_cast<std::size_t>(random_() % n); }
    /// A value for a column: numbers, texts, anything, numbers whose sums pass 2^63, one of 10 000 keys.
    GenericValue value(std::size_t column) {
        const int sign = below(3) == 0 ? -1 : 1;
        switch (column) {
        case 1:
            return number();
        case 2:
            return textValue();
        case 4:
            return sign * static_cast<std::int64_t>((std::uint64_t{1} << 62) + below(9));
        case 5:
            return sign * static_cast<int>(below(5'000));
        default:
            return anything();
        }
    }
    /// A value of a column's cell, or one that may be in none.
    GenericValue wanted(std::size_t column) {
        return rows.empty() || below(3) == 0 ? value(column) : rows[below(rows.size())].cells[column];
    }
    std::size_t anyColumn() { return 1 + below(columns.size() - 1); }

    void addColumn(wstring_view name) {
        call(property(table, u"Columns"), u"Add", {Value(name)});
        columns.emplace_back(name);
        for (Row& row : rows)
            row.cells.emplace_back();
    }
    void insert(std::size_t position) {
        const bool last = position == rows.size();
        Row row{nextId_++, std::vector<GenericValue>(columns.size()), {}};
        row.handle = last && below(2) == 0 ? call(table, u"Add") : call(table, u"Insert", {position});
        set(row, 0, row.id);
        for (std::size_t i = 1; i < columns.size(); ++i)
            set(row, i, value(i));
        if (below(4) != 0)
            row.handle = {};
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(position), std::move(row));
    }
    void set(Row& row, std::size_t column, const GenericValue& value) {
        const auto context = row.handle.query<IContext_>();
        context->setPropVal(context->findProp(columns[column].c_str()), value);
        row.cells[column] = value;
    }
    /// The script's object of a row, and whether the one held is still it.
    GenericValue handle(std::size_t position) {
        const GenericValue found = call(table, u"Get", {position});
        EXPECT_TRUE(rows[position].handle.isUndefined() || rows[position].handle.equals(found));
        return found;
    }
    /// A row as an argument: itself or its index.
    GenericValue argument(std::size_t position) {
        return below(2) == 0 ? handle(position) : GenericValue(position);
    }
    void write(std::size_t position, std::size_t column) {
        const GenericValue held = std::exchange(rows[position].handle, handle(position));
        set(rows[position], column, value(column));
        if (held.isUndefined())
            rows[position].handle = held;
    }
    void remove(std::size_t position) {
        call(table, u"Delete", {argument(position)});
        const GenericValue gone = rows[position].handle;
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(position));
        if (!gone.isUndefined()) {
            EXPECT_EQ(failure([&] { call(table, u"IndexOf", {gone}); }),
                      message_text("IDS_VT_UNKNOWN_ROW_ERROR"));
        }
    }
    void move(std::size_t from, std::size_t to) {
        const auto offset = static_cast<std::int64_t>(to) - static_cast<std::int64_t>(from);
        call(table, u"Move", {argument(from), offset});
        Row row = std::move(rows[from]);
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(from));
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(to), std::move(row));
    }
    /// Sorts both and checks the order; what equal rows do is for the table to say.
    void sort() {
        const std::size_t a = anyColumn();
        const std::size_t b = 1 + (a % (columns.size() - 1));
        const bool two = a != b && below(2) == 0;
        const bool down = below(2) == 0;
        call(table, u"Sort",
             {columns[a] + (down ? u"  убыв" : u" ASC") + (two ? u", " + columns[b] : wstring())});
        std::vector<Row> before = std::exchange(rows, {});
        for (const GenericValue& id : unload(0)) {
            const auto found = std::find_if(before.begin(), before.end(),
                                            [&](const Row& row) { return GenericValue(row.id).equals(id); });
            ASSERT_NE(found, before.end());
            rows.push_back(std::move(*found));
            before.erase(found);
            if (rows.size() == 1)
                continue;
            const Row& above = rows[rows.size() - 2];
            const int order = compare_values(above.cells[a], rows.back().cells[a]);
            ASSERT_FALSE(down ? order < 0 : order > 0);
            ASSERT_FALSE(two && order == 0 && compare_values(above.cells[b], rows.back().cells[b]) > 0);
        }
        ASSERT_TRUE(before.empty());
    }
    void find() {
        const std::size_t a = anyColumn();
        const std::size_t b = anyColumn();
        const GenericValue sought = wanted(a);
        const auto named = [&](const Row& row) {
            return row.cells[a].equals(sought) || row.cells[b].equals(sought);
        };
        const auto anywhere = [&](const Row& row) {
            return std::any_of(row.cells.begin(), row.cells.end(),
                               [&](const GenericValue& cell) { return cell.equals(sought); });
        };
        const bool all = below(2) == 0;
        const auto expected = all ? std::find_if(rows.begin(), rows.end(), anywhere)
                                  : std::find_if(rows.begin(), rows.end(), named);
        Arguments arguments = {sought};
        if (!all)
            arguments.push_back(GenericValue(a == b ? columns[a] : columns[a] + u" ," + columns[b]));
        const GenericValue found = call(table, u"Find", arguments);
        ASSERT_EQ(found.isUndefined(), expected == rows.end());
        if (expected != rows.end()) {
            ASSERT_TRUE(call(table, u"IndexOf", {found}).equals(expected - rows.begin()));
        }
    }
    void filter() {
        const std::size_t a = anyColumn();
        const std::size_t b = anyColumn();
        const GenericValue wantedA = wanted(a);
        const GenericValue wantedB = a == b ? wantedA : wanted(b);
        const GenericValue structure = make(u"Structure");
        call(structure, u"Insert", {Value(columns[a]), wantedA});
        call(structure, u"Insert", {Value(columns[b]), wantedB});
        const auto found = walk(call(table, u"FindRows", {structure}));
        std::size_t next = 0;
        for (const Row& row : rows) {
            if (!row.cells[a].equals(wantedA) || !row.cells[b].equals(wantedB))
                continue;
            ASSERT_LT(next, found.size());
            ASSERT_TRUE(property(found[next++], u"id").equals(row.id));
        }
        ASSERT_EQ(next, found.size());
    }
    /// Whether a total would leave something out: of texts alone, or of numbers beside other values.
    [[nodiscard]] bool hasNoTotal(std::size_t column) const {
        bool numbers = false, texts = false, others = false;
        for (const Row& row : rows) {
            const Value& cell = row.cells[column];
            if (cell.kind() == ValueKind::number)
                numbers = true;
            else if (cell.asString() != nullptr)
                texts = texts || !trim_all(*cell.asString()).empty();
            else if (!cell.isUndefined() && cell.kind() != ValueKind::null)
                others = true;
        }
        return numbers ? texts || others : texts && !others;
    }
    void total() {
        const std::size_t column = anyColumn();
        Numeric sum;
        bool any = false;
        for (const Row& row : rows) {
            if (const auto number = row.cells[column].asNumeric()) {
                sum += *number;
                any = true;
            }
        }
        if (hasNoTotal(column)) {
            EXPECT_THROW(call(table, u"Total", {Value(columns[column])}), ContextException);
            return;
        }
        const GenericValue total = call(table, u"Total", {Value(columns[column])});
        ASSERT_TRUE(any ? total.equals(sum) : total.isUndefined());
    }
    void fill() {
        const std::size_t column = anyColumn();
        const GenericValue filling = value(column);
        call(table, u"FillValues", {filling, Value(columns[column])});
        for (Row& row : rows)
            row.cells[column] = filling;
    }
    void load() {
        const std::size_t column = anyColumn();
        const GenericValue array = make(u"Array");
        const std::size_t count = below(rows.size() + 3);
        for (std::size_t i = 0; i < count; ++i) {
            const GenericValue loaded = value(column);
            call(array, u"Add", {loaded});
            if (i < rows.size())
                rows[i].cells[column] = loaded;
        }
        call(table, u"LoadColumn", {array, Value(columns[column])});
    }
    void clear() {
        call(table, u"Clear");
        rows.clear();
    }
    /// Adds an index over one or two columns, or drops one.
    void changeIndexes() {
        const GenericValue indexes = property(table, u"Indexes");
        const auto count = static_cast<std::size_t>(*call(indexes, u"Count").asNumeric());
        if (count < 3 && below(3) != 0) {
            const std::size_t a = anyColumn();
            const std::size_t b = 1 + (a % (columns.size() - 1));
            call(indexes, u"Add",
                 {Value(a != b && below(2) == 0 ? columns[a] + u"," + columns[b] : columns[a])});
        } else if (count != 0) {
            call(indexes, u"Delete", {below(count)});
        }
    }
    /// Walks over the rows, and over them once more within that, while rows come, go and move.
    void walkAndChange() {
        for (Walk outer(*this); outer.next(*this) && !testing::Test::HasFatalFailure();) {
            disturb();
            if (below(16) != 0)
                continue;
            for (Walk inner(*this); below(20) != 0 && inner.next(*this);)
                disturb();
        }
    }

    [[nodiscard]] std::vector<GenericValue> unload(std::size_t column) const {
        return walk(call(table, u"UnloadColumn", {Value(columns[column])}));
    }
    void check() {
        ASSERT_TRUE(call(table, u"Count").equals(rows.size()));
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const auto cells = unload(column);
            ASSERT_EQ(cells.size(), rows.size());
            for (std::size_t i = 0; i < cells.size(); ++i)
                ASSERT_TRUE(cells[i].equals(rows[i].cells[column])) << i << ' ' << column;
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (!rows[i].handle.isUndefined() || below(16) == 0) {
                ASSERT_TRUE(call(table, u"IndexOf", {handle(i)}).equals(i));
            }
        }
    }

  private:
    /// A walk that knows which rows it may still show: each once, in the order they had when it began, unless
    /// deleted before.
    class Walk {
      public:
        explicit Walk(const Table& table) : items_(table.table.query<IValueCollection>()->enumerate()) {
            for (const Row& row : table.rows)
                expected_.push_back(row.id);
        }
        bool next(const Table& table) {
            GenericValue item;
            const bool shown = items_->next(item);
            const int id = shown ? static_cast<int>(*property(item, u"Id").asNumeric()) : 0;
            while (!expected_.empty() && expected_.front() != id) {
                EXPECT_FALSE(std::any_of(table.rows.begin(), table.rows.end(), [this](const Row& row) {
                    return row.id == expected_.front();
                })) << "a row was left out";
                expected_.pop_front();
            }
            EXPECT_EQ(shown, !expected_.empty())
                << "a row was shown twice, out of order, or though it came later";
            if (!expected_.empty())
                expected_.pop_front();
            return shown;
        }

      private:
        InterfacePtr<IValueEnum> items_;
        std::deque<int> expected_;
    };

    void disturb() {
        if (below(8) == 0 && !rows.empty())
            remove(below(rows.size()));
        if (below(16) == 0)
            insert(below(rows.size() + 1));
        if (below(64) == 0)
            sort();
    }
    GenericValue number() {
        const Numeric half = Numeric(static_cast<int>(below(13)) - 6) / 2;
        return below(40) == 0 ? GenericValue(half * Numeric(10).pow(below(50))) : GenericValue(half);
    }
    /// Texts that begin alike, that differ in case alone, and that the locale takes for equal.
    GenericValue textValue() {
        static constexpr const wchar* kEnds[] = {u"a", u"A", u"b", u"é", u"e\u0301", u"e\u00AD"};
        return (below(2) == 0 ? wstring(u"name ") : wstring(u"a name that is longer than a word ")) +
               kEnds[below(6)];
    }
    GenericValue anything() {
        const auto small = static_cast<int>(below(6));
        switch (below(8)) {
        case 0:
            return GenericValue();
        case 1:
        case 2:
            return number();
        case 3:
            return textValue();
        case 4:
            return Date(2000 + small, 1, 1);
        case 5:
            return small % 2 == 0;
        case 6:
            return Value::null();
        default:
            return Type(static_cast<Type::Code>(small));
        }
    }

    std::mt19937 random_;
    int nextId_ = 1;
};

} // namespace model
