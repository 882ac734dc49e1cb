// SPDX-License-Identifier: Apache-2.0
// Concerns: numbers against a model on scaled integers; strings and dates; merging and subsets against what a
// set of samples says; qualifiers that would take all memory.
#include <core/numbers/errors.h>
#include <core/numbers/settings.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/types.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

using namespace core;

class Qualifiers : public testing::Test {
  protected:
    host::HostProcess process_;
};

Numeric number(wstring_view text) {
    return Numeric::fromString(text);
}

std::int64_t power(std::uint32_t exponent) {
    return exponent == 0 ? 1 : 10 * power(exponent - 1);
}

/// A number as units of a thousandth, adjusted by the rules read plainly.
constexpr std::uint32_t kScale = 3;
std::int64_t adjust_units(std::int64_t units, const NumericQualifiers& q, bool halfUp) {
    if (units < 0 && q.nonnegative())
        return 0;
    const std::int64_t magnitude = std::abs(units);
    if (q.digits() == 0 || units == 0)
        return units;
    const auto limit = power(q.integerDigits()) * power(kScale);
    const std::int64_t step = q.fractionDigits() < kScale ? power(kScale - q.fractionDigits()) : 1;
    std::int64_t result = limit - step;
    if (magnitude < limit) {
        const std::int64_t rest = magnitude % step;
        result = magnitude - rest + (2 * rest > step || (2 * rest == step && halfUp && rest != 0) ? step : 0);
    }
    return units < 0 ? -result : result;
}

TEST_F(Qualifiers, NumbersFollowTheRulesInBothRoundingModes) {
    std::mt19937 generator(1);
    const auto random = [&] { return static_cast<std::uint32_t>(generator()); };
    for (int i = 0; i < 20000; ++i) {
        process_.settings().part<NumericSettings>().roundMode =
            i % 2 != 0 ? NumericRoundMode::round15as20 : NumericRoundMode::round15as10;
        const std::uint32_t digits = random() % 7;
        // A saturated number of more fraction digits than the model has is out of its reach.
        const NumericQualifiers q(digits, random() % (kScale + 1), random() % 2 != 0);
        const std::int64_t units = static_cast<std::int64_t>(random() % 2'000'001) - 1'000'000;
        const Numeric value = Numeric(units) / 1000;
        const Numeric expected = Numeric(adjust_units(units, q, i % 2 != 0)) / 1000;
        ASSERT_EQ(q.adjust(value), expected) << units << " into " << q.digits() << ", " << q.fractionDigits();
        ASSERT_EQ(q.fits(value), expected == value);
    }
}

