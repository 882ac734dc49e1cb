// SPDX-License-Identifier: Apache-2.0
// Maps of boxed keys and structures. Two peers under a map of a million keys: a flat hash table of the same
// values with the same hash, which shows the table's own layout, and one of counted boxes of the kind that a
// program makes for itself (a count and an integer or a std::u16string). QVariantHash beside the structure.
#include "core/values/value_hash.h"

#include <core/collections.h>
#include <core/runtime.h>
#include <core/runtime/module.h>
#include <core/values.h>

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <benchmark/benchmark.h>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <algorithm>
#include <random>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace core;

const LibraryScope library;

constexpr std::size_t kCount = 1'000'000;

struct ValueTableHash {
    using is_avalanching = void;
    std::size_t operator()(const Value& value) const noexcept { return value_table_hash(value); }
};
using FlatValues = boost::unordered_flat_map<Value, Value, ValueTableHash, GenericValueCompare>;

struct Box : boost::intrusive_ref_counter<Box> {
    explicit Box(std::variant<std::int64_t, std::u16string> content) : content(std::move(content)) {}
    std::variant<std::int64_t, std::u16string> content;
};
using BoxPtr = boost::intrusive_ptr<const Box>;
struct BoxHash {
    std::size_t operator()(const BoxPtr& box) const noexcept {
        return std::visit(
            [](const auto& content) { return boost::hash<std::decay_t<decltype(content)>>()(content); },
            box->content);
    }
};
struct BoxEqual {
    bool operator()(const BoxPtr& a, const BoxPtr& b) const noexcept { return a->content == b->content; }
};
using FlatBoxes = boost::unordered_flat_map<BoxPtr, BoxPtr, BoxHash, BoxEqual>;

std::u16string text_of(std::size_t i) {
    const std::string text = "key " + std::to_string(i * 2654435761U % 100'000'000);
    return {text.begin(), text.end()};
}

/// Keys to be inserted, the same keys made again in another order, and as many that are not there.
template <class Key>
struct Keys {
    std::vector<Key> present;
    std::vector<Key> again;
    std::vector<Key> absent;

    template <class Make>
    explicit Keys(Make make) {
        std::vector<std::size_t> order(kCount);
        for (std::size_t i = 0; i < kCount; ++i)
            order[i] = i;
        std::mt19937 random(1);
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t i : order)
            present.push_back(make(i * 2));
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t i : order)
            again.push_back(make(i * 2));
        for (const std::size_t i : order)
            absent.push_back(make(i * 2 + 1));
    }
};

template <class Key, bool text>
const Keys<Key>& keys() {
    static const Keys<Key> all([](std::size_t i) {
        using Content = std::conditional_t<text, std::u16string, std::int64_t>;
        Content content;
        if constexpr (text)
            content = text_of(i);
        else
            content = static_cast<std::int64_t>(i);
        if constexpr (std::same_as<Key, Value>)
            return Value(content);
        else
            return BoxPtr(new Box(content));
    });
    return all;
}

/// Our map, in the form of the peers'.
class OurMap {
  public:
    void insert(const Value& key, const Value& value) { map_->insert(key, value); }
    bool has(const Value& key) const { return map_->find(key) != nullptr; }

  private:
    InterfacePtr<IValueMap> map_ = create_value_map();
};
template <class Table>
class PeerMap {
  public:
    template <class Key>
    void insert(const Key& key, const Key& value) {
        table_.insert_or_assign(key, value);
    }
    template <class Key>
    bool has(const Key& key) const {
        return table_.find(key) != table_.end();
    }

  private:
    Table table_;
};

template <class Map, class Key, bool text>
void insert(benchmark::State& state) {
    const auto& present = keys<Key, text>().present;
    for (auto _ : state) {
        Map map;
        for (const Key& key : present)
            map.insert(key, key);
        state.PauseTiming();
        { const Map dying = std::move(map); }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCount));
}

template <class Map, class Key, bool text, bool present>
void find(benchmark::State& state) {
    const auto& all = keys<Key, text>();
    static const Map map = [&] {
        Map filled;
        for (const Key& key : all.present)
            filled.insert(key, key);
        return filled;
    }();
    const auto& wanted = present ? all.again : all.absent;
    std::size_t i = 0;
    for (auto _ : state) {
        if (map.has(wanted[i]) != present)
            state.SkipWithError("wrong answer");
        i = i + 1 < kCount ? i + 1 : 0;
    }
}

using FlatValueMap = PeerMap<FlatValues>;
using FlatBoxMap = PeerMap<FlatBoxes>;

BENCHMARK(insert<OurMap, Value, false>)->Name("number_insert_ours")->Unit(benchmark::kMillisecond);
BENCHMARK(insert<FlatValueMap, Value, false>)
    ->Name("number_insert_flat_values")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(insert<FlatBoxMap, BoxPtr, false>)->Name("number_insert_flat_boxes")->Unit(benchmark::kMillisecond);
BENCHMARK(find<OurMap, Value, false, true>)->Name("number_find_ours");
BENCHMARK(find<FlatValueMap, Value, false, true>)->Name("number_find_flat_values");
BENCHMARK(find<FlatBoxMap, BoxPtr, false, true>)->Name("number_find_flat_boxes");
BENCHMARK(insert<OurMap, Value, true>)->Name("string_insert_ours")->Unit(benchmark::kMillisecond);
BENCHMARK(insert<FlatValueMap, Value, true>)
    ->Name("string_insert_flat_values")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(insert<FlatBoxMap, BoxPtr, true>)->Name("string_insert_flat_boxes")->Unit(benchmark::kMillisecond);
BENCHMARK(find<OurMap, Value, true, true>)->Name("string_find_ours");
BENCHMARK(find<FlatValueMap, Value, true, true>)->Name("string_find_flat_values");
BENCHMARK(find<FlatBoxMap, BoxPtr, true, true>)->Name("string_find_flat_boxes");
BENCHMARK(find<OurMap, Value, true, false>)->Name("string_absent_ours");
BENCHMARK(find<FlatValueMap, Value, true, false>)->Name("string_absent_flat_values");
BENCHMARK(find<FlatBoxMap, BoxPtr, true, false>)->Name("string_absent_flat_boxes");

// A structure of eight fields: built, read and destroyed. Names and values are boxed already.

constexpr const char* kFields[] = {"Name",  "Code",     "Quantity",  "Price",
                                   "Total", "Currency", "Warehouse", "Comment"};

void structure_ours(benchmark::State& state) {
    std::vector<Value> names;
    for (const std::string field : kFields)
        names.emplace_back(std::u16string(field.begin(), field.end()));
    const std::vector<Value> values(names.rbegin(), names.rend());
    for (auto _ : state) {
        const auto structure = create_value_structure();
        for (std::size_t i = 0; i < names.size(); ++i)
            structure->insert(names[i], values[i]);
        for (const Value& name : names) {
            const Value value = *structure->find(name);
            benchmark::DoNotOptimize(&value);
        }
    }
}
void structure_qvarianthash(benchmark::State& state) {
    std::vector<QString> names;
    std::vector<QVariant> values;
    for (const char* field : kFields) {
        names.push_back(QString::fromLatin1(field));
        values.insert(values.begin(), QVariant(names.back()));
    }
    for (auto _ : state) {
        QVariantHash structure;
        for (std::size_t i = 0; i < names.size(); ++i)
            structure.insert(names[i], values[i]);
        for (const QString& name : names) {
            const QVariant value = structure.value(name);
            benchmark::DoNotOptimize(&value);
        }
    }
}
BENCHMARK(structure_ours);
BENCHMARK(structure_qvarianthash);

} // namespace
