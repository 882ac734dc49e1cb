// SPDX-License-Identifier: Apache-2.0
// The scripts that are shown print what is recorded beside them, and leave nothing behind.
#include "tests/host/program_fixture.h"

#include <regex>

namespace host {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = fs::path(CORE_SOURCE_DIR) / "examples";

/// Temporary files go into the test's own folder.
class ExamplesTest : public FolderTest {
  protected:
    ExamplesTest() { fs::create_directory(temporary_); }

    /// What a script of examples/ prints, after a change of its text.
    [[nodiscard]] std::string run(const std::string& name, const std::string& from = "",
                                  const std::string& to = "") const {
        std::string script = text_of(kExamples / name);
        script.replace(script.find(from), from.size(), to);
        const Answer answer = corehost({"run", file(name, script), "--leaks"});
        EXPECT_EQ(answer.code, ExitCode::done) << name;
        EXPECT_EQ(answer.err, "") << name;
        EXPECT_TRUE(fs::is_empty(temporary_)) << name << " leaves " << *fs::directory_iterator(temporary_);
        return answer.out;
    }
    static void expect(const std::string& printed, std::initializer_list<const char*> lines) {
        for (const char* const line : lines)
            EXPECT_TRUE(std::regex_search(printed, std::regex("(^|\n)" + std::string(line) + "\n")))
                << line << "\n\n"
                << printed;
    }

  private:
    fs::path temporary_ = folder() / "temporary";
    const support::EnvironmentVariable variable_{support::kTemporaryFolder, temporary_.string().c_str()};
};

TEST_F(ExamplesTest, PrintWhatIsRecorded) {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(kExamples)) {
        fs::path recorded = entry.path();
        if (recorded.extension() != ".script" || !fs::exists(recorded.replace_extension(".out")))
            continue;
        EXPECT_EQ(run(entry.path().filename().string()), text_of(recorded)) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 10);
}

// What these print depends on the time that they take.

TEST_F(ExamplesTest, Countries) {
    expect(run("countries.script"), {"ByCode.NZ.name              New Zealand",
                                     "Saved as a brace list and read back: .*, equal: Yes"});
}

TEST_F(ExamplesTest, Unicode) {
    expect(run("unicode.script"),
           {"Category  Characters", "0416 is CYRILLIC CAPITAL LETTER ZHE, small: 0436",
            "Saved as CSV, read back equal: Yes", "Saved as a brace list, read back equal: Yes"});
}

TEST_F(ExamplesTest, Sales) {
    expect(run("sales.script", "Count = 1000000;", "Count = 3000;"),
           {"The totals of the groups are equal: Yes", "Read back: 3000 rows, totals equal: Yes",
            "Rows: 3000", "Rows: 64"});
}

} // namespace
} // namespace host
