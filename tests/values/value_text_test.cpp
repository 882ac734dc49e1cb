// SPDX-License-Identifier: Apache-2.0
// Concerns: the text form of every kind and back; malformed text, unknown tags, types and classes; nothing
// read twice and nothing left over.
#include "tests/lists/streams.h"

#include <core/collections/value_array.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/persistence/persistence.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace core;

class ValueText : public testing::Test {
  protected:
    static wstring textOf(const Value& value) {
        wstring text;
        GenericValue(value).toString(text);
        return text;
    }

    host::HostProcess process_;
};

TEST_F(ValueText, IsAListOfTagAndPayload) {
    EXPECT_EQ(textOf(Value()), u"{\"U\"}");
    EXPECT_EQ(textOf(Value::null()), u"{\"L\"}");
    EXPECT_EQ(textOf(Value(true)), u"{\"B\",1}");
    EXPECT_EQ(textOf(Value(Numeric::fromString(u"-12.50"))), u"{\"N\",-12.5}");
    EXPECT_EQ(textOf(Value(u"a\"b")), u"{\"S\",\"a\"\"b\"}");
    EXPECT_EQ(textOf(Value(Date(2004, 3, 1, 13, 5, 7))), u"{\"D\",20040301130507}");
    EXPECT_EQ(textOf(Value(Type(Type::number))), u"{\"T\",b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec}");
}

TEST_F(ValueText, ReadsBackEqualForEveryKind) {
    const wstring odd =
        wstring(u"\x0001\u2028\n\"\"\\") + wstring(1, u'\0') + u"\xD83D\xDE00 \xDC00" + wstring(3000, u'я');
    for (const Value& value :
         {Value(), Value::null(), Value(false), Value(true), Value(0), Value(-1), Value(std::uint64_t(-1)),
          Value(Numeric::fromString(u"123456789012345678901234567890.000000000000000000000001")), Value(u""),
          Value(u"{},"), Value(odd), Value(Date()), Value(Date(9999, 12, 31, 23, 59, 59)),
          Value(Type(Type::string)), Value(Type(Type::type)), Value(Type())}) {
        const wstring text = textOf(value);
        const GenericValue again = GenericValue::fromString(text);
        EXPECT_TRUE(again.equals(value)) << to_utf8(text).substr(0, 100);
        EXPECT_EQ(textOf(again), text);
        EXPECT_TRUE(GenericValue::fromString(u" \n" + text + u"\t ").equals(value));
    }
}

TEST_F(ValueText, ADateOutOfRangeIsWrittenAsTheEmptyOne) {
    for (const std::uint64_t ticks : {Date::kLimit, ~std::uint64_t{0}}) {
        EXPECT_TRUE(GenericValue::fromString(textOf(Value(Date(ticks)))).equals(Value(Date()))) << ticks;
        MemoryOutStream stream;
        ListOutStream out(stream);
        out.put(Date(ticks));
        EXPECT_EQ(stream.take(), Date().toString());
    }
}

/// A value of any kind, with what its kind finds hard; arrays hold others.
Value random_value(std::mt19937_64& random, int depth) {
    const auto bits = random();
    switch (random() % (depth > 0 ? 12 : 9)) {
    case 0:
        return bits % 2 == 0 ? Value() : Value::null();
    case 1:
        return bits % 2 == 0;
    case 2:
        return static_cast<std::int64_t>(bits) >> random() % 64;
    case 3: // a fraction of up to 18 digits, and longer ones
        return Numeric::fromScaled(static_cast<std::int64_t>(bits) >> random() % 64,
                                   static_cast<std::uint32_t>(random() % 25));
    case 4:
        return Numeric(static_cast<std::int64_t>(bits)) * Numeric(bits | 1) * Numeric(random());
    case 5:
    case 6: {
        constexpr wchar kOdd[] = {u'"', u'\\', u'{', u'}', u',', u'\n', 0, 0xD800, 0xDFFF, 0xFFFE, 0xFFFF};
        wstring text(random() % 30, u'x');
        for (auto changes = bits % 3; changes > 0 && !text.empty(); --changes)
            text[random() % text.size()] = kOdd[random() % std::size(kOdd)];
        return text;
    }
    case 7:
        return Date(bits % (Date::kLimit / kTicksPerSecond) * kTicksPerSecond);
    case 8:
        return bits % 8 == 0 ? Type() : Type(static_cast<Type::Code>(bits % 6));
    default: {
        std::vector<Value> values;
        for (auto count = bits % 6; count > 0; --count)
            values.push_back(random_value(random, depth - 1));
        return create_value_array(std::move(values)).query<IValue>();
    }
    }
}

