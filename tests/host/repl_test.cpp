// SPDX-License-Identifier: Apache-2.0
// The console: entries over several lines, errors that it survives, names that it completes in both
// languages, the history, and all of it once at a real terminal.
#include "host/commands/session.h"
#include "host/terminal/history_file.h"
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <regex>
#include <thread>

namespace host {
namespace {

TEST(ReplTest, ThroughAPipe) {
    struct Case {
        std::string input, out, err;
    };
    const Case cases[] = {
        {"", "", ""},
        {"a = 1\n\n  // nothing\na + 1\nPrint(a); a = a + 1; a", "2\n1\n2\n", ""},
        {"Если Истина Тогда\n Сообщить(1)\nКонецЕсли\n\"x\n|y\"", "1\n\"x\uFFFDy\"\n", ""},
        {"b = New Array\r\nb.Add(\"\x1B[2J\")\r\nb\r\n", "Array [\"\uFFFD[2J\"]\n", ""},
        {"T = New ValueTable\nC = T.Columns.Add(\"A\")\nR = T.AddRow(\"x\")\nT.FindRows(\"A = \"\"x\"\"\")",
         "Array [ValueTableRow {A: \"x\"}]\n", ""},
        // the console goes on behind every error; what was done before it stays done
        {"a = 1; b = 1 / 0\na\n)\na\n\"\xFF\"\na", "1\n1\n1\n",
         "repl:1:14: Division by zero.\n    a = 1; b = 1 / 0\n                 ^\n"
         "repl:1:1: Expected a value, found “)”.\n    )\n    ^\n"
         "corehost: The file - is not text in UTF-8: the byte at 1 does not fit.\n"},
        {"Print(1)\nIf True Then", "1\n", "repl:2:1: Expected"},
    };
    for (const Case& c : cases) {
        const Answer answer = corehost({"repl", "--leaks"}, c.input);
        EXPECT_EQ(answer.out, c.out) << c.input;
        EXPECT_EQ(answer.err.substr(0, c.err.size()), c.err) << c.input;
        EXPECT_EQ(answer.err.empty(), c.err.empty()) << answer.err;
        EXPECT_EQ(answer.code, c.err.empty() ? ExitCode::done : ExitCode::malformed) << c.input;
    }
    const Answer procedures =
        corehost({"repl", "--leaks"}, "Procedure P(a,\n b = 2)\nPrint(a + b)\nEndProcedure\n"
                                      "P(1)\nF = P\nF(5)\nTry\nx = 1/0\nExcept\nError.Text\n"
                                      "EndTry\nExit(4)\nPrint(0)\n");
    EXPECT_EQ(procedures.out, "3\n7\n\"Division by zero.\"\n");
    EXPECT_EQ(procedures.err, "");
    EXPECT_EQ(static_cast<int>(procedures.code), 4);
    const std::string columns =
        "C = (New ValueTable).Columns\nN = C.Add(\"Price\", New TypeDescription(\"Number, "
        "String\", New NumberQualifiers(10, 2, AllowedSign.Nonnegative), New "
        "StringQualifiers(5, AllowedLength.Fixed)))\n"
        "N = C.Add(\"Day\", New TypeDescription(\"Date\", , , New "
        "DateQualifiers(DateFractions.Date)))\nN = C.Add(\"Any\")\n";
    EXPECT_EQ(
        corehost({"repl", "--leaks"}, columns + "C\nC.Day.ValueType\nC.Day").out,
        "Name   ValueType\n"
        "─────  ─────────────────────────────────────────\n"
        "Price  Number(10,2,Nonnegative), String(5,Fixed)\n"
        "Day    Date(Date)\nAny\nRows: 3\n"
        "TypeDescription (Date(Date))\n"
        "ValueTableColumn {Name: \"Day\", ValueType: TypeDescription (Date), Title: \"Day\", Width: 0}\n");
    EXPECT_EQ(corehost({"--lang", "ru", "--mode", "csv", "repl"}, columns + "C.Удалить(0)\nC").out,
              "Name,ValueType\r\nDay,Дата(Дата)\r\nAny,\r\n");
    EXPECT_EQ(corehost({"repl", "--json"}, "a = New Map; a.Insert(\"x\", 0.10); a; Null").out,
              "{\"x\":0.1}\nnull\n");
    EXPECT_EQ(
        corehost({"repl", "--json"},
                 "T = New ValueTable; C = T.Columns.Add(\"A\"); C = T.Columns.Add(\"Б\"); T.Add().A = 1; "
                 "T.Add().Б = \"x\"; Print(T); Print(\"text\"); PrintTable(T, 1)")
            .out,
        "[{\"A\":1,\"Б\":null},{\"A\":null,\"Б\":\"x\"}]\n\"text\"\n"
        "[{\"A\":1,\"Б\":null},{\"A\":null,\"Б\":\"x\"}]\n");
    EXPECT_EQ(corehost({"repl", "--lang", "ru"}, "True; New Map").out, "Истина\nСоответствие {}\n");
}

TEST(ReplTest, CommandsWithADotAndWords) {
    const Answer help = corehost({"repl"}, "help");
    EXPECT_EQ(help.code, ExitCode::done);
    for (const char* const command :
         {".help [NAME]", ".exit [CODE]", ".mode", ".timer", ".read FILE", ".output", ".describe NAME"})
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
    EXPECT_NE(corehost({"repl", "--lang", "ru"}, "справка").out.find(".описание"), std::string::npos);
    EXPECT_EQ(corehost({"repl"}, "1\nexit\n2").out, "1\n");
    EXPECT_EQ(static_cast<int>(corehost({"repl"}, ".выход 5\n2").code), 5);
    EXPECT_EQ(corehost({"repl"}, "exit = 3\nexit\n.exit").out, "3\n");
    EXPECT_EQ(corehost({"repl"}, ".describe Map").out, corehost({"describe", "Map"}).out);
    EXPECT_EQ(corehost({"repl"}, ".mode csv\nT = New ValueTable; C = T.Columns.Add(\"A\"); T.Add().A = 1; T\n"
                                 ".mode\nT")
                  .out,
              "A\r\n1\r\nA\n─\n1\nRows: 1\n");
    const Answer timed = corehost({"repl"}, ".timer on\n1\n.timer off\n2");
    EXPECT_EQ(timed.out, "1\n2\n");
    EXPECT_TRUE(std::regex_match(timed.err, std::regex("0\\.\\d{3} s\n"))) << timed.err;
    EXPECT_EQ(corehost({"repl"}, "2 ^ 3000" + std::string(" - 1")).out.size() < 700, true);
    const Answer wrong = corehost({"repl"}, ".dscribe Map\n.mode xml\n.read\n.lost\n1");
    EXPECT_EQ(wrong.out, "1\n");
    EXPECT_EQ(wrong.err, "corehost: There is no command .dscribe; .help lists them. Did you mean .describe?\n"
                         "corehost: The command .mode does not take “xml”.\n"
                         "corehost: The command .read needs an argument.\n"
                         "corehost: There is no command .lost; .help lists them.\n");
    EXPECT_EQ(wrong.code, ExitCode::malformed);
}

class DotFilesTest : public FolderTest {};

TEST_F(DotFilesTest, ReadOutputAndTheNamesOfFiles) {
    const std::string script = file("double.script", "Procedure Double(X) X = X * 2 EndProcedure Y = 4;");
    const Answer answer = corehost({"repl"}, ".read " + script + "\nDouble(Y)\n.output " + path("out") +
                                                 "\nY\n.output\nY + 1\n.read " + path("none") + "\n.output " +
                                                 path("no/folder") + "\nY");
    EXPECT_EQ(answer.out, "9\n8\n");
    EXPECT_EQ(text_of(path("out")), "8\n");
    EXPECT_NE(answer.err.find("none"), std::string::npos);
    EXPECT_NE(answer.err.find("folder"), std::string::npos);

    const auto names = [&](const std::string& before) {
        std::istringstream in;
        std::ostringstream out;
        Console console{in, out, out};
        const host::HostProcess process;
        std::string text;
        const core::script::Completion found = Session(console).complete(core::from_utf8(before));
        for (const core::wstring& name : found.names)
            text += core::to_utf8(name) + "|";
        return text + std::to_string(found.typed);
    };
    std::filesystem::create_directory(path("data"));
    EXPECT_EQ(names("T = LoadCsv(\"" + path("d")), "data/|double.script\"|1");
    EXPECT_EQ(names("Print(\"a\"\"b\") // \"" + path("d")), "0");
    EXPECT_EQ(names(".read " + path("do")), "double.script|2");
    EXPECT_EQ(names(".r"), ".read |2");
    EXPECT_EQ(names(".описание соо"), "Соответствие|3");
    EXPECT_EQ(names(".mode ma"), "markdown|2");
}

class CompletionTest : public core::script::ScriptTest {
  protected:
    /// The candidates, and behind "|" what is typed already.
    std::string complete(std::string_view before, int alias = core::kEnglish) {
        const core::script::Completion found =
            core::script::complete(session_.engine(), core::from_utf8(before), alias);
        std::string text;
        for (const core::wstring& name : found.names)
            text += (text.empty() ? "" : " ") + core::to_utf8(name);
        return text + "|" + std::to_string(found.typed);
    }

