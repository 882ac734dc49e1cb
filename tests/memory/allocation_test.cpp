// SPDX-License-Identifier: Apache-2.0
// Memory that runs out at any point of what a script does: the statement fails with an error, and every
// object is as it was before it.
#include "host/engine/engine_impl.h"
#include "tests/script/script_fixture.h"
#include "tests/support/allocation_limit.h"

#include <core/context/script_object.h>
#include <core/runtime/errors.h>
#include <core/runtime/live_counter.h>
#include <core/runtime/module.h>
#include <core/runtime/threads/thread.h>
#include <core/streams/text_reader.h>
#include <core/values/type_service.h>

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace core::script;
using core::GenericValue;
using core::wstring;

/// The engine of one attempt.
class Attempt {
  public:
    void run(const Script& script) { engine_.run(script); }

    /// The texts of all variables that have a value.
    [[nodiscard]] wstring state() const {
        wstring state;
        const Interpreter& interpreter = EngineAccess::impl(engine_).interpreter;
        const Variables& variables = interpreter.variables();
        for (std::size_t slot = 0; slot < variables.size(); ++slot) {
            if (const auto value = interpreter.value(variables.name(slot))) {
                wstring text;
                value->toString(text);
                state += variables.name(slot) + u" = " + text + u"\n";
            }
        }
        return state;
    }

  private:
    Engine engine_;
};

struct Operation {
    const char* prepare;
    const char* act;
    const char* probe = ""; // asks what the variables' texts do not show
};

enum class Outcome { done, failed, damaged };

/// Runs `act` with `allowed` allocations, or without limit.
Outcome attempt(const Operation& operation, int allowed) {
    Attempt attempt;
    attempt.run(compile(operation.prepare));
    const Script act = compile(operation.act);
    const Script probe = compile(operation.probe);
    attempt.run(probe);
    const wstring before = attempt.state();
    std::string error = "no memory"; // before the first statement, or for the error itself
    try {
        const test::AllocationLimit limit(allowed);
        attempt.run(act);
        return Outcome::done;
    } catch (const Error& e) {
        error = e.what();
    } catch (const std::bad_alloc&) {
    }
    attempt.run(probe);
    if (attempt.state() == before)
        return Outcome::failed;
    ADD_FAILURE() << operation.act << " with " << allowed << " allocations: " << error << "\n"
                  << core::to_utf8(before) << "became\n"
                  << core::to_utf8(attempt.state());
    return Outcome::damaged;
}

class Allocation : public testing::Test {
  protected:
    void check(std::initializer_list<Operation> operations) {
        for (const Operation& operation : operations) {
            // The first time makes what is made once a process.
            ASSERT_EQ(attempt(operation, test::AllocationLimit::kNone), Outcome::done) << operation.act;
            Outcome outcome = Outcome::failed;
            // A new thread each time: it has no free blocks kept from the attempt before.
            for (int allowed = 0; outcome == Outcome::failed; ++allowed)
                std::thread([&] {
                    const host::HostProcess::ThreadScope thread(process_);
                    outcome = attempt(operation, allowed);
                }).join();
        }
    }

    host::HostProcess process_;
};

