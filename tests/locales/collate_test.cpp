// SPDX-License-Identifier: Apache-2.0
// The order of a language: what differs from the order of code units, and that keys stand in the same order.
#include "core/locales/collation_keys.h"

#include <core/locales/collate.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

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
    EXPECT_LT(compare(u"a", u"b", Locale("ii")), 0);
}

TEST(Collate, WithoutCaseAccentsStillCount) {
    EXPECT_EQ(compare_nocase(u"ИМЯ", 3, u"имя", 3, Locale("ru")), 0);
    EXPECT_EQ(compare_nocase("ИМЯ", "имя", Locale("ru")), 0);
    EXPECT_NE(compare_nocase(u"resume", u"résumé", Locale("fr")), 0);
    EXPECT_NE(compare_nocase(u"I", u"i", Locale("tr")), 0);
}

TEST(Collate, KeysStandInTheOrderOfTheTexts) {
    // Few texts and many, in which every letter has a place of its own or some do not.
    const std::vector<wstring_view> alphabets = {u"abzABZ019 -_.", u"абяАБЯжЖйЙ№ aZ", u"chlLH·ij.",
                                                 u"aäÄázZßéèæ", u"еёЁжи\u0306 "};
    std::mt19937 random(7);
    for (const char* const name : {"", "en", "ru", "sv", "cs", "da", "th", "en@colNumeric=yes"}) {
        const Locale locale(name);
        for (const wstring_view alphabet : alphabets) {
            for (const std::size_t count : {50U, 20'000U}) {
                std::vector<wstring> texts(count);
                for (wstring& text : texts)
                    for (std::size_t length = random() % 12; text.size() < length;)
                        text += alphabet[random() % alphabet.size()];
                const CollationKeys keys(std::vector<wstring_view>(texts.begin(), texts.end()), locale);
                for (std::size_t i = 0; i < 20'000; ++i) {
                    const std::size_t a = random() % count;
                    const std::size_t b = random() % count;
                    const bool less = keys[a] != keys[b] ? keys[a] < keys[b] : texts[a] < texts[b];
                    ASSERT_EQ(less, compare(texts[a], texts[b], locale) < 0)
                        << name << ": " << to_utf8(texts[a]) << ", " << to_utf8(texts[b]);
                }
            }
        }
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
