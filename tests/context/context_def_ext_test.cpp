// SPDX-License-Identifier: Apache-2.0
// Concerns: what tables of properties and methods tell of types, and what is said where they tell nothing.
#include <core/context.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

constexpr Term kName = {u"Name", u"Имя"};

/// A collection of Dates with a property and a method of known type, and one of each of unknown.
class Typed : public IContextImpl<IContextDefImpl<Typed>>, public ContextDefExtImpl<Typed, true, &kDateType> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt>;
    static std::span<const Property<Typed>> properties() noexcept {
        static constexpr Property<Typed> table[] = {{kName, nullptr, nullptr, &kNumberType},
                                                    {kName, nullptr}};
        return table;
    }
    static std::span<const Method<Typed>> methods() noexcept {
        static constexpr Method<Typed> table[] = {{kName, {}, kFunction, nullptr, &kStringType},
                                                  {kName, {}, kFunction, nullptr}};
        return table;
    }
};

/// No tables, no collection.
class Bare : public ContextDefExtImpl<Bare> {
  public:
    using Interfaces = InterfaceList<IContextDefExt>;
};

TEST(ContextDefExt, TablesTellWhatValuesAre) {
    const host::HostProcess process;
    const auto object = SCOM_InternalClass<Typed>::create();
    ContextValueInfo info;
    EXPECT_TRUE(object->isCollection());
    EXPECT_TRUE(object->getCollectionItemInfo(info));
    EXPECT_EQ(info.types, TypeDomain(kDateType));
    EXPECT_TRUE(object->getPropInfo(0, info));
    EXPECT_EQ(info.types, TypeDomain(kNumberType));
    EXPECT_EQ(info.definition, kNullGuid);
    EXPECT_EQ(object->IContextDefExt_mapPropContextDefBase(0), kNullGuid);
    EXPECT_TRUE(object->getMethodReturnInfo(0, info));
    EXPECT_EQ(info.types, TypeDomain(kStringType));
    EXPECT_TRUE(object->IContextDefExt_haveMethodReturnTypeInfo(0));
    EXPECT_EQ(object->IContextDefExt_mapMethodTypeProvider(0), Type(Type::string).get());
    TypeDomain types;
    EXPECT_TRUE(object->IContextDefExt_mapMethodReturnTypeInfo(0, types));
    EXPECT_EQ(types, TypeDomain(kStringType));
    for (const int unknown : {1, 2, -1}) {
        EXPECT_FALSE(object->getPropInfo(unknown, info));
        EXPECT_TRUE(info.types.isEmpty());
        EXPECT_FALSE(object->getMethodReturnInfo(unknown, info));
        EXPECT_FALSE(object->IContextDefExt_haveMethodReturnTypeInfo(unknown));
        EXPECT_EQ(object->IContextDefExt_mapMethodTypeProvider(unknown), nullptr);
        EXPECT_FALSE(object->IContextDefExt_mapMethodReturnTypeInfo(unknown, types));
        EXPECT_TRUE(types.isEmpty());
    }
}

TEST(ContextDefExt, WithoutTablesNothingIsKnown) {
    const auto object = SCOM_InternalClass<Bare>::create();
    ContextValueInfo info;
    EXPECT_FALSE(object->isCollection());
    EXPECT_FALSE(object->getCollectionItemInfo(info));
    EXPECT_FALSE(object->getPropInfo(0, info));
    EXPECT_FALSE(object->getMethodReturnInfo(0, info));
}

} // namespace
