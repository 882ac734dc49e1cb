// SPDX-License-Identifier: Apache-2.0
// Concerns: what is shared and what is made; holders never empty and safe to assign to themselves; readings
// across kinds; equality, hashes and order that agree; foreign values that only look like the library's own.
#include "core/values/value_hash.h"

#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime.h>
#include <core/streams/memory_stream.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace core;

class Values : public testing::Test {
  protected:
    host::HostProcess process_;
};

TEST_F(Values, SharedInstancesAreOneObjectEach) {
    EXPECT_EQ(create_undefined_value().get(), create_undefined_value().get());
    EXPECT_EQ(create_null_value().get(), create_null_value().get());
    EXPECT_EQ(create_boolean_value(true).get(), create_boolean_value(true).get());
    EXPECT_NE(create_boolean_value(true).get(), create_boolean_value(false).get());
    IValue* const zero = create_numeric_value(0).get();
    EXPECT_EQ(create_numeric_value(0.0).get(), zero);
    EXPECT_EQ(create_numeric_value(-0.0).get(), zero);
    EXPECT_EQ(create_numeric_value(std::uint64_t{0}).get(), zero);
    EXPECT_EQ(create_numeric_value(short{0}).get(), zero);
    EXPECT_EQ(create_numeric_value(0.0L).get(), zero);
    EXPECT_EQ(create_numeric_value(Numeric()).get(), zero);
    EXPECT_NE(create_numeric_value(1).get(), create_numeric_value(1).get());
    EXPECT_EQ(create_date_value(Date()).get(), create_date_value(Date()).get());
    EXPECT_EQ(create_string_value(u"").get(), create_string_value(wstring()).get());
    for (IValue* shared : {zero, create_string_value(u"").get(), create_undefined_value().get()}) {
        EXPECT_EQ(shared->AddRef(), 0U);
        EXPECT_EQ(shared->Release(), 0U);
    }
}

TEST_F(Values, AHolderIsNeverEmptyAndAssignsToItself) {
    Value value(static_cast<IValue*>(nullptr));
    EXPECT_TRUE(value.isUndefined());
    EXPECT_EQ(value.type(), Type(Type::undefined));
    EXPECT_EQ(value.getIValue().get(), create_undefined_value().get());
    value = Value(wstring(100, u'x'));
    value.setIValue(value.getIValue().get());
    value = *&value;
    EXPECT_EQ(value.asString()->size(), 100U);
    Value moved(std::move(value));
    EXPECT_EQ(moved.asString()->back(), u'x');
    value = moved;
    EXPECT_EQ(value.getIValue().get(), moved.getIValue().get());
    value.setIValue(nullptr);
    EXPECT_TRUE(value.isUndefined());
}

TEST_F(Values, LettingGoOfValuesLeavesNothingAlive) {
    const auto alive = [] {
        std::int32_t count = 0; // by name: some compilers give a program a counter of its own for each class
        for (const LiveClass& line : live_report()) {
            for (const char* const name : {"::NumberValue", "::StringValue", "::DateValue", "::TypeValue"})
                count += line.name.ends_with(name) ? line.count : 0;
        }
        return count;
    };
    const auto before = alive();
    {
        std::vector<Value> values;
        for (int i = 1; i < 1000; ++i) {
            values.emplace_back(i + 0.5);
            values.emplace_back(string_intto(i) + wstring(static_cast<std::size_t>(i), u'.'));
            values.emplace_back(Date(static_cast<std::uint64_t>(i)));
            values.emplace_back(Type(Type::number));
        }
        const std::vector<Value> copies(values);
        EXPECT_EQ(alive(), before + 4 * 999);
    }
    EXPECT_EQ(alive(), before);
}

