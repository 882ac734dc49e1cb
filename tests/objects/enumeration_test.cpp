// SPDX-License-Identifier: Apache-2.0
// Concerns: the values of an enumeration by name and number; one object each, also after reading; the way
// from a bare name to the enumeration, for the library's own and those of another module; wrong calls.
#include <core/objects.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace core;

constexpr Term kSeason = {u"TestSeason", u"ТестСезон"};
constexpr Term kWinter = {u"Winter", u"Зима"};
constexpr Term kSummer = {u"Summer", nullptr};
constexpr EnumerationItem kItems[] = {{kWinter, "IDS_TEST_WINTER", 10}, {kSummer, "IDS_TEST_SUMMER", -20}};
constexpr EnumerationInfo kInfo = {.type = {.id = "5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e01"_guid,
                                            .valueClass = "5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e02"_guid,
                                            .names = kSeason,
                                            .presentation = "IDS_TEST_SEASON"},
                                   .factory = "5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e03"_guid,
                                   .items = kItems};
const EnumerationEntry<kInfo> kEntry("TestSeason");

enum class Season { winter = 10, summer = -20, spring = 30 };
Enumeration* script_enumeration(Season) {
    return EnumerationEntry<kInfo>::instance();
}

class Enumerations : public testing::Test {
  protected:
    struct Module {
        SCOM_ResourceBundle bundle{"nothing"};
        SCOM_Module module{module_class_entries, bundle};
        Module() { module.init(this); }
    };

    /// The value of a property by name, as a script gets it.
    static GenericValue property(IContext_* context, const wchar* name) {
        GenericValue value;
        if (const int prop = context->findProp(name); prop >= 0)
            context->getPropVal(prop, value);
        return value;
    }
    static GenericValue enumeration(const wchar* name) {
        return property(get_service<IEnumerations>(), name);
    }

    Module module_;
    host::HostProcess process_;
    Enumeration& season_ = *EnumerationEntry<kInfo>::instance();
};

TEST_F(Enumerations, AScriptReachesEachValueByItsNames) {
    for (const wchar* name : {u"TestSeason", u"testseason", u"ТЕСТСЕЗОН"}) {
        const auto context = enumeration(name).query<IContext_>();
        ASSERT_TRUE(context);
        EXPECT_EQ(context->getNProps(), 2);
        EXPECT_EQ(property(context.get(), u"зима"), season_.value(10));
        EXPECT_EQ(property(context.get(), u"SUMMER"), season_.value(-20));
        EXPECT_EQ(context->getPropName(1, kRussian), kSummer[0]);
        EXPECT_EQ(context->getPropName(2, kEnglish), nullptr);
    }
    EXPECT_TRUE(enumeration(u"NoSuchEnumeration").isUndefined());
}

TEST_F(Enumerations, ValuesAreOneObjectEachAlsoWhenReadBack) {
    const GenericValue winter = season_.value(10);
    const GenericValue summer = season_.value(-20);
    EXPECT_EQ(season_.value(10).object(), winter.object());
    EXPECT_NE(winter, summer);
    EXPECT_NE(winter.hashCode(), summer.hashCode());
    EXPECT_NE(winter, GenericValue(10));
    EXPECT_TRUE(season_.value(0).isUndefined());
    EXPECT_EQ(season_.number(summer), -20);
    EXPECT_EQ(season_.number(GenericValue(10)), std::nullopt);
    EXPECT_EQ(winter.type(), Type(u"ТестСезон"));
    EXPECT_EQ(winter.presentation(), u"IDS_TEST_WINTER"); // no bundle: the id

    wstring text;
    summer.toString(text);
    EXPECT_EQ(text, u"{\"#\",5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e02,-20}");
    EXPECT_EQ(GenericValue::fromString(text).object(), summer.object());
    EXPECT_THROW((void)GenericValue::fromString(u"{\"#\",5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e02,11}"),
                 ListStreamException);
    EXPECT_THROW((void)GenericValue::fromString(u"{\"#\",5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e02,x}"),
                 ListStreamException);
    EXPECT_THROW((void)GenericValue::fromString(u"{\"#\",5d0d2f4c-30b5-4c68-9d8c-d2d0b54d6e01,10}"),
                 TypeException);
}

TEST_F(Enumerations, ObjectsKeepTheIdentityRule) {
    const auto winter = season_.value(10).getIValue();
    const auto persistable = winter.query<IPersistableObject>();
    EXPECT_EQ(persistable.query<IUnknown>(), winter.query<IUnknown>());
    EXPECT_FALSE(winter.query<IContext_>());
    const auto context = enumeration(u"TestSeason").query<IContext_>();
    EXPECT_EQ(context->getIContextDef().query<IEnumeration>()->valueType(), season_.valueType());
    EXPECT_EQ(enumeration(u"TestSeason").type(), Type(u"Перечисление"));
}

TEST_F(Enumerations, NothingCanBeWrittenOrCalled) {
    for (IContext_* context : {enumeration(u"TestSeason").query<IContext_>().get(),
                               static_cast<IContext_*>(get_service<IEnumerations>())}) {
        GenericValue value(7);
        EXPECT_FALSE(context->isPropWritable(0));
        EXPECT_THROW(context->setPropVal(0, value), ContextException);
        EXPECT_THROW(context->setPropVal(999, value), ContextException);
        EXPECT_THROW(context->getPropVal(999, value), ContextException);
        EXPECT_THROW(context->getPropVal(-1, value), ContextException);
        EXPECT_THROW(context->call(0, nullptr, nullptr), ContextException);
        EXPECT_EQ(value, GenericValue(7));
        EXPECT_EQ(context->getNMethods(), 0);
    }
}

TEST_F(Enumerations, TheLibrarysOwnAreSoundData) {
    IEnumerations* const all = get_service<IEnumerations>();
    std::set<wstring> names;
    for (int i = 0; i < all->getNProps(); ++i) {
        GenericValue object;
        all->getPropVal(i, object);
        const auto context = object.query<IContext_>();
        for (const int alias : {kEnglish, kRussian})
            EXPECT_TRUE(names.insert(all->getPropName(i, alias)).second);
        EXPECT_EQ(all->findProp(all->getPropName(i, kRussian)), i);
        std::set<const IValue*> values;
        for (int prop = 0; prop < context->getNProps(); ++prop) {
            GenericValue value;
            context->getPropVal(prop, value);
            EXPECT_TRUE(values.insert(value.object()).second);
            EXPECT_EQ(context->findProp(context->getPropName(prop, kEnglish)), prop);
            EXPECT_EQ(context->findProp(context->getPropName(prop, kRussian)), prop);
            wstring text;
            value.toString(text);
            EXPECT_EQ(GenericValue::fromString(text).object(), value.object());
        }
    }
    EXPECT_TRUE(names.contains(u"ТестСезон"));
}

TEST_F(Enumerations, AreEnumsOfCpp) {
    const NativeFunction other(
        [](Season season) { return season == Season::winter ? Season::summer : Season::winter; });
    GenericValue arguments[] = {season_.value(10)};
    EXPECT_EQ(other(arguments), season_.value(-20));
    EXPECT_EQ(*other.type(), kInfo.type.id);
    EXPECT_TRUE(to_value(Season::spring).isUndefined()) << "the enumeration has no such value";
    for (const GenericValue& wrong : {GenericValue(10), GenericValue(), GenericValue(u"Winter")}) {
        arguments[0] = wrong;
        EXPECT_THROW(other(arguments), ContextException);
    }
    static_assert(!FromValue<ValueKind>, "an enum without an enumeration");
}

} // namespace
