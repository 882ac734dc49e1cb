// SPDX-License-Identifier: Apache-2.0
// Concerns: a class that says no more than its names and members: how they are reached and described, what
// its ids are, how New makes it, what a wrong value leaves behind.
#include <core/context.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

/// Made with arguments only, so never by its class id.
class Named : public ScriptObject<Named> {
  public:
    static constexpr ClassNames names{u"TestNamed", nullptr, "IDS_TYPE_PRESENTATION_NULL"};
    Named(wstring_view name, int size) : name(name), size(size) {}
    static auto construct(wstring_view name, std::optional<int> size) {
        return make_object<Named>(name, size.value_or(7));
    }
    wstring name;
    int size;
    static auto members() {
        return core::members(property(u"Name", u"Имя", &Named::name),
                             property(u"Size", u"Размер", &Named::size));
    }
};
const ScriptClassEntry<Named> kNamedEntry;

class Counter : public ScriptObject<Counter> {
  public:
    static constexpr ClassNames names{u"TestCounter", u"ТестСчетчик"};
    Numeric total;
    std::optional<wstring> note;
    const int limit = 10;
    ObjectPtr<Named> owner;

    void add(const Numeric& amount) { total += amount; }
    bool half() const noexcept { return total * 2 == limit; }
    void setLevel(int level) {
        if (level > limit)
            parameter_value_mismatch(0);
        total = level;
    }
    int level() { return static_cast<int>(total); } // not const, as what counts its readers is not
    wstring repeat(wstring_view text, int times, std::optional<bool> upper) const {
        wstring result;
        while (times-- > 0)
            result += text;
        return upper.value_or(false) ? result + u"!" : result;
    }
    void swap(Counter& other) noexcept { std::swap(total, other.total); }
    void split(wstring_view text, Out<wstring> head, wstring& rest) & {
        head = wstring(text.substr(0, 1));
        rest += text.substr(1);
    }
    Counter& self() { return *this; }
    void own(const ObjectPtr<Named>& named) { owner = named; }

    static auto members() {
        return core::members(
            property(u"Total", u"Всего", &Counter::total), property(u"Note", nullptr, &Counter::note),
            property(u"Limit", u"Предел", &Counter::limit),
            property(u"Owner", u"Владелец", &Counter::owner, read_only),
            method(u"Add", u"Добавить", &Counter::add, {u"Amount", u"Сумма"}),
            property(u"Half", u"Половина", &Counter::half),
            property(u"Level", u"Уровень", &Counter::level, &Counter::setLevel),
            method(u"Repeat", u"Повторить", &Counter::repeat, {u"Text", u"Текст"},
                   {u"Times", u"Раз", by_default(2)}),
            method(u"Swap", u"Обменять", &Counter::swap), method(u"Split", nullptr, &Counter::split),
            method(u"Self", nullptr, &Counter::self), method(u"Own", nullptr, &Counter::own),
            method(u"Twice", nullptr,
                   [](const Counter& counter, int more) { return counter.total * 2 + more; }),
            property(
                u"Doubled", nullptr, [](const Counter& counter) { return counter.total * 2; },
                [](Counter& counter, const Numeric& doubled) { counter.total = doubled / 2; }));
    }
};
const ScriptClassEntry<Counter> kCounterEntry;

class Members : public testing::Test {
  protected:
    struct Module {
        SCOM_ResourceBundle bundle{"nothing"};
        SCOM_Module module{module_class_entries, bundle};
        Module() { module.init(this); }
    };

    static GenericValue get(const GenericValue& object, const wchar* name) {
        const auto context = object.query<IContext_>();
        GenericValue value;
        context->getPropVal(context->findProp(name), value);
        return value;
    }
    static void set(const GenericValue& object, const wchar* name, const GenericValue& value) {
        const auto context = object.query<IContext_>();
        context->setPropVal(context->findProp(name), value);
    }
    static GenericValue call(const GenericValue& object, const wchar* name,
                             std::vector<GenericValue>&& arguments = {}) {
        return call(object, name, arguments);
    }
    static GenericValue call(const GenericValue& object, const wchar* name,
                             std::vector<GenericValue>& arguments) {
        const auto context = object.query<IContext_>();
        GenericValue result;
        context->call(context->findMethod(name), &result, &arguments);
        return result;
    }
    template <class Action>
    static void expectRefused(Action action, const char* id, const wstring& place) {
        try {
            action();
            ADD_FAILURE() << "nothing was refused";
        } catch (const ContextException& e) {
            EXPECT_EQ(e.description(), message_text(id, {place}));
        }
    }

