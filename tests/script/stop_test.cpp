// SPDX-License-Identifier: Apache-2.0
// An interrupt that comes inside a long call stops the call, and not only the script behind it: what the call
// would have done is not done, and the script cannot go on.
#include "tests/script/script_fixture.h"
#include "tests/support/folder_test.h"

#include <core/script/engine.h>

namespace {

using namespace core;
using script::Engine;

class StopTest : public host::FolderTest {
  protected:
    StopTest() {
        engine_.output(printed_);
        // An argument that interrupts: from then on the call itself is what is running.
        engine_.function("Interrupting", [this](const GenericValue& value) {
            engine_.interrupt();
            return value;
        });
        engine_.set("Folder", from_utf8(folder().string() + "/"));
        std::string csv = "A,B\r\n";
        for (int row = 0; row < 20'000; ++row)
            csv += "text " + std::to_string(20'000 - row) + ',' + std::to_string(row % 7) + "\r\n";
        static_cast<void>(file("data.csv", csv));
        engine_.run(u"T = LoadCsv(Folder + \"data.csv\"); X = 0; Went = 0");
    }
    /// Runs a call in which the interrupt comes.
    void expectStopped(const std::string& call) {
        try {
            engine_.run("X = 0; Try " + call + "; Except Went = 1; EndTry; Went = 2");
            ADD_FAILURE() << call << " was not stopped";
        } catch (const script::Error& error) {
            EXPECT_STREQ(error.messageId(), messages::kScriptInterrupted) << call;
            EXPECT_EQ(error.line(), 1);
        }
        EXPECT_EQ(engine_.get<int>("Went"), 0) << call;
        EXPECT_EQ(engine_.get("X").presentation(), u"0") << call;
    }

    host::HostProcess process_;
    std::ostringstream printed_;
    Engine engine_;
};

TEST_F(StopTest, LongCallsDoNothingMore) {
    const GenericValue before = engine_.run(u"Return ToText(T)");
    const char* const calls[] = {
        "T.Sort(Interrupting(\"A\"))",
        "X = T.Join(Interrupting(T.Copy()), \"A = A\", \"B As C\")",
        "X = T.Distinct(Interrupting(\"A\"))",
        "X = LoadCsv(Interrupting(Folder + \"data.csv\"))",
        "SaveCsv(Interrupting(Folder + \"out\"), T)",
        "SaveJson(Interrupting(Folder + \"out\"), T)",
        "SaveToContainer(Interrupting(Folder + \"out\"), \"t\", T)",
        "X = ToText(Interrupting(T))",
        "X = FromText(Interrupting(Text))",
        "PrintTable(Interrupting(T))",
        "X = ToJson(Interrupting(T))",
        "X = FromJson(Interrupting(Json))",
        "CopyFile(Interrupting(Folder + \"data.csv\"), Folder + \"out\")",
        "X = RegexTest(Interrupting(Long), \"(a|aa|aaa)+!$\")",
    };
    engine_.run(
        u"Json = ToJson(T); Text = ToText(T); Long = \"a\"; For I = 1 To 8 Do Long = Long + Long EndDo");
    for (const char* const call : calls)
        expectStopped(call);
    EXPECT_TRUE(engine_.run(u"Return ToText(T)").equals(before));
    EXPECT_LT(printed_.str().size(), 100'000U) << "a part of the table at the most";
    EXPECT_FALSE(std::filesystem::exists(path("out")));
    EXPECT_EQ(engine_.run(u"T.Sort(\"B\"); Return T[0].B").presentation(), u"0")
        << "the next run is not stopped";
}

} // namespace
