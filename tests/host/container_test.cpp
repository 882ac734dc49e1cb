// SPDX-License-Identifier: Apache-2.0
#include "host/terminal/text_output.h"
#include "tests/host/container_fixture.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/storage/storage_rw.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace host {
namespace {

namespace fs = std::filesystem;

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
        ASSERT_EQ(with({"get", file, "*", "--to", path("out"), "--force"}), ExitCode::done) << err_;
        for (const char* const name : {"a.txt", "sub/b.bin", "empty"}) {
            EXPECT_EQ(read(std::string("out/in/tree/") + name), read(std::string("tree/") + name));
            const auto seconds = [&](const char* tree) {
                return std::chrono::floor<std::chrono::seconds>(fs::last_write_time(path(tree) + name));
            };
            EXPECT_EQ(seconds("tree/"), seconds("out/in/tree/"));
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
    EXPECT_EQ(run({"get", file, "box.st", "--force", "--to", folder_.string()}), ExitCode::malformed);
    EXPECT_EQ(read("box.st"), before) << "not over the container itself";

    write("out/a.txt", "old");
    EXPECT_EQ(run({"get", file, "a.txt", "--to", path("out")}), ExitCode::no);
    EXPECT_NE(err_.find("--force"), std::string::npos) << err_;
    EXPECT_EQ(read("out/a.txt"), "old");
    ASSERT_EQ(run({"get", file, "a.txt", "--to", path("out"), "--force"}), ExitCode::done) << err_;
    EXPECT_EQ(read("out/a.txt"), "Hello");

    const auto second = before.find(std::string(512, 'x')) + 512;
    write("box.st", std::string(before).replace(second, 2, "??")); // the next block's header
    write("out/box.st", "old");
    EXPECT_EQ(run({"get", file, "box.st", "--force", "--to", path("out")}), ExitCode::no);
    EXPECT_EQ(read("out/box.st"), "old");
    EXPECT_EQ(run({"get", file, "box.st", "--to", path("new")}), ExitCode::no);
    EXPECT_TRUE(fs::is_empty(path("new"))) << "no half of a file";
}

TEST_F(Container, PutMergesNoFiles) {
    const std::string file = path("c.st");
    write("other/a.txt", "another");
    EXPECT_EQ(run({"put", file, path("tree/a.txt"), path("other/a.txt")}), ExitCode::malformed);
    EXPECT_NE(err_.find("other/a.txt"), std::string::npos) << err_;
    EXPECT_FALSE(fs::exists(file)) << "refused before anything is written";
}

TEST_F(Container, TheSchemeOfAURLSaysTheLayout) {
    ASSERT_EQ(run({"put", path("narrow"), path("tree/a.txt")}), ExitCode::done);
    ASSERT_EQ(run({"put", "LUMSTG64://" + path("wide"), path("tree/a.txt")}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", "--64", "LumStg://" + path("narrow"), "a.txt"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", "--64", path("wide"), "a.txt"}), ExitCode::done) << err_;
    EXPECT_EQ(out_, "Hello");
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
    EXPECT_THROW(core::write_text_file(name, [](core::wostream& out) { out << u'x'; }), core::FileException);
    EXPECT_EQ(read("tree/a.txt"), "Hello");
}

TEST_F(Container, PutsStandardInputUnderAName) {
    const std::string file = path("c.st");
    std::istringstream in(std::string(3 << 20, 'x') + "end");
    ASSERT_EQ(run({"put", file, "-", "--as", "log.txt", "--into", "in"}, in, false), ExitCode::done) << err_;
    ASSERT_EQ(run({"put", file, path("tree/a.txt"), "--as", "b/c"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"cat", file, "*"}), ExitCode::done);
    EXPECT_EQ(out_, "Hello" + in.str());
    const std::vector<std::vector<std::string>> wrong = {
        {"put", file, "-"},
        {"put", file, "-", path("tree/a.txt"), "--as", "x"},
        {"put", file, path("tree"), "--as", "x"},
        {"put", file, path("tree/a.txt"), path("tree/empty"), "--as", "x"}};
    for (const auto& arguments : wrong)
        EXPECT_EQ(run(arguments), ExitCode::usage);
    EXPECT_EQ(run({"ls", file, "x"}), ExitCode::no);
}

TEST_F(Container, PutKeepsItsOrderWithLargeFilesAmongSmallOnes) {
    const std::string file = path("c.st");
    const std::string large(9 << 20, 'l');
    write("mix/a", large + "a");
    write("mix/b", "small");
    write("mix/c", large + "c");
    ASSERT_EQ(run({"put", file, path("mix")}), ExitCode::done) << err_;
    EXPECT_EQ(run({"info", file, "--json"}), ExitCode::done);
    EXPECT_NE(out_.find(R"("changeCounter": 1,)"), std::string::npos) << "one commit: " << out_;
    EXPECT_EQ(run({"cat", file, "*"}), ExitCode::done);
    EXPECT_TRUE(out_ == large + "a" + "small" + large + "c");
}

TEST_F(Container, GetFoldsNoTwoFilesIntoOne) {
    const std::string file = path("c.st");
    for (const char* const name : {"a", "./a", "x/../a", "b"})
        ASSERT_EQ(run({"put", file, path("tree/a.txt"), "--as", name}), ExitCode::done) << err_;
    EXPECT_EQ(run({"get", file, "*", "--to", path("out")}), ExitCode::no);
    EXPECT_EQ(read("out/b"), "Hello") << "the others come out";
    EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 2) << err_;
    fs::remove_all(path("out"));
    write("out/a", "");
    fs::create_hard_link(path("out/a"), path("out/c"));
    ASSERT_EQ(run({"put", file, path("tree/sub/b.bin"), "--as", "c"}), ExitCode::done);
    EXPECT_EQ(run({"get", file, "a", "c", "--to", path("out"), "--force"}), ExitCode::done);
    EXPECT_EQ(read("out/a"), "Hello") << "a name of its own from now on";
}

TEST_F(Container, AsksAtATerminalBeforeItReplaces) {
    const std::string file = path("c.st");
    ASSERT_EQ(run({"put", file, path("tree/a.txt"), path("tree/empty")}), ExitCode::done);
    write("out/a.txt", "old");
    write("out/empty", "old");
    std::istringstream answers("n\nДа\n");
    EXPECT_EQ(run({"get", file, "*", "--to", path("out")}, answers, true), ExitCode::no);
    EXPECT_NE(out_.find("out/empty"), std::string::npos) << out_;
    EXPECT_EQ(read("out/a.txt"), "old");
    EXPECT_EQ(read("out/empty"), "");
}

TEST_F(Container, TellsWhatItWouldDo) {
    const std::string file = path("c.st");
    EXPECT_EQ(run({"put", file, path("tree"), "--dry-run"}), ExitCode::done) << err_;
    EXPECT_EQ(out_, "would add tree/a.txt\nwould add tree/empty\nwould add tree/sub/b.bin\n");
    EXPECT_FALSE(fs::exists(file));
    ASSERT_EQ(run({"put", file, path("tree")}), ExitCode::done);
    const std::string before = read("c.st");
    EXPECT_EQ(run({"put", file, path("tree/a.txt"), "--into", "tree", "--dry-run"}), ExitCode::done);
    EXPECT_EQ(out_, "would replace tree/a.txt\n");
    EXPECT_EQ(run({"rm", file, "*a*", "none", "--dry-run"}), ExitCode::no);
    EXPECT_EQ(out_, "would remove tree/a.txt\n");
    EXPECT_EQ(run({"mv", file, "tree/a.txt", "tree/empty", "--dry-run"}), ExitCode::done);
    EXPECT_EQ(out_, "would replace tree/empty\nwould rename tree/a.txt to tree/empty\n");
    EXPECT_EQ(run({"mv", file, "none", "a", "--dry-run"}), ExitCode::no);
    EXPECT_EQ(run({"mv", file, "tree/a.txt", "tree/a.txt", "--dry-run"}), ExitCode::malformed);
    EXPECT_EQ(read("c.st"), before);
}

TEST_F(Container, ShowsATreeAndWhatIsKnownOfAFile) {
    const std::string file = path("c.st");
    for (const char* const name : {"b/x", "B/y", "b/c/z", "b", "a.txt"})
        ASSERT_EQ(run({"put", file, path("tree/a.txt"), "--as", name}), ExitCode::done) << err_;
    EXPECT_EQ(run({"tree", file}), ExitCode::done);
    EXPECT_EQ(out_, "           5  B/\n           5    y\n           5  a.txt\n           5  b\n"
                    "          10  b/\n           5    c/\n           5      z\n           5    x\n");
    EXPECT_EQ(run({"stat", file, "b/x", "none"}), ExitCode::no);
    EXPECT_NE(out_.find(file + "/b/x"), std::string::npos) << out_;
    EXPECT_NE(out_.find("version"), std::string::npos) << out_;
    EXPECT_EQ(run({"stat", file, "B/y", "--json"}), ExitCode::done);
    EXPECT_NE(out_.find("\"version\": 2"), std::string::npos) << "the second change: " << out_;
    EXPECT_EQ(run({"verify", file}), ExitCode::done);
    EXPECT_NE(out_.find("files: 5"), std::string::npos) << out_;
    const std::string deep(40'000, '/');
    ASSERT_EQ(run({"put", file, path("tree/a.txt"), "--as", deep}), ExitCode::done) << err_;
    EXPECT_EQ(run({"tree", file, deep}), ExitCode::done);
    EXPECT_EQ(std::count(out_.begin(), out_.end(), '\n'), 40'001);
}

TEST_F(Container, TellsHowTwoDiffer) {
    const std::string one = path("one.st");
    const std::string other = path("other.st");
    ASSERT_EQ(run({"put", one, path("tree")}), ExitCode::done);
    fs::copy_file(one, other);
    EXPECT_EQ(run({"diff", one, other}), ExitCode::done) << out_;
    write("tree/a.txt", "Jello");
    write("tree/sub/b.bin", "longer");
    ASSERT_EQ(run({"put", other, path("tree")}), ExitCode::done);
    ASSERT_EQ(run({"mv", other, "tree/empty", "tree/Empty"}), ExitCode::done);
    EXPECT_EQ(run({"diff", one, other}), ExitCode::no);
    EXPECT_EQ(out_, "~ tree/a.txt\n+ tree/Empty\n- tree/empty\n~ tree/sub/b.bin\n");
    EXPECT_EQ(run({"diff", one, other, "*empty"}), ExitCode::no);
    EXPECT_EQ(out_, "- tree/empty\n");
    EXPECT_EQ(run({"verify", other}), ExitCode::done);
    std::string damaged = read("other.st");
    damaged.replace(damaged.find("longer") - 2, 2, "??"); // the end of its block header
    write("other.st", damaged);
    write("one.st", damaged);
    EXPECT_EQ(run({"diff", one, other}), ExitCode::no);
    EXPECT_EQ(out_, "! tree/sub/b.bin\n");
    EXPECT_EQ(run({"verify", other}), ExitCode::no);
    EXPECT_NE(err_.find(other + "/tree/sub/b.bin"), std::string::npos) << err_;
}

TEST_F(Container, HelpIsInTheLanguageThatIsAskedFor) {
    EXPECT_EQ(run({"put", "--help"}), ExitCode::done);
    EXPECT_NE(out_.find("Files and folders"), std::string::npos) << out_;
    EXPECT_EQ(run({"put", "--help", "--lang", "ru"}), ExitCode::done);
    EXPECT_NE(out_.find("Файлы и папки"), std::string::npos) << out_;
    EXPECT_EQ(out_.find("Options"), std::string::npos) << out_;
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

/// One bad file costs one file.
TEST_F(Container, GoesOnWhereAFileIsDamaged) {
    const std::string file = path("c.st");
    write("in/a", std::string(2000, 'a'));
    write("in/b", std::string(2000, 'b'));
    write("in/c", std::string(2000, 'c'));
    ASSERT_EQ(run({"put", file, path("in")}), ExitCode::done) << err_;
    std::string bytes = read("c.st");
    const auto content = bytes.find(std::string(400, 'b'));
    ASSERT_NE(content, std::string::npos);
    bytes[content + 10] = 'x';
    write("c.st", bytes);
    EXPECT_EQ(run({"ls", file}), ExitCode::done) << err_;
    EXPECT_NE(out_.find("in/b\n"), std::string::npos) << out_;
    EXPECT_EQ(run({"check", file}), ExitCode::no);
    EXPECT_NE(out_.find("“in/b”"), std::string::npos) << out_;
    EXPECT_EQ(run({"get", file, "*", "--to", path("out")}), ExitCode::no);
    EXPECT_NE(err_.find("c.st/in/b"), std::string::npos) << err_;
    EXPECT_EQ(read("out/in/a"), read("in/a"));
    EXPECT_EQ(read("out/in/c"), read("in/c"));
    EXPECT_FALSE(fs::exists(path("out/in/b")));
    EXPECT_EQ(run({"salvage", file, path("saved.st")}), ExitCode::no);
    EXPECT_NE(out_.find("“in/b” was saved, but"), std::string::npos) << out_;
    EXPECT_NE(out_.find("files whole: 2, altered: 1, cut: 0, lost: 0"), std::string::npos) << out_;
    EXPECT_EQ(run({"cat", path("saved.st"), "in/c"}), ExitCode::done);
    EXPECT_EQ(out_, read("in/c"));
    EXPECT_NE(run({"salvage", file, path("saved.st")}), ExitCode::done) << "never over another file";
    const auto header = bytes.rfind("\r\n", content) - 5; // within the address in front of the content
    bytes[header] = 'x';
    write("c.st", bytes);
    EXPECT_EQ(run({"ls", file}), ExitCode::done) << err_;
    EXPECT_NE(out_.find("in/b  (damaged)\n"), std::string::npos) << out_;
    EXPECT_EQ(out_.find("in/c  ("), std::string::npos) << out_;
    EXPECT_EQ(run({"ls", file, "--lang", "ru"}), ExitCode::done) << err_;
    EXPECT_NE(out_.find("in/b  (повреждён)\n"), std::string::npos) << out_;
    EXPECT_EQ(run({"rm", file, "in/a"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"compact", file}), ExitCode::no);
    EXPECT_NE(err_.find("c.st/in/b"), std::string::npos) << err_;
    EXPECT_EQ(run({"get", file, "in/c", "--to", path("packed")}), ExitCode::done) << err_;
    EXPECT_EQ(read("packed/in/c"), read("in/c"));
    EXPECT_EQ(run({"rm", file, "in/b"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"compact", file}), ExitCode::done) << err_;
    EXPECT_EQ(run({"check", file}), ExitCode::done) << out_;
    EXPECT_EQ(run({"get", file, "*", "--to", path("again")}), ExitCode::done) << err_;
    EXPECT_NE(run({"salvage", path("in/a"), path("none.st")}), ExitCode::done);
    EXPECT_FALSE(fs::exists(path("none.st")));
}

} // namespace
} // namespace host
