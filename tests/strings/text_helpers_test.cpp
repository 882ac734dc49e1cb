// SPDX-License-Identifier: Apache-2.0
// The everyday helpers: case conversion, replacement, tokens, paths, integers.
#include <core/strings/integer_text.h>
#include <core/strings/letter_case.h>
#include <core/strings/path.h>
#include <core/strings/split.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using namespace core;

TEST(LetterCase, ConvertsByTheRulesOfTheLocale) {
    EXPECT_EQ(to_upper(u"straße имя"), u"STRASSE ИМЯ");
    EXPECT_EQ(to_lower(u"ΟΔΟΣ ИМЯ"), u"οδος имя"); // a sigma at the end of a word
    EXPECT_EQ(to_upper(wstring(u"title"), Locale("tr")), u"T\u0130TLE");
    EXPECT_EQ(to_upper("имя"), "ИМЯ");
    EXPECT_EQ(to_lower(u"ABC", 2), u"ab");
    EXPECT_EQ(to_upper(wstring_view()), u"");
    EXPECT_EQ(to_upper(u'я'), u'Я');
    EXPECT_EQ(to_upper(u'ß'), u'ß');
    EXPECT_EQ(to_lower('Q'), 'q');
}

TEST(Replace, TakesOccurrencesFromTheLeft) {
    EXPECT_EQ(replace_all(u"aaaa a", u"aa", u"b"), u"bb a");
    EXPECT_EQ(replace_all(u"a.b.c", u".", u".."), u"a..b..c"); // what is put in is not looked at again
    EXPECT_EQ(replace_all("abc", "", "x"), "abc");
    EXPECT_EQ(replace_all("abc", "abc", ""), "");
}

TEST(Tokens, WithAndWithoutEmptyOnes) {
    using Tokens = std::vector<wstring_view>;
    EXPECT_EQ(string_tokenize(u",a,;b;", u",;"), (Tokens{u"a", u"b"}));
    EXPECT_EQ(string_tokenize(u",a,;b;", u",;", EmptyTokens::keep), (Tokens{u"", u"a", u"", u"b", u""}));
    EXPECT_EQ(string_tokenize(u"", u",", EmptyTokens::keep), Tokens{u""});
    EXPECT_EQ(string_tokenize(u"", u","), Tokens{});
    EXPECT_EQ(string_tokenize("a b", ""), std::vector<std::string_view>{"a b"});
}

TEST(TextForms, APointerMayHaveALengthAnEndOrNeither) {
    const wchar* const text = u"a,b/c,d";
    const wstring_view whole = text;
    const wchar* const none = nullptr;
    for (const auto& [given, expected] : {std::pair(replace_all(text, 3, u",", u"--"), u"a--b"),
                                          std::pair(replace_all(text, text + 3, u",", u"--"), u"a--b"),
                                          std::pair(replace_all(none, u",", u"--"), u"")})
        EXPECT_EQ(given, expected);
    EXPECT_EQ(replace_all(text, u",", u"--"), replace_all(whole, u",", u"--"));
    EXPECT_EQ(string_tokenize(text, 3, u","), string_tokenize(whole.substr(0, 3), u","));
    EXPECT_EQ(string_tokenize(text, text + 3, u",", EmptyTokens::keep),
              string_tokenize(whole.substr(0, 3), u",", EmptyTokens::keep));
    EXPECT_EQ(string_tokenize(text, u","), string_tokenize(whole, u","));
    EXPECT_EQ(string_tokenize(none, u",", EmptyTokens::keep).size(), 1U);
    EXPECT_EQ(string_splitpath(text, 3), string_splitpath(whole.substr(0, 3)));
    EXPECT_EQ(string_splitpath(text, text + 5), string_splitpath(whole.substr(0, 5)));
    EXPECT_EQ(string_splitpath(none), PathParts());
    EXPECT_EQ(replace_all("a,b", 2, ",", ";"), "a;");
}

