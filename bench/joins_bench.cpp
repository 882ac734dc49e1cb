// SPDX-License-Identifier: Apache-2.0
// A million sales joined with 100 000 customers, and taken as a set of rows. The peer is SQLite in memory;
// bench/duckdb/joins.mjs has the same questions for DuckDB.
#include "bench/tables_peers.h"

#include <core/runtime.h>
#include <core/runtime/module.h>
#include <core/tables.h>

namespace {

using namespace core;
using tables::Database;

const LibraryScope library;

constexpr std::size_t kSales = 1'000'000;
constexpr std::size_t kCustomers = 100'000;

Value text_value(const std::string& text) {
    return Value(std::u16string(text.begin(), text.end()));
}

/// Sales as "s" by the name and the number of a customer, customers as "c" with a city, one of a thousand.
/// Each row has a text of its own, as a file gives them. One sale in ten is of a customer that is not there.
struct Data {
    InterfacePtr<IValueTable> sales = create_value_table();
    InterfacePtr<IValueTable> customers = create_value_table();
    Database database;

    Data() {
        std::mt19937 random(1);
        database.run("CREATE TABLE s (customer TEXT, number INTEGER, cents INTEGER);"
                     "CREATE TABLE c (code TEXT, id INTEGER, city TEXT); BEGIN");
        for (const wchar* name : {u"Customer", u"Number", u"Price"})
            sales->addColumn(name);
        for (std::size_t i = 0; i < kSales; ++i) {
            const std::size_t number = random() % (kCustomers + kCustomers / 9);
            const std::string customer = "Customer " + std::to_string(number);
            const auto cents = static_cast<std::int64_t>(random() % 100'000);
            const Value cells[] = {text_value(customer), Value(number), Value(Numeric::fromScaled(cents, 2))};
            sales->appendRow(cells);
            insert("s", customer, number, std::to_string(cents));
        }
        for (const wchar* name : {u"Code", u"Id", u"City"})
            customers->addColumn(name);
        for (std::size_t i = 0; i < kCustomers; ++i) {
            const std::size_t number = i * 7919 % kCustomers;
            const std::string customer = "Customer " + std::to_string(number);
            const std::string city = "City " + std::to_string(random() % 1000);
            const Value cells[] = {text_value(customer), Value(number), text_value(city)};
            customers->appendRow(cells);
            insert("c", customer, number, "'" + city + "'");
        }
        database.run("COMMIT");
    }
    void insert(const char* table, const std::string& name, std::size_t number, const std::string& last) {
        database.run((std::string("INSERT INTO ") + table + " VALUES ('" + name + "'," +
                      std::to_string(number) + "," + last + ")")
                         .c_str());
    }
};

Data& data() {
    static Data made;
    return made;
}

template <class Work>
void ours(benchmark::State& state, Work work) {
    Data& all = data();
    for (auto _ : state) {
        const InterfacePtr<IValueTable> made = work(*all.sales, *all.customers);
        state.counters["rows"] = static_cast<double>(made->rowCount());
    }
}
void sqlite(benchmark::State& state, const char* sql) {
    Database::Query query(data().database, sql);
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(query.read());
}

const bool registered = [] {
    const auto add = [](const std::string& name, auto work, const char* sql) {
        benchmark::RegisterBenchmark((name + "/ours").c_str(), [=](benchmark::State& state) {
            ours(state, work);
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/sqlite").c_str(), [=](benchmark::State& state) {
            sqlite(state, sql);
        })->Unit(benchmark::kMillisecond);
    };
    using Table = IValueTableBaseRO;
    add(
        "join_text", [](Table& s, Table& c) { return join(s, c, u"Customer = Code", u"City"); },
        "SELECT s.*, c.city FROM s JOIN c ON s.customer = c.code");
    add(
        "join_number", [](Table& s, Table& c) { return join(s, c, u"Number = Id", u"City"); },
        "SELECT s.*, c.city FROM s JOIN c ON s.number = c.id");
    add(
        "join_left",
        [](Table& s, Table& c) { return join(s, c, u"Customer = Code", u"City", JoinKind::left); },
        "SELECT s.*, c.city FROM s LEFT JOIN c ON s.customer = c.code");
    add(
        "join_two", [](Table& s, Table& c) { return join(s, c, u"Customer = Code, Number = Id", u"City"); },
        "SELECT s.*, c.city FROM s JOIN c ON s.customer = c.code AND s.number = c.id");
    add(
        "join_anti",
        [](Table& s, Table& c) { return join(s, c, u"Customer = Code", std::nullopt, JoinKind::anti); },
        "SELECT * FROM s WHERE customer NOT IN (SELECT code FROM c)");
    add(
        "distinct_customer", [](Table& s, Table&) { return distinct(s, {u"Customer"}); },
        "SELECT DISTINCT customer FROM s");
    add(
        "union_all", [](Table& s, Table&) { return unite(s, s, EqualRows::all); },
        "SELECT * FROM s UNION ALL SELECT * FROM s");
    add(
        "except", [](Table& s, Table&) { return except(s, s); }, "SELECT * FROM s EXCEPT SELECT * FROM s");
    return true;
}();

} // namespace
