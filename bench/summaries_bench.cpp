// SPDX-License-Identifier: Apache-2.0
// Aggregates, groups of many names, windows and orders of a million sales: 8 products, 8 regions, customers,
// a day and a price with cents. The customers are 100 000 different ones, or each row has its own. The peer
// is SQLite in memory; bench/duckdb has the same questions for DuckDB.
#include "bench/tables_peers.h"

#include <core/collections.h>
#include <core/context/context_def.h>
#include <core/runtime.h>
#include <core/runtime/module.h>
#include <core/tables.h>

#include <map>

namespace {

using namespace core;
using tables::Database;

const LibraryScope library;

struct Sales {
    InterfacePtr<IValueTable> table;
    std::unique_ptr<tables::Database> database;
};

/// The rows of an own text object each, as a file gives them.
Sales make_sales(std::uint32_t customers, std::size_t rows) {
    std::mt19937 random(1);
    Sales sales{create_value_table(), std::make_unique<Database>()};
    sales.table->addColumn(u"Product", TypeDomain(kStringType));
    sales.table->addColumn(u"Region", TypeDomain(kStringType));
    sales.table->addColumn(u"Customer", TypeDomain(kStringType));
    sales.table->addColumn(u"Day", TypeDomain(kDateType));
    sales.table->addColumn(u"Price", TypeDomain(kNumberType));
    sales.database->run(
        "CREATE TABLE s (product TEXT, region TEXT, customer TEXT, day INTEGER, cents INTEGER); BEGIN");
    for (std::size_t i = 0; i < rows; ++i) {
        const std::string product = "Product " + std::to_string(random() % 8);
        const std::string region = "Region " + std::to_string(random() % 8);
        const std::string customer =
            "Customer " + std::to_string(customers != 0 ? random() % customers : i * 7919 % rows);
        const auto day = static_cast<std::int64_t>(random() % 366);
        const auto cents = static_cast<std::int64_t>(random() % 100'000);
        const Value cells[] = {Value(std::u16string(product.begin(), product.end())),
                               Value(std::u16string(region.begin(), region.end())),
                               Value(std::u16string(customer.begin(), customer.end())),
                               Value(Date(2024, 1, 1) + DateSpan(day * kTicksPerDay)),
                               Value(Numeric::fromScaled(cents, 2))};
        sales.table->appendRow(cells);
        sales.database->run(("INSERT INTO s VALUES ('" + product + "','" + region + "','" + customer + "'," +
                             std::to_string(day) + "," + std::to_string(cents) + ")")
                                .c_str());
    }
    sales.database->run("COMMIT");
    return sales;
}

constexpr std::size_t kRows = 1'000'000;

Sales& sales_of(std::uint32_t customers) {
    static std::map<std::uint32_t, Sales> kept;
    auto found = kept.find(customers);
    if (found == kept.end())
        found = kept.emplace(customers, make_sales(customers, kRows)).first;
    return found->second;
}

template <class Work>
void ours(benchmark::State& state, std::uint32_t customers, Work work) {
    const Sales& sales = sales_of(customers);
    for (auto _ : state)
        work(*sales.table);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
}
void sqlite(benchmark::State& state, std::uint32_t customers, const char* sql) {
    Database::Query query(*sales_of(customers).database, sql);
    for (auto _ : state)
        benchmark::DoNotOptimize(query.read());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
}

/// Work that changes a table, on a copy of it.
template <class Work>
void changing(benchmark::State& state, const IValueTable& original, Work work) {
    InterfacePtr<IValueTable> table;
    for (auto _ : state) {
        state.PauseTiming();
        table = original.copy();
        state.ResumeTiming();
        work(*table);
    }
}
template <class Work>
void changing_ours(benchmark::State& state, Work work) {
    changing(state, *sales_of(100'000).table, work);
}

/// The sales in the order of their customers, for those who sort them again.
Sales& sorted_sales() {
    static Sales sorted = [] {
        Sales made = make_sales(100'000, kRows);
        sort_rows(*made.table, u"Customer");
        made.database->run("CREATE TABLE sorted AS SELECT * FROM s ORDER BY customer");
        return made;
    }();
    return sorted;
}

const bool registered = [] {
    const auto add = [](const char* name, auto work) {
        benchmark::RegisterBenchmark(name, work)->Unit(benchmark::kMillisecond);
    };
    const auto group_by = [add](const char* name, std::uint32_t customers, std::vector<wstring> keys,
                                std::vector<Aggregate> aggregates, const char* sql) {
        const std::string ourName = std::string(name) + "/ours";
        add(ourName.c_str(), [=](benchmark::State& state) {
            ours(state, customers, [&](IValueTable& table) {
                const auto grouped = group(table, keys, aggregates);
                benchmark::DoNotOptimize(grouped.get());
            });
        });
        const std::string theirName = std::string(name) + "/sqlite";
        add(theirName.c_str(), [=](benchmark::State& state) { sqlite(state, customers, sql); });
    };
    group_by("group_customer", 100'000, {u"Customer"}, {count(), sum(u"Price")},
             "SELECT customer, count(*), sum(cents) FROM s GROUP BY customer");
    group_by("group_product_region", 100'000, {u"Product", u"Region"}, {sum(u"Price")},
             "SELECT product, region, sum(cents) FROM s GROUP BY product, region");
    group_by("group_region_customer", 100'000, {u"Region", u"Customer"}, {sum(u"Price")},
             "SELECT region, customer, sum(cents) FROM s GROUP BY region, customer");
    group_by("group_min_max_average", 100'000, {u"Customer"},
             {min(u"Day"), max(u"Price", u"Max"), average(u"Price")},
             "SELECT customer, min(day), max(cents), avg(cents) FROM s GROUP BY customer");
    group_by("count_distinct", 100'000, {u"Product"}, {count_distinct(u"Customer")},
             "SELECT product, count(DISTINCT customer) FROM s GROUP BY product");
    group_by("distinct", 100'000, {u"Customer"}, {}, "SELECT DISTINCT customer FROM s");
    group_by("total", 100'000, {}, {sum(u"Price")}, "SELECT sum(cents) FROM s");
    add("total_method/ours", [](benchmark::State& state) {
        ours(state, 100'000,
             [](IValueTable& table) { benchmark::DoNotOptimize(total(table, sum(u"Price"))); });
    });
    add("running_total/ours", [](benchmark::State& state) {
        changing_ours(state, [](IValueTable& table) {
            add_windows(table, {running_total(u"Price", u"Cum")}, {u"Region"}, u"Day");
        });
    });
    add("running_total/sqlite", [](benchmark::State& state) {
        sqlite(state, 100'000,
               "SELECT sum(cents) OVER (PARTITION BY region ORDER BY day ROWS UNBOUNDED PRECEDING) FROM s");
    });
    add("rank/ours", [](benchmark::State& state) {
        changing_ours(state,
                      [](IValueTable& table) { add_windows(table, {rank()}, {u"Product"}, u"Price Desc"); });
    });
    add("rank/sqlite", [](benchmark::State& state) {
        sqlite(state, 100'000, "SELECT rank() OVER (PARTITION BY product ORDER BY cents DESC) FROM s");
    });
    const auto sort_by = [add](const char* name, wstring order, const char* sql) {
        add((std::string(name) + "/ours").c_str(), [=](benchmark::State& state) {
            changing_ours(state, [&](IValueTable& table) { sort_rows(table, order); });
        });
        add((std::string(name) + "/sqlite").c_str(),
            [=](benchmark::State& state) { sqlite(state, 100'000, sql); });
    };
    sort_by("sort_customer", u"Customer", "SELECT * FROM s ORDER BY customer");
    sort_by("sort_customer_price", u"Customer, Price", "SELECT * FROM s ORDER BY customer, cents");
    sort_by("sort_product_day", u"Product, Day", "SELECT * FROM s ORDER BY product, day");
    sort_by("sort_price", u"Price", "SELECT * FROM s ORDER BY cents");
    add("sort_sorted/ours", [](benchmark::State& state) {
        changing(state, *sorted_sales().table, [](IValueTable& table) { sort_rows(table, u"Customer"); });
    });
    add("sort_sorted/sqlite", [](benchmark::State& state) {
        Database::Query query(*sorted_sales().database, "SELECT * FROM sorted ORDER BY customer");
        for (auto _ : state)
            benchmark::DoNotOptimize(query.read());
    });
    group_by("group_own_customer", 0, {u"Customer"}, {count(), sum(u"Price")},
             "SELECT customer, count(*), sum(cents) FROM s GROUP BY customer");
    return true;
}();

} // namespace
