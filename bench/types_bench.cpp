// SPDX-License-Identifier: Apache-2.0
// Values into a description of Number (15, 2), String (20) and Date: those that fit, which most cells of a
// table do, and those that change. The plain store of the same values is the floor.
#include <core/types.h>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

using namespace core;

constexpr std::size_t kCount = 1024; // a power of two

TypeDomain description() {
    TypeDomain domain{kNumberType, kStringType, kDateType};
    domain.setNumericQualifiers({15, 2});
    domain.setStringQualifiers({20, true});
    domain.setDateQualifiers(DateQualifiers(DateFractions::date));
    return domain;
}

template <class Make>
std::vector<GenericValue> values(Make make) {
    std::mt19937 random(1);
    std::vector<GenericValue> values;
    for (std::size_t i = 0; i < kCount; ++i)
        values.emplace_back(make(random()));
    return values;
}

Numeric amount(std::uint64_t units, int decimals) {
    return Numeric(units) / Numeric(10).pow(decimals);
}

/// Stores one value after the other into one cell.
template <bool adjusts, class Make>
void store(benchmark::State& state, Make make) {
    static const TypeDomain domain = description();
    const std::vector<GenericValue> all = values(make);
    GenericValue cell;
    std::size_t i = 0;
    for (auto _ : state) {
        if constexpr (adjusts)
            cell = domain.adjust(all[i]);
        else
            cell = all[i];
        benchmark::DoNotOptimize(cell);
        i = (i + 1) % kCount;
    }
}

void Store_Plain(benchmark::State& state) {
    store<false>(state, [](std::uint64_t n) { return amount(n, 2); });
}
void Adjust_NumberThatFits(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return amount(n, 2); });
}
void Adjust_StringThatFits(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return amount(n, 2).toString(); });
}
void Adjust_DateThatFits(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return Date(n % 3'000'000 * kTicksPerDay); });
}
void Adjust_NumberRounded(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return amount(n, 4); });
}
void Adjust_NumberTooLarge(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return Numeric((n << 32) + n) * 1000; });
}
void Adjust_StringCut(benchmark::State& state) {
    store<true>(state, [](std::uint64_t n) { return amount(n, 2).toString() + wstring(20, u'x'); });
}

BENCHMARK(Store_Plain);
BENCHMARK(Adjust_NumberThatFits);
BENCHMARK(Adjust_StringThatFits);
BENCHMARK(Adjust_DateThatFits);
BENCHMARK(Adjust_NumberRounded);
BENCHMARK(Adjust_NumberTooLarge);
BENCHMARK(Adjust_StringCut);

} // namespace
