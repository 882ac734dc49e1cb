// SPDX-License-Identifier: Apache-2.0
#include "tests/host/container_fixture.h"

#include <sys/wait.h>

#include <cstdlib>

namespace host {
namespace {

/// corehost as a process of its own, with the streams, limits and environment that a shell gives it.
class Process : public Container {
  protected:
    /// The exit code of a line of the shell, in which "corehost" is the program. A signal gives 128 and its
    /// number.
    int shell(const std::string& line) {
        const std::string all =
            "cd '" + path("") + "' && corehost() { " CORE_TEST_PROGRAM " \"$@\"; } && { " + line + "\n}";
        const int status = std::system(("LC_ALL=C sh -c '" + quoted(all) + "'").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

  private:
    static std::string quoted(std::string text) {
        for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4)
            text.replace(at, 1, "'\\''");
        return text;
    }
};

TEST_F(Process, ClosedStreamsDoNotEndUpInFiles) {
    EXPECT_EQ(shell("corehost container put c.st tree <&- >&- 2>&-"), static_cast<int>(ExitCode::done));
    EXPECT_EQ(shell("corehost container check c.st >&-"), static_cast<int>(ExitCode::io))
        << "its report went nowhere";
    EXPECT_EQ(run({"check", path("c.st")}), ExitCode::done) << out_;
    EXPECT_EQ(shell("corehost container get c.st tree/a.txt --to out <&- >&- 2>&-"),
              static_cast<int>(ExitCode::done));
    EXPECT_EQ(read("out/tree/a.txt"), "Hello");
}

TEST_F(Process, SaysWhenItsOutputDoesNotFit) {
    write("s.script", "For I = 1 To 10000 Do Print(I); EndDo;");
    EXPECT_EQ(shell("corehost run s.script >/dev/full 2>err"), static_cast<int>(ExitCode::io));
    EXPECT_NE(read("err"), "");
    EXPECT_EQ(shell("ulimit -f 0; corehost container put c.st tree 2>&-"), static_cast<int>(ExitCode::io));
    EXPECT_FALSE(std::filesystem::exists(path("c.st")));
}

TEST_F(Process, SpeaksTheLanguageOfItsEnvironment) {
    EXPECT_EQ(shell("LC_ALL=ru_RU.UTF-8 corehost container --help >ru; LC_ALL=de_DE.UTF-8 corehost container "
                    "--help >de"),
              0);
    EXPECT_NE(read("ru").find("контейнер"), std::string::npos) << read("ru");
    EXPECT_NE(read("de").find("container"), std::string::npos) << read("de");
    EXPECT_EQ(shell("LANG=ru_RU.UTF-8 LC_ALL= corehost container --help | cmp - ru"), 0);
    EXPECT_EQ(read("ru").find('\033'), std::string::npos) << "colours are for terminals";
}

} // namespace
} // namespace host
