// SPDX-License-Identifier: Apache-2.0
// Concerns: patterns as sets; what becomes of values of every kind; the brace-list form read back, and
// damaged text refused with the pattern unchanged; values bound to a description.
#include <core/lists/errors.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/numbers/errors.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>
#include <core/streams/memory_stream.h>
#include <core/types.h>
#include <core/values.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace core;

const GUID kObjectA = "2e8ab8f7-6a6b-4f0a-9a49-3c0f5a3dd5a1"_guid;
const GUID kObjectB = "91fb4a50-03f2-4c9a-8f5c-0d7a4a1c66b2"_guid;

/// Another module's idea of a Number.
class ForeignNumber : public IValueImpl {
  public:
    using Interfaces = InterfaceList<IValue>;
    IType* getType() const noexcept override { return Type(Type::number).get(); }
    bool getNumeric(Numeric& out) const override {
        out = 7;
        return true;
    }
};

class TypeDomains : public testing::Test {
  protected:
    /// A pattern of random types and qualifiers, each of few choices, so that equal ones occur.
    TypeDomainPattern any() {
        const GUID types[] = {kNumberType, kStringType, kDateType, kBooleanType, kObjectA, kObjectB};
        TypeDomainPattern pattern;
        for (const GUID& type : types) {
            if (below(3) == 0)
                pattern.addType(type);
        }
        pattern.setNumericQualifiers(NumericQualifiers(below(3), below(2), below(2) != 0));
        pattern.setStringQualifiers(StringQualifiers(below(3), below(2) != 0));
        pattern.setDateQualifiers(DateQualifiers(static_cast<DateFractions>(below(3) + 1)));
        return pattern;
    }

    host::HostProcess process_;
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(generator_()) % bound; }

    std::mt19937 generator_{7};
};

wstring written(const TypeDomainPattern& pattern) {
    MemoryOutStream memory;
    ListOutStream out(memory);
    pattern.serialize(out);
    return memory.take();
}

TypeDomainPattern read(wstring_view text) {
    MemoryInStream memory(text);
    ListInStream in(memory);
    TypeDomainPattern pattern(kObjectB);
    try {
        pattern.deserialize(in);
    } catch (...) {
        EXPECT_EQ(pattern, TypeDomainPattern(kObjectB));
        throw;
    }
    return pattern;
}

TEST_F(TypeDomains, PatternsAreSets) {
    TypeDomainPattern pattern{kObjectB, kStringType, kObjectA, kStringType};
    pattern.addType(kUndefinedType);
    pattern.addType(kObjectA);
    EXPECT_EQ(pattern.types(), (std::vector{kUndefinedType, kStringType, kObjectA, kObjectB}));
    EXPECT_EQ(pattern.size(), 4U);
    EXPECT_TRUE(pattern.containsType(kObjectA) && pattern.containsType(kStringType));
    EXPECT_FALSE(pattern.containsType(kNumberType) || pattern.containsType(kNullGuid));
    EXPECT_TRUE(TypeDomainPattern().isEmpty());

    // Qualifiers count for types of the set only.
    auto limited = pattern;
    limited.setNumericQualifiers({5, 2});
    EXPECT_EQ(limited, pattern);
    limited.addType(kNumberType);
    pattern.addType(kNumberType);
    EXPECT_NE(limited, pattern);
    EXPECT_TRUE(limited.isSubset(pattern));
    EXPECT_FALSE(pattern.isSubset(limited));
}

TEST_F(TypeDomains, EqualityHashMergeSubsetAndTextAgree) {
    std::vector<TypeDomainPattern> patterns(60);
    for (auto& pattern : patterns)
        pattern = any();
    for (const auto& a : patterns) {
        EXPECT_EQ(read(written(a)), a);
        for (const auto& b : patterns) {
            EXPECT_EQ(a == b, written(a) == written(b));
            EXPECT_TRUE(a != b || a.hash() == b.hash());
            EXPECT_EQ(a == b, a.isSubset(b) && b.isSubset(a));
            TypeDomainPattern merged = a;
            merged.merge(b);
            const bool shortened = !a.stringQualifiers().varying() && !b.stringQualifiers().varying() &&
                                   a.containsType(ValueKind::string) && b.containsType(ValueKind::string);
            EXPECT_TRUE(shortened || (a.isSubset(merged) && b.isSubset(merged)));
            EXPECT_EQ(merged.isEmpty(), a.isEmpty() || b.isEmpty());
            for (const GUID& type : merged.types())
                EXPECT_TRUE(a.containsType(type) || b.containsType(type));
        }
    }
}

