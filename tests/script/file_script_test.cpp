// SPDX-License-Identifier: Apache-2.0
// Files of scripts: what docs/files.md shows prints what the page says, in both languages, and messages name
// files as people do.
#include "tests/script/script_fixture.h"
#include "tests/support/file_helpers.h"
#include "tests/support/folder_test.h"

#include <filesystem>

namespace core::script {
namespace {

namespace fs = std::filesystem;

class FileScript : public ScriptTest {
  protected:
    FileScript() : before_(fs::current_path()) { fs::current_path(folder_ / ""); }
    ~FileScript() override { fs::current_path(before_); }

  private:
    const core::test::TempFolder folder_;
    const fs::path before_;
};

TEST_F(FileScript, ThePageShowsWhatHappens) {
    const std::string page = host::text_of(fs::path(CORE_SOURCE_DIR) / "docs" / "files.md");
    const auto part = [&page](const std::string& begin, const std::string& end) {
        const std::size_t at = page.find(begin) + begin.size();
        return page.substr(at, page.find(end, at) - at);
    };
    std::ostringstream out;
    Engine engine;
    engine.output(out);
    engine.run("CreateFolder(" + part("```\nCreateFolder(", "```"));
    EXPECT_EQ(out.str(), part("prints\n\n```\n", "```"));
    EXPECT_TRUE(fs::is_empty("."));
}

TEST_F(FileScript, MembersWorkInBothLanguages) {
    check({
        {"СоздатьПапку(\"а/б\"); SaveText(\"а/б/ж.txt\", \"12\"); SaveText(\"а/в.txt\", \"\");"
         "Для Каждого Ф Из НайтиФайлы(\"а/*.txt\", Истина) Цикл "
         "Сообщить(Ф.Имя + \" \" + Ф.Папка + \" \" + Ф.Размер) КонецЦикла",
         "в.txt а 0\nж.txt а/б 2"},
        {"Print(FindFiles(\"а/в*\")[0].Path); Print(New File(\"а/б/\").Name); Print(New File(\"x\").Folder);"
         "Print(New File(\"/x\").Folder); Print(New File(\"mem://x\").Folder); Print(New "
         "File(\".x\").Extension)",
         "а/в.txt\nб\n.\n/\nmem://\n"},
        {"КопироватьФайл(\"а/б\", \"г\"); ПереместитьФайл(\"г/ж.txt\", \"mem://m\");"
         "Print(LoadText(\"mem://m\")); Print(ФайлСуществует(\"г/ж.txt\")); УдалитьПапку(\"г\");"
         "SaveText(\"mem://n\", \"n\"); Print(УдалитьФайлы(\"mem://*\")); Print(New File(\"г\").Существует)",
         "12\nNo\n2\nNo"},
        {"Ф = Новый Файл(\"а/б/ж.txt\"); Ф.ТолькоЧтение = True; Print(Ф.ReadOnly); Ф.ReadOnly = False;"
         "Print(Ф.ТолькоЧтение); Print(Ф.СвободноеМесто > 0); Print(New File(\"а\").ЭтоПапка);"
         "Print(LoadText(New File(\"а/б/ж.txt\").Path)); "
         "Print(LoadText(\"file://%D0%B0/%D0%B1/%D0%B6.txt\"))",
         "Yes\nNo\nYes\nYes\n12\n12"},
    });
}

TEST_F(FileScript, MessagesNameFilesAsPeopleDo) {
    for (const char* const call :
         {"LoadText(\"нет.txt\")", "LoadCsv(\"нет.txt\")", "DeleteFiles(\"нет.txt\")",
          "CopyFile(\"нет.txt\", \"x\")", "MoveFile(\"нет.txt\", \"x\")", "DeleteFolder(\"нет.txt\")",
          "New TextReader(\"нет.txt\")", "New File(\"нет.txt\").Size", "Containers.Open(\"нет.txt\")",
          "LoadText(\"file://%D0%BD%D0%B5%D1%82.txt\")", "SaveText(\"нет/нет.txt\", \"x\")"}) {
        const std::string answer = Session().run(call);
        EXPECT_NE(answer.find("нет"), std::string::npos) << call << " " << answer;
        EXPECT_EQ(answer.find("%D0"), std::string::npos) << call << " " << answer;
    }
}

} // namespace
} // namespace core::script
