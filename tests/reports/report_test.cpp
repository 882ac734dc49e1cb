// SPDX-License-Identifier: Apache-2.0
// Concerns: which rule a cell's look comes from, against a model; formats, alignments and totals; what a
// terminal of each kind is told; trees and lists; styles read back; what does not suit the table; scripts.
#include <core/presentation.h>
#include <core/reports.h>
#include <core/script.h>
#include <core/tables/list.h>
#include <core/tables/table.h>
#include <core/tables/tree.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

/// Of docs/presentation.md.
core::ReportStyle style_of_sales();

namespace {

using namespace core;

/// The message of the failure that an action ends in; empty if none exists.
template <class E = Exception, class Action>
wstring failure(Action action) {
    try {
        action();
    } catch (const E& e) {
        return e.description();
    }
    return {};
}

Style look(const Color& text) {
    Style style;
    style.setColor(*find_color(style_colors(), u"TextColor"), text);
    return style;
}

std::string printed(const Value& table, const ReportStyle& style,
                    TerminalColors colors = TerminalColors::none, std::size_t width = 100) {
    std::ostringstream out;
    print_report(out, {table, style}, width, 1000, colors);
    return out.str();
}

class Reports : public testing::Test {
  protected:
    host::HostProcess process_;
    Table sales_{"Name", "Price", "Day"};