TEST_F(Values, EveryKindKnowsItsTypeAndPayload) {
    const struct {
        Value value;
        int code;
        const char* id;
        const wchar* english;
        const wchar* russian;
    } cases[] = {
        {Value(), 0, "ee8d3e7c-f930-4a76-8aad-4ff9083a6ea6", u"Undefined", u"Неопределено"},
        {Value::null(), 1, "af40a278-63bc-478e-91a8-19e0d16b10b5", u"Null", u"Null"},
        {Value(true), 2, "5d4125ad-f6e7-4313-be32-f71d0ab60915", u"Boolean", u"Булево"},
        {Value(1), 3, "b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec", u"Number", u"Число"},
        {Value(u"a"), 4, "9b6abf8b-0173-48e5-b0a0-83b21fcf63c5", u"String", u"Строка"},
        {Value(Date(2004, 3, 1)), 5, "aae38c48-a877-411c-a6d3-fbaa1f83c4bd", u"Date", u"Дата"},
        {Value(Type(Type::date)), 1000, "d47d59f8-73f0-481c-8b5e-f6384c0a4804", u"Type", u"Тип"},
    };
    for (const auto& c : cases) {
        const Type type(static_cast<Type::Code>(c.code));
        EXPECT_EQ(c.value.type(), type);
        EXPECT_EQ(type.code(), c.code);
        EXPECT_EQ(to_string(type.id()), from_utf8(c.id));
        EXPECT_EQ(type.presentation(), c.english);
        EXPECT_STREQ(reinterpret_cast<const char*>(to_utf8(c.value.type().name(0)).c_str()),
                     to_utf8(c.english).c_str());
        EXPECT_EQ(wstring(c.value.type().name(1)), c.russian);
        EXPECT_EQ(c.value.type().name(2), nullptr);
        EXPECT_EQ(Type(type.id()), type);
        EXPECT_EQ(Type(wstring_view(c.russian)), type);
        // A pointer leads back to the same kind and payload.
        const auto object = c.value.getIValue();
        const Value again(object);
        EXPECT_EQ(again.kind(), c.value.kind());
        EXPECT_EQ(again.getIValue().get(), object.get());
        EXPECT_EQ(again, c.value);
    }
    for (const int code : {-2, -1, 6, 999, 1001})
        EXPECT_FALSE(Type(static_cast<Type::Code>(code)).isDefined()) << code;
    EXPECT_EQ(Type().code(), Type::object);
    EXPECT_EQ(TypeException::kClassId, "96a351f3-7957-48c1-80f4-80ac15b233da"_guid);
    constexpr GUID kNobodys = "12345678-1234-1234-1234-123456789abc"_guid;
    EXPECT_THROW((void)Type(kNobodys), TypeException);
    try {
        (void)Type(u"NoSuchType");
        ADD_FAILURE();
    } catch (const TypeException& e) {
        EXPECT_EQ(e.description(), message_text("IDS_TYPEERROR_TYPENOTDEFINED", {u"NoSuchType"}));
    }
    EXPECT_EQ(Type(u"nUmBeR"), Type(Type::number));
    EXPECT_EQ(*static_cast<const wstring_view*>(Value(u"abc").object()->getDataPtr()), u"abc");
}

TEST_F(Values, NumbersOfEveryFloatingTypeKeepTheirDigits) {
    EXPECT_EQ(Value(0.1F), Value(0.1F * 1.0));
    EXPECT_EQ(Value(0.1), Value(Numeric(0.1)));
    EXPECT_EQ(Value(0.1L), Value(Numeric(0.1L)));
    EXPECT_TRUE(Value(create_numeric_value(0.1L)).equals(Value(0.1L)));
    EXPECT_EQ(static_cast<long double>(*GenericValue(1.0L / 3).asNumeric()), 1.0L / 3);
}

TEST_F(Values, QueriesReachTheInterfacesOfEachKind) {
    const auto number = create_numeric_value(5);
    EXPECT_EQ(number->QueryInterface(IValue::IID, nullptr), kNoInterface);
    void* none = &process_;
    EXPECT_EQ(create_date_value(Date())->QueryInterface(IClassFactory::IID, &none), kNoInterface);
    EXPECT_EQ(none, nullptr);
    EXPECT_FALSE(number.query<IValueIsEmpty>()->isEmpty());
    EXPECT_TRUE(create_numeric_value(0).query<IValueIsEmpty>()->isEmpty());
    EXPECT_TRUE(create_date_value(Date()).query<IValueIsEmpty>()->isEmpty());
    EXPECT_FALSE(create_string_value(u"").query<IValueIsEmpty>());
    EXPECT_TRUE(number.query<IValueSerialize>());
    EXPECT_EQ(number.query<IUnknown>().get(), number.query<IValueSerialize>().query<IUnknown>().get());
    // the payload alone, without a tag
    const std::pair<Value, const wchar*> payloads[] = {
        {Value(), u""},
        {Value::null(), u""},
        {Value(true), u"1"},
        {Value(-7), u"-7"},
        {Value(0.5), u"0.5"},
        {Value(u"a\"b"), u"\"a\"\"b\""},
        {Value(Date(2004, 3, 1)), u"20040301000000"},
        {Value(Type(Type::null)), u"af40a278-63bc-478e-91a8-19e0d16b10b5"}};
    for (const auto& [value, text] : payloads) {
        MemoryOutStream memory;
        ListOutStream out(memory);
        ListOutStorage storage(out);
        value.getIValue().query<IValueSerialize>()->serialize(&storage);
        EXPECT_EQ(memory.take(), text);
    }
    EXPECT_EQ(number->AddRef(), 2U);
    EXPECT_EQ(number->Release(), 1U);
}

