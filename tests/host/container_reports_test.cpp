// SPDX-License-Identifier: Apache-2.0
#include "tests/host/container_fixture.h"

#include <nlohmann/json.hpp>

#include <set>

namespace host {
namespace {

/// What the commands report of a container with three files, two of them damaged: a content with a wrong
/// byte, and a file whose first block cannot be read.
class ContainerReports : public Container {
  protected:
    void SetUp() override {
        for (const char name : {'a', 'b', 'c'})
            write(std::string("in/") + name, std::string(2000, name));
        ASSERT_EQ(run({"put", file_, path("in")}), ExitCode::done) << err_;
        std::filesystem::copy_file(file_, sound_);
        std::string bytes = read("c.st");
        const auto content = bytes.find(std::string(400, 'b'));
        const auto begin = bytes.find(std::string(400, 'c'));
        ASSERT_NE(content, std::string::npos);
        ASSERT_NE(begin, std::string::npos);
        bytes[content + 10] = 'x';
        bytes.replace(begin - 2, 2, "??"); // the end of its block header
        write("c.st", bytes);
    }

    /// The report of a command as JSON. What it says as text goes into `text_`.
    nlohmann::json report(std::vector<std::string> words, ExitCode expected) {
        EXPECT_EQ(run(words), expected) << err_;
        text_ = out_ + err_;
        words.emplace_back("--json");
        EXPECT_EQ(run(words), expected) << err_;
        return nlohmann::json::parse(out_);
    }
    bool says(const std::string& words) const { return text_.find(words) != std::string::npos; }

