// SPDX-License-Identifier: Apache-2.0
// corehost as its users meet it: commands, what goes to which stream, exit codes, both languages, and the
// scripts that the project shows.
#include "tests/host/program_fixture.h"

#include <core/collections/value_array.h>

#include <regex>

namespace host {
namespace {

namespace fs = std::filesystem;

class ProgramTest : public FolderTest {
  protected:
    Answer run(std::string_view script, std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"run", file("s", script)});
        Answer answer = corehost(options);
        // the script by the name of its file alone
        for (std::size_t at = 0; (at = answer.err.find(path(""))) != std::string::npos;)
            answer.err.erase(at, path("").size());
        return answer;
    }
};

TEST_F(ProgramTest, WithoutACommandInputIsAScript) {
    const Answer answer = corehost({"--mode", "list"}, "Print(1 + 1.5)");
    EXPECT_EQ(answer.out, "2.5\n") << answer.err;
    const Answer stopped = corehost({}, "Print(1);\nPrint(1 / 0)");
    EXPECT_EQ(stopped.code, ExitCode::malformed);
    EXPECT_EQ(stopped.err.substr(0, 4), "-:2:");
}

TEST_F(ProgramTest, EveryExitCode) {
    struct Case {
        std::vector<std::string> arguments;
        ExitCode code;
    };
    const std::string good = file("good", "Print(1)"), bad = file("bad", "Print(1"),
                      stops = file("stops", "Print(1 / 0)"), bytes = file("bytes", "\xFF"),
                      lost = file("lost", "LoadText(\"/no/such\")");
    const Case cases[] = {
        {{"run", good}, ExitCode::done},
        {{"--help"}, ExitCode::done},
        {{"run", "--help"}, ExitCode::done},
        {{"--version"}, ExitCode::done},
        {{"--mode", "csv", good}, ExitCode::done},
        {{"--mode"}, ExitCode::usage},
        {{"--what"}, ExitCode::usage},
        {{"nothing"}, ExitCode::usage},
        {{"run"}, ExitCode::usage},
        {{"run", good, "x"}, ExitCode::done},
        {{"run", good, "--what"}, ExitCode::usage},
        {{"--what", "run", good}, ExitCode::usage},
        {{"--lang", "de", "run", good}, ExitCode::usage},
        {{"--lang", "0", "run", good}, ExitCode::usage},
        {{"run", good, "--lang", "ru"}, ExitCode::done},
        {{"run", good, "--locale", "de-AT"}, ExitCode::done},
        {{"run", good, "--locale", "xx"}, ExitCode::usage},
        {{"run", bad}, ExitCode::malformed},
        {{"run", stops}, ExitCode::malformed},
        {{"run", bytes}, ExitCode::malformed},
        {{"run", lost}, ExitCode::malformed},
        {{"run", path("none")}, ExitCode::io},
        {{"run", "/"}, ExitCode::io},
    };
    for (const Case& c : cases) {
        const Answer answer = corehost(c.arguments);
        EXPECT_EQ(answer.code, c.code) << testing::PrintToString(c.arguments) << answer.err;
        EXPECT_EQ(answer.err.empty(), c.code == ExitCode::done) << testing::PrintToString(c.arguments);
        EXPECT_EQ(answer.out.empty(), c.code != ExitCode::done)
            << testing::PrintToString(c.arguments) << answer.out;
    }
}