    void SetUp() override {
        sales_.add({"apple", Numeric::parse("1.5").value(), Date(2024, 2, 29)});
        sales_.add({"pear", -3, Date(2024, 3, 1)});
    }
};

TEST_F(Reports, TheLastRuleThatACellPassesDecides) {
    std::minstd_rand random(20); // the same numbers each time
    for (int round = 0; round < 50; ++round) {
        Table table{"A", "B"};
        ReportStyle style;
        struct Rule {
            int least;
            bool forB;
            std::uint8_t red;
        };
        std::vector<Rule> rules;
        for (std::uint8_t i = 0; i < random() % 5; ++i) {
            rules.push_back({static_cast<int>(random() % 10), random() % 2 == 0, i});
            const Rule& rule = rules.back();
            style.rules.push_back({Filter("A >= " + std::to_string(rule.least)), look(Color(rule.red, 0, 0)),
                                   rule.forB ? std::vector<wstring>{u"b"} : std::vector<wstring>{}});
        }
        std::string expected = "\x1B[1mA  B\x1B[0m\n─  ─\n";
        for (int row = 0; row < 20; ++row) {
            const int number = static_cast<int>(random() % 10);
            table.add({number, number});
            std::string codes[2];
            for (const Rule& rule : rules) {
                const std::string code = "\x1B[38;2;" + std::to_string(rule.red) + ";0;0m";
                if (number >= rule.least && !rule.forB)
                    codes[0] = code;
                if (number >= rule.least)
                    codes[1] = code;
            }
            const std::string digit = std::to_string(number);
            const std::string end = "\x1B[0m";
            const auto close = [&end](const std::string& code) { return code.empty() ? code : end; };
            expected += codes[0] + digit;
            expected += codes[0] == codes[1] ? "  " : close(codes[0]) + "  " + codes[1];
            expected += digit + close(codes[1]) + '\n';
        }
        EXPECT_EQ(printed(table, style, TerminalColors::full), expected + "Rows: 20\n");
    }
}

TEST_F(Reports, ColumnsHaveTitlesFormatsAlignmentsAndTotals) {
    ReportStyle style{.title = u"Sales"};
    style.column(u"PRICE").format = u"fraction=2";
    style.column(u"price").total = u"Sum(Price)";
    style.column(u"Day").format = u"date='yyyy/MM/dd'";
    style.column(u"Day").total = u"Count()";
    style.column(u"Day").alignment = ColumnAlignment::center;
    style.column(u"Day").title = u"Sold on the day";
    style.column(u"Name").alignment = ColumnAlignment::right;
    EXPECT_EQ(printed(sales_, style), "Sales\n"
                                      " Name  Price  Sold on the day\n"
                                      "─────  ─────  ───────────────\n"
                                      "apple   1.50    2024/02/29\n"
                                      " pear  -3.00    2024/03/01\n"
                                      "─────  ─────  ───────────────\n"
                                      "Total  -1.50         2\n"
                                      "Rows: 2\n");
}

TEST_F(Reports, TerminalsGetTheColoursThatTheyKnow) {
    Style whole = look(*Color::web(u"White"));
    whole.setFont(*find_style_font(u"TextFont"), Font{.underline = true});
    Style rule = look(Color());
    rule.setColor(*find_color(style_colors(), u"BackColor"), *Color::web(u"Crimson"));
    rule.setFont(*find_style_font(u"TextFont"), Font{.weight = 700, .slant = FontSlant::italic});
    const ReportStyle style{.style = whole, .rules = {{u"Price < 0", rule, {u"Name"}}}};
    const std::pair<TerminalColors, std::array<std::string, 2>> cases[] = {
        {TerminalColors::full, {"38;2;255;255;255", "48;2;220;20;60"}},
        {TerminalColors::indexed, {"38;5;231", "48;5;161"}},
        {TerminalColors::sixteen, {"97", "41"}},
    };
    for (const auto& one : cases) {
        const std::string text = printed(sales_, style, one.first);
        EXPECT_NE(text.find("\x1B[4;" + one.second[0] + "mapple    1.5  2024"), std::string::npos) << text;
        EXPECT_NE(text.find("\x1B[1;3;4;" + one.second[0] + ';' + one.second[1] + "mpear \x1B[0m  \x1B[4;"),
                  std::string::npos)
            << text;
    }
    EXPECT_EQ(printed(sales_, style).find('\x1B'), std::string::npos);
}

TEST_F(Reports, TreesAndListsHaveRulesAndTotalsToo) {
    Tree tree{"Level", "Price"};
    const TreeRow top = tree.rows().add({"top", 1});
    top.rows().add({"below", -2});
    ReportStyle style{.rules = {{u"Level_ = 1", look(Color(9, 0, 0)), {}}}};
    style.column(u"Price").total = u"Sum(Price)";
    const std::string text = printed(tree, style, TerminalColors::full);
    EXPECT_NE(text.find("\x1B[38;2;9;0;0m  below     -2\x1B[0m\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Total       -1"), std::string::npos) << text;

    const auto list = create_value_list();
    list->add({.value = 5, .presentation = u"five"});
    const ReportStyle five{.rules = {{u"Value > 4", look(Color(9, 0, 0)), {u"Presentation"}}}};
    EXPECT_NE(printed(Value(list.query<IValue>()), five, TerminalColors::full).find("\x1B[38;2;9;0;0mfive"),
              std::string::npos);
}

TEST_F(Reports, StylesAreReadBackAndEqualByWhatTheySay) {
    ReportStyle style{.title = u"Sales", .style = look(Color(1, 2, 3))};
    style.column(u"Price").format = u"fraction=2";
    style.column(u"Day").style = look(*Color::web(u"Navy"));
    style.rules.push_back({u"Price < 0", look(*Color::web(u"Crimson")), {u"Price"}, u"A loss"});
    const Value value = to_value(style);
    EXPECT_EQ(from_value<ReportStyle>(value), style);
    const GenericValue again = GenericValue::fromBytes(GenericValue(value).toBytes());
    EXPECT_EQ(again, value);
    EXPECT_EQ(from_value<ReportStyle>(again), style);
    ReportStyle other = style;
    static_cast<void>(other.column(u"Asked")); // nothing is said of it
    EXPECT_EQ(other, style);
    EXPECT_EQ(other.hash(), style.hash());
    other.column(u"asked").total = u"Count()";
    EXPECT_NE(other, style);
    EXPECT_THROW(style.column(u"1st"), ContextException);
}

TEST_F(Reports, WhatDoesNotSuitTheTableIsToldBeforeAnythingIsWritten) {
    const auto message = [this](const ReportStyle& style) {
        std::ostringstream out;
        const wstring text = failure<Exception>([&] { save_html(out, sales_, style); });
        EXPECT_EQ(out.str(), "");
        return text;
    };
    ReportStyle style;
    style.column(u"Prise").format = u"fraction=2";
    const wstring unknown = u"There is no column “Prise”. Did you mean “Price”?";
    EXPECT_EQ(message(style), unknown);
    EXPECT_EQ(message({.rules = {{Filter(), {}, {u"Prise"}}}}), unknown);
    EXPECT_NE(message({.rules = {{u"Prise < 0", {}}}}), u"");
    EXPECT_EQ(failure([] { printed(Value(5), {}); }), message_text("IDS_PARAMETER_N_TYPE_MISMATCH", {u"1"}));
    ReportStyle format;
    format.column(u"Price").format = u"no such item";
    EXPECT_THROW(printed(sales_, format), CtorException);
}

TEST_F(Reports, ScriptsMakeThem) {
    script::Engine engine;
    std::ostringstream out;
    engine.output(out);
    engine.set(u"Sales", Value(sales_));
    engine.run(u"Style = New ReportStyle(\"Sales\"); Style.Columns.Price.Format = \"fraction=2\";"
               u"Style.Columns.Цена.Формат = \"\"; Style.Columns.Price.Total = \"Sum(Price)\";"
               u"Style.Rule(\"Price < 0\", New Style(WebColors.Crimson), , \"A loss\");"
               u"PrintTable(Sales, 1, , Style); Print(New Report(Sales, Style));");
    const std::string head = "Sales\nName   Price  Day\n─────  ─────  ──────────\n";
    const std::string apple = "apple   1.50  2024-02-29\n";
    const std::string pear = "pear   -3.00  2024-03-01\n";
    const std::string total = "─────  ─────  ──────────\nTotal  -1.50\n";
    EXPECT_EQ(out.str(),
              head + apple + pear + total + "Rows: 2\n" + head + apple + pear + total + "Rows: 2\n");
    out.str({});
    engine.run(u"СохранитьHtml(\"-\", Sales, Style)");
    EXPECT_NE(out.str().find("<caption>Sales</caption>"), std::string::npos);
    const auto refusal = [&engine](const wchar* text) {
        return failure<script::Error>([&] { engine.run(text); });
    };
    EXPECT_NE(refusal(u"PrintTable(Sales, , \"csv\", Style)").find(u"Form"), wstring::npos);
    EXPECT_NE(refusal(u"SaveHtml(\"-\", 5)").find(u"Table"), wstring::npos);
    get_service<IOutputRightAccessController>()->setAllowed(OutputRight::save, false);
    EXPECT_NE(refusal(u"SaveHtml(\"-\", Sales)"), u"");
}

/// The blocks of a page without a language, each with the block of text behind it.
std::vector<std::pair<std::string, std::string>> blocks_of(const std::string& page) {
    std::vector<std::pair<std::string, std::string>> blocks;
    std::istringstream lines(page);
    std::string* open = nullptr;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("```")) {
            if (open != nullptr)
                *open += line + '\n';
        } else if (open != nullptr) {
            open = nullptr;
        } else if (line == "```") {
            open = &blocks.emplace_back().first;
        } else if (line == "```text") {
            open = &blocks.back().second;
        } else {
            static std::string other;
            open = &other;
        }
    }
    return blocks;
}

TEST_F(Reports, ThePageShowsWhatHappens) {
    std::ifstream file(CORE_SOURCE_DIR "/docs/presentation.md");
    const auto blocks = blocks_of({std::istreambuf_iterator<char>(file), {}});
    EXPECT_GE(blocks.size(), 3U);
    script::Engine engine;
    for (const auto& block : blocks) {
        std::ostringstream out;
        engine.output(out);
        engine.run(from_utf8(block.first));
        EXPECT_EQ(out.str(), block.second) << block.first;
    }
    EXPECT_EQ(printed(sales_, style_of_sales()), "Sales\n"
                                                 "Name   Price  Day\n"
                                                 "─────  ─────  ──────────\n"
                                                 "apple   1.50  2024-02-29\n"
                                                 "pear   -3.00  2024-03-01\n"
                                                 "─────  ─────  ──────────\n"
                                                 "Total  -1.50\n"
                                                 "Rows: 2\n");
}

} // namespace
