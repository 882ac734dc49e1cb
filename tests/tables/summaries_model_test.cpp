// SPDX-License-Identifier: Apache-2.0
// Concerns: aggregates, subtotals, pivots and windows of random tables, beside SQLite. CORE_NIGHTLY=1 asks
// ten times as many questions.
#include "tests/support/rounds.h"
#include "tests/support/sqlite_database.h"
#include "tests/tables/table_fixture.h"

#include <core/collections/value_array.h>

#include <algorithm>
#include <random>

namespace {

using namespace script;

/// A random table of ours, and the same one in SQLite as "t": texts as they are, prices as cents, dates as
/// ticks.
class ModelledTables : public TableTest {
  protected:
    static constexpr const char* kColumns[] = {"A", "B", "N", "P", "D"};

    static int questions() { return support::rounds(10'000, 100'000); }
    std::size_t below(std::size_t count) { return random_() % count; }
    bool one_in(std::size_t count) { return below(count) == 0; }

    /// Makes both tables; in half of them each cell may be empty, Undefined or Null. Where an object has
    /// been, each cell of a column stays a value of its own.
    void makeTables() {
        table_ = create_value_table();
        for (const char* name : kColumns)
            table_->addColumn(wide(name));
        database_.run("DROP TABLE IF EXISTS t");
        database_.run("CREATE TABLE t (A TEXT, B INTEGER, N INTEGER, P INTEGER, D INTEGER)");
        const bool empties = one_in(2);
        const Value empty = one_in(3) ? Value::null() : Value();
        const bool ofValues = one_in(3);
        if (ofValues)
            table_->appendRow(std::vector<Value>(std::size(kColumns), make(u"Array")));
        const std::size_t rows = one_in(50) ? 400 : below(30);
        const std::size_t texts = one_in(2) ? 3 : 500;
        std::string inserted;
        for (std::size_t i = 0; i < rows; ++i) {
            const std::string text(1 + below(texts) % 26, static_cast<char>('a' + below(texts) % 26));
            const auto b = static_cast<std::int64_t>(below(4)) - 1;
            const std::int64_t n = one_in(9) ? static_cast<std::int64_t>(random_() >> 6)
                                             : static_cast<std::int64_t>(below(9)) - 4;
            const auto cents = static_cast<std::int64_t>(below(100'000)) - 50'000;
            const Date day =
                Date(2024, 1, 1) + DateSpan(static_cast<std::int64_t>(below(60)) * kTicksPerDay / 2);
            std::vector<Value> cells = {Value(wide(text)), Value(b), Value(n),
                                        Value(Numeric::fromScaled(cents, 2)), Value(day)};
            std::vector<std::string> literals = {"'" + text + "'", std::to_string(b), std::to_string(n),
                                                 std::to_string(cents), std::to_string(day.ticks())};
            inserted += inserted.empty() ? "(" : ",(";
            for (std::size_t c = 0; c < cells.size(); ++c) {
                if (empties && one_in(4)) {
                    cells[c] = empty;
                    literals[c] = "NULL";
                }
                inserted += (c != 0 ? "," : "") + literals[c];
            }
            inserted += ")";
            table_->appendRow(cells);
        }
        if (ofValues)
            table_->removeRow(0);
        if (rows != 0)
            database_.run("INSERT INTO t VALUES " + inserted);
        if (rows > 1 && one_in(3)) { // row ids that do not follow the positions
            GenericValue object(table_.query<IValue>());
            call(object, u"Move", {0, static_cast<std::int64_t>(rows) - 1});
            database_.run("UPDATE t SET rowid = " + std::to_string(rows + 1) + " WHERE rowid = 1");
        }
    }
    static wstring wide(std::string_view text) { return wstring(text.begin(), text.end()); }

    /// A cell as SQLite has it; numbers are those of a column with so many digits behind the point.
    static std::string shown(const Value& cell, std::int64_t unit) {
        if (cell.isUndefined() || cell.kind() == ValueKind::null)
            return "NULL";
        if (const Date* const date = cell.asDate())
            return std::to_string(date->ticks());
        if (const auto number = cell.asNumeric())
            return to_utf8((*number * unit).toString());
        return to_utf8(cell.presentation());
    }
    static std::int64_t unit_of(std::string_view column) { return column == "P" ? 100 : 1; }
    /// Columns of another table than `t`, each with the unit of its numbers.
    static sqlite::Rows rows_of(IValueTable& table, const std::vector<std::int64_t>& units) {
        sqlite::Rows rows(table.rowCount());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t i = 0; i < units.size(); ++i)
                rows[row].push_back(shown(table.get(row, table.column(i).id), units[i]));
        }
        return rows;
    }

