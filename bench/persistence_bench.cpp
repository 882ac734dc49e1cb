// SPDX-License-Identifier: Apache-2.0
// The compact form beside the brace list and msgpack: two million values one by one, and a table of a million
// sales. A figure of values is the time of one value, one of tables that of the whole; `bytes` is the size of
// the result. msgpack has the values as its own objects, texts in UTF-8 and prices as doubles.
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence.h>
#include <core/runtime/utf8.h>
#include <core/tables.h>
#include <host/host_process.h>

#include <QtCore/QByteArray>
#include <QtCore/QCborArray>
#include <QtCore/QCborValue>
#include <QtCore/QString>
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace core;
using Bytes = std::vector<std::byte>;

constexpr std::int64_t kRecords = 400'000;
constexpr std::int64_t kValues = 5 * kRecords;
constexpr std::size_t kRows = 1'000'000;

struct Record {
    std::string name;
    std::int32_t count;
    double price;
    bool sold;
    std::string note;
};

const std::vector<Record>& records() {
    static const std::vector<Record> all = [] {
        std::mt19937 random(1);
        const auto word = [&](std::size_t length, wchar first) {
            wstring text;
            for (std::size_t i = 0; i < length; ++i)
                text.push_back(static_cast<wchar>(first + random() % 26));
            return to_utf8(text);
        };
        std::vector<Record> made;
        for (std::int64_t i = 0; i < kRecords; ++i)
            made.push_back({word(12, i % 4 == 0 ? u'а' : u'a'),
                            static_cast<std::int32_t>(random() % 1'000'000),
                            static_cast<double>(random() % 10'000'000) / 100, random() % 2 == 0,
                            word(20 + random() % 40, u'a')});
        return made;
    }();
    return all;
}

const std::vector<GenericValue>& boxed_values() {
    static const std::vector<GenericValue> values = [] {
        std::vector<GenericValue> made;
        for (const Record& record : records()) {
            made.emplace_back(from_utf8(record.name));
            made.emplace_back(record.count);
            made.emplace_back(Numeric(record.price));
            made.emplace_back(record.sold);
            made.emplace_back(from_utf8(record.note));
        }
        return made;
    }();
    return values;
}

void count_values(benchmark::State& state, std::size_t bytes) {
    state.counters["value"] =
        benchmark::Counter(static_cast<double>(kValues),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["bytes"] = static_cast<double>(bytes);
}

// values

Bytes written_values(StoredForm form) {
    Bytes bytes;
    StreamOutStorage storage(
        form, [&](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); });
    storage.listStream().putBeginOfList();
    for (const GenericValue& value : boxed_values())
        value.serialize(&storage);
    storage.listStream().putEndOfList();
    storage.finish();
    return bytes;
}

void write_values(benchmark::State& state, StoredForm form) {
    std::size_t size = 0;
    for (auto _ : state) {
        const Bytes bytes = written_values(form);
        size = bytes.size();
        benchmark::DoNotOptimize(bytes.data());
    }
    count_values(state, size);
}
BENCHMARK_CAPTURE(write_values, compact, StoredForm::compact);
BENCHMARK_CAPTURE(write_values, text, StoredForm::text);

const QCborArray& cbor_values() {
    static const QCborArray values = [] {
        QCborArray made;
        for (const Record& record : records()) {
            made.append(QString::fromUtf8(record.name.data(), static_cast<int>(record.name.size())));
            made.append(record.count);
            made.append(record.price);
            made.append(record.sold);
            made.append(QString::fromUtf8(record.note.data(), static_cast<int>(record.note.size())));
        }
        return made;
    }();
    return values;
}

void write_values_cbor(benchmark::State& state) {
    QCborValue values = cbor_values();
    std::size_t size = 0;
    for (auto _ : state) {
        const QByteArray bytes = values.toCbor();
        size = static_cast<std::size_t>(bytes.size());
        benchmark::DoNotOptimize(bytes.data());
    }
    count_values(state, size);
}
BENCHMARK(write_values_cbor);

void read_values(benchmark::State& state, StoredForm form) {
    const Bytes bytes = written_values(form);
    for (auto _ : state) {
        StreamInStorage storage(bytes);
        std::vector<GenericValue> values;
        storage.listStream().getBeginOfList();
        for (std::int64_t i = 0; i < kValues; ++i)
            values.push_back(GenericValue::deserialize(&storage));
        storage.listStream().getEndOfList();
        benchmark::DoNotOptimize(values.data());
    }
    count_values(state, bytes.size());
}
BENCHMARK_CAPTURE(read_values, compact, StoredForm::compact);
BENCHMARK_CAPTURE(read_values, text, StoredForm::text);

void read_values_cbor(benchmark::State& state) {
    const QByteArray bytes = QCborValue(cbor_values()).toCbor();
    for (auto _ : state)
        benchmark::DoNotOptimize(QCborValue::fromCbor(bytes));
    count_values(state, static_cast<std::size_t>(bytes.size()));
}
BENCHMARK(read_values_cbor);

// a table

GenericValue sales() {
    static const host::HostProcess process;
    static const GenericValue table = [] {
        const auto made = create_value_table();
        for (const wchar* name : {u"Product", u"Region", u"Count", u"Price", u"Day"})
            made->addColumn(name);
        std::mt19937 random(2);
        for (std::size_t i = 0; i < kRows; ++i)
            made->appendRow(std::array<Value, 5>{
                Value(u"product " + string_intto(random() % 1000)),
                Value(u"region " + string_intto(random() % 10)), Value(random() % 100),
                Value(Numeric::fromScaled(random() % 1'000'000, 2)),
                Value(Date(2023, 1 + static_cast<int>(random() % 12), 1 + static_cast<int>(random() % 28)))});
        return GenericValue(made.query<IValue>());
    }();
    return table;
}

Bytes written_table(StoredForm form) {
    Bytes bytes;
    StreamOutStorage storage(
        form, [&](std::span<const std::byte> part) { bytes.insert(bytes.end(), part.begin(), part.end()); });
    sales().serialize(&storage);
    storage.finish();
    return bytes;
}

void write_table(benchmark::State& state, StoredForm form) {
    static_cast<void>(sales());
    std::size_t size = 0;
    for (auto _ : state)
        size = written_table(form).size();
    state.counters["bytes"] = static_cast<double>(size);
}
BENCHMARK_CAPTURE(write_table, compact, StoredForm::compact)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write_table, text, StoredForm::text)->Unit(benchmark::kMillisecond);

void read_table(benchmark::State& state, StoredForm form) {
    const Bytes bytes = written_table(form);
    for (auto _ : state)
        benchmark::DoNotOptimize(GenericValue::fromBytes(bytes));
    state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK_CAPTURE(read_table, compact, StoredForm::compact)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read_table, text, StoredForm::text)->Unit(benchmark::kMillisecond);

} // namespace