TEST_F(Allocation, CollectionsStayWhole) {
    const char* const array = "A = New Array; For I = 1 To 40 Do A.Add(\"element \" + I); EndDo;";
    const char* const structure = "S = New Structure; For I = 1 To 20 Do S.Insert(\"Key\" + I, I); EndDo;";
    const char* const map = "M = New Map; For I = 1 To 40 Do M.Insert(\"key \" + I, \"value \" + I); EndDo;";
    check({
        {array, "A.Insert(3, \"a new one among the others\");"},
        {array, "A.Add(New Array(3, 3));"},
        {array, "A.Clear();"},
        {array, "B = New FixedArray(A);"},
        {structure, "S.Insert(\"ANewOne\", \"a value that is long enough for a block\");"},
        {structure, "S.Delete(\"Key7\");"},
        {structure, "T = New Structure(\"One, Two, Three, Four, Five, Six, Seven, Eight, Nine, Ten\");"},
        {map, "M.Insert(12345678901234567890.5, New Map);"},
        {map, "M.Insert(\"key 7\", \"another value\");"},
        {map, "M.Delete(\"key 9\");"},
        {map, "T = ToText(M);"},
        {"T = New ValueList; A = New Array;", "N = Connect(T, \"ItemAdded\", A, \"Add\");"},
        {"T = New ValueTree; A = New Array; Connect(T, \"RowAdded\", A, \"Add\");", "R = T.Rows.Add();"},
        {"T = ToText(New Structure(\"A, B\", New Array(4), CurrentDate()));", "V = FromText(T);"},
        {"J = \"{\"\"a\"\": [1.5, true, null, \"\"text\"\"], \"\"b\"\": {\"\"c\"\": 1}}\";",
         "V = FromJson(J);"},
        {map, "J = ToJson(M, 2);"},
        {"", "N = (New Container).Names().Count();"},
        {"", "T = Format(-1234567.5, \"locale=de; fraction=2; empty='nothing at all'\");"},
        {"", "T = Format('20240229', \"locale=ru; date='EEEE, d MMMM yyyy'\");"},
        {"", "D = ParseDate(\"29 февраля 2024 г.\", \"locale=ru; date=long\");"},
    });
}

TEST_F(Allocation, TablesStayWhole) {
    const char* const table =
        "T = New ValueTable;"
        "T.Columns.Add(\"Name\", New TypeDescription(\"String\"));"
        "T.Columns.Add(\"Sum\", New TypeDescription(\"Number\"));"
        "T.Columns.Add(\"Any\");"
        "T.Indexes.Add(\"Name\");"
        "For I = 1 To 30 Do R = T.Add(); R.Name = \"name \" + (I * 7 % 11); R.Sum = I / 8;"
        "R.Any = New Array(1); EndDo; R = Undefined; I = 0;";
    // Numbers that need no memory in the column, and one on the way that does.
    const std::string numbers = std::string(table) +
                                "U = T.UnloadColumn(\"Sum\"); U[0] = 5; U[9] = 1000000 * 1000000 * "
                                "1000000 * 1000000;";
    // An index is sorted when it has been asked for ranges for some time.
    const std::string ranges =
        std::string(table) +
        "For I = 1 To 8 Do F = T.FindRows(\"Name > \"\"name 9\"\"\"); EndDo; F = 0; I = 0;";
    check({
        {table, "T.Add();"},
        {table, "T.Insert(3);"},
        {table, "T.Delete(3);"},
        {table, "T[3].Name = \"a name that no other row has\";"},
        {table, "T[3].Sum = \"a text that is no number at all\";"},
        {table, "T[3].Any = New Map;"},
        {table, "T.Move(3, 5);"},
        {table, "T.Clear();"},
        {table, "T.Sort(\"Name, Sum Desc\");"},
        {table, "T.GroupBy(\"Name\", \"Sum\");"},
        {table, "G = T.Group(\"Name\", \"Count(), Sum(Sum) As Total, List(Any) As All\", True).Count();"},
        {table,
         "G = T.Group(\"Floor(Sum) As Whole, Upper(Name) As Name\", \"Sum(Sum * 2) As Sum\").Count();"},
        {ranges.c_str(), "F = T.FindRows(\"Name > \"\"name 8\"\"\").Count();"},
        {table, "P = T.Pivot(\"Name\", \"Sum\", \"Count()\").Count();"},
        {table, "T.AddWindow(\"RunningTotal(Sum) As Cum, Lag(Any) As Before\", \"Name\", \"Sum Desc\");"},
        {table, "T.FillValues(\"the same in every row\", \"Name, Any\");"},
        {table, "F = T.FindRows(New Structure(\"Name\", \"name 3\")).Count();"},
        {table, "F = T.Find(\"name 3\").Sum;"},
        {table, "T.Filter(\"Sum > 1 And Upper(Name) Like \"\"NAME 3%\"\" Or Sum * 2.5 In (5, 7.5)\");"},
        {table, "T.Delete(New Filter(\"Sum > &X\", New Structure(\"X\", 2)).Or(\"Name = \"\"name 1\"\"\"));"},
        {table, "T.AddColumn(\"More\", \"Name + \"\" and more than that\"\"\");",
         "P = T.Columns.Find(\"More\") = Undefined;"},
        {table, "C = T.Copy();"},
        {table, "C = T.CopyColumns(\"Name, Any\");"},
        {table, "U = T.UnloadColumn(\"Name\");"},
        {table, "T.LoadColumn(T.UnloadColumn(\"Sum\"), \"Any\");"},
        {numbers.c_str(), "T.LoadColumn(U, \"Sum\");"},
        {table, "T.Columns.Add(\"More\", New TypeDescription(\"Date\"), \"A title for it\");",
         "P = T.Columns.Find(\"More\") = Undefined;"},
        {table, "T.Columns.Insert(1, \"More\");"},
        {table, "T.Columns.Delete(\"Any\");"},
        {table, "T.Columns.Move(0, 2);"},
        {table, "T.Columns.Name.Name = \"Renamed\";",
         "P = T.Columns.Find(\"Renamed\") = Undefined And T.Columns.IndexOf(T.Columns.Find(\"Name\")) = 0;"},
        {table, "T.Indexes.Add(\"Sum, Any\");"},
        {table, "V = FromText(ToText(T));"},
        {table, "J = ToJson(T);"},
    });
}

