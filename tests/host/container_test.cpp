// SPDX-License-Identifier: Apache-2.0
#include "host/commands/program.h"
#include "host/terminal/text_output.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/storage/storage_rw.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace host {
namespace {

namespace fs = std::filesystem;

class Container : public testing::Test {
  protected:
    Container() : folder_(fs::temp_directory_path() / "core-container-XXXXXX") {
        std::string path = folder_.string();
        if (::mkdtemp(path.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder_ = path;
        write("tree/a.txt", "Hello");
        write("tree/sub/b.bin", std::string("\0\1\2", 3));
        write("tree/empty", "");
    }
    ~Container() override { fs::remove_all(folder_); }

    void write(const std::string& name, const std::string& text) const {
        fs::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
        return text.str();
    }
    [[nodiscard]] std::string path(const std::string& name) const { return (folder_ / name).string(); }

    /// Runs "corehost container ..."; what it writes is in out_ and err_.
    ExitCode run(std::vector<std::string> arguments) {
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        Console console{in, out, err};
        if (arguments.at(0) != "run")
            arguments.insert(arguments.begin(), "container");
        const ExitCode code = run_program(std::move(arguments), console);
        out_ = out.str();
        err_ = err.str();
        return code;
    }

    fs::path folder_;
    std::string out_;
    std::string err_;
};

TEST_F(Container, CarriesAFolderThereAndBack) {
    const std::string file = path("c.st");
    for (const char* const layout : {"--64", ""}) {
        const std::vector<std::string> wide(*layout != 0 ? 1 : 0, layout);
        const auto with = [&](std::vector<std::string> arguments) {
            arguments.insert(arguments.end(), wide.begin(), wide.end());
            return run(std::move(arguments));
        };
        fs::remove(file);
        ASSERT_EQ(with({"put", file, path("tree"), "--into", "in"}), ExitCode::done) << err_;
        ASSERT_EQ(with({"check", file}), ExitCode::done) << out_;
        ASSERT_EQ(with({"get", file, "*", "--to", path("out")}), ExitCode::done) << err_;
        for (const char* const name : {"a.txt", "sub/b.bin", "empty"}) {
            EXPECT_EQ(read(std::string("out/in/tree/") + name), read(std::string("tree/") + name));
            struct stat before {};
            struct stat after {};
            ::stat(path(std::string("tree/") + name).c_str(), &before);
            ::stat(path(std::string("out/in/tree/") + name).c_str(), &after);
            EXPECT_EQ(before.st_mtime, after.st_mtime);
        }
        EXPECT_EQ(with({"ls", file, "--json"}), ExitCode::done);
        EXPECT_NE(out_.find(R"("name": "in/tree/a.txt",)"), std::string::npos);
        EXPECT_NE(out_.find(R"("size": 5,)"), std::string::npos);
    }
    EXPECT_EQ(run({"ls", file, "--64"}), ExitCode::malformed) << "the other layout";
    EXPECT_NE(err_.find("leave --64 out"), std::string::npos) << err_;
    ASSERT_EQ(run({"create", path("wide.st"), "--64"}), ExitCode::done);
    EXPECT_EQ(run({"ls", path("wide.st")}), ExitCode::malformed);
    EXPECT_NE(err_.find("say --64"), std::string::npos) << err_;
    EXPECT_EQ(run({"ls", "lumstg://" + file, "*b*"}), ExitCode::done);
    EXPECT_EQ(out_.find("a.txt"), std::string::npos);
    EXPECT_NE(out_.find("in/tree/sub/b.bin"), std::string::npos);
}

TEST_F(Container, ChangesAndReports) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"create", file}), ExitCode::done);
    EXPECT_EQ(run({"create", file}), ExitCode::io) << "not over what is there";
    ASSERT_EQ(run({"put", file, path("tree/a.txt"), path("tree/sub/")}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", file, "a.txt"}), ExitCode::done);
    EXPECT_EQ(out_, "Hello");
    EXPECT_EQ(run({"mv", file, "a.txt", "with?.txt"}), ExitCode::done);
    EXPECT_EQ(run({"mv", file, "a.txt", "other"}), ExitCode::no);
    EXPECT_EQ(run({"mv", file, "with?.txt", "with?.txt"}), ExitCode::malformed);
    EXPECT_EQ(run({"cat", file, "with?.txt", "none"}), ExitCode::no);
    EXPECT_EQ(out_, "Hello");
    EXPECT_NE(err_.find("none"), std::string::npos);
    EXPECT_EQ(run({"rm", file, "sub/*"}), ExitCode::done);
    EXPECT_EQ(run({"rm", file, "sub/*"}), ExitCode::no);
    EXPECT_EQ(run({"info", file}), ExitCode::done);
    EXPECT_NE(out_.find("\n  HH"), std::string::npos) << "a picture of the file";
    EXPECT_EQ(run({"compact", file}), ExitCode::done);
    EXPECT_EQ(run({"info", file, "--json"}), ExitCode::done);
    EXPECT_NE(out_.find(R"("freeBytes": 0,)"), std::string::npos);
    fs::resize_file(file, fs::file_size(file) - 600);
    EXPECT_EQ(run({"check", file}), ExitCode::malformed);
    EXPECT_EQ(run({"ls", path("none")}), ExitCode::io);
    EXPECT_EQ(run({"nonsense", file}), ExitCode::usage);
}

TEST_F(Container, GetReplacesAFileWholeOrNotAtAll) {
    const std::string file = path("box.st");
    write("tree/box.st", std::string(5000, 'x'));
    ASSERT_EQ(run({"put", file, path("tree/box.st"), path("tree/a.txt")}), ExitCode::done) << err_;
    const std::string before = read("box.st");
    EXPECT_EQ(run({"get", file, "box.st", "--to", folder_.string()}), ExitCode::malformed);
    EXPECT_EQ(read("box.st"), before) << "not over the container itself";

    write("out/a.txt", "old");
    fs::permissions(path("out/a.txt"), fs::perms(0600));
    ASSERT_EQ(run({"get", file, "a.txt", "--to", path("out")}), ExitCode::done) << err_;
    EXPECT_EQ(read("out/a.txt"), "Hello");
    EXPECT_EQ(fs::status(path("out/a.txt")).permissions(), fs::perms(0600));

    const auto second = before.find(std::string(512, 'x')) + 512;
    write("box.st", std::string(before).replace(second, 2, "??")); // the next block's header
    write("out/box.st", "old");
    EXPECT_EQ(run({"get", file, "box.st", "--to", path("out")}), ExitCode::malformed);
    EXPECT_EQ(read("out/box.st"), "old");
    EXPECT_EQ(run({"get", file, "box.st", "--to", path("new")}), ExitCode::malformed);
    EXPECT_TRUE(fs::is_empty(path("new"))) << "no half of a file";
}

TEST_F(Container, PutMergesNoFiles) {
    const std::string file = path("c.st");
    write("other/a.txt", "another");
    EXPECT_EQ(run({"put", file, path("tree/a.txt"), path("other/a.txt")}), ExitCode::malformed);
    EXPECT_NE(err_.find("other/a.txt"), std::string::npos) << err_;
    write("bytes/a\xFF", "1");
    EXPECT_EQ(run({"put", file, path("bytes")}), ExitCode::malformed);
    EXPECT_NE(err_.find("a%FF"), std::string::npos) << err_;
    EXPECT_FALSE(fs::exists(file)) << "refused before anything is written";
}

TEST_F(Container, TheSchemeOfAURLSaysTheLayout) {
    ASSERT_EQ(run({"put", path("narrow"), path("tree/a.txt")}), ExitCode::done);
    ASSERT_EQ(run({"put", "LUMSTG64://" + path("wide"), path("tree/a.txt")}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", "--64", "LumStg://" + path("narrow"), "a.txt"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", "--64", path("wide"), "a.txt"}), ExitCode::done) << err_;
    EXPECT_EQ(out_, "Hello");
}

TEST_F(Container, WhatDoesNotFitOnTheDiskLeavesNothing) {
    const auto create = [this] { // within a file of a few bytes
        const struct rlimit limit = {100, RLIM_INFINITY};
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 ? static_cast<int>(run({"create", path("c.st")})) : -1;
    };
    EXPECT_EXIT(::_exit(create()), testing::ExitedWithCode(static_cast<int>(ExitCode::io)), "");
    EXPECT_FALSE(fs::exists(path("c.st")));
    write("empty.st", "");
    const auto put = [this] {
        const struct rlimit limit = {100, RLIM_INFINITY};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return -1;
        return static_cast<int>(run({"put", path("empty.st"), path("tree/a.txt")}));
    };
    EXPECT_EXIT(::_exit(put()), testing::ExitedWithCode(static_cast<int>(ExitCode::io)), "");
    EXPECT_EQ(read("empty.st"), "") << "as it was";
}

TEST_F(Container, TimesThatAreNotKnownAreNotSet) {
    core::StorageRW64::create(*core::open_disk_file(path("c.st"), core::OpenMode::createNew));
    core::StorageRW64 storage(core::open_disk_file(path("c.st"), core::OpenMode::readWrite));
    storage.put(u"a", {});
    storage.setTimes(u"a", core::Date(), core::Date());
    ASSERT_EQ(run({"get", "--64", path("c.st"), "a", "--to", path("out")}), ExitCode::done) << err_;
    EXPECT_LT(fs::file_time_type::clock::now() - fs::last_write_time(path("out/a")), std::chrono::hours(1));
}

TEST_F(Container, TakesNothingOutOfItsFolder) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"put", file, path("tree/a.txt")}), ExitCode::done);
    for (const char* const name : {"../escaped", "/escaped", "x/../../escaped", ".."}) {
        ASSERT_EQ(run({"mv", file, "*", name}), ExitCode::no);
        ASSERT_EQ(run({"mv", file, "a.txt", name}), ExitCode::done);
        ASSERT_EQ(run({"put", file, path("tree/a.txt")}), ExitCode::done);
        EXPECT_EQ(run({"get", file, "*", "--to", path("out")}), ExitCode::no) << name;
        EXPECT_TRUE(fs::remove(folder_ / "out/a.txt")) << "the others come out";
        ASSERT_EQ(run({"rm", file, "a.txt"}), ExitCode::done);
        ASSERT_EQ(run({"mv", file, name, "a.txt"}), ExitCode::done);
    }
    EXPECT_FALSE(fs::exists(folder_ / "escaped"));
}

