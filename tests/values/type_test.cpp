// SPDX-License-Identifier: Apache-2.0
// Concerns: types as they are found by id, name and class; how many arguments a constructor takes; types as
// values.
#include <core/collections/value_array.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using namespace core;

class Types : public testing::Test {
  protected:
    host::HostProcess process_;
};

TEST_F(Types, AreFoundByIdNameAndClass) {
    auto& service = *get_service<ITypeValueService>();
    const std::vector<IType*> all = service.types();
    constexpr int kPrimitive[] = {0, 1, 2, 3, 4, 5, 1000};
    ASSERT_GT(all.size(), std::size(kPrimitive));
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i]->code(), i < std::size(kPrimitive) ? kPrimitive[i] : -1);
    EXPECT_TRUE(std::is_sorted(all.begin() + std::size(kPrimitive), all.end(), [](IType* a, IType* b) {
        return wstring_view(a->name(0)) < wstring_view(b->name(0));
    }));
    EXPECT_EQ(std::set<IType*>(all.begin(), all.end()).size(), all.size());
    for (IType* const type : all) {
        EXPECT_EQ(service.findType(type->id()), type);
        for (const int alias : {0, 1})
            EXPECT_EQ(service.findType(wstring_view(type->name(alias))), type) << to_utf8(type->name(alias));
        const bool isOfObjects = !(type->valueClass() == kNullGuid);
        EXPECT_EQ(service.findTypeOfClass(type->valueClass()), isOfObjects ? type : nullptr);
    }
    constexpr GUID kNobodys = "12345678-1234-1234-1234-123456789abc"_guid;
    EXPECT_EQ(service.findType(kNobodys), nullptr);
    EXPECT_EQ(service.findType(u"NoSuchType"), nullptr);
    EXPECT_EQ(service.findTypeOfClass(kNullGuid), nullptr);
    EXPECT_EQ(service.findTypeOfClass(create_value_array().query<IValue>()->getType()->valueClass()),
              Type(wstring_view(u"array")).get());
}

TEST(TypesAlone, PrimitiveOnesNeedNoProcess) {
    EXPECT_EQ(Type(kNumberType).code(), Type::number);
    EXPECT_EQ(Type(Type::date).id(), kDateType);
    try {
        (void)Type(wstring_view(u"Number"));
        ADD_FAILURE();
    } catch (const ProcessException& e) { // a thread without a process, not a type without a name
        EXPECT_STREQ(e.messageId(), messages::kNoProcess);
    }
}

TEST_F(Types, ConstructorsCountTheirArguments) {
    EXPECT_THROW((void)Type(Type::number).get()->construct({}), CtorException);
    static constexpr auto count = [](std::span<GenericValue> arguments) {
        return GenericValue(arguments.size());
    };
    static constexpr TypeInfo limited{
        .id = kNullGuid, .names = {u"A", u"B"}, .construct = count, .arguments = {1, 2}};
    static constexpr TypeInfo unlimited{
        .id = kNullGuid, .names = {u"A", u"B"}, .construct = count, .arguments = {0, -1}};
    TypeObject some(limited);
    TypeObject any(unlimited);
    for (std::size_t n = 0; n < 5; ++n) {
        std::vector<GenericValue> arguments(n);
        EXPECT_TRUE(any.construct(arguments).equals(n));
        if (n == 1 || n == 2) {
            EXPECT_TRUE(some.construct(arguments).equals(n));
        } else {
            EXPECT_THROW((void)some.construct(arguments), CtorException) << n;
        }
    }
}

TEST_F(Types, AsValuesAreEqualByType) {
    const Value number{Type(Type::number)};
    const Value same{Type(Type::number)};
    const Value text{Type(Type::string)};
    const Value none{Type()};
    EXPECT_TRUE(number.equals(same) && number.equals(same.getIValue().get()));
    EXPECT_EQ(number.hashCode(), same.hashCode());
    EXPECT_EQ(number.hashCode(), static_cast<std::int32_t>(0xb0be78f2));
    EXPECT_FALSE(number.equals(text) || number.equals(text.getIValue().get()) || number.equals(none));
    EXPECT_TRUE(none.equals(Value(Type())));
    EXPECT_EQ(number.presentation(), Type(Type::number).presentation());
    EXPECT_EQ(none.presentation(), u"");
    EXPECT_EQ(none.type(), Type(Type::type));
}

} // namespace
