// SPDX-License-Identifier: Apache-2.0
// Single tokens but strings and floating-point numbers: the written forms to the letter, what is read and
// what is not, and where a failure leaves the stream, over every kind of buffer.
#include "tests/lists/tokens.h"

#include <core/lists/list_out_stream.h>

#include <limits>

namespace core {
namespace {

using test::on_every_stream;
using test::read;
using test::rest_of;
using test::written;

template <class T>
concept Writable = requires(wostream& out, T value) {
    to_stream(out, value);
};
template <class T>
concept Puttable = requires(ListOutStream& out, T value) {
    out.put(value);
};
static_assert(Writable<long> && Writable<unsigned long long> && Writable<signed char> &&
              Writable<long double>);
static_assert(!Writable<char16_t> && !Writable<wchar_t> && !Writable<const char*>, "codes are no numbers");
static_assert(Puttable<unsigned long> && !Puttable<char16_t> && !Puttable<char32_t> &&
              !Puttable<const char*>);

TEST(Token, StructureIsSkippedToAndTakenOrLeft) {
    on_every_stream(u" \x2003\t{ \r\n, } x", [](wistream& in) {
        EXPECT_TRUE(is_begin_of_list(in));
        EXPECT_FALSE(get_comma(in));
        EXPECT_TRUE(get_begin_of_list(in));
        EXPECT_FALSE(is_begin_of_list(in));
        EXPECT_TRUE(is_comma(in) && get_comma(in));
        EXPECT_TRUE(is_end_of_list(in) && get_end_of_list(in));
        EXPECT_FALSE(get_end_of_list(in));
        skip_spaces(in);
        EXPECT_EQ(rest_of(in), u"x");
        EXPECT_FALSE(is_comma(in));
        skip_spaces(in);
    });
    MemoryOutStream out;
    put_new_line(put_comma(put_end_of_list(put_begin_of_list(out))));
    EXPECT_EQ(out.take(), u"{},\n");
}

TEST(Token, BooleansAreOneCharacter) {
    EXPECT_EQ(written(true) + written(false), u"10");
    EXPECT_EQ(read<bool>(u" 10", u"0"), true);
    EXPECT_EQ(read<bool>(u"0", u""), false);
    EXPECT_EQ(read<bool>(u" 2", u"2"), std::nullopt);
    EXPECT_EQ(read<bool>(u"", u""), std::nullopt);
}

template <class T>
void check_limits() {
    using Limits = std::numeric_limits<T>;
    for (const T value : {Limits::min(), Limits::max(), T{0}, T{1}, static_cast<T>(Limits::max() / 10)}) {
        const std::string digits = std::to_string(+value);
        EXPECT_EQ(written(value), wstring(digits.begin(), digits.end()));
        EXPECT_EQ(read<T>(written(value) + u",", u","), value);
    }
}

TEST(Token, IntegersOfEveryTypeComeBack) {
    check_limits<signed char>();
    check_limits<unsigned char>();
    check_limits<short>();
    check_limits<unsigned short>();
    check_limits<int>();
    check_limits<unsigned>();
    check_limits<long>();
    check_limits<unsigned long>();
    check_limits<long long>();
    check_limits<unsigned long long>();
    EXPECT_EQ(written(static_cast<char>(-5)), u"-5");
    EXPECT_EQ(read<char>(u"-5", u""), static_cast<char>(-5));
}

TEST(Token, IntegersTakeSignsAndDigitsOfAnyScriptAndWrap) {
    EXPECT_EQ(read<int>(u"\n+5 ", u" "), 5);
    EXPECT_EQ(read<int>(u"-0", u""), 0);
    EXPECT_EQ(read<int>(u"-\x0661\xFF12\x0033.", u"."), -123); // Arabic-Indic, fullwidth, ASCII
    EXPECT_EQ(read<unsigned>(u"4294967296", u""), 0U);
    EXPECT_EQ(read<int>(u"2147483648", u""), std::numeric_limits<int>::min());
    EXPECT_EQ(read<std::int64_t>(u"18446744073709551617", u""), 1);
    EXPECT_EQ(read<short>(u"65537", u""), 1);
    EXPECT_EQ(read<unsigned char>(u"511", u""), 255);
    EXPECT_EQ(read<int>(wstring(1000, u'0') + u"7", u""), 7);
    for (const wchar* const text : {u"-", u"+", u"", u" "})
        EXPECT_EQ(read<int>(text, u""), std::nullopt);
    EXPECT_EQ(read<int>(u"--1", u"-1"), std::nullopt);
    EXPECT_EQ(read<int>(u"- 1", u" 1"), std::nullopt);
    EXPECT_EQ(read<unsigned>(u"+1", u"+1"), std::nullopt);
    EXPECT_EQ(read<unsigned long>(u" -1", u"-1"), std::nullopt);
    int value = 9;
    MemoryInStream in(u"x");
    EXPECT_FALSE(from_stream(in, value));
    EXPECT_EQ(value, 0);
}

TEST(Token, IdsHaveThirtySixCharacters) {
    constexpr GUID id = "E88A796D-7758-48a7-9ba7-781e269e9aa4"_guid;
    const wstring text = u"e88a796d-7758-48a7-9ba7-781e269e9aa4";
    EXPECT_EQ(written(id), text);
    EXPECT_EQ(read<GUID>(u" E88A796D-7758-48A7-9BA7-781E269E9AA4,", u","), id);
    EXPECT_EQ(read<GUID>(u"\xFF25" + text.substr(1), u""), id); // a fullwidth E
    for (const std::size_t cut : {std::size_t{0}, std::size_t{8}, std::size_t{20}, std::size_t{35}})
        EXPECT_EQ(read<GUID>(text.substr(0, cut) + u"x-", u"x-"), std::nullopt);
    on_every_stream(u"{" + text + u"}", [&](wistream& in) {
        GUID read = id;
        EXPECT_FALSE(from_stream(in, read));
        EXPECT_EQ(read, kNullGuid);
    });
}

TEST(Token, AStreamWithoutBufferOrInFailureHoldsNothing) {
    wistream none(nullptr);
    int value = 1;
    EXPECT_FALSE(from_stream(none, value));
    MemoryInStream failed(u"1");
    failed.setstate(std::ios_base::failbit);
    EXPECT_FALSE(from_stream(failed, value));
    wostream nowhere(nullptr);
    to_stream(nowhere, 1);
    EXPECT_TRUE(nowhere.bad());
}

} // namespace
} // namespace core