TEST_F(Container, TextIsNotSavedOverAFileThatAZeroByteCutsOff) {
    const std::string name = path("tree/a.txt") + std::string("\0.new", 5);
    EXPECT_THROW(write_text_file(name, [](core::wostream& out) { out << u'x'; }), core::FileException);
    EXPECT_EQ(read("tree/a.txt"), "Hello");
}

TEST_F(Container, KeepsValuesOfScripts) {
    const auto script = [this](const std::string& text) {
        write("s.script", "C = \"" + path("v.st") + "\"; N = \"values/s\";\n" + text);
        return run({"run", path("s.script")});
    };
    ASSERT_EQ(script("SaveToContainer(C, N, New Structure(\"A, B\", 1.5, \"ж😀\"));\n"
                     "T = ЗагрузитьИзКонтейнера(C, N); Print(T.A); Print(T.B);"),
              ExitCode::done)
        << err_;
    EXPECT_EQ(out_, "1.5\nж😀\n");
    ASSERT_EQ(script("Half = Left(\"😀\", 1); SaveToContainer(C, \"half\", Half);\n"
                     "Print(LoadFromContainer(C, \"half\") = Half);"),
              ExitCode::done)
        << err_;
    EXPECT_EQ(out_, "Yes\n");
    EXPECT_EQ(run({"cat", path("v.st"), "values/s"}), ExitCode::done);
    const std::string kept = out_;
    EXPECT_EQ(kept.front(), '{');

    // what cannot be saved or loaded says where, and changes nothing
    const struct {
        std::string script;
        std::string says;
    } failures[] = {
        {"SaveToContainer(C, N, (New ValueTable).Columns)", "s.script:2:1: "},
        {"SaveToContainer(C + \"/x\", N, 1)", "v.st/x"},
        {"Print(LoadFromContainer(C + \"x\", N))", "v.stx"},
        {"Print(LoadFromContainer(C, \"none\"))", "v.st/none"},
        {"SaveText(C + \".no\", \"no container, whatever its name says\"); Print(LoadFromContainer(C + "
         "\".no\", N))",
         "v.st.no"},
    };
    for (const auto& failure : failures) {
        EXPECT_EQ(script(failure.script), ExitCode::malformed) << failure.script;
        EXPECT_NE(err_.find(failure.says), std::string::npos) << failure.script << err_;
        EXPECT_EQ(out_, "") << failure.script;
    }
    EXPECT_EQ(run({"cat", path("v.st"), "values/s"}), ExitCode::done);
    EXPECT_EQ(out_, kept);
    EXPECT_EQ(run({"check", path("v.st")}), ExitCode::done);
}

} // namespace
} // namespace host