    /// Some of the columns, in any order.
    std::vector<std::string> someColumns(std::vector<std::string> from, std::size_t most) {
        std::shuffle(from.begin(), from.end(), random_);
        from.resize(below(std::min(most, from.size()) + 1));
        return from;
    }
    static std::vector<wstring> names(const std::vector<std::string>& columns) {
        std::vector<wstring> names;
        for (const std::string& column : columns)
            names.push_back(wide(column));
        return names;
    }
    static std::string joined(const std::vector<std::string>& parts, const std::string& between = ",") {
        std::string all;
        for (const std::string& part : parts)
            all += (all.empty() ? "" : between) + part;
        return all;
    }

    std::mt19937_64 random_{97};
    sqlite::Database database_;
    InterfacePtr<IValueTable> table_;
};

struct Asked {
    Aggregate aggregate;
    std::string sql;
    std::int64_t unit;
};

class Groups : public ModelledTables {
  protected:
    /// An aggregate that SQL has, called `name`. Sums are compared where SQLite's integers hold them.
    Asked randomAggregate(const wstring& name) {
        const std::string column = kColumns[below(5)];
        const wstring wideColumn = wide(column);
        switch (below(6)) {
        case 0:
            return {count(name), "count(*)", 1};
        case 1:
            return {count_filled(wideColumn, name), "count(" + column + ")", 1};
        case 2:
            return {count_distinct(wideColumn, name), "count(DISTINCT " + column + ")", 1};
        case 3:
            return {core::min(wideColumn, name), "min(" + column + ")", unit_of(column)};
        case 4:
            return {core::max(wideColumn, name), "max(" + column + ")", unit_of(column)};
        default: {
            const std::string number = one_in(2) ? "P" : "N";
            return {sum(wide(number), name), "sum(" + number + ")", unit_of(number)};
        }
        }
    }
    std::vector<Asked> randomAggregates() {
        std::vector<Asked> asked;
        for (std::size_t i = 0; i < 1 + below(3); ++i)
            asked.push_back(randomAggregate(u"R" + string_intto(i)));
        return asked;
    }
};

TEST_F(Groups, AreThoseOfSql) {
    for (int i = 0; i < questions(); ++i) {
        if (i % 10 == 0)
            makeTables();
        const std::vector<std::string> keys = someColumns({"A", "B", "N", "D"}, 3);
        std::vector<std::string> selected = keys;
        std::vector<Aggregate> aggregates;
        std::vector<std::int64_t> units(keys.size(), 1);
        for (const Asked& one : randomAggregates()) {
            selected.push_back(one.sql);
            aggregates.push_back(one.aggregate);
            units.push_back(one.unit);
        }
        // Without GROUP BY SQL answers for no rows, too.
        const std::string sql =
            "SELECT " + joined(selected) + " FROM t " +
            (keys.empty() ? "HAVING count(*) > 0" : "GROUP BY " + joined(keys) + " ORDER BY min(rowid)");
        const auto grouped = group(*table_, names(keys), aggregates);
        ASSERT_EQ(rows_of(*grouped, units), database_.query(sql)) << sql;
    }
}

TEST_F(Groups, HaveTheTotalsOfEveryLevel) {
    for (int i = 0; i < questions() / 20; ++i) {
        makeTables();
        const std::vector<std::string> keys = someColumns({"A", "B", "D"}, 3);
        const std::vector<Asked> asked = randomAggregates();
        std::vector<Aggregate> aggregates;
        std::vector<std::int64_t> units(keys.size() + 1, 1);
        std::vector<std::string> sqls;
        for (const Asked& one : asked) {
            aggregates.push_back(one.aggregate);
            units.push_back(one.unit);
            sqls.push_back(one.sql);
        }
        const auto grouped = group(*table_, names(keys), aggregates, u"Level");
        sqlite::Rows found = rows_of(*grouped, units);
        // Each row stands below the last one of the level above, and has its keys.
        std::vector<std::vector<std::string>> above;
        for (const auto& row : found) {
            const auto level = static_cast<std::size_t>(std::stoi(row[0]));
            ASSERT_LE(level, above.size());
            above.resize(level);
            for (std::size_t k = 0; k + 1 < level; ++k)
                ASSERT_EQ(row[k + 1], above.back()[k + 1]);
            above.push_back(row);
        }
        sqlite::Rows expected;
        for (std::size_t level = 0; level <= keys.size(); ++level) {
            std::string sql = "SELECT " + std::to_string(level);
            for (std::size_t k = 0; k < keys.size(); ++k)
                sql += k < level ? "," + keys[k] : ",NULL";
            sql += "," + joined(sqls) + " FROM t ";
            const std::vector<std::string> prefix(keys.begin(),
                                                  keys.begin() + static_cast<std::ptrdiff_t>(level));
            sql += level == 0 ? "HAVING count(*) > 0" : "GROUP BY " + joined(prefix);
            for (auto& row : database_.query(sql))
                expected.push_back(std::move(row));
        }
        std::ranges::sort(found);
        std::ranges::sort(expected);
        ASSERT_EQ(found, expected);
    }
}

TEST_F(Groups, KeepTheOrderOfTheirRows) {
    for (int i = 0; i < questions() / 20; ++i) {
        makeTables();
        const std::string column = kColumns[below(5)];
        const wstring argument = wide(column);
        const auto grouped = group(
            *table_, {u"B"}, {list(argument, u"All"), first(argument, u"First"), last(argument, u"Last")});
        for (std::size_t row = 0; row < grouped->rowCount(); ++row) {
            const std::string key = shown(grouped->get(row, 0), 1);
            const sqlite::Rows expected = database_.query("SELECT " + column + " FROM t WHERE B IS " + key +
                                                          " AND " + column + " IS NOT NULL ORDER BY rowid");
            sqlite::Rows listed;
            for (const Value& value : grouped->get(row, 1).query<IValueSequence>()->values())
                listed.push_back({shown(value, unit_of(column))});
            ASSERT_EQ(listed, expected);
            ASSERT_EQ(shown(grouped->get(row, 2), unit_of(column)),
                      expected.empty() ? "NULL" : expected.front()[0]);
            ASSERT_EQ(shown(grouped->get(row, 3), unit_of(column)),
                      expected.empty() ? "NULL" : expected.back()[0]);
        }
    }
}

TEST_F(Groups, BecomeColumnsAndRowsAgain) {
    for (int i = 0; i < questions() / 40; ++i) {
        makeTables();
        const std::string turned = one_in(2) ? "B" : "D";
        const Asked asked = randomAggregate(u"R");
        const auto pivoted = pivot(*table_, {u"A"}, wide(turned), {asked.aggregate}, 400);
        const sqlite::Rows values = database_.query("SELECT DISTINCT " + turned + " FROM t ORDER BY 1");
        const sqlite::Rows keys = database_.query("SELECT A FROM t GROUP BY A ORDER BY min(rowid)");
        ASSERT_EQ(pivoted->columnCount(), values.size() + 1);
        sqlite::Rows expected;
        for (const auto& key : keys) {
            auto& row = expected.emplace_back(key);
            const std::string text = key[0] == "NULL" ? "NULL" : "'" + key[0] + "'";
            for (const auto& value : values) {
                const sqlite::Rows cell = database_.query("SELECT " + asked.sql + " FROM t WHERE A IS " +
                                                          text + " AND " + turned + " IS " + value[0]);
                row.push_back(cell[0][0]);
            }
        }
        std::vector<std::int64_t> units(values.size() + 1, asked.unit);
        ASSERT_EQ(rows_of(*pivoted, units), expected);

        const EmptyCells empty = one_in(2) ? EmptyCells::skip : EmptyCells::keep;
        const auto back = unpivot(*table_, {u"N", u"B"}, u"Name", u"Value", empty);
        const std::string filled = empty == EmptyCells::skip ? "WHERE v IS NOT NULL " : "";
        ASSERT_EQ(
            rows_of(*back, {1, 100, 1, 1, 1}),
            database_.query(
                "SELECT A, P, D, c, v FROM (SELECT rowid AS r, 1 AS o, A, P, D, 'N' AS c, N AS v FROM t "
                "UNION ALL SELECT rowid, 2, A, P, D, 'B', B FROM t) " +
                filled + "ORDER BY r, o"));
    }
}

class Windows : public ModelledTables {};

TEST_F(Windows, AreThoseOfSql) {
    for (int i = 0; i < questions() / 5; ++i) {
        if (i % 10 == 0)
            makeTables();
        const std::vector<std::string> partition = someColumns({"A", "B"}, 2);
        const std::vector<std::string> ordered = someColumns({"A", "B", "N", "P", "D"}, 2);
        std::string order;
        std::string ours;
        for (const std::string& column : ordered) {
            const std::string direction = one_in(2) ? " DESC" : "";
            order += column + direction + ",";
            ours += (ours.empty() ? "" : ", ") + column + direction;
        }
        const std::string peers = (partition.empty() ? "" : "PARTITION BY " + joined(partition)) +
                                  (ordered.empty() ? "" : " ORDER BY " + order.substr(0, order.size() - 1));
        const std::string rows =
            (partition.empty() ? "" : "PARTITION BY " + joined(partition)) + " ORDER BY " + order + "rowid";
        const std::string column = kColumns[below(5)];
        const std::string number = one_in(2) ? "P" : "B";
        const auto distance = 1 + below(3);
        std::vector<WindowFunction> functions = {
            running_total(wide(number), u"R0"), row_number(u"R1"), lag(wide(column), u"R2", distance),
            lead(wide(column), u"R3", distance), difference(wide(number), u"R4")};
        std::string sql = "SELECT sum(" + number + ") OVER (" + rows +
                          " ROWS UNBOUNDED PRECEDING), row_number() OVER (" + rows + "), lag(" + column +
                          "," + std::to_string(distance) + ") OVER (" + rows + "), lead(" + column + "," +
                          std::to_string(distance) + ") OVER (" + rows + "), " + number + " - lag(" + number +
                          ") OVER (" + rows + ")";
        std::vector<std::int64_t> units = {unit_of(number), 1, unit_of(column), unit_of(column),
                                           unit_of(number)};
        if (!ordered.empty()) {
            functions.push_back(rank(u"R5"));
            functions.push_back(dense_rank(u"R6"));
            sql += ", rank() OVER (" + peers + "), dense_rank() OVER (" + peers + ")";
            units.insert(units.end(), {1, 1});
        }
        const auto copied =
            call(GenericValue(table_.query<IValue>()), u"Copy", {GenericValue(), GenericValue()})
                .query<IValueTable>();
        add_windows(*copied, functions, names(partition), wide(ours));
        units.insert(units.begin(), {1, 1, 1, 100, 1});
        ASSERT_EQ(rows_of(*copied, units),
                  database_.query("SELECT A, B, N, P, D, " + sql.substr(7) + " FROM t ORDER BY rowid"))
            << sql;
    }
}

} // namespace
