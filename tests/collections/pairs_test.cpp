// SPDX-License-Identifier: Apache-2.0
// Concerns: which keys are one key; what a structure accepts as a key; the order of insertion through any
// changes; walks that nothing disturbs; keys chosen to collide.
#include "tests/collections/script.h"

#include <map>
#include <random>

namespace {

using namespace script;

using Texts = std::vector<std::pair<wstring, wstring>>;

class Pairs : public script::Test {
  protected:
    static Texts content(const Value& pairs) {
        Texts out;
        const auto source = pairs.query<IValuePairs>();
        IValuePairs::View pair;
        for (std::size_t place = 0; source->next(place, pair);)
            out.emplace_back(pair.key->presentation(), pair.value->presentation());
        EXPECT_EQ(out.size(), source->count());
        return out;
    }
};

TEST_F(Pairs, StructureKeysAreTrimmedNamesInAnyCase) {
    const GenericValue structure = make(u"Structure");
    call(structure, u"Insert", {u"  Имя\t", 1});
    call(structure, u"Insert", {u"ИМЯ", 2});
    call(structure, u"Вставить", {u"_x9"});
    EXPECT_EQ(content(structure), (Texts{{u"Имя", u"2"}, {u"_x9", u""}}));

    for (const GenericValue& key :
         Arguments{u"", u"  ", u"1a", u"a-b", u"a b", u"\u0345", 5, GenericValue(), structure}) {
        const wstring refused = message_text("IDS_VS_BADPROPNAME_ERROR", {key.presentation()});
        for (const wchar* method : {u"Insert", u"Property", u"Delete"})
            EXPECT_EQ(failure([&] { call(structure, method, {key}); }), refused);
    }
    EXPECT_TRUE(call(structure, u"Count").equals(2)) << "a refused call changes nothing";

    Arguments found = {u" имя ", u"untouched"};
    EXPECT_TRUE(call(structure, u"Property", found).equals(true));
    EXPECT_TRUE(found[1].equals(2));
    Arguments absent = {u"other", u"untouched"};
    EXPECT_TRUE(call(structure, u"Свойство", absent).equals(false));
    EXPECT_TRUE(absent[1].equals(u"untouched"));
    EXPECT_TRUE(call(structure, u"Property", {u"имя"}).isTrue()) << "without a variable for the value";
    call(structure, u"Delete", {u"other"});
    call(structure, u"Delete", {u"иМЯ "});
    EXPECT_EQ(content(structure), (Texts{{u"_x9", u""}}));
    call(structure, u"Clear");
    EXPECT_TRUE(call(structure, u"Количество").equals(0));
}

TEST_F(Pairs, KeysOfAStructureAreItsProperties) {
    const GenericValue structure = make(u"Structure", {u"Name, Größe,Count", u"x", 2});
    const auto context = structure.query<IContext_>();
    ASSERT_EQ(context->getNProps(), 3);
    EXPECT_EQ(context->findProp(u"NAME"), 0);
    EXPECT_EQ(context->findProp(u"GRÖSSE"), 1) << "the sharp s is two letters in capitals";
    EXPECT_EQ(wstring_view(context->getPropName(1, 0)), u"Größe");
    EXPECT_EQ(wstring_view(context->getPropName(1, 1)), u"Größe");
    EXPECT_EQ(context->getPropName(1, 2), nullptr);
    EXPECT_EQ(context->getPropName(3, 0), nullptr);
    EXPECT_EQ(context->findProp(u"absent"), -1);
    EXPECT_EQ(context->findProp(u" Name"), -1);
    EXPECT_TRUE(property(structure, u"größe").equals(2));
    EXPECT_TRUE(property(structure, u"count").isUndefined()) << "a key may be named as a method is";
    EXPECT_TRUE(call(structure, u"count").equals(3));
    context->setPropVal(1, 5);
    EXPECT_TRUE(property(structure, u"größe").equals(5));
    EXPECT_TRUE(context->isPropReadable(2) && context->isPropWritable(2) && !context->isPropWritable(3));
    GenericValue out;
    EXPECT_NE(failure([&] { context->getPropVal(3, out); }), u"");
    EXPECT_NE(failure([&] { context->setPropVal(-1, out); }), u"");

    EXPECT_EQ(failure([] { make(u"Structure", {5}); }), type_mismatch(0));
    EXPECT_EQ(failure([] { make(u"Structure", {u"A", 1, 2}); }), value_mismatch(2));
    EXPECT_NE(failure([] { make(u"Structure", {u"A,,B"}); }), u"");
}

TEST_F(Pairs, AMapTakesAnyKeyAndTellsKindsApart) {
    const GenericValue map = make(u"Map");
    const GenericValue object = make(u"Array");
    const Numeric ten = 10;
    const Arguments keys = {GenericValue(),
                            Value::null(),
                            false,
                            true,
                            0,
                            1,
                            u"1",
                            u"",
                            u"one",
                            u"One",
                            Date(),
                            Date(1),
                            object,
                            make(u"Map"),
                            Type(Type::number),
                            0.5,
                            -1,
                            ten.pow(18),
                            ten.pow(40),
                            Type(Type::string),
                            Date(~std::uint64_t{0}),
                            ten.pow(9),
                            ten.pow(18) - 1 + 0.25,
                            -ten.pow(17)};
    for (std::size_t i = 0; i < keys.size(); ++i)
        call(map, u"Insert", {keys[i], i});
    EXPECT_TRUE(call(map, u"Count").equals(keys.size()));
    for (std::size_t i = 0; i < keys.size(); ++i)
        EXPECT_TRUE(call(map, u"Получить", {keys[i]}).equals(i)) << i;
    EXPECT_TRUE(call(map, u"Get", {Numeric(3) / Numeric(6)}).equals(15));
    EXPECT_TRUE(call(map, u"Get", {make(u"Array")}).isUndefined());
    call(map, u"Insert", {1.0, u"replaced"});
    call(map, u"Delete", {make(u"Array")});
    EXPECT_TRUE(call(map, u"Count").equals(keys.size()));
    EXPECT_TRUE(call(map, u"Get", {1}).equals(u"replaced"));
    call(map, u"Delete", {object});
    EXPECT_TRUE(call(map, u"Get", {object}).isUndefined());
    call(map, u"Clear");
    EXPECT_TRUE(call(map, u"Count").equals(0));
}

/// Random changes beside a model that keeps the order of insertion; `key` makes the key of a number.
template <class Key>
void run_against_model(const GenericValue& pairs, Key key, std::uint32_t keys) {
    std::mt19937 random(keys);
    std::map<std::uint32_t, std::pair<int, int>> model; // a key's age and value
    int age = 0;
    const auto check = [&] {
        std::map<int, std::uint32_t> byAge;
        for (const auto& [k, entry] : model)
            byAge[entry.first] = k;
        const auto seen = walk(pairs);
        const auto context = pairs.query<IContext_>();
        ASSERT_EQ(seen.size(), model.size());
        std::size_t i = 0;
        for (const auto& [_, k] : byAge) {
            ASSERT_EQ(property(seen[i], u"Key"), key(k));
            ASSERT_TRUE(property(seen[i], u"Значение").equals(model[k].second));
            if (context->getNProps() != 0) {
                ASSERT_EQ(context->findProp(key(k).asString()->data()), static_cast<int>(i));
            }
            ++i;
        }
    };
    for (int step = 0; step < 20000; ++step) {
        const std::uint32_t k = static_cast<std::uint32_t>(random() % keys);
        // Grows first and shrinks then, so that the table meets every size in both directions.
        if (random() % 100 < (step < 10000 ? 60U : 35U)) {
            call(pairs, u"Insert", {key(k), step});
            model.try_emplace(k, ++age, 0).first->second.second = step;
        } else {
            call(pairs, u"Delete", {key(k)});
            model.erase(k);
        }
        if (random() % 5000 == 0) {
            call(pairs, u"Clear");
            model.clear();
        }
        ASSERT_TRUE(call(pairs, u"Count").equals(model.size()));
        if (step % 1000 == 0)
            check();
    }
    check();
}

TEST_F(Pairs, AMapBehavesAsItsModelUnderRandomChanges) {
    const auto key = [](std::uint32_t k) { return k % 2 != 0 ? Value(k) : Value(string_intto(k)); };
    for (const std::uint32_t keys : {6U, 12U, 300U, 5000U})
        run_against_model(make(u"Map"), key, keys);
}

TEST_F(Pairs, AStructureBehavesAsItsModelUnderRandomChanges) {
    const auto key = [](std::uint32_t k) { return Value(u"Поле" + string_intto(k)); };
    for (const std::uint32_t keys : {6U, 12U, 300U, 5000U})
        run_against_model(make(u"Structure"), key, keys);
}

TEST_F(Pairs, AWalkSeesWhatWasThereWhenItBegan) {
    for (const wchar* type : {u"Map", u"Structure"}) {
        GenericValue pairs = make(type);
        for (int i = 0; i < 20; ++i)
            call(pairs, u"Insert", {u"k" + string_intto(i), i});
        auto items = pairs.query<IValueCollection>()->enumerate();
        GenericValue item;
        int count = 0;
        for (; items->next(item); ++count) {
            EXPECT_TRUE(property(item, u"Value").equals(count));
            call(pairs, u"Delete", {property(item, u"Key")});
            call(pairs, u"Insert", {u"k" + string_intto(count + 1), u"changed"});
            call(pairs, u"Insert", {u"new" + string_intto(count), 0});
        }
        EXPECT_EQ(count, 20);
        items = pairs.query<IValueCollection>()->enumerate();
        pairs = GenericValue();
        EXPECT_TRUE(items->next(item)) << "a walk outlives its collection";
        EXPECT_FALSE(item.query<IContext_>()->isPropWritable(0));
        EXPECT_EQ(item.presentation(), u"Key and value");
    }
}

/// A hundred thousand keys, of which very many share one hashCode.
TEST_F(Pairs, KeysWithEqualHashCodesSlowNothingDown) {
    constexpr int kCount = 100'000;
    const auto fraction = [](int i) { return Value(Numeric(i) / Numeric(kCount + 1)); };
    const auto colliding = [](int i) { // "af" and "ba" weigh the same
        wstring text;
        for (int bit = 0; bit < 17; ++bit)
            text += (i >> bit & 1) != 0 ? u"af" : u"ba";
        return Value(text);
    };
    ASSERT_EQ(fraction(1).hashCode(), fraction(kCount).hashCode());
    ASSERT_EQ(colliding(1).hashCode(), colliding(kCount).hashCode());
    const auto map = create_value_map();
    const auto structure = create_value_structure();
    for (int i = 1; i <= kCount; ++i) {
        map->insert(fraction(i), i);
        map->insert(colliding(i), i);
        structure->insert(colliding(i), i);
    }
    for (int i = 1; i <= kCount; ++i) {
        ASSERT_EQ(*map->find(fraction(i)), Value(i));
        ASSERT_EQ(*map->find(colliding(i)), Value(i));
        ASSERT_EQ(*structure->find(*colliding(i).asString()), Value(i));
    }
    for (int i = 1; i <= kCount; ++i)
        ASSERT_TRUE(map->remove(fraction(i)) && structure->remove(colliding(i)));
    EXPECT_EQ(map->count(), static_cast<std::size_t>(kCount));
    EXPECT_EQ(structure->count(), 0U);
}

} // namespace
