// SPDX-License-Identifier: Apache-2.0
// Pictures told by their headers, colours by their texts, and the page of a report.
#include <core/presentation.h>
#include <core/reports.h>
#include <core/tables/table.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using namespace core;

/// What the header of one picture of each kind says, the pictures in turn.
void picture_headers(benchmark::State& state) {
    std::vector<std::string> pictures;
    for (const auto& entry : std::filesystem::directory_iterator(CORE_SOURCE_DIR "/fuzz/corpus/picture")) {
        std::ifstream file(entry.path(), std::ios::binary);
        pictures.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    std::size_t next = 0;
    for (auto _ : state) {
        const PictureInfo info = picture_info(std::as_bytes(std::span(pictures[next])));
        benchmark::DoNotOptimize(info);
        next = next + 1 < pictures.size() ? next + 1 : 0;
    }
}
BENCHMARK(picture_headers);

void color_of_text(benchmark::State& state, const wchar* text) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Color::fromText(text));
}
BENCHMARK_CAPTURE(color_of_text, digits, u"#4682B4");
BENCHMARK_CAPTURE(color_of_text, name, u"web:SteelBlue");

void legible_color(benchmark::State& state) {
    Rgba text{200, 30, 60};
    for (auto _ : state)
        benchmark::DoNotOptimize(legible(text, {0x12, 0x16, 0x1C}));
}
BENCHMARK(legible_color);

/// A page of 100 000 rows of three columns with a rule, a format and a total.
void page_of_100000_rows(benchmark::State& state) {
    const host::HostProcess process;
    Table table{"Name", "Price", "Number"};
    for (int i = 0; i < 100'000; ++i)
        table.add({u"product", i % 2000 - 500, i});
    ReportStyle style;
    style.column(u"Price").format = u"fraction=2";
    style.column(u"Price").total = u"Sum(Price)";
    Style red;
    red.setColor(0, *Color::web(u"Crimson"));
    style.rules.push_back({u"Price < 0", red});
    const Report report{table, style};
    for (auto _ : state) {
        std::size_t bytes = 0;
        write_html_page([&bytes](std::span<const std::byte> piece) { bytes += piece.size(); }, report);
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(page_of_100000_rows)->Unit(benchmark::kMillisecond);

} // namespace
