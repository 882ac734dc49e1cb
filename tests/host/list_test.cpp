// SPDX-License-Identifier: Apache-2.0
// corehost list: random lists survive formatting and the way through JSON; malformed text is told by line,
// column and file; outputs are replaced whole or not at all.
#include "host/lists/json_to_list.h"
#include "tests/host/program_fixture.h"

#include <core/exchange/json_reader.h>
#include <core/lists/token.h>
#include <core/runtime/utf8.h>
#include <core/streams/memory_stream.h>
#include <host/host_process.h>

#include <nlohmann/json.hpp>

#include <random>

namespace host {
namespace {

class ListTest : public FolderTest {
  protected:
    static std::string result(std::vector<std::string> arguments, const std::string& input) {
        arguments.insert(arguments.begin(), "list");
        const Answer answer = corehost(std::move(arguments), input);
        EXPECT_EQ(answer.code, ExitCode::done) << answer.err << input.substr(0, 200);
        EXPECT_EQ(answer.err, "");
        return answer.out;
    }
    static std::string refusal(std::vector<std::string> arguments, const std::string& input) {
        arguments.insert(arguments.begin(), "list");
        const Answer answer = corehost(std::move(arguments), input);
        EXPECT_EQ(answer.code, ExitCode::malformed) << input.substr(0, 200);
        return answer.err;
    }
};

/// Random lists of every kind of element, with gaps in every place that may have one.
class RandomList {
  public:
    explicit RandomList(unsigned seed) : random_(seed) {}

    std::string text() {
        text_.clear();
        element(0);
        gap();
        return text_;
    }

  private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    void gap() {
        static const char* const kGaps[] = {"", "", "", "\n", " ", "\r\n\t", "\u00A0"};
        text_ += kGaps[below(std::size(kGaps))];
    }
    void element(int depth) {
        gap();
        if (below(3) == 0 && depth < 30)
            return list(depth);
        if (below(2) == 0)
            return string();
        static const char* const kTokens[] = {"0",
                                              "-1",
                                              "+5",
                                              ".5",
                                              "5.",
                                              "007",
                                              "1.50",
                                              "1e5",
                                              "-1.5e-3",
                                              "20240229235959",
                                              "٣٤",
                                              "51e7a0d2-530b-11d4-b98a-008048da3034",
                                              "12345678901234567890123456789012345678901234567890.125"};
        text_ += kTokens[below(std::size(kTokens))];
    }
    void list(int depth) {
        text_ += '{';
        const std::size_t count = below(6);
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0) {
                gap();
                text_ += ',';
            }
            element(depth + 1);
        }
        gap();
        text_ += '}';
    }
    void string() {
        static const char16_t* const kPieces[] = {
            u"a", u"ж",      u"\"", u"\\",     u"\n", u"{",    u",",  u"}", u"\r\n",   u"😀",
            u"𝄞", u"\u0001", u"\t", u"\u2028", u" x", u"\\d8", u"//", u"",  u"\u007f", u"\uFEFF"};
        core::wstring units;
        // now and then longer than the pieces in which a scanner hands it over
        for (std::size_t i = below(20) == 0 ? below(10'000) : below(8); i > 0; --i)
            units += kPieces[below(std::size(kPieces))];
        core::MemoryOutStream out;
        core::to_stream(out, core::wstring_view(units));
        text_ += core::to_utf8(out.take());
    }

    std::mt19937 random_;
    std::string text_;
};

TEST_F(ListTest, RandomListsSurvive) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const std::string text = RandomList(seed).text();
        const std::string formatted = result({"fmt"}, text);
        ASSERT_EQ(result({"fmt"}, formatted), formatted) << seed;
        const std::string plain = result({"fmt", "--indent", "0"}, text);
        ASSERT_EQ(result({"fmt", "--indent", "0"}, formatted), plain) << seed; // the same list
        ASSERT_EQ(result({"check", "--json"}, text).substr(0, 60),
                  result({"check", "--json"}, plain).substr(0, 60));

        const std::string json = result({"to-json"}, text);
        ASSERT_TRUE(nlohmann::json::accept(json)) << json;
        ASSERT_EQ(result({"from-json"}, json), formatted) << seed;
        ASSERT_EQ(result({"to-json"}, formatted), json) << seed;
    }
}

