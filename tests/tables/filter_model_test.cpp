// SPDX-License-Identifier: Apache-2.0
// Concerns: random filters over random tables give the rows that SQLite gives, with and without indexes.
#include "tests/support/rounds.h"
#include "tests/support/sqlite_database.h"
#include "tests/tables/table_fixture.h"

#include <core/tables/filter.h>

#include <random>

namespace {

using namespace script;

/// A number in both languages. SQLite has it as an integer: times 100 for each of `scale`.
struct Number {
    std::string ours;
    std::string theirs;
    int scale = 0;
};
struct Texts {
    std::string ours;
    std::string theirs;
};

/// Random conditions. All letters are small, so that the order of the locale is that of SQLite.
class FilterModel : public TableTest {
  protected:
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    template <class T>
    const T& one(const std::vector<T>& of) {
        return of[static_cast<std::size_t>(below(static_cast<int>(of.size())))];
    }
    std::string word() {
        std::string text;
        for (int i = below(4); i > 0; --i)
            text += static_cast<char>('a' + below(3));
        return text;
    }
    static std::string decimal(int cents) {
        return std::to_string(cents / 100) + "." + std::to_string(cents / 10 % 10) +
               std::to_string(cents % 10);
    }

    Number number(int depth) {
        switch (depth <= 0 ? below(4) : below(11)) {
        case 0:
            return {"Key", "Key", 0};
        case 1:
            return {"Price", "Price", 1};
        case 2: {
            const std::string whole = std::to_string(below(12) - 4);
            return {whole, whole, 0};
        }
        case 3: {
            const int cents = below(1500);
            return {decimal(cents), std::to_string(cents), 1};
        }
        case 4: {
            const Number a = number(depth - 1);
            return {"-(" + a.ours + ")", "-(" + a.theirs + ")", a.scale};
        }
        case 9:
            return below(2) == 0 ? Number{"Day(Day)", "Day", 0}
                                 : Number{"WeekDay(Day)", "((Day - 1) % 7 + 1)", 0};
        case 5: {
            const Texts a = text(depth - 1);
            return {"StrLen(" + a.ours + ")", "length(" + a.theirs + ")", 0};
        }
        case 6: {
            const Number a = number(0);
            const Number b = number(depth - 1);
            return {"(" + a.ours + " * " + b.ours + ")", "(" + a.theirs + " * " + b.theirs + ")",
                    a.scale + b.scale};
        }
        case 7: {
            const std::string condition = this->condition(depth - 1);
            const auto [a, b] = pair(depth - 1);
            return {"If(" + ours(condition) + ", " + a.ours + ", " + b.ours + ")",
                    "(CASE WHEN " + theirs(condition) + " THEN " + a.theirs + " ELSE " + b.theirs + " END)",
                    a.scale};
        }
        case 8: {
            const auto [a, b] = pair(depth - 1);
            static const std::vector<std::pair<std::string, std::string>> kNames = {
                {"Coalesce", "coalesce"}, {"Min", "min"}, {"Max", "max"}};
            const auto& name = one(kNames);
            return {name.first + "(" + a.ours + ", " + b.ours + ")",
                    name.second + "(" + a.theirs + ", " + b.theirs + ")", a.scale};
        }
        default: {
            const auto [a, b] = pair(depth - 1);
            const std::string sign = below(2) == 0 ? " + " : " - ";
            return {"(" + a.ours + sign + b.ours + ")", "(" + a.theirs + sign + b.theirs + ")", a.scale};
        }
        }
    }
    /// Two numbers of one scale.
    std::pair<Number, Number> pair(int depth) {
        Number a = number(depth);
        Number b = number(depth);
        for (; a.scale < b.scale; ++a.scale)
            a.theirs = "(100 * " + a.theirs + ")";
        for (; b.scale < a.scale; ++b.scale)
            b.theirs = "(100 * " + b.theirs + ")";
        return {a, b};
    }
    Texts text(int depth) {
        switch (depth <= 0 ? below(3) : below(6)) {
        case 0:
        case 1:
            return {"Name", "Name"};
        case 2: {
            const std::string text = word();
            return {"\"" + text + "\"", "'" + text + "'"};
        }
        case 3: {
            const Texts a = text(depth - 1);
            return {"Lower(" + a.ours + ")", "lower(" + a.theirs + ")"};
        }
        case 4: {
            const Texts a = text(depth - 1);
            const std::string count = std::to_string(below(3));
            return {"Left(" + a.ours + ", " + count + ")", "substr(" + a.theirs + ", 1, " + count + ")"};
        }
        default: {
            const Texts a = text(depth - 1);
            const Texts b = text(depth - 1);
            return {"(" + a.ours + " + " + b.ours + ")", "(" + a.theirs + " || " + b.theirs + ")"};
        }
        }
    }
    Texts day() {
        switch (below(8)) {
        case 0:
        case 1:
            return {"Day", "Day"};
        case 2:
            return {"BegOfDay(Day)", "Day"};
        case 3:
            return {"BegOfWeek(Day)", "(Day - (Day - 1) % 7)"};
        default:
            break;
        }
        const int day = below(28) + 1;
        return {"'202401" + std::string(day < 10 ? "0" : "") + std::to_string(day) + "'",
                std::to_string(day)};
    }

