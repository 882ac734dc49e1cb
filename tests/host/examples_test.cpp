// SPDX-License-Identifier: Apache-2.0
// The scripts that show tables do what they say, on few rows where there would be many.
#include "tests/host/program_fixture.h"

#include <regex>

namespace host {
namespace {

class ExamplesTest : public FolderTest {
  protected:
    /// What a script of examples/ prints, after a change of its text; the files that it leaves are gone.
    [[nodiscard]] std::string run(const std::string& name, const std::string& from = "",
                                  const std::string& to = "") const {
        std::string script = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "examples" / name);
        script.replace(script.find(from), from.size(), to);
        const Answer answer = corehost({"run", file(name, script), "--leaks"});
        EXPECT_EQ(answer.code, ExitCode::done);
        EXPECT_EQ(answer.err, "");
        const std::regex saved("in (/[^,\n]*)");
        for (std::sregex_iterator file(answer.out.begin(), answer.out.end(), saved), end; file != end; ++file)
            std::filesystem::remove((*file)[1].str());
        return answer.out;
    }
    static void expect(const std::string& printed, std::initializer_list<const char*> lines) {
        for (const char* const line : lines)
            EXPECT_TRUE(std::regex_search(printed, std::regex("(^|\n)" + std::string(line) + "\n")))
                << line << "\n\n"
                << printed;
    }
};

TEST_F(ExamplesTest, Unicode) {
    expect(run("unicode.script"),
           {"Category  Characters", "0416 is CYRILLIC CAPITAL LETTER ZHE, small: 0436",
            "Saved as CSV in .*, read back equal: Yes", "Saved as a brace list in .*, read back equal: Yes"});
}

TEST_F(ExamplesTest, Sales) {
    expect(run("sales.script", "Count = 1000000;", "Count = 3000;"),
           {"The totals of the groups are equal: Yes", "Read back: 3000 rows, totals equal: Yes",
            "Rows: 3000", "Rows: 64"});
}

} // namespace
} // namespace host
