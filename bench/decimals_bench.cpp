// SPDX-License-Identifier: Apache-2.0
// Decimal numbers beside Boost's cpp_dec_float<50> and Intel's decimal128, over the same random operands;
// long products beside GMP by Kronecker substitution on words of the same base, long quotients and texts
// beside GMP with the conversion from and to text.
#include <core/numbers.h>

#include <benchmark/benchmark.h>
#include <boost/multiprecision/cpp_dec_float.hpp>
#include <gmp.h>

#define DECIMAL_CALL_BY_REFERENCE 0
#define DECIMAL_GLOBAL_ROUNDING 0
#define DECIMAL_GLOBAL_EXCEPTION_FLAGS 0
extern "C" {
#include <bid_conf.h>
#include <bid_functions.h>
}

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using core::Numeric;
using Boost = boost::multiprecision::cpp_dec_float_50;
using Intel = BID_UINT128;

constexpr std::size_t kCount = 1024; // a power of two
constexpr _IDEC_round kNearest = 0;

std::string random_digits(std::mt19937_64& random, std::size_t count) {
    std::string digits;
    for (std::size_t i = 0; i < count; ++i) {
        digits.push_back(static_cast<char>((i == 0 || i + 1 == count ? '1' : '0') + random() % 9));
    }
    return digits;
}

/// Numbers of so many digits: the point at a random place, or in front of the last limb of numbers that are
/// long for a decimal128.
std::vector<std::string> random_texts(std::size_t digits) {
    std::mt19937_64 random(digits);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < kCount; ++i) {
        const std::string text = random_digits(random, digits);
        const std::size_t point =
            digits > 20 ? digits - 9 : 1 + static_cast<std::size_t>(random()) % (digits - 1);
        texts.push_back(text.substr(0, point));
        texts.back() += '.';
        texts.back() += text.substr(point);
    }
    return texts;
}

template <class T>
T read(const std::string& text);

template <>
Numeric read(const std::string& text) {
    return Numeric::fromString(text);
}

template <>
Boost read(const std::string& text) {
    return Boost(text);
}

template <>
Intel read(const std::string& text) {
    _IDEC_flags flags = 0;
    return bid128_from_string(const_cast<char*>(text.c_str()), kNearest, &flags);
}

struct Add {
    template <class T>
    T operator()(const T& a, const T& b) const {
        return a + b;
    }
    Intel operator()(const Intel& a, const Intel& b) const {
        _IDEC_flags flags = 0;
        return bid128_add(a, b, kNearest, &flags);
    }
};

struct Multiply {
    template <class T>
    T operator()(const T& a, const T& b) const {
        return a * b;
    }
    Intel operator()(const Intel& a, const Intel& b) const {
        _IDEC_flags flags = 0;
        return bid128_mul(a, b, kNearest, &flags);
    }
};

struct Divide {
    template <class T>
    T operator()(const T& a, const T& b) const {
        return a / b;
    }
    Intel operator()(const Intel& a, const Intel& b) const {
        _IDEC_flags flags = 0;
        return bid128_div(a, b, kNearest, &flags);
    }
};

struct Compare {
    template <class T>
    int operator()(const T& a, const T& b) const {
        return a.compare(b);
    }
    int operator()(const Intel& a, const Intel& b) const {
        _IDEC_flags flags = 0;
        return bid128_quiet_less(a, b, &flags);
    }
};

template <class T, class Operation>
void pairs(benchmark::State& state) {
    const auto digits = static_cast<std::size_t>(state.range(0));
    std::vector<T> numbers;
    for (const auto& text : random_texts(digits)) {
        numbers.push_back(read<T>(text));
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Operation()(numbers[i], numbers[(i + 1) % kCount]));
        i = (i + 1) % kCount;
    }
}

