// SPDX-License-Identifier: Apache-2.0
// JSON in and out: numbers to the digit, names and their order, what becomes a Structure and what a Map,
// nesting to the limit, and malformed text with its place.
#include "tests/script/script_fixture.h"

#include <core/exchange/json.h>
#include <core/exchange/json_reader.h>
#include <core/values/errors.h>

#include <random>

namespace host {

using namespace core;

namespace {

class JsonTest : public core::script::ScriptTest {
  protected:
    static std::string again(std::string_view json) { return to_json(from_json(json)); }
    static std::string refusal(std::string_view json) {
        try {
            return again(json);
        } catch (const core::ContextException& e) {
            return e.what();
        }
    }
    static std::string repeat(std::string_view text, int times) {
        std::string result;
        for (int i = 0; i < times; ++i)
            result += text;
        return result;
    }
};

TEST_F(JsonTest, LongTextsAreConvertedInPiecesThatCutNoCharacter) {
    for (std::size_t before = 0; before < 4; ++before) { // each byte of a character meets the end of a piece
        std::string text(before, 'a');
        while (text.size() < (std::size_t{5} << 19))
            text += "\xF0\x9F\x90\x8E";
        core::script::Session session;
        session.engine().set(u"Text", Value(from_utf8(text)));
        EXPECT_EQ(session.run("ToJson(Text) = \"\"\"\" + Text + \"\"\"\""), "True");
    }
}

TEST_F(JsonTest, NumbersToTheDigit) {
    EXPECT_EQ(again("[0,-0,-0.0,1,-1,1.50,0.1,1e3,1E+3,-1.5e1,1.25e-3,0e9]"),
              "[0,0,0,1,-1,1.5,0.1,1000,1000,-15,0.00125,0]");
    EXPECT_EQ(again("[9223372036854775808,-9223372036854775809,18446744073709551616,1e-30]"),
              "[9223372036854775808,-9223372036854775809,18446744073709551616,0." + repeat("0", 29) + "1]");
    const std::string pi =
        "3.14159265358979323846264338327950288419716939937510582097494459230781640628620899";
    EXPECT_EQ(again(pi), pi);
    EXPECT_EQ(again("1e100000"), "1" + repeat("0", 100'000));
    for (const char* huge : {"1e100001", "-1e-100001", "1E+2147483647"})
        EXPECT_TRUE(
            refusal(huge).ends_with("text: The number " + std::string(huge) + " is too large or too small."))
            << refusal(huge);
}

TEST_F(JsonTest, EveryKindAndItsType) {
    for (const char* same :
         {"null", "true", "\"\"", "[]", "{}", "[[],{}]", R"({"b":1,"a":[true,null,{"Ж":"ж"}]})",
          R"("\"\\\/\b\f\n\r\t\u0000\u001f 𝄞")", R"({"a b":1,"":2,"1":3})"}) {
        // the reference implementation's own spelling of the same text
        EXPECT_EQ(again(again(same)), again(same)) << same;
    }
    EXPECT_EQ(again(R"( { "b" : 1 , "a" : [ true , null , { } ] } )"), R"({"b":1,"a":[true,null,{}]})");
    EXPECT_EQ(again(R"("\ud834\udd1e\u00e9")"), R"("𝄞é")");
    check({
        {"v = FromJson(\"{\"\"b\"\":1,\"\"A\"\":{}}\"); v; v.a",
         "Structure {b: 1, A: Structure {}}\nStructure {}"},
        {"FromJson(\"{\"\"a b\"\":1}\"); FromJson(\"{\"\"a\"\":1}\", True)", "Map {\"a b\": 1}\nMap {a: 1}"},
        {"FromJson(\"{\"\"a\"\":1,\"\"A\"\":2}\"); FromJson(\"{\"\"a\"\":1,\"\"a\"\":2}\")",
         "Map {a: 1, A: 2}\nStructure {a: 2}"},
        {"FromJson(\"[null, false, 1.0, \"\"x\"\"]\")", "Array [Undefined, False, 1, \"x\"]"},
        {"m = New Map; m[1] = '20240229'; m[Null] = Type(\"Map\"); m[\"x\"] = New FixedArray(New Array(1)); "
         "ToJson(m)",
         R"("{""1"":""2024-02-29T00:00:00"","""":""Map"",""x"":[null]}")"},
        {"m = New Map; m[1] = 1; m[\"1\"] = 2; ToJson(m)",
         "! 1:36 Two keys of the map would be the same name, “1”, in JSON."},
        {"FromJson(\"1\", 1)",
         "! 1:1 FromJson: the parameter Maps does not take a value of the type Number: 1."},
        {"ToJson(New Structure(\"a,b\", New Array(2), New Map), 2)",
         "\"{\n  \"\"a\"\": [\n    null,\n    null\n  ],\n  \"\"b\"\": {}\n}\""},
        {"ToJson(FromJson(\"[1]\")[0] + 0.5); ToJson(DateFractions.Time)", "\"1.5\"\n\"\"\"Time\"\"\""},
    });
    core::GenericValue half(core::wstring(1, core::wchar(0xD800)));
    EXPECT_EQ(to_json(half), "\"\uFFFD\"");
}

TEST_F(JsonTest, NestsToTheLimitOfValues) {
    for (const auto& [open, close] : {std::pair("[", "]"), {R"({"a":)", "}"}}) {
        const auto nested = [&, o = open, c = close](int n) {
            return repeat(o, n - 1) + "[]" + repeat(c, n - 1);
        };
        EXPECT_EQ(again(nested(1000)), nested(1000));
        EXPECT_EQ(refusal(nested(1001)), "JSON is nested more than 1000 levels deep.");
        EXPECT_EQ(refusal(repeat(open, 1'000'000)), "JSON is nested more than 1000 levels deep.");
    }
}

TEST_F(JsonTest, MalformedTextHasAPlace) {
    EXPECT_TRUE(refusal("").starts_with("Malformed JSON in line 1, column 1: ")) << refusal("");
    EXPECT_TRUE(refusal("[1,\n \"ж\" 2]").starts_with("Malformed JSON in line 2, column 6: syntax error"))
        << refusal("[1,\n \"ж\" 2]");
    for (const char* bad : {"[",        "{",     "[1,]", "{\"a\"}", "{a:1}",    "01",      "1.",
                            ".5",       "+1",    "NaN",  "'a'",     "\"\x01\"", "\"\\x\"", "\"\\ud800\"",
                            "\"\xFF\"", "[1] 2", "nul",  "\"",      "// c\n1",  "\xEF\xBB"})
        EXPECT_TRUE(refusal(bad).starts_with("Malformed JSON in line ")) << bad << ": " << refusal(bad);
}

/// Writes down what it is told.
class Trace : public JsonEvents {
  public:
    void onNull() override { text += "null "; }
    void onBoolean(bool value) override { text += value ? "true " : "false "; }
    void onNumber(std::string_view number) override { text.append(number) += ' '; }
    void onString(std::string_view piece, bool isLast) override { text.append(piece) += isLast ? "; " : ""; }
    void onName(std::string_view name) override { text.append(name) += "= "; }
    void onArrayBegin() override { text += "[ "; }
    void onArrayEnd() override { text += "] "; }
    void onObjectBegin() override { text += "{ "; }
    void onObjectEnd() override { text += "} "; }

    std::string text;
};

TEST_F(JsonTest, PiecesOfAnySizeAreTheSameText) {
    const std::string text = R"( {"na\u0436me":[-12.50e+3,"a\ud834\udd1eжb\n",null,true],"x":{"":false}} )";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        Trace trace;
        JsonReader reader(trace, 10);
        for (std::size_t i = 0; i < text.size(); i += size)
            reader.read(std::string_view(text).substr(i, size));
        reader.finish();
        EXPECT_EQ(trace.text, "{ naжme= [ -12.50e+3 a𝄞жb\n; null true ] x= { = false } } ") << size;
    }
}

TEST_F(JsonTest, WhatIsWrittenReadsBack) {
    std::mt19937 random(7);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const std::function<std::string(int)> make = [&](int depth) -> std::string {
        const int kind = pick(depth > 0 ? 7 : 5);
        std::string text;
        switch (kind) {
        case 0:
            return pick(2) != 0 ? "null" : "false";
        case 1:
            return std::to_string(static_cast<std::int32_t>(random()));
        case 2:
            return std::to_string(pick(1000)) + "." + std::to_string(pick(1000)) + "1";
        case 3:
        case 4:
            return "\"" + repeat(pick(2) != 0 ? "я" : "\\n", pick(5)) + "\"";
        default:
            for (int i = pick(5); i > 0; --i) {
                const std::string name = kind == 5 ? "" : "\"k" + std::to_string(i) + "\":";
                text += (text.empty() ? "" : ",") + name + make(depth - 1);
            }
            return kind == 5 ? "[" + text + "]" : "{" + text + "}";
        }
    };
    for (int i = 0; i < 300; ++i) {
        const std::string json = make(4);
        EXPECT_EQ(again(json), json);
        const core::GenericValue value = from_json(json);
        core::wstring text;
        value.toString(text);
        EXPECT_EQ(to_json(core::GenericValue::fromString(text)), json);
        EXPECT_EQ(to_json(from_json(to_json(value, 3))), json);
    }
}

} // namespace
} // namespace host