    Module module_;
    host::HostProcess process_;
    GenericValue counter_ = Type(u"тестСчетчик").get()->construct({});
};

TEST_F(Members, AreReachedByBothNames) {
    EXPECT_TRUE(call(counter_, u"Add", {Numeric::fromString(u"1.5")}).isUndefined());
    call(counter_, u"ДОБАВИТЬ", {2});
    EXPECT_EQ(get(counter_, u"всего").presentation(), u"3.5");
    set(counter_, u"Total", 4);
    EXPECT_EQ(Counter::of(counter_)->total, 4);
    EXPECT_TRUE(get(counter_, u"Limit").equals(10) && get(counter_, u"Half").isFalse());
    set(counter_, u"Уровень", 5);
    EXPECT_TRUE(get(counter_, u"Half").isTrue() && get(counter_, u"Level").equals(5));
    set(counter_, u"Doubled", 14);
    EXPECT_TRUE(get(counter_, u"Total").equals(7) && get(counter_, u"Doubled").equals(14));
    EXPECT_TRUE(call(counter_, u"Twice", {1}).equals(15));

    EXPECT_TRUE(get(counter_, u"Note").isUndefined() && get(counter_, u"Owner").isUndefined());
    set(counter_, u"Note", u"x");
    EXPECT_TRUE(get(counter_, u"Note").equals(u"x"));
    set(counter_, u"Note", GenericValue());
    EXPECT_EQ(Counter::of(counter_)->note, std::nullopt);
}

TEST_F(Members, TakeDefaultsObjectsAndPassValuesBack) {
    EXPECT_TRUE(call(counter_, u"Repeat", {u"ab"}).equals(u"abab"));
    EXPECT_TRUE(call(counter_, u"Repeat", {u"a", 3, true}).equals(u"aaa!"));
    const GenericValue other = make_object<Counter>();
    set(other, u"Total", 9);
    call(counter_, u"Обменять", {other});
    EXPECT_TRUE(get(counter_, u"Total").equals(9) && get(other, u"Total").equals(0));
    EXPECT_EQ(call(counter_, u"Self"), counter_);
    const GenericValue owner = make_object<Named>(u"n", 1);
    call(counter_, u"Own", {owner});
    EXPECT_EQ(get(counter_, u"Owner"), owner);
    std::vector<GenericValue> arguments = {u"abc", GenericValue(), u"-"};
    call(counter_, u"Split", arguments);
    EXPECT_TRUE(arguments[1].equals(u"a") && arguments[2].equals(u"-bc"));
}

TEST_F(Members, RefuseWhatDoesNotConvert) {
    expectRefused([&] { set(counter_, u"Total", u"5"); }, messages::kPropertyType, u"Total");
    expectRefused([&] { set(counter_, u"Уровень", Numeric::fromString(u"0.5")); }, messages::kPropertyValue,
                  u"Level");
    expectRefused([&] { set(counter_, u"Level", 11); }, messages::kParameterValue, u"1");
    expectRefused([&] { set(counter_, u"Doubled", true); }, messages::kPropertyType, u"Doubled");
    expectRefused([&] { set(counter_, u"Owner", counter_); }, messages::kPropertyNotWritable, u"Owner");
    expectRefused([&] { set(counter_, u"Limit", 1); }, messages::kPropertyNotWritable, u"Limit");
    expectRefused([&] { call(counter_, u"Add", {u"5"}); }, messages::kParameterType, u"1");
    expectRefused(
        [&] {
            call(counter_, u"Repeat", {u"a", Numeric::fromString(u"1.5")});
        },
        messages::kParameterValue, u"2");
    std::vector<GenericValue> name = {u"n"};
    for (const GenericValue& wrong :
         {GenericValue(), GenericValue(5), Type(u"TestNamed").get()->construct(name)})
        expectRefused([&] { call(counter_, u"Swap", {wrong}); }, messages::kParameterType, u"1");
    EXPECT_EQ(Counter::of(counter_)->total, 0);
}

