// SPDX-License-Identifier: Apache-2.0
// Concerns: what scripts construct from arguments of every form, and wrong ones refused by position;
// properties and methods by both names; equality, hash and text by content.
#include <core/collections.h>
#include <core/descriptions.h>
#include <core/objects.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

class Descriptions : public testing::Test {
  protected:
    static GenericValue make(const wchar* type, std::vector<GenericValue> arguments) {
        return Type(wstring_view(type)).get()->construct(arguments);
    }
    static GenericValue description(std::vector<GenericValue> arguments) {
        return make(u"ОписаниеТипов", std::move(arguments));
    }
    static GenericValue array(std::vector<Value> values) {
        return create_value_array(std::move(values)).query<IValue>();
    }
    static GenericValue get(const GenericValue& value, const wchar* property) {
        const auto context = value.query<IContext_>();
        GenericValue out;
        context->getPropVal(context->findProp(property), out);
        return out;
    }
    static GenericValue call(const GenericValue& value, const wchar* method,
                             std::vector<GenericValue> arguments) {
        const auto context = value.query<IContext_>();
        GenericValue out;
        context->call(context->findMethod(method), &out, &arguments);
        return out;
    }
    /// Equal content, equal hash, other object; and the text leads back to it.
    static void expectSameContent(const GenericValue& a, const GenericValue& b) {
        EXPECT_EQ(a, b);
        EXPECT_EQ(a.hashCode(), b.hashCode());
        EXPECT_NE(a.object(), b.object());
        wstring text;
        a.toString(text);
        EXPECT_EQ(GenericValue::fromString(text), b);
    }

    host::HostProcess process_;
    const GenericValue nonnegative_ = allowed_sign().value(1);
};

TEST_F(Descriptions, QualifiersComeFromArgumentsAndShowThemAsProperties) {
    const GenericValue number = make(u"NumberQualifiers", {10.9, 2, nonnegative_});
    expectSameContent(number, create_qualifiers_value(NumericQualifiers(10, 2, true)));
    EXPECT_EQ(get(number, u"digits"), GenericValue(10));
    EXPECT_EQ(get(number, u"РазрядностьДробнойЧасти"), GenericValue(2));
    EXPECT_EQ(get(number, u"AllowedSign"), nonnegative_);
    EXPECT_EQ(*numeric_qualifiers_of(make(u"NumberQualifiers", {})), NumericQualifiers());
    EXPECT_EQ(*numeric_qualifiers_of(make(u"NumberQualifiers", {4294967295})),
              NumericQualifiers(4294967295, 0));

    const GenericValue string = make(u"КвалификаторыСтроки", {5, allowed_length().value(0)});
    expectSameContent(string, create_qualifiers_value(StringQualifiers(5, false)));
    EXPECT_EQ(get(string, u"Length"), GenericValue(5));
    EXPECT_EQ(get(string, u"ДопустимаяДлина"), allowed_length().value(0));
    EXPECT_EQ(*string_qualifiers_of(make(u"StringQualifiers", {5, GenericValue()})),
              StringQualifiers(5, true));

    const GenericValue date = make(u"DateQualifiers", {date_fractions().value(2)});
    expectSameContent(date, create_qualifiers_value(DateQualifiers(DateFractions::time)));
    EXPECT_EQ(get(date, u"ЧастиДаты"), date_fractions().value(2));
    EXPECT_EQ(*date_qualifiers_of(make(u"DateQualifiers", {})), DateQualifiers());

    EXPECT_NE(number, string);
    EXPECT_EQ(numeric_qualifiers_of(string), nullptr);
    EXPECT_EQ(string_qualifiers_of(GenericValue(5)), nullptr);
}

