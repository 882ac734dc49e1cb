// SPDX-License-Identifier: Apache-2.0
// Tables on the terminal: alignment of every kind of character, what is cut, what is left out; the other form
// is JSON.
#include "tests/script/script_fixture.h"

#include <core/exchange/column_text.h>
#include <core/exchange/json.h>
#include <core/exchange/table_view.h>
#include <core/tables/value_table.h>

#include <random>

namespace host {

using namespace core;

namespace {

class TablePrintTest : public core::script::ScriptTest {
  protected:
    /// A table of texts, a row behind the other.
    static core::InterfacePtr<core::IValueTable> table(const std::vector<std::string>& columns,
                                                       const std::vector<std::string>& cells) {
        auto made = core::create_value_table();
        for (const std::string& column : columns)
            made->addColumn(core::from_utf8(column));
        for (std::size_t i = 0; i < cells.size(); i += columns.size()) {
            std::vector<core::Value> row;
            for (std::size_t j = 0; j < columns.size(); ++j)
                row.emplace_back(core::from_utf8(cells[i + j]));
            made->appendRow(row);
        }
        return made;
    }
    static std::string print(const core::InterfacePtr<core::IValueTable>& table, std::size_t width) {
        std::ostringstream out;
        print_table(out, *table_view(core::Value(table.query<core::IValue>())), width);
        return out.str();
    }
};

TEST_F(TablePrintTest, NumbersStandRightAndTextsLeft) {
    const std::string table =
        R"(T = New ValueTable; C = T.Columns; N = C.Add("Name", , "Имя"); N = C.Add("Price");
        N = C.Add("Day"); N = C.Add("Mixed"); N = C.Add("None");
        R = T.Add(); R.Name = "яблоко"; R.Price = 1.2; R.Day = '20240229'; R.Mixed = 5;
        R = T.Add(); R.Name = "漢字"; R.Price = 10.25; R.Mixed = "x";
        R = T.Add(); R.Name = "été"; R.Price = -3; R = T.Add(); R.Name = "😀 "; Print(T))";
    check({{table, "Имя     Price  Day         Mixed  None\n"
                   "──────  ─────  ──────────  ─────  ────\n"
                   "яблоко    1.2  2024-02-29  5\n"
                   "漢字    10.25              x\n"
                   "e\u0301t\u00E9        -3\n"
                   "😀\n"
                   "Rows: 4"},
           {"Print(New ValueTable)", "Rows: 0"},
           {"T = New ValueTable; C = T.Columns.Add(\"A\"); Print(T)", "A\n─\nRows: 0"}});
}

TEST_F(TablePrintTest, NumbersHaveTheFractionDigitsOfTheirColumn) {
    check({{R"(Price = New TypeDescription("Number", New NumberQualifiers(10, 2));
               T = New ValueTable; C = T.Columns.Add("Price", Price);
               T.Add().Price = 1.2; T.Add().Price = 3; Print(T);
               T = New ValueTree; C = T.Columns.Add("Price", Price); T.Rows.Add().Price = 5; Print(T))",
            "Price\n─────\n 1.20\n 3.00\nRows: 2\nPrice\n─────\n 5.00\nRows: 1"}});
}

TEST_F(TablePrintTest, LongTablesShowTheirHead) {
    core::script::Session session;
    session.run("T = New ValueTable; T.Columns.Add(\"N\"); For i = 1 To 22 Do T.Add().N = i EndDo");
    std::string head = " N\n──\n";
    for (int i = 1; i <= 20; ++i)
        head += (i < 10 ? " " : "") + std::to_string(i) + '\n';
    EXPECT_EQ(session.run("Print(T)"), head + "… 2 more rows\nRows: 22");
    EXPECT_EQ(session.run("PrintTable(T)"), head + "21\n22\nRows: 22");
    EXPECT_EQ(session.run("PrintTable(T, 0)"), "N\n─\n… 22 more rows\nRows: 22");
    EXPECT_EQ(session.run("T.Delete(0); PrintTable(T, 20); "),
              " N\n──\n" + head.substr(head.find(" 2\n")) + "21\n22\nRows: 21");
    EXPECT_EQ(session.run("PrintTable(5)"),
              "! 1:1 PrintTable: the parameter Table does not take a value of the type Number: 5.");
}

TEST_F(TablePrintTest, CellsAreCutToTheWidth) {
    const auto t = table({"A", "Б", "C"}, {"1234567890", "короткий", "x", "y", "漢字漢字漢字", "z"});
    EXPECT_EQ(print(t, 27), "A           Б             C\n"
                            "──────────  ────────────  ─\n"
                            "1234567890  короткий      x\n"
                            "y           漢字漢字漢字  z\n"
                            "Rows: 2\n");
    EXPECT_EQ(print(t, 23), "A          Б          C\n"
                            "─────────  ─────────  ─\n"
                            "12345678…  короткий   x\n"
                            "y          漢字漢字…  z\n"
                            "Rows: 2\n");
    EXPECT_EQ(print(t, 22), "A          Б         C\n"
                            "─────────  ────────  ─\n"
                            "12345678…  короткий  x\n"
                            "y          漢字漢…   z\n"
                            "Rows: 2\n");
    EXPECT_EQ(print(t, 12), "A      Б\n"
                            "─────  ─────\n"
                            "1234…  коро…\n"
                            "y      漢字…\n"
                            "… 1 more columns\n"
                            "Rows: 2\n");
    t->addColumn(u"W", {}, u"wide", 6);
    EXPECT_TRUE(print(t, 40).starts_with("A           Б             C  wide\n"
                                         "──────────  ────────────  ─  ──────\n"));
}

