// SPDX-License-Identifier: Apache-2.0
// The class that docs/contributing.md adds from nothing does what the page says. It is compiled into this
// program from the page itself.
#include "host/commands/describe_report.h"
#include "tests/host/program_fixture.h"
#include "tests/script/script_fixture.h"

#include <core/context/script_object.h>
#include <core/runtime/module.h>
#include <core/values/type_service.h>

namespace host {
namespace {

TEST(Contributing, TheClassFromNothingRunsItsScript) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "contributing.md");
    const std::size_t begin = page.find("\nC = New Counter;");
    ASSERT_NE(begin, std::string::npos);
    const std::string code = page.substr(begin + 1, page.find("\n```", begin) - begin - 1);
    const std::size_t answer = code.find("// ");
    ASSERT_NE(answer, std::string::npos);

    core::SCOM_ResourceBundle bundle("nothing");
    core::SCOM_Module module(core::module_class_entries, bundle);
    module.init(&bundle);
    const HostProcess process;
    core::script::Session session;
    EXPECT_EQ(session.run(code), code.substr(answer + 3));
    EXPECT_EQ(session.run("C.Add(\"x\")").substr(0, 1), "!");
    EXPECT_EQ(session.run("C.Total = 1").substr(0, 1), "!");

    core::IType* const type = core::get_service<core::ITypeValueService>()->findType(u"Counter");
    ASSERT_NE(type, nullptr);
    const describe::Members members = describe::report_on(*type, core::kEnglish).members;
    ASSERT_EQ(members.methods.size(), 1U);
    EXPECT_EQ(members.methods[0].parameters[0].names.english, "Amount");
    EXPECT_EQ(members.methods[0].parameters[0].names.russian, "Сумма");
}

} // namespace
} // namespace host
