// SPDX-License-Identifier: Apache-2.0
// A text in several languages behaves as a map from languages to texts, is found through parents, and what is
// written reads back.
#include <core/locales/local_wstring.h>
#include <core/locales/settings.h>
#include <core/runtime/errors.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <thread>

using namespace core;

namespace {

const LocalWString& price() {
    static const LocalWString string =
        LocalWString::fromString(u"en='Price'; es='Precio'; es_419='Costo'; ru='Цена'");
    return string;
}

} // namespace

TEST(LocalWString, ATextIsFoundInTheLanguageItsParentsOrTheDefault) {
    const Locale english("en");
    const auto text = [&](const char* key) { return price().text(Locale(key), english); };
    EXPECT_EQ(text("ru"), u"Цена");
    EXPECT_EQ(text("ru_KZ@collation=standard"), u"Цена");
    EXPECT_EQ(text("es_ES"), u"Precio");
    EXPECT_EQ(text("es_MX"), u"Costo") << "es_419 comes before es";
    EXPECT_EQ(text("de"), u"Price");
    EXPECT_EQ(text(""), u"Price");
    EXPECT_EQ(price().text(Locale("de"), Locale("es_MX")), u"Costo");
    EXPECT_EQ(price().text(Locale("de"), Locale("fr")), u"");
    LocalWString more = price();
    more.set(Locale(), u"for all");
    EXPECT_EQ(more.text(Locale("de"), english), u"for all") << "the root is a parent of every language";
    EXPECT_EQ(more.text(Locale("ru"), english), u"Цена");
    EXPECT_EQ(LocalWString(u"plain").text(Locale("ru"), english), u"plain");
    EXPECT_EQ(LocalWString().text(Locale("ru"), english), u"");
}

TEST(LocalWString, TheUserReadsTheLanguageOfTheMessagesOrThatOfTheProcess) {
    Settings settings;
    settings.locale = Locale("ru");
    settings.part<LanguageSettings>().byDefault = Locale("es_AR");
    const host::HostProcess process(settings);
    std::thread([&] {
        const host::HostProcess::ThreadScope scope(process);
        EXPECT_EQ(price().text(), u"Цена");
        Thread::setResourceLocale(Locale("en_GB"));
        EXPECT_EQ(price().text(), u"Price");
        Thread::setResourceLocale(Locale("fr"));
        EXPECT_EQ(price().text(), u"Costo");
    }).join();
}

TEST(LocalWString, IsAMapFromLanguagesToTextsThatReadsBackAsItIsWritten) {
    const std::vector<Locale> languages = {Locale(),        Locale("en"),    Locale("en_GB"), Locale("ru"),
                                           Locale("zh_TW"), Locale("sr_RS"), Locale("de")};
    const std::vector<wstring> texts = {
        u"a", u"", u"it's; a=b", u"''", u" \r\n\t", u"\u0000\uFFFF", wstring(500, u'ё')};
    std::mt19937 random(5);
    LocalWString string;
    std::map<std::string, wstring> model;
    for (int step = 0; step < 3000; ++step) {
        const Locale& language = languages[random() % languages.size()];
        const wstring& text = texts[random() % texts.size()];
        if (random() % 3 == 0) {
            EXPECT_EQ(string.remove(language), model.erase(language.key()) == 1);
        } else {
            string.set(Locale(language.key() + (language == Locale() ? "" : "@collation=standard")), text);
            model[language.key()] = text;
            if (language == Locale() && text.empty())
                model.erase("");
        }
        ASSERT_EQ(string.languages().size(), model.size());
        EXPECT_EQ(string.empty(), model.empty());
        auto expected = model.begin();
        for (const Locale& there : string.languages()) {
            ASSERT_EQ(there.key(), expected->first) << "in the order of the keys";
            ASSERT_EQ(*string.find(there), expected++->second);
        }
        const LocalWString again = LocalWString::fromString(string.toString());
        ASSERT_EQ(again, string) << to_utf8(string.toString());
        EXPECT_EQ(again.hash(), string.hash());
        LocalWString other = string;
        other.set(Locale("fr"), u"other");
        EXPECT_NE(other, string);
    }
}

TEST(LocalWString, TheWrittenFormIsOneAndStrict) {
    EXPECT_EQ(LocalWString::fromString(u" RU = 'Цена' ;root='all';en='It''s';").toString(),
              u"root='all'; en='It''s'; ru='Цена'");
    EXPECT_TRUE(LocalWString::fromString(u"  ").empty());
    for (const wstring_view bad : {u"Price", u"en=Price", u"en='Price", u"en='a' ru='b'", u"='a'",
                                   u"en='a'; en='b'", u"en='a'; EN='b'", u"zh_TW='a'; zh_Hant_TW='b'", u";"})
        EXPECT_THROW(static_cast<void>(LocalWString::fromString(bad)), CtorException) << to_utf8(bad);
    EXPECT_THROW(static_cast<void>(LocalWString::fromString(u"en='a'; xx='b'")), LocaleException);
    const host::HostProcess process;
    try {
        static_cast<void>(LocalWString::fromString(u"en='a'; ru=b"));
        FAIL();
    } catch (const CtorException& e) {
        EXPECT_TRUE(
            e.description().starts_with(u"At character 12 the text in several languages is not valid."));
    }
}