TEST_F(Allocation, TreesAndListsStayWhole) {
    const char* const tree = "T = New ValueTree; T.Columns.Add(\"Name\"); "
                             "For I = 1 To 9 Do R = T.Rows.Add(); R.Name = \"name \" + (I * 7 % 11);"
                             "R.Rows.Add().Name = \"below\"; EndDo; R = Undefined; I = 0;";
    const char* const list =
        "L = New ValueList; For I = 1 To 9 Do L.Add(I * 7 % 11, \"item \" + I); EndDo; I = 0;";
    check({
        {tree, "T.Rows[3].Rows.Add();"},
        {tree, "T.Rows.Sort(\"Name\", True);"},
        {tree, "T.Rows[3].Rows.Clear();"},
        {tree, "F = T.Rows.FindRows(New Structure(\"Name\", \"below\"), True).Count();"},
        {tree, "V = FromText(ToText(T));"},
        {tree, "J = ToJson(T);"},
        {list, "L.Insert(2, \"a value\", \"its presentation\");"},
        {list, "L.SortByValue();"},
        {list, "L.SortByPresentation();"},
        {list, "L.Delete(2);"},
        {list, "L.LoadValues(New Array(5));"},
        {list, "C = L.Copy();"},
        {list, "J = ToJson(L);"},
    });
}

TEST_F(Allocation, ContainersStayWhole) {
    const std::string file = testing::TempDir() + "allocation-" + std::to_string(::getpid());
    const std::string name = "(\"" + file + "\", \"name\"";
    // A container that a failure has damaged would fail the next attempt.
    const std::string prepare = "SaveToContainer" + name + ", 1); A = LoadFromContainer" + name + ");";
    const std::string save = "SaveToContainer" + name + ", New Array(40));";
    const std::string load = "V = LoadFromContainer" + name + ");";
    const std::string parts = "P = New StoredValue(New Array(40)); S = New Structure(\"A, B\", P, P);";
    const std::string saveParts = "SaveToContainer" + name + ", S, ValueForms.Parts);";
    const std::string prepareParts = parts + saveParts + " V = 0;";
    const std::string touch = "V = LoadFromContainer" + name + ").A.Value;";
    check({{prepare.c_str(), save.c_str()},
           {prepare.c_str(), load.c_str()},
           {parts.c_str(), saveParts.c_str()},
           {prepareParts.c_str(), touch.c_str()}});
    std::filesystem::remove(file);
}

