// SPDX-License-Identifier: Apache-2.0
// Every locale that ICU has can be named and climbs to the root; forms of a key meet in one; what is not
// known is refused and never taken for another locale.
#include <core/runtime/errors.h>
#include <core/runtime/locale.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/uloc.h>

#include <set>
#include <thread>

using namespace core;

namespace {

std::string best(std::initializer_list<const char*> wishes, std::initializer_list<const char*> available) {
    std::vector<Locale> wished;
    std::vector<Locale> there;
    for (const char* const key : wishes)
        wished.emplace_back(key);
    for (const char* const key : available)
        there.emplace_back(key);
    const auto found = best_match(wished, there);
    return found ? found->key() : "none";
}

} // namespace

TEST(Locale, EachThatIcuHasIsNamedByItsKeyAndClimbsToTheRoot) {
    std::set<std::string> keys;
    for (const Locale& locale : Locale::all()) {
        const std::string& key = locale.key();
        keys.insert(key);
        EXPECT_EQ(Locale(key), locale);
        const icu::Locale known(key.c_str());
        EXPECT_EQ(locale.language(), known.getLanguage());
        EXPECT_EQ(locale.region(), known.getCountry());
        EXPECT_EQ(locale.isRightToLeft(), known.isRightToLeft() != 0) << key;
        UErrorCode status = U_ZERO_ERROR;
        const std::string tag = known.toLanguageTag<std::string>(status);
        EXPECT_EQ(Locale(tag), locale) << tag;
        std::string loud = tag;
        for (char& c : loud)
            c = c == '-' ? '_' : static_cast<char>(std::toupper(c));
        EXPECT_EQ(Locale(loud), locale) << loud;
        std::set<std::string> met;
        for (Locale at = locale; at != Locale(); at = at.parent())
            ASSERT_TRUE(met.insert(at.key()).second) << key << " meets " << at.key() << " again";
        EXPECT_FALSE(locale.ownName().empty());
        EXPECT_GE(locale.firstDayOfWeek(), 1);
        EXPECT_LE(locale.firstDayOfWeek(), 7);
    }
    std::set<std::string> listed;
    for (std::int32_t i = 0; i < uloc_countAvailable(); ++i)
        listed.insert(uloc_getAvailable(i));
    EXPECT_EQ(keys, listed);
}

TEST(Locale, FormsOfAKeyMeetInOne) {
    for (const auto& [key, form] : {std::pair{"", ""},
                                    {"root", ""},
                                    {"und", ""},
                                    {"DE-at", "de_AT"},
                                    {"iw", "he"},
                                    {"in_ID", "id_ID"},
                                    {"sh", "sr_Latn"},
                                    {"zh_TW", "zh_Hant_TW"},
                                    {"zh-CN", "zh_Hans_CN"},
                                    {"sr_RS", "sr_Cyrl_RS"},
                                    {"en_Latn_US", "en_US"},
                                    {"en_UK", "en_GB"},
                                    {"ru_US", "ru_US"},
                                    {"ru_Cyrl", "ru"},
                                    {"zh_US", "zh_Hant_US"},
                                    {"en_US_POSIX", "en_US_POSIX"},
                                    {"de-u-co-phonebk", "de@collation=phonebook"},
                                    {"zh_TW@collation=stroke", "zh_Hant_TW@collation=stroke"},
                                    {"ar-EG-u-nu-latn", "ar_EG@numbers=latn"}}) {
        EXPECT_EQ(Locale(key).key(), form) << key;
        EXPECT_EQ(Locale(Locale(key).key()).key(), form) << key;
    }
}

