// SPDX-License-Identifier: Apache-2.0
// Containers as objects of scripts: what docs/containers.md shows prints what the page says, and members work
// in both languages.
#include "tests/script/script_fixture.h"
#include "tests/support/file_helpers.h"
#include "tests/support/folder_test.h"

#include <filesystem>

namespace core::script {
namespace {

class ContainerScript : public ScriptTest {
  protected:
    [[nodiscard]] std::string path(const std::string& name) const { return folder_ / name; }

  private:
    const core::test::TempFolder folder_;
};

TEST_F(ContainerScript, ThePageShowsWhatHappens) {
    const std::string page = host::text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "containers.md");
    // Each script, and the output that the page shows behind it.
    const std::string begin = "```\nFiles = Containers.Create(\"";
    const std::string behind = "prints\n\n```\n";
    int scripts = 0;
    for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at), ++scripts) {
        at += begin.size();
        const std::string code = page.substr(at, page.find("```", at) - at);
        at = page.find(behind, at) + behind.size();
        std::ostringstream out;
        Engine engine;
        engine.output(out);
        engine.run("Files = Containers.Create(\"" + path("") + code);
        EXPECT_EQ(out.str(), page.substr(at, page.find("```", at) - at));
    }
    EXPECT_EQ(scripts, 2);
}

TEST_F(ContainerScript, MembersWorkInBothLanguages) {
    const std::string file = '"' + path("data.st") + '"';
    check({
        {"C = Контейнеры.Создать(" + file +
             "); C.Поместить(\"a\", 1.5); C.ПоместитьТекст(\"b/t\", \"ж\");"
             "C.ПоместитьДанные(\"b/d\", New BinaryData(\"ab\")); Print(C.Количество()); "
             "Print(C.Содержит(\"A\"))",
         "3\nNo"},
        {"C = Containers.Open(" + file +
             ", True); Print(C.Get(\"a\") + C[\"a\"]); Print(C.GetText(\"b/t\"));"
             "Print(C.GetData(\"b/d\") = New BinaryData(\"ab\"));"
             "For Each Name In C.Names(\"b/*\") Do Print(Name) EndDo; Print(C.Describe(\"b/d\").Size)",
         "3\nж\nYes\nb/d\nb/t\n2"},
        {"C = Containers.Open(" + file +
             "); C.BeginTransaction(); C.Delete(\"a\"); C.Rename(\"b/d\", \"d\");"
             "C.RollbackTransaction(); Print(C.Count()); C.НачатьТранзакцию(); C.Удалить(\"a\");"
             "C.ЗафиксироватьТранзакцию(); Damaged = C.Compact();"
             "For Each File In Containers.Open(" +
             file + ") Do Print(File.Имя + \" \" + File.Size) EndDo",
         "3\nb/d 2\nb/t 2"},
    });
    EXPECT_EQ(Session().run("Print(Containers.Open(" + file + ").Count())"), "2");
}

TEST_F(ContainerScript, FormsOfValuesHaveNamesInBothLanguages) {
    const std::string file = '"' + path("data.st") + '"';
    check({
        {"SaveToContainer(" + file +
             ", \"v\", New Structure(\"A\", 5), ФормыЗначений.Компактная);"
             "Print(LoadFromContainer(" +
             file + ", \"v\").A)",
         "5"},
        {"P = Новый ХранимоеЗначение(\"часть\"); A = New Array; A.Add(P); A.Add(P);"
         "СохранитьВКонтейнер(" +
             file +
             ", \"v\", A, ValueForms.Parts);"
             "B = ЗагрузитьИзКонтейнера(" +
             file +
             ", \"v\"); Print(B[0].Загружено); Print(B[0].Значение);"
             "B[1].Value = 7; Print(B[0].Value); Print(Containers.Open(" +
             file + ").Count())",
         "No\nчасть\n7\n2"},
        {"V = FromBinary(ToBinary(New Structure(\"A\", '20240229'))); Print(V.A = '20240229');"
         "Print(ИзДвоичных(ВДвоичные(1.5)) + FromBinary(New BinaryData(ToText(2))))",
         "Yes\n3.5"},
    });
    const auto fails = [&](const std::string& statement, const std::string& says) {
        const std::string answer = Session().run(statement);
        EXPECT_NE(answer.find(says), std::string::npos) << answer;
    };
    fails("FromBinary(\"text\")", "1");
    fails("FromBinary(New BinaryData(\"{\"))", "brace list");
    fails("SaveToContainer(" + file + ", \"v\", 1, 2)", "Form");
}

TEST_F(ContainerScript, FailuresAreErrorsWithThePlace) {
    const std::string file = path("data.st");
    const std::string open = "C = Containers.Create(\"" + file + "\"); C.PutText(\"t\", \"no value\");\n";
    const auto fails = [&](const std::string& statement, const std::string& says) {
        const std::string answer = Session().run(open + statement);
        EXPECT_TRUE(answer.starts_with("! 2:")) << answer;
        EXPECT_NE(answer.find(says), std::string::npos) << answer;
    };
    fails("C.Get(\"t\")", file + "/t");
    fails("C.Delete(\"none\")", file + "/none");
    fails("C.PutData(\"d\", \"no bytes\")", "2");
    fails("Containers.Open(\"" + file + "x\")", file + "x");
    EXPECT_FALSE(std::filesystem::exists(file + "x"));
    const std::string closed = Session().run(open + "C.Close(); C.Close(); C.Count()");
    EXPECT_NE(closed.find("closed"), std::string::npos) << closed;
}

} // namespace
} // namespace core::script
