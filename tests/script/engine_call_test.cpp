// SPDX-License-Identifier: Apache-2.0
// Procedures of scripts that a program calls: what goes in and back, defaults, imports, bounds and the end of
// the script, and what is wrong with the call itself.
#include <core/collections/native_values.h>
#include <core/context/errors.h>
#include <core/runtime/utf8.h>
#include <core/script.h>
#include <core/strings/integer_text.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace core::script {
namespace {

template <class Work>
Error failure(Work work) {
    try {
        work();
    } catch (const Error& error) {
        return error;
    }
    ADD_FAILURE() << "no failure";
    return Error();
}

std::string told(const Error& error) {
    return std::to_string(error.line()) + ':' + std::to_string(error.column()) + ' ' + error.what();
}

TEST(EngineCall, TakesArgumentsAndGivesTheResult) {
    Engine engine;
    engine.run(u"Function Net(Price, Percent = 10) Return Price * (100 - Percent) / 100 EndFunction "
               u"Функция Имя(Текст, Знач Список) Возврат Текст + Список.Количество() КонецФункции "
               u"Procedure Nothing() EndProcedure",
               u"first");
    EXPECT_EQ(engine.call("Net", 50), Value(45));
    EXPECT_EQ(engine.call(u" NET ", 50, 20.5), Value(Numeric::fromString("39.75")));
    EXPECT_EQ(engine.call("имя", u"x", std::vector<int>{1, 2}), Value(u"x2"));
    EXPECT_TRUE(engine.call("Nothing").isUndefined());
    engine.run(u"Function Net() Return \"another\" EndFunction");
    EXPECT_EQ(engine.call("Net"), Value(u"another")) << "the one that was declared last";
}

TEST(EngineCall, PassesBackWhatIsPassedByReference) {
    Engine engine;
    engine.run(
        u"Var Calls; Calls = 0; Procedure Split(Val Whole, Quotient, Rest = 5) Calls = Calls + 1; Quotient = "
        u"Int(Whole / 60); Whole = Whole - Quotient * 60; Rest = Whole EndProcedure");
    std::vector<GenericValue> arguments = {135, GenericValue(), GenericValue()};
    static_cast<void>(engine.callWith("Split", arguments));
    EXPECT_EQ(arguments, (std::vector<GenericValue>{135, 2, 15}));
    arguments.pop_back();
    static_cast<void>(engine.callWith("Split", arguments));
    EXPECT_EQ(engine.get("Calls"), Value(2)) << "a variable that the script shares";
}

TEST(EngineCall, FailsAsAScriptDoes) {
    Engine engine;
    engine.run(
        "Function Half(Number)\n  Return Number / 2\nEndFunction\nProcedure Spin() While True Do EndDo "
        "EndProcedure Function Leave() Exit(3); Return 1 EndFunction Function Deep(n) Return Deep(n + 1) "
        "EndFunction",
        "lib");
    EXPECT_EQ(told(failure([&] { (void)engine.call("Half", u"x"); })),
              "2:17 This operation is not defined for String and Number.");
    EXPECT_EQ(to_utf8(failure([&] { (void)engine.call("Half", u"x"); }).file()), "lib");
    EXPECT_EQ(told(failure([&] { (void)engine.call("Hal", 1); })),
              "0:0 There is no function Hal. Did you mean Half?");
    EXPECT_EQ(told(failure([&] { (void)engine.call("Half"); })), "0:0 Half needs its parameter Number.");
    const Error many = failure([&] { (void)engine.call("Half", 1, 2); });
    EXPECT_EQ(std::string_view(many.messageId()), messages::kTooManyArguments);
    EXPECT_EQ(told(many), "0:0 Too many arguments: the method Half takes at most 1.");
    engine.limits({.steps = 1000});
    EXPECT_EQ(std::string_view(failure([&] { (void)engine.call("Spin"); }).messageId()),
              messages::kScriptStepLimit);
    engine.limits({.depth = 100});
    EXPECT_EQ(std::string_view(failure([&] { (void)engine.call("Deep", 1); }).messageId()),
              messages::kScriptDepthLimit);
    EXPECT_EQ(engine.call("Leave"), Value(3));
    EXPECT_EQ(engine.exitCode(), 3);
    EXPECT_EQ(engine.call("Half", 8), Value(4));
    EXPECT_EQ(engine.exitCode(), std::nullopt);
}

TEST(EngineCall, WorksInsideARun) {
    Engine engine;
    engine.function("Apply", [&](wstring_view name, int number) { return engine.call(name, number); });
    EXPECT_EQ(
        engine.run(
            "Function Twice(x) Return x * 2 EndFunction Return Apply(\"Twice\", 4) + Apply(\"Twice\", 5)"),
        Value(18));
    const Error error =
        failure([&] { engine.run("Function Bad(x) Raise \"no\" EndFunction Apply(\"Bad\", 1)"); });
    EXPECT_EQ(told(error), "1:40 no") << "where the script calls the program";
    EXPECT_NE(error.cause(), nullptr);
}

} // namespace
} // namespace core::script
