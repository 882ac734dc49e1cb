// SPDX-License-Identifier: Apache-2.0
// Running scripts: every statement and operator on every kind of value, objects by both names, what methods
// pass back, loops over what changes, and failures: where, in whose words, and with what left standing.
#include "tests/script/script_fixture.h"

#include <core/files/disk_file.h>
#include <core/files/file_io.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace core::script {
namespace {

using InterpreterTest = ScriptTest;

TEST_F(InterpreterTest, OperatorsOnEveryKind) {
    check({
        {"1 + 2 * 3 - 4 / 8; -7 % 3; 7 % -3; 0.1 + 0.2", "6.5\n-1\n1\n0.3"},
        {"-2 * -3; - - 2; +5; -\"12.5\"", "6\n2\n5\n-12.5"},
        {"\"3\" * \"4\"; \"7\" - 2; 1 + \"2\"; \"8\" / 4", "12\n5\n3\n2"},
        {"\"a\" + 1 + 2; \"a\" + True + Undefined + Null; \"\" + '20240229'",
         "\"a12\"\n\"aYes\"\n\"2024-02-29 00:00:00\""},
        {"'20240228' + 86400; '20240301' - 1; '20240301' - '20240229'",
         "'20240229000000'\n'20240229235959'\n86400"},
        {"'20240101' + 0.9; '20240101' - 0.9; '20240101' + \"60\"",
         "'20240101000000'\n'20240101000000'\n'20240101000100'"},
        // both ends of the calendar, however far beyond
        {"'20240101' + 1000000000000000000000000; '20240101' - 10000000000000000",
         "'99991231235959'\n'00010101000000'"},
        {"1 = 1.0; 1 = \"1\"; \"a\" = \"A\"; Undefined = Null; Undefined = Неопределено; '20240101' = "
         "'20240101000000'",
         "True\nFalse\nFalse\nFalse\nTrue\nTrue"},
        {"1 <> 2; New Array = New Array; Type(\"Array\") = Тип(\"массив\")", "True\nFalse\nTrue"},
        {"True + 1", "! 1:6 This operation is not defined for Boolean and Number."},
        {"1 < 2; 2 <= 2; 3 > 4; 4 >= 4; False < True; '20240101' < '20240102'; \"a\" < \"b\"",
         "True\nTrue\nFalse\nTrue\nTrue\nTrue\nTrue"},
        {"True And False; True Or False; Not True; Not 0; 1 And \"Yes\"", "False\nTrue\nFalse\nTrue\nTrue"},
        {"False And 1 / 0; True Or 1 / 0; not false and not false", "False\nTrue\nTrue"},
        {"1 / 3 * 3 = 1; 99999999999999999999 * 99999999999999999999",
         "False\n9999999999999999999800000000000000000001"},
    });
}

TEST_F(InterpreterTest, OperandsThatDoNotSuit) {
    check({
        {"1 + \"a\"", "! 1:3 This operation is not defined for Number and String."},
        {"Undefined + 1", "! 1:11 This operation is not defined for Undefined and Number."},
        {"'20240101' * 2", "! 1:12 This operation is not defined for Date and Number."},
        {"1 - '20240101'", "! 1:3 This operation is not defined for Number and Date."},
        {"'20240101' + '20240101'", "! 1:12 This operation is not defined for Date and Date."},
        {"1 < \"2\"", "! 1:3 This operation is not defined for Number and String."},
        {"New Map < New Map", "! 1:9 This operation is not defined for Map and Map."},
        {"Null >= Null", "! 1:6 This operation is not defined for Null and Null."},
        {"x = 0;\n5 / x", "! 2:3 Division by zero."},
        {"5 % 0", "! 1:3 Division by zero."},
        {"-\"a\"", "! 1:2 A value of the type String cannot be read as a number."},
        {"Not New Map", "! 1:5 A value of the type Map is neither true nor false."},
        {"1 and \"maybe\"", "! 1:7 A value of the type String is neither true nor false."},
    });
}

TEST_F(InterpreterTest, Statements) {
    check({
        {"If 1 > 2 Then Print(1) ElsIf 0 Then Print(2) ElsIf 3 Then Print(3) Else Print(4) EndIf", "3"},
        {"Если Ложь Тогда Сообщить(1) Иначе Сообщить(2) КонецЕсли", "2"},
        {"For i = 1 To 3 Do Print(i); i = 10; EndDo; i", "1\n2\n3\n10"},
        {"For i = 3 To 1 Do Print(i) EndDo; For i = 0.5 To 2 Do Print(i) EndDo", "0.5\n1.5"},
        {"Для i = 1 По 2 Цикл Для j = 1 По 3 Цикл Если j = 2 Тогда Прервать КонецЕсли; Print(\"\" + i + "
         "\"/\" + j) "
         "КонецЦикла КонецЦикла",
         "1/1\n2/1"},
        {"n = 0; While n < 5 Do n = n + 1; If n % 2 Then Continue EndIf; Print(n) EndDo; Пока n Цикл n = 0 "
         "КонецЦикла; n",
         "2\n4\n0"},
        {"a = New Array; a.Add(1); a.Add(2); For Each x In a Do a.Add(x * 10); a[0] = 7; Print(x) EndDo; a",
         "1\n2\nArray [7, 2, 10, 20]"},
        {"m = New Map; m[1] = 2; Для Каждого x Из m Цикл m.Clear(); x.Ключ + x.VALUE КонецЦикла; m",
         "3\nMap {}"},
        {"For Each x In New Array Do EndDo; x", "! 1:35 The variable x has no value yet."},
        {"For Each x In 5 Do EndDo", "! 1:15 A value of the type Number has no elements to walk."},
        {"For i = New Map To 2 Do EndDo", "! 1:9 A value of the type Map cannot be read as a number."},
        {"For i = 1 To Undefined Do EndDo",
         "! 1:14 A value of the type Undefined cannot be read as a number."},
        {"If \"x\" Then EndIf", "! 1:4 A value of the type String is neither true nor false."},
        {"1; Print(2); \"a\"\"b\"; Undefined; Null; '20240101'; Type(\"Map\")",
         "1\n2\n\"a\"\"b\"\nUndefined\nNull\n'20240101000000'\nMap"},
    });
}

TEST_F(InterpreterTest, ObjectsByBothNamesInAnyCase) {
    check({
        {"s = Новый Структура(\"Имя, Age\", \"Ann\", 30); s.Имя + s.имя + s.AGE", "\"AnnAnn30\""},
        {"s = New Structure; s.Вставить(\"k\", New Array); s.K.add(5); s.k.ДОБАВИТЬ(6); s.k.Count(); s",
         "2\nStructure {k: Array [5, 6]}"},
        {"s = New Structure(\"a\", New Structure(\"b\", New Map)); s.a.b[\"x\"] = 1; s.a.b[\"x\"] = "
         "s.a.b[\"x\"] + 1; s[\"a\"][\"B\"]",
         "Map {x: 2}"},
        {"s = New Structure(\"a\", 1); s.a = s.a + 1; s[\"A\"] = s[\"A\"] * 10; s", "Structure {a: 20}"},
        {"New Array(2).Count() + (New Array).Количество(); FromText(ToText(New Map)).Count()", "2\n0"},
        {"m = New Map; m[New Array] = 1; m['20240101'] = 2; m[Undefined] = 3; m[0.5] = 4; m.Count(); "
         "m['20240101']; m[Null]",
         "4\n2\nUndefined"},
        {"a = New Array(3); a[1] = \"x\"; a[2.9] = \"y\"; a", "Array [Undefined, \"x\", \"y\"]"},
        {"DateFractions.Time; True And DateFractions.ВРЕМЯ = DateFractions.Time",
         "DateFractions (Time)\nTrue"},
        {"a.b", "! 1:1 The variable a has no value yet."},
        {"a = 5; a.Count()",
         "! 1:10 A value of the type Number has no properties and methods, so it has no Count."},
        {"New Map.Property", "! 1:9 The type Map has no property Property."},
        {"JoinKind.Iner", "! 1:10 The enumeration JoinKind has no value Iner. Did you mean Inner?"},
        {"a = New Map; a\n .Nothing(1)", "! 2:3 The type Map has no method Nothing."},
        {"a = New Structure(\"a\"); a.b = 1", "! 1:27 The type Structure has no property b."},
        {"a = New Array; a[0]", "! 1:17 The index 0 is out of bounds: the count is 0."},
        {"a = New Array; a[0] = 1", "! 1:17 The index 0 is out of bounds: the count is 0."},
        {"(New FixedArray(New Array(1)))[0] = 1",
         "! 1:31 A value of the type Fixed array has no elements in brackets."},
        {"a = 5; a[0]; ", "! 1:9 A value of the type Number has no properties and methods, so it has no 0."},
        {"New Nothing(1)", "! 1:1 There is no type Nothing."},
        {"New Number", "! 1:1 Scripts cannot make values of the type Number."},
        {"New Map(1, 2, 3)", "! 1:1 A value of the type Map cannot be made of that many arguments."},
        {"Nothing(1)", "! 1:1 There is no function Nothing."},
        {"DateFractions = 5; DateFractions", "5"}, // a variable hides what is global
    });
}

TEST_F(InterpreterTest, ArgumentsInAndOut) {
    check({
        {"s = New Structure(\"a\", 7); s.Property(\"a\", v); v; s.Property(\"b\", v); v",
         "True\n7\nFalse\n7"},
        {"s = New Structure(\"a\", 7); m = New Map; s.Property(\"a\", m[\"got\"]); m; s.Property(\"a\", s.a)",
         "True\nMap {got: 7}\nTrue"},
        {"s = New Structure(\"a\", 7); s.Property(\"a\", 1 + 1); s.Property(\"a\"); s.Property(\"a\",)",
         "True\nTrue\nTrue"},
        {"a = New Array; a.Insert(0, 1); a.Insert(, 5); a", "! 1:34 Insert needs its parameter Index."},
        {"s = New Structure; s.Insert(\"a\"); s.Insert(\"b\",); s", "Structure {a: Undefined, b: Undefined}"},
        {"New Structure(\"a,b\",,2)", "Structure {a: Undefined, b: 2}"},
        {"New Map.Count(1)", "! 1:9 Too many arguments: the method Count takes at most 0."},
        {"New Map.Count(,)", "! 1:9 Too many arguments: the method Count takes at most 0."},
        {"New Map.Insert()", "! 1:9 Insert needs its parameter Key."},
        {"Left(5, 1)", "! 1:1 Left: the parameter Text does not take a value of the type Number: 5."},
        {"New Array(2, \"x\")",
         "! 1:1 Array: the parameter Size2 does not take a value of the type String: \"x\"."},
        {"Новый Массив(-1)", "! 1:1 Массив: the parameter SizeOrArray does not take this value: -1."},
        {"Print(); x = Print(5); x", "\n5\nUndefined"},
    });
}

TEST_F(InterpreterTest, Functions) {
    check({
        {"StrLen(\"añ𝄞\"); Лев(\"abc\", 2); Left(\"abc\", 99); Left(\"abc\", -1)",
         "4\n\"ab\"\n\"abc\"\n\"\""},
        {"Mid(\"abcdef\", 2, 3); Сред(\"abc\", 2); Mid(\"abc\", 0, 1); Mid(\"abc\", 9)",
         "\"bcd\"\n\"bc\"\n\"a\"\n\"\""},
        {"ВРег(\"straße\"); Lower(\"ЁЖ\"); TrimAll(\"  a b\t\"); Pad(\"ab\", 4) + \"|\"; Pad(5, -3)",
         "\"STRASSE\"\n\"ёж\"\n\"a b\"\n\"ab  |\"\n\"  5\""},
        {"Number(\"1.50\"); String(1.50); Date(\"2024-02-29 00:00:00\"); Round(2.345, 2); Окр(1250, -2)",
         "1.5\n\"1.5\"\n'20240229000000'\n2.35\n1300"},
        {"Date(\" 20240229 \"); Date(\"2024-02-29\"); Date(\"20240229130507\")",
         "'20240229000000'\n'20240229000000'\n'20240229130507'"},
        {"Date(\"20240230\")", "! 1:1 Date: \"20240230\" is not a date (parameter Value)."},
        {"Date(\"2024022\")", "! 1:1 Date: \"2024022\" is not a date (parameter Value)."},
        {"Number(\"x\")", "! 1:1 Number: \"x\" is not a number (parameter Value)."},
        {"Round(1, 5000)", "! 1:1 Round: the parameter Digits does not take this value: 5000."},
        {"TypeOf(1); ТипЗнч(New Map); TypeOf(Type(\"Map\"))", "Number\nMap\nType"},
        {"TypeOf(CurrentDate()); CurrentDate() > '20240101'; Elapsed() >= 0", "Date\nTrue\nTrue"},
        {"FromText(\"{\"\"N\"\",5}\"); ToText(5.25); ИзТекста(ВТекст(\"a\"\"b\"))",
         "5\n\"{\"\"N\"\",5.25}\"\n\"a\"\"b\""},
        {"FromText(\"{\"\"N\"\",\")", "! 1:1 The text is malformed in line 1, column 6: Expected a list, a "
                                      "string in quotes, a number or an "
                                      "id."},
        {"FromText(\"{1,\n|2 3}\")",
         "! 1:1 The text is malformed in line 2, column 3: Expected a comma or the end of "
         "the list."},
        {"FromText(\"{1}\")",
         "! 1:1 The text is not a well-formed brace list, or holds something else than was expected."},
        {"Base64String(\"core\"); Base64Value(\"Y29yZQ==\") = New BinaryData(\"core\")",
         "\"Y29yZQ==\"\nTrue"},
    });
}

TEST_F(InterpreterTest, FilesKeepTheirOldContentWhenSavingFails) {
    Session session;
    const std::string file = testing::TempDir() + "corehost-текст.txt";
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    const auto quoted = '"' + file + '"';
    EXPECT_EQ(session.run("SaveText(" + quoted + ", \"раз\"); LoadText(" + quoted + ")"), "\"раз\"");
    EXPECT_EQ(session.run("SaveText(" + quoted + ", 5)"),
              "! 1:1 SaveText: the parameter Text does not take a value of the type Number: 5.");
    EXPECT_EQ(session.run("LoadText(" + quoted + ")"), "\"раз\"");
    std::ofstream(path, std::ios::binary) << "\xEF\xBB\xBFok";
    EXPECT_EQ(session.run("LoadText(" + quoted + ")"), "\"ok\""); // without the byte order mark
    std::ofstream(path, std::ios::binary) << "\xFF\xFE";
    EXPECT_TRUE(session.run("LoadText(" + quoted + ")").starts_with("! 1:1 "));
    std::filesystem::remove(path);
    EXPECT_TRUE(session.run("LoadText(" + quoted + ")").starts_with("! 1:1 The file "));
    EXPECT_TRUE(session.run("SaveText(\"/no/such/folder/x\", \"\")").starts_with("! 1:1 The file "));
}

TEST_F(InterpreterTest, AFailureLeavesWhatWasDone) {
    Session session;
    EXPECT_EQ(session.run("a = 1; b = New Array; b.Add(5)"), "");
    EXPECT_EQ(session.run("c = 1; a = 2; b.Add(a); a = nothing; a = 3"),
              "! 1:29 The variable nothing has no value yet.");
    EXPECT_EQ(session.run("a; b; c"), "2\nArray [5, 2]\n1");
    EXPECT_EQ(session.run("a = 5 a"),
              "! 1:6 Expected “;” between two statements."); // nothing of it is carried out
    EXPECT_EQ(session.run("A; b[0] = b.Missing(); b"), "2\n! 1:13 The type Array has no method Missing.");
    EXPECT_EQ(session.run("b"), "Array [5, 2]");
    EXPECT_EQ(
        session.run("d = '20240230'"),
        "! 1:5 A date is 8 or 14 digits between single quotes: year, month, day, and hour, minute, second.");
}

TEST_F(InterpreterTest, MessagesInTheUsersLanguage) {
    Thread::setResourceLocale(Locale("ru"));
    check({
        {"a.b", "! 1:1 Переменная a ещё не имеет значения."},
        {"New Map.Нет()", "! 1:9 У типа Соответствие нет метода Нет."},
        {"New Map.Нет", "! 1:9 У типа Соответствие нет свойства Нет."},
        {"Нет()", "! 1:1 Функция Нет не найдена."},
        {"New Нет", "! 1:1 Тип не определён: Нет."},
        {"1 / 0", "! 1:3 Деление на ноль."},
    });
    Thread::setResourceLocale(Locale("en"));
}

TEST_F(InterpreterTest, CanBeInterruptedAnywhere) {
    for (const char* endless :
         {"While True Do EndDo", "For i = 1 To 1000000000000 Do EndDo",
          "While True Do If False Then EndIf EndDo", "While True Do While 1 = 1 Do Continue EndDo EndDo"}) {
        Session session;
        std::atomic<bool> done = false;
        std::thread other([&] {
            while (!done)
                session.engine().interrupt();
        });
        const std::string answer = session.run(endless);
        done = true;
        other.join();
        EXPECT_NE(answer.find("The script was interrupted."), std::string::npos) << endless;
    }
}

TEST_F(InterpreterTest, NothingAScriptBuildsOverflowsTheStack) {
    const std::string deep = "a = New Array; For i = 1 To 100000 Do b = New Array; b.Add(a); a = b; EndDo; ";
    check({
        {deep + "b = 0; a = 0; \"done\"", "\"done\""},
        {deep + "ToText(a)", "! 1:78 Values stand inside each other more than 1000 levels deep."},
        {deep + "ToJson(a)", "! 1:78 JSON is nested more than 1000 levels deep."},
        {deep + "a", "Array [Array [Array [Array […]]]]"},
    });
    Session session;
    EXPECT_EQ(session.run("a = New Array; a.Add(a); a[0][0][0].Count(); ToJson(a)"),
              "1\n! 1:46 JSON is nested more than 1000 levels deep.");
    EXPECT_EQ(session.run("a; a.Clear()"),
              "Array [Array [Array [Array […]]]]"); // a circle is never let go of
}

TEST_F(InterpreterTest, LongValuesAreShownInPart) {
    const std::string answer = Session().run("a = New Array; For i = 1 To 100000 Do a.Add(i) EndDo; a");
    EXPECT_LT(answer.size(), 700U);
    EXPECT_TRUE(answer.starts_with("Array [1, 2, 3,") && answer.ends_with(", …]")) << answer;
    EXPECT_LT(Session().run("Pad(\"\", 9999)").size(), 250U);
}

} // namespace
} // namespace core::script
