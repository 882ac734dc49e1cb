// SPDX-License-Identifier: Apache-2.0
// Brace lists beside RapidJSON on UTF-16, over the same records: token by token against its SAX reader and
// its writer, boxed values against its documents. A figure is the time of one value. Writing is measured into
// memory that grows, where the system's fresh pages weigh most, and through one piece that is used again, as
// a file is written.
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/streams/memory_stream.h>
#include <core/values/generic_value.h>

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

using namespace core;

using Encoding = rapidjson::UTF16<wchar>;
using JsonBuffer = rapidjson::GenericStringBuffer<Encoding>;
template <class Out>
using JsonWriter = rapidjson::Writer<Out, Encoding, Encoding>;
using JsonDocument = rapidjson::GenericDocument<Encoding>;

constexpr std::size_t kPiece = 32 * 1024; // units

/// Takes text through one piece of memory.
class PieceBuffer : public TextBuffer {
  public:
    PieceBuffer() { rewind(); }

  protected:
    int_type overflow(int_type unit) override {
        rewind();
        return traits_type::eq_int_type(unit, traits_type::eof()) ? 0
                                                                  : sputc(traits_type::to_char_type(unit));
    }

  private:
    void rewind() { setp(piece_.data(), piece_.data() + piece_.size()); }
    std::vector<wchar> piece_ = std::vector<wchar>(kPiece);
};

/// The same for the peer.
class JsonPiece {
  public:
    using Ch = wchar;
    void Put(wchar unit) {
        if (at_ == piece_.data() + piece_.size())
            at_ = piece_.data();
        *at_++ = unit;
    }
    void Flush() {}

  private:
    std::vector<wchar> piece_ = std::vector<wchar>(kPiece);
    wchar* at_ = piece_.data();
};

struct Record {
    wstring name;
    std::int32_t count;
    double price;
    bool sold;
    wstring note;
};
constexpr std::int64_t kRecords = 400'000;
constexpr std::int64_t kValues = 5 * kRecords;

const std::vector<Record>& records() {
    static const std::vector<Record> all = [] {
        std::mt19937 random(1);
        const auto word = [&](std::size_t length, wchar first) {
            wstring text;
            for (std::size_t i = 0; i < length; ++i)
                text.push_back(static_cast<wchar>(first + random() % 26));
            return text;
        };
        std::vector<Record> made;
        for (std::int64_t i = 0; i < kRecords; ++i) {
            const auto count = static_cast<std::int32_t>(random() % 1'000'000);
            const double price = static_cast<double>(random() % 10'000'000) / 100;
            made.push_back(
                {word(12, i % 4 == 0 ? u'а' : u'a'), count, price, random() % 2 == 0,
                 word(20 + random() % 40, u'a') + (i % 8 == 0 ? u"\"quoted\"" : u"") + word(4, u'A')});
        }
        return made;
    }();
    return all;
}