TEST_F(Members, AreDescribed) {
    const auto definition = counter_.query<IContextDef>();
    const auto description = counter_.query<IContextDefParams>();
    EXPECT_EQ(counter_.query<IContextDefExt>().get(), description.get());
    EXPECT_EQ(definition->getNProps(), 7);
    EXPECT_EQ(definition->getNMethods(), 7);
    EXPECT_EQ(definition->findMethod(u"repeat"), 1) << "in the order in which they stand";
    EXPECT_EQ(wstring_view(description->getParamName(1, 0, kRussian)), u"Текст");
    EXPECT_EQ(wstring_view(description->getParamName(1, 1, kEnglish)), u"Times");
    for (const auto& [method, param] : {std::pair(1, 2), std::pair(1, 3), std::pair(1, -1), std::pair(2, 0),
                                        std::pair(7, 0), std::pair(-1, 0)})
        EXPECT_EQ(description->getParamName(method, param, kEnglish), nullptr) << method << ' ' << param;
    EXPECT_TRUE(definition->getParamDefValue(1, 1, nullptr) && definition->getParamDefValue(1, 2, nullptr));
    EXPECT_FALSE(definition->getParamDefValue(1, 0, nullptr) || definition->hasRetVal(0));
    EXPECT_TRUE(definition->isParamOut(3, 1) && definition->isParamIn(3, 2) && definition->isParamOut(3, 2));
    EXPECT_FALSE(definition->isParamIn(3, 1) || definition->isParamOut(3, 0));
    EXPECT_TRUE(definition->isPropWritable(1) && definition->isPropReadable(3));
    EXPECT_FALSE(definition->isPropWritable(2) || definition->isPropWritable(3));

    ContextValueInfo info;
    EXPECT_TRUE(description->getPropInfo(0, info));
    EXPECT_EQ(info.types, TypeDomain(kNumberType));
    EXPECT_FALSE(description->getPropInfo(1, info)) << "a String or Undefined";
    EXPECT_TRUE(description->getMethodReturnInfo(4, info));
    EXPECT_EQ(info.types, TypeDomain(script_type_id(u"TestCounter")));
    EXPECT_EQ(info.definition, script_class_id(u"TestCounter"));
    EXPECT_FALSE(description->getMethodReturnInfo(0, info));
}

TEST_F(Members, ClassesHaveIdsByTheirNames) {
    EXPECT_EQ(name_guid("6ba7b810-9dad-11d1-80b4-00c04fd430c8"_guid, u"python.org"),
              "886313e1-3b8a-5372-9b90-0c9aee199e5d"_guid);
    EXPECT_EQ(name_guid("6ba7b810-9dad-11d1-80b4-00c04fd430c8"_guid, u"Счетчик😀Счетчик😀Счетчик😀Счетчик😀"),
              "c1f74be1-813a-53ec-bae1-fe6def0dba20"_guid);
    EXPECT_EQ(counter_.type().id(), script_type_id(u"TestCounter"));
    EXPECT_NE(script_type_id(u"TestCounter"), script_class_id(u"TestCounter"));
    EXPECT_TRUE(create_object<IValue>(script_class_id(u"TestCounter")));
    EXPECT_EQ(Counter::of(counter_), counter_.object());
}

TEST_F(Members, NewTakesTheParametersOfConstruct) {
    IType& type = *Type(u"TestNamed").get();
    EXPECT_EQ(type.arguments().least, 1);
    EXPECT_EQ(type.arguments().most, 2);
    std::vector<GenericValue> arguments = {u"first"};
    GenericValue named = type.construct(arguments);
    EXPECT_TRUE(get(named, u"Имя").equals(u"first") && get(named, u"Размер").equals(7));
    EXPECT_EQ(named.presentation(), message_text("IDS_TYPE_PRESENTATION_NULL"));
    arguments = {u"second", 3};
    named = type.construct(arguments);
    EXPECT_TRUE(get(named, u"Size").equals(3));
    arguments[1] = u"3";
    expectRefused([&] { (void)type.construct(arguments); }, messages::kParameterType, u"2");
    for (const std::size_t count : {0U, 3U}) {
        arguments.resize(count);
        EXPECT_THROW((void)type.construct(arguments), CtorException);
    }
    EXPECT_EQ(create_object<IValue>(script_class_id(u"TestNamed")), nullptr);
    EXPECT_EQ(Named::classEntries().size(), 1U);
    EXPECT_EQ(Counter::classEntries().size(), 2U);
}

} // namespace
