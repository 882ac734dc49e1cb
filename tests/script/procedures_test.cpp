// SPDX-License-Identifier: Apache-2.0
// Procedures: what is passed in and back, whose variables are whose, depth and other bounds, failures that
// are handled and those that are not, handlers of events, files that import each other, and the end of an
// engine that others still hold procedures of.
#include "tests/script/script_fixture.h"

#include <core/context/callable.h>
#include <core/context/events/event_service.h>
#include <core/runtime/exception_object.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/uncaught.h>
#include <core/values/errors.h>

#include <algorithm>
#include <map>
#include <thread>

namespace core::script {
namespace {

using ProceduresTest = ScriptTest;

TEST_F(ProceduresTest, ArgumentsGoInAndBack) {
    check({
        {"Function Add(a, b = 10) Return a + b EndFunction; Add(1, 2); Add(1); Add(1,); add(\"1\", \"2\")",
         "3\n11\n11\n\"12\""},
        {"Procedure Twice(x) x = x * 2 EndProcedure n = 5; Twice(n); n; Twice(n + 1); n; s = New "
         "Structure(\"a\", 1); Twice(s.a); s.a",
         "10\n10\n1"},
        {"Procedure P(Val x, y) x = 1; y = x EndProcedure a = 5; P(a, a); a; P(a, b); b", "1\n1"},
        {"Процедура Обмен(а, б) Перем в; в = а; а = б; б = в КонецПроцедуры; x = 1; y = 2; ОБМЕН(x, y); x; y",
         "2\n1"},
        {"Function F(n) If n < 2 Then Return n EndIf; Return F(n - 1) + F(n - 2) EndFunction F(15)", "610"},
        {"Function Even(n) If n = 0 Then Return True EndIf; Return Odd(n - 1) EndFunction Function Odd(n) If "
         "n = 0 Then Return False EndIf; Return Even(n - 1) EndFunction Even(100)",
         "True"},
        // a reference reaches through calls, and every call has variables of its own
        {"Procedure Count(n, total) If n > 0 Then total = total + n; Count(n - 1, total) EndIf EndProcedure "
         "t = 0; Count(10, t); t",
         "55"},
        {"Function F(n) local = n; If n > 0 Then F(n - 1) EndIf; Return local EndFunction F(5)", "5"},
        {"Function F() EndFunction; F(); Procedure P() Return; EndProcedure; P(); x = P(); x",
         "Undefined\nUndefined"},
        {"Function F() For i = 1 To 9 Do While True Do If i = 3 Then Return i EndIf; Break EndDo EndDo "
         "EndFunction F()",
         "3"},
        {"Function F(a, b) EndFunction F(1)", "! 1:30 F needs its parameter b."},
        {"Function F(a) EndFunction F(1, 2)", "! 1:27 Too many arguments: the method F takes at most 1."},
        {"Function F(a, b = 1) Return a EndFunction F(, 2)", "! 1:43 F needs its parameter a."},
        {"Function F(a) Return a EndFunction F(nothing)", "! 1:22 The variable a has no value yet."},
        {"Function F(Val a) Return a EndFunction F(nothing)",
         "! 1:42 The variable nothing has no value yet."},
        {"Function F(a) Return AllowedSign.Any = a EndFunction F(AllowedSign.Any)", "True"},
    });
}

TEST_F(ProceduresTest, VariablesOfTheScriptAreReadAndThoseOfVarShared) {
    check({
        {"Rate = 3; Function F(x) Return x * Rate EndFunction F(2)", "6"},
        {"n = 1; Procedure P() n = 2; m = 3 EndProcedure P(); n; m",
         "1\n! 1:56 The variable m has no value yet."},
        {"Var n; Procedure P() n = 2 EndProcedure n = 1; P(); n; Procedure Q() R(n) EndProcedure Procedure "
         "R(x) x = 7 EndProcedure Q(); n",
         "2\n7"},
        {"Procedure P() Print(n); EndProcedure Var n; P()", ""},
        {"Var n; Procedure P() Var n; n = 2 EndProcedure n = 1; P(); n", "1"},
        {"n = 1; Procedure Change(x) x = 5 EndProcedure Procedure P() Change(n) EndProcedure P(); n", "1"},
        {"Function F() n = n + 1; Return n EndFunction n = 1; F()",
         "! 1:18 The variable n has no value yet."},
        {"x = 1; Function F() Function = x; Return Function EndFunction F()", "1"},
    });
    Session session;
    session.engine().set("Rate", 2);
    EXPECT_EQ(session.run("Function F(x) Return x * Rate EndFunction"), "");
    EXPECT_EQ(session.run("Rate = 4; F(10)"), "40") << "an entry later";
    EXPECT_EQ(session.run("Function F(x) Return x EndFunction; F(10)"), "10");
    EXPECT_EQ(session.engine().run("Return F(1) + 1"), Value(2));
}

TEST_F(ProceduresTest, AreValues) {
    check({
        {"Function Twice(x) Return x * 2 EndFunction F = Twice; F(4); Map(F.A, F)",
         "8\n! 1:67 The type Procedure has no property A."},
        {"Function T(x) Return x * 2 EndFunction Function Apply(F, x) Return F(x) EndFunction Apply(T, 5); "
         "Print(T = T); TypeOf(T); T",
         "10\nYes\nProcedure\nProcedure (T)"},
        {"Function Left(a) Return \"mine\" EndFunction Left(1); Print = 5; Print(Print)", "\"mine\"\n5"},
        {"A = New Array; For i = 1 To 5 Do A.Add(i) EndDo; Function Odd(n) Return n % 2 = 1 EndFunction "
         "Function Sq(n) Return n * n EndFunction Function Add(a, b) Return a + b EndFunction Filter(A, "
         "Odd); "
         "Map(A, Sq); Reduce(A, Add, 0)",
         "Array [1, 3, 5]\nArray [1, 4, 9, 16, 25]\n15"},
        {"A = StrSplit(\"bb,a,ccc\", \",\"); Sort(A); A; Sort(A, , True); A; Sort(A, StrLength); A; Function "
         "StrLength(s) Return StrLen(s) EndFunction",
         "Array [\"a\", \"bb\", \"ccc\"]\nArray [\"ccc\", \"bb\", \"a\"]\nArray [\"a\", \"bb\", \"ccc\"]"},
        {"A = New Array; A.Add(1); Function Bad(x) Return x / 0 EndFunction Map(A, Bad)",
         "! 1:51 Division by zero."},
        {"Function F(a, b) EndFunction Map(New Array, F)",
         "! 1:30 Map: the parameter Function does not take this value: Procedure (F)."},
        {"Procedure P(x) EndProcedure P1 = P; P1(1, 2)",
         "! 1:37 Too many arguments: the method P takes at most 1."},
        {"F = 5; F(1)", "! 1:8 There is no function F."},
    });
}

TEST_F(ProceduresTest, RecursionEndsAtABound) {
    Session session;
    EXPECT_EQ(
        session.run("Function F(n) If n = 0 Then Return 0 EndIf; Return 1 + F(n - 1) EndFunction F(1000)"),
        "1000");
    EXPECT_NE(session.run("F(1000000)").find("stand inside each other"), std::string::npos);
    EXPECT_NE(session.run("Procedure P() P() EndProcedure P()").find("stand inside each other"),
              std::string::npos);
    EXPECT_NE(session.run("Procedure P() Try P() Except P() EndTry EndProcedure P()").find("stand inside"),
              std::string::npos)
        << "a bound is not handled";
    EXPECT_NE(session.run("A = New Array; A.Add(1); Function M(x) Return Map(A, M) EndFunction M(1)")
                  .find("stand inside"),
              std::string::npos)
        << "through the library";
    EXPECT_EQ(session.run("F(3)"), "3");
    std::thread small([&] { EXPECT_EQ(session.run("F(100)"), "100"); });
    small.join();
    session.engine().limits({.steps = 100});
    EXPECT_NE(session.run("Procedure L() While True Do Try x = 1 / 0 Except EndTry EndDo EndProcedure L()")
                  .find("The script has taken the 100 steps"),
              std::string::npos);
}

TEST_F(ProceduresTest, FailuresAreHandled) {
    check({
        {"Try x = 1 / 0; Print(1) Except Print(Error.Text); Print(Error.Class); Print(Error.Id) EndTry; 2",
         "Division by zero.\nNumericException\nIDS_NUMERROR_DIVIDEBYZERO\n2"},
        {"Попытка\n  ВызватьИсключение \"беда\" Исключение Сообщить(Ошибка.Текст); Сообщить(Ошибка.Строка); "
         "Сообщить(Ошибка.Колонка); Сообщить(Ошибка.Файл); Ошибка.Параметры; Ошибка.Причина КонецПопытки",
         "беда\n2\n3\ntest\nArray [\"беда\"]\nUndefined"},
        {"Try Raise \"inner\" Except Try Raise \"outer\" Except Print(Error.Text); Print(Error.Cause.Text) "
         "EndTry; Print(Error.Text) EndTry",
         "outer\ninner\ninner"},
        {"Try Raise \"inner\" Except Raise \"outer\" EndTry", "! 1:26 outer"},
        {"Try\n Raise 5 Except Raise EndTry", "! 2:2 5"},
        {"Try\n x = nothing; Except E = Error EndTry; E.Text; TypeOf(E); Raise E",
         "\"The variable nothing has no value yet.\"\nError\n! 2:6 The variable nothing has no value yet."},
        {"Procedure P() Raise \"deep\" EndProcedure Function F() Try P() Except Return Error.Text EndTry "
         "EndFunction F()",
         "\"deep\""},
        {"For i = 1 To 3 Do Try If i = 2 Then Raise i EndIf; Continue Except Break EndTry EndDo; i", "2"},
        {"Try Error = 1; Print(Error) Except EndTry; Error", "1\n1"},
        {"Try a = New Array; a[3] Except Error.Parameters EndTry", "Array [\"3\", \"0\"]"},
        {"Try x = 1 Except EndTry; x", "1"},
    });
    Session session;
    session.engine().function("Fetch", [](int n) {
        if (n == 0)
            throw std::runtime_error("no connection");
        throw_error<TypeException>(messages::kTypeNotDefined, {u"X"});
    });
    EXPECT_EQ(session.run("Try Fetch(0) Except Print(Error.Id); Print(Error.Cause.Text) EndTry; Try Fetch(1) "
                          "Except Print(Error.Class); Error.Parameters EndTry"),
              "IDS_SCRIPT_FOREIGN_FAILURE\nno connection\nTypeException\nArray [\"X\"]");
    session.engine().function("Stop", [&] { session.engine().interrupt(); });
    EXPECT_NE(session.run("Try Stop(); x = 1 Except Print(\"handled\") EndTry").find("interrupted"),
              std::string::npos);
    // a run inside a handler does not take its failure away
    session.engine().function("Inner", [&] { session.engine().run("Try Raise 1 Except EndTry"); });
    EXPECT_EQ(session.run("Try Raise \"mine\" Except Inner(); Print(Error.Text) EndTry"), "mine");
}

TEST_F(ProceduresTest, ExitEndsTheScriptWhateverItSays) {
    Engine engine;
    engine.set("x", 0);
    EXPECT_EQ(engine.run("Procedure P() Try Exit(3) Except EndTry EndProcedure P(); x = 1"), Value(3));
    EXPECT_EQ(engine.exitCode(), 3);
    EXPECT_EQ(engine.get<int>("x"), 0);
    engine.run("A = New Array; A.Add(1); Function F(y) Exit() EndFunction Map(A, F); x = 1");
    EXPECT_EQ(engine.exitCode(), 0);
    EXPECT_EQ(engine.get<int>("x"), 0);
    engine.run("T = New ValueTable; Procedure Bye() Exit(7) EndProcedure AddHandler T.RowAdded, Bye; R = "
               "T.Add(); x = 1");
    EXPECT_EQ(engine.exitCode(), 7);
    EXPECT_EQ(engine.get<int>("x"), 0);
    engine.run("x = 2");
    EXPECT_FALSE(engine.exitCode());
    EXPECT_THROW(engine.run("Exit(256)"), Error);
    const wstring arguments[] = {u"a", u"б"};
    engine.arguments(arguments);
    EXPECT_EQ(engine.run("Function F() Return Arguments[1] EndFunction Return F()").presentation(), u"б");
}

TEST_F(ProceduresTest, HandlersOfEvents) {
    check({
        {"T = New ValueTable; C = T.Columns.Add(\"A\"); Log = New Array; Procedure Added(i) Log.Add(i) "
         "EndProcedure AddHandler T.RowAdded, Added; R = T.Add(); R = T.Add(); RemoveHandler "
         "T.ПриДобавленииСтроки, "
         "Added; R = T.Add(); Log",
         "Array [0, 1]"},
        {"S = New Structure(\"T\", New ValueTable); n = 0; Var n; Procedure Any() n = n + 1 EndProcedure "
         "ДобавитьОбработчик S.T.Cleared, Any; AddHandler S.T.Cleared, Any; S.T.Clear(); n",
         "2"},
        {"T = New ValueTable; Procedure P(a, b) EndProcedure AddHandler T.RowAdded, P",
         "! 1:65 The event RowAdded has too few arguments for the method P: 1 of 2."},
        {"T = New ValueTable; Procedure P() EndProcedure AddHandler T.RowAddet, P",
         "! 1:61 The object has no event RowAddet. Did you mean RowAdded?"},
        {"T = New ValueTable; Procedure P() EndProcedure RemoveHandler T.Sorted, P",
         "! 1:64 The procedure P does not handle the event Sorted."},
        {"M = New Map; AddHandler M.Changed, 5", "! 1:36 A value of the type Number is not a procedure."},
        {"M = New Map; Procedure P() EndProcedure AddHandler M.Changed, P",
         "! 1:54 The object has no events."},
    });
}

/// Keeps what nobody has caught.
class Uncaught : public IUncaughtExceptions {
  public:
    using Interfaces = InterfaceList<IUncaughtExceptions>;
    void uncaught(IExceptionObject* failure, const wstring& where) override {
        const auto* const error = dynamic_cast<const Error*>(&failure->exception());
        told += to_utf8(where) + " " + (error != nullptr ? std::to_string(error->line()) : "?") + ": " +
                failure->exception().what() + "\n";
    }
    std::string told;
};

TEST(Handlers, AFailureIsReportedWithTheEventAndTheScriptGoesOn) {
    host::HostProcess process;
    const auto uncaught = make_object<Uncaught>();
    process.offerService(IUncaughtExceptions::IID, uncaught.get());
    Session session;
    EXPECT_EQ(session.run("T = New ValueTable; Procedure Bad()\n Raise \"bad\" EndProcedure AddHandler "
                          "T.RowAdded, Bad; R = T.Add(); T.Count()"),
              "1");
    EXPECT_EQ(uncaught->told, "handler of the event RowAdded 2: bad\n");
    uncaught->told.clear();
    // an interrupt stops what stands around the handler, too
    session.engine().function("Stop", [&] { session.engine().interrupt(); });
    EXPECT_NE(session
                  .run("Procedure Stops() Stop(); x = 1 EndProcedure AddHandler T.Cleared, Stops; T.Clear(); "
                       "While True Do EndDo")
                  .find("interrupted"),
              std::string::npos);
}

TEST(Handlers, EndWithTheEngineAndHoldNoneAlive) {
    const auto live = [] {
        std::map<std::string, std::int64_t> counts;
        for (const LiveClass& left : live_report())
            counts[left.name] = left.count;
        return counts;
    };
    const host::HostProcess process;
    const auto use = [] {
        GenericValue table;
        GenericValue procedure;
        {
            Engine engine;
            engine.run(
                "T = New ValueTable; N = New Array; Procedure Added() N.Add(1) EndProcedure AddHandler "
                "T.RowAdded, Added; P = Added; N.Add(P); N.Add(T); N.Add(N)");
            table = engine.get("T");
            procedure = engine.get("P");
            engine.run("R = T.Add(); N.Clear()");
        }
        const auto context = table.query<IContext_>();
        context->call(context->findMethod(u"Add"), nullptr, nullptr); // no handler any more
        EXPECT_THROW(procedure.query<ICallable>()->call({}), ContextException) << "the engine has ended";
    };
    use();
    const auto before = live();
    for (int i = 0; i < 20; ++i)
        use();
    EXPECT_EQ(live(), before);
}

/// An engine whose files are these texts.
class Files {
  public:
    explicit Files(std::map<std::string, std::string> files) : files_(std::move(files)) {
        session_.engine().input([this](wstring_view name) -> Bytes {
            ++opened;
            const auto found = files_.find(to_utf8(name));
            if (found == files_.end())
                throw_error<ContextException>("IDS_HOST_NO_INNER_FILE", {wstring(name)});
            return [left = std::string_view(found->second)](std::span<std::byte> bytes) mutable {
                const std::size_t count = left.copy(reinterpret_cast<char*>(bytes.data()), bytes.size());
                left.remove_prefix(count);
                return count;
            };
        });
    }
    std::string run(std::string_view text) { return session_.run(text); }
    std::map<std::string, std::string>& files() { return files_; }