void expect_same(const Value& a, const Value& b) {
    ASSERT_EQ(a.kind(), b.kind());
    const auto left = a.query<IValueArray>();
    const auto right = b.query<IValueArray>();
    if (!left || !right) {
        ASSERT_TRUE(a.equals(b));
        return;
    }
    ASSERT_EQ(left->values().size(), right->values().size());
    for (std::size_t i = 0; i < left->values().size(); ++i)
        expect_same(left->get(i), right->get(i));
}

TEST_F(ValueText, RandomTreesComeBackOverEveryStream) {
    std::mt19937_64 random(23);
    for (int i = 0; i < 400; ++i) {
        const Value value = random_value(random, 5);
        const wstring text = textOf(value);
        std::basic_ostringstream<wchar> plain;
        ListOutStream out(plain);
        ListOutStorage written(out);
        GenericValue(value).serialize(&written);
        ASSERT_EQ(plain.str(), text);
        test::on_every_stream(text + u",", [&](wistream& stream) {
            ListInStream in(stream);
            ListInStorage storage(in);
            expect_same(GenericValue::deserialize(&storage), value);
            EXPECT_TRUE(in.getComma()) << "nothing else is taken";
        });
    }
}

/// What is read of a text, or that it is refused.
wstring outcome(wistream& stream) {
    ListInStream in(stream);
    ListInStorage storage(in);
    wstring text;
    try {
        GenericValue::deserialize(&storage).toString(text);
    } catch (const ListStreamException&) {
        text = u"malformed";
    } catch (const TypeException&) {
        text = u"no such type";
    }
    return text;
}

/// Values that lie whole in the units at hand are read by other code than those that do not.
TEST_F(ValueText, WhatIsAlmostAValueIsOneOverEveryStreamOrNone) {
    std::mt19937_64 random(31);
    const wstring units = u"{}\",' 0179.-+eUNSBDTL#x";
    for (int i = 0; i < 20'000; ++i) {
        wstring text = textOf(random_value(random, 0)) + u",";
        for (auto changes = 1 + random() % 2; changes > 0; --changes) {
            const std::size_t at = random() % std::min<std::size_t>(text.size(), 12);
            const wstring unit = units.substr(random() % units.size(), 1);
            text.replace(at, random() % 2, random() % 4 == 0 ? u"" : unit);
        }
        std::vector<wstring> seen;
        test::on_every_stream(text, [&](wistream& stream) { seen.push_back(outcome(stream)); });
        for (const wstring& other : seen)
            ASSERT_EQ(other, seen.front()) << to_utf8(text);
    }
}

/// An object that cannot be written.
class Silent : public IValueImpl {
  public:
    using Interfaces = InterfaceList<IValue>;
    IType* getType() const noexcept override { return Type(Type::null).get(); }
};

TEST_F(ValueText, WhatCannotBeWrittenIsRefused) {
    wstring text = u"before";
    EXPECT_THROW(GenericValue(SCOM_InternalClass<Silent>::create()).toString(text), ContextException);
    EXPECT_EQ(text, u"before");
}

TEST_F(ValueText, MalformedTextIsRefused) {
    for (const wchar* text : {u"",           u"{",
                              u"{}",         u"{\"N\"}",
                              u"{\"N\",}",   u"{\"N\",1",
                              u"{\"N\",1}}", u"{\"N\",1} x",
                              u"{\"N\" 1}",  u"{\"NN\",1}",
                              u"{\"X\",1}",  u"{N,1}",
                              u"\"N\"",      u"{\"N\",\"1\"}",
                              u"{\"S\",1}",  u"{\"S\",\"a}",
                              u"{\"B\",2}",  u"{\"D\",2004}",
                              u"{\"U\",1}",  u"{\"T\",1}",
                              u"{\"#\"}",    u"{\"#\",{1}}"}) {
        EXPECT_THROW(static_cast<void>(GenericValue::fromString(text)), ListStreamException) << to_utf8(text);
    }
    for (const wchar* text : {u"{\"T\",12345678-1234-1234-1234-123456789abc}",
                              u"{\"#\",12345678-1234-1234-1234-123456789abc,{1}}"}) {
        EXPECT_THROW(static_cast<void>(GenericValue::fromString(text)), TypeException) << to_utf8(text);
    }
}

} // namespace