    const std::string file_ = path("c.st");
    const std::string sound_ = path("sound.st");
    std::string text_;
};

TEST_F(ContainerReports, NameWhatIsDamaged) {
    const auto check = report({"check", file_}, ExitCode::no);
    EXPECT_EQ(check.at("files"), 3);
    std::set<std::string> named;
    for (const auto& problem : check.at("problems")) {
        named.insert(problem.at("name"));
        EXPECT_TRUE(says(problem.at("text"))) << problem;
    }
    EXPECT_EQ(named, (std::set<std::string>{"", "in/b", "in/c"}))
        << "blocks that belong to no file have no name";

    const auto verify = report({"verify", file_}, ExitCode::no);
    EXPECT_EQ(verify.at("files"), 3);
    EXPECT_EQ(verify.at("damaged"), 1) << "it reads how files begin, not all of them";
    EXPECT_TRUE(says("c.st/in/c")) << text_;
    EXPECT_FALSE(says("c.st/in/b")) << text_;

    const auto diff = report({"diff", sound_, file_}, ExitCode::no);
    ASSERT_EQ(diff.size(), 2U) << diff;
    EXPECT_EQ(diff.at(0), (nlohmann::json{{"name", "in/b"}, {"is", "damaged"}}));
    EXPECT_EQ(diff.at(1), (nlohmann::json{{"name", "in/c"}, {"is", "damaged"}}));
    EXPECT_TRUE(says("! in/b\n! in/c\n")) << text_;
}

TEST_F(ContainerReports, TellWhatWasSaved) {
    EXPECT_EQ(run({"salvage", file_, path("text.st")}), ExitCode::no) << err_;
    const std::string text = out_;
    EXPECT_EQ(run({"salvage", file_, path("json.st"), "--json"}), ExitCode::no) << err_;
    const auto all = nlohmann::json::parse(out_);
    EXPECT_EQ(all.at("source"), "table");
    EXPECT_EQ(all.at("whole"), 2) << "the content itself is sound behind the block header";
    EXPECT_EQ(all.at("altered"), 1);
    ASSERT_EQ(all.at("files").size(), 1U) << "what is not whole";
    for (const auto& one : all.at("files")) {
        EXPECT_NE(text.find(one.at("text")), std::string::npos) << text;
        EXPECT_LE(one.at("saved"), one.at("size"));
    }
    EXPECT_EQ(run({"salvage", sound_, path("whole.st")}), ExitCode::done) << err_;
    EXPECT_EQ(run({"diff", sound_, path("whole.st")}), ExitCode::done) << out_;
    for (const std::string scheme :
         {"lumstg", "lumstg64"}) // the URL says how wide the layout is, and "from" need not
        EXPECT_EQ(run({"salvage", scheme + "://" + sound_, path(scheme)}),
                  scheme == "lumstg" ? ExitCode::done : ExitCode::malformed)
            << err_;
}

TEST_F(ContainerReports, CatGoesOnBehindADamagedFile) {
    std::string bytes = read("sound.st");
    bytes[bytes.find(std::string(400, 'a')) - 5] = 'x'; // within its block header
    write("sound.st", bytes);
    EXPECT_EQ(run({"cat", sound_, "in/*"}), ExitCode::no);
    EXPECT_EQ(out_, read("in/b") + read("in/c"));
    EXPECT_NE(err_.find("sound.st/in/a is damaged"), std::string::npos) << err_;
    EXPECT_EQ(run({"cat", sound_, "in/b"}), ExitCode::done) << err_;
}

/// The files below a damaged node of the table cannot be reached; all others can be removed and replaced.
TEST_F(ContainerReports, ChangesGoAroundADamagedPartOfTheTable) {
    for (int i = 100; i < 400; ++i)
        write("many/" + std::to_string(i), "text");
    const std::string box = path("many.st");
    ASSERT_EQ(run({"put", box, path("many")}), ExitCode::done) << err_;
    std::string bytes = read("many.st");
    const auto leaf = bytes.find("file" + std::string(4, '\0')); // the kind, the level: the first leaf
    ASSERT_NE(leaf, std::string::npos);
    bytes[leaf + 100] ^= 1;
    write("many.st", bytes);
    EXPECT_EQ(run({"ls", box}), ExitCode::no);
    ASSERT_EQ(out_.find("many/100\n"), std::string::npos);
    EXPECT_EQ(run({"rm", box, "many/399"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"put", box, path("many/398"), "--as", "many/398"}), ExitCode::done) << err_;
    EXPECT_EQ(run({"rm", box, "many/100"}), ExitCode::no);
    EXPECT_NE(err_.find("part of the table"), std::string::npos) << err_;
    EXPECT_EQ(err_.find("no inner file"), std::string::npos) << err_;
    EXPECT_EQ(run({"put", box, path("many/100"), "--as", "many/100"}), ExitCode::malformed);
    EXPECT_NE(err_.find("many.st/many/100"), std::string::npos) << err_;
    EXPECT_NE(err_.find("corehost container salvage " + box), std::string::npos) << err_;
    EXPECT_EQ(run({"compact", box}), ExitCode::malformed);
    EXPECT_NE(err_.find("salvage"), std::string::npos) << err_;
    EXPECT_EQ(run({"rm", box, "*"}), ExitCode::no) << "not all of them";
    EXPECT_EQ(run({"check", path("in/a")}), ExitCode::malformed);
    EXPECT_EQ(err_.find("salvage"), std::string::npos) << "no container: " << err_;
    EXPECT_EQ(run({"salvage", box, path("saved.st")}), ExitCode::done) << err_;
}

TEST_F(ContainerReports, AreTheSameForASoundOne) {
    const auto ls = report({"ls", sound_}, ExitCode::done);
    ASSERT_EQ(ls.size(), 3U) << ls;
    const auto stat = report({"stat", sound_, "*"}, ExitCode::done);
    ASSERT_EQ(stat.size(), 3U) << stat;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(stat[i].at("name"), ls[i].at("name"));
        EXPECT_EQ(stat[i].at("size"), 2000);
        EXPECT_EQ(stat[i].at("damaged"), false);
        EXPECT_TRUE(says(stat[i].at("url"))) << text_;
    }
    const auto info = report({"info", sound_}, ExitCode::done);
    EXPECT_EQ(info.at("files"), 3) << info;
    const auto tree = report({"tree", sound_}, ExitCode::done);
    EXPECT_FALSE(tree.empty());
    EXPECT_TRUE(report({"check", sound_}, ExitCode::done).at("problems").empty());
    EXPECT_EQ(report({"verify", sound_}, ExitCode::done).at("contentBytes"), 6000);
    EXPECT_EQ(report({"diff", sound_, sound_}, ExitCode::done), nlohmann::json::array());
    EXPECT_EQ(run({"stat", sound_, "none", "--json"}), ExitCode::no);
}

} // namespace
} // namespace host
