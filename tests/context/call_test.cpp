// SPDX-License-Identifier: Apache-2.0
// Concerns: calls and properties by number from a class's tables; defaults of every kind; wrong numbers and
// wrong counts of arguments that reach no method; several contexts as one.
#include <core/context/arguments.h>
#include <core/context/context_impl.h>
#include <core/context/errors.h>
#include <core/context/group_context.h>
#include <core/strings/integer_text.h>
#include <core/values/errors.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using namespace core;

constexpr Term kLevel = {u"Level", u"Уровень"};
constexpr Term kSecret = {u"Secret", nullptr};
constexpr Term kFixed = {u"Fixed", u"Постоянное"};
constexpr Term kJoin = {u"Join", u"Соединить"};
constexpr Term kSwap = {u"Swap", nullptr};
constexpr Param kJoinParams[] = {
    {},
    {.byDefault = ParamDefault::undefined},
    {.byDefault = ParamDefault::falseValue},
    {.byDefault = ParamDefault::emptyString},
    {.byDefault = ParamDefault::resourceText, .resource = "IDS_NUMERROR_OVERFLOW"}};
constexpr Param kSwapParams[] = {{.out = true}, {.in = false, .out = true}};

class Gauge : public IContextImpl<IContextDefImpl<Gauge>> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    explicit Gauge(int level = 0) : level_(level) {}

    static std::span<const Property<Gauge>> properties() noexcept {
        static constexpr Property<Gauge> kProperties[] = {{kLevel, &Gauge::getLevel, &Gauge::setLevel},
                                                          {kSecret, nullptr, &Gauge::setLevel},
                                                          {kFixed, &Gauge::getLevel}};
        return kProperties;
    }
    static std::span<const Method<Gauge>> methods() noexcept {
        static constexpr Method<Gauge> kMethods[] = {{kJoin, kJoinParams, kFunction, &Gauge::join},
                                                     {kSwap, kSwapParams, kProcedure, &Gauge::swapValues}};
        return kMethods;
    }
    int calls = 0;

  private:
    GenericValue getLevel() const { return level_; }
    void setLevel(const GenericValue& value) {
        if (value.asNumeric() == nullptr)
            parameter_type_mismatch(0);
        level_ = static_cast<int>(*value.asNumeric());
    }
    GenericValue join(std::span<GenericValue> arguments) {
        ++calls;
        wstring text;
        for (const GenericValue& argument : arguments)
            text += argument.presentation() + u"|";
        return text;
    }
    GenericValue swapValues(std::span<GenericValue> arguments) {
        ++calls;
        swap(arguments[0], arguments[1]);
        return u"what a procedure returns counts for nothing";
    }

    int level_;
};

class Calls : public testing::Test {
  protected:
    template <class Action>
    void expectRefused(Action action, const wstring& message) {
        try {
            action();
            ADD_FAILURE() << "nothing was refused";
        } catch (const ContextException& e) {
            EXPECT_EQ(e.description(), message);
        }
    }

    host::HostProcess process_;
    InterfacePtr<SCOM_InternalClass<Gauge>> gauge_ = make_object<Gauge>(3);
};

TEST_F(Calls, MissingArgumentsTakeTheirDefaults) {
    GenericValue result;
    std::vector<GenericValue> params = {1, 2, true, u"x", u"y"};
    gauge_->call(0, &result, &params);
    EXPECT_TRUE(result.equals(u"1|2|Yes|x|y|"));
    params.resize(1);
    gauge_->call(0, &result, &params);
    EXPECT_TRUE(result.equals(u"1||No||" + message_text("IDS_NUMERROR_OVERFLOW") + u"|"));
    EXPECT_EQ(params.size(), 5U);

    params = {1, 2};
    gauge_->call(1, &result, &params);
    EXPECT_TRUE(result.isUndefined());
    EXPECT_TRUE(params[0].equals(2) && params[1].equals(1));
    gauge_->call(1, nullptr, &params);
    EXPECT_EQ(gauge_->calls, 4);
    EXPECT_TRUE(gauge_->isParamOut(1, 0));
    EXPECT_FALSE(gauge_->isParamOut(0, 0));
    EXPECT_TRUE(gauge_->getParamDefValue(0, 4, nullptr));
}

