// SPDX-License-Identifier: Apache-2.0
// What docs/threads-and-events.md shows of events does what the page says. Its C++ code is compiled into this
// program from the page itself.
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"

#include <core/runtime/module.h>

core::wstring listen_to_a_meter();

namespace host {
namespace {

class EventsPage : public testing::Test {
  protected:
    struct Module {
        core::SCOM_ResourceBundle bundle{"nothing"};
        core::SCOM_Module module{core::module_class_entries, bundle};
        Module() { module.init(&bundle); }
    };

    /// The text of the page behind a mark, up to an end.
    static std::string part(const std::string& mark, const std::string& end) {
        const std::string page =
            text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "threads-and-events.md");
        const std::size_t begin = page.find(mark);
        if (begin == std::string::npos)
            return {};
        return page.substr(begin + mark.size(), page.find(end, begin + mark.size()) - begin - mark.size());
    }

    Module module_;
    const HostProcess process_;
};

TEST_F(EventsPage, ItsProgramHearsWhatItSays) {
    EXPECT_EQ(core::to_utf8(listen_to_a_meter()), part("return heard; // ", "\n") + ' ');
}

TEST_F(EventsPage, ItsScriptPrintsWhatItSays) {
    const std::string code = part("```\nM = New Meter;", "```");
    core::script::Session session;
    const std::string shown =
        session.run("M = New Meter;" + code); // a console shows what Disconnect returns, too
    EXPECT_EQ(shown.substr(shown.rfind('\n') + 1), part("Print(ToJson(Log));     // ", "\n"));
    EXPECT_EQ(session.run("Соединить(M, \"Changed\", Log, \"Insert\")").substr(0, 1), "!");
}

} // namespace
} // namespace host
