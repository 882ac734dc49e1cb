// SPDX-License-Identifier: Apache-2.0
// Concerns: containers of C++ and collections of scripts, both ways: the same elements in the same order,
// copies on both sides, elements that do not convert.
#include "tests/collections/script.h"

#include <core/context/native_function.h>

#include <random>

namespace script {
namespace {

class NativeContainers : public testing::Test {
  protected:
    template <class T>
    static void expectRefused(const GenericValue& value) {
        EXPECT_EQ(failure([&] { (void)from_value<T>(value, ValueReceiver::parameter(4)); }),
                  message_text("IDS_PARAMETER_N_TYPE_MISMATCH", {u"5"}));
    }

    host::HostProcess process_;
};

TEST_F(NativeContainers, VectorsAreArrays) {
    std::mt19937 random(1);
    for (std::size_t count = 0; count < 40; ++count) {
        std::vector<int> numbers(count);
        for (int& number : numbers)
            number = static_cast<int>(random());
        const GenericValue array = to_value(numbers);
        EXPECT_EQ(array.type(), Type(u"Array"));
        EXPECT_EQ(from_value<std::vector<int>>(array), numbers);
        EXPECT_EQ(walk(array).size(), count);
    }
    const std::vector<std::vector<std::optional<wstring>>> nested = {{u"a", std::nullopt}, {}, {u"b"}};
    EXPECT_EQ(from_value<decltype(nested)::value_type>(to_value(nested[0])), nested[0]);
    EXPECT_EQ((from_value<std::remove_const_t<decltype(nested)>>(to_value(nested))), nested);
    EXPECT_EQ(from_value<std::vector<bool>>(to_value(std::vector<bool>{true, false})),
              (std::vector<bool>{true, false}));
}

TEST_F(NativeContainers, AnyCollectionIsAVector) {
    const GenericValue array = to_value(std::vector<int>{1, 2});
    const GenericValue fixed = make(u"FixedArray", {array});
    EXPECT_EQ(from_value<std::vector<int>>(fixed), (std::vector<int>{1, 2}));
    const GenericValue structure = make(u"Structure", {u"A, B", 1, 2});
    const auto pairs = from_value<std::vector<InterfacePtr<IValuePair>>>(structure);
    ASSERT_EQ(pairs.size(), 2U);
    EXPECT_TRUE(pairs[1]->key().presentation() == u"B" && pairs[1]->value().asSmallWhole() == 2);
    for (const GenericValue& wrong : {GenericValue(), GenericValue(u"1, 2"), structure,
                                      to_value(std::vector<Value>{Value(1), Value(u"2")})})
        expectRefused<std::vector<int>>(wrong);
}

TEST_F(NativeContainers, MapsAndStructuresAreMaps) {
    const std::map<wstring, Numeric> rates = {{u"A", 1}, {u"Б", 2}};
    const GenericValue made = to_value(rates);
    EXPECT_EQ(made.type(), Type(u"Map"));
    EXPECT_EQ((from_value<std::map<wstring, Numeric>>(made)), rates);
    EXPECT_EQ((from_value<std::unordered_map<wstring, int>>(made).at(u"Б")), 2);
    EXPECT_EQ((from_value<std::map<wstring, Numeric>>(make(u"Structure", {u"Б, A", 2, 1}))), rates);
    expectRefused<std::map<wstring, bool>>(made);
    expectRefused<std::map<int, Numeric>>(made);
    expectRefused<std::map<wstring, Numeric>>(to_value(std::vector<int>{}));
}

TEST_F(NativeContainers, StandAsParametersAndArePassedBack) {
    const NativeFunction sum([](std::span<const Numeric> numbers, std::vector<wstring>& log) {
        Numeric total;
        for (const Numeric& number : numbers)
            total += number;
        log.push_back(total.toString());
        return total;
    });
    const GenericValue log = to_value(std::vector<wstring>{});
    GenericValue arguments[] = {to_value(std::vector<int>{1, 2, 3}), log};
    EXPECT_TRUE(sum(arguments).equals(6));
    EXPECT_EQ(from_value<std::vector<wstring>>(arguments[1]), std::vector<wstring>{u"6"});
    EXPECT_TRUE(walk(log).empty()) << "the container is a copy, and what is passed back is a new array";
    static_assert(!FromValue<std::vector<wstring_view>>, "its elements may be gone when the function runs");
}

} // namespace
} // namespace script