TEST_F(ProgramTest, AWrongCommandLineNamesTheWordAndTheNearest) {
    const std::string good = file("good", "Print(1)");
    struct Case {
        std::vector<std::string> arguments;
        const char* english;
        const char* russian;
    };
    const Case cases[] = {
        {{"desribe"},
         "corehost has no command “desribe”. Did you mean describe?",
         "У corehost нет команды «desribe». Возможно, имелся в виду describe?"},
        {{"--vers"}, "corehost has no option --vers.", "У команды corehost нет параметра --vers."},
        {{"list", "ftm"},
         "corehost list has no command “ftm”. Did you mean fmt?",
         "У corehost list нет команды «ftm». Возможно, имелся в виду fmt?"},
        {{"list"},
         "corehost list needs a command: check, fmt, to-json, from-json, to-compact, from-compact.",
         "corehost list: нужна команда: check, fmt, to-json, from-json, to-compact, from-compact."},
        {{"run", good, "--encodng=x"},
         "corehost run has no option --encodng. Did you mean --encoding?",
         "У команды corehost run нет параметра --encodng. Возможно, имелся в виду --encoding?"},
        {{"query", good, "Count()", "--delimiter", ";;"},
         "The option --delimiter does not take “;;”.",
         "Параметр --delimiter не принимает значение «;;»."},
        {{"run"}, "corehost run needs the argument file.", "Команде corehost run нужен аргумент file."},
        {{"run", good, "--encoding"},
         "The option --encoding needs a value.",
         "Параметру --encoding нужно значение."},
        {{"run", good, "--mode", "markdwn"},
         "The option --mode does not take “markdwn”. Did you mean markdown?",
         "Параметр --mode не принимает значение «markdwn». Возможно, имелся в виду markdown?"},
        {{"run", good, "--locale", "xx"},
         "The option --locale does not take “xx”.",
         "Параметр --locale не принимает значение «xx»."},
        {{"list", "fmt", "--indent", "17"},
         "The option --indent does not take “17”.",
         "Параметр --indent не принимает значение «17»."},
        {{"list", "fmt", "--indent", "x"},
         "The option --indent does not take “x”.",
         "Параметр --indent не принимает значение «x»."},
        {{"describe", "Map", "--functions"},
         "name and --functions cannot stand together.",
         "name и --functions нельзя указать вместе."},
    };
    for (const Case& c : cases) {
        for (const bool isRussian : {false, true}) {
            std::vector<std::string> arguments = {"--lang", isRussian ? "ru" : "en"};
            arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
            const Answer answer = corehost(arguments);
            EXPECT_EQ(answer.code, ExitCode::usage);
            EXPECT_EQ(answer.err.substr(0, answer.err.find('\n')),
                      std::string("corehost: ") + (isRussian ? c.russian : c.english));
        }
    }
    EXPECT_EQ(corehost({"list", "fmt", "--what"}).err,
              "corehost: corehost list fmt has no option --what.\ncorehost list fmt --help\n");
    EXPECT_EQ(corehost({"--lang", "de", "run", good}).err.substr(0, 68),
              "corehost: The option --lang does not take “de”. It takes en, ru.");
}

TEST_F(ProgramTest, HelpIsAlignedAndAskedForByAWord) {
    EXPECT_EQ(corehost({"help", "query"}).out, corehost({"query", "--help"}).out);
    const std::string russian = corehost({"--lang", "ru", "справка"}).out;
    EXPECT_NE(russian.find("\n  --locale КЛЮЧ               Локаль"), std::string::npos) << russian;
    EXPECT_NE(russian.find("\n  --module ФАЙЛ ...           Сначала"), std::string::npos) << russian;
}

