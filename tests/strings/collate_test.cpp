// SPDX-License-Identifier: Apache-2.0
// The order of a language: what differs from the order of code units, and that keys stand in the same order.
#include <core/strings/collate.h>
#include <core/strings/compare.h>

#include <gtest/gtest.h>

#include <thread>

using namespace core;

TEST(Collate, OrdersAsTheLanguageDoes) {
    const Locale german("de");
    const Locale swedish("sv");
    EXPECT_LT(compare(u"äpfel", u"zebra", german), 0);
    EXPECT_GT(compare(u"äpfel", u"zebra", swedish), 0);
    EXPECT_LT(compare(u"ёлка", u"жук", Locale("ru")), 0);
    EXPECT_LT(compare("ёлка", "жук", Locale("ru")), 0);
    EXPECT_GT(compare(u"ёлка", u"жук"), 0);
    EXPECT_LT(compare(u"a", u"B", Locale()), 0);
    EXPECT_NE(compare(u"a\u0301", u"\u00E1", german), 0); // canonically equal: told apart by units
    EXPECT_NE(compare(u"a\u0001b", u"ab", german), 0);
    EXPECT_EQ(compare(wstring_view(), u"", german), 0);
    EXPECT_LT(compare(u"a", u"b", Locale("no-such-locale-anywhere")), 0);
}

TEST(Collate, WithoutCaseAccentsStillCount) {
    EXPECT_EQ(compare_nocase(u"ИМЯ", 3, u"имя", 3, Locale("ru")), 0);
    EXPECT_EQ(compare_nocase("ИМЯ", "имя", Locale("ru")), 0);
    EXPECT_NE(compare_nocase(u"resume", u"résumé", Locale("fr")), 0);
    EXPECT_NE(compare_nocase(u"I", u"i", Locale("tr")), 0);
}

TEST(Collate, KeysStandInTheOrderOfTheTexts) {
    const std::vector<wstring> texts = {
        u"", u"a", u"A", u"á", u"ab", u"Ä", u"b", u"Я", u"я", u"ё", wstring(500, u'я')};
    for (const char* const name : {"", "ru", "sv"}) {
        const Locale locale(name);
        const auto key = [&](const wstring& text) {
            std::string keys = "before";
            append_collation_key(keys, text, locale);
            EXPECT_EQ(keys.substr(0, 6), "before");
            return keys;
        };
        for (const wstring& a : texts)
            for (const wstring& b : texts)
                EXPECT_EQ(key(a) < key(b), compare(a, b, locale) < 0);
    }
}

TEST(Collate, EveryThreadHasCollatorsOfItsOwn) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 100; ++round)
                EXPECT_LT(compare(u"ёлка", u"Жук", Locale("ru")), 0);
        });
    for (std::thread& thread : threads)
        thread.join();
}