TEST_F(ListTest, JsonInPiecesOfAnySize) {
    const std::string json = result({"to-json"}, RandomList(3).text() + "");
    const std::string whole = result({"from-json"}, json);
    const HostProcess process;
    for (std::size_t size = 1; size < 8; ++size) {
        core::MemoryOutStream out;
        JsonToList list(out, 2);
        core::JsonReader reader(list, 100);
        for (std::size_t at = 0; at < json.size(); at += size)
            reader.read(std::string_view(json).substr(at, size));
        reader.finish();
        list.finish();
        EXPECT_EQ(core::to_utf8(out.take()), whole) << size;
    }
}

TEST_F(ListTest, LayoutAndJson) {
    const std::string text = "{1,{2,3},{\"a\"\"b\",\"\"},{{{}}},+4}";
    EXPECT_EQ(result({"fmt"}, text),
              "{1,\n  {2,3},\n  {\"a\"\"b\",\"\"},\n  {\n    {\n      {}\n    }\n  },+4}\n");
    EXPECT_EQ(result({"to-json", "--indent", "0"}, text),
              "[1,\n[2,3],\n[\"a\\\"b\",\"\"],\n[\n[\n[]\n]\n],{\"token\": \"+4\"}]\n");
    EXPECT_EQ(result({"from-json"}, R"([1e+5, 0.10, {"token": "7"}])"), "{1e5,0.10,7}\n");
    EXPECT_EQ(result({"from-json"}, "\xEF\xBB\xBF[1]"), "{1}\n") << "behind a byte order mark";
    for (const char* const json : {"\xEF\xBB[1]", "\xEF", "\xEF\xBB\xBF\xEF\xBB\xBF[1]", "\xEF\xBB\xBF"})
        EXPECT_NE(refusal({"from-json"}, json), "") << json;
    EXPECT_EQ(result({"to-json"}, "5"), "5\n");
    // the counts that check tells
    EXPECT_EQ(result({"check"}, text), "-: well-formed; lists: 6, strings: 2, other tokens: 4, depth: 4\n");
}

TEST_F(ListTest, NestingToTheLimit) {
    const std::string open(4000, '{'), close(4000, '}');
    const std::string formatted = result({"fmt"}, open + close);
    EXPECT_LT(formatted.size(), 8000U * 130); // indentation has an end
    EXPECT_EQ(result({"from-json"}, result({"to-json"}, formatted)), formatted);
    EXPECT_EQ(refusal({"check"}, open + "{" + close + "}"),
              "corehost: -:1:4001: More than 4000 lists stand inside each other.\n");
    EXPECT_EQ(
        refusal({"from-json"}, std::string(4001, '[')),
        "corehost: Line 1, column 4001 of the JSON text: More than 4000 lists stand inside each other.\n");
    refusal({"from-json"}, std::string(1'000'000, '['));
    refusal({"to-json"}, std::string(1'000'000, '{'));
}

TEST_F(ListTest, MalformedTextHasAPlace) {
    const std::string good = file("good", "{1}"), bad = file("bad", "{1,\n {2,,3}}"),
                      bytes = file("bytes", "{\"\xFF\"}");
    const std::string place = ":2:5: Expected a list, a string in quotes, a number or an id.\n";
    for (const char* const command : {"fmt", "to-json", "check"})
        EXPECT_EQ(refusal({command, bad}, ""), "corehost: " + bad + place);
    const auto report = nlohmann::json::parse(corehost({"list", "check", bad, "--json"}).out);
    EXPECT_EQ(report["line"], 2);
    EXPECT_EQ(report["column"], 5);
    refusal({"check", bytes}, "");

    // U+FFFF ends no text in silence, and is written so that it can be read
    const std::string cut = file("cut", "{1}\uFFFF{2}");
    for (const char* const command : {"fmt", "to-json", "check"})
        EXPECT_EQ(refusal({command, cut}, ""),
                  "corehost: " + cut + ":1:4: Expected the end of the text: it holds one element.\n");
    const std::string odd = "{\"a\"\\ffff\"}\n";
    EXPECT_EQ(result({"fmt"}, odd), odd);
    EXPECT_EQ(result({"from-json"}, result({"to-json"}, odd)), odd);

    // every file is looked at, and the worst counts
    Answer all = corehost({"list", "check", bad, good, bytes, path("none")});
    EXPECT_EQ(all.code, ExitCode::io);
    EXPECT_TRUE(all.out.starts_with(good)) << all.out;
    EXPECT_EQ(std::count(all.err.begin(), all.err.end(), '\n'), 3) << all.err;
    EXPECT_EQ(corehost({"list", "check", good, bad}).code, ExitCode::malformed);
}

