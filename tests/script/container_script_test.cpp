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
    const auto part = [&page](const std::string& begin, const std::string& end) {
        const std::size_t at = page.find(begin) + begin.size();
        return page.substr(at, page.find(end, at) - at);
    };
    std::string code = "Files = Containers.Create(" + part("```\nFiles = Containers.Create(", "```");
    const std::string file = "\"data.st\"";
    ASSERT_NE(code.find(file), std::string::npos);
    code.replace(code.find(file), file.size(), '"' + path("data.st") + '"');
    std::ostringstream out;
    Engine engine;
    engine.output(out);
    engine.run(code);
    EXPECT_EQ(out.str(), part("prints\n\n```\n", "```"));
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
             "C.ЗафиксироватьТранзакцию(); C.Compact();"
             "For Each File In Containers.Open(" +
             file + ") Do Print(File.Имя + \" \" + File.Size) EndDo",
         "3\nb/d 2\nb/t 2"},
    });
    EXPECT_EQ(Session().run("Print(Containers.Open(" + file + ").Count())"), "2");
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