TEST_F(Allocation, FoldersStayWhole) {
    // In memory where that is possible: each attempt flushes a disk.
    const std::string place = std::filesystem::exists("/dev/shm") ? "/dev/shm/" : testing::TempDir();
    const std::string folder = place + "folders-" + std::to_string(::getpid());
    const std::string prepare = "F = \"" + folder +
                                "\"; If FileExists(F) Then DeleteFolder(F) EndIf; CreateFolder(F + \"/a/b\");"
                                "SaveText(F + \"/a/b/x\", \"one text\"); SaveText(F + \"/a/y\", \"y\");";
    // Nothing may be left beside, either.
    const std::string probe = "P = FindFiles(F + \"/*\", True).Count(); A = FileExists(F + \"/a/b/x\");";
    const std::string content = probe + "T = LoadText(F + \"/a/b/x\", \"auto\");";
    check(
        {{prepare.c_str(), "CreateFolder(F + \"/n/e/w\");", probe.c_str()},
         {prepare.c_str(), "CopyFile(F + \"/a\", F + \"/c\");", probe.c_str()},
         {prepare.c_str(), "MoveFile(F + \"/a\", F + \"/c\");", probe.c_str()},
         {prepare.c_str(), "CopyFile(F + \"/a/y\", F + \"/a/b/x\");", content.c_str()},
         {prepare.c_str(), "SaveText(F + \"/a/b/x\", \"другой текст\", \"windows-1251\");", content.c_str()},
         {prepare.c_str(), "L = FindFiles(F + \"/*\", True).Count();"},
         {prepare.c_str(), "L = (New TextReader(F + \"/a/b/x\")).Read();"}});
    std::filesystem::remove_all(folder);
}

TEST_F(Allocation, LooksAndReportsStayWhole) {
    const std::string file = testing::TempDir() + "report-" + std::to_string(::getpid());
    const char* const style =
        "S = New ReportStyle(\"A title that needs a block of its own\");"
        "S.Rule(\"Price > 5\", New Style(WebColors.Navy), , \"A rule with a meaning\");";
    const std::string report = std::string(style) + "F = \"" + file +
                               "\"; If FileExists(F) Then DeleteFiles(F) EndIf; T = New ValueTable;"
                               "T.Columns.Add(\"Price\"); For I = 1 To 9 Do T.Add().Price = I EndDo;";
    check({
        {"", "N = (New Color(\"web:SteelBlue\")).Contrast(WebColors.White);"},
        {"", "F = FromText(ToText(New Font(\"A face with a long name\", 10.5, 700)));"},
        {"",
         "B = FromText(ToText(New Border(BorderKind.Lines, New Line(LineKind.Dotted, 2, \"#123456\"))));"},
        {"S = New Style(WebColors.Navy);", "S.SetColor(\"BackColor\", \"#123456\");", "P = ToText(S);"},
        {"S = New Style;", "S.SetFont(\"TitleFont\", New Font(\"A face with a long name\"));",
         "P = ToText(S);"},
        {style, "S.Columns.Price.Format = \"fraction=2; empty='nothing at all'\";", "P = ToText(S);"},
        {style, "S.Columns.Price.Style = New Style(WebColors.Red, WebColors.White);", "P = ToText(S);"},
        {style, "S.Style = New Style(WebColors.Red, WebColors.White);", "P = ToText(S);"},
        {style, "S.Rule(\"Price < 0\", New Style(WebColors.Red), \"Price, Day\");", "P = ToText(S);"},
        {report.c_str(), "SaveHtml(F, T, S);", "P = FileExists(F);"},
    });
    std::filesystem::remove(file);
}