TEST_F(Qualifiers, NumbersAtTheEdges) {
    const struct {
        NumericQualifiers qualifiers;
        const wchar* value;
        const wchar* adjusted;
    } cases[] = {
        {{5, 2}, u"12.345", u"12.35"},
        {{5, 2}, u"1234.5", u"999.99"},
        {{5, 2}, u"-1234.5", u"-999.99"},
        {{3, 0}, u"-1000", u"-999"},
        {{5, 2, true}, u"-5", u"0"},
        {{0, 0, true}, u"1.5", u"1.5"},
        {{0, 0, true}, u"-1.5", u"0"},
        {{2, 2}, u"0", u"0"},
        {{2, 2}, u"0.996", u"1"}, // rounding is the last step
        {{2, 2}, u"-1", u"-0.99"},
        {{2, 9}, u"7.77", u"0.99"}, // no more fraction digits than digits
        {{40, 20}, u"123456789012345678901234567890", u"99999999999999999999.99999999999999999999"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.qualifiers.adjust(number(c.value)), number(c.adjusted)) << to_utf8(c.value);
    EXPECT_EQ(NumericQualifiers(2, 9), NumericQualifiers(2, 2));
    EXPECT_TRUE(NumericQualifiers().fits(Numeric(10).pow(1000)));
    const NumericQualifiers huge(4'000'000'000, 3'999'999'999);
    EXPECT_EQ(huge.adjust(number(u"1.5")), number(u"1.5"));
    EXPECT_THROW((void)huge.adjust(10), NumericException);
}

TEST_F(Qualifiers, StringsAndDates) {
    EXPECT_EQ(StringQualifiers(5, false).adjust(u"abc"), u"abc  ");
    EXPECT_EQ(StringQualifiers(5, true).adjust(u"abc"), u"abc");
    EXPECT_EQ(StringQualifiers(5, false).adjust(u"abcdefg"), u"abcde");
    EXPECT_EQ(StringQualifiers(5, true).adjust(u"abcdefg"), u"abcde");
    EXPECT_EQ(StringQualifiers(0, false).adjust(u"abc"), u"abc");
    EXPECT_EQ(StringQualifiers(4'000'000'000, true).adjust(u"abc"), u"abc");
    EXPECT_THROW((void)StringQualifiers(4'000'000'000, false).adjust(u"abc"), ConverterException);

    const Date moment(2004, 3, 1, 13, 5, 7);
    const Date fraction(moment.ticks() + 1234);
    for (const Date date : {moment, fraction}) {
        EXPECT_EQ(DateQualifiers(DateFractions::date).adjust(date), Date(2004, 3, 1));
        EXPECT_EQ(DateQualifiers(DateFractions::time).adjust(date), Date(1, 1, 1, 13, 5, 7));
        EXPECT_EQ(DateQualifiers(DateFractions::dateTime).adjust(date), date);
    }
    EXPECT_TRUE(DateQualifiers(DateFractions::date).adjust(Date(Date::kLimit)).isEmpty());
}

/// Merged qualifiers admit what either admits; a subset fits wherever it should, by every sample.
template <class Q, class Sample>
void check_merge_and_subset(const std::vector<Q>& all, const std::vector<Sample>& samples, auto exempt) {
    for (const Q& a : all) {
        for (const Q& b : all) {
            Q merged = a;
            EXPECT_EQ(merged.merge(b), Q(b).merge(a));
            bool subset = true;
            for (const Sample& sample : samples) {
                const Sample adjusted = a.adjust(sample);
                ASSERT_EQ(a.fits(sample), adjusted == sample);
                ASSERT_TRUE(exempt(a, b) || merged.fits(sample) || !(a.fits(sample) || b.fits(sample)));
                subset = subset && (!a.fits(sample) || b.fits(sample));
            }
            ASSERT_EQ(a.isSubset(b), subset);
        }
    }
}

TEST_F(Qualifiers, MergingWidensAndSubsetsAreWhatTheyClaim) {
    std::vector<NumericQualifiers> numeric;
    for (const std::uint32_t digits : {0U, 1U, 2U, 3U}) {
        for (std::uint32_t fraction = 0; fraction <= digits; ++fraction) {
            numeric.emplace_back(digits, fraction, false);
            numeric.emplace_back(digits, fraction, true);
        }
    }
    std::vector<Numeric> numbers;
    for (const wchar* text : {u"0", u"9", u"99", u"999", u"9999", u".9", u".99", u".999", u".9999", u"9.9",
                              u"9.99", u"99.9", u"99.99", u"9.999", u"99.999"}) {
        numbers.push_back(number(text));
        numbers.push_back(-number(text));
    }
    check_merge_and_subset(numeric, numbers, [](auto&, auto&) { return false; });
    EXPECT_EQ(NumericQualifiers(5, 2).merge({4, 0}), NumericQualifiers(6, 2));
    EXPECT_EQ(NumericQualifiers(0xFFFFFFFF, 0).merge({5, 5}), NumericQualifiers());

    std::vector<StringQualifiers> string;
    std::vector<wstring> texts = {u"longer than any"};
    for (std::uint32_t length = 0; length < 5; ++length) {
        string.emplace_back(length, true);
        if (length != 0)
            string.emplace_back(length, false);
        texts.emplace_back(length, u'x');
    }
    // Two fixed lengths become the longer fixed one, to which the shorter strings are filled up.
    check_merge_and_subset(string, texts, [](auto& a, auto& b) { return !a.varying() && !b.varying(); });
    EXPECT_EQ(StringQualifiers(3, false).merge({5, false}), StringQualifiers(5, false));
    EXPECT_EQ(StringQualifiers(0, false).merge({0, false}), StringQualifiers(0, true));

    const std::vector<DateQualifiers> date = {DateQualifiers(DateFractions::date),
                                              DateQualifiers(DateFractions::time), DateQualifiers()};
    check_merge_and_subset(date,
                           std::vector<Date>{Date(), Date(2004, 3, 1), Date(1, 1, 1, 5), Date(2004, 3, 1, 5)},
                           [](auto&, auto&) { return false; });
}

} // namespace
