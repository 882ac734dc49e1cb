// SPDX-License-Identifier: Apache-2.0
// Comma-separated values as scripts load and save them.
#include "tests/script/script_fixture.h"
#include "tests/support/folder_test.h"

namespace host {
namespace {

class CsvTest : public FolderTest {
  protected:
    /// The answer of a script; F stands for the file "x.csv".
    std::string run(const std::string& script) {
        core::script::Session session;
        session.run("F = \"" + path("x.csv") + "\"");
        std::string answer = session.run(script);
        const std::string place = path(""); // files are called by their names alone
        for (std::size_t at = 0; (at = answer.find(place)) != std::string::npos;)
            answer.erase(at, place.size());
        return answer;
    }
    /// The cells of what is loaded from a text, or the failure.
    std::string load(std::string_view text, const std::string& arguments = "") {
        static_cast<void>(file("x.csv", text));
        return run("T = LoadCsv(F" + arguments +
                   "); Rows = New Array; Names = New Array;\n"
                   "For Each Column In T.Columns Do Names.Add(Column.Name) EndDo; Rows.Add(Names);\n"
                   "For Each Row In T Do Cells = New Array; For Each Cell In Row Do Cells.Add(Cell) EndDo;\n"
                   "Rows.Add(Cells) EndDo; Print(ToJson(Rows))");
    }

