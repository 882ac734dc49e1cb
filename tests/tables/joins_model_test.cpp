// SPDX-License-Identifier: Apache-2.0
// Concerns: joins and sets of random tables, beside SQLite. CORE_NIGHTLY=1 asks ten times as many questions.
#include "tests/support/rounds.h"
#include "tests/support/sqlite_database.h"
#include "tests/tables/table_fixture.h"

#include <algorithm>
#include <random>

namespace {

using namespace script;

/// Two random tables of ours, and the same ones in SQLite as "l" and "r": numbers as cents, dates as ticks.
class ModelledJoins : public TableTest {
  protected:
    enum class Kind { text, number, date };
    static constexpr wstring_view kLeft[] = {u"A", u"B", u"X"};
    static constexpr wstring_view kRight[] = {u"C", u"D", u"Y"};

    static int questions() { return support::rounds(10'000, 100'000); }
    std::size_t below(std::size_t count) { return random_() % count; }
    bool one_in(std::size_t count) { return below(count) == 0; }

    /// A value, and how SQLite writes it. The values of both tables meet often.
    std::pair<Value, std::string> cell(Kind kind, std::size_t range, bool whole) {
        if (one_in(6))
            return {one_in(2) ? Value() : Value::null(), "NULL"};
        const std::size_t number = below(range);
        switch (kind) {
        case Kind::text: {
            const wstring text = u"t" + string_intto(number);
            return {Value(text), "'" + to_utf8(text) + "'"};
        }
        case Kind::number: {
            const auto far = static_cast<std::int64_t>(one_in(8) ? std::uint64_t{number} << 40 : number);
            const std::int64_t cents = (whole ? far * 100 : far * 50) - 300;
            return {Value(Numeric::fromScaled(cents, 2)), std::to_string(cents)};
        }
        default: {
            const Date day =
                Date(2024, 1, 1) + DateSpan(static_cast<std::int64_t>(number) * kTicksPerDay / 2);
            return {Value(day), std::to_string(day.ticks())};
        }
        }
    }
    InterfacePtr<IValueTable> makeTable(const std::string& name, std::span<const wstring_view> names,
                                        std::span<const Kind> kinds) {
        const auto table = create_value_table();
        std::string columns;
        for (const wstring_view column : names) {
            table->addColumn(column);
            columns += (columns.empty() ? "" : ", ") + to_utf8(column);
        }
        database_.run("DROP TABLE IF EXISTS " + name);
        database_.run("CREATE TABLE " + name + " (" + columns + ")");
        const std::size_t rows = one_in(20) ? 0 : one_in(20) ? 300 : below(20);
        const std::size_t range = one_in(2) ? 6 : 500;
        const bool whole = one_in(2);
        std::string inserted;
        for (std::size_t row = 0; row < rows; ++row) {
            std::vector<Value> cells;
            std::string literals;
            for (const Kind kind : kinds) {
                auto [value, literal] = cell(kind, range, whole);
                cells.push_back(std::move(value));
                literals += (literals.empty() ? "" : ",") + literal;
            }
            inserted += (inserted.empty() ? "(" : ",(") + literals + ")";
            table->appendRow(cells);
        }
        if (rows != 0)
            database_.run("INSERT INTO " + name + " VALUES " + inserted);
        disturb(*table, name, names.size());
        return table;
    }
    /// Columns that are in no plain form though their cells are alike, and row ids that do not follow
    /// positions.
    void disturb(IValueTable& table, const std::string& name, std::size_t columns) {
        const std::size_t rows = table.rowCount();
        for (std::size_t i = 0; rows != 0 && i < columns; ++i) {
            if (!one_in(3))
                continue;
            const std::int32_t column = table.column(i).id;
            const GenericValue held = table.get(0, column);
            table.set(0, column, Value(true));
            table.set(0, column, Value(Numeric(10).pow(30)));
            table.set(0, column, held);
        }
        if (rows > 1 && one_in(3)) {
            call(Value(InterfacePtr<IValueTable>(&table).query<IValue>()), u"Move",
                 {0, static_cast<std::int64_t>(rows) - 1});
            database_.run("UPDATE " + name + " SET rowid = " + std::to_string(rows + 1) + " WHERE rowid = 1");
        }
    }
    static std::string shown(const Value& cell) {
        if (cell.isUndefined() || cell.kind() == ValueKind::null)
            return "NULL";
        if (const Date* const date = cell.asDate())
            return std::to_string(date->ticks());
        if (const auto number = cell.asNumeric())
            return to_utf8((*number * 100).toString());
        return to_utf8(cell.presentation());
    }
    static sqlite::Rows rows_of(IValueTable& table) {
        sqlite::Rows rows(table.rowCount());
        for (std::size_t row = 0; row < rows.size(); ++row) {
            for (std::size_t i = 0; i < table.columnCount(); ++i)
                rows[row].push_back(shown(table.get(row, table.column(i).id)));
        }
        return rows;
    }
    void makeTables() {
        for (std::size_t i = 0; i < 2; ++i)
            kinds_[i] = static_cast<Kind>(below(3));
        left_ = makeTable("l", kLeft, kinds_);
        right_ = makeTable("r", kRight, kinds_);
    }
    void askJoins() {
        for (const bool two : {false, true}) {
            const std::string on = two ? "A = C AND B = D" : "A = C";
            const wstring condition = two ? u"A = C, B = D" : u"A=C";
            const auto joined = [&](JoinKind kind, bool adds) {
                const auto columns = adds ? std::optional<wstring>(u"C As K, Y, D") : std::nullopt;
                return rows_of(*core::join(*left_, *right_, condition, columns, kind));
            };
            const std::string both = "SELECT A, B, X, C, Y, D FROM l";
            const std::string ordered = " ORDER BY l.rowid, r.rowid";
            EXPECT_EQ(joined(JoinKind::inner, true), database_.query(both + " JOIN r ON " + on + ordered));
            EXPECT_EQ(joined(JoinKind::left, true),
                      database_.query(both + " LEFT JOIN r ON " + on + ordered));
            EXPECT_EQ(joined(JoinKind::full, true),
                      database_.query("SELECT iif(l.rowid IS NULL, C, A), " +
                                      std::string(two ? "iif(l.rowid IS NULL, D, B)" : "B") +
                                      ", X, C, Y, D FROM l FULL JOIN r ON " + on +
                                      " ORDER BY l.rowid IS NULL, l.rowid, r.rowid"));
            const std::string those = "(SELECT 1 FROM r WHERE " + on + ") ORDER BY l.rowid";
            EXPECT_EQ(joined(JoinKind::semi, false),
                      database_.query("SELECT * FROM l WHERE EXISTS " + those));
            EXPECT_EQ(joined(JoinKind::anti, false),
                      database_.query("SELECT * FROM l WHERE NOT EXISTS " + those));
            asked_ += 5;
        }
    }
    /// Undefined and Null are two values to a table of ours and one to SQLite, so they are told apart here.
    void askSets() {
        const auto other = makeTable("o", kLeft, kinds_);
        for (const auto& table : {left_, other}) {
            for (std::size_t row = 0; row < table->rowCount(); ++row) {
                for (std::size_t i = 0; i < table->columnCount(); ++i) {
                    if (table->get(row, table->column(i).id).kind() == ValueKind::null)
                        table->set(row, table->column(i).id, Value());
                }
            }
        }
        const auto sorted = [](sqlite::Rows rows) {
            std::sort(rows.begin(), rows.end());
            return rows;
        };
        const auto expect = [&](const InterfacePtr<IValueTable>& ours, const std::string& sql) {
            EXPECT_EQ(sorted(rows_of(*ours)), sorted(database_.query(sql))) << sql;
            ++asked_;
        };
        expect(unite(*left_, *other), "SELECT * FROM l UNION SELECT * FROM o");
        EXPECT_EQ(rows_of(*unite(*left_, *other, EqualRows::all)),
                  database_.query("SELECT A, B, X FROM (SELECT *, 1 AS t, rowid AS i FROM l UNION ALL "
                                  "SELECT *, 2, rowid FROM o) ORDER BY t, i"));
        expect(except(*left_, *other), "SELECT * FROM l EXCEPT SELECT * FROM o");
        expect(intersect(*left_, *other), "SELECT * FROM l INTERSECT SELECT * FROM o");
        expect(distinct(*left_), "SELECT DISTINCT * FROM l");
        EXPECT_EQ(rows_of(*distinct(*left_, {u"B", u"a"})),
                  database_.query("SELECT B, A FROM l GROUP BY B, A ORDER BY min(rowid)"));
        asked_ += 2;
    }

