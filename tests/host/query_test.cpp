// SPDX-License-Identifier: Apache-2.0
// "corehost query" and the modes of tables. What docs/exchange.md shows works as the page says.
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"

#include <regex>

namespace host {
namespace {

class QueryTest : public FolderTest {
  protected:
    const std::string sales_ =
        file("sales.csv", "Product,Region,Price\napple,North,1.20\npear,South,3\napple,South,2.5\n");

    [[nodiscard]] Answer query(std::vector<std::string> words, const std::string& input = {}) const {
        words.insert(words.begin(), {"query", "--mode", "csv"});
        return corehost(std::move(words), input);
    }
};

TEST_F(QueryTest, StepsWorkOnTheTableBefore) {
    const struct {
        const char* steps;
        const char* out;
    } cases[] = {
        {"Group(\"Product\", \"Sum(Price)\") | Sort(\"Price Desc\") | First(1)",
         "Product,Price\r\napple,3.7\r\n"},
        {"Группировать(\"Region\", \"Сумма(Price) Как Total, Count() As N\") | Сортировать(\"N\")",
         "Region,Total,N\r\nNorth,1.2,1\r\nSouth,5.5,2\r\n"},
        {"Where(\"Product\", \"apple\") | Select(\"Region, Price\") | Last(1)",
         "Region,Price\r\nSouth,2.5\r\n"},
        {"Select(\"Product As What, Price * 2 As Double\") | First(1)", "What,Double\r\napple,2.4\r\n"},
        {"Find(\"pear\")", "Product,Region,Price\r\npear,South,3\r\n"},
        {"Find(\"plum\") | Table = Undefined", "Yes\n"},
        {"Group(\"Product\", \"List(Price) As Prices\")",
         "Product,Prices\r\napple,\"[1.2,2.5]\"\r\npear,[3]\r\n"},
        {"Total(\"Price\")", "6.7\n"},
        {"sales.Count() + Table.Count()", "6\n"},
        {"Where(\"Region\", \"a|b\") | Count()", "0\n"},
        {"First(0)", "Product,Region,Price\r\n"},
        {"Первые(99) | Количество()", "3\n"},
    };
    for (const auto& c : cases) {
        const Answer answer = query({sales_, c.steps});
        EXPECT_EQ(answer.out, c.out) << c.steps << answer.err;
        EXPECT_EQ(answer.code, ExitCode::done);
    }
}

TEST_F(QueryTest, TakesFilesOfAllForms) {
    EXPECT_EQ(query({"-", "Table"}, "{\"A\":1}\n{\"A\":2}\n").out, "A\r\n1\r\n2\r\n");
    EXPECT_EQ(query({"-", "Table"}, "A;B\n1;2\n").out, "A,B\r\n1,2\r\n");
    EXPECT_EQ(query({file("x.json", "[{\"A\":1.5}]"), "Total(\"A\")"}).out, "1.5\n");
    EXPECT_EQ(query({"-", "Table"}, "[\n  {\n    \"A\": 1\n  }\n]\n").out, "A\r\n1\r\n");
    EXPECT_EQ(
        query({"-", "Table"}, "[1, 2]").err,
        "corehost: -, line 1, column 3: The JSON text is not a table: its element 1 is not an object.\n");
    EXPECT_EQ(query({"-", "Table"}, "[a],[b]\n1,2\n").out, "_a_,_b_\r\n1,2\r\n");
    const std::string script = file("make.script", "SaveToContainer(\"" + path("data.st") +
                                                       "\", \"sales\", LoadCsv(\"" + sales_ + "\"))");
    EXPECT_EQ(corehost({"run", script}).code, ExitCode::done);
    EXPECT_EQ(query({path("data.st") + ":sales", "Total(\"Price\")"}).out, "6.7\n");
    EXPECT_EQ(query({sales_, path("data.st") + ":sales", "Count()"}).out, "3\n");
    EXPECT_EQ(query({path("data.st"), "Count()"}).err,
              "corehost: " + path("data.st") + " is a container: say which value in it is meant, as in " +
                  path("data.st") + ":sales.\n");
    ASSERT_EQ(corehost({"container", "create", "--64", path("wide.st")}).code, ExitCode::done);
    EXPECT_NE(query({path("wide.st"), "Count()"}).err.find("is a container"), std::string::npos);
    EXPECT_EQ(query({sales_, "Count()", "--delimiter", ";;"}).code, ExitCode::usage);
}

TEST_F(QueryTest, TellsWhatIsWrong) {
    EXPECT_EQ(query({sales_}).code, ExitCode::usage);
    EXPECT_EQ(query({sales_, "Sort(\"Cost\")"}).code, ExitCode::malformed);
    EXPECT_EQ(query({sales_, "Group(\"Product\", \"Median(Price)\")"}).code, ExitCode::malformed);
    EXPECT_EQ(query({sales_, "Select(\"Price, Price * 2 As price\")"}).code, ExitCode::malformed);
    const Answer missed = query({sales_, "Find(\"plum\") | Count()"});
    EXPECT_EQ(missed.code, ExitCode::malformed);
    EXPECT_EQ(missed.err, "corehost: Find(\"plum\") gave Undefined: Count has no table to work on.\n");
    EXPECT_EQ(query({path("none.csv"), "Count()"}).code, ExitCode::io);
    EXPECT_EQ(corehost({"query", "--mode", "xml", sales_, "Count()"}).code, ExitCode::usage);
    const std::string bad = file("bad.csv", "Price\n1\nabc\n");
    const Answer refused = query({bad, "Total(\"Price\")", "--columns", "Price Number"});
    EXPECT_EQ(refused.code, ExitCode::malformed);
    EXPECT_EQ(refused.err, "corehost: " + bad + ", line 3, column Price: “abc” is not a number.\n");
    const Answer goesOn = query({bad, "Total(\"Price\")", "--columns", "Price Number", "--go-on"});
    EXPECT_EQ(goesOn.out, "1\n");
    EXPECT_EQ(goesOn.err, "corehost: " + bad + ":3: Price: “abc” is not a number\n");
    EXPECT_EQ(query({bad, "1", "--columns", "Price Number", "--go-on", "--json"}).err,
              "{\"error\":\"Price: “abc” is not a number\",\"file\":\"" + bad + "\",\"line\":3}\n");
    EXPECT_TRUE(corehost({"query", bad, "Table.Losses", "--columns", "Price Number", "--go-on", "--mode",
                          "markdown", "--lang", "ru"})
                    .out.starts_with("| Номер строки | Строка файла | Колонка | Текст | Причина |"));
    EXPECT_EQ(query({file("de.csv", "P\n\"1.250,50\"\n"), "Table", "--locale", "de"}).out, "P\r\n1250.5\r\n");
}

TEST_F(QueryTest, ErrorsShowWhatTheUserWrote) {
    const struct {
        std::string steps, message;
    } cases[] = {
        {"First(1) | Groop(\"Region\")",
         "query:1:12: There is no function Groop. Did you mean Group?\n"
         "    First(1) | Groop(\"Region\")\n               ^~~~~~~~~~~~~~~\n"},
        {"First(1) | Where(Price > \"a\")",
         "query:1:12: Line 1, character 7 of the expression: A value of the type Number cannot be compared "
         "with "
         "one of the type String.\n    First(1) | Where(Price > \"a\")\n               ^~~~~\n"},
        {"First(1) |\n Group(\"Cost\")",
         "query:2:2: There is no column “Cost”.\n     Group(\"Cost\")\n     ^~~~~\n"},
        {"Total(\"Price\"", "query:1:14: Expected “)”, found the end of the text.\n"
                            "    Total(\"Price\"\n                 ^\n"},
        {"First(-1)", "query:1:1: First: the parameter Count does not take this value: -1.\n"
                      "    First(-1)\n    ^~~~~~~~~\n"},
        {"First(1) |", "corehost: There is nothing between two “|”, or behind the last one: First(1) |\n"},
    };
    for (const auto& c : cases) {
        const Answer answer = query({sales_, c.steps});
        EXPECT_EQ(answer.err, c.message);
        EXPECT_EQ(answer.code, ExitCode::malformed);
    }
    EXPECT_EQ(query({sales_, ""}).out, query({sales_, "Table"}).out);
}

TEST_F(QueryTest, ModesReachWhatScriptsPrint) {
    const std::string script = file("print.script", "Print(LoadCsv(\"" + sales_ + "\")); Print(1);");
    const auto printed = [&](const char* mode) { return corehost({"run", "--mode", mode, script}).out; };
    EXPECT_EQ(printed("csv"),
              "Product,Region,Price\r\napple,North,1.2\r\npear,South,3\r\napple,South,2.5\r\n1\n");
    EXPECT_TRUE(printed("markdown").starts_with("| Product | Region | Price |\n"));
    EXPECT_TRUE(printed("jsonl").starts_with("{\"Product\":\"apple\",\"Region\":\"North\",\"Price\":1.2}\n"));
    EXPECT_EQ(printed("table"), corehost({"run", script}).out);
}

TEST_F(QueryTest, ThePageShowsWhatHappens) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "exchange.md");
    for (const auto& [name, text] :
         {std::pair("sales.csv", "Day,Product,Region,Price\n2024-01-02,apple,North,1.20\n"
                                 "2024-01-03,pear,South,3\n2024-01-03,apple,South,2.50\n"),
          {"prices.csv", "Day,Price\n2024-01-02,1.20\n2024-01-03,abc\n"}})
        static_cast<void>(file(name, text));
    // A block of a script is followed by a block of what it prints.
    const std::regex blocks("```\n([^`]*)```\n\n```text\n([^`]*)```");
    std::size_t count = 0;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder());
    for (std::sregex_iterator block(page.begin(), page.end(), blocks), end; block != end; ++block, ++count) {
        const HostProcess process;
        core::script::Session session;
        EXPECT_EQ(session.run((*block)[1].str()) + "\n", (*block)[2].str()) << (*block)[1];
    }
    const std::regex commands("\\$ corehost query ([^\n]*)\n([^`]*)```");
    for (std::sregex_iterator one(page.begin(), page.end(), commands), end; one != end; ++one, ++count) {
        const std::string words = (*one)[1];
        const std::size_t quote = words.find('\'');
        const std::size_t close = words.find('\'', quote + 1);
        std::vector<std::string> arguments{"query", words.substr(0, quote - 1),
                                           words.substr(quote + 1, close - quote - 1)};
        if (words.find("--mode ") != std::string::npos) {
            arguments.push_back("--mode");
            arguments.push_back(words.substr(words.find("--mode ") + 7));
        }
        EXPECT_EQ(corehost(arguments).out, (*one)[2].str());
    }
    std::filesystem::current_path(before);
    EXPECT_GE(count, 4U);
}

} // namespace
} // namespace host
