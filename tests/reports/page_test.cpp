// SPDX-License-Identifier: Apache-2.0
// Concerns: nothing in a table, a title or a style ends its place in the page; every text can be read on its
// background in both looks; pictures; and what a browser makes of the page, where one is installed.
#include "tests/support/folder_test.h"

#include <core/presentation.h>
#include <core/reports.h>
#include <core/tables/list.h>
#include <core/tables/table.h>
#include <core/tables/tree.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <sstream>

namespace {

using namespace core;
using host::FolderTest;
using host::text_of;

std::string page(const Value& table, const ReportStyle& style = {}) {
    std::ostringstream out;
    save_html(out, table, style);
    return out.str();
}

std::size_t count(const std::string& text, std::string_view part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

class Pages : public FolderTest {
  protected:
    host::HostProcess process_;
};

TEST_F(Pages, NothingLeavesItsPlace) {
    const wstring bad = u"</td></style></title></script><b>\"'&\u0001\u2029\n";
    Table table{"A"};
    table.add({bad});
    table.columns()[0].setTitle(bad);
    Style style;
    style.setFont(*find_style_font(u"TextFont"), Font{.face = bad});
    const ReportStyle report{.title = bad, .style = style, .rules = {{Filter(), style, {}, bad}}};
    const std::string text = page(table, report);
    for (const char* tag : {"</title>", "</style>", "</script>", "<tbody>"})
        EXPECT_EQ(count(text, tag), 1U) << tag;
    EXPECT_EQ(count(text, "</td>"), 1U);
    EXPECT_EQ(count(text, "<b>") + count(text, "\x01"), 0U);
    const std::string shown =
        "&lt;/td&gt;&lt;/style&gt;&lt;/title&gt;&lt;/script&gt;&lt;b&gt;&quot;'&amp;\uFFFD\u2029<br>";
    EXPECT_EQ(count(text, shown), 4U); // the caption, the title, the cell, the legend
}

/// The colours that a page declares: by selector, "color" and "background" or a variable.
std::map<std::string, std::map<std::string, Rgba>> colors_of(const std::string& sheet) {
    std::map<std::string, std::map<std::string, Rgba>> found;
    const std::regex rule(R"(([.:]\w+)\{([^}]*)\})");
    const std::regex part(R"(([-\w]+):(#[0-9A-F]+))");
    for (std::sregex_iterator one(sheet.begin(), sheet.end(), rule), end; one != end; ++one) {
        const std::string body = one->str(2);
        for (std::sregex_iterator said(body.begin(), body.end(), part); said != end; ++said)
            found[one->str(1)][said->str(1)] = *Color::fromText(from_utf8(said->str(2)))->rgba();
    }
    return found;
}

TEST_F(Pages, EveryTextCanBeRead) {
    std::minstd_rand random(5); // the same colours each time
    const auto color = [&random] {
        return Color(Rgba::fromNumber(static_cast<std::uint32_t>(random()) << 1 | 0xFF));
    };
    const Table table{"A"};
    for (int round = 0; round < 20; ++round) {
        ReportStyle report;
        if (round % 2 == 0) {
            Style& whole = report.style.emplace();
            for (std::size_t item = 0; item < style_colors().size(); ++item)
                whole.setColor(item, color());
        }
        for (int i = 0; i < 10; ++i) {
            Style style;
            if (i % 3 != 0)
                style.setColor(*find_color(style_colors(), u"TextColor"), color());
            if (i % 3 != 1)
                style.setColor(*find_color(style_colors(), u"BackColor"), color());
            report.rules.push_back({Filter(), style, {}, u"a rule"});
        }
        const std::string text = page(table, report);
        const std::size_t dark = text.find("@media screen");
        ASSERT_NE(dark, std::string::npos);
        for (const std::string& sheet : {text.substr(0, dark), text.substr(dark)}) {
            auto colors = colors_of(sheet);
            auto& page = colors[":root"];
            for (const std::string part : {"", "Header", "Totals"})
                EXPECT_GE(contrast(page.at("--" + part + "TextColor"), page.at("--" + part + "BackColor")),
                          4.5);
            EXPECT_GE(contrast(page.at("--TitleTextColor"), page.at("--BackColor")), 4.5);
            int looks = 0;
            for (auto& [selector, look] : colors) {
                if (!look.contains("color"))
                    continue;
                ++looks;
                look.try_emplace("background", page.at("--BackColor"));
                EXPECT_GE(contrast(look.at("color"), look.at("background")), 4.5) << selector;
            }
            EXPECT_GE(looks, 10);
        }
    }
}

TEST_F(Pages, CellsShowPicturesAndLevels) {
    const std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'/>";
    const auto bytes = std::as_bytes(std::span(svg));
    const auto list = create_value_list();
    list->add({.value = 1, .picture = to_value(Picture::fromBytes({bytes.begin(), bytes.end()}))});
    list->add({.value = 2});
    const std::string text = page(Value(list.query<IValue>()));
    EXPECT_EQ(count(text, "<th "), 4U);
    EXPECT_EQ(count(text, "<img alt=\"SVG, 8 × 8\" src=\"data:image/svg+xml;base64,PHN2Zy"), 1U);

    Tree tree{"A"};
    tree.rows().add({"top"}).rows().add({"below"});
    const std::string levels = page(tree);
    EXPECT_EQ(count(levels, "<td class=level style=\"--level:1\">below</td>"), 1U);
    EXPECT_EQ(count(levels, "<button") + count(levels, "<script"), 0U); // no row leaves the one above it
}

TEST_F(Pages, FontsAreSaidInTheSheet) {
    const std::size_t item = *find_style_font(u"TextFont");
    const auto body = [&](const Font& font) {
        Style style;
        style.setFont(item, font);
        return page(Table{"A"}, {.style = style});
    };
    const std::pair<Font, std::string> cases[] = {
        {{.face = u"PT Sans-9"}, "font-family:\"PT Sans-9\",system-ui,sans-serif;"},
        {{.face = u"a\"b;{Я}"}, "font-family:\"a_b__Я_\",system-ui,sans-serif;"},
        {{.size = 1205}, "font-size:12.05pt;"},
        {{.weight = 300}, "font-weight:300;"},
        {{.slant = FontSlant::italic}, "font-style:italic;"},
        {{.slant = FontSlant::oblique}, "font-style:oblique;"},
        {{.underline = true}, "text-decoration:underline;"},
        {{.underline = true, .strikeOut = true}, "text-decoration:underline line-through;"}};
    const std::string plain = body({});
    for (const auto& [font, said] : cases) {
        EXPECT_EQ(count(plain, said), 0U) << said;
        EXPECT_EQ(count(body(font), said), 1U) << said;
    }
    EXPECT_NE(count(body({.strikeOut = true}), " line-through;"), 0U);

    // A rule's font of the style is what the style says of it.
    Style whole, look;
    whole.setFont(*find_style_font(u"TitleFont"), Font{.size = 3325});
    look.setFont(item, Font{.item = *find_style_font(u"TitleFont"), .strikeOut = true});
    Table table{"A"};
    table.add({1});
    const std::string text = page(table, {.style = whole, .rules = {{Filter(), look, {}, u"a rule"}}});
    EXPECT_GE(count(text, "font-size:33.25pt;"), 2U) << "the title, and the cells of the rule";
}

TEST_F(Pages, CellsAreAlignedAndSortedByTheirValues) {
    Table table{"A", "B"};
    for (const bool truth : {true, false})
        table.add({truth, Date(2024, 2, 29)});
    table.columns()[0].setTitle(u"");
    ReportStyle style;
    style.column(u"A").alignment = ColumnAlignment::center;
    style.column(u"B").alignment = ColumnAlignment::left;
    const std::string text = page(table, style);
    EXPECT_EQ(count(text, "<td class=center data-n=1>"), 1U) << text;
    EXPECT_EQ(count(text, "<td class=center data-n=0>"), 1U);
    EXPECT_EQ(count(text, "<td class=left data-n="), 2U);
    style.column(u"A").alignment = ColumnAlignment::right;
    EXPECT_EQ(count(page(table, style), "<td class=right data-n=1>"), 1U);

    // Formats that browsers show; others stay texts.
    const std::pair<std::string, std::string> pictures[] = {
        {std::string("GIF89a\x08\0\x08\0\0\0\0", 13), "image/gif"},
        {std::string("\x89PNG\r\n\x1A\n", 8), "image/png"},
        {std::string("\xFF\xD8\xFF\xC0\0\x11\x08\0\x10\0\x20\3", 12), "image/jpeg"},
        {"BM" + std::string(12, '\0') + "(" + std::string(39, '\0'), "image/bmp"},
        {std::string("II*\0\x08\0\0\0\0\0", 10), ""}};
    for (const auto& [data, type] : pictures) {
        const auto bytes = std::as_bytes(std::span(data));
        if (picture_info(bytes).format == PictureFormat::unknown) {
            ADD_FAILURE() << type;
            continue;
        }
        Table shown{"A"};
        shown.add({to_value(Picture::fromBytes({bytes.begin(), bytes.end()}))});
        const std::string one = page(shown);
        EXPECT_EQ(count(one, "<img "), type.empty() ? 0U : 1U) << type;
        EXPECT_EQ(count(one, "src=\"data:" + type + ";base64,"), type.empty() ? 0U : 1U) << type;
    }

    // A long page is written in pieces, and nothing of it is lost between them.
    Table many{"A"};
    for (int i = 0; i < 5'000; ++i)
        many.add({i});
    EXPECT_EQ(count(page(many), "<td "), 5'000U);
}

TEST_F(Pages, AFileIsWrittenWholeOrNotAtAll) {
    Table table{"A"};
    table.add({1});
    save_html(path("page.html"), table);
    const std::string written = text_of(path("page.html"));
    EXPECT_EQ(written, page(table));
    ReportStyle style;
    style.column(u"B").total = u"Count()";
    EXPECT_THROW(save_html(path("page.html"), table, style), ContextException);
    EXPECT_EQ(text_of(path("page.html")), written);
}

bool is_installed(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

/// A browser without a window; empty where none is installed.
std::string browser() {
    for (const std::string name : {"chromium-headless-shell", "chromium"}) {
        if (is_installed(name))
            return name;
    }
    return {};
}

TEST_F(Pages, ABrowserSortsAndColoursTheRows) {
    const std::string program = browser();
    if (program.empty())
        GTEST_SKIP() << "no chromium-headless-shell";
    Table table{"Name", "Price", "Day"};
    table.add({"b10", 5, Date(2024, 2, 1)});
    table.add({"B9", -1000, Date(2023, 12, 31)});
    table.add({Value(), 30, Value()});
    table.add({"a", Numeric::parse("0.5").value(), Date(2024, 1, 1)});
    ReportStyle style{.title = u"Sales"};
    Style red;
    red.setColor(*find_color(style_colors(), u"TextColor"), Color(255, 0, 0));
    red.setColor(*find_color(style_colors(), u"BackColor"), Color(0, 0, 0));
    style.rules.push_back({u"Price < 0", red, {}, u"A loss"});
    style.column(u"Price").format = u"fraction=2";
    style.column(u"Price").total = u"Sum(Price)";
    // What follows the page clicks and says what a reader would see then.
    std::ofstream(path("page.html")) << page(table, style) << R"(<script>
const seen = [], prices = () => [...document.querySelectorAll("tbody tr")].map((row) => row.cells[1].textContent).join(" ");
for (const column of [0, 0, 0, 1, 1, 2, 2]) {
    const head = document.querySelectorAll("th")[column];
    head.querySelector("button").click();
    seen.push(column + " " + head.getAttribute("aria-sort") + ": " + prices());
}
const cell = getComputedStyle([...document.querySelectorAll("td")].find((td) => td.textContent === "-1,000.00"));
seen.push(cell.color + " on " + cell.backgroundColor + " " + cell.textAlign);
seen.push(document.title + " / " + document.querySelector("tfoot").textContent + " / " + document.querySelector(".rules").textContent.trim());
seen.push(getComputedStyle(document.body).backgroundColor);
document.body.innerHTML = "<pre>" + seen.join("\n") + "</pre>";
</script>)";
    const std::string expected = R"(<pre>0 ascending: 0.50 -1,000.00 5.00 30.00
0 descending: 5.00 -1,000.00 0.50 30.00
0 none: 5.00 -1,000.00 30.00 0.50
1 ascending: -1,000.00 0.50 5.00 30.00
1 descending: 30.00 5.00 0.50 -1,000.00
2 ascending: -1,000.00 0.50 5.00 30.00
2 descending: 5.00 0.50 -1,000.00 30.00
rgb(255, 0, 0) on rgb(0, 0, 0) right
Sales / Total-964.50 / A loss
)";
    for (const auto& [look, background] : {std::pair{"0", "rgb(18, 22, 28)"}, {"1", "rgb(255, 255, 255)"}}) {
        const std::string command = program + " --headless --no-sandbox --disable-gpu --dump-dom" +
                                    " --blink-settings=preferredColorScheme=" + look + " --user-data-dir='" +
                                    path("profile") + "' 'file://" + path("page.html") + "' >'" +
                                    path("seen") + "' 2>'" + path("log") + '\'';
        ASSERT_EQ(std::system(command.c_str()), 0) << text_of(path("log"));
        const std::string seen = text_of(path("seen"));
        EXPECT_NE(seen.find(expected + background + "</pre>"), std::string::npos) << seen;
    }
}

TEST_F(Pages, APrintedPageHasTitlesOnEachSheetAndTotalsOnce) {
    const std::string program = browser();
    if (program.empty() || !is_installed("pdftotext"))
        GTEST_SKIP() << "no chromium-headless-shell or no pdftotext";
    Table table{"Name", "Price"};
    for (int i = 0; i < 100; ++i)
        table.add({"row", i});
    ReportStyle style;
    style.column(u"Price").title = u"Price now";
    style.column(u"Price").total = u"Sum(Price)";
    std::ofstream(path("page.html")) << page(table, style);
    const std::string command = program + " --headless --no-sandbox --disable-gpu --no-pdf-header-footer" +
                                " --print-to-pdf='" + path("page.pdf") + "' --user-data-dir='" +
                                path("profile") + "' 'file://" + path("page.html") + "' 2>'" + path("log") +
                                "' && pdftotext -layout '" + path("page.pdf") + "' '" + path("seen") + '\'';
    ASSERT_EQ(std::system(command.c_str()), 0) << text_of(path("log"));
    const std::string seen = text_of(path("seen"));
    const std::size_t sheets = count(seen, "\f");
    EXPECT_GT(sheets, 1U);
    EXPECT_EQ(count(seen, "Price now"), sheets) << seen;
    EXPECT_EQ(count(seen, "4950"), 1U) << seen;
}

} // namespace