    // A condition is both texts with a tab between them.
    static std::string both(const std::string& ours, const std::string& theirs) {
        return ours + '\t' + theirs;
    }
    static std::string ours(const std::string& condition) {
        return condition.substr(0, condition.find('\t'));
    }
    static std::string theirs(const std::string& condition) {
        return condition.substr(condition.find('\t') + 1);
    }

    /// Two operands that can be compared.
    std::pair<Texts, Texts> operands(int depth) {
        switch (below(3)) {
        case 0: {
            const auto [a, b] = pair(depth);
            return {{a.ours, a.theirs}, {b.ours, b.theirs}};
        }
        case 1:
            return {text(depth), text(0)};
        default:
            return {day(), day()};
        }
    }
    std::string condition(int depth) {
        static const std::vector<std::string> kSigns = {"=", "<>", "<", "<=", ">", ">="};
        const std::string negation = below(3) == 0 ? "Not " : "";
        switch (depth <= 0 ? below(6) : below(10)) {
        case 0: {
            const auto [a, b] = operands(depth - 1);
            const auto c = a; // the same kind
            return both(b.ours + " " + negation + "Between " + c.ours + " And " + b.ours,
                        b.theirs + " " + negation + "Between " + c.theirs + " And " + b.theirs);
        }
        case 1: {
            const auto [a, b] = operands(depth - 1);
            const auto third = b;
            return both(a.ours + " " + negation + "In (" + b.ours + ", " + third.ours + ")",
                        a.theirs + " " + negation + "In (" + b.theirs + ", " + third.theirs + ")");
        }
        case 2: {
            const Texts a = text(depth - 1);
            static const std::vector<std::string> kPatterns = {"a%", "%b", "_", "%a%", "", "%", "a_c", "b%c"};
            const std::string& pattern = one(kPatterns);
            return both(a.ours + " " + negation + "Like \"" + pattern + "\"",
                        a.theirs + " " + negation + "Like '" + pattern + "'");
        }
        case 3: {
            const auto [a, b] = operands(depth - 1);
            return both(a.ours + " Is " + negation + "Undefined", a.theirs + " Is " + negation + "Null");
        }
        case 4:
            return both("Flag", "Flag");
        case 6: {
            const std::string inner = condition(depth - 1);
            return both("Not (" + ours(inner) + ")", "Not (" + theirs(inner) + ")");
        }
        case 7:
        case 8: {
            const std::string word = below(2) == 0 ? " And " : " Or ";
            std::string left = condition(depth - 1);
            for (int i = below(3); i >= 0; --i) {
                const std::string right = condition(depth - 1);
                left = both("(" + ours(left) + ")" + word + "(" + ours(right) + ")",
                            "(" + theirs(left) + ")" + word + "(" + theirs(right) + ")");
            }
            return left;
        }
        default: {
            const auto [a, b] = operands(depth - 1);
            const std::string& sign = one(kSigns);
            return both(a.ours + " " + sign + " " + b.ours, a.theirs + " " + sign + " " + b.theirs);
        }
        }
    }

