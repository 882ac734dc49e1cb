// SPDX-License-Identifier: Apache-2.0
// Value tables through their script methods, beside SQLite in memory (prepared statements, one transaction)
// and vectors of QVariant rows. Four columns: a name, a whole number of three digits, a price with cents, a
// date. The names are ten thousand different ones (few) or all different (many). Peers hold prices as cents,
// dates as seconds.
#include "bench/tables_peers.h"

#include <core/collections.h>
#include <core/context/iteration.h>
#include <core/runtime.h>
#include <core/runtime/module.h>
#include <core/tables.h>

#include <QtCore/QHash>
#include <malloc.h>

#include <algorithm>

namespace {

using namespace core;
using namespace tables;

const LibraryScope library;

// Ours.

using TablePtr = InterfacePtr<IValueTable>;

GenericValue call(const InterfacePtr<IContext_>& context, const wchar* method,
                  std::vector<GenericValue> arguments) {
    GenericValue result;
    context->call(context->findMethod(method), &result, &arguments);
    return result;
}
GenericValue call(const TablePtr& table, const wchar* method, std::vector<GenericValue> arguments) {
    return call(table.query<IContext_>(), method, std::move(arguments));
}

TablePtr empty_table() {
    TablePtr table = create_value_table();
    for (const wchar* name : {u"Name", u"Number", u"Price", u"Date"})
        table->addColumn(name);
    return table;
}

void fill(const TablePtr& table, Names names, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        table->appendRow(records(names)[i].values);
}

TablePtr our_table(Names names, std::size_t count) {
    static TablePtr kept;
    static std::pair<Names, std::size_t> key;
    if (!kept || key != std::pair(names, count)) {
        kept = empty_table();
        fill(kept, names, count);
        key = {names, count};
    }
    return kept;
}
TablePtr our_copy(Names names, std::size_t count) {
    return call(our_table(names, count), u"Copy", {GenericValue(), GenericValue()}).query<IValueTable>();
}

std::size_t count_of(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}
void per_row(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Append a row.

void append_ours(benchmark::State& state, Names names) {
    static_cast<void>(records(names));
    for (auto _ : state) {
        TablePtr table = empty_table();
        fill(table, names, count_of(state));
        state.PauseTiming();
        table = {};
        state.ResumeTiming();
    }
    per_row(state);
}
void append_sqlite(benchmark::State& state, Names names) {
    static_cast<void>(records(names));
    for (auto _ : state) {
        auto database = std::make_unique<Database>();
        database->append(names, count_of(state));
        state.PauseTiming();
        database.reset();
        state.ResumeTiming();
    }
    per_row(state);
}
void append_qvariant(benchmark::State& state, Names names) {
    static_cast<void>(records(names));
    for (auto _ : state) {
        Variants rows;
        append_variants(rows, names, count_of(state));
        state.PauseTiming();
        rows = {};
        state.ResumeTiming();
    }
    per_row(state);
}

// Work on a copy of its own, which a change needs.

template <class Work>
void change_ours(benchmark::State& state, Names names, Work work) {
    for (auto _ : state) {
        state.PauseTiming();
        TablePtr table = our_copy(names, count_of(state));
        state.ResumeTiming();
        work(table);
        state.PauseTiming();
        table = {};
        state.ResumeTiming();
    }
    per_row(state);
}

void sort_ours(benchmark::State& state, Names names, const wchar* columns) {
    change_ours(state, names, [=](const TablePtr& table) {
        call(table, u"Sort", {Value(columns), GenericValue()});
    });
}
void read_sqlite(benchmark::State& state, Names names, const char* sql) {
    Database::Query query(their_table(names, count_of(state)), sql);
    for (auto _ : state)
        benchmark::DoNotOptimize(query.read());
    per_row(state);
}
/// By two columns, the first a text or a number.
template <bool text>
void sort_qvariant(benchmark::State& state, Names names, std::size_t first, std::size_t second) {
    for (auto _ : state) {
        state.PauseTiming();
        Variants rows = variant_rows(names, count_of(state));
        state.ResumeTiming();
        std::sort(rows.begin(), rows.end(), [=](const auto& a, const auto& b) {
            if constexpr (text) {
                const int order = QString::compare(a[first].toString(), b[first].toString());
                if (order != 0)
                    return order < 0;
            } else if (a[first].toLongLong() != b[first].toLongLong()) {
                return a[first].toLongLong() < b[first].toLongLong();
            }
            return a[second].toLongLong() < b[second].toLongLong();
        });
        state.PauseTiming();
        rows = {};
        state.ResumeTiming();
    }
    per_row(state);
}

// Find rows by a value: a number of a thousand, a name of ten thousand.

void filter_ours(benchmark::State& state) {
    const TablePtr table = our_table(few, count_of(state));
    const auto filter = create_value_structure();
    for (auto _ : state) {
        filter->insert(Value(u"Number"), Value(records(few)[0].number));
        benchmark::DoNotOptimize(call(table, u"FindRows", {Value(filter.query<IValue>())}));
    }
    per_row(state);
}
void filter_sqlite(benchmark::State& state) {
    Database::Query query(their_table(few, count_of(state)), "SELECT * FROM t WHERE number = ?");
    query.bind(records(few)[0].number);
    for (auto _ : state)
        benchmark::DoNotOptimize(query.read());
    per_row(state);
}
void filter_qvariant(benchmark::State& state) {
    const Variants& rows = variant_rows(few, count_of(state));
    const QVariant wanted = records(few)[0].variants[1];
    for (auto _ : state) {
        std::vector<const std::vector<QVariant>*> found;
        for (const auto& row : rows) {
            if (row[1] == wanted)
                found.push_back(&row);
        }
        benchmark::DoNotOptimize(found.data());
    }
    per_row(state);
}

GenericValue indexes_of(const TablePtr& table) {
    const auto context = table.query<IContext_>();
    GenericValue indexes;
    context->getPropVal(context->findProp(u"Indexes"), indexes);
    return indexes;
}
/// An index is built by the first search that can use it.
void index_ours(benchmark::State& state) {
    const TablePtr table = our_table(few, count_of(state));
    const GenericValue indexes = indexes_of(table);
    const VTFindParam nothing[] = {{table->findColumn(u"Name"), Value(u"nothing")}};
    for (auto _ : state) {
        call(indexes.query<IContext_>(), u"Add", {Value(u"Name")});
        benchmark::DoNotOptimize(table->IValueTableBaseRO_findRows(nothing));
        state.PauseTiming();
        call(indexes.query<IContext_>(), u"Clear", {});
        state.ResumeTiming();
    }
    per_row(state);
}
void index_sqlite(benchmark::State& state) {
    Database& database = their_table(few, count_of(state));
    for (auto _ : state) {
        database.run("CREATE INDEX i ON t (name)");
        state.PauseTiming();
        database.run("DROP INDEX i");
        state.ResumeTiming();
    }
    per_row(state);
}

template <bool asScript>
void lookup_ours(benchmark::State& state) {
    const TablePtr table = our_table(few, count_of(state));
    const GenericValue indexes = indexes_of(table);
    call(indexes.query<IContext_>(), u"Add", {Value(u"Name")});
    const auto filter = create_value_structure();
    const std::int32_t column = table->findColumn(u"Name");
    const VTFindParam nothing[] = {{column, Value(u"nothing")}};
    static_cast<void>(table->IValueTableBaseRO_findRows(nothing)); // builds the index
    std::size_t i = 0;
    std::size_t found = 0;
    for (auto _ : state) {
        const Value& name = records(few)[i++ % 1000].values[0];
        if constexpr (asScript) {
            filter->insert(Value(u"Name"), name);
            found +=
                call(table, u"FindRows", {Value(filter.query<IValue>())}).query<IValueSequence>()->count();
        } else {
            const VTFindParam wanted[] = {{column, name}};
            found += table->IValueTableBaseRO_findRows(wanted).size();
        }
    }
    state.counters["rows"] = static_cast<double>(found) / static_cast<double>(state.iterations());
    call(indexes.query<IContext_>(), u"Clear", {});
}
void lookup_sqlite(benchmark::State& state) {
    Database& database = their_table(few, count_of(state));
    database.run("CREATE INDEX i ON t (name)");
    {
        Database::Query query(database, "SELECT * FROM t WHERE name = ?");
        std::size_t i = 0;
        for (auto _ : state) {
            query.bind(records(few)[i++ % 1000].name);
            benchmark::DoNotOptimize(query.read());
        }
    }
    database.run("DROP INDEX i");
}

// Group by a column, summing prices.

void group_ours(benchmark::State& state, Names names, const wchar* column) {
    change_ours(state, names, [=](const TablePtr& table) {
        call(table, u"GroupBy", {Value(column), Value(u"Price")});
    });
}
template <bool text>
void group_qvariant(benchmark::State& state) {
    const Variants& rows = variant_rows(few, count_of(state));
    for (auto _ : state) {
        QHash<std::conditional_t<text, QString, qlonglong>, qlonglong> sums;
        for (const auto& row : rows) {
            if constexpr (text)
                sums[row[0].toString()] += row[2].toLongLong();
            else
                sums[row[1].toLongLong()] += row[2].toLongLong();
        }
        benchmark::DoNotOptimize(sums.size());
    }
    per_row(state);
}

// What grows with the table: ours alone, at several sizes.

std::int64_t below(std::mt19937& random, std::size_t count) {
    return static_cast<std::int64_t>(random() % count);
}
void delete_from_front(const TablePtr& table) {
    const auto context = table.query<IContext_>();
    const int method = context->findMethod(u"Delete");
    for (std::size_t i = table->rowCount(); i != 0; --i) {
        std::vector<GenericValue> arguments = {0};
        context->call(method, nullptr, &arguments);
    }
}
void delete_at_random(const TablePtr& table) {
    std::mt19937 random(1);
    for (std::size_t i = table->rowCount(); i != 0; --i)
        call(table, u"Delete", {below(random, i)});
}
void insert_at_front(const TablePtr& table) {
    for (std::size_t i = table->rowCount(); i != 0; --i)
        call(table, u"Insert", {0});
}
void move_at_random(const TablePtr& table) {
    std::mt19937 random(1);
    const std::size_t count = table->rowCount();
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t from = below(random, count);
        call(table, u"Move", {from, below(random, count) - from});
    }
}
void walk(const TablePtr& table) {
    const auto rows = table.query<IValueCollection>()->enumerate();
    for (GenericValue row; rows->next(row);) {
        GenericValue price;
        row.query<IContext_>()->getPropVal(2, price);
        benchmark::DoNotOptimize(&price);
    }
}
void total(const TablePtr& table) {
    call(table, u"Total", {Value(u"Price")});
}
void unload_and_load(const TablePtr& table) {
    call(table, u"LoadColumn", {call(table, u"UnloadColumn", {Value(u"Price")}), Value(u"Price")});
}
void copy(const TablePtr& table) {
    call(table, u"Copy", {GenericValue(), GenericValue()});
}
void growth(benchmark::State& state, void (*work)(const TablePtr&)) {
    change_ours(state, few, work);
}

// Memory: what the allocator has given out, a row.

TablePtr fill_ours(Names names, std::size_t count) {
    TablePtr table = empty_table();
    fill(table, names, count);
    return table;
}
std::unique_ptr<Database> fill_sqlite(Names names, std::size_t count) {
    auto database = std::make_unique<Database>();
    database->append(names, count);
    return database;
}
Variants fill_qvariant(Names names, std::size_t count) {
    Variants rows;
    append_variants(rows, names, count);
    return rows;
}

template <class Rows, Rows (*fill)(Names, std::size_t)>
void memory(benchmark::State& state, Names names) {
    static_cast<void>(records(names));
    for (auto _ : state) {
        const auto taken = [] {
            const auto info = mallinfo2();
            return static_cast<double>(info.uordblks + info.hblkhd);
        };
        const double before = taken();
        const Rows rows = fill(names, count_of(state));
        state.counters["bytes_a_row"] = (taken() - before) / static_cast<double>(count_of(state));
    }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}

/// Every benchmark at each size, named `what`/`who`/size.
const bool registered = [] {
    const auto add = [](const char* name, auto work, auto... arguments) {
        return benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { work(state, arguments...); })
            ->Apply(sizes);
    };
    add("append/ours", append_ours, few);
    add("append/sqlite", append_sqlite, few);
    add("append/qvariant", append_qvariant, few);
    add("append_many/ours", append_ours, many);
    add("append_many/sqlite", append_sqlite, many);
    add("append_many/qvariant", append_qvariant, many);