    std::string summary(std::string_view before, int alias = core::kEnglish) {
        return core::to_utf8(
            core::script::complete(session_.engine(), core::from_utf8(before), alias).summary);
    }
    std::string parameters(std::string_view before, int alias = core::kEnglish) {
        return core::to_utf8(
            core::script::complete(session_.engine(), core::from_utf8(before), alias).parameters);
    }

    core::script::Session session_;
};

TEST_F(CompletionTest, ParametersBehindTheParenthesis) {
    session_.run("S = New Structure; x = 5");
    EXPECT_EQ(parameters("S.Insert("), "Key, Value = Undefined");
    EXPECT_EQ(summary("S.Insert("), "Gives a name a value; a text that cannot be a name is an error.");
    EXPECT_EQ(summary("x = s.свойство( ", core::kRussian),
              "Возвращает, есть ли такое имя, и передаёт обратно его значение.");
    EXPECT_EQ(summary("Print(mid("),
              "Returns the units of a text from a position on, counted from 1, all of them or so many.");
    EXPECT_EQ(summary("S.Lost("), "");
    EXPECT_EQ(parameters("x = s.свойство( ", core::kRussian), "Ключ, out Значение = Неопределено");
    EXPECT_EQ(parameters("Print(mid("), "Text, From, Count = Undefined");
    EXPECT_EQ(parameters("Соединить(", core::kRussian), "Источник, Событие, Объект, Метод, Слабое = Ложь");
    session_.run("Procedure Change(Price, Val Rate = 0.5) Price = Rate EndProcedure");
    EXPECT_EQ(parameters("change("), "in out Price, Rate = 0.5");
    EXPECT_EQ(complete("x = Pow("), "|0") << "of all that may stand here only what the call wants is told";
    session_.engine().function("Add", "Сложить", [](int a, int b) { return a + b; }, {{u"First", u"Первое"}});
    EXPECT_EQ(parameters("Add("), "First, 2");
    EXPECT_EQ(parameters("add(", core::kRussian), "Первое, 2");
    for (const char* const before : {"S.Count(", "S.Lost(", "Lost(", "x.Add(", "lost.Add(", "S.Insert(1",
                                     "S.a.Get(", "New Array(", "(", "If (", "S.Insert( // (", "S.Insert(\"("})
        EXPECT_EQ(parameters(before), "") << before;
}

TEST_F(CompletionTest, NamesInBothLanguages) {
    session_.run("Prices = New Map; Цены = Prices; x = 5");
    EXPECT_EQ(complete("New Str"), "StringQualifiers Structure|3");
    EXPECT_EQ(complete("a = новый соо"), "Соответствие|3");
    EXPECT_EQ(complete("Prices."), "Clear() Count() Delete( Get( Insert(|0");
    EXPECT_EQ(complete("If Prices.", core::kRussian),
              "Вставить( Количество() Очистить() Получить( Удалить(|0");
    EXPECT_EQ(complete("ЦЕНЫ.вст"), "Вставить(|3");
    EXPECT_EQ(complete("f(Prices . In"), "Insert(|2");
    EXPECT_EQ(complete("AllowedSign.n"), "Nonnegative|1");
    EXPECT_EQ(complete("pric"), "Prices|4");
    EXPECT_EQ(complete("Strl"), "StrLen(|4");
    EXPECT_EQ(complete("x = x + Цен"), "Цены|3");
    EXPECT_EQ(complete("КонецЦ"), "КонецЦикла|6");
    session_.run("Function Pricing() EndFunction Procedure Prick(a) EndProcedure");
    EXPECT_EQ(complete("pric"), "Prices Pricing() Prick(|4");
    EXPECT_EQ(complete("EndTr"), "EndTry|5");
    EXPECT_EQ(complete("If x Then\nEndI"), "EndIf|4");
    EXPECT_NE(complete("").find("Prices"), std::string::npos);
}

TEST_F(CompletionTest, EventsInsideConnect) {
    session_.run("T = New ValueTable");
    EXPECT_EQ(complete("N = Connect(T, \"row"), "RowAdded\" RowChanged\" RowDeleted\" RowMoved\"|3");
    EXPECT_EQ(complete("соединить(t, \"ПриОч"), "ПриОчистке\"|5");
    EXPECT_EQ(complete("AddHandler T.row"), "RowAdded RowChanged RowDeleted RowMoved|3");
    for (const char* const before : {"Connect(T, \"Sorted\"", "Connect(T, T, \"Row", "T.Connect(T, \"Row",
                                     "Print(T, \"Row", "Connect(x, \"R"})
        EXPECT_EQ(complete(before), "|0") << before;
}

TEST_F(CompletionTest, NothingWhereNoNameStands) {
    session_.run("Prices = New Map");
    for (const char* const before : {"\"Pri", "// Pri", "x = 1 // Pri", "12", "x = \"Pri\"", "Prices.Get.",
                                     "Prices.Count().", "nothing.", "x = '2024", "$ Pri"})
        EXPECT_EQ(complete(before), "|0") << before;
    EXPECT_EQ(complete("never = 1; nev"), "|3"); // it has no value before the entry is run
}

TEST_F(CompletionTest, TheCommonBeginning) {
    const auto common = [](std::vector<core::wstring> names) {
        return core::to_utf8(core::script::Completion{0, std::move(names), {}, {}}.common());
    };
    EXPECT_EQ(common({}), "");
    EXPECT_EQ(common({u"Вставить("}), "Вставить(");
    EXPECT_EQ(common({u"ValueTable", u"valueTree", u"ValueTableRow"}), "ValueT");
    EXPECT_EQ(common({u"a", u"б"}), "");
}

class HistoryTest : public FolderTest {};

TEST_F(HistoryTest, LinesComeBackAndTheFileStaysShort) {
    const HistoryFile history(path("new/folder/history"));
    EXPECT_TRUE(history.load().empty());
    history.append("a = 1");
    HistoryFile(path("new/folder/history")).append("б"); // a console beside
    EXPECT_EQ(history.load(), (std::vector<std::string>{"a = 1", "б"}));
    for (std::size_t i = 0; i < 2 * HistoryFile::kMostLines; ++i)
        history.append(std::to_string(i));
    EXPECT_EQ(history.load().size(), HistoryFile::kMostLines);
    EXPECT_EQ(history.load().back(), std::to_string(2 * HistoryFile::kMostLines - 1));
    EXPECT_EQ(text_of(path("new/folder/history")).substr(0, 5), "1000\n");

    // a line that is entered while another console puts a shorter file in place
    const std::string old = path("new/folder/history");
    const int lock = ::open(old.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    std::thread beside([&] { history.append("late"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    std::filesystem::rename(file("shorter", "short\n"), old);
    ::close(lock);
    beside.join();
    EXPECT_EQ(history.load(), (std::vector<std::string>{"short", "late"}));

    for (const std::string& nowhere : {std::string(), file("plain", "") + "/history", folder().string()}) {
        const HistoryFile none(nowhere);
        none.append("x");
        EXPECT_TRUE(none.load().empty()) << nowhere;
    }
}

/// A console at a terminal of its own, in a process of its own.
class TerminalTest : public FolderTest {
  protected:
    TerminalTest() {
        struct winsize size {
            24, 100, 0, 0
        };
        child_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
        if (child_ == 0) {
            ::setenv("TERM", "xterm", 1);
            ::setenv("XDG_STATE_HOME", folder().c_str(), 1);
            ::setenv("LC_ALL", "C", 1);
            Console console{std::cin, std::cout, std::cerr};
            console.terminal = terminal_of_environment();
            const ExitCode code = run_program({"repl"}, console);
            std::fflush(nullptr);
            ::_exit(static_cast<int>(code));
        }
    }
    ~TerminalTest() override {
        if (child_ > 0) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, nullptr, 0);
        }
        ::close(terminal_);
    }

    void type(std::string_view keys) const {
        EXPECT_EQ(::write(terminal_, keys.data(), keys.size()), static_cast<::ssize_t>(keys.size()));
    }
    /// Waits until something is shown, pressing some key again and again; false when it never is.
    [[nodiscard]] bool shows(std::string_view text, std::string_view again = {}) {
        for (int i = 0; i < 200; ++i) {
            for (const std::string_view mark : {"\x1B[?2004h", "\x1B[?2004l"}) { // around each line
                for (auto at = shown_.find(mark); at != std::string::npos; at = shown_.find(mark))
                    shown_.erase(at, mark.size());
            }
            if (const auto at = shown_.find(text); at != std::string::npos) {
                shown_.erase(0, at + text.size());
                return true;
            }
            struct pollfd ready {
                terminal_, POLLIN, 0
            };
            char bytes[4096];
            ::ssize_t count = 0;
            if (::poll(&ready, 1, 100) > 0 && (count = ::read(terminal_, bytes, sizeof bytes)) > 0)
                shown_.append(bytes, static_cast<std::size_t>(count));
            else
                type(again);
        }
        ADD_FAILURE() << "waited for " << text << ", has " << testing::PrintToString(shown_);
        return false;
    }
    /// Waits for a prompt, and for the editor to take keys: what comes between the two is the terminal's own.
    [[nodiscard]] bool asks(std::string_view prompt) {
        struct termios mode {};
        if (!shows(prompt))
            return false;
        for (int i = 0; i < 2000; ++i) {
            if (::tcgetattr(terminal_, &mode) == 0 && (mode.c_lflag & ICANON) == 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    [[nodiscard]] int exit_code() {
        int status = 0;
        EXPECT_EQ(::waitpid(child_, &status, 0), child_);
        child_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    int terminal_ = -1;
    ::pid_t child_ = 0;
    std::string shown_;
};

TEST_F(TerminalTest, AnEntryIsOneItemOfTheHistoryAndWhatIsPastedStaysAsItIs) {
    ASSERT_TRUE(asks("> "));
    type("If True Then\r");
    ASSERT_TRUE(asks("  | "));
    type("7 * 6\r");
    ASSERT_TRUE(asks("  | "));
    type("EndIf\r");
    ASSERT_TRUE(shows("\n42\r\n"));
    ASSERT_TRUE(asks("> "));
    type("\x1B[A\r"); // the entry before, whole
    ASSERT_TRUE(shows("\n42\r\n"));
    ASSERT_TRUE(asks("> "));
    type("\x1B[200~a = 1\r\tIf a = 1 Then\r\t\ta + 10\rEndIf\r\x1B[201~");
    type("\r");
    ASSERT_TRUE(shows("\n11\r\n"));
    ASSERT_TRUE(asks("> "));
    type("exit\r");
    EXPECT_EQ(exit_code(), 0);
    EXPECT_EQ(
        text_of(folder() / "corehost/history"),
        "If True Then\u20287 * 6\u2028EndIf\na = 1\n\tIf a = 1 Then\u2028\t\ta + 10\u2028EndIf\nexit\n");
}

TEST_F(TerminalTest, EditsCompletesStopsAndLeaves) {
    ASSERT_TRUE(asks("> "));
    type("Цены = Новый Соо\t\r");
    ASSERT_TRUE(asks("\n> "));
    type("Цены.Вст\t1, 3)\x1B[D\x7F"
         "2\r"); // the 3 becomes a 2
    ASSERT_TRUE(asks("\n> "));
    type("Цены.Вставить(\t\x15Цены\r");
    ASSERT_TRUE(shows("\n(Key, Value)\r\n"));
    ASSERT_TRUE(shows("Map {1: 2}"));
    ASSERT_TRUE(asks("\n> "));
    type("1/0\r");
    ASSERT_TRUE(shows("Division by zero."));
    ASSERT_TRUE(asks("\n> "));
    type("If True Then\r");
    ASSERT_TRUE(asks("  | "));
    type("Print(\x03");
    ASSERT_TRUE(shows("^C"));
    ASSERT_TRUE(asks("> "));
    type("While True Do EndDo\r");
    ASSERT_TRUE(shows("The script was interrupted.", "\x03"));
    ASSERT_TRUE(asks("\n> "));
    type("40+2\r");
    ASSERT_TRUE(shows("\n42\r\n"));
    ASSERT_TRUE(asks("> "));
    type("\x04");
    EXPECT_EQ(exit_code(), 0);
    EXPECT_TRUE(text_of(folder() / "corehost/history")
                    .starts_with("Цены = Новый Соответствие\nЦены.Вставить(1, 2)\n"))
        << text_of(folder() / "corehost/history");
}

} // namespace
} // namespace host