TEST_F(TablePrintTest, NothingInACellLeavesItsPlace) {
    EXPECT_EQ(
        print(table({"A", "B"}, {"a\r\nb\nc\td\x1B[2Je", "1", "x\u202Ey\u2028\u200Dz", "2", "\u0301", "3"}),
              40),
        "A             B\n"
        "────────────  ─\n"
        "a↵b↵c d\uFFFD[2Je  1\n"
        "x\uFFFDy↵\u200Dz         2\n"
        "\u0301              3\n"
        "Rows: 3\n");
    const core::wstring half[] = {u"\xD83D", u"\xDE00"};
    for (const auto& unit : half)
        EXPECT_EQ(fitted_text(unit, 5).text, "\uFFFD");
    EXPECT_EQ(fitted_text(u"ab", 0).text, "");
}

TEST_F(TablePrintTest, NoLineIsLongerThanItsWidth) {
    const char* const pieces[] = {"a", "ж", "漢", "e\u0301", "😀", "\n", "\u1112\u1161", "  "};
    std::mt19937 random(7);
    const auto below = [&random](std::size_t end) { return random() % end; };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> columns, cells;
        for (std::size_t i = 0, count = 1 + below(6); i < count; ++i)
            columns.push_back("C" + std::to_string(i));
        for (std::size_t i = 0; i < 3 * columns.size(); ++i) {
            cells.emplace_back();
            for (std::size_t length = below(30); length > 0; --length)
                cells.back() += pieces[below(std::size(pieces))];
        }
        const std::size_t width = 16 + below(60);
        std::istringstream lines(print(table(columns, cells), width));
        for (std::string line; std::getline(lines, line);) {
            ASSERT_LE(column_count(line), width) << line;
        }
    }
}

TEST_F(TablePrintTest, TreesAndLists) {
    core::script::Session session;
    session.run(R"(T = New ValueTree; T.Columns.Add("Name"); T.Columns.Add("Sum");
        A = T.Rows.Add(); A.Name = "first"; A.Sum = 3; B = A.Rows.Add(); B.Name = "below"; B.Sum = 2;
        C = B.Rows.Add(); C.Name = "deepest"; C.Sum = 1; D = T.Rows.Add(); D.Name = "last")");
    EXPECT_EQ(session.run("Print(T)"), "Name         Sum\n"
                                       "───────────  ───\n"
                                       "first          3\n"
                                       "  below        2\n"
                                       "    deepest    1\n"
                                       "last\n"
                                       "Rows: 4");
    EXPECT_EQ(
        session.run("ToJson(T)"),
        R"("[{""Name"":""first"",""Sum"":3,""Rows"":[{""Name"":""below"",""Sum"":2,""Rows"":)"
        R"([{""Name"":""deepest"",""Sum"":1,""Rows"":[]}]}]},{""Name"":""last"",""Sum"":null,""Rows"":[]}]")");
    EXPECT_EQ(session.run("L = New ValueList; I = L.Add(5, \"five\", True); I = L.Add(10); Print(L)"),
              "Value  Presentation  Check\n"
              "─────  ────────────  ─────\n"
              "    5  five          ✓\n"
              "   10\n"
              "Rows: 2");
    EXPECT_EQ(
        session.run("ToJson(L)"),
        R"("[{""Value"":5,""Presentation"":""five"",""Check"":true},{""Value"":10,""Presentation"":"""",""Check"":false}]")");
    // as deep as a tree can be made
    EXPECT_EQ(session.run("R = T; For i = 1 To 3000 Do R = R.Rows.Add() EndDo; PrintTable(T, 0)"),
              "Name  Sum\n────  ───\n… 3004 more rows\nRows: 3004");
    EXPECT_EQ(session.run("ToJson(T)"), "! 1:1 JSON is nested more than 1000 levels deep.");
}

TEST_F(TablePrintTest, JsonIsTheOtherForm) {
    core::script::Session session;
    session.run(
        "T = New ValueTable; T.Columns.Add(\"A\"); T.Columns.Add(\"Б\"); T.Add().A = 1; T.Add().Б = \"x\"");
    EXPECT_EQ(session.run("ToJson(T)"), R"("[{""A"":1,""Б"":null},{""A"":null,""Б"":""x""}]")");
    EXPECT_EQ(session.run("ToJson(T.FindRows(New Structure(\"A\", 1)), 1)"),
              "\"[\n {\n  \"\"A\"\": 1,\n  \"\"Б\"\": null\n }\n]\"");
}

} // namespace
} // namespace host
