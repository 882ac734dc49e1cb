// SPDX-License-Identifier: Apache-2.0
// Finding members by name and calling methods with boxed arguments, beside ICU's case folding with a flat
// hash table and beside Qt's meta-objects.
#include <core/collections.h>
#include <core/context/context_def.h>
#include <core/context/name_cache.h>
#include <core/runtime.h>
#include <core/runtime/module.h>
#include <core/values.h>

#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <string>
#include <vector>

/// A list with the methods of an array, which Qt calls by number.
class QtList : public QObject {
    Q_OBJECT
  public:
    Q_INVOKABLE QVariant count() const { return items_.size(); }
    Q_INVOKABLE void add(const QVariant& value) { items_.append(value); }
    Q_INVOKABLE QVariant get(const QVariant& index) const { return items_.at(index.toInt()); }

  private:
    QVariantList items_;
};

namespace {

using namespace core;

const LibraryScope library;

/// Fifty names as tables have them, and the same in capitals.
struct Names {
    std::vector<std::u16string> names;
    std::vector<std::u16string> capitals;

    Names() {
        const std::u16string stems[] = {u"Количество", u"Найти", u"Выбрать", u"ПолучитьЗначение", u"Count",
                                        u"FindRows",   u"Item",  u"Колонки", u"SortByColumns",    u"Итог"};
        for (int i = 0; i < 50; ++i) {
            names.push_back(stems[i % 10] + static_cast<char16_t>(u'А' + i / 10));
            capitals.push_back(to_upper(wstring_view(names.back())));
        }
    }
};
const Names all_names;

void find_ours(benchmark::State& state) {
    NameTable table;
    for (std::size_t i = 0; i < all_names.names.size(); ++i)
        table.add(all_names.names[i], static_cast<int>(i));
    std::size_t i = 0;
    for (auto _ : state) {
        if (table.find(all_names.capitals[i]) != static_cast<int>(i))
            state.SkipWithError("wrong answer");
        i = (i + 1) % all_names.names.size();
    }
}

std::u16string icu_fold(const std::u16string& text) {
    std::u16string folded(text.size() * 3, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = u_strFoldCase(folded.data(), static_cast<int32_t>(folded.size()), text.data(),
                                         static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &error);
    folded.resize(static_cast<std::size_t>(length));
    return folded;
}

void find_icu_and_flat_map(benchmark::State& state) {
    absl::flat_hash_map<std::u16string, int> table;
    for (std::size_t i = 0; i < all_names.names.size(); ++i)
        table.emplace(icu_fold(all_names.names[i]), static_cast<int>(i));
    std::size_t i = 0;
    for (auto _ : state) {
        const auto place = table.find(icu_fold(all_names.capitals[i]));
        if (place == table.end() || place->second != static_cast<int>(i))
            state.SkipWithError("wrong answer");
        i = (i + 1) % all_names.names.size();
    }
}

constexpr int kItems = 100;

InterfacePtr<IContext_> our_list() {
    const auto array = create_value_array();
    for (int i = 0; i < kItems; ++i)
        array->add(i);
    return array.query<IContext_>();
}

void call_ours(benchmark::State& state) {
    const auto list = our_list();
    const int get = list->findMethod(u"Get");
    std::vector<GenericValue> params = {42};
    GenericValue result;
    for (auto _ : state) {
        list->call(get, &result, &params);
        benchmark::DoNotOptimize(&result);
    }
}
void find_and_call_ours(benchmark::State& state) {
    const auto list = our_list();
    std::vector<GenericValue> params = {42};
    GenericValue result;
    for (auto _ : state) {
        list->call(list->findMethod(u"get"), &result, &params);
        benchmark::DoNotOptimize(&result);
    }
}

void fill(QtList& list) {
    for (int i = 0; i < kItems; ++i)
        list.add(i);
}

void call_metacall(benchmark::State& state) {
    QtList list;
    fill(list);
    const int get = list.metaObject()->indexOfMethod("get(QVariant)");
    QVariant index = 42;
    QVariant result;
    void* arguments[] = {&result, &index};
    QObject* const object = &list;
    for (auto _ : state) {
        object->qt_metacall(QMetaObject::InvokeMetaMethod, get, arguments);
        benchmark::DoNotOptimize(&result);
    }
}
void find_and_call_invoke_method(benchmark::State& state) {
    QtList list;
    fill(list);
    const QVariant index = 42;
    QVariant result;
    for (auto _ : state) {
        QMetaObject::invokeMethod(&list, "get", Qt::DirectConnection, Q_RETURN_ARG(QVariant, result),
                                  Q_ARG(QVariant, index));
        benchmark::DoNotOptimize(&result);
    }
}

BENCHMARK(find_ours);
BENCHMARK(find_icu_and_flat_map);
BENCHMARK(call_ours);
BENCHMARK(call_metacall);
BENCHMARK(find_and_call_ours);
BENCHMARK(find_and_call_invoke_method);

} // namespace

#include "reflection_bench.moc"