TEST_F(Allocation, LocalesAndFormatsAreWholeOrNotThere) {
    check({
        {"", "N = (New Locale(\"de_AT@collation=phonebook\")).Name(\"ru\");"},
        {"", "N = (New Locale(\"es_MX\")).Parent.OwnName;"},
        {"", "N = Locales().Count();"},
        {"W = New Array; W.Add(\"es_MX\"); W.Add(\"en\"); T = New Array; T.Add(\"en\"); T.Add(\"es\");",
         "N = BestLocale(W, T).Key;"},
        {"", "T = (New LocalWString(\"en='Price'; ru='Цена без скидки'\")).With(\"de_AT\", \"Preis ohne "
             "Rabatt\").Without(\"en\").Written;"},
        {"", "T = (New LocalWString(\"en='The price without a discount'\")).Text(\"es_MX\");"},
        {"", "T = InWords(1234.05, \"locale=ru; currency=RUB; partForm=digits\");"},
        {"", "T = InWords(21, \"locale=ru; kind=ordinal; gender=f; case=genitive\");"},
        {"", "T = Format(True, \"true='switched on for good'; false=off\");"},
        {"", "N = ParseNumber(\"1.234.567.890.123.456,5\", \"locale=de; fraction=..9\");"},
    });
}

TEST_F(Allocation, PeriodsAreWholeOrNotThere) {
    const char* const table =
        "T = New ValueTable; T.Columns.Add(\"Day\", New TypeDescription(\"Date\")); "
        "For I = 1 To 40 Do R = T.Add(); R.Day = '20260101' + I * 86400; EndDo; R = 0; "
        "V = StandardPeriodVariant; P = New Structure(\"A, B\", New StandardPeriod(V.LastMonth), "
        "(New StandardPeriod(V.ThisMonth)).On('20260115')); V = 0;";
    check({
        {"", "T = \"\" + New StandardPeriod(StandardPeriodVariant.LastQuarterToDate);"},
        {"", "T = ToText(New StandardBeginningDate(StandardBeginningDateVariant.BeginningOfThisYear));"},
        {table, "N = T.FindRows(New Filter(\"Day Not In (&A, &B, '20260203')\", P)).Count();"},
    });
}

TEST_F(Allocation, CompactFormsAreWholeOrNotThere) {
    const char* const table =
        "T = New ValueTable; T.Columns.Add(\"A\"); T.Columns.Add(\"B\"); "
        "T.Columns.Add(\"C\"); For I = 1 To 40 Do R = T.Add(); R.A = I; "
        "R.B = \"name \" + I % 3; If I > 2 Then R.C = New Array(3); EndIf; EndDo; R = 0; "
        "B = ToBinary(T); V = 0; D = 0;";
    check({{table, "D = ToBinary(T);"}, {table, "V = FromBinary(B);"}});
}

TEST(Text, IsReadAndWrittenWholeOrNotAtAll) {
    const core::wstring text = u"Съешь же ещё этих мягких французских булок,\r\nда выпей чаю.";
    std::string bytes;
    for (const char16_t* const name : {u"windows-1251", u"UTF-8", u"GB18030", u"IBM866"}) {
        bool isDone = false;
        for (int allowed = 0; !isDone; ++allowed)
            std::thread([&] {
                try {
                    const test::AllocationLimit limit(allowed);
                    const core::Encoding encoding(name);
                    bytes = core::encode_text(text, encoding);
                    const auto all = std::as_bytes(std::span(bytes));
                    static_cast<void>(core::detect_encoding(all, true));
                    core::TextReader reader(
                        [left = all](std::span<std::byte> into) mutable {
                            const std::size_t count = std::min(into.size(), left.size());
                            std::copy_n(left.begin(), count, into.begin());
                            left = left.subspan(count);
                            return count;
                        },
                        u"a text with a name of its own", {.encoding = encoding});
                    isDone = reader.readAll() == text;
                    EXPECT_TRUE(isDone) << allowed;
                } catch (const std::bad_alloc&) {
                }
            }).join();
    }
}

