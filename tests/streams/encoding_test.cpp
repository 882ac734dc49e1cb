// SPDX-License-Identifier: Apache-2.0
// Encodings: names, the same text at every cut, and what does not fit, with its place.
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/streams/converter.h>
#include <core/strings/integer_text.h>

#include <gtest/gtest.h>

#include <random>

namespace core {
namespace {

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text));
}

TEST(Encoding, IsFoundByEachOfItsNamesAndByNothingElse) {
    EXPECT_EQ(Encoding(u"cp1251"), Encoding(u"WINDOWS_1251"));
    EXPECT_EQ(Encoding(u"866").name(), u"IBM866");
    EXPECT_EQ(Encoding(u"utf8"), Encoding());
    EXPECT_NE(Encoding(u"koi8-r"), Encoding(u"koi8-u"));
    for (const wstring_view name : {wstring_view(u""), wstring_view(u"no such"), wstring_view(u"../utf-8"),
                                    wstring_view(u"utf-8\0", 6), wstring_view(u"кириллица")})
        EXPECT_FALSE(Encoding::find(name)) << to_utf8(name);
    EXPECT_THROW(Encoding(u"klingon"), ConverterException);
    EXPECT_GT(Encoding::names().size(), 100U);
    for (const wstring& name : Encoding::names()) {
        const auto encoding = Encoding::find(name);
        ASSERT_TRUE(encoding) << to_utf8(name);
        for (const wstring& alias : encoding->aliases())
            EXPECT_TRUE(Encoding::find(alias)) << to_utf8(alias);
    }
}

/// Letters of many alphabets, pairs, and runs of ASCII.
wstring mixed_text(std::mt19937& random, std::size_t length, wstring_view letters) {
    wstring text;
    while (text.size() < length) {
        const std::size_t run = 1 + random() % 40;
        const bool isPlain = random() % 2 == 0;
        for (std::size_t i = 0; i < run; ++i)
            text.push_back(isPlain ? static_cast<wchar>(u' ' + random() % 0x5F)
                                   : letters[random() % letters.size()]);
        if (letters.find(u'中') != wstring_view::npos && random() % 3 == 0)
            text += {static_cast<wchar>(0xD800 + random() % 0x400),
                     static_cast<wchar>(0xDC00 + random() % 0x400)};
    }
    return text;
}

TEST(Encoding, TextPassesAtEveryCut) {
    std::mt19937 random(11);
    const struct {
        const char16_t* name;
        wstring_view letters;
    } cases[] = {{u"UTF-8", u"éяΩ中あ"},
                 {u"UTF-16LE", u"éяΩ中あ"},
                 {u"UTF-16BE", u"я中"},
                 {u"UTF-32", u"я中"},
                 {u"GB18030", u"éя中あ"},
                 {u"windows-1251", u"яЖёЇ"},
                 {u"IBM866", u"яЖё\x1A\x7F"},
                 {u"ISO-2022-JP", u"あいう"},
                 {u"Shift_JIS", u"あ\x1A\x1Cいう"},
                 {u"UTF-8", u"абвгде"},
                 {u"UTF-7", u"яё"}};
    for (const auto& [name, letters] : cases) {
        const Encoding encoding(name);
        const wstring text = mixed_text(random, 3000, letters);
        const std::string bytes = encode_text(text, encoding);
        ASSERT_EQ(decode_text(bytes_of(bytes), encoding), text) << to_utf8(name);
        if (encoding == Encoding()) {
            ASSERT_EQ(bytes, to_utf8(text)); // which ICU writes
        }
        for (const std::size_t step : {1U, 2U, 3U, 7U, 100U}) {
            Encoder encoder(encoding);
            Decoder decoder(encoding);
            std::string written;
            wstring read;
            for (std::size_t at = 0, end = 0; end < text.size() + step;) {
                end += step;
                std::vector<std::byte> room(1 + random() % 20);
                const auto piece = [&] { return wstring_view(text).substr(0, end).substr(at); };
                for (ConvertStep did{1, 0}; did.taken + did.made != 0;) {
                    did = encoder.encode(piece(), room, end >= text.size());
                    at += did.taken;
                    written.append(reinterpret_cast<const char*>(room.data()), did.made);
                }
            }
            ASSERT_EQ(written, bytes) << to_utf8(name) << ' ' << step;
            for (std::size_t at = 0, end = 0; end < bytes.size() + step;) {
                end += step;
                std::vector<wchar> room(1 + random() % 20);
                const auto piece = [&] {
                    return bytes_of(std::string_view(bytes).substr(0, end).substr(at));
                };
                for (ConvertStep did{1, 0}; did.taken + did.made != 0;) {
                    did = decoder.decode(piece(), room, end >= bytes.size());
                    at += did.taken;
                    read.append(room.data(), did.made);
                }
            }
            ASSERT_EQ(read, text) << to_utf8(name) << ' ' << step;
            ASSERT_EQ(decoder.offset(), bytes.size());
        }
    }
}