BENCHMARK(pairs<Numeric, Add>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Boost, Add>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Intel, Add>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Numeric, Multiply>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Boost, Multiply>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Intel, Multiply>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Numeric, Divide>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Boost, Divide>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Intel, Divide>)->Arg(18)->Arg(34);
BENCHMARK(pairs<Numeric, Compare>)->Arg(18);
BENCHMARK(pairs<Boost, Compare>)->Arg(18);
BENCHMARK(pairs<Intel, Compare>)->Arg(18);

void parse_numeric(benchmark::State& state) {
    std::vector<core::wstring> texts;
    for (const auto& text : random_texts(20)) {
        texts.emplace_back(text.begin(), text.end());
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Numeric::fromString(texts[i]));
        i = (i + 1) % kCount;
    }
}
BENCHMARK(parse_numeric);

void parse_intel(benchmark::State& state) {
    const auto texts = random_texts(20);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(read<Intel>(texts[i]));
        i = (i + 1) % kCount;
    }
}
BENCHMARK(parse_intel);

template <class T, class Write>
void format(benchmark::State& state, Write write) {
    std::vector<T> numbers;
    for (const auto& text : random_texts(20)) {
        numbers.push_back(read<T>(text));
    }
    std::size_t i = 0;
    for (auto _ : state) {
        write(numbers[i]);
        i = (i + 1) % kCount;
    }
}

void format_numeric(benchmark::State& state) {
    format<Numeric>(state, [](const Numeric& n) {
        core::wchar buffer[64];
        benchmark::DoNotOptimize(n.toString(buffer, std::size(buffer)));
        benchmark::DoNotOptimize(buffer);
    });
}
BENCHMARK(format_numeric);

void format_intel(benchmark::State& state) {
    format<Intel>(state, [](const Intel& n) {
        char buffer[64];
        _IDEC_flags flags = 0;
        bid128_to_string(buffer, n, &flags);
        benchmark::DoNotOptimize(buffer);
    });
}
BENCHMARK(format_intel);

/// A whole number of `digits` digits, never the same for two seeds.
std::string long_text(std::size_t digits, unsigned seed) {
    std::mt19937_64 random(seed);
    return random_digits(random, digits);
}

void multiply_long(benchmark::State& state) {
    const auto digits = static_cast<std::size_t>(state.range(0));
    const Numeric a = read<Numeric>(long_text(digits, 1));
    const Numeric b = read<Numeric>(long_text(digits, 2));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a * b);
    }
}
BENCHMARK(multiply_long)->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

/// 2n digits by n digits: n whole digits and, by the rule of division, as many fraction digits as b has.
void divide_long(benchmark::State& state) {
    const auto digits = static_cast<std::size_t>(state.range(0));
    const Numeric a = read<Numeric>(long_text(2 * digits, 1));
    const Numeric b = read<Numeric>(long_text(digits, 2));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a / b);
    }
}
BENCHMARK(divide_long)->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

struct Gmp {
    mpz_t value;

    Gmp() { mpz_init(value); }
    explicit Gmp(const std::string& text) { mpz_init_set_str(value, text.c_str(), 10); }
    ~Gmp() { mpz_clear(value); }
    Gmp(const Gmp&) = delete;
    Gmp& operator=(const Gmp&) = delete;

    [[nodiscard]] std::string text() const {
        std::string text(mpz_sizeinbase(value, 10) + 2, '\0');
        mpz_get_str(text.data(), 10, value);
        return text;
    }
};

template <class Operation>
void long_gmp(benchmark::State& state, const std::string& a, const std::string& b, Operation operation) {
    for (auto _ : state) {
        const Gmp x(a);
        const Gmp y(b);
        Gmp result;
        operation(result.value, x.value, y.value);
        benchmark::DoNotOptimize(result.text());
    }
}

using Words = std::vector<std::uint64_t>; // base 10^18

Words words_of(const Numeric& n) {
    const auto limbs = n.limbs();
    Words words((limbs.size() + 1) / 2);
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        words[i / 2] += i % 2 == 0 ? limbs[i] : limbs[i] * std::uint64_t{1'000'000'000};
    }
    return words;
}

