// SPDX-License-Identifier: Apache-2.0
// Our objects in scripts that other engines run, in one process with the bridge.
#include "tests/bridges/com/engine_site.h"
#include "tests/support/rounds.h"

#include <string>

namespace core::com {
namespace {

using ComEngines = ComEngineTest;

TEST_F(ComEngines, VBScriptMakesReadsChangesAndCalls) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"VBScript", held.get());
    EXPECT_EQ(site.run("Set A = Maker.Make(\"Array\")\n"
                       "A.Add 1\nA.Добавить \"two\"\nA.Add 2.5\n"
                       "Set S = Maker.Make(\"Structure\")\n"
                       "S.Insert \"Price\", 10\nS.Price = S.Price + A(0)\n"
                       "Text = \"\"\nFor Each X In A\nText = Text & X & \";\"\nNext\n"
                       "Maker.Take Text & S.Price & A.Count\n"),
              "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "1;two;2.5;113");
    const std::string failure = site.run("Set A = Maker.Make(\"Array\")\nA.Get 7\n");
    EXPECT_NE(failure.find("IDS_INDEX_OFFBOUND"), std::string::npos) << failure;
}

TEST_F(ComEngines, JScriptMakesReadsChangesAndCalls) {
    const auto held = dispatch_of(Value(maker_));
    Site site(u"JScript", held.get());
    EXPECT_EQ(
        site.run(
            "var A = Maker.Make('Array'); A.Add(1); A['Добавить']('two'); A.add(2.5);"
            "var S = Maker['Создать']('Structure'); S.Insert('Price', 10); S.Price = S.Price + A.Get(0);"
            "var text = ''; for (var e = new Enumerator(A); !e.atEnd(); e.moveNext()) text += e.item() + ';';"
            "Maker.Take(text + S.Price + A.Count());"),
        "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "1;two;2.5;113");
    EXPECT_EQ(site.run("var caught = ''; try { Maker.Make('Array').Get(7); } catch (e) { caught = 'yes'; }"
                       "Maker.Take(caught);"),
              "");
    EXPECT_EQ(to_utf8(maker_->taken.presentation()), "yes");
}

TEST_F(ComEngines, NothingIsLeftAfterManyCalls) {
    const bool nightly = support::is_nightly();
    const auto use = [&](const std::string& rounds) {
        const auto held = dispatch_of(Value(maker_));
        Site java(u"JScript", held.get());
        EXPECT_EQ(java.run("for (var i = 0; i < " + rounds +
                           "; ++i) { var A = Maker.Make('Array'); A.Add(Maker.Make('Structure')); "
                           "A.Get(0).Insert('A', A);"
                           "try { A.Get(7); } catch (e) {} A.Get(0).Clear(); A.Count(); }"),
                  "");
        Site basic(u"VBScript", held.get());
        EXPECT_EQ(
            basic.run("For I = 1 To " + rounds +
                      "\nSet A = Maker.Make(\"Array\")\nA.Add Maker.Make(\"Structure\")\nFor Each X In A\n"
                      "X.Insert \"A\", I\nFound = X.Property(\"A\", V)\nNext\nA.Count\nNext\n"),
            "");
        maker_->clear();
    };
    use("1"); // what is made once is there
    const auto before = live_report();
    use(nightly ? "250000" : "25000"); // of fourteen calls
    EXPECT_EQ(held_objects(), 0U);
    expectAsManyAs(before);
}

} // namespace
} // namespace core::com