TEST_F(Calls, WrongNumbersAndCountsReachNoMethod) {
    GenericValue value = 5;
    std::vector<GenericValue> none;
    std::vector<GenericValue> many(6);
    for (const int method : {-1, 2, 1000000}) {
        expectRefused([&] { gauge_->call(method, &value, &none); },
                      message_text("IDS_CONTEXT_NO_METHOD", {string_intto(method)}));
        EXPECT_EQ(gauge_->getMethodName(method, 0), nullptr);
        EXPECT_EQ(gauge_->getNParams(method), 0);
        EXPECT_FALSE(gauge_->hasRetVal(method) || gauge_->isParamOut(method, 0));
        EXPECT_TRUE(gauge_->isParamIn(method, 0));
    }
    const wstring missing = message_text("IDS_CONTEXT_MISSING_ARGUMENT", {u"Join", u"1"});
    expectRefused([&] { gauge_->call(0, &value, &none); }, missing);
    expectRefused([&] { gauge_->call(0, &value, nullptr); }, missing);
    expectRefused([&] { gauge_->call(0, &value, &many); },
                  message_text("IDS_CONTEXT_TOO_MANY_ARGUMENTS", {u"Join", u"5"}));
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(gauge_->calls, 0);

    EXPECT_EQ(gauge_->findProp(nullptr), -1);
    EXPECT_EQ(gauge_->findMethod(nullptr), -1);
    for (const int prop : {-1, 3}) {
        const wstring unknown = message_text("IDS_CONTEXT_NO_PROPERTY", {string_intto(prop)});
        expectRefused([&] { gauge_->getPropVal(prop, value); }, unknown);
        expectRefused([&] { gauge_->setPropVal(prop, value); }, unknown);
        EXPECT_FALSE(gauge_->isPropReadable(prop) || gauge_->isPropWritable(prop));
    }
    expectRefused([&] { gauge_->getPropVal(1, value); },
                  message_text("IDS_CONTEXT_PROPERTY_NOT_READABLE", {u"Secret"}));
    expectRefused([&] { gauge_->setPropVal(2, value); },
                  message_text("IDS_CONTEXT_PROPERTY_NOT_WRITABLE", {u"Fixed"}));
    expectRefused([&] { gauge_->setPropVal(0, u"high"); },
                  message_text("IDS_PARAMETER_N_TYPE_MISMATCH", {u"1"}));
    EXPECT_TRUE(value.equals(5));
    gauge_->setPropVal(1, 7);
    gauge_->getPropVal(2, value);
    EXPECT_TRUE(value.equals(7));
}

template <class Group>
class Groups : public Calls {};
using GroupTypes = testing::Types<GroupContext, StableGroupContext>;
TYPED_TEST_SUITE(Groups, GroupTypes);

/// GroupContext and its variant are bases: what a group is besides is for its own class to say.
template <class Base>
class Group : public Base {};