    std::mt19937_64 random_{11};
    sqlite::Database database_;
    Kind kinds_[3] = {Kind::text, Kind::text, Kind::number};
    InterfacePtr<IValueTable> left_;
    InterfacePtr<IValueTable> right_;
    int asked_ = 0;
};

TEST_F(ModelledJoins, AnswerAsSqliteDoes) {
    while (asked_ < questions() && !HasFailure()) {
        makeTables();
        askJoins();
        askSets();
    }
}

/// The rows of two large tables that match, found by looking at one pair after the other through a map.
TEST_F(ModelledJoins, LargeTablesMatchAsAMapSays) {
    constexpr std::size_t kRows = 30'000;
    // Texts of every frequency, numbers near and far, with other scales, days and moments.
    for (const int form : {0, 1, 2, 3, 4, 5, 6}) {
        const auto key = [&](std::size_t number, bool left) -> Value {
            switch (form) {
            case 0:
                return Value(u"k" + string_intto(number % 100));
            case 1:
                return Value(u"k" + string_intto(number));
            case 2:
                return Value(static_cast<std::int64_t>(number));
            case 3:
                return Value(static_cast<std::int64_t>(number) << 32);
            case 4:
                return Value(Numeric::fromScaled(static_cast<std::int64_t>(number) * 50, left ? 2 : 4));
            case 5:
                return Value(Date(2000, 1, 1) + DateSpan(static_cast<std::int64_t>(number) * kTicksPerDay));
            default:
                return number % 2 == 0 && left ? Value(Numeric(10).pow(20) + Numeric(number)) : Value(number);
            }
        };
        std::vector<std::string> keys[2];
        InterfacePtr<IValueTable> tables[2];
        for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
            tables[side] = create_value_table();
            tables[side]->addColumn(side == 0 ? u"L" : u"R");
            tables[side]->addColumn(side == 0 ? u"I" : u"J");
            for (std::size_t i = 0; i < (side == 0 ? kRows : kRows / 3); ++i) {
                const Value cells[] = {key(random_() % kRows, side == 0), Value(i)};
                tables[side]->appendRow(cells);
                keys[side].push_back(to_utf8(cells[0].presentation()));
            }
        }
        std::multimap<std::string, std::size_t> places;
        for (std::size_t i = 0; i < keys[1].size(); ++i)
            places.emplace(keys[1][i], i);
        const auto joined = core::join(*tables[0], *tables[1], u"L = R", u"J");
        std::size_t row = 0;
        for (std::size_t i = 0; i < keys[0].size(); ++i) {
            const auto [first, last] = places.equal_range(keys[0][i]);
            for (auto place = first; place != last; ++place, ++row) {
                ASSERT_LT(row, joined->rowCount());
                ASSERT_TRUE(joined->get(row, 1).equals(i)) << form;
                ASSERT_TRUE(joined->get(row, 2).equals(place->second)) << form;
            }
        }
        ASSERT_EQ(row, joined->rowCount()) << form;
    }
}

} // namespace
