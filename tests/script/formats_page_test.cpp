// SPDX-License-Identifier: Apache-2.0
// docs/formats.md: each example on the page gives the result that stands beside it, and each item has one.
#include "tests/script/script_fixture.h"

#include <core/runtime/settings.h>

#include <fstream>
#include <vector>

namespace core::script {
namespace {

/// No-break blanks look like any other on the page.
std::string with_plain_blanks(std::string text) {
    for (const std::string_view blank : {"\u00A0", "\u202F"}) {
        for (std::size_t at = text.find(blank); at != std::string::npos; at = text.find(blank))
            text.replace(at, blank.size(), " ");
    }
    return text;
}

std::string page_text() {
    std::ifstream file(CORE_SOURCE_DIR "/docs/formats.md");
    return std::string(std::istreambuf_iterator<char>(file), {});
}

struct Example {
    std::string expression;
    std::string result;
};

/// The lines "| `expression` | `result` |".
std::vector<Example> examples(const std::string& page) {
    std::vector<Example> found;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        const std::string between = "` | `";
        const std::size_t middle = line.find(between);
        if (!line.starts_with("| `") || !line.ends_with("` |") || middle == std::string::npos ||
            line.find('(') > middle)
            continue;
        const std::size_t second = middle + between.size();
        found.push_back({line.substr(3, middle - 3), line.substr(second, line.size() - second - 3)});
    }
    return found;
}

class FormatsPage : public ScriptTest {};

TEST_F(FormatsPage, EachExampleGivesItsResult) {
    const std::string page = page_text();
    const std::vector<Example> all = examples(page);
    EXPECT_GT(all.size(), 80U);
    Session session;
    for (const auto& [expression, result] : all)
        EXPECT_EQ(with_plain_blanks(session.run("Print(" + expression + ")")), result) << expression;

    // The message of an unknown item lists the items of its kind.
    for (const std::string_view value : {"1", "'20240229'", "True"}) {
        const std::string refused = session.run("Format(" + std::string(value) + ", \"colour=red\")");
        const std::string mark = "There are: ";
        ASSERT_NE(refused.find(mark), std::string::npos) << refused;
        std::istringstream names(refused.substr(refused.find(mark) + mark.size()));
        for (std::string name; names >> name;) {
            name.pop_back();
            EXPECT_NE(page.find('`' + name + '`'), std::string::npos) << name;
            EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const Example& example) {
                return example.expression.find(name + '=') != std::string::npos;
            })) << name;
        }
    }
}

TEST_F(FormatsPage, RefusalsSayWhere) {
    check({{"Format(1, \"fraction=2; colour=red\")",
            "! 1:1 At character 13 of the format string: there is no item “colour” here. There are: locale, "
            "fraction, digits, whole, point, group, grouping, sign, scale, zero, negative, empty."},
           {"Format(1, \"date=d\")",
            "! 1:1 At character 1 of the format string: there is no item “date” here. There are: locale, "
            "fraction, digits, whole, point, group, grouping, sign, scale, zero, negative, empty."},
           {"Format(1, \"fraction=2; sign=left\")",
            "! 1:1 At character 13 of the format string: the item “sign” cannot have the value “left”."},
           {"Format(1, \"locale=qq\")",
            "! 1:1 At character 1 of the format string: the item “locale” cannot have the value “qq”."},
           {"Format(1, \"fraction=1; дробь=2\")",
            "! 1:1 At character 13 the format string is not valid: дробь=2"},
           {"Format('20240229', \"date='d MMMM t'\")", "! 1:1 In the date pattern “d MMMM t” the part “t” at "
                                                       "character 8 means nothing. Text stands between "
                                                       "apostrophes."},
           {"Format(\"text\", \"fraction=2\")", "! 1:1 A value of the type String has no format string."},
           {"Format(\"text\")", "\"text\""},
           {"Year(1)", "! 1:1 Year: the parameter Date does not take a value of the type Number: 1."}});
}

TEST_F(FormatsPage, FunctionsFollowTheLocaleOfTheProcess) {
    Settings settings;
    settings.locale = Locale("de");
    const host::HostProcess process(settings);
    Session session;
    EXPECT_EQ(session.run("Format(1234.5); ParseNumber(\"1.234,5\"); Format('20240229', \"date=long\")"),
              "\"1.234,5\"\n1234.5\n\"29. Februar 2024\"");
}

} // namespace
} // namespace core::script
