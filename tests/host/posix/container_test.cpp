// SPDX-License-Identifier: Apache-2.0
// What containers do with names of any bytes, with permissions, links and signals.
#include "tests/host/container_fixture.h"

#include <csignal>

namespace host {
namespace {

namespace fs = std::filesystem;

TEST_F(Container, GetKeepsThePermissionsOfTheFileThatItReplaces) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"put", file, path("tree/a.txt")}), ExitCode::done) << err_;
    write("out/a.txt", "old");
    fs::permissions(path("out/a.txt"), fs::perms(0600));
    ASSERT_EQ(run({"get", file, "a.txt", "--to", path("out"), "--force"}), ExitCode::done) << err_;
    EXPECT_EQ(read("out/a.txt"), "Hello");
    EXPECT_EQ(fs::status(path("out/a.txt")).permissions(), fs::perms(0600));
}

TEST_F(Container, PutRefusesANameThatIsNoText) {
    write("bytes/a\xFF", "1");
    EXPECT_EQ(run({"put", path("c.st"), path("bytes")}), ExitCode::malformed);
    EXPECT_NE(err_.find("a\\xFF"), std::string::npos) << err_;
    EXPECT_FALSE(fs::exists(path("c.st"))) << "refused before anything is written";
}

TEST_F(Container, GetWritesNotWhereALinkLeads) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"put", file, path("tree/a.txt"), "--as", "a"}), ExitCode::done) << err_;
    ASSERT_EQ(run({"put", file, path("tree/sub/b.bin"), "--as", "c"}), ExitCode::done) << err_;
    write("out/a", "");
    fs::create_symlink("a", path("out/c"));
    EXPECT_EQ(run({"get", file, "a", "c", "--to", path("out"), "--force"}), ExitCode::no);
    EXPECT_EQ(read("out/a"), "Hello");
}

/// A user who answers with Ctrl-C.
class Impatient : public std::stringbuf {
  protected:
    int_type underflow() override {
        std::raise(SIGINT);
        str("y\n");
        return traits_type::to_int_type('y');
    }
};

TEST_F(Container, AnInterruptionLeavesNoHalfOfAFile) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"put", file, path("tree/a.txt")}), ExitCode::done);
    write("out/a.txt", "old");
    Impatient user;
    std::istream in(&user);
    EXPECT_EQ(run({"get", file, "a.txt", "--to", path("out")}, in, true), ExitCode::interrupted) << err_;
    EXPECT_EQ(read("out/a.txt"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(path("out")), {}), 1) << "no temporary file";
}

/// A pipe that brings a piece, and Ctrl-C with it.
class Interrupting : public std::stringbuf {
  protected:
    int_type underflow() override {
        if (ended_)
            return traits_type::eof();
        ended_ = true;
        std::raise(SIGINT);
        str("piece");
        return traits_type::to_int_type('p');
    }

  private:
    bool ended_ = false;
};

TEST_F(Container, AnInterruptionTakesTheNewContainerAwayAndNoOther) {
    const auto put = [&](const std::string& file) {
        Interrupting pipe;
        std::istream in(&pipe);
        return run({"put", file, "-", "--as", "x"}, in, false);
    };
    for (const char* const scheme : {"", "lumstg://"}) {
        EXPECT_EQ(put(scheme + path("new.st")), ExitCode::interrupted) << err_;
        EXPECT_FALSE(fs::exists(path("new.st")));
    }
    ASSERT_EQ(run({"create", path("empty.st")}), ExitCode::done) << err_;
    EXPECT_EQ(put(path("empty.st")), ExitCode::interrupted);
    EXPECT_EQ(run({"ls", path("empty.st")}), ExitCode::done) << "it was there before";
    EXPECT_EQ(out_, "");
}

} // namespace
} // namespace host