TEST_F(Values, ReadAcrossKinds) {
    bool boolean = true;
    Numeric numeric(7);
    Date date(2000, 1, 1);
    wstring text = u"x";
    for (const Value& value : {Value(), Value::null(), Value(Type(Type::null))}) {
        boolean = true;
        EXPECT_FALSE(value.getBoolean(boolean));
        EXPECT_FALSE(boolean);
        EXPECT_FALSE(value.getNumeric(numeric));
        EXPECT_EQ(numeric, Numeric());
        EXPECT_FALSE(value.getDate(date));
        EXPECT_TRUE(date.isEmpty());
        EXPECT_TRUE(value.getString(text));
        EXPECT_EQ(text, value.kind() == ValueKind::type ? Type(Type::null).presentation() : wstring());
    }
    EXPECT_TRUE(Value(Numeric::fromString(u"-0.5")).getBoolean(boolean) && boolean);
    EXPECT_TRUE(Value(0).getBoolean(boolean) && !boolean);
    EXPECT_FALSE(Value(true).getNumeric(numeric));
    EXPECT_EQ(Value(Numeric::fromString(u"-1234567.50")).presentation(), u"-1234567.5");
    EXPECT_EQ(Value(true).presentation(), u"Yes");
}

TEST_F(Values, StringsReadAsBooleansNumbersAndDates) {
    const struct {
        const wchar* text;
        int boolean; // -1: no reading
    } booleans[] = {{u"  истина\t", 1}, {u"TRUE", 1}, {u"False ", 0}, {u"ложь", 0}, {u"Yes", 1},
                    {u"True x", -1},    {u"", -1},    {u"Truex", -1}, {u" ", -1},   {u"1", -1}};
    for (const auto& c : booleans) {
        bool value = true;
        EXPECT_EQ(Value(c.text).getBoolean(value), c.boolean >= 0) << to_utf8(c.text);
        EXPECT_EQ(value, c.boolean == 1) << to_utf8(c.text);
    }
    const struct {
        const wchar* text;
        const wchar* number; // null: no reading
    } numbers[] = {{u" 12 ", u"12"}, {u"-.5", u"-0.5"}, {u"5.", u"5"},     {u"12x", nullptr},
                   {u"", nullptr},   {u"-", nullptr},   {u"1 2", nullptr}, {u" \t+7\r\n", u"7"}};
    for (const auto& c : numbers) {
        Numeric value(3);
        EXPECT_EQ(Value(c.text).getNumeric(value), c.number != nullptr) << to_utf8(c.text);
        EXPECT_EQ(value, c.number != nullptr ? Numeric::fromString(c.number) : Numeric()) << to_utf8(c.text);
    }
    Date date;
    EXPECT_TRUE(Value(u"20040301130507   ").getDate(date));
    EXPECT_EQ(date, Date(2004, 3, 1, 13, 5, 7));
    EXPECT_TRUE(Value(Value(date).presentation()).getDate(date));
    EXPECT_EQ(date, Date(2004, 3, 1, 13, 5, 7));
    EXPECT_FALSE(Value(u"20040301130507x").getDate(date));
    EXPECT_TRUE(date.isEmpty());
}

TEST_F(Values, ReadingsGoThroughTheFormatsOfTheProcess) {
    process_.settings().part<FormatSettings>().numericFormat = u"point=','; group=' '; zero=none";
    process_.settings().part<FormatSettings>().dateFormat = u"datetime=d/M/yyyy s-m-H";
    process_.settings().part<FormatSettings>().boolFormat = u"true=on; false=off";
    const Numeric number = Numeric::fromString("-1234567.5");
    const Date date(2004, 3, 1, 13, 5, 7);
    const struct {
        Value value;
        const wchar* text;
    } cases[] = {{number, u"-1 234 567,5"},
                 {Value(0), u"none"},
                 {Value(12345), u"12 345"},
                 {date, u"1/3/2004 7-5-13"},
                 {true, u"on"}};
    for (const auto& c : cases)
        EXPECT_EQ(c.value.presentation(), c.text);
    Numeric readNumber;
    Date readDate;
    bool readBoolean = false;
    EXPECT_TRUE(Value(u"\t-1 234 567,5 ").getNumeric(readNumber) && readNumber == number);
    EXPECT_TRUE(Value(u"1.5").getNumeric(readNumber) && readNumber == Numeric(3) / 2)
        << "the plain form, too";
    EXPECT_TRUE(Value(u"1/3/2004 7-5-13\n").getDate(readDate) && readDate == date);
    EXPECT_FALSE(Value(u"2004.03.01 13:05:07").getDate(readDate));
    EXPECT_TRUE(Value(u" ON ").getBoolean(readBoolean) && readBoolean);
    EXPECT_FALSE(Value(u"Yes").getBoolean(readBoolean));
}

