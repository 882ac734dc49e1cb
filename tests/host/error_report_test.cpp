// SPDX-License-Identifier: Apache-2.0
// How an error of a script is shown under its line.
#include "host/terminal/error_report.h"

#include <core/runtime/utf8.h>

#include <gtest/gtest.h>

#include <sstream>

namespace host {
namespace {

std::string repeat(std::string_view text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += text;
    return result;
}

/// What is shown for a piece of a line, whose column the caller knows.
std::string shown(std::string_view line, std::string_view marked, std::int32_t column, bool colour = false,
                  std::string_view file = "t") {
    core::script::Place place;
    place.file = core::from_utf8(file);
    place.line = 2;
    place.column = column;
    place.text = core::from_utf8(line);
    const core::wstring piece = core::from_utf8(marked);
    place.offset = static_cast<std::int32_t>(place.text.find(piece.substr(0, piece.find(u'\n'))));
    place.length = static_cast<std::int32_t>(piece.size());
    std::istringstream in;
    std::ostringstream out;
    Console console{in, out, out, Language::english, colour};
    show_error(console, core::script::Error(u"Wrong\x1B", place));
    return out.str();
}

TEST(ErrorReport, MarksThePieceUnderWhateverStandsBefore) {
    EXPECT_EQ(shown("f(abc);", "abc", 3), "t:2:3: Wrong\uFFFD\n    f(abc);\n      ^~~\n");
    EXPECT_EQ(shown("\ta\tb", "b", 4), "t:2:4: Wrong\uFFFD\n    \ta\tb\n    \t \t^\n");
    EXPECT_EQ(shown("\"漢字e\u0301\" x", "x", 8),
              "t:2:8: Wrong\uFFFD\n    \"漢字e\u0301\" x\n            ^\n");
    EXPECT_EQ(shown("a \"漢\"", "\"漢\"", 3), "t:2:3: Wrong\uFFFD\n    a \"漢\"\n      ^~~~\n");
    EXPECT_EQ(shown("a = \"one", "\"one\n|two\"", 5), "t:2:5: Wrong\uFFFD\n    a = \"one\n        ^~~~\n");
    EXPECT_EQ(shown("a =", "", 1), "t:2:1: Wrong\uFFFD\n    a =\n    ^\n");
    EXPECT_EQ(shown("", "", 1), "t:2:1: Wrong\uFFFD\n    \n    ^\n");
}

TEST(ErrorReport, NothingInAScriptSteersTheTerminal) {
    EXPECT_EQ(shown("\x1B[2J\x7F x", "x", 7), "t:2:7: Wrong\uFFFD\n    \uFFFD[2J\uFFFD x\n          ^\n");
    EXPECT_EQ(shown("x", "x", 1, false, "\x1B[2J"), "\uFFFD[2J:2:1: Wrong\uFFFD\n    x\n    ^\n");
    EXPECT_EQ(shown("x", "x", 1, true), "\x1B[1mt:2:1:\x1B[0m Wrong\uFFFD\n    x\n    \x1B[1;31m^\x1B[0m\n");
}

TEST(ErrorReport, OfALongLineThePartAroundTheMark) {
    EXPECT_EQ(shown(repeat("a", 10000) + "X" + repeat("b", 10000), "X", 10001),
              "t:2:10001: Wrong\uFFFD\n    …" + repeat("a", 60) + "X" + repeat("b", 59) + "…\n     " +
                  repeat(" ", 60) + "^\n");
}

} // namespace
} // namespace host