TEST_F(ListTest, JsonThatStandsForNoList) {
    for (const char* const json :
         {"true", "[null]", "{}", R"({"a":"1"})", R"({"token":"x"})", R"({"token":"1 "})",
          R"({"token":"1,2"})", R"({"token":"1","token":"2"})", R"({"token":"1","x":1})", R"({"token":1})",
          R"({"token":["1"]})", R"({"token":{"token":"1"}})", R"("\ud800")", "", "[1", "[1]]", "[1,]",
          "\"\xFF\"", "[1e99999999999999999999999999999999]"})
        EXPECT_TRUE(refusal({"from-json"}, json).find("column ") != std::string::npos) << json;
    EXPECT_NE(refusal({"to-json"}, "{\"\"\\d83d\"}").find("surrogate"), std::string::npos);
}

TEST_F(ListTest, TheCompactFormHoldsTheSameValues) {
    const std::string structure =
        "{\"#\",c6bdae87-2280-4624-af03-2c1b4371b2e4,{2,{{\"S\",\"Имя\"},{\"S\",\"a\"\"b\"}},"
        "{{\"S\",\"Day\"},{\"D\",20240229130507}}}}";
    for (const std::string& text : {structure, std::string("{\"N\",-12.5}"), std::string("{\"U\"}"),
                                    std::string("{\"S\",\"\\ffff\"}")}) {
        const std::string bytes = result({"to-compact"}, text);
        EXPECT_TRUE(bytes.starts_with("\xC1"
                                      "cf\x01"))
            << text;
        EXPECT_EQ(result({"from-compact"}, bytes), result({"fmt"}, text));
        EXPECT_EQ(result({"from-compact", "--indent", "0"}, bytes), result({"fmt", "--indent", "0"}, text));
        EXPECT_EQ(result({"to-compact"}, bytes), bytes);
    }
    EXPECT_EQ(refusal({"to-compact"}, "{\"N\",\n,}"),
              "corehost: -:2:1: Expected a list, a string in quotes, a number or an id.\n");
    EXPECT_NE(refusal({"to-compact"}, "{1,2}"), "") << "a list of no value";
    const std::string out = file("out", "old"), whole = result({"to-compact"}, structure);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(refusal({"from-compact", "-o", out}, whole.substr(0, size)), "") << size;
    EXPECT_NE(refusal({"from-compact", "-o", out}, whole + "\x01"), "");
    EXPECT_EQ(text_of(out), "old");
    EXPECT_EQ(result({"to-compact", "-o", out}, structure), "");
    EXPECT_EQ(text_of(out), whole);
}

TEST_F(ListTest, OutputsAreReplacedWholeOrNotAtAll) {
    const std::string in = file("in", "{1,{2}}"), out = file("out", "old");
    EXPECT_EQ(result({"fmt", in, "-o", out}, ""), "");
    EXPECT_EQ(text_of(out), "{1,\n  {2}\n}\n");
    EXPECT_EQ(result({"fmt", in, "-o", in}, ""), ""); // in place
    EXPECT_EQ(text_of(in), text_of(out));
    refusal({"to-json", "-o", out}, "{1,{2}");
    EXPECT_EQ(text_of(out), "{1,\n  {2}\n}\n");
    EXPECT_EQ(corehost({"list", "fmt", in, "-o", path("no/such")}).code, ExitCode::io);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 2); // nothing is left beside
}

} // namespace
} // namespace host
