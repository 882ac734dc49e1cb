// SPDX-License-Identifier: Apache-2.0
// The scripts that docs/language.md shows print what the page says. A script that names a file in its first
// line becomes that file.
#include "tests/host/program_fixture.h"

namespace host {
namespace {

class LanguagePageTest : public FolderTest {};

/// The text of the next block of a kind, and where it ends; empty where none follows.
std::string next_block(const std::string& page, const std::string& kind, std::size_t& at) {
    const std::string fence = "```" + kind + "\n";
    const std::size_t begin = page.find(fence, at);
    if (begin == std::string::npos)
        return {};
    const std::size_t end = page.find("```", begin + fence.size());
    at = end + 3;
    return page.substr(begin + fence.size(), end - begin - fence.size());
}

TEST_F(LanguagePageTest, ScriptsPrintWhatThePageSays) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "language.md");
    int run = 0;
    std::size_t at = 0;
    for (std::string script; !(script = next_block(page, "script", at)).empty();) {
        const std::size_t line = script.find('\n');
        if (script.starts_with("// ")) {
            static_cast<void>(file(script.substr(3, line - 3), script));
            continue;
        }
        const Answer answer = corehost({file("page.script", script), "--leaks"});
        EXPECT_EQ(answer.err, "") << script;
        EXPECT_EQ(answer.out, next_block(page, "text", at)) << script;
        ++run;
    }
    EXPECT_GE(run, 8);
}

class RunTest : public FolderTest {};

TEST_F(RunTest, ArgumentsAndExitCodes) {
    const std::string script =
        file("args.script", "#!/usr/bin/env corehost\nFor Each A In Аргументы Do Print(A) "
                            "EndDo; Exit(Arguments.Count())");
    const auto expect = [](const Answer& answer, const char* out, int code) {
        EXPECT_EQ(answer.out, out);
        EXPECT_EQ(static_cast<int>(answer.code), code) << answer.err;
    };
    expect(corehost({"run", script}), "", 0);
    expect(corehost({"run", script, "a", "б"}), "a\nб\n", 2);
    expect(corehost({"run", script, "--", "--json", "x"}), "--json\nx\n", 2);
    expect(corehost({"--lang", "ru", script, "a", "--json"}), "a\n--json\n", 2);
    expect(corehost({script, "run"}), "run\n", 1);
    const Answer missing = corehost({path("missing.script")});
    EXPECT_EQ(missing.code, ExitCode::usage);

    std::filesystem::create_directory(folder() / "lib");
    static_cast<void>(file("lib/twice.script",
                           "Function Twice(x) Return x * 2 / Half() EndFunction Import \"../half.script\""));
    static_cast<void>(file("half.script", "Function Half()\n Return 1 - \"x\" EndFunction"));
    const Answer failed =
        corehost({"run", file("main.script", "Import \"lib/twice.script\"; Print(Twice(4))")});
    EXPECT_EQ(failed.code, ExitCode::malformed);
    EXPECT_NE(failed.err.find("half.script:2:11: This operation is not defined for Number and String.\n"
                              "     Return 1 - \"x\" EndFunction\n              ^\n"),
              std::string::npos)
        << failed.err;
}

TEST_F(RunTest, AHandlerThatFailsIsShownWithItsEventAndLine) {
    const Answer answer =
        corehost({file("bad.script", "T = New ValueTable;\nProcedure Bad() Raise \"no\" EndProcedure\n"
                                     "AddHandler T.RowAdded, Bad; R = T.Add(); Print(T.Count())")});
    EXPECT_EQ(answer.code, ExitCode::done);
    EXPECT_EQ(answer.out, "1\n");
    EXPECT_EQ(answer.err.substr(0, answer.err.find("bad.script"))
                  .find("corehost: handler of the event RowAdded:\n"),
              0U);
    EXPECT_NE(answer.err.find("bad.script:2:17: no\n"), std::string::npos) << answer.err;
}

} // namespace
} // namespace host
