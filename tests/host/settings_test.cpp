// SPDX-License-Identifier: Apache-2.0
// "corehost settings" and the settings that the program reads when it starts; what docs/settings.md shows for
// scripts works as the page says.
#include "tests/host/settings_fixture.h"
#include "tests/script/script_fixture.h"
#include "tests/support/stopped_clock.h"

#include <core/files.h>
#include <core/files/disk_file.h>
#include <core/profiles/settings.h>

#include <nlohmann/json.hpp>

namespace host {
namespace {

TEST_F(SettingsCommand, GivesBackWhatWasSet) {
    const std::pair<std::string, std::string> values[] = {
        {"text", "a text"}, {"code", "007"}, {"number", "-7.5"}, {"truth", "true"}, {"list", "{\"N\",1}"}};
    for (const auto& [path, value] : values)
        EXPECT_EQ(settings({"set", "a/" + path, "--", value}), ExitCode::done) << path;
    EXPECT_EQ(corehost({"settings", "get", "a/text"}).out, "a text\n");
    EXPECT_EQ(corehost({"settings", "list"}).out,
              "a/code = 007\na/list = 1\na/number = -7.5\na/text = a text\na/truth = true\n");
    const std::string json = corehost({"settings", "get", "--json", "a/code"}).out;
    EXPECT_NE(json.find(R"("type": "String")"), std::string::npos) << json;
    EXPECT_EQ(settings({"get", "none"}), ExitCode::no);
    EXPECT_EQ(settings({"rm", "none"}), ExitCode::no);
    EXPECT_EQ(settings({"set", "a//b", "1"}), ExitCode::malformed);
    EXPECT_EQ(settings({"set", "b", "{no list"}), ExitCode::malformed);

    EXPECT_EQ(settings({"export", path("export.list"), "a"}), ExitCode::done);
    EXPECT_EQ(corehost({"list", "check", path("export.list")}).code, ExitCode::done);
    EXPECT_EQ(settings({"rm", "a"}), ExitCode::done);
    EXPECT_EQ(corehost({"settings", "list"}).out, "");
    EXPECT_EQ(settings({"import", path("export.list"), "b"}), ExitCode::done);
    EXPECT_EQ(corehost({"settings", "get", "b/number"}).out, "-7.5\n");
    EXPECT_EQ(settings({"set", "--layer", "system", "c", "1"}), ExitCode::done);
    EXPECT_TRUE(std::filesystem::exists(path("etc/corehost/settings.list")));
}

TEST_F(SettingsCommand, AFileThatCannotBeHadIsAFailureOfFiles) {
    ASSERT_EQ(settings({"set", "a", "1"}), ExitCode::done);
    {
        const auto files = core::create_file_system();
        const auto file =
            files->openURL(core::file_url(path("config/corehost/settings.list")), core::OpenMode::create);
        const core::InterfacePtr<core::ISharedFile> shared(file);
        ASSERT_TRUE(shared->tryLock(core::kMaxFileLength - 1, 1, core::LockKind::exclusive));
        const StoppedClock clock({}); // no time passes while the program waits
        EXPECT_EQ(settings({"set", "a", "2"}), ExitCode::io);
        EXPECT_EQ(corehost({"settings", "get", "a"}).out, "1\n") << "who reads does not wait";
    }
    EXPECT_EQ(settings({"set", "a", "2"}), ExitCode::done);
    const Answer lost = corehost({"settings", "export", path("none/export.list")});
    EXPECT_EQ(lost.code, ExitCode::io);
    EXPECT_NE(lost.err.find(path("none/export.list")), std::string::npos) << lost.err;
    const support::EnvironmentVariable home("HOME", nullptr);
    const support::EnvironmentVariable user(support::kUserConfigFolder, nullptr);
    EXPECT_EQ(settings({"set", "a", "3"}), ExitCode::io) << "there is no place for it";
}

TEST_F(SettingsCommand, TellsTheTypeAndTheLayerOfEachValue) {
    struct Case {
        std::vector<std::string> given;
        std::string value, type;
    };
    const Case cases[] = {{{"false"}, "false", "Boolean"},
                          {{"--text", "true"}, "true", "String"},
                          {{"1.5"}, "1.5", "Number"},
                          {{"1.50"}, "1.50", "String"},
                          {{"+1"}, "+1", "String"},
                          {{""}, "", "String"},
                          {{"{\"B\",0}"}, "false", "Boolean"},
                          {{"--text", "{\"N\",1}"}, "{\"N\",1}", "String"},
                          {{"True"}, "True", "String"},
                          {{"два\nслова"}, "два\nслова", "String"}};
    for (const Case& one : cases) {
        std::vector<std::string> arguments = {"set", "--layer", "system", "f/v"};
        arguments.insert(arguments.end(), one.given.begin(), one.given.end());
        ASSERT_EQ(settings(arguments), ExitCode::done) << one.value;
        const Answer answer = corehost({"--json", "settings", "list", "f"});
        const nlohmann::json expected = {
            {{"path", "f/v"}, {"value", one.value}, {"type", one.type}, {"layer", "system"}}};
        EXPECT_EQ(nlohmann::json::parse(answer.out), expected) << answer.out << answer.err;
        EXPECT_EQ(nlohmann::json::parse(corehost({"--json", "settings", "get", "f/v"}).out), expected[0]);
    }
    EXPECT_EQ(settings({"set", "f/v", "7"}), ExitCode::done);
    EXPECT_NE(corehost({"--json", "settings", "get", "f/v"}).out.find("\"user\""), std::string::npos);
    EXPECT_EQ(settings({"rm", "f/v"}), ExitCode::done);
    EXPECT_EQ(corehost({"settings", "list", "f"}).out, "f/v = два\uFFFDслова\n")
        << "the system's is seen again, in one line";
    EXPECT_EQ(settings({"rm", "--layer", "system", "f"}), ExitCode::done);
    EXPECT_EQ(corehost({"--json", "settings", "list", "f"}).out, "[]\n");

    EXPECT_EQ(settings({"set", "--layer", "run", "a", "1"}), ExitCode::usage);
    for (const char* const verb : {"get", "set", "rm", "export", "import"})
        EXPECT_EQ(settings({verb}), ExitCode::usage) << verb;
    EXPECT_NE(settings({"import", path("none.list")}), ExitCode::done);
    EXPECT_NE(settings({"import", file("bad.list", "{1,")}), ExitCode::done);
    EXPECT_EQ(corehost({"--json", "settings", "list"}).out, "[]\n") << "nothing of a damaged file is set";
}

TEST_F(SettingsCommand, WhatTheProgramCannotUseIsToldAndPassedOver) {
    const std::string script = file("numbers.script", "Print(1 = 1); Print(1234.5); Print('20240229');");
    const auto ran = [&] { return corehost({"run", script}); };
    const std::string plain = ran().out;
    const std::pair<std::string, std::string> wrong[] = {{"language", "klingon"}, {"mode", "crooked"},
                                                         {"locale", "no locale"}, {"numberFormat", "?=?"},
                                                         {"dateFormat", "?=?"},   {"booleanFormat", "?=?"}};
    for (const auto& [name, value] : wrong) {
        ASSERT_EQ(settings({"set", "host/" + name, value}), ExitCode::done);
        const Answer answer = ran();
        EXPECT_EQ(answer.code, ExitCode::done) << name;
        EXPECT_EQ(answer.out, plain) << name;
        EXPECT_NE(answer.err.find("host/" + name + " cannot be “" + value), std::string::npos)
            << name << answer.err;
        ASSERT_EQ(settings({"rm", "host"}), ExitCode::done);
    }
    const std::pair<std::string, std::string> right[] = {
        {"mode", "csv"}, {"locale", "ru_RU"}, {"language", "en"}, {"history", "false"}};
    for (const auto& [name, value] : right) {
        ASSERT_EQ(settings({"set", "host/" + name, value}), ExitCode::done);
        const Answer answer = ran();
        EXPECT_EQ(answer.code, ExitCode::done) << name;
        EXPECT_EQ(answer.err, "") << name;
    }
}

TEST_F(SettingsCommand, SetsWhatTheProgramReadsAtItsStart) {
    static_cast<void>(file("date.script", "Print('20240229'); Print(1234.5);"));
    EXPECT_EQ(settings({"set", "host/language", "ru"}), ExitCode::done);
    EXPECT_NE(corehost({"settings", "get", "none"}).err.find("Настройки"), std::string::npos);
    EXPECT_NE(corehost({"--lang", "en", "settings", "get", "none"}).err.find("no setting"),
              std::string::npos);
    EXPECT_EQ(settings({"rm", "host"}), ExitCode::done);
    EXPECT_EQ(settings({"set", "host/numberFormat", "fraction=2"}), ExitCode::done);
    EXPECT_NE(corehost({"run", path("date.script")}).out.find("1234"), std::string::npos);
    EXPECT_EQ(settings({"set", "host/language", "klingon"}), ExitCode::done);
    const Answer refused = corehost({"run", path("date.script")});
    EXPECT_EQ(refused.code, ExitCode::done);
    EXPECT_NE(refused.err.find("klingon"), std::string::npos) << "told, and passed over";
}

TEST_F(SettingsCommand, ScriptsHaveThemInBothLanguagesWithLayersAndNotices) {
    const HostProcess process;
    core::script::Session session;
    EXPECT_EQ(
        session.run("Paths = New Array; N = Connect(Settings, \"Changed\", Paths, \"Add\");"
                    "Настройки.Установить(\"a/b\", 1); Settings.Set(\"a/c\", 2, SettingsLayers.Run);"
                    "Settings.Move(\"a\", \"d\"); Print(ToJson(Paths)); Print(Settings.Contains(\"a/b\"));"
                    "Print(Settings.Get(\"d/b\")); Print(Settings.Get(\"none\", 5));"),
        "[\"a/b\",\"a/c\",\"a\",\"d/b\",\"d/c\"]\nNo\n1\n5");
    EXPECT_EQ(session.run("Print(Settings.IsLocked(\"d\")); C = New SettingsChanges; C.Lock(\"d\");\n"
                          "C.Make(SettingsLayers.System); Print(Settings.IsLocked(\"d\"));"),
              "No\nYes");
    EXPECT_NE(session.run("Settings.Set(\"d/b\", 1);").find("The setting “d/b” is locked"),
              std::string::npos);
    EXPECT_EQ(
        session.run("C = New SettingsChanges; C.Открепить(\"d\"); C.Set(\"d\", \"both\");\n"
                    "C.Remove(\"d/c\"); C.Make(SettingsLayers.System);\n"
                    "Print(Settings.IsLocked(\"d\")); Print(ToJson(Settings.List(\"\")));\n"
                    "Settings.Set(\"d/e\", True); Print(ToJson(Settings.Values(\"d\")));\n"
                    "Print(Settings.Get(\"d/e\", 3)); Print(Settings.Get(\"d/e\", , Type(\"Boolean\")));\n"
                    "Print(Settings.Reports().Count() > 0);"),
        "No\n[\"a/\",\"d/\",\"d\"]\n{\"d/b\":1,\"d/c\":2,\"d/e\":true}\n3\nYes\nYes")
        << "what the system takes back, the user's still says";
}

TEST_F(SettingsCommand, ThePageShowsWhatHappens) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "settings.md");
    const auto block = [&](const std::string& begin) {
        const std::size_t at = page.find(begin);
        return at == std::string::npos ? std::string() : page.substr(at, page.find("\n```", at) - at);
    };
    const HostProcess process;
    core::script::Session session;
    EXPECT_EQ(session.run(block("Settings.Set(\"report/period\"")), block("7\n5\n"));
}

} // namespace
} // namespace host