TEST(Path, PiecesOfAPathMakeThePath) {
    const auto parts = [](wstring_view path) { return string_splitpath(path); };
    EXPECT_EQ(parts(u"c:\\data\\list.tar.gz"), (PathParts{u"c:", u"\\data\\", u"list.tar", u".gz"}));
    EXPECT_EQ(parts(u"/home/.profile"), (PathParts{u"", u"/home/", u".profile", u""}));
    EXPECT_EQ(parts(u"/etc.d/hosts"), (PathParts{u"", u"/etc.d/", u"hosts", u""}));
    EXPECT_EQ(parts(u".."), (PathParts{u"", u"", u"..", u""}));
    EXPECT_EQ(parts(u"file."), (PathParts{u"", u"", u"file", u"."}));
    EXPECT_EQ(parts(u"..a"), (PathParts{u"", u"", u"..a", u""}));
    for (const wstring_view path : {u"", u"/", u"c:", u"a/b.c/", u"./x.y", u"1:/x", u"d:имя.ёж", u"..a.b"})
        EXPECT_EQ(string_makepath(string_splitpath(path)), path);
    EXPECT_EQ(string_makepath({u"c", u"dir", u"name", u"txt"}), u"c:dir/name.txt");
    EXPECT_EQ(string_makepath(string_splitpath("x/y.z")), "x/y.z");
}

namespace {

template <class T>
void expect_limits_round_trip() {
    using Limits = std::numeric_limits<T>;
    for (const T value : {Limits::min(), Limits::max(), T{0}, T{1}, T{42}})
        for (const unsigned radix : {2U, 8U, 10U, 16U, 36U})
            EXPECT_EQ(string_toint<T>(string_intto(value, radix), radix), value);
    // One step beyond either end does not fit.
    EXPECT_EQ(string_toint<T>(string_intto(Limits::max()) + u"0"), std::nullopt);
    wstring above = string_intto(Limits::max());
    ++above.back();
    EXPECT_EQ(string_toint<T>(above), std::nullopt);
    wstring below = Limits::is_signed ? string_intto(Limits::min()) : wstring(u"-0");
    ++below.back();
    EXPECT_EQ(string_toint<T>(below), std::nullopt);
}

} // namespace

TEST(Integers, EveryBuiltInTypeRoundTripsToItsLimits) {
    expect_limits_round_trip<signed char>();
    expect_limits_round_trip<char>();
    expect_limits_round_trip<unsigned char>();
    expect_limits_round_trip<short>();
    expect_limits_round_trip<unsigned short>();
    expect_limits_round_trip<int>();
    expect_limits_round_trip<unsigned>();
    expect_limits_round_trip<long>();
    expect_limits_round_trip<unsigned long>();
    expect_limits_round_trip<long long>();
    expect_limits_round_trip<unsigned long long>();
}

TEST(Integers, TextsThatAreNumbersAndTextsThatAreNot) {
    EXPECT_EQ(string_toint(u"+5"), 5);
    EXPECT_EQ(string_toint(u"-0"), 0);
    EXPECT_EQ(string_toint<unsigned>(u"-0"), 0U);
    EXPECT_EQ(string_toint(u"\u0664\u0662"), 42);
    EXPECT_EQ(string_toint("\u0664\u0662"), 42);
    EXPECT_EQ(string_toint("fF", 16), 255);
    EXPECT_EQ(string_toint<std::uint64_t>(u"18446744073709551616"), std::nullopt);
    EXPECT_EQ(string_toint<std::int64_t>(u"-18446744073709551615"), std::nullopt);
    for (const wstring_view text : {u"", u"-", u"+-1", u" 1", u"1 ", u"12a", u"0x10", u"1.0"})
        EXPECT_EQ(string_toint(text), std::nullopt);
    EXPECT_EQ(string_toint(u"2", 2), std::nullopt);
    EXPECT_EQ(string_toint(u"1", 37), std::nullopt);
    EXPECT_EQ(string_intto(1, 1), u"");
    EXPECT_EQ(string_intto<char>(-255, 16), "-ff");
}