TEST_F(TypeDomains, TextIsAsDocumentedAndDamageIsRefused) {
    TypeDomainPattern pattern{kObjectA, kDateType, kStringType, kNumberType};
    pattern.setNumericQualifiers({10, 2});
    pattern.setStringQualifiers({50, true});
    pattern.setDateQualifiers(DateQualifiers(DateFractions::date));
    const wstring text = u"{4,\n{b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec,\n{10,2,0}\n},"
                         u"\n{9b6abf8b-0173-48e5-b0a0-83b21fcf63c5,\n{50,1}\n},"
                         u"\n{aae38c48-a877-411c-a6d3-fbaa1f83c4bd,\n{1}\n},"
                         u"\n{2e8ab8f7-6a6b-4f0a-9a49-3c0f5a3dd5a1}\n}";
    EXPECT_EQ(written(pattern), text);
    EXPECT_EQ(read(u"{0}"), TypeDomainPattern());
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_THROW((void)read(wstring_view(text).substr(0, length)), ListStreamException) << length;
    for (const wchar* bad :
         {u"{4000000000}", u"{1}", u"{0,{}}",
          u"{2,{2e8ab8f7-6a6b-4f0a-9a49-3c0f5a3dd5a1},{2e8ab8f7-6a6b-4f0a-9a49-3c0f5a3dd5a1}}",
          u"{1,{b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec}}",
          u"{1,{b0be78f2-0ee6-4d31-a3bb-77dd32ba5bec,{2,3,0}}}",
          u"{1,{aae38c48-a877-411c-a6d3-fbaa1f83c4bd,{4}}}",
          u"{1,{aae38c48-a877-411c-a6d3-fbaa1f83c4bd,{0}}}"})
        EXPECT_THROW((void)read(bad), ListStreamException);
}

TEST_F(TypeDomains, ValuesOfEveryKindIntoEveryDescription) {
    const Date moment(2004, 3, 1, 13, 5, 7);
    const GenericValue undefined;
    const GenericValue null = Value::null();
    const wstring yes = GenericValue(true).presentation();
    const struct {
        std::initializer_list<Type::Code> types;
        GenericValue value;
        GenericValue adjusted;
    } cases[] = {
        // one type: the default where there is no reading
        {{Type::number}, undefined, 0},
        {{Type::number}, null, 0},
        {{Type::number}, u" 12 ", 12},
        {{Type::number}, u"12a", 0},
        {{Type::number}, true, 0},
        {{Type::number}, make_object<ForeignNumber>(), 7},
        {{Type::boolean}, 5, true},
        {{Type::boolean}, u"истина", true},
        {{Type::boolean}, moment, false},
        {{Type::date}, u"20040301130507", moment},
        {{Type::date}, 7, Date()},
        {{Type::string}, 1.5, u"1.5"},
        {{Type::string}, undefined, u""},
        {{Type::string}, true, yes},
        {{Type::type}, 1, Type(Type::undefined)},
        {{Type::null}, 1, null},
        {{Type::undefined}, 1, undefined},
        // several: Number, Date, String, Boolean in this order, else Undefined
        {{Type::boolean, Type::string}, 5, u"5"},
        {{Type::boolean, Type::number}, u"5", 5},
        {{Type::boolean, Type::number}, u"true", true},
        {{Type::date, Type::string}, u"20040301", u"20040301"},
        {{Type::date, Type::boolean}, u"20040301130507", moment},
        {{Type::date, Type::number}, true, undefined},
        {{Type::string, Type::number}, null, undefined},
        {{}, moment, moment},
    };
    for (const auto& c : cases) {
        TypeDomain domain;
        for (const Type::Code code : c.types)
            domain.addType(Type(code).id());
        const GenericValue adjusted = domain.adjust(c.value);
        EXPECT_EQ(adjusted, c.adjusted) << to_utf8(c.value.presentation());
        EXPECT_EQ(domain.fits(c.value), domain.types().empty() || domain.containsType(c.value.kind()));
        EXPECT_EQ(domain.adjust(adjusted), adjusted);
    }
}

