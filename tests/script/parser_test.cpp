// SPDX-License-Identifier: Apache-2.0
// The script reader: every construct in both languages, precedence, what is refused and where, and that no
// text, however deep, long or broken, does harm.
#include "host/language/parser.h"
#include "tests/script/script_dump.h"

#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace core::script {
namespace {

std::shared_ptr<const Source> source(std::string_view text) {
    return std::make_shared<Source>(u"test", from_utf8(text));
}

std::string tree(std::string_view text, Mode mode = Mode::file) {
    return Dump(parse(source(text), mode)).all();
}

std::string repeat(std::string_view text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

class ParserTest : public testing::Test {
  protected:
    /// "line:column message", or the tree when nothing is wrong.
    static std::string refusal(std::string_view text) {
        const auto script = source(text);
        try {
            return Dump(parse(script)).all();
        } catch (const ScriptError& e) {
            const Position at = script->position(e.span().offset);
            return std::to_string(at.line) + ":" + std::to_string(at.column) + " " + e.what();
        }
    }

    const host::HostProcess process_;
};

TEST_F(ParserTest, EveryStatementInBothLanguages) {
    const std::string loops = "each x M {if (x.Value>3) {break;} if x {continue;} else {Print(x);}}";
    EXPECT_EQ(tree("For Each x In M Do If x.Value > 3 Then Break; ElsIf x Then Continue Else Print(x); "
                   "EndIf; EndDo"),
              loops);
    EXPECT_EQ(
        tree("для каждого x Из M ЦИКЛ Если x.Value > 3 тогда Прервать ИначеЕсли x Тогда ПРОДОЛЖИТЬ;; Иначе "
             "Print(x) КонецЕсли КонецЦикла;"),
        loops);
    EXPECT_EQ(tree("for i = 1 to n - 1 do while not a and b do enddo; enddo"),
              "for i 1..(n-1) {while (!a&b) {}}");
    EXPECT_EQ(tree("Для i = 1 По n - 1 Цикл Пока Не a И b Цикл КонецЦикла КонецЦикла"),
              "for i 1..(n-1) {while (!a&b) {}}");
    EXPECT_EQ(tree("a = TRUE; a = ложь; a = неопределено; a = null; a = новый Массив(2)"),
              "a:=True; a:=False; a:=Undefined; a:=Null; a:=New Массив(2);");
    EXPECT_EQ(tree("If a Then EndIf"), "if a {} else {}");
    EXPECT_EQ(tree("Return; If a Then Return EndIf; Возврат a + 1"),
              "return; if a {return;} else {} return (a+1);");
    EXPECT_EQ(tree(";; // nothing\n ;"), "");
}

TEST_F(ParserTest, ProceduresInBothLanguages) {
    EXPECT_EQ(tree("P(1); Procedure P(a, Val b, c = -1.5) Export Var i; Sum = a + x; F(b); Return; "
                   "EndProcedure Function F(t = \"z\") Return F() EndFunction Var Sum; Sum = 0"),
              "procedure P(a,b=,c:-1.5)! i Sum& x^ {i:=Undefined; Sum:=(a+x); @F(b); return;} "
              "function F(t:\"z\") {return @F();} @P(1); Sum:=0;");
    EXPECT_EQ(tree("Процедура P(Знач Val, Val2) Экспорт КонецПроцедуры; ФУНКЦИЯ Ф() Возврат 1 КонецФункции"),
              "procedure P(Val=,Val2)! {} function Ф() {return 1;}");
    EXPECT_EQ(tree("Import \"a.script\"; Импорт \"b\"; x = 1"), "import a.script; import b; x:=1;");
    EXPECT_EQ(tree("Try a = 1 Except Raise; Raise Error.Text EndTry; Попытка f() Исключение "
                   "ВызватьИсключение \"x\" + Ошибка КонецПопытки; Raise (\"y\")"),
              "try {a:=1;} except {raise; raise #error1.Text;} try {f();} except {raise (\"x\"+#error1);} "
              "raise \"y\";");
    EXPECT_EQ(tree("AddHandler T.RowAdded, OnAdd; УдалитьОбработчик a.b[0].Cleared, x"),
              "add T.RowAdded OnAdd; remove a.b[0].Cleared x;");
    EXPECT_EQ(tree("#!/usr/bin/env corehost\nx = 1"), "x:=1;");
}

TEST_F(ParserTest, NewWordsAreNamesWhereNoStatementOfTheirsStands) {
    for (const char* const word :
         {"Procedure", "EndProcedure", "Function", "EndFunction", "Val", "Export", "Var", "Try", "Except",
          "EndTry", "Raise", "Import", "AddHandler", "RemoveHandler", "Процедура", "Попытка", "Знач"}) {
        const std::string w(word);
        EXPECT_EQ(tree(w + " = 1; " + w + ".x = " + w + " + 1; " + w + "[0] = " + w + ".y(" + w + ")"),
                  w + ":=1; " + w + ".x:=(" + w + "+1); " + w + "[0]:=" + w + ".y(" + w + ");");
        EXPECT_EQ(tree("For " + w + " = 1 To 2 Do x = " + w + " EndDo"),
                  "for " + w + " 1..2 {x:=" + w + ";}");
    }
    EXPECT_EQ(tree("Try(1); Function(2); x = Raise(3)"), "Try(1); Function(2); x:=Raise(3);");
    EXPECT_EQ(tree("Try Except = 1; Try = 2 Except EndTry = 3 EndTry"),
              "try {Except:=1; Try:=2;} except {EndTry:=3;}");
}

TEST_F(ParserTest, RefusesProceduresThatMakeNoSense) {
    EXPECT_EQ(refusal("If a Then Procedure P() EndProcedure EndIf"),
              "1:11 “Procedure” stands at the top level of a script only.");
    EXPECT_EQ(refusal("Procedure P() Function F() EndFunction EndProcedure"),
              "1:15 “Function” stands at the top level of a script only.");
    EXPECT_EQ(refusal("Procedure P() Return 1 EndProcedure"),
              "1:22 A procedure returns no value; a function does.");
    EXPECT_EQ(refusal("Procedure P()\nEndFunction"),
              "2:1 Expected “EndProcedure/КонецПроцедуры”, found “EndFunction”.");
    EXPECT_EQ(refusal("Procedure P() EndProcedure Function p() EndFunction"),
              "1:37 The script has a procedure p already.");
    EXPECT_EQ(refusal("Function F(a, A) EndFunction"), "1:15 The procedure has a parameter A already.");
    EXPECT_TRUE(refusal("Function F(a = b) EndFunction").starts_with("1:16 A default is a constant"));
    EXPECT_TRUE(refusal("Try a = 1; Raise EndTry").starts_with("1:12 Raise needs a value"));
    EXPECT_EQ(refusal("Try a = 1 EndTry"), "1:11 Expected “Except/Исключение”, found “EndTry”.");
    EXPECT_EQ(refusal("EndTry"), "1:1 Expected a statement, found “EndTry”.");
    EXPECT_TRUE(refusal("AddHandler T, P").starts_with("1:12 Expected an object and one of its events"));
    EXPECT_EQ(refusal("Import a"), "1:8 Expected the name of a file in quotes, found “a”.");
    EXPECT_EQ(refusal("While a Do Procedure = 1; Break EndDo; Function F() Break EndFunction"),
              "1:53 “Break” stands outside of a loop.");
    EXPECT_NE(refusal(repeat("Try ", 20000)).find("Nested more"), std::string::npos);
}

TEST_F(ParserTest, OperationsBindAsInSchool) {
    EXPECT_EQ(tree("x = a + b * -c - d / e % f"), "x:=((a+(b*-c))-((d/e)%f));");
    EXPECT_EQ(tree("x = Not a = b And c <> d Or Not Not e"), "x:=((!(a=b)&(c<>d))|!!e);");
    EXPECT_EQ(tree("x = a <= b + 1 = +c"), "x:=((a<=(b+1))=c);");
    EXPECT_EQ(tree("x = (a or b) and (c + d) * 2 >= 7"), "x:=((a|b)&(((c+d)*2)>=7));");
}

TEST_F(ParserTest, ChainsCallsAndOmittedArguments) {
    EXPECT_EQ(tree("f(); f(,); f(a,,-b); f(,x)"), "f(); f(_,_); f(a,_,-b); f(_,x);");
    EXPECT_EQ(tree("a.b.c(1)[d+1].e = New M"), "a.b.c(1)[(d+1)].e:=New M();");
    EXPECT_EQ(tree("a[b[0]] = New Array(3).Count() + (c).d"), "a[b[0]]:=(New Array(3).Count()+c.d);");
    EXPECT_EQ(tree("a.If.In(); a.В = New Not"),
              "a.If.In(); a.В:=New Not();"); // words after "." and New are names
}

TEST_F(ParserTest, LiteralsKeepTheirText) {
    EXPECT_EQ(tree("a = 007.50; b = 123456789012345678901234567890.1; c = '20240229'; d = '20240229235959'"),
              "a:=7.5; b:=123456789012345678901234567890.1; c:='20240229000000'; d:='20240229235959';");
    EXPECT_EQ(tree(R"(a = ""; b = """"; c = "x""y//z";)"), R"(a:=""; b:="""; c:="x"y//z";)");
    EXPECT_EQ(tree("a = \"one\n\t |two\r\n|\"\"three\";"), "a:=\"one\ntwo\n\"three\";");
    EXPECT_EQ(tree("\uFEFFa\u00A0=\u20031 // 𝄞"), "a:=1;"); // a byte order mark, wide blanks
}

TEST_F(ParserTest, NamesAreOneWhateverTheirCase) {
    EXPECT_EQ(tree("Счет = 1; СЧЕТ = счет + Straße; STRASSE = 2"),
              "Счет:=1; Счет:=(Счет+Straße); Straße:=2;");
}

TEST_F(ParserTest, RefusesAtThePlaceWhereItIsWrong) {
    EXPECT_EQ(refusal("a = 1\n\n  b = 2;"), "1:6 Expected “;” between two statements.");
    EXPECT_EQ(refusal("a = 1;\r\n  b = );"), "2:7 Expected a value, found “)”.");
    EXPECT_EQ(refusal("\rIf 𝄞a"), "2:4 This character has no meaning in a script.");
    EXPECT_EQ(refusal("\"𝄞\" = a"), "1:1 Only a variable, a property or an element can be assigned to.");
    EXPECT_EQ(refusal("f(\"𝄞\", "), "1:8 Expected a value, found the end of the text.");
    EXPECT_EQ(refusal("Whle a > 1 Do"), "1:1 There is no statement Whle. Did you mean While?");
    EXPECT_EQ(refusal("Дял i = 1 По 2 Цикл"), "1:1 There is no statement Дял. Did you mean Для?");
    EXPECT_EQ(refusal("If a"), "1:5 Expected “Then/Тогда”, found the end of the text.");
    EXPECT_EQ(refusal("For If"), "1:5 Expected a name, found “If”.");
    EXPECT_EQ(refusal("a.b() = 1"), "1:1 Only a variable, a property or an element can be assigned to.");
    EXPECT_EQ(refusal("x; a + b()"),
              "1:1 This value is computed and not used; a statement is an assignment or a call.");
    EXPECT_EQ(refusal("EndDo"), "1:1 Expected a statement, found “EndDo”.");
    EXPECT_EQ(refusal("For i = 1 To 2 Do EndDo; Продолжить"), "1:26 “Продолжить” stands outside of a loop.");
    EXPECT_EQ(refusal("a = 12b3"), "1:5 A letter stands directly behind a number.");
    for (const char* date : {"a='2024'", "a='20240101", "a='2024-01-01'", "a='202401010000005'", "a=''"})
        EXPECT_TRUE(refusal(date).starts_with("1:3 A date is")) << date;
    for (const char* open : {"a=\"x", "a=\"x\n", "a=\"x\n y\"", "a=\"", "a=\"\"\"", "a=\"x\n|y"})
        EXPECT_TRUE(refusal(open).find(" This string is not closed") != std::string::npos) << open;
    EXPECT_TRUE(refusal(std::string("a = \0", 5)).starts_with("1:5 This character"));
}

TEST_F(ParserTest, MessagesFollowTheThreadsLanguage) {
    Thread::setResourceLocale(Locale("ru"));
    EXPECT_EQ(refusal("Если a"), "1:7 Ожидается «Then/Тогда», а стоит конец текста.");
    Thread::setResourceLocale(Locale("en"));
}

TEST_F(ParserTest, DeepNestingIsRefusedAndLengthIsNot) {
    for (const auto& [open, close] :
         {std::pair("(", ")"), {"f(", ")"}, {"a[", "]"}, {"-", ""}, {"Not ", ""}}) {
        const auto nested = [&, o = open, c = close](int n) {
            return "x=" + repeat(o, n) + "a" + repeat(c, n);
        };
        EXPECT_EQ(refusal(nested(150)).find("levels deep"), std::string::npos) << open;
        EXPECT_NE(refusal(nested(20000)).find("Nested more than 200 levels deep."), std::string::npos)
            << open;
    }
    EXPECT_NE(refusal(repeat("If a Then ", 20000)).find("Nested more"), std::string::npos);
    EXPECT_NE(refusal(repeat("While a Do If a Then Else ", 20000)).find("Nested more"), std::string::npos);

    EXPECT_EQ(tree("a = 1" + repeat(" + 1", 20000)).size(),
              20000U * 4 + 5); // one node, whatever its length
    EXPECT_NO_THROW(tree("a" + repeat(".b()", 20000)));
    EXPECT_NO_THROW(tree("f(" + repeat("1,", 20000) + ")"));
    EXPECT_NO_THROW(tree("If a Then " + repeat("ElsIf a Then ", 20000) + "EndIf"));
}

TEST_F(ParserTest, AConsoleShowsValuesAndAsksForTheRest) {
    EXPECT_EQ(tree("1 + 2", Mode::console), "(1+2);");
    EXPECT_EQ(tree("a = 1; a.b + 1; -a", Mode::console), "a:=1; (a.b+1); -a;");
}

/// The tree of an entry that comes in pieces, a line each. All of them are read, and no more is asked for.
std::string entry_tree(const std::vector<std::string>& pieces) {
    const auto text = std::make_shared<Source>(u"test", wstring());
    std::size_t next = 0;
    const auto more = [&](Source& source) {
        if (next == pieces.size())
            ADD_FAILURE() << "more than was there is asked for: " << pieces.back();
        else
            source.append(from_utf8(pieces[next++]));
    };
    more(*text);
    const Program program = parse_entry(text, more);
    EXPECT_EQ(next, pieces.size());
    return Dump(program).all();
}

TEST_F(ParserTest, AnEntryGoesOnUntilItIsComplete) {
    for (const char* const whole : {"For Each x In f( \"\n|a\n\n  |\" , ) Do If Not x.y [ 1 ] And a Then z = "
                                    "( x + 1 ) * 2 ; Else g( 1 ) EndIf EndDo",
                                    "For i = New Array + 1 To - f( ) Do While a Or b Do If a Then ElsIf b "
                                    "Then Continue EndIf EndDo EndDo",
                                    "x=( a . If [ f( , 1 ) ] = '20240101' + New Map ( ) )"}) {
        std::istringstream words(whole);
        std::vector<std::string> pieces;
        for (std::string word; words >> word;)
            pieces.push_back(word);
        EXPECT_EQ(entry_tree(pieces), tree(whole, Mode::console));
    }
    EXPECT_EQ(
        entry_tree({"Function F(a", ", b)", "Try", "Return a", "Except", "Raise", "EndTry", "EndFunction"}),
        "function F(a,b) #error1 {try {return a;} except {raise;}}");
    EXPECT_EQ(entry_tree({"AddHandler", "T.RowAdded", ",", "P"}), "add T.RowAdded P;");
    EXPECT_EQ(entry_tree({"x =", "", "// not yet", "1"}), "x:=1;");
    EXPECT_EQ(entry_tree({"// nothing"}), "");

    const std::tuple<const char*, const char*, const char*> ofManyLines[] = {
        {"If True Then", "a.If = \"EndIf\"; // EndIf", "EndIf"},
        {"x = f(1,", "a.EndDo[1], New Map + // ).", "2)"},
        {"x = \"", " |not the \"\"end\"\"", "|\""},
        {"x = 1 +", "2 + // +", "3"}};
    for (const auto& [first, line, last] : ofManyLines) {
        std::vector<std::string> pieces(5000, line);
        pieces.insert(pieces.begin(), first);
        pieces.push_back(last);
        EXPECT_NE(entry_tree(pieces), "");
    }
}

TEST_F(ParserTest, AnEntryFailsInTheLineThatIsWrong) {
    for (const char* const wrong : {"1x", "]", "EndDo", "y = ;"}) {
        const auto text = std::make_shared<Source>(u"test", wstring(u"If True Then\n"));
        int asked = 0;
        const auto more = [&](Source& source) { source.append(from_utf8(asked++ == 0 ? "x;" : wrong)); };
        EXPECT_THROW((void)parse_entry(text, more), ScriptError) << wrong;
        EXPECT_EQ(asked, 2) << wrong;
    }
    const auto text = std::make_shared<Source>(u"test", wstring(u"x = \"open\n"));
    EXPECT_THROW((void)parse_entry(text, [](Source&) {}), ScriptError) << "the lines have ended";
}

} // namespace
} // namespace core::script
