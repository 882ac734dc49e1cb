// SPDX-License-Identifier: Apache-2.0
// Sales in CSV: a million rows of six columns (product, region, customer, day, price, quantity), in with
// types found and with types given, and out. The peer is in bench/duckdb, which reads the same file.
#include <core/exchange.h>
#include <core/runtime.h>
#include <core/runtime/module.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using namespace core;

const LibraryScope library;

/// The text; written to CORE_BENCH_CSV, too, where that names a file.
const std::string& sales(std::size_t rows) {
    static std::string text;
    static std::size_t count = 0;
    if (count == rows)
        return text;
    count = rows;
    text = "Product,Region,Customer,Day,Price,Quantity\n";
    std::uint64_t chance = 1;
    for (std::size_t i = 0; i < rows; ++i) {
        chance = chance * 48271 % 2147483647;
        const auto pair = [](std::uint64_t number) {
            return (number < 10 ? "0" : "") + std::to_string(number);
        };
        text += "product " + std::to_string(chance % 8) + ",region " + std::to_string(chance % 61 % 8) +
                ",customer " + std::to_string(chance % 100'000) + ",202" + std::to_string(chance % 4) + '-' +
                pair(chance % 12 + 1) + '-' + pair(chance % 28 + 1) + ',' +
                std::to_string(chance % 9973 / 100) + '.' + pair(chance % 100) + ',' +
                std::to_string(chance % 20) + '\n';
    }
    if (const char* const file = std::getenv("CORE_BENCH_CSV"))
        std::ofstream(file, std::ios::binary) << text;
    return text;
}

InterfacePtr<IValueTable> read(const std::string& text, const wchar* columns) {
    CsvReadOptions options{.columns = columns, .length = text.size()};
    return read_csv(
        [rest = std::string_view(text)](std::span<std::byte> into) mutable {
            const std::size_t count = std::min(into.size(), rest.size());
            std::copy_n(std::as_bytes(std::span(rest)).begin(), count, into.begin());
            rest.remove_prefix(count);
            return count;
        },
        u"sales.csv", options);
}

void csv_in(benchmark::State& state, const wchar* columns) {
    const std::string& text = sales(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto table = read(text, columns);
        state.PauseTiming();
        table = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void csv_out(benchmark::State& state) {
    const auto table = read(sales(static_cast<std::size_t>(state.range(0))), u"");
    for (auto _ : state) {
        std::size_t bytes = 0;
        write_csv([&bytes](std::span<const std::byte> piece) { bytes += piece.size(); },
                  Value(table.query<IValue>()), u"sales.csv");
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// What the table takes, and the most that reading took on the way, as the allocator counts.
void csv_memory(benchmark::State& state) {
    const std::string& text = sales(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const auto taken = [] {
            const auto info = mallinfo2();
            return static_cast<double>(info.uordblks + info.hblkhd);
        };
        const double before = taken();
        double most = before;
        CsvReadOptions options{.length = text.size(),
                               .progress = [&](std::uint64_t) { most = std::max(most, taken()); }};
        const auto table = read_csv(
            [rest = std::string_view(text)](std::span<std::byte> into) mutable {
                const std::size_t count = std::min(into.size(), rest.size());
                std::copy_n(std::as_bytes(std::span(rest)).begin(), count, into.begin());
                rest.remove_prefix(count);
                return count;
            },
            u"sales.csv", options);
        state.counters["table_bytes"] = taken() - before;
        state.counters["most_to_table"] = (most - before) / (taken() - before);
    }
}

const bool registered = [] {
    const auto add = [](const char* name, auto work, auto... arguments) {
        benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { work(state, arguments...); })
            ->Arg(1'000'000)
            ->Unit(benchmark::kMillisecond);
    };
    add("csv_in/ours", csv_in, u"");
    add("csv_in_types/ours", csv_in,
        u"Product String, Region String, Customer String, Day Date, Price Number(10,2), Quantity Number");
    add("csv_out/ours", csv_out);
    add("csv_memory/ours", csv_memory);
    return true;
}();

} // namespace