    add("sort_name_number/ours", sort_ours, few, u"Name, Number");
    add("sort_name_number/sqlite", read_sqlite, few, "SELECT * FROM t ORDER BY name, number");
    add("sort_name_number/qvariant", sort_qvariant<true>, few, 0, 1);
    add("sort_many_number/ours", sort_ours, many, u"Name, Number");
    add("sort_many_number/sqlite", read_sqlite, many, "SELECT * FROM t ORDER BY name, number");
    add("sort_many_number/qvariant", sort_qvariant<true>, many, 0, 1);
    add("sort_number_date/ours", sort_ours, few, u"Number, Date");
    add("sort_number_date/sqlite", read_sqlite, few, "SELECT * FROM t ORDER BY number, seconds");
    add("sort_number_date/qvariant", sort_qvariant<false>, few, 1, 3);

    add("filter/ours", filter_ours);
    add("filter/sqlite", filter_sqlite);
    add("filter/qvariant", filter_qvariant);
    add("index/ours", index_ours);
    add("index/sqlite", index_sqlite);
    add("lookup/ours", lookup_ours<false>)->Unit(benchmark::kMicrosecond);
    add("lookup_script/ours", lookup_ours<true>)->Unit(benchmark::kMicrosecond);
    add("lookup/sqlite", lookup_sqlite)->Unit(benchmark::kMicrosecond);