TEST_F(Values, EqualityNeverCrossesTypesAndHashesFollowIt) {
    EXPECT_FALSE(Value(0).equals(Value(false)));
    EXPECT_TRUE(Value(0).equals(0)) << "and not with a null pointer";
    EXPECT_FALSE(Value(0).equals(nullptr) || Value().equals(nullptr));
    EXPECT_TRUE(Value(u"a").equals(u"a"));
    EXPECT_FALSE(Value(1).equals(Value(u"1")));
    EXPECT_TRUE(Value(Numeric::fromString(u"1.0")).equals(Value(1)));
    EXPECT_FALSE(Value(u"a").equals(Value(u"A")));
    EXPECT_FALSE(Value(true).equals(Value(false)) || Value().equals(Value::null()));
    EXPECT_FALSE(Value(1).equals(Value(2)) || Value(0.5).equals(Value(0.25)));
    EXPECT_TRUE(Value(u"ab").equals(Value(u"ab").getIValue().get()));
    EXPECT_FALSE(Value(u"").equals(static_cast<IValue*>(nullptr)));
    EXPECT_TRUE(GenericValue(5).equals(5) && GenericValue(u"x").equals(u"x") &&
                GenericValue(true).equals(true));
    EXPECT_FALSE(GenericValue(5).equals(u"5"));

    EXPECT_EQ(Value().hashCode(), 0x7FFFFFFF);
    EXPECT_EQ(Value::null().hashCode(), 0x7FFFFFFE);
    EXPECT_EQ(Value(false).hashCode(), 0x7FFFFFFC);
    EXPECT_EQ(Value(true).hashCode(), 0x7FFFFFFD);
    EXPECT_EQ(Value(Numeric::fromString(u"-42.9")).hashCode(), -42);
    EXPECT_EQ(Value(std::int64_t{1} << 32).hashCode(), 0);
    EXPECT_EQ(Value(Date(std::uint64_t{123456789})).hashCode(), 12345);
    EXPECT_EQ(Value(u"").hashCode(), 0);
    EXPECT_EQ(Value(u"ab").hashCode(), 'a' * 5 + 'b');
    const Value text(u"Имя");
    EXPECT_EQ(text.hashCode(), text.hashCode());
    for (int i = 0; i < 40; ++i) { // an odd hash says that no other value has it
        EXPECT_EQ(value_table_hash(string_intto(i)) & 1, 0U);
        EXPECT_EQ(value_table_hash(i + 0.5) & 1, 0U);
        EXPECT_EQ(value_table_hash(i) & 1, 1U);
    }
    EXPECT_EQ(text.hashCode(), ((0x418 * 5) + 0x43C) * 5 + 0x44F);
}

TEST_F(Values, WholeNumbersAreTheSameInTheWordAndAsObjects) {
    constexpr std::int64_t kEdge = std::int64_t{1} << (8 * sizeof(void*) - 5);
    const auto wholes = {std::int64_t{0},
                         std::int64_t{1},
                         std::int64_t{-1},
                         kEdge - 1,
                         kEdge,
                         kEdge + 1,
                         1 - kEdge,
                         -kEdge,
                         -kEdge - 1,
                         std::numeric_limits<std::int64_t>::min()};
    for (const std::int64_t whole : wholes) {
        const Value value(whole);
        const Value boxed(create_numeric_value(whole));
        const Value parsed(Numeric::fromString(string_intto(whole)));
        EXPECT_EQ(value.asSmallWhole().has_value(), whole < kEdge && whole > -kEdge);
        for (const Value& other : {boxed, parsed}) {
            EXPECT_EQ(value, other);
            EXPECT_EQ(other, value);
            EXPECT_TRUE(value.equals(other.getIValue().get()) && other.equals(value.getIValue().get()));
            EXPECT_EQ(compare_values(value, other), 0);
            EXPECT_EQ(value.hashCode(), other.hashCode());
            EXPECT_EQ(value_table_hash(value), value_table_hash(other));
            EXPECT_EQ(static_cast<std::int64_t>(*other.asNumeric()), whole);
            EXPECT_EQ(value.presentation(), other.presentation());
        }
        for (const std::int64_t other : wholes) {
            EXPECT_EQ(value == Value(other), whole == other);
            EXPECT_EQ(compare_values(boxed, Value(other)), (whole > other) - (whole < other));
        }
        Numeric number;
        bool truth = false;
        EXPECT_TRUE(value.getNumeric(number) && value.getBoolean(truth));
        EXPECT_EQ(number, Numeric(whole));
        EXPECT_EQ(truth, whole != 0);
    }
    EXPECT_EQ(Value(~std::uint64_t{0}).presentation(), u"18446744073709551615");
    EXPECT_TRUE(Value(1e6).asSmallWhole() && Value(Numeric::fromString(u"100000000")).asSmallWhole());
    EXPECT_EQ(sizeof(void*) == 8,
              Value(Numeric::fromString(u"-100000000000000000")).asSmallWhole().has_value());
    EXPECT_EQ(Value(Numeric::fromString(u"1000000000000000000000")).presentation(),
              u"1000000000000000000000");
    EXPECT_FALSE(Value(0.5).asSmallWhole());
}

