// SPDX-License-Identifier: Apache-2.0
// Concerns: bounds that differ between Insert and the others; what counts as an index; failed calls that
// change nothing; making arrays from sizes and from each other; walks that nothing disturbs; letting go of
// deep ones.
#include "tests/collections/script.h"

#include <core/runtime/errors.h>

#include <random>

namespace {

using namespace script;

class Arrays : public script::Test {
  protected:
    static std::vector<int> content(const Value& array) {
        std::vector<int> out;
        for (const Value& value : array.query<IValueSequence>()->values())
            out.push_back(static_cast<int>(*value.asNumeric()));
        return out;
    }
    static GenericValue numbers(std::initializer_list<int> values) {
        return GenericValue(create_value_array({values.begin(), values.end()}).query<IValue>());
    }
};

TEST_F(Arrays, AnEmptyOneCountsAndRefuses) {
    const GenericValue array = make(u"Array");
    EXPECT_TRUE(call(array, u"Count").equals(0));
    EXPECT_TRUE(call(array, u"ВГраница").equals(-1));
    EXPECT_TRUE(call(array, u"Find", {1}).isUndefined());
    for (const wchar* method : {u"Get", u"Delete"})
        EXPECT_EQ(failure([&] { call(array, method, {0}); }), bad_index());
    EXPECT_EQ(array.presentation(), u"Array");
}

TEST_F(Arrays, IndexesAreNumbersCutToWholeOnesWithinBounds) {
    const GenericValue array = numbers({10, 20, 30});
    const Numeric huge = Numeric(10).pow(Numeric(30));
    EXPECT_TRUE(call(array, u"Get", {1.9}).equals(20));
    EXPECT_TRUE(call(array, u"Get", {-0.5}).equals(10));
    for (const GenericValue& index :
         Arguments{-1, 3, 1e10, 4294967296, 2147483648U, -huge, huge, huge + 0.5}) {
        for (const wchar* method : {u"Get", u"Delete"})
            EXPECT_EQ(failure([&] { call(array, method, {index}); }), bad_index());
        EXPECT_EQ(failure([&] { call(array, u"Set", {index, 5}); }), bad_index());
    }
    for (const GenericValue& index : Arguments{u"1", true, GenericValue(), Date(2024, 1, 1), array}) {
        for (const wchar* method : {u"Get", u"Delete"})
            EXPECT_EQ(failure([&] { call(array, method, {index}); }), type_mismatch(0));
        for (const wchar* method : {u"Set", u"Insert"})
            EXPECT_EQ(failure([&] { call(array, method, {index, 5}); }), type_mismatch(0));
    }
    for (const GenericValue& index : Arguments{-1, -huge})
        EXPECT_EQ(failure([&] { call(array, u"Insert", {index, 5}); }), value_mismatch(0));
    for (const GenericValue& index : Arguments{4, huge})
        EXPECT_EQ(failure([&] { call(array, u"Insert", {index, 5}); }), bad_index());
    EXPECT_EQ(content(array), (std::vector{10, 20, 30})) << "a refused call changes nothing";
    call(array, u"Insert", {3, 40});
    EXPECT_EQ(content(array), (std::vector{10, 20, 30, 40}));
}

TEST_F(Arrays, FindGoesByTheEqualityOfValues) {
    const GenericValue inner = make(u"Array");
    const GenericValue array = numbers({1});
    for (const GenericValue& value : Arguments{u"1", inner, GenericValue(), u"A", 1.5, 1})
        call(array, u"Add", {value});
    EXPECT_TRUE(call(array, u"Find", {1}).equals(0));
    EXPECT_TRUE(call(array, u"Find", {u"1"}).equals(1));
    EXPECT_TRUE(call(array, u"Find", {inner}).equals(2));
    EXPECT_TRUE(call(array, u"Find", {GenericValue()}).equals(3));
    EXPECT_TRUE(call(array, u"Find", {Numeric(3) / Numeric(2)}).equals(5));
    EXPECT_TRUE(call(array, u"Find", {u"a"}).isUndefined());
    EXPECT_TRUE(call(array, u"Find", {make(u"Array")}).isUndefined()) << "objects equal only themselves";
}

TEST_F(Arrays, BehaveAsAVectorUnderRandomChanges) {
    std::mt19937 random(20240301);
    const GenericValue array = make(u"Array");
    std::vector<int> model;
    for (int step = 0; step < 20000; ++step) {
        const int value = static_cast<int>(random() % 50);
        const auto place = static_cast<std::size_t>(random() % (model.size() + 1));
        const auto at = model.begin() + static_cast<std::ptrdiff_t>(place);
        switch (random() % 6) {
        case 0:
        case 1:
            call(array, u"Add", {value});
            model.push_back(value);
            break;
        case 2:
            call(array, u"Insert", {place, value});
            model.insert(at, value);
            break;
        case 3:
            if (place < model.size()) {
                call(array, u"Set", {place, value});
                *at = value;
            }
            break;
        case 4:
            if (place < model.size()) {
                call(array, u"Delete", {place});
                model.erase(at);
            }
            break;
        default:
            if (random() % 300 == 0) {
                call(array, u"Clear");
                model.clear();
            }
            const auto found = std::find(model.begin(), model.end(), value);
            ASSERT_EQ(call(array, u"Find", {value}),
                      found != model.end() ? Value(found - model.begin()) : Value());
        }
        ASSERT_TRUE(call(array, u"UBound").equals(static_cast<std::int64_t>(model.size()) - 1));
    }
    EXPECT_EQ(content(array), model);
}

TEST_F(Arrays, AWalkSeesWhatWasThereWhenItBegan) {
    const GenericValue array = numbers({1, 2, 3});
    const auto items = array.query<IValueCollection>()->enumerate();
    GenericValue item;
    ASSERT_TRUE(items->next(item));
    call(array, u"Clear");
    call(array, u"Add", {9});
    int sum = 0;
    while (items->next(item))
        sum += static_cast<int>(*item.asNumeric());
    EXPECT_EQ(sum, 5);
    EXPECT_FALSE(items->next(item));
    EXPECT_EQ(walk(array).size(), 1U);
}

TEST_F(Arrays, AreMadeFromSizesAndFromEachOther) {
    const GenericValue table = make(u"Массив", {2, 3});
    ASSERT_TRUE(call(table, u"Count").equals(2));
    const GenericValue first = call(table, u"Get", {0});
    ASSERT_TRUE(call(first, u"Count").equals(3));
    EXPECT_TRUE(call(first, u"Get", {2}).isUndefined());
    call(first, u"Set", {0, 7});
    EXPECT_TRUE(call(call(table, u"Get", {1}), u"Get", {0}).isUndefined())
        << "each row is an array of its own";

    const GenericValue source = numbers({1, 2, 3});
    const GenericValue fixed = make(u"FixedArray", {source});
    call(source, u"Clear");
    EXPECT_EQ(content(fixed), (std::vector{1, 2, 3}));
    const GenericValue copy = make(u"Array", {fixed});
    call(copy, u"Delete", {0});
    EXPECT_EQ(content(fixed), (std::vector{1, 2, 3}));
    EXPECT_TRUE(call(fixed, u"Найти", {3}).equals(2));
    EXPECT_EQ(failure([&] { call(fixed, u"Get", {3}); }), bad_index());
    EXPECT_FALSE(fixed.query<IValueArray>());

    EXPECT_EQ(failure([] { make(u"Array", {u"3"}); }), type_mismatch(0));
    EXPECT_EQ(failure([] { make(u"Array", {3, -1}); }), value_mismatch(1));
    EXPECT_EQ(failure([] { make(u"Array", {100000, 100000}); }), value_mismatch(1));
    EXPECT_EQ(failure([] { make(u"Array", {16777216, 1}); }), value_mismatch(1)) << "arrays count, too";
    EXPECT_EQ(failure([] { make(u"FixedArray", {3}); }), type_mismatch(0));
    EXPECT_NE(failure<CtorException>([] { make(u"FixedArray"); }), u"");
}

TEST_F(Arrays, ModulesUseThemWithoutTheScriptLayer) {
    const auto array = create_value_array({1, u"two"});
    array->insert(2, Date(2024, 2, 29));
    array->set(0, array->get(1));
    EXPECT_EQ(array->find(u"two"), 0U);
    array->remove(0);
    EXPECT_EQ(array->count(), 2U);
    array->add(array->get(0)); // an element of its own
    EXPECT_EQ(*array->get(2).asString(), u"two");
    EXPECT_EQ(failure([&] { array->insert(4, {}); }), bad_index());
    EXPECT_EQ(failure([&] { array->set(3, {}); }), bad_index());
    EXPECT_EQ(failure([&] { array->remove(3); }), bad_index());
    EXPECT_EQ(failure([&] { (void)array->get(3); }), bad_index());
}

TEST_F(Arrays, AMillionInEachOtherAreLetGoOf) {
    Value outer(make(u"Array"));
    for (int i = 0; i < 1'000'000; ++i) {
        const auto next = create_value_array();
        next->add(std::move(outer));
        outer = Value(next.query<IValue>());
    }
    outer.query<IValueArray>()->clear();
    EXPECT_EQ(outer.query<IValueArray>()->count(), 0U);
}

} // namespace
