// SPDX-License-Identifier: Apache-2.0
// Both text forms in both directions, for strings, buffers and streams.
#include <core/dates.h>

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace core {
namespace {

using Stream = std::basic_stringstream<wchar>;

/// Reads and says how many characters were used; -1 where both widths do not agree.
template <class Reader>
std::pair<Date, std::ptrdiff_t> read_both(const std::string& text, Reader reader) {
    const wstring wide(text.begin(), text.end());
    const char* narrowEnd = nullptr;
    const wchar* wideEnd = nullptr;
    const Date date = reader(std::string_view(text), &narrowEnd);
    const bool same =
        reader(wstring_view(wide), &wideEnd) == date && wideEnd - wide.data() == narrowEnd - text.data();
    return {date, same ? narrowEnd - text.data() : -1};
}

const auto fromString = [](auto text, auto** end) { return Date::fromString(text, end); };
const auto fromXMLString = [](auto text, auto** end) { return Date::fromXMLString(text, end); };

TEST(DateText, WritesTheFixedForms) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(date.toString(), u"20040301130507");
    EXPECT_EQ(date.toXMLString(), u"2004-03-01T13:05:07");
    EXPECT_EQ(Date().toString(), u"00010101000000");
    EXPECT_EQ((date + DateSpan(9'999)).toString(), date.toString());
}

TEST(DateText, WhatIsWrittenReadsBack) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 20'000; ++i) {
        const Date date(random() % calendar::kDayCount * kTicksPerDay + random() % 86'400 * kTicksPerSecond);
        char digits[Date::kTextLength];
        char xml[Date::kXMLTextLength];
        ASSERT_EQ(date.toString(digits), digits + sizeof digits);
        ASSERT_EQ(date.toXMLString(xml), xml + sizeof xml);
        ASSERT_EQ(read_both({digits, sizeof digits}, fromString), std::pair(date, std::ptrdiff_t{14}));
        ASSERT_EQ(read_both({xml, sizeof xml}, fromXMLString), std::pair(date, std::ptrdiff_t{19}));
        ASSERT_EQ(Date::fromString(date.toString()), date);
        ASSERT_EQ(Date::fromXMLString(date.toXMLString()), date);
        Stream stream;
        Date read;
        ASSERT_TRUE(date.toStream(stream) && read.fromStream(stream) && read == date);
    }
}

TEST(DateText, ReadingStopsAfterTheFormOrReadsNothing) {
    const Date date(2004, 3, 1, 13, 5, 7);
    EXPECT_EQ(read_both(" \t20040301130507x", fromString), std::pair(date, std::ptrdiff_t{16}));
    EXPECT_EQ(read_both("200403011305078", fromString), std::pair(date, std::ptrdiff_t{14}));
    EXPECT_EQ(read_both("2004-03-01T13:05:07Z", fromXMLString), std::pair(date, std::ptrdiff_t{19}));
    EXPECT_EQ(read_both("00010101000000", fromString), std::pair(Date(), std::ptrdiff_t{14}));
    for (const char* text :
         {"", " ", "2004030113050", "2004030113050x", "+0040301130507", "2004-03-01T13:05:07",
          "20041301130507", "20040230130507", "20040301240000", "00000000000000", "00010101000060"})
        EXPECT_EQ(read_both(text, fromString), std::pair(Date(), std::ptrdiff_t{0})) << text;
    for (const char* text : {"20040301130507", "2004-03-01 13:05:07", "2004-03-01T13:05:0",
                             "2004-3-01T13:05:07", "2004-13-01T13:05:07", "2004-03-01T13:05"})
        EXPECT_EQ(read_both(text, fromXMLString), std::pair(Date(), std::ptrdiff_t{0})) << text;
    EXPECT_EQ(Date::fromString(u"\x2003"
                               u"20040301130507"),
              date);
    EXPECT_TRUE(Date::fromString(u"\xFF12"
                                 u"0040301130507")
                    .isEmpty());
}

TEST(DateText, AStreamStopsAtTheFirstCharacterThatDoesNotFit) {
    Stream stream(u" \n20040301130507,20041301000000}2004x");
    Date date;
    EXPECT_TRUE(date.fromStream(stream));
    EXPECT_EQ(date, Date(2004, 3, 1, 13, 5, 7));
    EXPECT_EQ(stream.get(), u',');
    EXPECT_FALSE(date.fromStream(stream));
    EXPECT_EQ(stream.get(), u'}');
    EXPECT_FALSE(date.fromStream(stream));
    EXPECT_EQ(stream.get(), u'x');
    EXPECT_FALSE(date.fromStream(stream)) << "at the end";
    EXPECT_EQ(date, Date(2004, 3, 1, 13, 5, 7)) << "a failed read changes nothing";

    wostream nowhere(nullptr);
    EXPECT_FALSE(date.toStream(nowhere));
}

} // namespace
} // namespace core
