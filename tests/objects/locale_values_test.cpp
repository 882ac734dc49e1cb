// SPDX-License-Identifier: Apache-2.0
// Locales and texts in several languages as scripts hold them: by both names, equal by content, stored and
// read back.
#include "tests/collections/script.h"

#include <core/collections/native_values.h>
#include <core/lists/errors.h>
#include <core/objects/locale_functions.h>
#include <core/objects/locale_values.h>
#include <core/runtime/errors.h>
#include <core/runtime/threads/thread.h>

#include <thread>

using namespace script;

namespace {

using LocaleValues = script::Test;

GenericValue function(const wchar* name, Arguments arguments) {
    const auto functions = create_locale_functions();
    GenericValue result;
    functions->call(functions->findMethod(name), &result, &arguments);
    return result;
}

void expect_stored_and_equal(const GenericValue& value, const GenericValue& other) {
    const GenericValue again = GenericValue::fromString(text(value));
    EXPECT_TRUE(again.equals(value));
    EXPECT_EQ(again.hashCode(), value.hashCode());
    EXPECT_FALSE(value.equals(other));
}

} // namespace

TEST_F(LocaleValues, ALocaleTellsWhatItIs) {
    const GenericValue locale = make(u"Локаль", {u"DE-at"});
    EXPECT_TRUE(property(locale, u"Key").equals(u"de_AT"));
    EXPECT_TRUE(property(locale, u"Язык").equals(u"de"));
    EXPECT_TRUE(property(locale, u"Регион").equals(u"AT"));
    EXPECT_TRUE(property(property(locale, u"Родитель"), u"Ключ").equals(u"de"));
    EXPECT_TRUE(property(make(u"Locale", {u"root"}), u"Parent").isUndefined());
    EXPECT_TRUE(property(locale, u"OwnName").equals(u"Deutsch (Österreich)"));
    EXPECT_TRUE(call(locale, u"Имя", {u"ru"}).equals(u"немецкий (Австрия)"));
    EXPECT_TRUE(call(locale, u"Name", {make(u"Locale", {u"fr"})}).equals(u"allemand (Autriche)"));
    std::thread([&] {
        const host::HostProcess::ThreadScope scope(process_);
        Thread::setResourceLocale(Locale("ru"));
        EXPECT_EQ(locale.presentation(), u"немецкий (Австрия)");
    }).join();
    expect_stored_and_equal(locale, make(u"Locale", {u"de"}));
    EXPECT_THROW(make(u"Locale", {u"xx"}), LocaleException);
    EXPECT_EQ(failure([] { make(u"Locale", {1}); }), type_mismatch(0));
    EXPECT_TRUE(property(make(u"Locale"), u"Key").equals(u"")); // that of the process
}

TEST_F(LocaleValues, TheFunctionsListLocalesAndFindTheBest) {
    const GenericValue all = function(u"Локали", {});
    EXPECT_EQ(walk(all).size(), Locale::all().size());
    const auto best = [](std::vector<wstring> wishes, std::vector<wstring> available) {
        return function(u"BestLocale", {to_value(wishes), to_value(available)});
    };
    EXPECT_TRUE(property(best({u"es_MX"}, {u"en", u"es"}), u"Key").equals(u"es"));
    EXPECT_TRUE(best({u"fr"}, {u"en"}).isUndefined());
    EXPECT_FALSE(function(u"ЛучшаяЛокаль", {all, all}).isUndefined());
    EXPECT_EQ(failure([] { function(u"BestLocale", {u"en", u"en"}); }), type_mismatch(0));
}

TEST_F(LocaleValues, ATextInSeveralLanguagesShowsThatOfTheUser) {
    const GenericValue title = make(u"МногоязычнаяСтрока", {u"ru='Цена'; en='Price'"});
    EXPECT_TRUE(property(title, u"Written").equals(u"en='Price'; ru='Цена'"));
    EXPECT_EQ(title.presentation(), u"Price");
    std::thread([&] {
        const host::HostProcess::ThreadScope scope(process_);
        Thread::setResourceLocale(Locale("ru"));
        EXPECT_EQ(title.presentation(), u"Цена");
        EXPECT_TRUE(call(title, u"Текст", {GenericValue()}).equals(u"Цена"));
    }).join();
    EXPECT_TRUE(call(title, u"Text", {u"ru_RU"}).equals(u"Цена"));
    EXPECT_TRUE(call(title, u"Find", {u"ru_RU"}).isUndefined());
    EXPECT_EQ(walk(call(title, u"Языки")).size(), 2U);

    const GenericValue more = call(title, u"With", {u"de", u"Preis"});
    EXPECT_TRUE(property(more, u"Запись").equals(u"de='Preis'; en='Price'; ru='Цена'"));
    EXPECT_TRUE(property(title, u"Запись").equals(u"en='Price'; ru='Цена'")) << "it never changes";
    EXPECT_TRUE(call(more, u"Исключить", {u"de"}).equals(title));
    EXPECT_EQ(call(more, u"Without", {u"de"}).hashCode(), title.hashCode());
    expect_stored_and_equal(more, title);
    expect_stored_and_equal(make(u"LocalWString"), title);
    EXPECT_EQ(text(title).substr(text(title).rfind(u'{')), u"{2,\"en\",\"Price\",\"ru\",\"Цена\"}\n}");
}

TEST_F(LocaleValues, APlainTextIsAString) {
    EXPECT_TRUE(to_value(LocalWString(u"plain")).equals(u"plain"));
    EXPECT_EQ(from_value<LocalWString>(Value(u"plain")), LocalWString(u"plain"));
    const LocalWString title = LocalWString::fromString(u"root='any'; en='Price'");
    EXPECT_EQ(from_value<LocalWString>(to_value(title)), title);
    for (const wstring_view stored :
         {u"{\"#\",3b4bc5e3-341b-45e8-b7e9-cbef896a9009,{2,\"en\",\"a\",\"EN\",\"b\"}}",
          u"{\"#\",3b4bc5e3-341b-45e8-b7e9-cbef896a9009,{-1}}"})
        EXPECT_THROW(static_cast<void>(GenericValue::fromString(stored)), ListStreamException);
    EXPECT_THROW(static_cast<void>(GenericValue::fromString(
                     u"{\"#\",3b4bc5e3-341b-45e8-b7e9-cbef896a9009,{1,\"xx\",\"a\"}}")),
                 LocaleException);
}