/// A product by Kronecker substitution: each word in a cell that is wide enough for a column of products, one
/// binary multiplication, and the carries of the cells of the result.
void multiply_by_substitution(Words& result, const Words& a, const Words& b) {
    __extension__ using Wide = unsigned __int128;
    constexpr std::uint64_t base = 1'000'000'000'000'000'000;
    const std::size_t cell =
        (120 + static_cast<std::size_t>(std::bit_width(std::min(a.size(), b.size()))) + 7) / 8;
    std::vector<unsigned char> cells((a.size() + b.size()) * cell + sizeof(Wide) + 1);
    const auto load = [&](Gmp& number, const Words& words) {
        std::fill(cells.begin(), cells.end(), static_cast<unsigned char>(0));
        for (std::size_t i = 0; i < words.size(); ++i) {
            std::memcpy(&cells[i * cell], &words[i], sizeof words[i]);
        }
        mpz_import(number.value, words.size() * cell, -1, 1, 0, 0, cells.data());
    };
    Gmp x;
    Gmp y;
    load(x, a);
    load(y, b);
    mpz_mul(x.value, x.value, y.value);
    std::fill(cells.begin(), cells.end(), static_cast<unsigned char>(0));
    mpz_export(cells.data(), nullptr, -1, 1, 0, 0, x.value);
    Wide carry = 0;
    for (std::size_t i = 0; i < result.size(); ++i) {
        std::uint64_t low = 0;
        Wide high = 0;
        std::memcpy(&low, &cells[i * cell], sizeof low);
        std::memcpy(&high, &cells[i * cell + sizeof low], cell - sizeof low);
        const Wide sum = carry + low;
        high += static_cast<std::uint64_t>(sum >> 64);
        const Wide rest = (high % base << 64) | static_cast<std::uint64_t>(sum);
        result[i] = static_cast<std::uint64_t>(rest % base);
        carry = (high / base << 64) + rest / base;
    }
}

void multiply_long_gmp(benchmark::State& state) {
    const auto digits = static_cast<std::size_t>(state.range(0));
    const auto x = read<Numeric>(long_text(digits, 1));
    const auto y = read<Numeric>(long_text(digits, 2));
    const Words a = words_of(x);
    const Words b = words_of(y);
    Words result(a.size() + b.size());
    multiply_by_substitution(result, a, b);
    Words expected = words_of(x * y);
    expected.resize(result.size());
    if (result != expected) {
        state.SkipWithError("the products differ");
    }
    for (auto _ : state) {
        multiply_by_substitution(result, a, b);
        benchmark::DoNotOptimize(result.data());
    }
}
BENCHMARK(multiply_long_gmp)->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

void divide_long_gmp(benchmark::State& state) {
    const auto digits = static_cast<std::size_t>(state.range(0));
    const std::string zeros(digits, '0');
    long_gmp(state, long_text(2 * digits, 1) + zeros, long_text(digits, 2), mpz_tdiv_q);
}
BENCHMARK(divide_long_gmp)->Arg(100)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

void parse_long(benchmark::State& state) {
    const std::string text = long_text(static_cast<std::size_t>(state.range(0)), 1);
    const core::wstring wide(text.begin(), text.end());
    for (auto _ : state) {
        benchmark::DoNotOptimize(Numeric::fromString(wide));
    }
}
BENCHMARK(parse_long)->Arg(100'000);

void parse_long_gmp(benchmark::State& state) {
    const std::string text = long_text(static_cast<std::size_t>(state.range(0)), 1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Gmp(text).value);
    }
}
BENCHMARK(parse_long_gmp)->Arg(100'000);

void format_long(benchmark::State& state) {
    const auto number = read<Numeric>(long_text(static_cast<std::size_t>(state.range(0)), 1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(number.toString());
    }
}
BENCHMARK(format_long)->Arg(100'000);

void format_long_gmp(benchmark::State& state) {
    const Gmp number(long_text(static_cast<std::size_t>(state.range(0)), 1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(number.text());
    }
}
BENCHMARK(format_long_gmp)->Arg(100'000);

} // namespace