TEST_F(Descriptions, TypesComeAsNamesATypeOrACollection) {
    const GenericValue both = create_type_description({kNumberType, kStringType});
    expectSameContent(description({u" string, Число "}), both);
    expectSameContent(description({array({Type(Type::string), Type(Type::number), Type(Type::string)})}),
                      both);
    expectSameContent(description({Type(Type::date)}), create_type_description(TypeDomain(kDateType)));
    for (const GenericValue& none : {GenericValue(), GenericValue(u" ")})
        expectSameContent(description({none}), create_type_description({}));
    EXPECT_EQ(both.presentation(),
              Type(Type::number).presentation() + u", " + Type(Type::string).presentation());
    EXPECT_NE(description({u"Number"}), both);
    expectSameContent(description({call(both, u"Типы", {})}), both); // an Array is a collection, too
    EXPECT_EQ(call(both, u"Types", {}).type(), Type(u"Array"));
    EXPECT_EQ(type_domain_of(GenericValue(u"Number")), nullptr);
}

TEST_F(Descriptions, AScriptAsksAndAdjusts) {
    const GenericValue sum = description({u"Number", make(u"NumberQualifiers", {5, 2, nonnegative_})});
    EXPECT_EQ(call(sum, u"AdjustValue", {12.345}), GenericValue(12.35));
    EXPECT_EQ(call(sum, u"ПривестиЗначение", {-5}), GenericValue(0));
    EXPECT_EQ(call(sum, u"AdjustValue", {}), GenericValue(0));
    EXPECT_EQ(call(sum, u"ContainsType", {Type(Type::number)}), GenericValue(true));
    EXPECT_EQ(call(sum, u"СодержитТип", {Type(Type::date)}), GenericValue(false));
    EXPECT_EQ(get(sum, u"КвалификаторыЧисла"), make(u"NumberQualifiers", {5, 2, nonnegative_}));
    EXPECT_EQ(get(sum, u"StringQualifiers"), make(u"StringQualifiers", {}));
    EXPECT_EQ(get(sum, u"DateQualifiers"), make(u"DateQualifiers", {}));
    EXPECT_THROW(call(sum, u"ContainsType", {5}), ContextException);
    EXPECT_THROW(call(sum, u"ContainsType", {}), ContextException);

    ContextValueInfo info;
    EXPECT_TRUE(sum.query<IContextDefExt>()->getPropInfo(0, info));
    EXPECT_EQ(info.types, TypeDomain(kNumberQualifiersType));
    EXPECT_EQ(info.definition, get(sum, u"NumberQualifiers").type().get()->valueClass());
}

TEST_F(Descriptions, WrongArgumentsAreRefused) {
    const GenericValue bad = array({Type(Type::date), 5});
    const GenericValue noType =
        array({Type(Type::date), Type()}); // a description of it could not be read back
    const struct {
        const wchar* type;
        std::vector<GenericValue> arguments;
    } cases[] = {
        {u"NumberQualifiers", {u"5"}},
        {u"NumberQualifiers", {-1}},
        {u"NumberQualifiers", {5, 4294967296}},
        {u"NumberQualifiers", {5, 2, true}},
        {u"NumberQualifiers", {5, 2, allowed_length().value(1)}},
        {u"StringQualifiers", {Date()}},
        {u"DateQualifiers", {3}},
        {u"TypeDescription", {5}},
        {u"TypeDescription", {u"Number,"}},
        {u"TypeDescription", {bad}},
        {u"TypeDescription", {Type()}},
        {u"TypeDescription", {noType}},
        {u"TypeDescription", {u"Number", make(u"StringQualifiers", {})}},
    };
    for (const auto& c : cases)
        EXPECT_THROW((void)make(c.type, c.arguments), ContextException)
            << to_utf8(c.type) << c.arguments.size();
    EXPECT_THROW((void)description({u"Number, Nothing"}), TypeException);
    EXPECT_THROW((void)make(u"DateQualifiers", {date_fractions().value(1), 1}), CtorException);
}

TEST_F(Descriptions, DamagedTextLeavesNoValue) {
    wstring text;
    description({u"Number, String, Date"}).toString(text);
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_THROW((void)GenericValue::fromString(wstring_view(text).substr(0, length)),
                     ListStreamException);
}

} // namespace
