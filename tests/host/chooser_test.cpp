// SPDX-License-Identifier: Apache-2.0
// Choosing at the terminal: what is listed, which answers count, and what happens without one.
#include "tests/host/program_fixture.h"

namespace host {
namespace {

constexpr const char* kTable = R"(T = New ValueTable; T.Columns.Add("Name"); T.Columns.Add("Sum");
For Each Name In FromJson("[""first"", ""second"", ""third""]") Do T.Add().Name = Name EndDo;
T.FillValues(7, "Sum"); )";
constexpr const char* kList = R"(L = New ValueList; L.Add("a"); L.Add("b", "second", True); L.Add("c"); )";
constexpr const char* kShowChecks = "For Each I In L Do Print(I.Check) EndDo;";

class ChooserTest : public FolderTest {
  protected:
    /// What a script writes whose user answers so.
    [[nodiscard]] std::string run(const std::string& script, const std::string& answers,
                                  bool terminal = true) const {
        std::istringstream in(answers);
        std::ostringstream out;
        Console console{in, out, out};
        console.terminal = terminal;
        const support::EnvironmentVariable columns(
            "COLUMNS",
            "80"); // and not those of the terminal that the tests run at
        static_cast<void>(run_program({"run", file("s", script)}, console));
        return out.str();
    }
};

const std::string kQuestion = "Number, 1 to 3, or an empty line for none: ";
const std::string kAgain = "That is not one of the answers.\n" + kQuestion;

TEST_F(ChooserTest, ARowIsChosenByItsNumber) {
    const std::string rows = "   №  Name    Sum\n"
                             "─  ─  ──────  ───\n"
                             "   1  first     7\n"
                             "→  2  second    7\n"
                             "   3  third     7\n"
                             "Rows: 3\n";
    const std::string choose =
        std::string(kTable) + "R = T.ChooseRow(\"Which?\", T[1]); Print(R = T[2]); Print(R)";
    EXPECT_EQ(run(choose, "3\n"), "Which?\n" + rows + kQuestion + "Yes\nValue table row\n");
    EXPECT_EQ(run(choose, "4\n0\nx\n-1\n1 2\n99999999999999999999\n 3 \n").substr(7 + rows.size()),
              kQuestion + kAgain + kAgain + kAgain + kAgain + kAgain + kAgain + "Yes\nValue table row\n");
    for (const char* const nothing : {"\n", "", "  \n3\n", "9"})
        EXPECT_TRUE(run(choose, nothing).ends_with(": No\n\n")) << run(choose, nothing);
    EXPECT_EQ(run(choose, "3\n", false), "No\n\n"); // nobody to ask
}

TEST_F(ChooserTest, AnItemIsChosenByItsNumber) {
    const std::string choose =
        std::string(kList) + "I = L.ChooseItem(); If I = Undefined Then Print(I) Else Print(I.Value) EndIf";
    EXPECT_EQ(run(choose, "2\n"), "Choose an item\n"
                                  "   №  Value  Presentation  Check\n"
                                  "─  ─  ─────  ────────────  ─────\n"
                                  "   1  a\n"
                                  "   2  b      second        ✓\n"
                                  "   3  c\n"
                                  "Rows: 3\n" +
                                      kQuestion + "b\n");
    EXPECT_TRUE(run(choose, "").ends_with(": \n"));
    EXPECT_EQ(run(choose, "1", false), "\n");
}

TEST_F(ChooserTest, ItemsAreCheckedByTheirNumbers) {
    const std::string check = std::string(kList) + "Print(L.CheckItems(\"\")); " + kShowChecks;
    const auto checks = [&](const std::string& answers) {
        const std::string out = run(check, answers);
        return out.substr(out.rfind(": ") + 2);
    };
    EXPECT_EQ(checks("1, 3\n"), "Yes\nYes\nNo\nYes\n");
    EXPECT_EQ(checks("0\n"), "Yes\nNo\nNo\nNo\n");
    EXPECT_EQ(checks("0 1\n4\n2 2\n"), "Yes\nNo\nYes\nNo\n");
    EXPECT_EQ(checks("\n"), "No\nNo\nYes\nNo\n"); // as they were
    EXPECT_EQ(checks(""), "No\nNo\nYes\nNo\n");
    EXPECT_EQ(run(check, "1\n", false), "No\nNo\nYes\nNo\n");
}

} // namespace
} // namespace host