TEST(Locale, UnknownKeysAreRefused) {
    using namespace std::string_view_literals;
    for (const std::string_view key : {"xx"sv,
                                       "english"sv,
                                       "de_QQ"sv,
                                       "de_ZZ"sv,
                                       "ru_Latn"sv,
                                       "en_Cyrl_US"sv,
                                       "de__NOWHERE"sv,
                                       "de_DE_EURO"sv,
                                       "de AT"sv,
                                       "de_"sv,
                                       "_DE"sv,
                                       "und_DE"sv,
                                       "-"sv,
                                       "../de"sv,
                                       "de.UTF-8"sv,
                                       "C"sv,
                                       "de\0"sv,
                                       "\0"sv,
                                       "де"sv,
                                       "de@collation=nothing"sv,
                                       "de@numbers=nothing"sv,
                                       "de@foo=bar"sv,
                                       "de@"sv,
                                       "@collation=phonebook"sv}) {
        EXPECT_THROW(static_cast<void>(Locale(key)), LocaleException) << key;
    }
    EXPECT_THROW(Locale(std::string(100'000, 'a')), LocaleException);
    const host::HostProcess process;
    try {
        static_cast<void>(Locale("xx_YY"));
        FAIL();
    } catch (const LocaleException& e) {
        EXPECT_EQ(e.description(), u"No locale is known by the key “xx_YY”.");
    }
}

TEST(Locale, ParentsAreThoseOfTheCldr) {
    const auto parents = [](const char* key) {
        std::string all;
        for (Locale at = Locale(key); at != Locale(); at = at.parent())
            all += (all.empty() ? "" : " ") + at.key();
        return all;
    };
    EXPECT_EQ(parents("es_MX"), "es_MX es_419 es");
    EXPECT_EQ(parents("en_AU"), "en_AU en_001 en");
    EXPECT_EQ(parents("nb_NO"), "nb_NO nb no");
    EXPECT_EQ(parents("zh_TW"), "zh_Hant_TW zh_Hant"); // those who read Traditional do not read Simplified
    EXPECT_EQ(parents("sr_Latn_RS"), "sr_Latn_RS sr_Latn");
    EXPECT_EQ(parents("ru_US@collation=standard"), "ru_US@collation=standard ru_US ru");
    EXPECT_EQ(Locale().parent(), Locale());
}

TEST(Locale, TellsNamesDirectionAndTheFirstDayOfTheWeek) {
    const Locale austrian("de_AT");
    EXPECT_EQ(austrian.ownName(), u"Deutsch (Österreich)");
    EXPECT_EQ(austrian.name(Locale("ru")), u"немецкий (Австрия)");
    EXPECT_GT(Locale("zh_Hant_TW@collation=stroke").name(Locale("pl")).size(), 50U);
    EXPECT_TRUE(Locale("ar").isRightToLeft());
    EXPECT_FALSE(Locale("az").isRightToLeft());
    for (const auto& [key, day] : {std::pair{"", 1}, {"ru", 1}, {"en_US", 7}, {"en_GB", 1}, {"ar_EG", 6}}) {
        EXPECT_EQ(Locale(key).firstDayOfWeek(), day) << key;
    }
    EXPECT_TRUE(Locale("ru_UA").isRussian());
    EXPECT_FALSE(Locale("rw").isRussian());
}

TEST(Locale, TheBestMatchIsTheNearestOfTheDearestWish) {
    EXPECT_EQ(best({"es_MX"}, {"en", "es"}), "es");
    EXPECT_EQ(best({"es_MX", "en"}, {"en", "es_ES", "es_419"}), "es_419");
    EXPECT_EQ(best({"fr", "en_AU"}, {"en_US", "en_GB"}), "en_GB");
    EXPECT_EQ(best({"pt_AO"}, {"pt_BR", "pt_PT"}), "pt_PT");
    EXPECT_EQ(best({"zh_TW"}, {"zh_Hans", "zh_Hant"}), "zh_Hant");
    EXPECT_EQ(best({"zh_TW"}, {"zh_Hans", "en"}), "none");
    EXPECT_EQ(best({"no"}, {"da", "nb"}), "nb");
    EXPECT_EQ(best({"fr"}, {"en", ""}), "none");
    EXPECT_EQ(best({}, {"en"}), "none");
    EXPECT_EQ(best({"en"}, {}), "none");
}

TEST(Locale, MessagesMayBeInAnotherLanguage) {
    Settings settings;
    settings.locale = Locale("de");
    settings.language = Locale("ru");
    const host::HostProcess process(settings);
    std::thread([&] {
        const host::HostProcess::ThreadScope scope(process);
        EXPECT_EQ(Thread::getResourceLocale(), Locale("ru"));
        EXPECT_EQ(current_settings().locale, Locale("de"));
    }).join();
}
