// SPDX-License-Identifier: Apache-2.0
// Comma-separated values: what another program writes is read, what is written another program reads, and a
// row that is wrong is found.
#include "host/exchange/csv/csv_table.h"
#include "host/exchange/files/whole_file.h"
#include "host/exchange/json/json_value.h"
#include "host/exchange/tables/table_view.h"
#include "host/library/surroundings.h"
#include "tests/script/script_fixture.h"
#include "tests/support/folder_test.h"

#include <core/collections/value_array.h>

#include <cstdlib>

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

TEST_F(CsvTest, ReadsAndWritesWhatPythonDoes) {
    const std::string model = "python3 -B " CORE_SOURCE_DIR "/tests/script/csv_model.py ";
    if (std::system("python3 -c ''") != 0)
        GTEST_SKIP() << "no Python";
    ASSERT_EQ(std::system((model + "write " + path("")).c_str()), 0);
    const auto written = from_json(text_of(path("written.json"))).query<core::IValueArray>();
    const auto delimiter = [](std::size_t seed) { return ",;\t"[seed % 3]; };
    for (std::size_t seed = 0; seed < written->count(); ++seed) {
        const std::string name = std::to_string(seed);
        const auto table = read_csv_table(core::script::open_file(core::from_utf8(path(name + ".csv"))),
                                          core::from_utf8(name), delimiter(seed), {});
        const auto rows = written->get(seed).query<core::IValueArray>();
        ASSERT_EQ(table->rowCount() + 1, rows->count());
        for (std::size_t row = 0; row < table->rowCount(); ++row) {
            const auto cells = rows->get(row + 1).query<core::IValueArray>();
            for (std::size_t i = 0; i < table->columnCount(); ++i)
                ASSERT_EQ(table->get(row, table->column(i).id), cells->get(i))
                    << seed << ' ' << row << ' ' << i;
        }
        const auto view = table_view(core::Value(table.query<core::IValue>()), ViewFor::programs);
        write_text_file(path(name + ".csv"),
                        [&](core::wostream& out) { write_csv_table(out, *view, delimiter(seed)); });
    }
    ASSERT_EQ(std::system((model + "read " + path("")).c_str()), 0);
    EXPECT_EQ(to_json(from_json(text_of(path("read.json")))),
              to_json(from_json(text_of(path("written.json")))));
}

TEST_F(CsvTest, TitlesBecomeNames) {
    EXPECT_EQ(load("Total, price,2nd,,a b,a_b,A-B,,a_b_2\n"),
              R"([["Total","price","_2nd","Column","a_b","a_b_2","A_B_3","Column_2","a_b_2_2"]])");
    EXPECT_EQ(run("T = LoadCsv(F); T.Columns.A_B_2.Title; T.Columns[1].Title"), "\"a_b\"\n\" price\"");
    EXPECT_EQ(load("1;2\n", ", \";\", \"А, Б\""), R"([["А","Б"],["1","2"]])");
    EXPECT_EQ(load("", ", , \"A\""), R"([["A"]])");
    EXPECT_EQ(load("A\n\n1\n\"\"\n\n \n"), R"([["A"],["1"],[""],[" "]])"); // blank lines are skipped
    EXPECT_EQ(load("A,B"), R"([["A","B"]])");
    EXPECT_EQ(load(""), "! 1:5 x.csv: the file is empty, it has no line with the names of the columns.");
}

TEST_F(CsvTest, ABadRowIsFoundByTheLineWhereItBegins) {
    const std::string quotes =
        ": the row has a quote that is not closed, or one inside of a field without quotes.";
    const std::string encoding = ": the row is not text in UTF-8.";
    const struct {
        std::string_view text;
        std::string message;
    } cases[] = {
        {"A,B\n1,2\n3\n", "line 3: the row has 1 fields, the table has 2 columns."},
        {"A,B\r\n\r\n\"x\r\ny\rz\n\",2\r\n\n1,2,3", "line 8: the row has 3 fields, the table has 2 columns."},
        {"A\r1,2\r", "line 2: the row has 2 fields, the table has 1 columns."},
        {"A,B\n1,2\n\"3,4\n5,6\n", "line 3" + quotes},
        {"A,B\n1,\"2\n3\",4\n5,6", "line 2: the row has 3 fields, the table has 2 columns."},
        {"A,B\n1,\"2\"x\n", "line 2" + quotes},
        {"A,B\n1,2\"\n", "line 2" + quotes},
        {"A\n1\n\xD0\n", "line 3" + encoding},
        {"A\n\"1\n2\"\n\xED\xA0\x80\n", "line 4" + encoding},
        {"A\xFF\n", "line 1" + encoding},
    };
    for (const auto& c : cases)
        EXPECT_EQ(load(c.text), "! 1:5 x.csv, " + c.message) << c.text;
    EXPECT_EQ(run("LoadCsv(F + \"none\")").substr(0, 15), "! 1:1 The file ");
    // far from the beginning, where blocks have been read one after the other
    std::string text = "A,B\n";
    for (int i = 0; i < 40'000; ++i)
        text += "\"1\n\",2\n";
    EXPECT_EQ(load(text + "3\n"), "! 1:5 x.csv, line 80002: the row has 1 fields, the table has 2 columns.");
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
                  "True\n\"N;D;B\r\n-1234567.125;20240229130507;True\r\n0;00010101000000;False\r\n\"");
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
    static_cast<void>(file("x.csv", "A\n1\n"));
    EXPECT_EQ(run("SaveCsv(F, New Array)"),
              "! 1:1 SaveCsv: the parameter Table does not take a value of the type Array: Array [].");
    for (const char* const delimiter : {"\"\"\"\"", "\"\"", "\",,\"", "\"ж\"", "\"\n|\""})
        EXPECT_TRUE(run(std::string("LoadCsv(F, ") + delimiter + ")")
                        .starts_with("! 1:1 LoadCsv: the parameter Delimiter does not take this value: "));
    EXPECT_EQ(run("LoadCsv(F, , \"A, \")").substr(0, 6), "! 1:1 ");
    EXPECT_EQ(run("LoadCsv(F, , \"A, a\")").substr(0, 6), "! 1:1 ");
    // half of a surrogate pair cannot be written
    EXPECT_EQ(run("T = LoadCsv(F); T.Add().A = Left(\"\U0001F600\", 1); SaveCsv(F, T)").substr(0, 4), "! 1:");
    EXPECT_EQ(text_of(path("x.csv")), "A\n1\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 1);
}

} // namespace
} // namespace host