    add("group_number/ours", group_ours, few, u"Number");
    add("group_number/sqlite", read_sqlite, few, "SELECT number, sum(cents) FROM t GROUP BY number");
    add("group_number/qvariant", group_qvariant<false>);
    add("group_name/ours", group_ours, few, u"Name");
    add("group_name/sqlite", read_sqlite, few, "SELECT name, sum(cents) FROM t GROUP BY name");
    add("group_name/qvariant", group_qvariant<true>);

    add("growth/delete_from_front", growth, delete_from_front);
    add("growth/delete_at_random", growth, delete_at_random);
    add("growth/insert_at_front", growth, insert_at_front);
    add("growth/move_at_random", growth, move_at_random);
    add("growth/walk", growth, walk);
    add("growth/total", growth, total);
    add("growth/unload_and_load", growth, unload_and_load);
    add("growth/copy", growth, copy);

    add("memory/ours", memory<TablePtr, fill_ours>, few)->Iterations(1);
    add("memory/sqlite", memory<std::unique_ptr<Database>, fill_sqlite>, few)->Iterations(1);
    add("memory/qvariant", memory<Variants, fill_qvariant>, few)->Iterations(1);
    add("memory_many/ours", memory<TablePtr, fill_ours>, many)->Iterations(1);
    add("memory_many/sqlite", memory<std::unique_ptr<Database>, fill_sqlite>, many)->Iterations(1);
    add("memory_many/qvariant", memory<Variants, fill_qvariant>, many)->Iterations(1);
    return true;
}();

} // namespace
