// SPDX-License-Identifier: Apache-2.0
// Concerns: the text form of every kind and back; malformed text, unknown tags, types and classes; nothing
// read twice and nothing left over.
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

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
          Value(Type(Type::string)), Value(Type(Type::type))}) {
        const wstring text = textOf(value);
        const GenericValue again = GenericValue::fromString(text);
        EXPECT_TRUE(again.equals(value)) << to_utf8(text).substr(0, 100);
        EXPECT_EQ(textOf(again), text);
        EXPECT_TRUE(GenericValue::fromString(u" \n" + text + u"\t ").equals(value));
    }
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