    /// A table whose rows come from the front, the middle and the end, some of them deleted again.
    GenericValue makeTable() {
        const GenericValue table = table_of(u"Key,Price,Name,Day,Flag", {});
        const auto rows = table.query<IValueTable>();
        for (int i = 0; i < 60; ++i) {
            const auto maybe = [this](Value value) { return below(6) == 0 ? Value() : value; };
            const Value cells[] = {maybe(Value(below(12) - 4)),
                                   maybe(Value(Numeric::fromScaled(below(1500), 2))),
                                   maybe(Value(from_utf8(word()))),
                                   maybe(Value(Date(2024, 1, below(28) + 1))), maybe(Value(below(2) == 0))};
            rows->appendRow(cells);
            if (below(4) == 0)
                call(table, u"Move", {rows->rowCount() - 1, -below(static_cast<int>(rows->rowCount()))});
            if (below(8) == 0)
                rows->removeRow(static_cast<std::size_t>(below(static_cast<int>(rows->rowCount()))));
        }
        static const std::vector<wstring> kIndexes = {u"", u"Key", u"Name", u"Key,Day", u"Price", u"Day"};
        if (const wstring& columns = one(kIndexes); !columns.empty())
            call(property(table, u"Indexes"), u"Add", {columns});
        return table;
    }
    static std::string theirs(const Value& cell) {
        if (const NumericRef number = cell.asNumeric())
            return std::to_string(static_cast<int>(*number));
        if (const wstring_view* const text = cell.asString())
            return "'" + to_utf8(*text) + "'";
        if (const Date* const date = cell.asDate())
            return std::to_string(date->getMonthDay());
        return cell.isUndefined() ? "NULL" : cell.isTrue() ? "1" : "0";
    }
    void load(IValueTable& table) {
        model_.run("DROP TABLE IF EXISTS t; CREATE TABLE t(Position, Key, Price, Name, Day, Flag)");
        for (std::size_t row = 0; row < table.rowCount(); ++row) {
            std::string cells = std::to_string(row);
            for (const int column : {0, 1, 2, 3, 4}) {
                const GenericValue cell = table.get(row, column);
                const NumericRef number = cell.asNumeric();
                cells +=
                    ", " + (column == 1 && number ? theirs(Value(*number * Numeric(100))) : theirs(cell));
            }
            model_.run("INSERT INTO t VALUES(" + cells + ")");
        }
    }
    std::vector<std::size_t> expected(const std::string& condition) {
        std::vector<std::size_t> rows;
        for (const auto& row :
             model_.query("SELECT Position FROM t WHERE " + condition + " ORDER BY Position"))
            rows.push_back(std::stoul(row.front()));
        return rows;
    }

    std::mt19937 random_{2024};
    sqlite::Database model_;
};

TEST_F(FilterModel, FindsTheRowsThatSqliteFinds) {
    const int tables = support::rounds(100, 1000);
    model_.run("PRAGMA case_sensitive_like = ON");
    for (int i = 0; i < tables; ++i) {
        const GenericValue table = makeTable();
        const auto rows = table.query<IValueTable>();
        load(*rows);
        for (int j = 0; j < 100; ++j) {
            const std::string condition = this->condition(3);
            const Filter filter(ours(condition));
            ASSERT_EQ(find_rows(*rows, filter), expected(theirs(condition))) << condition;
            ASSERT_EQ(Filter(filter.text()), filter) << "what is written is read as the same: " << condition;
        }
    }
}

TEST_F(FilterModel, KeepsAndDeletesWhatItFinds) {
    for (int i = 0; i < 200; ++i) {
        const GenericValue table = makeTable();
        const auto rows = table.query<IValueTable>();
        const Filter filter(ours(condition(2)));
        const auto found = find_rows(*rows, filter);
        wstring kept;
        wstring deleted;
        for (std::size_t row = 0, next = 0; row < rows->rowCount(); ++row) {
            wstring cells;
            for (const int column : {0, 1, 2, 3, 4})
                cells += rows->get(row, column).presentation() + u"|";
            const bool passes = next < found.size() && found[next] == row;
            next += passes ? 1 : 0;
            (passes ? kept : deleted) += cells;
        }
        const auto content_of = [](IValueTable& of) {
            wstring cells;
            for (std::size_t row = 0; row < of.rowCount(); ++row)
                for (const int column : {0, 1, 2, 3, 4})
                    cells += of.get(row, column).presentation() + u"|";
            return cells;
        };
        const auto copy = copy_rows(*rows, filter);
        EXPECT_EQ(content_of(*copy), kept);
        const auto other = copy_rows(*rows, {});
        EXPECT_EQ(delete_rows(*other, filter), found.size());
        EXPECT_EQ(content_of(*other), deleted);
        EXPECT_EQ(keep_rows(*rows, filter) + found.size(), other->rowCount() + found.size());
        EXPECT_EQ(content_of(*rows), kept);
    }
}

} // namespace
