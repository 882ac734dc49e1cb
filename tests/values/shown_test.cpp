// SPDX-License-Identifier: Apache-2.0
// Concerns: values, numbers, dates and ids on streams, in formats, in hashed and in ordered containers.
#include <core/values.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <map>
#include <random>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

// The formatters stand behind fmt, although <core/values.h> has brought their header before.
// clang-format off
#include <fmt/format.h>
#include <core/values/formatter.h>
// clang-format on

namespace {

using namespace core;

class Shown : public testing::Test {
  protected:
    template <class T>
    static std::string written(const T& value) {
        std::ostringstream out;
        out << std::setw(8) << std::left << std::setfill('.') << value;
        return out.str();
    }
    static Value value(std::mt19937& random) {
        const auto small = static_cast<int>(random() % 6);
        switch (random() % 6) {
        case 0:
            return Value();
        case 1:
            return small % 2 == 0;
        case 2:
            return Numeric(small) / 4 - 1;
        case 3:
            return Date(2000 + small, 1, 1);
        case 4:
            return Numeric(10).pow(20 + small);
        default:
            return Value(wstring(static_cast<std::size_t>(small), u'ж'));
        }
    }

    host::HostProcess process_;
};

TEST_F(Shown, OnStreamsAndInFormats) {
    const Numeric number = Numeric::parse("-120.50").value();
    EXPECT_EQ(written(number), "-120.5..");
    EXPECT_EQ(written(Date(2024, 2, 29, 13, 5, 7)), "2024-02-29T13:05:07");
    EXPECT_EQ(written("443f09ed-a498-49b2-b555-edf086214cd1"_guid), "443f09ed-a498-49b2-b555-edf086214cd1");
    EXPECT_EQ(written(Value(u"жук")), "жук..");
    EXPECT_EQ(fmt::format("{:>8}|{:<8}|{:^8}", number, Value(5), Date(1, 2, 3)),
              "  -120.5|5       |0001-02-03T00:00:00");
    EXPECT_EQ(fmt::format("{}", GenericValue(true)), "Yes");
#if defined(__cpp_lib_format)
    EXPECT_EQ(std::format("{:>8}|{}", number, Value(5)), "  -120.5|5");
#endif
}

TEST_F(Shown, InContainersOfTheStandardLibrary) {
    std::mt19937 random(1);
    std::unordered_set<Value> hashed;
    std::map<Value, int> ordered;
    std::unordered_set<Numeric> numbers;
    std::vector<Value> plain;
    for (int i = 0; i < 2000; ++i) {
        const Value made = value(random);
        const bool fresh = std::find(plain.begin(), plain.end(), made) == plain.end();
        if (fresh)
            plain.push_back(made);
        EXPECT_EQ(hashed.insert(made).second, fresh);
        EXPECT_EQ(ordered.emplace(made, i).second, fresh);
        if (const auto number = made.asNumeric()) {
            EXPECT_EQ(numbers.insert(*number).second, fresh);
        }
    }
    for (const Value& a : plain) {
        for (const Value& b : plain)
            EXPECT_EQ(a < b, compare_values(a, b) < 0);
    }
    EXPECT_TRUE(Value(5) < 6 && 5 <= Value(5) && GenericValue(u"b") > u"a");
    std::unordered_map<Date, GUID> dates{{Date(2024, 1, 1), kNullGuid}};
    EXPECT_TRUE(dates.contains(Date(2024, 1, 1)));
    EXPECT_EQ(std::unordered_set<DateSpan>{DateSpan(5)}.count(DateSpan(5)), 1U);
}

/// A number read from text is the whole text, or nothing.
TEST_F(Shown, NumbersAreReadWholeOrNotAtAll) {
    EXPECT_EQ(Numeric::parse("-12.50"), Numeric(-25) / 2);
    EXPECT_EQ(Numeric::parse(u".5"), Numeric(1) / 2);
    for (const char* const no :
         {"", " ", " 5", "5 ", "abc", "12x", "1 2", "1e5", "--1", ".", "1.2.3", "0x10", "1,5"})
        EXPECT_FALSE(Numeric::parse(no)) << no;
}

} // namespace
