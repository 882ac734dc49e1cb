// SPDX-License-Identifier: Apache-2.0
// Folding, comparison and hashing must answer exactly what ICU answers: for every code unit, and for random
// texts rich in what folds in odd ways.
#include "core/strings/table_hash.h"
#include "tests/support/rounds.h"

#include <core/strings/compare.h>
#include <core/strings/like.h>
#include <core/strings/names.h>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <random>
#include <thread>
#include <unordered_set>

using namespace core;
using namespace std::literals;

namespace {

wstring icu_fold(wstring_view text) {
    wstring folded(3 * text.size() + 1, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = u_strFoldCase(folded.data(), static_cast<int32_t>(folded.size()), text.data(),
                                         static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
    EXPECT_TRUE(U_SUCCESS(status));
    folded.resize(static_cast<std::size_t>(length));
    return folded;
}

int icu_compare(wstring_view a, wstring_view b) {
    const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (x == a.end())
        return y == b.end() ? 0 : -1;
    if (y == b.end())
        return 1;
    a.remove_prefix(static_cast<std::size_t>(x - a.begin()));
    b.remove_prefix(static_cast<std::size_t>(y - b.begin()));
    UErrorCode status = U_ZERO_ERROR;
    return u_strCaseCompare(a.data(), static_cast<int32_t>(a.size()), b.data(),
                            static_cast<int32_t>(b.size()), U_FOLD_CASE_DEFAULT, &status);
}

// Texts over a small alphabet of troublesome units: foldings of several units, letters of one folding, halves
// of surrogate pairs alone and together, lone dots and iotas that foldings end in.
class OddTexts {
  public:
    wstring next(std::size_t longest) {
        static constexpr wstring_view kUnits =
            u"aAbBsSßẞſkK\u212Aﬀﬃfiİı\u0307ΣσςͅιΙᾳᾼΐЯяВвᲀ0_\0\uFFFF"
            u"\xD801\xDC00\xDC28\xDC4F\xD83A\xDD00\xDD22\xD800\xDFFF"sv;
        wstring text(std::uniform_int_distribution<std::size_t>(0, longest)(random_), u'\0');
        for (wchar& c : text)
            c = kUnits[std::uniform_int_distribution<std::size_t>(0, kUnits.size() - 1)(random_)];
        return text;
    }
    // Another spelling of `text`: some units in another case, some characters folded.
    wstring respell(wstring_view text) {
        wstring other;
        for (const wchar c : text) {
            switch (random_() % 4) {
            case 0:
                other += static_cast<wchar>(u_toupper(c));
                break;
            case 1:
                other += icu_fold(wstring_view(&c, 1));
                break;
            default:
                other += c;
            }
        }
        return random_() % 4 == 0 ? icu_fold(other) : other;
    }

  private:
    std::mt19937 random_{20240229};
};

std::int32_t plain_hash(wstring_view text) {
    std::uint32_t h = 0;
    for (const wchar c : icu_fold(text))
        h = h * 5 + c;
    return static_cast<std::int32_t>(h);
}

} // namespace

TEST(CaseFold, EveryCodeUnitFoldsAsInIcu) {
    for (unsigned u = 0; u <= 0xFFFF; ++u) {
        const auto c = static_cast<wchar>(u);
        ASSERT_EQ(fold_case(c), static_cast<wchar>(u_foldCase(c, U_FOLD_CASE_DEFAULT))) << std::hex << u;
        ASSERT_EQ(fold_case(&c, &c + 1), icu_fold(wstring_view(&c, 1))) << std::hex << u;
        // Comparison with the neighbours in the alphabet reaches every unit's place in the order.
        for (const wchar other : {wchar(u ^ 1), wchar(u ^ 0x20), fold_case(c), u'a', u'\uFFFD', u'\xDC28'})
            ASSERT_EQ(compare_nocase({&c, 1}, {&other, 1}), icu_compare({&c, 1}, {&other, 1}))
                << std::hex << u;
    }
}

TEST(CaseFold, RandomTextsFoldCompareAndHashAsInIcu) {
    OddTexts texts;
    int equal = 0;
    const int rounds = support::rounds(200'000);
    for (int round = 0; round < rounds; ++round) {
        const wstring a = texts.next(12);
        const wstring b = round % 2 == 0 ? texts.respell(a) : texts.next(3);
        ASSERT_EQ(fold_case(a), icu_fold(a));
        ASSERT_EQ(hash_nocase(a), plain_hash(a));
        ASSERT_EQ(hash_nocase(a), hash_folded(fold_case(a)));
        const int order = compare_nocase(a, b);
        ASSERT_EQ(order, icu_compare(a, b)) << fold_case(a).size() << ' ' << round;
        ASSERT_EQ(order<0, compare_nocase(b, a)> 0);
        if (order == 0) {
            ++equal;
            ASSERT_EQ(table_hash_nocase(a), table_hash_nocase(b));
        }
    }
    EXPECT_GT(equal, rounds / 10); // the respelled texts do reach the far end of the comparison
}

TEST(CaseFold, LongTextsKeepTheRule) {
    for (const std::size_t length : {511u, 512u, 513u, 100'000u}) {
        wstring upper(length, u'Я');
        wstring lower(length, u'я');
        EXPECT_EQ(compare_nocase(upper, lower), 0);
        EXPECT_EQ(hash_nocase(upper), plain_hash(lower));
        upper.back() = u'ß';
        lower.replace(length - 1, 1, u"SS");
        EXPECT_EQ(compare_nocase(upper, lower), 0);
        EXPECT_EQ(hash_nocase(upper), plain_hash(lower));
        EXPECT_EQ(compare_nocase(upper, lower + u"x"), -1);
    }
}

TEST(CaseFold, ATextEndsWhereItsLengthSays) {
    // The unit behind the end would make a letter of the surrogate, or another text.
    const wstring upper = u"x\U00010400";
    const wstring lower = u"X\U00010428";
    EXPECT_EQ(fold_case(upper.data(), 2), upper.substr(0, 2));
    EXPECT_EQ(compare_nocase(upper, lower), 0);
    EXPECT_EQ(compare_nocase(upper.data(), 2, lower.data(), 2), 0);
    EXPECT_EQ(compare_nocase(upper.data(), 3, lower.data(), 2), 1);
    EXPECT_EQ(hash_nocase(upper), hash_nocase(lower));
    EXPECT_EQ(hash_nocase(upper.data(), 2), plain_hash(lower.substr(0, 2)));
}

TEST(CaseFold, TablesAreMadeOnceHoweverManyThreadsAskFirst) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            EXPECT_EQ(compare_nocase(u"ИМЯ", u"имя"), 0);
            EXPECT_TRUE(is_valid_name(u"Имя"));
            EXPECT_TRUE(compare_nocase_like(u"ИМЯ", u"%[к-м]_"));
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Compare, OrdersTextsAndTheirBeginnings) {
    EXPECT_EQ(compare_nocase(u"Имя", u"ИМЯ"), 0);
    EXPECT_EQ(compare_nocase(u"ab", u"abc"), -1);
    EXPECT_EQ(compare_nocase(u"abc", u"ab"), 1);
    EXPECT_EQ(compare_nocase(u"", u""), 0);
    EXPECT_EQ(compare(u"abcdefgh", u"abcdefgh"), 0);
    EXPECT_LT(compare(u"abcdefgH", u"abcdefgh"), 0);
    EXPECT_GT(compare(u"\uFFFD", u"\U0001F600"), 0); // by code units, not by characters
    EXPECT_LT(compare("ab", "\xFF"), 0);
    EXPECT_EQ(compare(u"abcde", u"abcdef"), -1);
}

TEST(Compare, EveryFormOfTheArgumentsGivesTheSame) {
    const wstring a = u"Straße";
    const wchar* const b = u"STRASSE";
    EXPECT_EQ(compare_nocase(a, b), 0);
    EXPECT_EQ(compare_nocase(a.c_str(), b), 0);
    EXPECT_EQ(compare_nocase(a.c_str(), a.size(), b, 7), 0);
    EXPECT_EQ(compare_nocase(a.c_str(), a.c_str() + a.size(), b, b + 7), 0);
    EXPECT_EQ(compare_nocase(a.c_str(), 0, b, 0), 0);
    EXPECT_EQ(hash_nocase(b), hash_nocase(a));
    EXPECT_EQ(hash_nocase(b, b + 7), hash_nocase(a.c_str(), 6));
    EXPECT_EQ(fold_case(b), u"strasse");
    const wchar* const none = nullptr;
    EXPECT_EQ(compare_nocase(none, u""), 0);
    EXPECT_EQ(hash_nocase(none), 0);
}

TEST(Compare, NarrowTextAnswersAsTheSameWideText) {
    EXPECT_EQ(compare_nocase("NoSortedCheck", "nosortedcheck"), 0);
    EXPECT_EQ(compare_nocase("Straße", "STRASSE"), 0);
    EXPECT_EQ(compare_nocase("Имя1", "ИМЯ2"), -1);
    EXPECT_EQ(compare_nocase(std::string("ab"), "abc"), -1);
    EXPECT_LT(compare_nocase("abc", "xbc"), 0);
    EXPECT_EQ(hash_nocase("Имя"), hash_nocase(u"имя"));
    EXPECT_EQ(fold_case("ИМЯ X"), "имя x");
    EXPECT_EQ(fold_case('Q'), 'q');
    EXPECT_TRUE(is_valid_name("Товар"));
    EXPECT_FALSE(is_valid_name("Товар 1"));
}

TEST(Names, ValidNames) {
    for (const wstring_view name : {u"_x1", u"Товар", u"_", u"é", u"名前", u"x\u0661"})
        EXPECT_TRUE(is_valid_name(name));
    for (const wstring_view text : {u"1x", u"a b", u"", u"\u0661x", u"a-b", u"a\u0301", u"\U00010400"})
        EXPECT_FALSE(is_valid_name(text));
}

TEST(Names, TablesFindANameInAnyCase) {
    EXPECT_EQ(hash_nocase(u"Name"), hash_nocase(u"NAME"));
    EXPECT_EQ(hash_nocase(wstring_view()), 0);
    std::unordered_set<wstring, NocaseHash, NocaseEqual> names{u"Количество", u"Count"};
    EXPECT_TRUE(names.contains(wstring_view(u"КОЛИЧЕСТВО")));
    EXPECT_TRUE(names.contains(u"count"));
    EXPECT_FALSE(names.insert(u"COUNT").second);
}
