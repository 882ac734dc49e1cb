// SPDX-License-Identifier: Apache-2.0
// The searches and conversions that work on many units at once, against a walk over each unit. The same tests
// are compiled once more as for a processor without vectors.
#include "core/exchange/csv/specials.h"
#include "core/lists/unit_scan.h"
#include "core/streams/ends_line.h"
#include "core/streams/utf8_blocks.h"

#include <core/runtime/types.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#if defined(CORE_TEST_PLAIN) && defined(__SSE2__)
#error the plain ways are not those that are compiled
#endif

using namespace core;

namespace {

constexpr int kRounds = 200;

/// A text of plain units with some of those that mean something, or are their neighbours.
wstring random_text(std::mt19937& random, std::size_t length) {
    constexpr wchar kUnits[] = {u'"',   u'!',   u'#',   u'\n',  u'\r',  0x0B,   0x2027, 0x2028,
                                0x2029, 0x202A, 0xD7FF, 0xD800, 0xDFFF, 0xE000, 0xFFFE, 0xFFFF};
    wstring text(length, u'x');
    for (std::size_t left = random() % 4; left > 0 && length > 0; --left)
        text[random() % length] = kUnits[random() % std::size(kUnits)];
    return text;
}

template <class Test>
void expect_found(const wstring& text, std::initializer_list<wchar> units) {
    const wchar* const end = text.data() + text.size();
    EXPECT_EQ(detail::find_unit<Test>(text.data(), end),
              std::find_first_of(text.data(), end, units.begin(), units.end()));
}

/// UTF-8, one unit after the other, of units other than surrogates.
std::string bytes_of(const wstring& text) {
    std::string bytes;
    const auto add = [&](int byte) { bytes += static_cast<char>(byte); };
    for (const wchar unit : text) {
        if (unit >= 0x800) {
            add(0xE0 | unit >> 12);
            add(0x80 | (unit >> 6 & 0x3F));
        } else if (unit >= 0x80) {
            add(0xC0 | unit >> 6);
        }
        add(unit >= 0x80 ? 0x80 | (unit & 0x3F) : unit);
    }
    return bytes;
}

} // namespace

TEST(Vectors, SearchesStopAtTheFirstUnit) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length <= 40; ++length) {
        for (int round = 0; round < kRounds; ++round) {
            const wstring text = random_text(random, length);
            expect_found<detail::EndsLine>(text, {u'\n', u'\r'});
            expect_found<detail::EndsUnicodeLine>(text, {u'\n', u'\r', 0x2028, 0x2029});
            expect_found<detail::EndsPlainRead>(text, {u'"', 0xFFFF});
        }
    }
}

TEST(Vectors, PlainTextsAreCopiedAndOthersRefused) {
    std::mt19937 random(2);
    for (std::size_t length = 0; length <= 40; ++length) {
        for (int round = 0; round < kRounds; ++round) {
            const wstring text = random_text(random, length);
            const bool plain = std::none_of(text.begin(), text.end(), [](wchar unit) {
                return unit == u'"' || (unit >= 0xD800 && unit <= 0xDFFF) || unit == 0xFFFF;
            });
            wstring copy(length + 1, u'?');
            const wchar* const end = detail::copy_plain(copy.data(), text);
            ASSERT_EQ(end, plain ? copy.data() + length : nullptr);
            ASSERT_TRUE(!plain || copy == text + u'?') << "nothing is written behind the text";
        }
    }
}

TEST(Vectors, SpecialBytesComeOneAfterTheOther) {
    std::mt19937 random(3);
    for (std::size_t length = 0; length <= 200; ++length) {
        for (int round = 0; round < kRounds / 10; ++round) {
            const char delimiter = random() % 2 == 0 ? ';' : '\t';
            std::string text(length, 'x');
            for (std::size_t left = random() % 8; left > 0 && length > 0; --left)
                text[random() % length] = "\"\n\r;\t,\xBB"[random() % 7];
            std::vector<std::size_t> expected;
            for (std::size_t i = 0; i < length; ++i) {
                if (text[i] == delimiter || text[i] == '"' || text[i] == '\n' || text[i] == '\r')
                    expected.push_back(i);
            }
            expected.push_back(length);
            const std::string behind = text + std::string(Specials::kBehind, '"');
            Specials specials(delimiter);
            specials.start(behind.data(), behind.data() + length);
            std::vector<std::size_t> found;
            do
                found.push_back(static_cast<std::size_t>(specials.next() - behind.data()));
            while (found.back() != length);
            ASSERT_EQ(found, expected) << length;
        }
    }
}

TEST(Vectors, ShortCharactersAreCodedUpToWhatIsNot) {
    std::mt19937 random(4);
    for (std::size_t length = 0; length <= 80; ++length) {
        for (int round = 0; round < kRounds; ++round) {
            // Some units of one byte and of two, then perhaps one of three.
            wstring text;
            const bool other = random() % 4 == 0;
            const std::size_t where = length == 0 ? 0 : random() % length;
            for (std::size_t i = 0; i < length; ++i) {
                const auto unit = static_cast<wchar>(other && i == where ? 0x4E00
                                                     : random() % 2 == 0 ? random() % 0x80
                                                                         : 0x80 + random() % 0x780);
                text += unit;
            }
            const std::string bytes = bytes_of(text);
            const std::size_t codedUnits = other && length > 0 ? where : length;
            const std::size_t codedBytes = bytes_of(text.substr(0, codedUnits)).size();
            const auto* const in = reinterpret_cast<const std::uint8_t*>(bytes.data());
            const std::uint8_t* at = in;
            wstring units(bytes.size(), u'?');
            wchar* out = units.data();
            detail::decode_short(at, in + bytes.size(), out);
            const auto decoded = static_cast<std::size_t>(out - units.data());
            ASSERT_LE(at - in, static_cast<std::ptrdiff_t>(codedBytes));
            ASSERT_EQ(units.substr(0, decoded), text.substr(0, decoded));
            ASSERT_EQ(bytes_of(units.substr(0, decoded)), bytes.substr(0, static_cast<std::size_t>(at - in)));
            ASSERT_TRUE(other || codedBytes - static_cast<std::size_t>(at - in) < 16);

            const wchar* from = text.data();
            std::string written(3 * text.size() + 1, '?');
            auto* const begin = reinterpret_cast<std::uint8_t*>(written.data());
            std::uint8_t* to = begin;
            detail::encode_short(from, text.data() + text.size(), to);
            ASSERT_LE(from - text.data(), static_cast<std::ptrdiff_t>(codedUnits));
            ASSERT_EQ(written.substr(0, static_cast<std::size_t>(to - begin)),
                      bytes.substr(0, static_cast<std::size_t>(to - begin)));
            ASSERT_EQ(written.back(), '?');
        }
    }
}
