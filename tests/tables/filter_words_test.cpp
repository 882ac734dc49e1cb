// SPDX-License-Identifier: Apache-2.0
// Concerns: functions of dates and numbers give the same for many cells at once, by an index and one by one.
#include "tests/tables/table_fixture.h"

#include <core/tables/expression.h>
#include <core/tables/filter.h>

#include <random>

namespace {

using namespace script;

class FilterWords : public TableTest {
  protected:
    /// A table of one column A. Where an object has been, each cell stays a value of its own.
    static InterfacePtr<IValueTable> table(const std::vector<Value>& cells, bool ofValues) {
        const GenericValue table = table_of(u"A", {});
        auto rows = table.query<IValueTable>();
        if (ofValues)
            call(call(table, u"Add"), u"Set", {0, make(u"Array")});
        for (const Value& cell : cells)
            rows->appendRow({&cell, 1});
        if (ofValues)
            rows->removeRow(0);
        return rows;
    }
    template <class T>
    const T& one(const std::vector<T>& of) {
        return of[random_() % of.size()];
    }
    /// Asks a column of words, one with an index and one of values about functions of its cells.
    void compare(const std::vector<Value>& cells, const std::vector<wstring>& functions) {
        static const std::vector<wstring> kSigns = {u"=", u"<>", u"<", u"<=", u">", u">="};
        const auto words = table(cells, false);
        const auto values = table(cells, true);
        const auto indexed = table(cells, false);
        call(property(Value(indexed.query<IValue>()), u"Indexes"), u"Add", {u"A"});
        for (const wstring& function : functions) {
            const wstring name = u"R" + string_intto(values->columnCount());
            const std::int32_t expected = add_column(*values, name, function);
            const std::int32_t id = add_column(*words, name, function);
            std::vector<Value> results = {Value()};
            for (std::size_t row = 0; row < cells.size(); ++row) {
                const GenericValue result = values->get(row, expected);
                EXPECT_TRUE(words->get(row, id).equals(result)) << to_utf8(function) << " of row " << row;
                if (!result.isUndefined())
                    results.push_back(result);
            }
            for (int i = 0; i < 30; ++i) {
                const wstring conditions[] = {function + u" " + one(kSigns) + u" &B",
                                              function + u" Between &B And &C",
                                              function + u" Not In (&B, &C)", function + u" Is Undefined"};
                const Filter filter(conditions[i % 4], {{u"B", one(results)}, {u"C", one(results)}});
                const auto found = find_rows(*values, filter);
                EXPECT_EQ(find_rows(*words, filter), found) << to_utf8(filter.text());
                EXPECT_EQ(find_rows(*indexed, filter), found) << to_utf8(filter.text()) << ", by an index";
            }
        }
    }
    std::mt19937_64 random_{5};
};

TEST_F(FilterWords, OfDates) {
    std::vector<Value> dates = {Value(), Value(Date()), Value(Date(1)), Value(Date::largest()), Value()};
    for (int i = 0; i < 60; ++i) {
        dates.emplace_back(Date(random_() % Date::kLimit));
        dates.emplace_back(Date(2023 + i / 30, i % 12 + 1, i % 28 + 1, i % 24, i, 59 - i));
    }
    std::vector<wstring> functions;
    for (const wchar* const name :
         {u"Year",         u"Quarter",      u"Month",      u"Day",        u"Hour",      u"Minute",
          u"Second",       u"WeekDay",      u"YearDay",    u"YearWeek",   u"BegOfYear", u"EndOfYear",
          u"BegOfQuarter", u"EndOfQuarter", u"BegOfMonth", u"EndOfMonth", u"BegOfWeek", u"EndOfWeek",
          u"BegOfDay",     u"EndOfDay",     u"BegOfHour",  u"EndOfHour"})
        functions.push_back(wstring(name) + u"(A)");
    functions.insert(functions.end(), {u"Year(BegOfMonth(A))", u"Month(EndOfWeek(A)) * 100 + Day(A)",
                                       u"A + 86400", u"A - 99999999999999", u"A + 1.75 * Day(A)",
                                       u"A - '20240101'", u"A - BegOfDay(A) + 0.5"});
    compare(dates, functions);

    dates.emplace_back(Date(Date::kLimit)); // beyond the calendar, where every part is 0
    dates.emplace_back(Date(Date::kLimit * 2));
    compare(dates, {u"Year(A)", u"EndOfMonth(A)", u"BegOfDay(A)", u"Month(A)"});
}

TEST_F(FilterWords, OfNumbers) {
    std::vector<Value> numbers = {Value(), Value(0), Value()};
    for (std::uint32_t i = 0; i < 60; ++i)
        numbers.emplace_back(Numeric::fromScaled(static_cast<int>(random_() % 2000) - 1000, i % 4));
    const std::vector<wstring> functions = {u"Abs(A)", u"Int(A)", u"Floor(A)", u"-Abs(A - 1)",
                                            u"Floor(A * 2) + Int(Abs(A))"};
    compare(numbers, functions);
    numbers.emplace_back(std::numeric_limits<std::int64_t>::max());
    compare(numbers, functions);
}

TEST_F(FilterWords, OfTextsInTheOrderOfTheLocale) {
    std::vector<Value> texts = {Value()};
    for (const wchar* const text : {u"a", u"B", u"ä", u"Z", u"б", u"А", u"", u"aa", u"ё", u"ж"})
        for (int i = 0; i < 5; ++i)
            texts.emplace_back(wstring(text) + string_intto(i));
    compare(texts, {u"A", u"A + \"\"", u"Upper(A)"});
}

} // namespace