/// What the failure of decoding says; empty if it succeeds.
std::string complaint(std::string_view bytes, const char16_t* name) {
    try {
        Decoder decoder(Encoding(name), CodingErrorAction::report, u"t");
        wchar units[8];
        for (ConvertStep step{1, 0}; step.taken + step.made != 0;) {
            step = decoder.decode(bytes_of(bytes), units, true);
            bytes.remove_prefix(step.taken);
        }
    } catch (const ConverterException& e) {
        return to_utf8(e.description());
    }
    return {};
}

TEST(Encoding, BytesThatDoNotFitAreNamedWithTheirPlace) {
    const struct {
        std::string bytes;
        const char16_t* name;
        const char* says;
    } cases[] = {{"ab\xC3(", u"UTF-8", "bytes C3 at offset 2"},
                 {"0123456789\xE2\x82", u"UTF-8", "bytes E2 82 at offset 10"},
                 {std::string("a\0\0\xD8x\0", 6), u"UTF-16LE", "bytes 00 D8 at offset 2"},
                 {std::string("a\0b", 3), u"UTF-16LE", "bytes 62 at offset 2"},
                 {"ab\xFF\xFF", u"GB18030", "bytes FF at offset 2"},
                 {"xyz\x81", u"Shift_JIS", "bytes 81 at offset 3"},
                 {"\xA1", u"ISO-8859-8", "bytes A1 at offset 0"},
                 {"0123456789abcdef0123456789abcdef\xD2", u"windows-1253", "bytes D2 at offset 32"}};
    for (const auto& [bytes, name, says] : cases)
        EXPECT_NE(complaint(bytes, name).find(says), std::string::npos)
            << to_utf8(name) << ": " << complaint(bytes, name);
}

TEST(Encoding, WhatDoesNotFitIsReplacedOrEscapedWhenAsked) {
    using enum CodingErrorAction;
    const auto read = [](std::string_view bytes, const char16_t* name, CodingErrorAction action) {
        return to_utf8(decode_text(bytes_of(bytes), Encoding(name), action));
    };
    EXPECT_EQ(read("a\xE2\x82z\xFF", u"UTF-8", replace), "a\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(read("a\xE2\x82z\xFF", u"UTF-8", escape), "a\\xE2\\x82z\\xFF");
    EXPECT_EQ(read("\x81\xFFok\x81", u"Shift_JIS", escape), "\\x81\\xFFok\\x81");
    EXPECT_EQ(read(std::string_view("\0\xDC.\0", 4), u"UTF-16LE", escape), "\\x00\\xDC.");
    const wstring text = u"5 €😀\xD800.";
    EXPECT_EQ(encode_text(text, Encoding(u"KOI8-R"), replace), "5 ???.");
    EXPECT_EQ(encode_text(text, Encoding(u"KOI8-R"), escape), "5 \\u20AC\\U0001F600\\uD800.");
    EXPECT_EQ(encode_text(text, Encoding(u"GB18030"), escape), "5 \xA2\xE3\x94\x39\xFC\x36\\uD800.");
    EXPECT_EQ(encode_text(text, Encoding(), replace), "5 \xE2\x82\xAC\xF0\x9F\x98\x80?.");
    for (const auto& [name, says] : {std::pair(u"KOI8-R", "U+20AC, which would stand at byte 2"),
                                     std::pair(u"windows-1251", "U+1F600, which would stand at byte 3"),
                                     std::pair(u"UTF-8", "at byte 9")}) {
        try {
            static_cast<void>(encode_text(text, Encoding(name)));
            ADD_FAILURE() << to_utf8(name);
        } catch (const ConverterException& e) {
            EXPECT_NE(to_utf8(e.description()).find(says), std::string::npos) << e.what();
        }
    }
    wchar units[1];
    Decoder decoder(Encoding(), escape, {}, 100);
    std::string_view bytes = "ab\xFF"
                             "c\xFE";
    std::string out;
    for (ConvertStep step{1, 0}; step.taken + step.made != 0; bytes.remove_prefix(step.taken)) {
        step = decoder.decode(bytes_of(bytes), units, true);
        out += static_cast<char>(step.made != 0 ? units[0] : u'|');
    }
    EXPECT_EQ(out, "ab\\xFFc\\xFE|");
    EXPECT_EQ(decoder.faults(), 2U);
    EXPECT_EQ(decoder.firstFault(), 102U);
}

} // namespace
} // namespace core