TEST_F(TypeDomains, WhatFitsIsKeptAsItIs) {
    TypeDomain domain{kNumberType, kStringType, kDateType};
    domain.setNumericQualifiers({5, 2});
    domain.setStringQualifiers({4, true});
    domain.setDateQualifiers(DateQualifiers(DateFractions::date));
    for (const GenericValue& value :
         {GenericValue(123.45), GenericValue(u"abcd"), GenericValue(Date(2004, 3, 1))})
        EXPECT_EQ(domain.adjust(value).object(), value.object());
    EXPECT_EQ(domain.adjust(1234.5), GenericValue(999.99));
    EXPECT_EQ(domain.adjust(u"abcde"), GenericValue(u"abcd"));
    EXPECT_EQ(domain.adjust(Date(2004, 3, 1, 1)), GenericValue(Date(2004, 3, 1)));
    domain = TypeDomain(kStringType);
    domain.setStringQualifiers({3, true});
    EXPECT_EQ(domain.adjust(12345), GenericValue(u"123")); // converted, then limited
}

TEST_F(TypeDomains, PresentationsHaveAllFractionDigits) {
    TypeDomain price(Type(Type::number).id());
    price.addType(Type(Type::string).id());
    price.setNumericQualifiers(NumericQualifiers(10, 2));
    const std::pair<Value, wstring_view> cases[] = {{Value(Numeric::fromString("1.2")), u"1.20"},
                                                    {Value(-5), u"-5.00"},
                                                    {Value(Numeric::fromString("0.125")), u"0.125"},
                                                    {Value(0), u"0.00"},
                                                    {Value(u"1.2"), u"1.2"},
                                                    {Value(), u""}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(price.presentation(value), text);
    EXPECT_EQ(TypeDomain().presentation(Value(5)), u"5");
    Settings settings;
    settings.part<FormatSettings>().numericFormat = u"fraction=1";
    const host::HostProcess process(settings);
    EXPECT_EQ(price.presentation(Value(5)), u"5.0");
}

TEST_F(TypeDomains, Defaults) {
    EXPECT_EQ(TypeDomain().defaultType(), Type(Type::undefined));
    EXPECT_EQ(TypeDomain(kDateType).defaultType(), Type(Type::date));
    EXPECT_EQ(TypeDomain({kDateType, kNumberType}).defaultType(), Type(Type::undefined));
    EXPECT_THROW((void)TypeDomain(kObjectA).defaultType(), TypeException);
    EXPECT_EQ(TypeDomain(kObjectA).adjust(5), GenericValue());
    TypeDomain fixed(kStringType);
    fixed.setStringQualifiers({3, false});
    EXPECT_EQ(fixed.defaultValue(), GenericValue(u"   "));
}

TEST_F(TypeDomains, ATypedValueHoldsToItsDescription) {
    TypedValue value;
    value.setIValue(GenericValue(12.345).object());
    EXPECT_EQ(value.value(), GenericValue(12.345));
    TypeDomain cents(kNumberType);
    cents.setNumericQualifiers({5, 2});
    value.changeDomain(cents);
    EXPECT_EQ(value.value(), GenericValue(12.35));
    value.setValue(u"7");
    EXPECT_EQ(value.value(), GenericValue(7));

    const TypedValue copy = value;
    value.setDomain(TypeDomain(kStringType));
    EXPECT_EQ(value.value(), GenericValue(u""));
    EXPECT_EQ(copy.value(), GenericValue(7));
    EXPECT_EQ(copy.typeDomain(), cents);
    value.setIValue(nullptr);
    EXPECT_EQ(value.value(), GenericValue(u""));
    value = copy;
    value.setDefaultValue();
    EXPECT_EQ(value.value(), GenericValue(0));
    EXPECT_EQ(TypedValue(cents).value(), GenericValue(0));

    // A saturated number too long to store: nothing changes.
    TypeDomain huge(kNumberType);
    huge.setNumericQualifiers({4'000'000'000, 4'000'000'000});
    value = copy;
    EXPECT_THROW(value.changeDomain(huge), NumericException);
    EXPECT_EQ(value.value(), GenericValue(7));
    EXPECT_EQ(value.typeDomain(), cents);
}

} // namespace
