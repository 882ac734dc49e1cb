// SPDX-License-Identifier: Apache-2.0
// Classes are ICU's for every code unit; trimming takes away what is white space and nothing else.
#include <core/runtime/utf8.h>
#include <core/strings/char_class.h>
#include <core/strings/trim.h>

#include <gtest/gtest.h>
#include <unicode/uchar.h>

using namespace core;

TEST(CharClass, EveryCodeUnitIsClassedAsInIcu) {
    for (unsigned u = 0; u <= 0xFFFF; ++u) {
        const auto c = static_cast<wchar>(u);
        ASSERT_EQ(is_space(c), u_isspace(c) != 0) << std::hex << u;
        ASSERT_EQ(is_alpha(c), u_isalpha(c) != 0) << std::hex << u;
        ASSERT_EQ(is_alnum(c), u_isalnum(c) != 0) << std::hex << u;
        ASSERT_EQ(is_digit(c), u_isdigit(c) != 0) << std::hex << u;
        ASSERT_EQ(digit(c), u_isdigit(c) != 0 ? u_charDigitValue(c) : -1) << std::hex << u;
        const auto narrow = static_cast<char>(u);
        const auto wide = static_cast<wchar>(u < 0x80 ? u : 0xD800); // a byte of a sequence is in no class
        ASSERT_TRUE(u > 0xFF || (is_space(narrow) == is_space(wide) && is_alpha(narrow) == is_alpha(wide) &&
                                 is_alnum(narrow) == is_alnum(wide) && digit(narrow) == digit(wide)))
            << std::hex << u;
    }
}

TEST(Trim, TakesWhiteSpaceOffTheEndsOnly) {
    EXPECT_EQ(trim_all(u" \t\u00A0a b\u2003\u3000\n"), u"a b");
    EXPECT_EQ(trim_left(u"  a "), u"a ");
    EXPECT_EQ(trim_right(u" a  "), u" a");
    EXPECT_EQ(trim_all(u"\u00A0 \t"), u"");
    EXPECT_EQ(trim_all(u""), u"");
    EXPECT_EQ(trim_all(wstring(u"  moved ")), u"moved");
    const wchar text[] = {u' ', u'\0', u' '};
    EXPECT_EQ(trim_all(text, 3).size(), 1u);
}

TEST(Trim, NarrowTextLosesTheSameSpacesAndNoBytes) {
    EXPECT_EQ(trim_all(" \u00A0\u3000é\u2003\n"), "é");
    EXPECT_EQ(trim_right("Р "), "Р");              // D0 A0: the last byte alone is not a space
    EXPECT_EQ(trim_all("\xA0 \xA0"), "\xA0 \xA0"); // broken sequences stay
    EXPECT_EQ(trim_right("\xE3\x80 "), "\xE3\x80");
    EXPECT_EQ(trim_all("\u3000\u3000"), "");
    EXPECT_EQ(trim_all("\xE0\x80\xA0"), "\xE0\x80\xA0"); // not the shortest form of a blank
    for (unsigned u = 1; u <= 0xFFFF; ++u) {
        const auto c = static_cast<wchar>(u);
        const bool half = (u & 0xF800U) == 0xD800U;
        const std::string text = to_utf8(wstring{c, u'a', c});
        ASSERT_EQ(trim_all(text) == "a", !half && is_space(c)) << std::hex << u;
    }
}
