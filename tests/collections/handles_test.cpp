// SPDX-License-Identifier: Apache-2.0
// Concerns: maps, structures and arrays in the hand of a program, beside std containers; keys that are not
// there.
#include "tests/collections/script.h"

#include <map>
#include <random>
#include <sstream>

namespace {

using namespace script;

class Handles : public Test {};

TEST_F(Handles, WithoutAKeyDoNotCrash) {
    Map map;
    map.insert("apple", Numeric::parse("1.20").value());
    map.insert(5, Date(2024, 2, 29));
    EXPECT_TRUE(map["plum"].isUndefined());
    EXPECT_EQ(map.find("plum"), nullptr);
    EXPECT_FALSE(map.contains(6));
    EXPECT_EQ(failure([&] { static_cast<void>(map.at("слива")); }),
              message_text("IDS_COLLECTION_NO_KEY", {u"слива"}));
    EXPECT_EQ(failure([&] { static_cast<void>(map.get<int>("plum")); }),
              message_text("IDS_COLLECTION_NO_KEY", {u"plum"}));
    EXPECT_EQ(failure([&] { static_cast<void>(map.get<bool>("apple")); }), type_mismatch(0));
    EXPECT_EQ(map.get<Numeric>(u"apple"), Numeric::parse("1.2").value());
    EXPECT_EQ(map.get<Date>(5), Date(2024, 2, 29));

    const Structure structure;
    structure.insert("Имя", "Аня");
    EXPECT_EQ(structure["имя"], u"Аня");
    EXPECT_TRUE(structure["age"].isUndefined());
    EXPECT_EQ(failure([&] { structure.insert("no name", 1); }),
              message_text("IDS_VS_BADPROPNAME_ERROR", {u"no name"}));
    EXPECT_FALSE(structure.remove("age"));
}

TEST_F(Handles, OfPairsAreMaps) {
    std::mt19937 random(1);
    Map map;
    std::map<int, Value> model;
    for (int i = 0; i < 2000; ++i) {
        const int key = static_cast<int>(random() % 30);
        if (random() % 3 == 0) {
            ASSERT_EQ(map.remove(key), model.erase(key) == 1);
        } else {
            map.insert(key, i);
            model[key] = i;
        }
        std::map<int, Value> seen;
        for (const auto& [number, value] : map)
            seen.emplace(from_value<int>(number), value);
        ASSERT_EQ(seen, model);
    }
    const IValueMap& plain = *map.operator->();
    EXPECT_EQ(static_cast<std::size_t>(std::distance(begin(plain), end(plain))), model.size());
    map.clear();
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.begin(), map.end());
}

TEST_F(Handles, OfArraysAreVectors) {
    const Array array{1, "two", Date(2024, 1, 2)};
    array.insert(1, true);
    array.set(0, array[2]);
    array.remove(3);
    array.add(nullptr);
    std::vector<Value> seen;
    for (const Value& value : array)
        seen.push_back(value);
    EXPECT_EQ(seen, (std::vector<Value>{u"two", true, u"two", Value()}));
    EXPECT_EQ(failure([&] { static_cast<void>(array[4]); }), bad_index());
}

TEST_F(Handles, ShareWhatScriptsHold) {
    const Map map;
    const Map copy = map;
    copy.insert(1, map);
    EXPECT_EQ(map.size(), 1U);
    EXPECT_EQ(map[1], Value(map));
    map.clear();
    const GenericValue value(map);
    call(value, u"Insert", {u"a", 5});
    EXPECT_EQ(Map(value)["a"], 5);
    EXPECT_EQ(from_value<Map>(to_value(map)).size(), 1U);
    EXPECT_EQ(failure([&] { static_cast<void>(Structure(value)); }), type_mismatch(0));
    EXPECT_EQ(failure([&] { static_cast<void>(from_value<Array>(value)); }), type_mismatch(0));
}

} // namespace