TEST_F(ProgramTest, TheRussianHelpIsRussian) {
    for (const std::vector<std::string>& command :
         std::initializer_list<std::vector<std::string>>{{},
                                                         {"run"},
                                                         {"query"},
                                                         {"list", "fmt"},
                                                         {"text", "convert"},
                                                         {"container", "put"},
                                                         {"describe"}}) {
        std::vector<std::string> arguments = {"--lang", "ru"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        arguments.emplace_back("--help");
        const std::string help = corehost(arguments).out;
        for (const char* const word :
             {"TEXT", "FILE", "KEY", "ENCODING", "OPTIONS", "REQUIRED", "Usage", "Show"})
            EXPECT_EQ(help.find(word), std::string::npos) << testing::PrintToString(command) << ' ' << help;
    }
}

TEST_F(ProgramTest, FailuresInJson) {
    EXPECT_EQ(
        run("Print(1);\n  a = 1 / 0", {"--json"}).err,
        "{\"error\":\"Division by zero.\",\"id\":\"IDS_NUMERROR_DIVIDEBYZERO\",\"file\":\"s\",\"line\":2,"
        "\"column\":9}\n");
    EXPECT_EQ(corehost({"runn", "--json"}).err,
              "{\"error\":\"corehost has no command “runn”. Did you mean run?\"}\n");
    const Answer missing = corehost({"--json", "run", path("none")});
    EXPECT_EQ(missing.code, ExitCode::io);
    EXPECT_TRUE(missing.err.starts_with("{\"error\":\"The file ")) << missing.err;
    EXPECT_NE(missing.err.find("\"id\":\"IDS_FILE_OPEN\"}"), std::string::npos) << missing.err;
    EXPECT_EQ(corehost({"repl", "--json"}, "\"a\" + lost").err.substr(0, 10), "{\"error\":\"");
}

TEST_F(ProgramTest, AStreamThatCannotBeWritten) {
    std::istringstream in;
    std::ostringstream out, err;
    Console console{in, out, err};
    out.setstate(std::ios::badbit);
    EXPECT_EQ(run_program({"run", file("s", "Print(1)")}, console), ExitCode::io);
    EXPECT_EQ(err.str(), "corehost: The output could not be written.\n");
    out.clear();
    // a fault of the program itself: an exception that nobody expects
    struct Faulty : std::streambuf {
        int underflow() override { throw std::logic_error("unexpected\x1B"); }
    } faulty;
    std::istream broken(&faulty);
    broken.exceptions(std::ios::badbit);
    Console other{broken, out, err};
    err.str({});
    EXPECT_EQ(run_program({"run", "-"}, other), ExitCode::internal);
    EXPECT_EQ(err.str(), "corehost: unexpected\uFFFD\n");
}

/// Remembers what could be seen at each flush.
struct WatchedOutput : std::stringbuf {
    std::vector<std::string> seen;
    int sync() override {
        seen.push_back(str());
        return 0;
    }
};

TEST_F(ProgramTest, WhoWatchesTheOutputSeesEachValueWhenItIsPrinted) {
    for (const bool live : {false, true}) {
        std::istringstream in("Print(1); Print(2);");
        std::ostringstream err;
        WatchedOutput output;
        std::ostream out(&output);
        Console console{in, out, err};
        console.live = live;
        EXPECT_EQ(run_program({}, console), ExitCode::done);
        EXPECT_EQ(output.seen, live ? std::vector<std::string>({"1\n", "1\n2\n", "1\n2\n"})
                                    : std::vector<std::string>({"1\n2\n"}));
    }
}

TEST_F(ProgramTest, AnErrorShowsItsPlaceInTheUsersLanguage) {
    EXPECT_EQ(run("a = 1;\nPrint(a + b);").err,
              "s:2:11: The variable b has no value yet.\n    Print(a + b);\n              ^\n");
    EXPECT_EQ(run("a = 1;\nPrint(a + b);", {"--lang", "ru"}).err,
              "s:2:11: Переменная b ещё не имеет значения.\n    Print(a + b);\n              ^\n");
    EXPECT_EQ(run("x = New Array;\n\tx.Lost(1)").err,
              "s:2:4: The type Array has no method Lost.\n    \tx.Lost(1)\n    \t  ^~~~\n");
    EXPECT_EQ(run("Print(1); Print(2); Stop(3)").out, "1\n2\n"); // what was done before
    EXPECT_EQ(run("Print(True); Print(1 = 2)", {"--lang", "ru"}).out, "Да\nНет\n");

    // formats, sorting and names may be those of another locale
    const std::string title =
        "Print((New Locale).Key); Print(New LocalWString(\"de='Preis'; en='Price'; ru='Цена'\"));";
    EXPECT_EQ(run(title, {"--locale", "de-AT"}).out, "de_AT\nPreis\n");
    EXPECT_EQ(run(title, {"--locale", "de-AT", "--lang", "ru"}).out, "de_AT\nЦена\n");
    EXPECT_EQ(run(title, {"--locale", "ru"}).out, "ru\nPrice\n");
    EXPECT_EQ(run("x = New Array;\nx.Lost(1)", {"--locale", "ru"}).err,
              "s:2:3: The type Array has no method Lost.\n    x.Lost(1)\n      ^~~~\n");

    const Answer coloured = corehost({"run", file("s", "x")}, {}, true);
    EXPECT_NE(coloured.err.find("\x1B[1;31m^\x1B[0m"), std::string::npos);
    EXPECT_EQ(run("x").err.find('\x1B'), std::string::npos);
}

TEST_F(ProgramTest, NothingInAMessageSteersTheTerminalOrFloodsIt) {
    const Answer answer = run("LoadText(\"/\x1B[2J" + std::string(1 << 20, 'x') + "\")");
    EXPECT_LT(answer.err.size(), 2000U);
    EXPECT_EQ(answer.err.find('\x1B'), std::string::npos);
    EXPECT_LT(corehost({"run", std::string(1 << 20, 'x')}).err.size(), 2000U);
}

TEST_F(ProgramTest, LeaksAreReportedOnRequest) {
    EXPECT_EQ(run("a = New Array; a.Add(New Map); b = a", {"--leaks"}).err, "");
    EXPECT_EQ(run("a = New Map; a.Lost()", {"--leaks"}).err.find("leak"),
              std::string::npos); // a failure holds nothing back
    const auto kept = core::create_value_array();
    EXPECT_EQ(run("", {"--leaks"}).err, "corehost: leak: core::ValueArray 1\n");
    EXPECT_EQ(run("").err, "");
}

using Environment = support::EnvironmentVariable;

TEST(EnvironmentTest, LanguageAndColour) {
    const Environment all("LC_ALL", nullptr), messages("LC_MESSAGES", nullptr), lang("LANG", "ru_RU.UTF-8");
    EXPECT_EQ(language_of_environment(), Language::russian);
    {
        const Environment stronger("LC_MESSAGES", "en_GB.UTF-8");
        EXPECT_EQ(language_of_environment(), Language::english);
        const Environment strongest("LC_ALL", "ru");
        EXPECT_EQ(language_of_environment(), Language::russian);
    }
    const Environment none("LANG", nullptr);
    EXPECT_EQ(language_of_environment(), Language::english);
    const Environment terminal("TERM", "xterm"), plain("NO_COLOR", "1");
    EXPECT_FALSE(colour_of_environment());
}

TEST_F(ProgramTest, TheScriptsThatAreShownRun) {
    const fs::path root = CORE_SOURCE_DIR;
    std::smatch found;
    const std::string readme = text_of(root / "README.md");
    ASSERT_TRUE(std::regex_search(readme, found, std::regex("```\n(// fruit.script[^`]*)```")));
    EXPECT_EQ(run(found.str(1)).out, "Total: 3.55\n");

    // the console in the handbook: what is entered stands behind the prompts
    const std::string handbook = text_of(root / "docs/corehost.md");
    ASSERT_TRUE(std::regex_search(handbook, found, std::regex("```console\n([^`]*)```")));
    std::string entered, shown;
    std::istringstream lines(found.str(1));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t prompt = line.starts_with("> ") ? 2 : line.starts_with("  | ") ? 4 : 0;
        (prompt > 0 ? entered : shown) += line.substr(prompt) + '\n';
    }
    EXPECT_EQ(corehost({"repl"}, entered).out, shown);
}

} // namespace
} // namespace host
