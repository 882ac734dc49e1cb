// SPDX-License-Identifier: Apache-2.0
// The writer's commas and line breaks, the reader's demands, skipping, and random nested data through both.
#include "tests/lists/streams.h"
#include "tests/support/rounds.h"

#include <core/lists/errors.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>

#include <bit>
#include <cmath>
#include <functional>
#include <random>
#include <variant>
#include <vector>

namespace core {
namespace {

using test::on_every_stream;
using test::rest_of;

wstring list_of(const std::function<void(ListOutStream&)>& write) {
    MemoryOutStream stream;
    ListOutStream out(stream);
    write(out);
    std::basic_ostringstream<wchar> plain;
    ListOutStream plain_out(plain);
    write(plain_out);
    const wstring text = stream.take();
    EXPECT_EQ(text, plain.str());
    return text;
}

/// A list from a pattern: "(" and ")" for braces, digits for themselves.
wstring written_as(const char* pattern) {
    return list_of([&](ListOutStream& out) {
        for (const char* at = pattern; *at != '\0'; ++at) {
            if (*at == '(')
                out.putBeginOfList();
            else if (*at == ')')
                out.putEndOfList();
            else
                out.put(*at - '0');
        }
    });
}

/// `read` must throw ListStreamException and leave `rest`.
void expect_malformed(const wstring& text, const wstring& rest,
                      const std::function<void(ListInStream&)>& read) {
    on_every_stream(text, [&](wistream& stream) {
        ListInStream in(stream);
        EXPECT_THROW(read(in), ListStreamException) << ::testing::PrintToString(text);
        EXPECT_EQ(rest_of(stream), rest) << ::testing::PrintToString(text);
    });
}

TEST(ListOutStream, PlacesCommasAndLineBreaks) {
    EXPECT_EQ(written_as("()"), u"{}");
    EXPECT_EQ(written_as("(1(23)(4))"), u"{1,\n{2,3},\n{4}\n}");
    EXPECT_EQ(written_as("((()))"), u"{\n{\n{}\n}\n}");
    EXPECT_EQ(written_as("(()1)2(3)"), u"{\n{},1},2,\n{3}");
    EXPECT_EQ(written_as("1(2)"), u"1,\n{2}");
}

TEST(ListOutStream, WritesNothingForInfinitiesAndOntoFailedStreams) {
    MemoryOutStream stream;
    ListOutStream out(stream);
    out.put(1);
    out.put(std::nan(""));
    EXPECT_TRUE(stream.fail());
    out.put(2);
    stream.clear();
    EXPECT_EQ(stream.take(), u"1");
}

TEST(ListOutStream, WritesStringsOfEveryLengthAcrossItsBuffers) {
    for (const std::size_t length : {0U, 1U, 7U, 8U, 9U, 508U, 509U, 510U, 511U, 512U, 513U, 40'000U}) {
        for (const wchar last : {u'x', u'"', wchar{0xDC00}, wchar{0xFFFF}}) {
            const wstring text = wstring(length, u'a') + last;
            const wstring list = list_of([&](ListOutStream& out) {
                out.put(text);
                out.put(text.c_str());
            });
            MemoryInStream stream(list);
            ListInStream in(stream);
            wstring first;
            wstring second;
            in.get(first);
            in.get(second, text);
            ASSERT_EQ(first, text);
        }
    }
}

TEST(ListInStream, DemandsCommasAndBraces) {
    const auto read_two = [](ListInStream& in) {
        int a = 0;
        int b = 0;
        in.getBeginOfList();
        in.get(a);
        in.get(b);
        in.getEndOfList();
        EXPECT_EQ(a * 10 + b, 12);
    };
    on_every_stream(u" {\u30001\t,\n2 } x", [&](wistream& stream) {
        ListInStream in(stream);
        read_two(in);
        EXPECT_EQ(rest_of(stream), u" x");
    });
    expect_malformed(u"{1 2}", u"2}", read_two);
    expect_malformed(u"{1,2,}", u",}", read_two);
    expect_malformed(u"{,1,2}", u",1,2}", read_two);
    expect_malformed(u"{1,2", u"", read_two);
    expect_malformed(u"{1,}", u"}", read_two);
    expect_malformed(u"1,2}", u"1,2}", read_two);
    expect_malformed(u"{1,+x}", u"x}", read_two);
    expect_malformed(u"", u"", read_two);
    try {
        MemoryInStream stream(u"");
        ListInStream(stream).getEndOfList();
        FAIL();
    } catch (const ListStreamException& e) {
        EXPECT_EQ(e.clsid(), "e88a796d-7758-48a7-9ba7-781e269e9aa4"_guid);
        EXPECT_EQ(e.cause(), nullptr);
        EXPECT_NE(e.description(), u"");
    }
}

TEST(ListInStream, GetCommaTellsWhetherTheListGoesOn) {
    on_every_stream(u"{1 , 2}", [](wistream& stream) {
        ListInStream in(stream);
        int value = 0;
        in.getBeginOfList();
        EXPECT_FALSE(in.getComma());
        in.get(value);
        EXPECT_TRUE(in.getComma());
        in.get(value); // the comma is not asked for again
        EXPECT_EQ(value, 2);
        EXPECT_FALSE(in.getComma());
        in.getEndOfList();
    });
}

TEST(ListInStream, ChecksExpectedStrings) {
    on_every_stream(u"{\"Tag\",\"tag\",\"any\"}", [](wistream& stream) {
        ListInStream in(stream);
        wstring text;
        in.getBeginOfList();
        in.get(text, u"Tag");
        EXPECT_THROW(in.get(text, wstring(u"Tag")), ListStreamException);
    });
    MemoryInStream stream(u"\"any\"");
    ListInStream in(stream);
    wstring text;
    in.get(text, static_cast<const wchar*>(nullptr));
    EXPECT_EQ(text, u"any");
}

TEST(ListInStream, ReadsEachKindAfterAGapOrThrows) {
    on_every_stream(
        u"{ 1 , .5, +2.5e1 ,-12.5, 20240229235959,\n \"ab\" ,e88a796d-7758-48a7-9ba7-781e269e9aa4}",
        [](wistream& stream) {
            ListInStream in(stream);
            bool flag = false;
            double number = 0;
            float real = 0;
            Numeric decimal;
            Date date;
            wchar text[3];
            GUID id;
            in.getBeginOfList();
            in.get(flag);
            in.get(number);
            in.get(real);
            in.get(decimal);
            in.get(date);
            in.get(text, 3);
            in.get(id);
            in.getEndOfList();
            EXPECT_TRUE(flag && number == 0.5 && real == 25.0F);
            EXPECT_EQ(decimal, Numeric(-12.5));
            EXPECT_EQ(date, Date(2024, 2, 29, 23, 59, 59));
            EXPECT_EQ(wstring_view(text), u"ab");
            EXPECT_EQ(id, ListStreamException::kClassId);
        });
    const auto throws = [](const wchar* text, const wchar* rest, auto value) {
        expect_malformed(text, rest, [&](ListInStream& in) { in.get(value); });
    };
    throws(u" x", u"x", Numeric(1));
    throws(u"-}", u"}", Numeric(1));
    throws(u"2024022923595,", u",", Date());
    throws(u"20230229000000,", u",", Date()); // no such day
    throws(u"{e88a796d-7758-48a7-9ba7-781e269e9aa4}", u"{e88a796d-7758-48a7-9ba7-781e269e9aa4}", GUID());
    throws(u"2", u"2", true);
    throws(u"+5", u"+5", 1.0);
    throws(u"\"a", u"", wstring());
}

TEST(ListInStream, SkipsUpToTheEndOfTheList) {
    // The text inside a list of which `read` numbers are taken first, and what is left after the skip.
    const auto check = [](const wstring& text, int read, const wstring& rest) {
        on_every_stream(text, [&](wistream& stream) {
            ListInStream in(stream);
            int value = 0;
            in.getBeginOfList();
            for (int i = 0; i < read; ++i)
                in.get(value);
            in.skipListContent();
            EXPECT_EQ(rest_of(stream), rest) << ::testing::PrintToString(text);
        });
    };
    check(u"{1,2,\n{3,{4},\"}\"\"}\" , {}\n},abc de,\"x\" },5", 1, u"},5");
    check(u"{1,2}", 2, u"}");
    check(u"{ }", 0, u"}");
    check(u"{1,}", 1, u"}");
    check(u"{1,2", 1, u"");
    check(u"{1 2}", 1, u"2}"); // no comma: nothing is skipped
    check(u"{1,\"open}", 1, u"");
    check(u"{1,a\xFFFF,b}", 1, u"\xFFFF,b}"); // the end of the text
    // An escape ends the string: what follows it is a bare token, up to a comma or brace in the same string.
    check(u"{1,\"a\"\\d83d\"\\de00\",2}", 1, u"}");
    check(u"{1,\"a\"\\00e9b}c\",2}", 1, u"}c\",2}");
    expect_malformed(u"{{\"a\" 2},3}", u"2},3}", [](ListInStream& in) {
        in.getBeginOfList();
        in.skipListContent();
    });
    expect_malformed(u"{1,{2,{3", u"", [](ListInStream& in) {
        in.getBeginOfList();
        in.skipListContent();
    });
    on_every_stream(u"{{1},2}", [](wistream& stream) { // after it, the list ends as after any element
        ListInStream in(stream);
        in.getBeginOfList();
        in.skipListContent();
        in.getEndOfList();
    });
}

TEST(ListInStream, SkipsAnyDepthWithoutStack) {
    constexpr std::size_t kDeep = 1'000'000;
    const wstring text = u"{" + wstring(kDeep, u'{') + wstring(kDeep, u'}') + u"}";
    MemoryInStream stream(text);
    ListInStream in(stream);
    in.getBeginOfList();
    in.skipListContent();
    in.getEndOfList();
    EXPECT_EQ(rest_of(stream), u"");
}

/// Quotes, the units on both sides of what is escaped, and any other.
wchar random_unit(std::mt19937_64& source) {
    constexpr wchar kEdges[] = {u'"', u'\\', 0, 0xD7FF, 0xD800, 0xDFFF, 0xE000, 0xFFFD, 0xFFFE, 0xFFFF};
    return source() % 2 == 0 ? kEdges[source() % std::size(kEdges)] : static_cast<wchar>(source());
}

/// Random nested data, and its way through a list.
struct Node {
    std::variant<bool, std::int64_t, std::uint64_t, double, GUID, Numeric, Date, wstring, std::vector<Node>>
        data;

    static Node random(std::mt19937_64& source, int depth) {
        const auto bits = source();
        switch (source() % (depth > 0 ? 11 : 8)) {
        case 0:
            return {bits % 2 == 0};
        case 1:
            return {static_cast<std::int64_t>(bits) >> source() % 64};
        case 2:
            return {bits >> source() % 64};
        case 3:
            return {static_cast<double>(static_cast<std::int64_t>(bits) >> 20) / 4}; // sixteen digits hold it
        case 4:
            return {
                GUID{static_cast<std::uint32_t>(bits), 2, 3, {1, 2, static_cast<std::uint8_t>(bits >> 40)}}};
        case 5:
            return {Numeric(static_cast<std::int64_t>(bits)) / Numeric(1 + source() % 1000)};
        case 6:
            return {Date((bits % (Date::kLimit / kTicksPerSecond)) * kTicksPerSecond)};
        case 7: {
            wstring text;
            for (auto length = bits % 40; length > 0; --length)
                text.push_back(random_unit(source));
            return {text};
        }
        default: {
            std::vector<Node> nodes;
            for (auto count = bits % 8; count > 0; --count)
                nodes.push_back(random(source, depth - 1));
            return {nodes};
        }
        }
    }
    void put(ListOutStream& out) const {
        std::visit(
            [&](const auto& value) {
                if constexpr (std::is_same_v<decltype(value), const std::vector<Node>&>) {
                    out.putBeginOfList();
                    for (const Node& node : value)
                        node.put(out);
                    out.putEndOfList();
                } else {
                    out.put(value);
                }
            },
            data);
    }
    void check(ListInStream& in) const {
        std::visit(
            [&](const auto& value) {
                using T = std::remove_cvref_t<decltype(value)>;
                if constexpr (std::is_same_v<T, std::vector<Node>>) {
                    in.getBeginOfList();
                    for (const Node& node : value)
                        node.check(in);
                    in.getEndOfList();
                } else {
                    T read{};
                    in.get(read);
                    ASSERT_EQ(read, value);
                }
            },
            data);
    }
};

TEST(ListStream, RandomDataComesBackOverEveryStream) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 300; ++i) {
        const Node node{std::vector<Node>{Node::random(random, 5), Node::random(random, 5)}};
        const wstring text = list_of([&](ListOutStream& out) { node.put(out); });
        EXPECT_TRUE(std::all_of(text.begin(), text.end(), is_allowed_char));
        on_every_stream(text, [&](wistream& stream) {
            ListInStream in(stream);
            node.check(in);
            EXPECT_EQ(rest_of(stream), u"");
        });
        MemoryInStream stream(text);
        ListInStream in(stream);
        in.getBeginOfList();
        if (text.find(u"\"\\") == wstring::npos) {
            in.skipListContent();
            EXPECT_EQ(rest_of(stream), u"}");
        }
    }
}

/// What a reader answers when it is asked for one thing after the other, up to the first refusal, and what it
/// leaves.
wstring answers(wistream& stream, unsigned seed) {
    std::mt19937 random(seed);
    ListInStream in(stream);
    MemoryOutStream memory;
    ListOutStream out(memory);
    wstring seen;
    const auto ask = [&](auto value) {
        in.get(value);
        out.put(value);
    };
    try {
        for (int i = 0; i < 6; ++i) {
            switch (random() % 10) {
            case 0:
                ask(wstring());
                break;
            case 1: {
                wchar buffer[6] = u"?????";
                in.get(buffer, static_cast<std::uint32_t>(1 + random() % 5));
                out.put(buffer);
                break;
            }
            case 2:
                ask(0.0);
                break;
            case 3:
                ask(Numeric());
                break;
            case 4:
                ask(Date());
                break;
            case 5:
                ask(false);
                break;
            case 6:
                ask(0);
                break;
            case 7:
                ask(0U);
                break;
            case 8:
                out.put(in.getComma());
                break;
            default:
                in.getBeginOfList();
                out.put(u"{");
            }
        }
    } catch (const ListStreamException&) {
        out.put(u"refused");
    }
    return memory.take() + u" rest " + rest_of(stream);
}

/// Tokens that lie whole in the units at hand are read by other code than those that do not.
TEST(ListStream, ReadersAnswerTheSameOverEveryStream) {
    const wstring pieces[] = {u"0",
                              u"1",
                              u"-12",
                              u"+3",
                              u"12.5",
                              u"-0.25",
                              u"9007199254740993.5",
                              u".",
                              u".e5",
                              u"1e5",
                              u"-",
                              u"\"abc\"",
                              u"\"a\"\"b\"",
                              u"\"\"\\00e9\"",
                              u"\"",
                              u"\"x",
                              u"12\u0661",
                              u"{",
                              u"}",
                              u"x",
                              u"20240229235959",
                              u"20240230000000",
                              u"123456789012345678",
                              u"1234567890123456789",
                              u"0.1234567890123456789",
                              u"99999999999999999999999999999999",
                              u"\"abcd\"",
                              u"\"abcde\"",
                              u"-x",
                              u"1.2.3"};
    std::mt19937 random(29);
    for (unsigned seed = 0; seed < support::rounds(20'000U); ++seed) {
        wstring text;
        for (auto count = random() % 6; count > 0; --count) {
            text += pieces[random() % std::size(pieces)];
            text += wstring_view(u" ,,,").substr(random() % 3, 1 + random() % 2);
        }
        std::vector<wstring> seen;
        on_every_stream(text, [&](wistream& stream) { seen.push_back(answers(stream, seed)); });
        for (const wstring& other : seen)
            ASSERT_EQ(other, seen.front()) << ::testing::PrintToString(text) << ' ' << seed;
    }
}

} // namespace
} // namespace core