TYPED_TEST(Groups, AreTheirMembersInARow) {
    const auto group = make_object<Group<TypeParam>>();
    const auto first = make_object<Gauge>(1);
    const auto second = make_object<Gauge>(2);
    const auto third = make_object<Gauge>(3);
    EXPECT_EQ(group->findProp(u"level"), -1);
    group->addContext(first.get());
    group->addContext(nullptr);
    group->addContext(second.get());
    EXPECT_EQ(group->getNProps(), 6);
    EXPECT_EQ(group->getNMethods(), 4);
    EXPECT_EQ(group->findProp(u"ПОСТОЯННОЕ"), 2) << "the first member that has it";
    EXPECT_EQ(group->findMethod(u"swap"), 1);
    EXPECT_EQ(wstring_view(group->getPropName(3, 1)), u"Уровень");
    EXPECT_EQ(wstring_view(group->getMethodName(2, 0)), u"Join");
    EXPECT_EQ(group->getNParams(2), 5);
    EXPECT_TRUE(group->hasRetVal(2) && group->isParamOut(3, 1) && group->getParamDefValue(2, 4, nullptr));
    EXPECT_FALSE(group->isPropReadable(4) || group->isPropWritable(5));
    EXPECT_TRUE(group->isParamIn(3, 0));
    EXPECT_FALSE(group->isParamIn(3, 1) || group->isParamOut(2, 1) || group->hasRetVal(1));

    GenericValue value;
    group->setPropVal(3, 20);
    group->getPropVal(5, value);
    EXPECT_TRUE(value.equals(20));
    std::vector<GenericValue> params = {1};
    group->call(2, &value, &params);
    EXPECT_EQ(first->calls, 0);
    EXPECT_EQ(second->calls, 1);
    EXPECT_EQ(group->findContextByPropPos(4)->context, second.get());
    EXPECT_EQ(group->findContextByMethodPos(3)->index, 1);
    for (const int out : {-1, std::numeric_limits<int>::min(), 6, 4}) {
        EXPECT_EQ(group->findContextByMethodPos(out), std::nullopt);
        EXPECT_EQ(group->getMethodName(out, 0), nullptr);
        EXPECT_EQ(group->getNParams(out), 0);
        EXPECT_TRUE(group->isParamIn(out, 0));
        EXPECT_FALSE(group->isParamOut(out, 0) || group->hasRetVal(out) ||
                     group->getParamDefValue(out, 0, nullptr));
        if (out != 4) {
            EXPECT_EQ(group->getPropName(out, 0), nullptr);
            EXPECT_FALSE(group->isPropReadable(out) || group->isPropWritable(out));
            EXPECT_THROW(group->getPropVal(out, value), ContextException);
        }
        EXPECT_THROW(group->call(out, &value, &params), ContextException);
    }

    EXPECT_TRUE(group->changeContext(first.get(), third.get()));
    EXPECT_FALSE(group->changeContext(first.get(), third.get()));
    group->getPropVal(0, value);
    EXPECT_TRUE(value.equals(3));
    group->removeContext(third.get());
    group->removeContext(third.get());
    EXPECT_EQ(group->getNMethods(), 2);
    group->call(0, &value, &params);
    EXPECT_EQ(second->calls, 2);
}

/// Leaves its group in the middle of being asked, which lets go of the last reference to it, and says whether
/// it was still alive then.
class Leaver : public Gauge {
  public:
    Leaver(GroupContext& group, bool& alive) : group_(group), alive_(alive) { alive_ = true; }
    ~Leaver() { alive_ = false; }

    void getPropVal(int, GenericValue& out) override { out = stayed(); }
    void setPropVal(int, const GenericValue&) override { EXPECT_TRUE(stayed()); }
    void call(int, GenericValue* result, std::vector<GenericValue>*) override { *result = stayed(); }

  private:
    [[nodiscard]] bool stayed() {
        const bool& alive = alive_; // this object may be gone behind the next line
        group_.removeContext(this);
        return alive;
    }

    GroupContext& group_;
    bool& alive_;
};

TYPED_TEST(Groups, KeepAMemberThatLeavesWhileItIsAsked) {
    const auto group = make_object<Group<TypeParam>>();
    bool alive = false;
    const auto enter = [&] { group->addContext(make_object<Leaver>(*group, alive).get()); };
    GenericValue result;
    enter();
    group->getPropVal(0, result);
    EXPECT_TRUE(result.isTrue());
    enter();
    group->setPropVal(0, result);
    enter();
    group->call(0, &result, nullptr);
    EXPECT_TRUE(result.isTrue());
    EXPECT_FALSE(alive);
    EXPECT_EQ(group->getNProps(), 0);
}

class Uncountable : public Gauge {
  public:
    using Gauge::Gauge;
    int getNMethods() const override { throw std::runtime_error("no"); }
};

TEST_F(Calls, AGroupThatCannotCountAMemberStaysAsItWas) {
    const auto group = make_object<Group<StableGroupContext>>();
    const auto bad = make_object<Uncountable>();
    group->addContext(gauge_.get());
    EXPECT_THROW(group->addContext(bad.get()), std::runtime_error);
    EXPECT_THROW(group->changeContext(gauge_.get(), bad.get()), std::runtime_error);
    EXPECT_EQ(group->getNMethods(), 2);
    EXPECT_EQ(group->getNProps(), 3);
    EXPECT_EQ(group->findMethod(u"nothing"), -1);
    EXPECT_EQ(group->findContextByMethodPos(1)->context, gauge_.get());
}

} // namespace
