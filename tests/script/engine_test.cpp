// SPDX-License-Identifier: Apache-2.0
// Scripts inside a program: values and functions in both directions, failures
// with their place and cause, each bound, engines side by side and inside each
// other, and nothing left behind.
#include "tests/support/sanitizers.h"

#include <core/collections/value_array.h>
#include <core/context/errors.h>
#include <core/context/native_object.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/script.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace core::script {
namespace {

using namespace std::chrono_literals;

/// What a script fails with.
Error failure(Engine& engine, const Text& text) {
    try {
        engine.run(text, "test");
    } catch (const Error& error) {
        return error;
    }
    ADD_FAILURE() << "no failure: " << to_utf8(text.view());
    return Error();
}

std::string place_of(const Error& error) {
    return to_utf8(error.file()) + ':' + std::to_string(error.line()) + ':' + std::to_string(error.column());
}

TEST(Engine, VariablesKeepTheirValuesBetweenRuns) {
    Engine engine;
    engine.set("Rate", Numeric::parse("0.19").value());
    EXPECT_EQ(engine.run("Return 100 * (1 + rate)").presentation(), u"119");
    engine.run(u"Итог = Rate * 2; Список = New Array; Список.Add(Итог)");
    EXPECT_EQ(engine.get<double>("итог"), 0.38);
    EXPECT_EQ(engine.get("список").query<IValueArray>()->count(), 1U);
    EXPECT_TRUE(engine.has("ИТОГ"));
    engine.remove("итог");
    EXPECT_FALSE(engine.has("ИТОГ"));
    EXPECT_TRUE(engine.get("ИТОГ").isUndefined());
    EXPECT_THROW((void)engine.get<int>("rate"), ContextException) << "a fraction";
    engine.set("Text", "naïve");
    engine.set("Flag", true);
    const auto array = create_value_array();
    engine.set("List", array);
    EXPECT_EQ(engine.run("If Flag Then List.Add(Text) EndIf; Return List[0]").presentation(), u"naïve");
    EXPECT_EQ(array->count(), 1U);
    for (const char* const name : {"", "1a", "a b", "If", "возврат", "a.b"})
        EXPECT_THROW(engine.set(name, 1), ContextException) << name;
    EXPECT_THROW(engine.set("\xFF", 1), ConverterException);
    EXPECT_THROW(engine.run("x = \"\xD0\""), ConverterException);
}

TEST(Engine, ReturnEndsTheScript) {
    Engine engine;
    EXPECT_TRUE(engine.run("").isUndefined());
    EXPECT_TRUE(engine.run(Script()).isUndefined());
    EXPECT_TRUE(engine.run("x = 5").isUndefined());
    EXPECT_EQ(engine.run("For i = 1 To 9 Do While True Do If i = 3 Then Return i "
                         "EndIf; Break EndDo EndDo"),
              Value(3));
    EXPECT_EQ(engine.run("For Each c In New Array(2) Do x = 1; Возврат x; x = 2 EndDo"), Value(1));
    EXPECT_EQ(engine.get<int>("x"), 1);
    EXPECT_TRUE(engine.run("x = 7; Return; x = 8").isUndefined());
    EXPECT_EQ(engine.get<int>("x"), 7);
}

TEST(Engine, AScriptIsCompiledOnceForAllEngines) {
    const host::HostProcess process;
    const Script script = compile("Sum = 0; For i = 1 To Count Do Sum = Sum + i EndDo; Return Sum", "sum");
    EXPECT_EQ(script.name(), u"sum");
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (int t = 1; t <= 4; ++t)
        threads.emplace_back([&, t] {
            Engine engine; // with a process of its own
            for (int n = 0; n < 50; ++n) {
                engine.set("Count", t * n);
                right += engine.run(script) == Value(t * n * (t * n + 1) / 2);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 200);
    Engine engine;
    engine.set("Other", 1); // takes the place that Sum has in other engines
    engine.set("Count", 3);
    EXPECT_EQ(engine.run(script), Value(6));
    EXPECT_EQ(engine.get<int>("Other"), 1);
}

int twice(int number) {
    return 2 * number;
}

TEST(Engine, FunctionsOfTheProgram) {
    Engine engine;
    std::string log;
    engine.function("Log", [&](wstring_view text) { log += to_utf8(text) + ';'; });
    engine.function("Twice", "Дважды", &twice);
    engine.function("Join", [](const std::string& first, std::optional<std::string> second) {
        return first + second.value_or("-");
    });
    engine.function("Split", [](int whole, Out<int> half, int& count) {
        half = whole / 2;
        ++count;
    });
    EXPECT_EQ(engine.run("Log(\"a\"); log(\"б\"); Return дважды(TWICE(3)) + "
                         "StrLen(Join(\"x\"))"),
              Value(14));
    EXPECT_EQ(log, "a;б;");
    EXPECT_EQ(engine.run("n = 5; Split(9, h, n); Return h * 10 + n"), Value(46));
    EXPECT_EQ(engine.run("Return Join(\"x\", \"y\") + Join(\"z\",)").presentation(), u"xyz-");

    EXPECT_STREQ(failure(engine, "Twice(\"x\")").messageId(), messages::kParameterType);
    EXPECT_STREQ(failure(engine, "Twice(1.5)").messageId(), messages::kParameterValue);
    EXPECT_STREQ(failure(engine, "Join(1, 2)").messageId(), messages::kParameterType);
    EXPECT_STREQ(failure(engine, "Twice()").messageId(), messages::kMissingArgument);
    EXPECT_STREQ(failure(engine, "Twice(1, 2)").messageId(), messages::kTooManyArguments);

    // A function takes the place of an earlier one, of one of the language, and
    // of itself while it runs.
    engine.function("StrLen", [&](const Value&) {
        engine.function("StrLen", [](const Value&) { return 2; });
        engine.function("More", [] { return 3; });
        return 1;
    });
    EXPECT_EQ(engine.run("Return StrLen(\"\") + 10 * StrLen(\"\") + 100 * More()"), Value(321));
    engine.function("Дважды", [] { return 0; });
    EXPECT_EQ(engine.run("Return Twice(1) + Дважды()"), Value(2));
    EXPECT_THROW(engine.function("For", &twice), ContextException);
}

TEST(Engine, AnObjectGivesFunctionsAndVariables) {
    Engine engine;
    const auto array = create_value_array();
    engine.offer(array.query<IContext_>().get());
    engine.function("Count", [] { return -1; });
    EXPECT_EQ(engine.run("Add(5); Добавить(6); Return Get(0) + Count()"), Value(4));
    EXPECT_EQ(array->count(), 2U);
    EXPECT_EQ(engine.run("Return StrLen(\"abc\")"), Value(3));
}

TEST(Engine, AFailureHasItsPlaceAndItsCause) {
    Engine engine;
    const Error wrong = failure(engine, u"x = 1;\n  y = x + ;");
    EXPECT_EQ(place_of(wrong), "test:2:11");
    EXPECT_EQ(wrong.place().text, u"  y = x + ;");
    EXPECT_EQ(wrong.place().offset, 10);
    EXPECT_EQ(wrong.cause(), nullptr);
    EXPECT_STREQ(wrong.messageId(), "IDS_SCRIPT_EXPECTED_VALUE");
    EXPECT_FALSE(engine.has("x")) << "nothing of it was carried out";

    const Error zero = failure(engine, "x = 0;\nx = 5 / x");
    EXPECT_EQ(place_of(zero), "test:2:7");
    EXPECT_STREQ(zero.messageId(), "IDS_NUMERROR_DIVIDEBYZERO");
    ASSERT_NE(zero.cause(), nullptr);
    EXPECT_THROW(zero.cause()->raise(), NumericException);
    EXPECT_EQ(zero.description(), zero.cause()->exception().description());

    engine.function("Fail", [](int how) {
        if (how == 0)
            throw_error<TypeException>(messages::kTypeNotDefined, {u"X"});
        if (how == 1)
            throw std::out_of_range("far out");
        if (how == 2)
            throw 5;
        throw std::bad_alloc();
    });
    const Error own = failure(engine, "Fail(0)");
    EXPECT_STREQ(own.messageId(), messages::kTypeNotDefined);
    EXPECT_EQ(own.parameters()[0], u"X");
    EXPECT_THROW(own.cause()->raise(), TypeException);
    const Error foreign = failure(engine, "Fail(1)");
    EXPECT_STREQ(foreign.messageId(), messages::kScriptForeignFailure);
    EXPECT_EQ(foreign.cause()->exception().description(), u"far out");
    EXPECT_STREQ(failure(engine, "Fail(2)").messageId(), messages::kScriptUnknownFailure);
    EXPECT_STREQ(failure(engine, "Fail(3)").messageId(), messages::kScriptNoMemory);

    // A failure of a script that a function ran is the cause, with its own place.
    engine.function("Inner", [&] { engine.run("\n Fail(1)", "inner"); });
    const Error outer = failure(engine, "Inner()");
    EXPECT_EQ(place_of(outer), "test:1:1");
    try {
        outer.cause()->raise();
    } catch (const Error& inner) {
        EXPECT_EQ(place_of(inner), "inner:2:2");
        EXPECT_EQ(inner.cause()->exception().description(), u"far out");
    }
    EXPECT_EQ(engine.run("Return 1"), Value(1)) << "the engine goes on";
    engine.function("Die", [] { throw ThreadDeath(); });
    EXPECT_THROW(engine.run("Die()"), ThreadDeath) << "a thread that was asked to stop";
}

TEST(Engine, OutputGoesWhereTheProgramSays) {
    Engine engine;
    std::ostringstream out;
    engine.output(out);
    engine.run(u"Сообщить(1.50); Print(\"é\"); T = New ValueTable; C = "
               u"T.Columns.Add(\"A\"); Print(T)");
    EXPECT_EQ(out.str(), "1.5\né\nA\n─\nRows: 0\n");
    std::vector<std::pair<Value, std::size_t>> shown;
    engine.output([&](const Value& value, std::size_t rows) { shown.emplace_back(value, rows); });
    engine.run("Print(5); PrintTable(T, 3)");
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].first, Value(5));
    EXPECT_EQ(shown[1].second, 3U);
    std::ostringstream text;
    text << engine.run("Return \"ж\"") << engine.run("Return True") << Value(0.5);
    EXPECT_EQ(text.str(), "жYes0.5");
    engine.input([](wstring_view) {
        return [left = std::string_view("A\n1\n")](std::span<std::byte> bytes) mutable {
            const std::size_t count = left.copy(reinterpret_cast<char*>(bytes.data()), bytes.size());
            left.remove_prefix(count);
            return count;
        };
    });
    EXPECT_EQ(engine.run("Return LoadCsv(\"any\")[0].A").presentation(), u"1");
}

TEST(Limits, StepsAreCountedExactly) {
    Engine engine;
    engine.limits({.steps = 10});
    EXPECT_NO_THROW(engine.run("a=1;a=1;a=1;a=1;a=1; a=1;a=1;a=1;a=1;a=1"));
    const Error over = failure(engine, "a=1;a=1;a=1;a=1;a=1; a=1;a=1;a=1;a=1;a=1;\na=2");
    EXPECT_STREQ(over.messageId(), messages::kScriptStepLimit);
    EXPECT_EQ(place_of(over), "test:2:1");
    EXPECT_EQ(engine.get<int>("a"), 1);
    EXPECT_STREQ(failure(engine, "While True Do EndDo").messageId(), messages::kScriptStepLimit);
    engine.function("Again", [&] { engine.run("b=1;b=2;b=3;b=4"); });
    EXPECT_NO_THROW(engine.run("Again(); Again()")) << "2 and 8";
    EXPECT_STREQ(failure(engine, "Again(); Again(); b = 1").messageId(), messages::kScriptStepLimit);
    engine.limits({.steps = 1'000'000, .time = 1h, .memory = std::numeric_limits<std::size_t>::max()});
    engine.run("For i = 1 To 499999 Do x = i EndDo");
    EXPECT_STREQ(failure(engine, "For i = 1 To 500000 Do x = i EndDo; x = 0").messageId(),
                 messages::kScriptStepLimit);
    engine.limits({});
    engine.run("For i = 1 To 1000000 Do EndDo");
}

TEST(Limits, TimeIsMeasuredFromTheStartOfTheRun) {
    Engine engine;
    engine.limits({.time = 20ms});
    for (const char* const endless : {"While True Do EndDo", "While True Do StrLen(\"\") EndDo",
                                      "For i = 1 To 1000000000 Do x = i EndDo"}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_STREQ(failure(engine, endless).messageId(), messages::kScriptTimeLimit);
        EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    }
    engine.function("Sleep", [] { std::this_thread::sleep_for(30ms); });
    EXPECT_STREQ(failure(engine, "Sleep(); x = 1").messageId(), messages::kScriptTimeLimit)
        << "noticed when the call returns";
    EXPECT_EQ(engine.run("Return 1"), Value(1));
}

TEST(Limits, MemoryOfTheProgramMayGrowSoFar) {
    Engine engine;
    engine.limits({.memory = 64 << 20});
    for (const char* const greedy : {"s = \"x\"; While True Do s = s + s EndDo",
                                     "a = New Array; While True Do a.Add(Pad(\"\", 9999)) EndDo",
                                     "t = New ValueTable; t.Columns.Add(\"A\"); While True Do t.Add().A = 1 "
                                     "/ 3 EndDo"}) {
        EXPECT_STREQ(failure(engine, greedy).messageId(), messages::kScriptMemoryLimit) << greedy;
        engine.run("s = 0; a = 0; t = 0");
    }
    if (!test::kAddressSanitizer) // 60 MB in all, given back
        engine.run("For i = 1 To 3000 Do s = Pad(\"\", 9999); s = s + s EndDo");
}

TEST(Limits, NothingOverflowsTheStack) {
    Engine engine;
    engine.limits({.depth = 20});
    const auto nested = [](int levels) {
        return "x = " + std::string(static_cast<std::size_t>(levels), '-') + "1";
    };
    EXPECT_NO_THROW(engine.run(nested(15)));
    EXPECT_STREQ(failure(engine, nested(25)).messageId(), messages::kScriptDepthLimit);
    EXPECT_EQ(engine.run("Return 1"), Value(1));

    int runs = 0;
    engine.function("Again", [&] {
        ++runs;
        engine.run("Again()");
    });
    EXPECT_STREQ(failure(engine, "Again()").messageId(), messages::kScriptDepthLimit);
    EXPECT_EQ(runs, 10) << "a block and a call each";
    engine.limits({.depth = 1'000'000'000}); // the stack is what ends it now
    if (!core::test::kThreadSanitizer) {
        EXPECT_STREQ(failure(engine, "Again()").messageId(), messages::kScriptNoStack);
    }

    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 512 << 10);
    std::function<void()> work = [&] {
        EXPECT_STREQ(failure(engine, "Again()").messageId(), messages::kScriptNoStack);
    };
    pthread_t thread{};
    const auto start = [](void* argument) -> void* {
        (*static_cast<std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &small, start, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small);
}

TEST(Engine, IsInterruptedFromAnyThread) {
    Engine engine;
    engine.interrupt(); // while none runs: no effect
    std::atomic<bool> running = false;
    engine.function("Running", [&] { running = true; });
    std::thread other([&] {
        while (!running)
            std::this_thread::yield();
        engine.interrupt();
    });
    EXPECT_STREQ(failure(engine, "Running(); While True Do EndDo").messageId(), messages::kScriptInterrupted);
    other.join();
    engine.function("Stop", [&] { engine.interrupt(); });
    EXPECT_EQ(place_of(failure(engine, "Stop();\nx = 1")), "test:2:1");
    EXPECT_EQ(engine.run("Return 1"), Value(1));
}

TEST(Engine, WorksInOneProcessOnWhateverThread) {
    EXPECT_EQ(current_process(), nullptr);
    {
        auto first = std::make_unique<Engine>();
        SCOM_Process* const process = current_process();
        EXPECT_NE(process, nullptr) << "it brought one up";
        Engine second;
        EXPECT_EQ(current_process(), process);
        first.reset(); // the second needs it still
        EXPECT_EQ(current_process(), process);
        EXPECT_EQ(second.run("Return New Map").type().presentation(), u"Map");
        std::thread([&] {
            EXPECT_EQ(second.run("a = New Array; a.Add(TypeOf(a)); Return a[0]").presentation(), u"Array");
            EXPECT_EQ(current_process(), nullptr);
        }).join();
    }
    EXPECT_EQ(current_process(), nullptr);
    Settings russian;
    russian.locale = Locale("ru");
    const host::HostProcess process(russian);
    Engine engine;
    EXPECT_EQ(current_process(), process.get());
    EXPECT_EQ(failure(engine, "a = b").description(), u"Переменная b ещё не имеет значения.")
        << "the language of the process";
}

TEST(Engine, WhatStandsUnderItsTemporaryNamesGoesWithIt) {
    std::filesystem::path file;
    {
        Engine engine;
        file = to_utf8(engine
                           .run(u"F = GetTempFileName(\"txt\"); SaveText(F, \"x\"); N = GetTempFileName(); "
                                u"Return F")
                           .presentation());
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(Engine, ThousandsLeaveNothingBehind) {
    const auto use = [](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            Engine engine;
            engine.set("N", i);
            engine.function("Half", [](double number) { return number / 2; });
            engine.run("A = New Array; A.Add(Half(N)); S = New Structure(\"A\", A)");
            EXPECT_THROW(engine.run("A.Nothing()"), Error);
        }
    };
    const auto live = [] {
        std::string report;
        for (const LiveClass& left : live_report())
            report += left.name + ' ' + std::to_string(left.count) + '\n';
        return report;
    };
    {
        const host::HostProcess process;
        use(1);
        const std::string before = live();
        use(1000);
        EXPECT_EQ(live(), before);
    }
    use(1);
    const std::string before = live();
    use(100); // each brings a process up
    EXPECT_EQ(live(), before);
    EXPECT_EQ(current_process(), nullptr);
}

} // namespace
} // namespace core::script
