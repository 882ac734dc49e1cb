// SPDX-License-Identifier: Apache-2.0
// Scripts inside a program: what it costs to start an engine for one line, to compile, to run again what is
// compiled, to go round a loop, and to call what the program offers and what the script declares; the last
// two in Python, too.
#include <core/script.h>
#include <host/host_process.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

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

/// A procedure that the script declares, with two arguments and a result.
void call_of_a_procedure(benchmark::State& state) {
    const host::HostProcess process;
    Engine engine;
    const auto script = core::script::compile(u"Function Add(a, b) Return a + b EndFunction "
                                              u"s = 0; For i = 1 To 10000 Do s = Add(s, i) EndDo; Return s");
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.run(script));
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(call_of_a_procedure);

/// The seconds that Python takes for its statements, by its own clock and without its start; negative where
/// there is no Python.
double seconds_of_python(const std::string& statements) {
    const std::string command = "python3 -c '\nfrom time import perf_counter\n" + statements +
                                "\nbegin = perf_counter()\nwork()\nprint(perf_counter() - begin)'";
    double seconds = -1;
    if (FILE* const output = ::popen(command.c_str(), "r")) {
        if (std::fscanf(output, "%lf", &seconds) != 1)
            seconds = -1;
        ::pclose(output);
    }
    return seconds;
}

void run_python(benchmark::State& state, const char* statements, std::int64_t items) {
    for (auto _ : state) {
        const double seconds = seconds_of_python(statements);
        if (seconds < 0)
            return state.SkipWithError("python3 is not there");
        state.SetIterationTime(seconds);
    }
    state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK_CAPTURE(run_python, loop_with_arithmetic,
                  "def work():\n  s = 0\n  for i in range(1, 1000001):\n    s = s + i * 2 - 1\n", 1'000'000)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(run_python, call_of_a_procedure,
                  "def add(a, b):\n  return a + b\ndef work():\n  s = 0\n  for i in range(1, 1000001):\n"
                  "    s = add(s, i)\n",
                  1'000'000)
    ->UseManualTime()
    ->Iterations(3);

} // namespace
