// SPDX-License-Identifier: Apache-2.0
// Concerns: what a class gets from its names, ids and functions alone: a type in both languages, New, a walk,
// a body that is written and read back; a type whose objects nobody makes by class id.
#include <core/context.h>
#include <core/lists.h>
#include <core/runtime.h>
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

namespace {

using namespace core;

/// Texts, which scripts can put in.
class Basket : public ScriptObject<Basket, IValueCollection, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TestBasket", u"ТестКорзина"},
        .type = "0d6bc5f5-2e57-4d4a-90cb-9a5d1a76ab01"_guid,
        .object = "0d6bc5f5-2e57-4d4a-90cb-9a5d1a76ab02"_guid,
        .arguments = {0, 0},
        .elements = &kStringType,
    };
    static std::span<const Method<Basket>> methods() noexcept {
        static constexpr Method<Basket> kTable[] = {
            {{u"Put", u"Положить"}, required(1), kFunction, &Basket::put, &kNumberType},
        };
        return kTable;
    }
    InterfacePtr<IValueEnum> enumerate() override { return create_value_enum(texts_); }
    void serialize(IOutPersistenceStorage* storage) const override {
        storage->listStream().put(texts_.empty() ? wstring() : texts_.front().presentation());
    }
    void deserialize(IInPersistenceStorage* storage) override {
        wstring text;
        storage->listStream().get(text);
        texts_ = {Value(text)};
    }

  private:
    GenericValue put(std::span<GenericValue> arguments) {
        texts_.emplace_back(text_argument(arguments[0], 0));
        return texts_.size();
    }

    std::vector<Value> texts_;
};
const ScriptClassEntry<Basket> kBasketEntry;

/// Lives in others; its presentation is a message.
class Inner : public ScriptObject<Inner> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"TestInner"},
        .type = "0d6bc5f5-2e57-4d4a-90cb-9a5d1a76ab03"_guid,
        .object = "0d6bc5f5-2e57-4d4a-90cb-9a5d1a76ab04"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_NULL",
    };
};
const ScriptTypeEntry<Inner> kInnerEntry;

class ScriptObjects : public testing::Test {
  protected:
    struct Module {
        SCOM_ResourceBundle bundle{"nothing"};
        SCOM_Module module{module_class_entries, bundle};
        Module() { module.init(this); }
    };

    static GenericValue put(const GenericValue& basket, const GenericValue& text) {
        const auto context = basket.query<IContext_>();
        std::vector<GenericValue> arguments = {text};
        GenericValue result;
        context->call(context->findMethod(u"ПОЛОЖИТЬ"), &result, &arguments);
        return result;
    }

    Module module_;
    host::HostProcess process_;
};

TEST_F(ScriptObjects, AreMadeWalkedAndStored) {
    const GenericValue basket = Type(u"тестКорзина").get()->construct({});
    EXPECT_EQ(basket.type(), Type(u"TestBasket"));
    EXPECT_TRUE(put(basket, u"first").equals(1));
    EXPECT_TRUE(put(basket, u"second").equals(2));
    EXPECT_THROW((void)put(basket, 5), ContextException);
    const auto walk = basket.query<IValueCollection>()->enumerate();
    GenericValue text;
    for (const wchar* expected : {u"first", u"second"})
        EXPECT_TRUE(walk->next(text) && text.equals(expected));
    EXPECT_FALSE(walk->next(text));

    wstring stored;
    basket.toString(stored);
    const GenericValue read = GenericValue::fromString(stored);
    EXPECT_TRUE(put(read, u"third").equals(2)) << "made by its class id, with the text that was stored";
    EXPECT_NE(read, basket) << "equal to itself alone";

    ContextValueInfo info;
    const auto description = basket.query<IContextDefExt>();
    EXPECT_TRUE(description->isCollection() && description->getCollectionItemInfo(info));
    EXPECT_EQ(info.types, TypeDomain(kStringType));
    std::vector<GenericValue> surplus = {1};
    EXPECT_THROW((void)Type(u"TestBasket").get()->construct(surplus), CtorException);
}

TEST_F(ScriptObjects, ArePresentedByTheirType) {
    const GenericValue basket = Type(u"TestBasket").get()->construct({});
    Thread::setResourceLocale(Locale("en"));
    EXPECT_EQ(basket.presentation(), u"TestBasket");
    Thread::setResourceLocale(Locale("ru"));
    EXPECT_EQ(basket.presentation(), u"ТестКорзина");
    EXPECT_EQ(GenericValue(make_object<Inner>()).presentation(), message_text("IDS_TYPE_PRESENTATION_NULL"));
    Thread::setResourceLocale(Locale("en"));
}

TEST_F(ScriptObjects, AreToldFromOtherValues) {
    const GenericValue inner = make_object<Inner>();
    EXPECT_EQ(Inner::of(inner), inner.object());
    for (const GenericValue& other :
         {GenericValue(), GenericValue(5), Type(u"TestBasket").get()->construct({})})
        EXPECT_EQ(Inner::of(other), nullptr);
    EXPECT_EQ(Inner::of(static_cast<const IValue*>(nullptr)), nullptr);
    EXPECT_FALSE(inner.query<IContextDefExt>()->isCollection());
    EXPECT_EQ(create_object<IValue>(Inner::script.object), nullptr);
    EXPECT_THROW((void)Type(u"TestInner").get()->construct({}), CtorException);
}

} // namespace
