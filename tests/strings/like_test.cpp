// SPDX-License-Identifier: Apache-2.0
// LIKE: each construct of the pattern by example, all of them together against the model, and the time that a
// pattern made to be slow takes.
#include "tests/strings/like_model.h"
#include "tests/support/rounds.h"

#include <core/strings/like.h>

#include <gtest/gtest.h>

#include <random>

using namespace core;

namespace {

struct Case {
    wstring_view pattern;
    std::vector<wstring_view> matching;
    std::vector<wstring_view> others;
};

void expect_all(const std::vector<Case>& cases, LikeCase letterCase) {
    for (const Case& c : cases) {
        const LikePattern pattern(c.pattern, u'\\', letterCase);
        const std::string shown(c.pattern.begin(), c.pattern.end());
        for (const wstring_view text : c.matching)
            EXPECT_TRUE(pattern.matches(text)) << shown << ' ' << std::string(text.begin(), text.end());
        for (const wstring_view text : c.others)
            EXPECT_FALSE(pattern.matches(text)) << shown << ' ' << std::string(text.begin(), text.end());
    }
}

} // namespace

TEST(Like, EveryConstructByExample) {
    expect_all(
        {
            {u"", {u""}, {u"a"}},
            {u"%", {u"", u"abc"}, {}},
            {u"%%", {u"", u"abc"}, {}},
            {u"a%", {u"a", u"abc"}, {u"", u"ba", u"Abc"}},
            {u"a_c", {u"abc", u"a_c"}, {u"ac", u"abbc"}},
            {u"_", {u"x"}, {u"", u"xy", u"\U0001F600"}},
            {u"%_%", {u"x", u"xy"}, {u""}},
            {u"%ab%ab", {u"abab", u"ab-ab", u"xabxab"}, {u"ab", u"aab", u"ababx"}},
            {u"aba%ba", {u"ababa", u"abaxba"}, {u"aba"}},
            {u"[^a]bc", {u"xbc"}, {u"abc", u"bc"}},
            {u"[c-a][x]", {u"ax", u"bx", u"cx"}, {u"dx", u"-x"}},
            {u"[-a][a-][a-c-e]", {u"--e", u"aa-", u"-ab"}, {u"b--", u"--d"}},
            {u"[%_\\]", {u"%", u"_", u"\\"}, {u"a"}}, // nothing is special inside a set, nor escapes it
            {u"[]%", {}, {u"", u"]", u"a"}},
            {u"[^]%", {u"a", u"]"}, {u""}},
            {u"a[bc", {u"ab", u"ac"}, {u"a", u"a["}},
            {u"a[", {}, {u"a", u"a["}},
            {u"a[^", {u"ab"}, {u"a"}},
            {u"]-^", {u"]-^"}, {}},
            {u"a\\%c", {u"a%c"}, {u"abc", u"a\\%c", u"ac"}},
            {u"\\_\\[\\\\", {u"_[\\"}, {u"a[\\"}},
            {u"\\a\\", {u"a\\"}, {u"a", u"\\a\\"}}, // at the end it is itself
        },
        LikeCase::exact);
}

TEST(Like, WithoutRegardToCaseByExample) {
    expect_all(
        {
            {u"Имя%", {u"имя", u"ИМЯ поля"}, {u"им"}},
            {u"%КОД", {u"код", u"Штрихкод"}, {u"коды"}},
            {u"STRA_E", {u"straße", u"straSe"}, {u"strasse"}}, // units one by one, never one for two
            {u"[K-S]x", {u"kx", u"\u212Ax", u"ſX", u"mX"}, {u"jx", u"Tx"}},
            {u"[^k]", {u"x"}, {u"K", u"\u212A"}},
            {u"[A-_]", {u"^", u"_", u"Q", u"q"}, {u"`", u"{"}}, // what matches exactly matches
            {u"[ẞ]", {u"ß", u"ẞ"}, {u"s"}},
        },
        LikeCase::ignore);
}

