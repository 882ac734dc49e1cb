// SPDX-License-Identifier: Apache-2.0
// Services and objects of a process from one thread and from two at the same time: what two threads look up
// should cost each of them what it costs alone. The peer of each row is its own first line.
#include <core/runtime.h>
#include <core/values/type_service.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>

namespace {

using namespace core;

constexpr GUID kPlainClass = "62d771d3-c9ee-4199-ada0-352efbf00fd1"_guid;

struct IPlain : IUnknown {
    static constexpr GUID IID = "d80819a6-fbe5-4a91-81a3-8482b3b15969"_guid;
};
struct Plain : IPlain {
    using Interfaces = InterfaceList<IPlain>;
};
const SCOM_Class<Plain, &kPlainClass> kEntry("Plain");

/// The classes of this program as a module.
struct Program {
    Program() { module.init(&module); }

    LibraryScope library;
    SCOM_ResourceBundle bundle{"bench"};
    SCOM_Module module{module_class_entries, bundle};
};

/// The process of all rows.
const host::HostProcess& process() {
    static Program program;
    static const host::HostProcess process; // ends first
    return process;
}

void get_service(benchmark::State& state) {
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state)
        benchmark::DoNotOptimize(core::get_service<ITypeValueService>());
}
void query_service(benchmark::State& state) { // with a reference of one's own
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state)
        benchmark::DoNotOptimize(InterfacePtr<ITypeValueService>(current_process()).get());
}
void create_object(benchmark::State& state) {
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state)
        benchmark::DoNotOptimize(core::create_object<IPlain>(kPlainClass).get());
}
void current(benchmark::State& state) {
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state)
        benchmark::DoNotOptimize(current_process());
}
void adopt(benchmark::State& state) {
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state)
        const host::HostProcess::ThreadScope inner(process());
}
void throw_and_catch(benchmark::State& state) {
    const host::HostProcess::ThreadScope scope(process());
    for (auto _ : state) {
        try {
            throw_error<ProcessException>(messages::kNoService, {u"a service"});
        } catch (const Exception& e) {
            benchmark::DoNotOptimize(e.messageId());
        }
    }
}

BENCHMARK(current);
BENCHMARK(get_service)->Threads(1)->Threads(2);
BENCHMARK(query_service)->Threads(1)->Threads(2);
BENCHMARK(create_object)->Threads(1)->Threads(2);
BENCHMARK(adopt)->Threads(1)->Threads(2);
BENCHMARK(throw_and_catch);

} // namespace
