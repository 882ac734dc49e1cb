// SPDX-License-Identifier: Apache-2.0
// Scripts inside a program: what it costs to start an engine for one line, to compile, to run again what is
// compiled, to go round a loop, and to call what the program offers.
#include <core/script.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>

namespace {

using core::script::Engine;

/// All of what a program does that runs one line, with a process that is there.
void start_for_one_line(benchmark::State& state) {
    const host::HostProcess process;
    for (auto _ : state) {
        Engine engine;
        benchmark::DoNotOptimize(engine.run(u"Return 100 * 1.19"));
    }
}
BENCHMARK(start_for_one_line);

/// The same with a variable and a function of the program's.
void start_with_variable_and_function(benchmark::State& state) {
    const host::HostProcess process;
    for (auto _ : state) {
        Engine engine;
        engine.set("Rate", 19);
        engine.function("Percent", [](int part) { return part / 100.0; });
        benchmark::DoNotOptimize(engine.run(u"Return 100 * (1 + Percent(Rate))"));
    }
}
BENCHMARK(start_with_variable_and_function);

/// The process, too: it is made and ended in each round.
void start_with_a_process(benchmark::State& state) {
    for (auto _ : state) {
        Engine engine;
        benchmark::DoNotOptimize(engine.run(u"Return 100 * 1.19"));
    }
}
BENCHMARK(start_with_a_process);

constexpr const char16_t* kRule = u"If Price > 100 Then Return Price * 0.9 ElsIf Price > 50 Then Return "
                                  u"Price * 0.95 Else Return Price EndIf";

void compile_a_rule(benchmark::State& state) {
    const host::HostProcess process;
    for (auto _ : state)
        benchmark::DoNotOptimize(core::script::compile(kRule));
}
BENCHMARK(compile_a_rule);

void run_a_compiled_rule(benchmark::State& state) {
    const host::HostProcess process;
    Engine engine;
    const auto script = core::script::compile(kRule);
    engine.set("Price", 60);
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.run(script));
}
BENCHMARK(run_a_compiled_rule);

/// A round of a loop with arithmetic; with an argument of 1 all bounds are watched.
void loop_with_arithmetic(benchmark::State& state) {
    const host::HostProcess process;
    Engine engine;
    if (state.range(0) != 0)
        engine.limits(
            {.steps = 1'000'000'000, .time = std::chrono::hours(1), .memory = std::size_t{1} << 40U});
    const auto script =
        core::script::compile(u"s = 0; For i = 1 To 10000 Do s = s + i * 2 - 1 EndDo; Return s");
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.run(script));
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(loop_with_arithmetic)->Arg(0)->Arg(1);

void call_of_a_function(benchmark::State& state) {
    const host::HostProcess process;
    Engine engine;
    engine.function("Add", [](int a, int b) { return a + b; });
    const auto script = core::script::compile(u"s = 0; For i = 1 To 10000 Do s = Add(s, i) EndDo; Return s");
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.run(script));
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(call_of_a_function);

} // namespace
