// SPDX-License-Identifier: Apache-2.0
// What the console and the commands answer where an argument is wrong or a step fails, and that what they
// write for people says what they write for programs.
#include "host/commands/session.h"
#include "tests/host/container_fixture.h"
#include "tests/host/program_fixture.h"

#include <core/files/disk_file.h>
#include <core/storage/storage_rw.h>
#include <core/streams/converter.h>
#include <host/host_process.h>

#include <nlohmann/json.hpp>

namespace host {
namespace {

using nlohmann::json;

class DotCommandsTest : public FolderTest {
  protected:
    /// What the console completes behind `before`.
    static std::vector<std::string> names(std::string_view before) {
        std::istringstream in;
        std::ostringstream out;
        Console console{in, out, out};
        const host::HostProcess process;
        std::vector<std::string> names;
        for (const core::wstring& name : Session(console).complete(core::from_utf8(before)).names)
            names.push_back(core::to_utf8(name));
        return names;
    }
};

TEST_F(DotCommandsTest, RefuseWrongArgumentsAndGoOn) {
    const struct {
        const char* input;
        const char* err;
    } cases[] = {
        {".exit seven", "corehost: The command .exit does not take “seven”.\n"},
        {".exit 300", "corehost: The command .exit does not take “300”.\n"},
        {".выход 5x", "corehost: The command .выход does not take “5x”.\n"},
        {".exit -1", "corehost: The command .exit does not take “-1”.\n"},
        {".timer maybe", "corehost: The command .timer does not take “maybe”.\n"},
        {".форма tabel", "corehost: The command .форма does not take “tabel”. Did you mean table?\n"},
        {".спарвка", "corehost: There is no command .спарвка; .help lists them. Did you mean .справка?\n"},
        {".describe Mapp", "corehost: There is no type Mapp. Did you mean Map?\n"},
        {".help Map.Cuont", "corehost: The type Map has no member Cuont. Did you mean Count?\n"},
        {".describe --lost", "corehost: corehost describe has no option --lost.\n"},
        {".describe Map Array", "corehost: corehost describe takes no further argument “Array”.\n"},
    };
    for (const auto& c : cases) {
        const Answer answer = corehost({"repl"}, c.input + std::string("\n1 + 1\n"));
        EXPECT_EQ(answer.out, "2\n") << c.input;
        EXPECT_EQ(answer.err, c.err) << c.input;
        EXPECT_EQ(answer.code, ExitCode::malformed) << c.input;
    }
    EXPECT_EQ(corehost({"repl"}, ".help Map").out, corehost({"describe", "Map"}).out);
    EXPECT_EQ(corehost({"repl"}, ".справка Map.Count").out, corehost({"describe", "Map.Count"}).out);
    const Answer help = corehost({"repl"}, ".describe --help");
    EXPECT_NE(help.out.find("--functions"), std::string::npos);
    EXPECT_EQ(help.code, ExitCode::done);
    const Answer timed =
        corehost({"repl", "--lang", "ru"}, ".время\n1\n.время\n2\n.время да\n3\n.время нет\n4");
    EXPECT_EQ(timed.out, "1\n2\n3\n4\n");
    EXPECT_EQ(std::ranges::count(timed.err, '\n'), 2) << "of two entries: " << timed.err;
}

TEST_F(DotCommandsTest, AScriptThatFailsLeavesTheConsole) {
    const std::string stops = file("stops.script", "x = 7;\nx = 1 / 0;");
    const Answer answer = corehost({"repl"}, ".read " + stops + "\nx");
    EXPECT_EQ(answer.out, "7\n");
    EXPECT_EQ(answer.err.substr(0, answer.err.find('\n')), stops + ":2:7: Division by zero.");
    EXPECT_EQ(answer.code, ExitCode::malformed);
    const Answer torn = corehost({"repl"}, ".read " + file("torn.script", "If True Then") + "\n5");
    EXPECT_EQ(torn.out, "5\n");
    EXPECT_NE(torn.err.find("torn.script:1:"), std::string::npos) << torn.err;
    const Answer left = corehost({"repl"}, ".read " + file("exit.script", "Print(1); Exit(3);") + "\n5");
    EXPECT_EQ(left.out, "1\n");
    EXPECT_EQ(static_cast<int>(left.code), 3);
}

TEST_F(DotCommandsTest, OutputThatIsLostIsTold) {
    const Answer answer = corehost({"repl"}, ".output /dev/full\n\"lost\"\n.output\n\"shown\"");
    EXPECT_EQ(answer.out, "\"shown\"\n");
    EXPECT_EQ(answer.err, "corehost: The output could not be written.\n");
    EXPECT_EQ(answer.code, ExitCode::malformed);
    const std::string first = path("first");
    const std::string second = path("second");
    EXPECT_EQ(corehost({"repl"}, ".output " + first + "\n1\n.output " + second + "\n2\n.output\n3").out,
              "3\n");
    EXPECT_EQ(text_of(first), "1\n");
    EXPECT_EQ(text_of(second), "2\n");
}

TEST_F(DotCommandsTest, AreCompleted) {
    EXPECT_EQ(names(".").size(), 7U) << "in the language of the console";
    EXPECT_EQ(names(".ex"), std::vector<std::string>{".exit "});
    EXPECT_EQ(names(".ВЫ"), (std::vector<std::string>{".выход ", ".вывод "}));
    EXPECT_EQ(names(".mode ").size(), 8U);
    EXPECT_EQ(names(".mode json"), (std::vector<std::string>{"json", "jsonl"}));
    EXPECT_EQ(names(".help Standa"), names(".describe Standa"));
    for (const char* const before : {".timer o", ".exit 1", ".lost a", ".mode xml"})
        EXPECT_EQ(names(before), std::vector<std::string>()) << before;
}

/// The lines of a text.
std::vector<std::string> lines_of(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

class ReportsTest : public FolderTest {};

TEST_F(ReportsTest, OfTypesAndEncodingsSayTheSameToPeopleAndPrograms) {
    const json types = json::parse(corehost({"--json", "describe"}).out);
    const std::vector<std::string> shown = lines_of(corehost({"describe"}).out);
    ASSERT_EQ(types.size(), shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const std::string& line = shown[i];
        EXPECT_TRUE(line.starts_with(types[i]["name"]["en"].get<std::string>() + ' ')) << line;
        EXPECT_NE(line.find(' ' + types[i]["name"]["ru"].get<std::string>()), std::string::npos) << line;
        EXPECT_TRUE(line.ends_with(types[i]["presentation"].get<std::string>())) << line;
    }
    const json encodings = json::parse(corehost({"--json", "text", "encodings"}).out);
    const std::vector<std::string> rows = lines_of(corehost({"text", "encodings"}).out);
    ASSERT_EQ(encodings.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(rows[i].starts_with(encodings[i]["name"].get<std::string>())) << rows[i];
        for (const json& alias : encodings[i]["aliases"])
            EXPECT_NE(rows[i].find(alias.get<std::string>()), std::string::npos) << rows[i] << alias;
    }
}

TEST_F(ReportsTest, OfTextsNameTheFirstFault) {
    const std::string bad = file("bad.txt", "\xEF\xBB\xBFgood\n\xFF, \xFE");
    const Answer answer = corehost({"--json", "text", "info", bad, path("none"), "-"}, "plain");
    EXPECT_EQ(answer.code, ExitCode::io) << "the last of them is sound";
    const std::vector<std::string> lines = lines_of(answer.out);
    ASSERT_EQ(lines.size(), 2U) << answer.out;
    EXPECT_EQ(json::parse(lines[0])["faults"], 2);
    EXPECT_EQ(json::parse(lines[0])["firstFault"], 8);
    EXPECT_EQ(json::parse(lines[1])["file"], "-");
    EXPECT_FALSE(json::parse(lines[1]).contains("firstFault"));
    EXPECT_NE(answer.err.find("none"), std::string::npos);
}

TEST_F(ReportsTest, OfQueriesReadWhatTheirOptionsSay) {
    const auto query = [](std::vector<std::string> words) {
        words.insert(words.begin(), {"query", "--mode", "csv"});
        const Answer answer = corehost(std::move(words));
        return answer.out + answer.err;
    };
    const std::string tabs = file("tabs.csv", "A\tB\n1,5\tx;y\n");
    EXPECT_EQ(query({tabs, "Table", "--delimiter", "\\t", "--locale", "de"}), "A,B\r\n1.5,x;y\r\n");
    const std::string bars = file("bars.csv", "A|B\n1|2,3;4\n");
    EXPECT_EQ(query({bars, "Table", "--delimiter", "|"}), "A,B\r\n1,\"2,3;4\"\r\n");
    const std::string old = file("old.csv", core::encode_text(u"Имя\nда\n", core::Encoding(u"IBM866")));
    EXPECT_EQ(query({old, "Table", "--encoding", "cp866"}), "Имя\r\nда\r\n");
    EXPECT_EQ(query({file("If.csv", "A\n1\n"), "Table.Count()"}), "1\n")
        << "If cannot be the name of a table";
    EXPECT_EQ(query({file("2 names.csv", "A\n1\n"), "Table.Count()"}), "1\n");
}

TEST_F(ReportsTest, OfFilesInTheLanguageOfTheUser) {
    const std::string none = path("none.script");
    EXPECT_EQ(corehost({"--lang", "ru", "run", none}).err,
              "corehost: Не удалось открыть файл " + none + ": Нет такого файла или каталога.\n");
    EXPECT_EQ(corehost({"run", none}).err,
              "corehost: The file " + none + " could not be opened: No such file or directory.\n");
}

TEST_F(ReportsTest, OfWhatCannotBeLoaded) {
    const Answer missing = corehost({"--module", path("none.so"), "describe", "Map"});
    EXPECT_EQ(missing.code, ExitCode::io);
    EXPECT_NE(missing.err.find("none.so"), std::string::npos) << missing.err;
    const Answer foreign = corehost({"--module", file("plain.so", "no module"), "describe", "Map"});
    EXPECT_EQ(foreign.code, ExitCode::malformed);
    EXPECT_NE(foreign.err.find("plain.so"), std::string::npos) << foreign.err;
    EXPECT_EQ(corehost({"--lang=ru", "--help"}).out, corehost({"--lang", "ru", "--help"}).out);
    EXPECT_NE(corehost({"--lang=ru", "--help"}).out, corehost({"--lang=en", "--help"}).out);
}

TEST_F(Container, PutsNothingWhereASourceIsMissingOrTheContainerItself) {
    const std::string file = path("c.st");
    EXPECT_EQ(run({"put", file, path("tree/a.txt"), path("none")}), ExitCode::io);
    EXPECT_NE(err_.find("none"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(file));
    ASSERT_EQ(run({"put", file, path("tree/a.txt")}), ExitCode::done) << err_;
    const std::string before = read("c.st");
    EXPECT_EQ(run({"put", file, path("tree/empty"), file}), ExitCode::malformed);
    EXPECT_NE(err_.find("c.st"), std::string::npos) << err_;
    EXPECT_EQ(run({"ls", file}), ExitCode::done);
    EXPECT_EQ(out_.find("empty"), std::string::npos) << "all or nothing: " << out_;
    EXPECT_EQ(run({"put", file, "-", "--as", "in", "--dry-run"}), ExitCode::done);
    EXPECT_EQ(out_, "would add in\n");
    EXPECT_EQ(run({"cat", file, "a.txt"}), ExitCode::done);
    EXPECT_EQ(out_, "Hello");
}

TEST_F(Container, ShowsWhatIsNotKnownOfAFileAndWhatIsDamaged) {
    core::StorageRW64::create(*core::open_disk_file(path("c.st"), core::OpenMode::createNew));
    {
        core::StorageRW64 storage(core::open_disk_file(path("c.st"), core::OpenMode::readWrite));
        storage.put(u"old", {});
        storage.setTimes(u"old", core::Date(), core::Date());
        const std::string content(2000, 'c');
        storage.put(u"torn", std::as_bytes(std::span(content)));
    }
    EXPECT_EQ(run({"stat", "--64", path("c.st"), "old"}), ExitCode::done);
    EXPECT_EQ(lines_of(out_).size(), 6U) << out_;
    EXPECT_NE(lines_of(out_)[3].find(" -"), std::string::npos) << out_;
    std::string bytes = read("c.st");
    const auto begin = bytes.find(std::string(400, 'c'));
    ASSERT_NE(begin, std::string::npos);
    bytes.replace(begin - 2, 2, "??"); // the end of its block header
    write("c.st", bytes);
    EXPECT_EQ(run({"stat", "--64", path("c.st"), "torn"}), ExitCode::done);
    EXPECT_NE(err_.find("torn is damaged"), std::string::npos) << err_ << out_;
    EXPECT_EQ(run({"stat", "--64", path("c.st"), "*", "--json"}), ExitCode::done);
    const json all = json::parse(out_);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0]["damaged"], false);
    EXPECT_EQ(all[1]["damaged"], true);
}

} // namespace
} // namespace host
