// SPDX-License-Identifier: Apache-2.0
// String tokens: quotes, escapes and the end of the text, into strings and into buffers, over every kind of
// stream.
#include "tests/lists/tokens.h"

namespace core {
namespace {

using test::on_every_stream;
using test::read;
using test::rest_of;
using test::written;

TEST(StringToken, StringsDoubleQuotesAndEscapeSurrogates) {
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

TEST(StringToken, AStringTakesThePlaceOfTheOldOne) {
    on_every_stream(u"\"new\"", [](wistream& in) {
        wstring value = u"before";
        EXPECT_TRUE(from_stream(in, value));
        EXPECT_EQ(value, u"new");
    });
}

TEST(StringToken, BrokenStringsAreEmpty) {
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

TEST(StringToken, StringsFitABufferOrFail) {
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

TEST(StringToken, EscapesAreFourHexadecimalDigits) {
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
