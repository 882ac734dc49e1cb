// SPDX-License-Identifier: Apache-2.0
// Script values beside QVariant and nlohmann::json: making and destroying one, copying a thousand mixed ones,
// and reading them in an order so long that no processor learns which kind comes next.
#include <core/values.h>

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <random>
#include <vector>

namespace {

using core::Value;
using nlohmann::json;

constexpr std::size_t kCount = 1000;
constexpr char16_t kText[] = u"twelve chars";
constexpr int kLength = 12;

/// A third numbers, a third strings, the rest true, false and nothing.
template <class T, class Number, class String, class Boolean, class Nothing>
std::vector<T> mixed(Number number, String string, Boolean boolean, Nothing nothing) {
    std::mt19937 random(1);
    std::vector<T> values;
    for (std::size_t i = 0; i < kCount; ++i) {
        const auto dice = random() % 9;
        values.push_back(dice < 3   ? number(static_cast<int>(random() % 1'000'000))
                         : dice < 6 ? string("text " + std::to_string(random() % 1'000'000))
                         : dice < 8 ? boolean(dice == 6)
                                    : nothing());
    }
    return values;
}

const std::vector<Value>& our_values() {
    static const auto values =
        mixed<Value>([](int n) { return Value(n); },
                     [](const std::string& s) { return Value(std::u16string(s.begin(), s.end())); },
                     [](bool b) { return Value(b); }, [] { return Value(); });
    return values;
}
const std::vector<QVariant>& qt_values() {
    static const auto values =
        mixed<QVariant>([](int n) { return QVariant(n); },
                        [](const std::string& s) { return QVariant(QString::fromStdString(s)); },
                        [](bool b) { return QVariant(b); }, [] { return QVariant(); });
    return values;
}
const std::vector<json>& json_values() {
    static const auto values =
        mixed<json>([](int n) { return json(n); }, [](const std::string& s) { return json(s); },
                    [](bool b) { return json(b); }, [] { return json(); });
    return values;
}

void number_ours(benchmark::State& state) {
    int n = 1;
    for (auto _ : state) {
        const Value value(n);
        benchmark::DoNotOptimize(&value);
        n += 7;
    }
}
void number_qvariant(benchmark::State& state) {
    int n = 1;
    for (auto _ : state) {
        const QVariant value(n);
        benchmark::DoNotOptimize(&value);
        n += 7;
    }
}

void string_ours(benchmark::State& state) {
    for (auto _ : state) {
        const Value value(core::wstring_view(kText, kLength));
        benchmark::DoNotOptimize(&value);
    }
}
void string_qvariant(benchmark::State& state) {
    for (auto _ : state) {
        const QVariant value(QString::fromUtf16(kText, kLength));
        benchmark::DoNotOptimize(&value);
    }
}

template <class T>
void copy_all(benchmark::State& state, const std::vector<T>& values) {
    std::vector<T> copies;
    copies.reserve(kCount);
    for (auto _ : state) {
        copies.assign(values.begin(), values.end());
        benchmark::DoNotOptimize(copies.data());
        copies.clear();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}
void copy_ours(benchmark::State& state) {
    copy_all(state, our_values());
}
void copy_qvariant(benchmark::State& state) {
    copy_all(state, qt_values());
}
void copy_json(benchmark::State& state) {
    copy_all(state, json_values());
}

/// Which value is read next, 256 rounds of all of them at random.
const std::vector<std::uint16_t>& reading_order() {
    static const auto order = [] {
        std::mt19937 random(2);
        std::vector<std::uint16_t> order(256 * kCount);
        for (auto& index : order)
            index = static_cast<std::uint16_t>(random() % kCount);
        return order;
    }();
    return order;
}

/// Adds up the numbers, the lengths and last letters of the strings, and the trues.
template <class T, class Read>
void read_all(benchmark::State& state, const std::vector<T>& values, Read read) {
    const auto& order = reading_order();
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const std::uint16_t index : order)
            sum += read(values[index]);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(order.size()));
}
template <class String>
std::int64_t read_string(const String& text) {
    return static_cast<std::int64_t>(text.size()) + text.back();
}
void read_ours(benchmark::State& state) {
    read_all(state, our_values(), [](const Value& value) -> std::int64_t {
        switch (value.kind()) {
        case core::ValueKind::number: {
            const auto whole = value.asSmallWhole();
            return whole ? *whole : static_cast<std::int64_t>(*value.asNumeric());
        }
        case core::ValueKind::string:
            return read_string(*value.asString());
        case core::ValueKind::boolean:
            return value.isTrue() ? 1 : 0;
        default:
            return 0;
        }
    });
}
void read_qvariant(benchmark::State& state) {
    read_all(state, qt_values(), [](const QVariant& value) -> std::int64_t {
        switch (value.userType()) {
        case QMetaType::Int:
            return value.toInt();
        case QMetaType::QString: {
            const QString text = value.toString();
            return text.size() + text.back().unicode();
        }
        case QMetaType::Bool:
            return value.toBool() ? 1 : 0;
        default:
            return 0;
        }
    });
}
void read_json(benchmark::State& state) {
    read_all(state, json_values(), [](const json& value) -> std::int64_t {
        switch (value.type()) {
        case json::value_t::number_integer:
            return value.get<std::int64_t>();
        case json::value_t::string:
            return read_string(value.get_ref<const std::string&>());
        case json::value_t::boolean:
            return value.get<bool>() ? 1 : 0;
        default:
            return 0;
        }
    });
}

BENCHMARK(number_ours);
BENCHMARK(number_qvariant);
BENCHMARK(string_ours);
BENCHMARK(string_qvariant);
BENCHMARK(copy_ours);
BENCHMARK(copy_qvariant);
BENCHMARK(copy_json);
BENCHMARK(read_ours);
BENCHMARK(read_qvariant);
BENCHMARK(read_json);

} // namespace
