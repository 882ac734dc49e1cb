// SPDX-License-Identifier: Apache-2.0
// Single tokens: the written forms to the letter, what is read and what is not, and where a failure leaves
// the stream, over every kind of buffer.
#include "tests/lists/streams.h"

#include <core/lists/list_out_stream.h>
#include <core/lists/token.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <random>

namespace core {
namespace {

using test::on_every_stream;
using test::rest_of;

template <class... Args>
wstring written(const Args&... args) {
    MemoryOutStream out;
    to_stream(out, args...);
    std::basic_ostringstream<wchar> plain;
    to_stream(plain, args...);
    const wstring text = out.take();
    EXPECT_EQ(text, plain.str());
    return text;
}

/// Reads a `T` from every kind of stream; none when that fails. `rest` is what must be left.
template <class T>
std::optional<T> read(const wstring& text, const wstring& rest) {
    std::optional<T> result;
    on_every_stream(text, [&](wistream& in) {
        T value{};
        const bool done = from_stream(in, value);
        result = done ? std::optional<T>(value) : std::nullopt;
        EXPECT_EQ(rest_of(in), rest) << "after reading " << ::testing::PrintToString(text);
    });
    return result;
}

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

/// The rule for floating-point numbers, from sixteen digits made by the C library.
wstring double_model(double value) {
    if (value == 0)
        return u"0";
    char text[64];
    std::snprintf(text, sizeof text, "%.15e", std::fabs(value));
    std::string digits = std::string(1, text[0]) + std::string(text + 2, 15);
    const int point = std::atoi(std::strchr(text, 'e') + 1) + 1;
    digits.erase(digits.find_last_not_of('0') + 1);
    const int count = static_cast<int>(digits.size());
    std::string form = digits;
    if (0 < point && point < count)
        form.insert(static_cast<std::size_t>(point), ".");
    else if (point != count)
        form =
            digits.substr(0, 1) + (count > 1 ? "." : "") + digits.substr(1) + "e" + std::to_string(point - 1);
    return (value < 0 ? u"-" : u"") + wstring(form.begin(), form.end());
}

TEST(Token, DoublesAreSixteenDigitsInTheShorterForm) {
    const std::pair<double, const wchar*> forms[] = {{0.5, u"5e-1"},
                                                     {0.25, u"2.5e-1"},
                                                     {100, u"1e2"},
                                                     {120, u"1.2e2"},
                                                     {12, u"12"},
                                                     {1.5, u"1.5"},
                                                     {-12, u"-12"},
                                                     {1e-7, u"1e-7"},
                                                     {-0.0, u"0"},
                                                     {123456.789, u"123456.789"},
                                                     {1e15, u"1e15"},
                                                     {1e16, u"1e16"},
                                                     {5e-324, u"4.940656458412465e-324"},
                                                     {1.7976931348623157e308, u"1.797693134862316e308"}};
    for (const auto& [value, text] : forms)
        EXPECT_EQ(written(value), text);
    EXPECT_EQ(written(0.1F), u"1.000000014901161e-1");
    EXPECT_EQ(written(1.5L), u"1.5");

    std::mt19937_64 random(3);
    for (int i = 0; i < 60'000; ++i) {
        const auto bits = random();
        double value = std::bit_cast<double>(bits);
        switch (i % 4) {
        case 0: // any double
            break;
        case 1: // prices
            value = static_cast<double>(bits % 1'000'000'000) / 100;
            break;
        case 2: // around powers of ten
            value = std::pow(10, static_cast<int>(bits % 26) - 9) *
                    (1 + (static_cast<int>(bits >> 32) % 20) * 0x1p-52);
            break;
        default: // halves of the last digit
            value = static_cast<double>(bits >> 12) / static_cast<double>(std::uint64_t{1} << (bits % 50));
        }
        if (std::isfinite(value)) {
            ASSERT_EQ(written(value), double_model(value));
        }
    }
}

TEST(Token, InfinitiesAndNaNAreNotWritten) {
    for (const double value : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        MemoryOutStream out;
        to_stream(out, value);
        EXPECT_TRUE(out.fail());
        EXPECT_EQ(out.take(), u"");
    }
}

TEST(Token, DoublesFollowTheTokenMachine) {
    const std::tuple<const wchar*, double, const wchar*> taken[] = {
        {u"1", 1, u""},
        {u"-1.5e-3,", -1.5e-3, u","},
        {u".", 0, u""},
        {u"-.", 0, u""},
        {u".e5}", 0, u"}"},
        {u"1.2.3", 1.2, u".3"},
        {u"1-2", 1, u"-2"},
        {u"1e5e", 1e5, u"e"},
        {u"1e5.5", 1e5, u".5"},
        {u"1.-", 1, u"-"},
        {u"-0", -0.0, u""},
        {u"12 ", 12, u" "},
        {u"1E5x", 1e5, u"x"},
        {u"1\x0661", 1, u"\x0661"},
        {u"1e999", HUGE_VAL, u""},
        {u"-1e999", -HUGE_VAL, u""},
        {u"1e-999", 0, u""},
        {u"0e99999999999999999999", 0, u""},
        {u".5", 0.5, u""},
        {u"9007199254740993", 9007199254740992.0, u""},
        {u"0.30000000000000004,", 0.30000000000000004, u","}};
    for (const auto& [text, value, rest] : taken) {
        const auto result = read<double>(text, rest);
        ASSERT_TRUE(result.has_value()) << ::testing::PrintToString(text);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(*result), std::bit_cast<std::uint64_t>(value)) << value;
    }
    const std::pair<const wchar*, const wchar*> refused[] = {
        {u"+5", u"+5"}, {u" 1", u" 1"},   {u"", u""},        {u"-", u""},     {u"--1", u"-1"}, {u"e5", u"e5"},
        {u"1e", u""},   {u"1e+5", u"+5"}, {u"1e--5", u"-5"}, {u"-e5", u"e5"}, {u"1.5e,", u","}};
    for (const auto& [text, rest] : refused)
        EXPECT_EQ(read<double>(text, rest), std::nullopt) << ::testing::PrintToString(text);

    const wstring longest(31, u'1');
    EXPECT_EQ(read<double>(longest, u""), 1111111111111111111111111111111.0);
    EXPECT_EQ(read<double>(longest + u"}", u"}"), 1111111111111111111111111111111.0);
    EXPECT_EQ(read<double>(longest + u"1}", u"1}"), std::nullopt);
    EXPECT_EQ(read<double>(wstring(30, u'1') + u"e", u""), std::nullopt);
}

TEST(Token, FloatsComeBackToTheBit) {
    EXPECT_EQ(read<float>(u" +1.5e+2,", u","), 150.0F);
    EXPECT_EQ(read<float>(u"-.25 ", u" "), -0.25F);
    EXPECT_EQ(read<float>(wstring(40, u'0') + u"1.5", u""), 1.5F);
    EXPECT_EQ(read<float>(u"1e-99", u""), 0.0F);
    const std::pair<wstring, wstring> refused[] = {
        {u"", u""},       {u"-", u""},   {u".", u""},     {u"e5", u"e5"},  {u"-.E5", u"E5"}, {u"1e", u""},
        {u"1e99,", u","}, {u"1e-", u""}, {u"1e+x", u"x"}, {u"-1e99", u""}, {u"x", u"x"}};
    for (const auto& [text, rest] : refused) {
        on_every_stream(text, [&, left = rest](wistream& in) {
            float value = 1;
            EXPECT_FALSE(from_stream(in, value));
            EXPECT_TRUE(in.fail());
            EXPECT_EQ(rest_of(in), left);
        });
    }
    std::mt19937 random(5);
    for (int i = 0; i < 20'000; ++i) {
        const float value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value))
            continue;
        const wstring text = written(value);
        MemoryInStream in(text);
        float back = 1;
        ASSERT_TRUE(from_stream(in, back));
        ASSERT_EQ(back, value);
    }
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

TEST(Token, StringsDoubleQuotesAndEscapeSurrogates) {
    const std::pair<wstring, const wchar*> forms[] = {{u"", u"\"\""},
                                                      {u"a\"b", u"\"a\"\"b\""},
                                                      {u"\xD83D\xDE00", u"\"\"\\d83d\"\\de00\""},
                                                      {u"a\xFFFF", u"\"a\"\\ffff\""},
                                                      {u"\xFFFD\xFFFE", u"\"\xFFFD\xFFFE\""},
                                                      {u"line\nend\r\t\x01", u"\"line\nend\r\t\x01\""},
                                                      {wstring(u"a\0b", 3), nullptr}};
    for (const auto& [text, form] : forms) {
        const wstring out = written(text);
        if (form != nullptr) {
            EXPECT_EQ(out, form);
        }
        EXPECT_EQ(read<wstring>(out + u",", u","), text);
    }
    EXPECT_EQ(written(u"ab\0cd"), u"\"ab\"");
    EXPECT_EQ(written(u"abcd", std::uint32_t{3}), u"\"abc\"");
    EXPECT_EQ(written(static_cast<const wchar*>(nullptr)), u"\"\"");
    EXPECT_EQ(written(u"ab\0cd", std::uint32_t{4}), u"\"ab\"");
    EXPECT_EQ(read<wstring>(u"  \"a\"\\00E9\"\\ff21\"\"\" z", u" z"), u"a\x00E9\xFF21\"");
    EXPECT_EQ(read<wstring>(u"\"\"\\\xFF21\xFF26\xFF41\xFF46\"", u""), wstring(1, 0xAFAF));
}

TEST(Token, BrokenStringsAreEmpty) {
    const std::pair<wstring, const wchar*> refused[] = {
        {u"abc", u"abc"},
        {u"", u""},
        {u"\"abc", u""},
        {u"\"a\"\\12", u""},
        {u"\"a\"\\12g4\"", u"g4\""},
        {u"\"a\xFFFFz\"", u"\xFFFFz\""}, // the end of the text
        {u"\"a\"\\12\xFFFF", u"\xFFFF"}};
    for (const auto& [text, rest] : refused) {
        on_every_stream(text, [&, left = rest](wistream& in) {
            wstring value = u"before";
            EXPECT_FALSE(from_stream(in, value));
            EXPECT_EQ(value, u"");
            EXPECT_EQ(rest_of(in), left);
        });
    }
}

TEST(Token, StringsFitABufferOrFail) {
    const auto read_into = [](const wstring& text, std::uint32_t size, const wstring& rest) {
        wstring result;
        on_every_stream(text, [&](wistream& in) {
            wchar buffer[9] = u"????????";
            const bool done = from_stream(in, buffer, size);
            result = done ? buffer : u"failed";
            EXPECT_EQ(done || *buffer == u'\0', true);
            EXPECT_EQ(buffer[size], u"????????"[size]) << "written behind the end";
            EXPECT_EQ(rest_of(in), rest);
        });
        return result;
    };
    EXPECT_EQ(read_into(u" \"abc\",", 4, u","), u"abc");
    EXPECT_EQ(read_into(u"\"abcd\",", 4, u"\","), u"failed");
    EXPECT_EQ(read_into(u"\"\"", 1, u""), u"");
    EXPECT_EQ(read_into(u"\"a\"\"b\"", 4, u""), u"a\"b");
    EXPECT_EQ(read_into(u"\"a\"\"\"\"b\"", 3, u"b\""), u"failed");
    EXPECT_EQ(read_into(u"\"\"\\0041\"", 8, u""), u"A");
    wchar untouched = u'x';
    MemoryInStream in(u"\"\"");
    EXPECT_FALSE(from_stream(in, &untouched, 0));
    EXPECT_EQ(untouched, u'x');
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

TEST(Token, EscapesAreFourHexadecimalDigits) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        wchar digits[4];
        escape_char(static_cast<wchar>(unit), digits);
        ASSERT_EQ(unescape_char(digits), unit);
        ASSERT_EQ(is_allowed_char(static_cast<wchar>(unit)), unit < 0xD800 || unit >= 0xE000);
    }
    wchar digits[4];
    escape_char(0xDE0A, digits);
    EXPECT_EQ(wstring_view(digits, 4), u"de0a");
}

} // namespace
} // namespace core
