// SPDX-License-Identifier: Apache-2.0
// Concerns: C++ types and values, both ways and at the limits of their ranges; what is refused, and how a
// refusal names its parameter; calls of every kind of callable, with values that are passed back.
#include <core/context/errors.h>
#include <core/context/native_function.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <limits>
#include <random>

namespace {

using namespace core;

class NativeCalls : public testing::Test {
  protected:
    template <class Action>
    static void expectRefused(Action action, const char* id, const wstring& place = u"1") {
        try {
            action();
            ADD_FAILURE() << "nothing was refused";
        } catch (const ContextException& e) {
            EXPECT_EQ(e.description(), message_text(id, {place}));
        }
    }
    template <class T>
    static void expectRefusedType(const GenericValue& value) {
        expectRefused([&] { (void)from_value<T>(value); }, messages::kParameterType);
    }
    template <class T>
    static void expectRefusedValue(const GenericValue& value) {
        expectRefused([&] { (void)from_value<T>(value); }, messages::kParameterValue);
    }

    host::HostProcess process_;
};

template <class T>
class NativeIntegers : public NativeCalls {};
using Integers = testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned, long,
                                unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(NativeIntegers, Integers);

TYPED_TEST(NativeIntegers, KeepTheirWholeRangeAndRefuseTheRest) {
    using Limits = std::numeric_limits<TypeParam>;
    std::mt19937_64 random(1);
    for (int round = 0; round < 1000; ++round) {
        const auto whole = static_cast<TypeParam>(random() >> (round % 64));
        EXPECT_EQ(from_value<TypeParam>(to_value(whole)), whole);
    }
    for (const TypeParam limit : {Limits::min(), Limits::max()}) {
        const Numeric exact(limit);
        EXPECT_TRUE(to_value(limit).equals(exact));
        EXPECT_EQ(from_value<TypeParam>(Value(exact)), limit);
        const Numeric outside = limit == Limits::max() ? exact + 1 : exact - 1;
        this->template expectRefusedValue<TypeParam>(outside);
        this->template expectRefusedValue<TypeParam>(outside * outside * outside);
    }
    this->template expectRefusedValue<TypeParam>(Numeric::fromString(u"1.5"));
    this->template expectRefusedValue<TypeParam>(Numeric::fromString(u"0.0000000000000000000001"));
    for (const GenericValue& other : {GenericValue(), GenericValue(u"1"), GenericValue(true)})
        this->template expectRefusedType<TypeParam>(other);
    EXPECT_EQ(*NativeValue<TypeParam>::type(), kNumberType);
}

TEST_F(NativeCalls, FloatingNumbersComeBackAsTheyWere) {
    std::mt19937_64 random(2);
    for (int round = 0; round < 1000; ++round) {
        const double wide = std::ldexp(static_cast<double>(random() >> 11), round % 200 - 150);
        EXPECT_EQ(from_value<double>(to_value(wide)), wide);
        const auto narrow = static_cast<float>(wide);
        EXPECT_EQ(from_value<float>(to_value(narrow)), narrow);
    }
    EXPECT_EQ(to_value(0.1F).presentation(), u"0.1")
        << "the shortest decimal, with the digits of its own type";
    EXPECT_EQ(to_value(0.1).presentation(), u"0.1");
    EXPECT_EQ(from_value<float>(to_value(std::numeric_limits<float>::denorm_min())),
              std::numeric_limits<float>::denorm_min());
    expectRefusedValue<float>(to_value(std::numeric_limits<double>::max()));
    expectRefusedValue<double>(Numeric(10).pow(400));
    EXPECT_THROW((void)to_value(std::numeric_limits<float>::infinity()), Exception);
    expectRefusedType<double>(u"1");
}

TEST_F(NativeCalls, TextsAndTheOtherTypes) {
    const GenericValue text = u"Счет 5";
    EXPECT_EQ(from_value<wstring>(text), u"Счет 5");
    EXPECT_EQ(from_value<wstring_view>(text).data(), text.asString()->data()) << "borrowed, not copied";
    EXPECT_EQ(from_utf8(from_value<std::string>(text)), u"Счет 5");
    EXPECT_TRUE(to_value(to_utf8(u"Счет 5")).equals(text));
    EXPECT_TRUE(to_value(u"Счет 5").equals(text));
    EXPECT_TRUE(to_value("a").equals(u"a"));
    EXPECT_TRUE(to_value(static_cast<const char*>(nullptr)).equals(u""));
    expectRefusedType<wstring_view>(5);

    const Date date(2024, 2, 29, 1, 2, 3);
    EXPECT_EQ(from_value<Date>(to_value(date)), date);
    expectRefusedType<Date>(u"20240229");
    EXPECT_EQ(from_value<Type>(to_value(Type(Type::date))), Type(Type::date));
    expectRefusedType<Type>(u"Date");
    EXPECT_TRUE(from_value<bool>(to_value(true)));
    expectRefusedType<bool>(1);
    EXPECT_EQ(from_value<GUID>(to_value(kDateType)), kDateType);
    expectRefusedValue<GUID>(u"aae38c48");
    expectRefusedType<GUID>(GenericValue());

    EXPECT_EQ(from_value<std::optional<int>>(GenericValue()), std::nullopt);
    EXPECT_EQ(from_value<std::optional<int>>(GenericValue(5)), 5);
    EXPECT_TRUE(to_value(std::optional<int>()).isUndefined());
    EXPECT_TRUE(to_value(std::optional(5)).equals(5));
    expectRefusedType<std::optional<int>>(Value::null());
    expectRefusedValue<std::optional<int>>(Numeric::fromString(u"0.5"));
    static_assert(!ToValue<wchar> && !FromValue<wchar>, "a character is not a number");
}

int twice(int number) {
    return 2 * number;
}

TEST_F(NativeCalls, EveryKindOfCallable) {
    struct Scale {
        int factor;
        int operator()(int number) const noexcept { return factor * number; }
    };
    int calls = 0;
    const auto expectTwice = [&](const NativeFunction& function) {
        GenericValue arguments[] = {21};
        EXPECT_TRUE(function(arguments).equals(42));
        EXPECT_EQ(function.params().size(), 1U);
        EXPECT_TRUE(function.returns());
        EXPECT_EQ(function.type(), &kNumberType);
    };
    expectTwice(NativeFunction(&twice));
    expectTwice(NativeFunction(Scale{2}));
    expectTwice(NativeFunction([](const int& number) { return 2 * number; }));
    expectTwice(NativeFunction([&calls](int&& number) mutable noexcept { return ++calls, 2 * number; }));
    EXPECT_EQ(calls, 1);
    expectTwice(NativeFunction([held = std::make_unique<int>(2)](int number) { return *held * number; }));

    const NativeFunction procedure([&calls] { ++calls; });
    EXPECT_TRUE(procedure({}).isUndefined());
    EXPECT_FALSE(procedure.returns());
    EXPECT_EQ(procedure.type(), nullptr);
    EXPECT_EQ(calls, 2);
}

TEST_F(NativeCalls, ParametersSayWhatTheyAre) {
    const NativeFunction function(
        [](int, std::optional<int>, const std::optional<wstring>&, int&, Out<wstring>, wstring_view,
           const Value&) {},
        {{u"First", u"Первый"}, {u"Second"}, {}, {}, {}, {u"Last", u"Последний", by_default(u"x")}});
    const auto params = function.params();
    ASSERT_EQ(params.size(), 7U);
    EXPECT_EQ(wstring_view(params[0].names.text[kRussian]), u"Первый");
    EXPECT_EQ(params[2].names.text[kEnglish], nullptr);
    const std::vector<bool> in = {true, true, true, true, false, true, true};
    const std::vector<bool> out = {false, false, false, true, true, false, false};
    const std::vector<bool> optional = {false, true, true, false, false, true, false};
    for (std::size_t i = 0; i < params.size(); ++i) {
        EXPECT_EQ(params[i].in, in[i]) << i;
        EXPECT_EQ(params[i].out, out[i]) << i;
        EXPECT_EQ(params[i].getDefault(nullptr), optional[i]) << i;
    }
    GenericValue value = 5;
    EXPECT_TRUE(params[1].getDefault(&value) && value.isUndefined());
    EXPECT_TRUE(params[5].getDefault(&value) && value.equals(u"x"));
    for (const auto& [byDefault, expected] :
         {std::pair(by_default(true), GenericValue(true)), std::pair(by_default(-7), GenericValue(-7)),
          std::pair(by_default(0.1), GenericValue(Numeric::fromString(u"0.1"))),
          std::pair(by_default(), GenericValue())}) {
        const Param param{.byDefault = byDefault.kind, .literal = byDefault.literal};
        EXPECT_TRUE(param.getDefault(&value));
        EXPECT_EQ(value, expected);
    }
}

TEST_F(NativeCalls, ValuesArePassedBackWhenTheCallIsOver) {
    const NativeFunction split(
        [](wstring_view text, Out<wstring> head, int& count, std::optional<wstring>& tail) {
            if (text.empty())
                throw std::runtime_error("empty");
            head = wstring(text.substr(0, 1));
            EXPECT_EQ(*head, text.substr(0, 1));
            ++count;
            tail = text.size() > 1 ? std::optional(wstring(text.substr(1))) : std::nullopt;
            return count;
        });
    GenericValue arguments[] = {u"abc", true, 41, GenericValue()};
    EXPECT_TRUE(split(arguments).equals(42));
    EXPECT_TRUE(arguments[0].equals(u"abc") && arguments[1].equals(u"a"));
    EXPECT_TRUE(arguments[2].equals(42) && arguments[3].equals(u"bc"));
    arguments[0] = u"";
    EXPECT_THROW(split(arguments), std::runtime_error);
    EXPECT_TRUE(arguments[1].equals(u"a") && arguments[2].equals(42)) << "unchanged";

    // The result may borrow from a parameter that is passed back.
    const NativeFunction grow([](wstring& text) -> const wstring& { return text += u"!"; });
    EXPECT_TRUE(grow(std::span(arguments, 1)).equals(u"!"));
    const NativeFunction same([&](const Value& value) { return &value == &arguments[1]; });
    EXPECT_TRUE(same(std::span(arguments).subspan(1)).isTrue()) << "any value is passed as it is, uncopied";
}

TEST_F(NativeCalls, TheFirstWrongArgumentIsNamed) {
    int calls = 0;
    const NativeFunction function([&calls](int, wstring_view, bool) { ++calls; });
    const GenericValue good[] = {1, u"x", true};
    for (std::size_t wrong = 0; wrong < 3; ++wrong) {
        GenericValue arguments[] = {good[0], good[1], good[2]};
        for (std::size_t i = wrong; i < 3; ++i)
            arguments[i] = Date();
        expectRefused([&] { function(arguments); }, messages::kParameterType, string_intto(wrong + 1));
        expectRefused([&] { function(std::span(arguments, wrong)); }, messages::kParameterMissing,
                      string_intto(wrong + 1));
    }
    expectRefused([] { ValueReceiver::property(u"Level").refuseType(); }, messages::kPropertyType, u"Level");
    expectRefused([] { ValueReceiver::property(u"Level").refuseValue(); }, messages::kPropertyValue,
                  u"Level");
    EXPECT_EQ(calls, 0);
}

TEST_F(NativeCalls, ObjectsThroughTheirInterfaces) {
    const GenericValue text = u"text";
    EXPECT_EQ(from_value<InterfacePtr<IValue>>(text)->getType(), text.type().get());
    expectRefusedType<InterfacePtr<IValueIsEmpty>>(text);
    EXPECT_TRUE(to_value(InterfacePtr<IValue>()).isUndefined());
    auto* const service = Type(Type::date).get(); // a component that is not a value
    try {
        (void)to_value(service);
        ADD_FAILURE() << "scripts cannot hold a type object";
    } catch (const ContextException& e) {
        EXPECT_EQ(e.description(), message_text(messages::kNoValue));
    }
}

} // namespace