void count_values(benchmark::State& state) {
    state.counters["value"] =
        benchmark::Counter(static_cast<double>(kValues),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// Token by token

wstring list_of_tokens() {
    MemoryOutStream stream;
    ListOutStream out(stream);
    out.putBeginOfList();
    for (const Record& record : records()) {
        out.putBeginOfList();
        out.put(record.name);
        out.put(record.count);
        out.put(record.price);
        out.put(record.sold);
        out.put(record.note);
        out.putEndOfList();
    }
    out.putEndOfList();
    return stream.take();
}

void write_json(JsonBuffer& buffer) {
    JsonWriter<JsonBuffer> writer(buffer);
    writer.StartArray();
    for (const Record& record : records()) {
        writer.StartArray();
        writer.String(record.name.data(), static_cast<rapidjson::SizeType>(record.name.size()));
        writer.Int(record.count);
        writer.Double(record.price);
        writer.Bool(record.sold);
        writer.String(record.note.data(), static_cast<rapidjson::SizeType>(record.note.size()));
        writer.EndArray();
    }
    writer.EndArray();
}

const wstring& json_text() {
    static const wstring text = [] {
        JsonBuffer buffer;
        write_json(buffer);
        return wstring(buffer.GetString());
    }();
    return text;
}

void read_tokens_core(benchmark::State& state) {
    const wstring text = list_of_tokens();
    for (auto _ : state) {
        MemoryInStream stream(text);
        ListInStream in(stream);
        Record record{};
        double sum = 0;
        in.getBeginOfList();
        for (std::int64_t i = 0; i < kRecords; ++i) {
            in.getBeginOfList();
            in.get(record.name);
            in.get(record.count);
            in.get(record.price);
            in.get(record.sold);
            in.get(record.note);
            in.getEndOfList();
            sum += record.count + record.price + static_cast<double>(record.note.size());
        }
        in.getEndOfList();
        benchmark::DoNotOptimize(sum);
    }
    count_values(state);
}
BENCHMARK(read_tokens_core);

/// Takes every value and keeps none.
struct Sum : rapidjson::BaseReaderHandler<Encoding, Sum> {
    double sum = 0;
    bool Int(int value) { return sum += value, true; }
    bool Uint(unsigned value) { return sum += value, true; }
    bool Double(double value) { return sum += value, true; }
    bool String(const wchar*, rapidjson::SizeType length, bool) { return sum += length, true; }
};

void read_tokens_rapidjson(benchmark::State& state) {
    const wstring& text = json_text();
    for (auto _ : state) {
        rapidjson::GenericStringStream<Encoding> stream(text.c_str());
        rapidjson::GenericReader<Encoding, Encoding> reader;
        Sum sum;
        reader.Parse(stream, sum);
        benchmark::DoNotOptimize(sum.sum);
    }
    count_values(state);
}
BENCHMARK(read_tokens_rapidjson);

void write_tokens_core(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(list_of_tokens());
    count_values(state);
}
BENCHMARK(write_tokens_core);

void write_tokens_rapidjson(benchmark::State& state) {
    for (auto _ : state) {
        JsonBuffer buffer;
        write_json(buffer);
        benchmark::DoNotOptimize(buffer.GetString());
    }
    count_values(state);
}
BENCHMARK(write_tokens_rapidjson);

// Boxed values

std::vector<GenericValue> boxed_values() {
    std::vector<GenericValue> values;
    values.reserve(static_cast<std::size_t>(kValues));
    for (const Record& record : records()) {
        values.emplace_back(record.name);
        values.emplace_back(record.count);
        values.emplace_back(Numeric(record.price));
        values.emplace_back(record.sold);
        values.emplace_back(record.note);
    }
    return values;
}

void write_values(wostream& stream, const std::vector<GenericValue>& values) {
    ListOutStream out(stream);
    ListOutStorage storage(out);
    out.putBeginOfList();
    for (const GenericValue& value : values)
        value.serialize(&storage);
    out.putEndOfList();
}

wstring list_of_values(const std::vector<GenericValue>& values) {
    MemoryOutStream stream;
    write_values(stream, values);
    return stream.take();
}

void parse_values(benchmark::State& state, const wstring& text, std::int64_t count) {
    for (auto _ : state) {
        MemoryInStream stream(text);
        ListInStream in(stream);
        ListInStorage storage(in);
        std::vector<GenericValue> values;
        in.getBeginOfList();
        for (std::int64_t i = 0; i < count; ++i)
            values.push_back(GenericValue::deserialize(&storage));
        in.getEndOfList();
        benchmark::DoNotOptimize(values.data());
    }
    count_values(state);
}

void parse_values_core(benchmark::State& state) {
    parse_values(state, list_of_values(boxed_values()), kValues);
}
BENCHMARK(parse_values_core);

void parse_values_rapidjson(benchmark::State& state) {
    const wstring& text = json_text();
    for (auto _ : state) {
        JsonDocument document;
        document.Parse(text.c_str());
        benchmark::DoNotOptimize(document.Size());
    }
    count_values(state);
}
BENCHMARK(parse_values_rapidjson);

void parse_small_numbers_core(benchmark::State& state) {
    wstring text = u"{";
    for (std::int64_t i = 0; i < kValues; ++i)
        text += i == 0 ? u"{\"N\",1}" : u",\n{\"N\",1}";
    parse_values(state, text + u"}", kValues);
}
BENCHMARK(parse_small_numbers_core);

void write_values_core(benchmark::State& state) {
    const std::vector<GenericValue> values = boxed_values();
    PieceBuffer buffer;
    wostream stream(&buffer);
    for (auto _ : state)
        write_values(stream, values);
    count_values(state);
}
BENCHMARK(write_values_core);

void write_values_rapidjson(benchmark::State& state) {
    JsonDocument document;
    document.Parse(json_text().c_str());
    JsonPiece piece;
    for (auto _ : state) {
        JsonWriter<JsonPiece> writer(piece);
        document.Accept(writer);
    }
    count_values(state);
}
BENCHMARK(write_values_rapidjson);

void write_values_to_memory_core(benchmark::State& state) {
    const std::vector<GenericValue> values = boxed_values();
    for (auto _ : state)
        benchmark::DoNotOptimize(list_of_values(values));
    count_values(state);
}
BENCHMARK(write_values_to_memory_core);

void write_values_to_memory_rapidjson(benchmark::State& state) {
    JsonDocument document;
    document.Parse(json_text().c_str());
    for (auto _ : state) {
        JsonBuffer buffer;
        JsonWriter<JsonBuffer> writer(buffer);
        document.Accept(writer);
        benchmark::DoNotOptimize(buffer.GetString());
    }
    count_values(state);
}
BENCHMARK(write_values_to_memory_rapidjson);

} // namespace