TEST(ClassFactory, IsWholeOrNull) {
    const core::ClassRecord record;
    std::vector<core::InterfacePtr<core::IUnknown>> made(100'000);
    void* factory = &factory;
    {
        const test::AllocationLimit limit(0); // what the thread keeps still serves some
        for (auto& kept : made) {
            if (core::create_class_factory(record, core::IClassFactory::IID, &factory) != core::kOk)
                break;
            kept = core::InterfacePtr<core::IUnknown>::adopt(static_cast<core::IClassFactory*>(factory));
            factory = &factory;
        }
    }
    EXPECT_FALSE(made.back());
    EXPECT_EQ(factory, nullptr);
}

/// Lets memory run out at each point of `work`, every time on a thread of its own, until it gets through.
/// `after` looks at what is there then; it is told whether that was the last time.
template <class Work, class After>
void exhaust(const Work& work, const After& after) {
    bool done = false;
    for (int allowed = 0; !done; ++allowed) {
        std::thread([&] {
            try {
                const test::AllocationLimit limit(allowed);
                work();
                done = true;
            } catch (const std::bad_alloc&) {
            } catch (const core::Exception&) {
            }
            EXPECT_EQ(core::current_process(), nullptr) << allowed;
        }).join();
        after(done);
        ASSERT_FALSE(testing::Test::HasFailure()) << "with " << allowed << " allocations";
    }
}

TEST(Process, StartsWholeOrNotAtAll) {
    const auto detached = [](bool) {
        EXPECT_TRUE(core::core_module().classTable().empty());
        EXPECT_EQ(core::leaks_term().first, u"");
    };
    exhaust([] { const host::HostProcess process; }, detached);
    const Script script = compile(u"Return 1;");
    exhaust([&] { Engine().run(script); }, detached); // brings a process up
}

TEST_F(Allocation, ModulesComeAndGoWholeOrNotAtAll) {
    constexpr const char* kFile = CORE_TEST_MODULES "/libcounter.so";
    void* const own = ::dlopen(kFile, RTLD_LAZY | RTLD_LOCAL); // would go if a load closed the file twice
    const std::size_t before = process_.modules().size();
    const auto expect = [&](bool there) {
        EXPECT_EQ(process_.modules().size(), before + (there ? 1 : 0));
        EXPECT_EQ(core::get_service<core::ITypeValueService>()->findType(u"Counter") != nullptr, there);
        EXPECT_EQ(bool(core::create_object<core::IValue>(core::script_class_id(u"Counter"))), there);
    };
    exhaust(
        [&] {
            const host::HostProcess::ThreadScope thread(process_);
            process_.loadModule(kFile);
        },
        expect);
    auto object = core::create_object<core::IValue>(core::script_class_id(u"Counter"));
    exhaust( // refused while it is in use, however much memory there is
        [&] {
            const host::HostProcess::ThreadScope thread(process_);
            try {
                process_.unloadModule("counter");
            } catch (const core::ModuleException& e) {
                if (std::string_view(e.messageId()) != core::messages::kModuleInUse)
                    throw;
            }
        },
        [&](bool) { expect(true); });
    object = nullptr;
    exhaust(
        [&] {
            const host::HostProcess::ThreadScope thread(process_);
            try {
                process_.unloadModule("counter");
            } catch (const core::ModuleException& e) {
                ADD_FAILURE() << "nothing uses it: " << e.what();
            }
        },
        [&](bool done) { expect(!done); });
    EXPECT_NE(::dlopen(kFile, RTLD_LAZY | RTLD_NOLOAD), nullptr);
    ::dlclose(own);
    ::dlclose(own);
}

TEST_F(Allocation, ThreadsStartWholeOrNotAtAll) {
    std::optional<core::Thread> worker;
    std::atomic<int> ran = 0;
    exhaust(
        [&] {
            const host::HostProcess::ThreadScope thread(process_);
            worker.emplace(u"a name that is too long for a string alone", [&] { ++ran; });
        },
        [&](bool done) {
            EXPECT_EQ(worker.has_value(), done);
            worker.reset();
            EXPECT_EQ(ran, done ? 1 : 0);
        });
}

} // namespace