    const HostProcess process_;
};

TEST_F(CsvTest, TitlesBecomeNames) {
    EXPECT_EQ(load("Total, price,2nd,,a b,a_b,A-B,,a_b_2\n"),
              R"([["Total","price","_2nd","Column","a_b","a_b_2","A_B_3","Column_2","a_b_2_2"]])");
    EXPECT_EQ(run("T = LoadCsv(F); T.Columns.A_B_2.Title; T.Columns[1].Title"), "\"a_b\"\n\" price\"");
    EXPECT_EQ(load("1;2\n", ", \";\", \"А, Б\""), R"([["А","Б"],[1,2]])");
    EXPECT_EQ(load("", ", , \"A\""), R"([["A"]])");
    EXPECT_EQ(load("A\n\n1\n\"\"\n\n \n"), R"([["A"],[1],[null],[null]])"); // blank lines are skipped
    EXPECT_EQ(load("A,B"), R"([["A","B"]])");
    EXPECT_EQ(load(""), "! 1:5 x.csv: the file is empty, it has no line with the names of the columns.");
}

TEST_F(CsvTest, TypedColumnsReadBack) {
    for (const char* const language : {"en", "ru"}) {
        core::Settings settings;
        settings.locale = core::Locale(language);
        const HostProcess process(settings);
        EXPECT_EQ(run(R"(T = New ValueTable; C = T.Columns.Add("N", New TypeDescription("Number"));
            C = T.Columns.Add("D", New TypeDescription("Date")); C = T.Columns.Add("B", New TypeDescription("Boolean"));
            Row = T.Add(); Row.N = -1234567.125; Row.D = '20240229130507'; Row.B = True; Row = T.Add();
            SaveCsv(F, T, ";"); Again = LoadCsv(F, ";");
            For Each Column In T.Columns Do Again.Columns.Find(Column.Name).ValueType = Column.ValueType EndDo;
            ToText(Again) = ToText(T); LoadText(F))"),
                  "True\n\"N;D;B\r\n-1234567.125;2024-02-29T13:05:07;True\r\n0;0001-01-01;False\r\n\"");
    }
}

TEST_F(CsvTest, TreesAndLists) {
    EXPECT_EQ(run(R"(T = New ValueTree; C = T.Columns.Add("Name", , "A title"); C = T.Columns.Add("Level");
        Row = T.Rows.Add(); Row.Name = "a"; Below = Row.Rows.Add(); Below.Name = "a,b"; Below.Level = 5;
        Below.Rows.Add().Name = "c"; T.Rows.Add().Name = "d"; SaveCsv(F, T); LoadText(F))"),
              "\"Level,Name,Level\r\n0,a,\r\n1,\"\"a,b\"\",5\r\n2,c,\r\n0,d,\r\n\"");
    EXPECT_EQ(
        run(R"(L = New ValueList; I = L.Add(1.5, "one", True); I = L.Add("x"); SaveCsv(F, L, ";"); LoadText(F))"),
        "\"Value;Presentation;Check\r\n1.5;one;True\r\nx;;False\r\n\"");
}

TEST_F(CsvTest, OtherEncodingsAreReadAndWritten) {
    static_cast<void>(file("x.csv", "\xC8\xEC\xFF\r\n\"\xFF,\xE6\"\r\n")); // windows-1251
    EXPECT_EQ(run(R"(T = LoadCsv(F, , , "cp1251"); SaveCsv(F, T, ";", "utf-16le"); LoadText(F, "utf-16le"))"),
              "\"Имя\r\nя,ж\r\n\"");
    EXPECT_EQ(text_of(path("x.csv")).substr(0, 4), std::string("\x18\x04<\x04", 4));
    EXPECT_EQ(run(R"(SaveText(F, "только текст, в котором хватает букв", "koi8-r"); LoadText(F, "auto"))"),
              "\"только текст, в котором хватает букв\"");
    EXPECT_EQ(run(R"(SaveText(F, "€", "koi8-r"))").substr(0, 6), "! 1:1 ");
    EXPECT_EQ(run(R"(SaveText(F, "a", "auto"))"),
              "! 1:1 SaveText: the parameter Encoding does not take this value: \"auto\".");
    EXPECT_EQ(run(R"(LoadCsv(F, , , "utf-8"))").substr(0, 6), "! 1:1 ");
}

TEST_F(CsvTest, BadArgumentsAndFailuresLeaveTheFile) {
    static_cast<void>(file("x.csv", "A\nx\n"));
    EXPECT_EQ(run("SaveCsv(F, New Array)"),
              "! 1:1 SaveCsv: the parameter Table does not take a value of the type Array: Array [].");
    for (const char* const delimiter : {"\"\"\"\"", "\"\"", "\",,\"", "\"ж\"", "\"\n|\""})
        EXPECT_TRUE(run(std::string("LoadCsv(F, ") + delimiter + ")")
                        .starts_with("! 1:1 LoadCsv: the parameter Delimiter does not take this value: "));
    EXPECT_EQ(run("LoadCsv(F, , \"A, \")").substr(0, 6), "! 1:1 ");
    EXPECT_EQ(run("LoadCsv(F, , \"A, a\")").substr(0, 6), "! 1:1 ");
    // half of a surrogate pair cannot be written
    EXPECT_EQ(run("T = LoadCsv(F); T.Add().A = Left(\"\U0001F600\", 1); SaveCsv(F, T)").substr(0, 4), "! 1:");
    EXPECT_EQ(text_of(path("x.csv")), "A\nx\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 1);
}

TEST_F(CsvTest, WhatDoesNotFitIsAnErrorUnlessTheScriptGoesOn) {
    static_cast<void>(file("x.csv", "Day,Price\n2024-02-29,1.5\n30.02.2024,\"1 250,00\"\n2024-01-02,abc\n"));
    EXPECT_EQ(run(R"x(LoadCsv(F, , "Day Date, Price Number(10,2)"))x"),
              "! 1:1 x.csv, line 3, column Day: “30.02.2024” is not a date.\n"
              "x.csv, line 3, column Price: “1 250,00” is not a number.\n"
              "x.csv, line 4, column Price: “abc” is not a number.");
    EXPECT_EQ(run(R"x(T = LoadCsv(F, , "Day Date, Price Number(10,2)", , , , True);
                     T.LossCount; T.Losses[1].Text; T.Потери[2].Line; T.Total("Price"); T[1].Day)x"),
              "3\n\"1 250,00\"\n4\n1.5\nUndefined");
    EXPECT_EQ(
        run(R"(T = ЗагрузитьCsv(F, , "Price Число", , , "ru", Истина); T.КоличествоПотерь; T.Итог("Price"))"),
        "2\n1250");
    EXPECT_EQ(run("T = LoadCsv(F); T.Total(\"Price\")"),
              "! 1:19 The column “Price” holds texts, which have "
              "no total: “1 250,00” in row 2. Give the column the type "
              "Number first.");
    EXPECT_TRUE(
        run("T = LoadCsv(F); T.GroupBy(\"Day\", \"Price\")").starts_with("! 1:19 The column “Price”"));
    EXPECT_EQ(run("T = LoadCsv(F); T.Columns.Price.ValueType = New TypeDescription(\"Number\")"),
              "! 1:33 Row 2, column Price: “1 250,00” is not a number.\nRow 3, column Price: “abc” is not a "
              "number.");
    EXPECT_EQ(run("T = LoadCsv(F); L = T.Columns.Price.Преобразовать(New TypeDescription(\"Number\"));"
                  "L.Count(); L[0].Reason; T.LossCount; T.Total(\"Price\")"),
              "2\n\"“1 250,00” is not a number\"\n2\n1.5");
    EXPECT_TRUE(run(R"(LoadCsv(F, , "Price Money"))").starts_with("! 1:1 “Price Money” is"));
    EXPECT_EQ(load("A,B\n1,5\" x\n"), R"([["A","B"],[1,"5\" x"]])");
    EXPECT_EQ(load("A,B\n1,5\" x\n", ", , , , , , , True").substr(0, 19), "! 1:5 x.csv, line 2");
    EXPECT_EQ(load("1,2\n", ", , , , False"), R"([["Column1","Column2"],[1,2]])");
}

TEST_F(CsvTest, CanBeInterruptedWhenAllBytesAreRead) {
    for (const char* const load : {"T = LoadCsv(\"x\")", "T = LoadJson(\"x\")"}) {
        core::script::Engine engine;
        engine.input([&](core::wstring_view) {
            return [&engine, text = std::string_view("{\"A\":1}\n")](std::span<std::byte> into) mutable {
                const std::size_t count = text.size();
                std::ranges::copy(std::as_bytes(std::span(text)), into.begin());
                text = {};
                if (count == 0)
                    engine.interrupt();
                return count;
            };
        });
        try {
            engine.run(load);
            FAIL() << load;
        } catch (const core::script::Error& error) {
            EXPECT_EQ(std::string_view(error.messageId()), core::messages::kScriptInterrupted);
        }
        EXPECT_FALSE(engine.has("T")) << load;
    }
}

TEST_F(CsvTest, GoesToTheOutputInAnyForm) {
    static_cast<void>(file("x.csv", "A,B\n1,x\n"));
    EXPECT_EQ(
        run("T = LoadCsv(F); SaveCsv(\"-\", T); SaveJson(\"-\", T); СохранитьJson(\"-\", T, \"Строки\")"),
        "A,B\r\n1,x\r\n[{\"A\":1,\"B\":\"x\"}]\n{\"A\":1,\"B\":\"x\"}");
    EXPECT_EQ(run("PrintTable(LoadCsv(F), , \"markdown\")"), "| A | B |\n| ---: | --- |\n| 1 | x |");
    EXPECT_EQ(run("PrintTable(LoadCsv(F), , \"xml\")"),
              "! 1:1 PrintTable: the parameter Form does not take this value: \"xml\".");
    EXPECT_EQ(run("T = LoadCsv(F); SaveJson(F, T, \"Lines\"); ToJson(LoadJson(F, \"B, A Number\"))"),
              R"("[{""B"":""x"",""A"":1}]")");
    EXPECT_EQ(
        run(R"(T = FromJson("[{""Day"":""2024-02-29""}]", "Table", "Day Date"); '20240229' = T[0].Day)"),
        "True");
    EXPECT_EQ(run(R"(FromJson("[{""P"":""x""}]", "Таблица", "P Число"))"),
              "! 1:1 Line 1, column P: “x” is not a number.");
    EXPECT_EQ(run(R"(T = FromJson("[{""P"":""x""}]", "Table", "P Number", True); T.LossCount)"), "1");
    EXPECT_EQ(run("ToJson(FromJson(\"1\n|[2]\", \"Lines\"))"), "\"[1,[2]]\"");
    EXPECT_EQ(run("FromJson(\"1\", \"Tables\")"),
              "! 1:1 FromJson: the parameter Maps does not take this value: \"Tables\".");
}

} // namespace
} // namespace host