TEST(Like, EveryFormOfTheArgumentsGivesTheSame) {
    const wstring text = u"a%c";
    EXPECT_TRUE(compare_like(text, u"a\\%c", u'\\'));
    EXPECT_FALSE(compare_like(text.c_str(), u"A\\%c", u'\\'));
    EXPECT_TRUE(compare_nocase_like(text.c_str(), u"A\\%C", '\\'));
    EXPECT_TRUE(compare_like(text.c_str(), 3, u"a%x", 2));
    EXPECT_TRUE(compare_nocase_like(text.data(), text.data() + 3, text.data(), text.data() + 2));
    EXPECT_TRUE(compare_nocase_like("ИМЯ 1", "имя__"));
    EXPECT_TRUE(compare_like("a%", "a!%", '!'));
    EXPECT_FALSE(compare_like("ab", "a!%", '!'));
    // The pattern kept for the next call is not mistaken for another one.
    EXPECT_FALSE(compare_like(u"ABC", u"a%"));
    EXPECT_TRUE(compare_nocase_like(u"ABC", u"a%"));
    EXPECT_FALSE(compare_like(u"ABC", u"a%", u'a'));
}

TEST(Like, RandomPatternsMatchAsTheModelDoes) {
    std::mt19937 random(42);
    const auto any = [&](wstring_view units, std::size_t longest) {
        wstring text(random() % (longest + 1), u'\0');
        for (wchar& c : text)
            c = units[random() % units.size()];
        return text;
    };
    int matching = 0;
    const int rounds = support::rounds(300'000);
    for (int round = 0; round < rounds; ++round) {
        const wstring pattern = any(u"aAbBkßẞЯ%%__[[]]^-\\", 10);
        const wstring text = any(u"aAbBkK\u212AßẞЯя%_-^]", 8);
        const wchar escape = random() % 2 == 0 ? u'\\' : u'\0';
        for (const bool nocase : {false, true}) {
            const bool expected = LikeModel{pattern, escape, nocase}.matches(text);
            const LikePattern ready(pattern, escape, nocase ? LikeCase::ignore : LikeCase::exact);
            ASSERT_EQ(ready.matches(text), expected) << round;
            matching += expected;
        }
    }
    EXPECT_GT(matching, rounds / 20);
}

TEST(Like, RunsAreFoundAtEveryPlaceOfTextsOfEveryLength) {
    const LikePattern literal(u"%яAk%", 0, LikeCase::ignore);
    const LikePattern mixed(u"%_[Я]a%K%");
    const LikePattern other(u"%ЯaKK%");
    for (std::size_t length = 3; length <= 70; ++length) {
        for (std::size_t at = 0; at + 3 <= length; ++at) {
            wstring text(length, u'x');
            text.replace(at, 3, u"ЯaK");
            ASSERT_TRUE(literal.matches(text)) << length << ' ' << at;
            ASSERT_EQ(mixed.matches(text), at > 0) << length << ' ' << at;
            ASSERT_FALSE(other.matches(text)) << length << ' ' << at;
        }
    }
}

TEST(Like, AnEscapedTextMatchesItselfAlone) {
    std::mt19937 random(3);
    for (int round = 0; round < 1000; ++round) {
        wstring text(random() % 6, u'\0');
        for (wchar& c : text)
            c = u"%_[]^-!a"[random() % 8];
        wstring pattern;
        for (const wchar c : text)
            pattern += {u'!', c};
        EXPECT_TRUE(compare_like(text, pattern, u'!'));
        EXPECT_FALSE(compare_like(text + u"a", pattern, u'!'));
        EXPECT_FALSE(compare_like(u"b" + text, pattern, u'!'));
    }
}

TEST(Like, ManyPercentsTakeNoExponentialTime) {
    wstring pattern;
    for (int i = 0; i < 1000; ++i)
        pattern += u"a%";
    const wstring text(20'000, u'a');
    EXPECT_TRUE(compare_like(text, pattern));
    EXPECT_FALSE(compare_like(text, pattern + u"b"));
}