/// Claims to be of a primitive type, as another module's own class would.
class Foreign : public IValueImpl {
  public:
    using Interfaces = InterfaceList<IValue>;
    explicit Foreign(Type::Code code = Type::number) : code_(code) {}
    IType* getType() const noexcept override { return Type(code_).get(); }
    const void* getDataPtr() const noexcept override { return &value_; }
    bool getNumeric(Numeric& out) const override {
        out = value_;
        return true;
    }

  private:
    Type::Code code_;
    Numeric value_{5};
};

TEST_F(Values, OrderIsTotalAcrossKinds) {
    const Value ascending[] = {Value(),
                               Value::null(),
                               Value(false),
                               Value(true),
                               Value(-5),
                               Value(0.25),
                               Value(7),
                               Value(u"a"),
                               Value(u"b"),
                               Value(u"B"),
                               Value(u"e\u0301"), // collates as the next one
                               Value(u"\u00e9"),
                               Value(Date(1, 1, 2)),
                               Value(Date(2000, 1, 1)),
                               Value(Type(Type::boolean)),
                               Value(Type(Type::date)),
                               Value(SCOM_InternalClass<Foreign>::create())};
    const std::size_t count = std::size(ascending);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            const int order = compare_values(ascending[i], ascending[j]);
            EXPECT_EQ(order < 0, i < j) << i << ' ' << j;
            EXPECT_EQ(order == 0, i == j) << i << ' ' << j;
        }
    }
}

TEST_F(Values, AForeignIsAnObjectThatReadsAsOne) {
    const Value foreign(SCOM_InternalClass<Foreign>::create());
    EXPECT_TRUE(foreign.isObject());
    EXPECT_EQ(foreign.asNumeric(), nullptr);
    EXPECT_EQ(foreign.type(), Type(Type::number));
    EXPECT_TRUE(Value(5).equals(foreign));
    Numeric read;
    EXPECT_TRUE(foreign.getNumeric(read));
    EXPECT_EQ(read, Numeric(5));
    for (const int code : {0, 1, 2, 3, 4, 5, 1000}) {
        const Value other(SCOM_InternalClass<Foreign>::create(static_cast<Type::Code>(code)));
        EXPECT_TRUE(other.isObject()) << code;
        EXPECT_EQ(other.type().code(), code);
    }
}

TEST_F(Values, ObjectsAreEqualToThemselvesAloneAndHaveNoReadings) {
    const Value a(SCOM_InternalClass<Foreign>::create());
    const Value b(SCOM_InternalClass<Foreign>::create());
    EXPECT_TRUE(a.equals(a) && !a.equals(b));
    EXPECT_EQ(a.hashCode(), Value(a).hashCode());
    bool boolean = true;
    EXPECT_FALSE(a.getBoolean(boolean) || boolean);
    EXPECT_EQ(a.presentation(), u"");
    Date date(2000, 1, 1);
    EXPECT_FALSE(a.getDate(date));
    EXPECT_TRUE(date.isEmpty());
    Numeric number(7);
    EXPECT_FALSE(static_cast<Foreign*>(a.object())->IValueImpl::getNumeric(number));
    EXPECT_EQ(number, Numeric());
    wstring text = u"before";
    EXPECT_TRUE(a.getString(text)) << "every value has a text";
    EXPECT_EQ(text, u"");
    EXPECT_FALSE(a.equals(nullptr));
}

} // namespace