    int opened = 0;

  private:
    std::map<std::string, std::string> files_;
    Session session_;
};

TEST_F(ProceduresTest, FilesAreImported) {
    Files files(
        {{"lib/a.script", "Import \"b.script\"; Import \"../c.script\"; Var Calls; Calls = 0; Function A(x) "
                          "Export Calls = Calls + 1; Return B(x) + C() + Calls EndFunction Procedure "
                          "Private() EndProcedure"},
         {"lib/b.script", "Import \"../c.script\"; Function B(x) Return Helper(x) * 10 EndFunction Function "
                          "Helper(x) Return x EndFunction"},
         {"c.script", "#!corehost\nn = 0; Var n; Function C() n = n + 1; Return n / 1000 EndFunction"},
         {"bad.script", "\n\nFunction Bad(x)\n Return x / 0 EndFunction"},
         {"broken.script", "x = 1;\n y = )"},
         {"one.script", "Import \"./two.script\""},
         {"two.script", "Import \"one.script\""},
         {"three.script", "Function A(x) EndFunction"}});
    EXPECT_EQ(files.run("Import \"lib/a.script\"; A(2); A(2); Calls = 100; A(2); B(1)"),
              "21.001\n22.002\n23.003\n! 1:55 There is no function B.");
    EXPECT_EQ(files.opened, 3) << "each once";
    EXPECT_EQ(files.run("A(1)"), "14.004") << "an entry later";
    EXPECT_EQ(files.run("Import \"lib/a.script\"; A(1)"), "15.005") << "it has not changed, so it goes on";
    files.files()["c.script"] = "Function C() Return 0.5 EndFunction";
    files.files()["lib/a.script"] += " // changed";
    EXPECT_EQ(files.run("Import \"lib/a.script\"; A(1)"), "11.5");
    EXPECT_EQ(files.run("Private()"), "! 1:1 There is no function Private.");

    EXPECT_EQ(files.run("Import \"bad.script\"; Bad(1)"), "! 4:11 Division by zero.");
    EXPECT_EQ(files.run("Import \"bad.script\"; Try Bad(1) Except Print(Error.File) EndTry"), "bad.script");
    EXPECT_EQ(files.run("Import \"bad.script\"; Bad(nothing)"), "! 4:9 The variable x has no value yet.");
    EXPECT_EQ(files.run("Import \"bad.script\"; Bad(1 / 0)"), "! 1:28 Division by zero.");
    EXPECT_EQ(files.run("Import \"broken.script\""), "! 2:6 Expected a value, found “)”.");
    EXPECT_EQ(files.run("x = 1;\nImport \"none.script\""), "! 2:8 There is no inner file none.script.");
    EXPECT_EQ(files.run("Import \"one.script\""),
              "! 1:8 Files import each other in a circle: one.script → two.script → one.script.");
    EXPECT_EQ(files.run("Import \"three.script\"; Import \"lib/a.script\""),
              "! 1:31 Both three.script and lib/a.script have a procedure A; Export says which procedures a "
              "file gives.");
}

TEST_F(ProceduresTest, MessagesSuggestTheNearestName) {
    check({
        {"Prices = 1; x = Price", "! 1:17 The variable Price has no value yet. Did you mean Prices?"},
        {"Prnit(1)", "! 1:1 There is no function Prnit. Did you mean Print?"},
        {"Сообщитъ(1)", "! 1:1 There is no function Сообщитъ. Did you mean Сообщить?"},
        {"Function Total() EndFunction Totla()", "! 1:30 There is no function Totla. Did you mean Total?"},
        {"a = New Aray", "! 1:5 There is no type Aray. Did you mean Array?"},
        {"(New Array).Cuont()", "! 1:13 The type Array has no method Cuont. Did you mean Count?"},
        {"(New Structure(\"Name\")).Nam",
         "! 1:25 The type Structure has no property Nam. Did you mean Name?"},
        {"Type(\"Nmber\")", "! 1:1 There is no type Nmber. Did you mean Number?"},
        {"New TypeDescription(\"Strng\")", "! 1:1 There is no type Strng. Did you mean String?"},
        {"x = Zzzzzz", "! 1:5 The variable Zzzzzz has no value yet."},
    });
    Thread::setResourceLocale(Locale("ru"));
    check({
        {"Number(\"abc\")", "! 1:1 Number: \"abc\" не является числом (параметр Значение)."},
        {"Лев(5, 1)", "! 1:1 Лев: параметр Текст не принимает значение типа Число: 5."},
        {"a = New Array(2); a[2]", "! 1:20 Индекс 2 за пределами коллекции: элементов 2."},
        {"Если Истина Тода", "! 1:13 Ожидается «Then/Тогда», а стоит «Тода»."},
        {"Х = Новый Отбор(\"Цена Между 1\")",
         "! 1:5 Строка 1, символ 13 выражения: Ожидается «And/И», а стоит конец текста."},
        {"Отобрать()", "! 1:1 Для Отобрать нужен параметр Коллекция."},
    });
    Thread::setResourceLocale(Locale("en"));
}

} // namespace
} // namespace core::script
