// SPDX-License-Identifier: Apache-2.0
// Text in UTF-8: every character at every cut, strictness in both directions with the place of the fault, and
// saves that fail at any call and lose nothing.
#include "tests/lists/streams.h"
#include "tests/support/fault_scheme.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/streams/errors.h>
#include <core/streams/text_file.h>

#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <vector>

namespace core {
namespace {

/// The units of a text whose bytes come `step` at a time.
wstring decoded(const std::string& bytes, std::size_t step) {
    std::size_t at = 0;
    TextInStream stream(
        [&](std::span<std::byte> into) {
            const std::size_t count = std::min({step, into.size(), bytes.size() - at});
            std::memcpy(into.data(), bytes.data() + at, count);
            at += count;
            return count;
        },
        u"bytes");
    return test::rest_of(stream);
}

/// The bytes of a text that is written `step` units at a time; 0 is a unit at a time without any flush.
std::string encoded(const wstring& text, std::size_t step) {
    std::string bytes;
    TextOutStream stream(
        [&](std::span<const std::byte> from) {
            bytes.append(reinterpret_cast<const char*>(from.data()), from.size());
        },
        u"bytes");
    for (std::size_t at = 0; step == 0 && at < text.size(); ++at)
        stream.rdbuf()->sputc(text[at]);
    for (std::size_t at = 0; step != 0 && at < text.size(); at += step) {
        const wstring_view piece = wstring_view(text).substr(at, step);
        stream.rdbuf()->sputn(piece.data(), static_cast<std::streamsize>(piece.size()));
        stream.flush();
    }
    stream.finish();
    return bytes;
}

/// Random characters of every length, with runs of ASCII.
wstring random_text(std::mt19937& random, std::size_t length) {
    wstring text;
    while (text.size() < length) {
        switch (random() % 4) {
        case 0:
            text.append(random() % 40, u'a');
            break;
        case 1:
            text.push_back(static_cast<wchar>(0x80 + random() % 0x780));
            break;
        case 2:
            text.push_back(static_cast<wchar>(0x800 + random() % 0xC000));
            break;
        default:
            text.push_back(static_cast<wchar>(0xD800 + random() % 0x400));
            text.push_back(static_cast<wchar>(0xDC00 + random() % 0x400));
        }
    }
    return text;
}

TEST(TextFile, EveryCharacterPassesAtEveryCut) {
    std::mt19937 random(2);
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{100}, std::size_t{200'000}}) {
        const wstring text = random_text(random, length);
        const std::string bytes = to_utf8(text);
        ASSERT_EQ(encoded(text, 0), bytes);
        for (const std::size_t step :
             {std::size_t{1}, std::size_t{3}, std::size_t{65'535}, std::size_t{1} << 20}) {
            ASSERT_EQ(decoded(bytes, step), text);
            ASSERT_EQ(encoded(text, step), bytes);
        }
    }
    EXPECT_EQ(decoded("\xEF\xBF\xBF", 1), wstring(1, 0xFFFF));
}

TEST(TextFile, AByteOrderMarkIsSkippedInFrontOnly) {
    for (const std::size_t step : {std::size_t{1}, std::size_t{100}}) {
        EXPECT_EQ(decoded("\xEF\xBB\xBF", step), u"");
        EXPECT_EQ(decoded("\xEF\xBB\xBF\xC3\xA9", step), u"\x00E9");
        EXPECT_EQ(decoded("\xEF\xBB\xBF\xEF\xBB\xBFx", step), u"\xFEFFx");
    }
}

TEST(TextFile, MalformedBytesAreRefusedAtTheirPlace) {
    const std::string malformed[] = {"\x80",         "\xC3",         "\xC0\x80",         "\xE2\x82",
                                     "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF0\x9F\x98",
                                     "\xFF",         "\xC3(",        "\xE2\x82 "};
    for (const std::string& bytes : malformed) {
        for (const std::size_t before :
             {std::size_t{0}, std::size_t{3}, std::size_t{65'535}, std::size_t{70'000}}) {
            for (const char* const after : {"", "more and more"}) {
                std::string all(before, 'x');
                all += bytes + after;
                for (const std::size_t step : {std::size_t{1}, std::size_t{1} << 20}) {
                    try {
                        decoded(all, step);
                        FAIL();
                    } catch (const ConverterException& e) {
                        const std::string place = std::to_string(before);
                        EXPECT_NE(e.description().find(u"bytes"), wstring::npos);
                        EXPECT_NE(e.description().find(wstring(place.begin(), place.end())), wstring::npos)
                            << e.what();
                    }
                }
            }
        }
    }
}

TEST(TextFile, HalvesOfPairsAreRefused) {
    for (const wstring& text :
         {wstring(u"ab\xD83D"), wstring(u"\xDE00"), wstring(u"\xD83Dx"), wstring(u"\xD83D\xD83D\xDE00")}) {
        EXPECT_THROW(encoded(text, 1), ConverterException);
        EXPECT_THROW(encoded(text, 100), ConverterException);
    }
}

TEST(TextFile, ErrorsOfTheSourcePassThroughReaders) {
    TextInStream bytes([](std::span<std::byte>) -> std::size_t { throw FileException(u"gone", u"x", EIO); },
                       u"x");
    EXPECT_THROW(ListInStream(bytes).getBeginOfList(), FileException);
    std::size_t calls = 0;
    TextInStream latin(
        [&](std::span<std::byte> into) { return into[0] = std::byte{0xE9}, calls++ == 0 ? 1U : 0U; }, u"x");
    EXPECT_THROW(ListInStream(latin).getBeginOfList(), ConverterException);
}

TEST(TextFile, ASaveThatFailsAnywhereLeavesTheOldText) {
    const wstring url = u"fault://disk";
    const wstring text = wstring(100'000, u'x');
    for (std::uint64_t fail = 0;; ++fail) {
        std::map<wstring, test::FaultDisk> disks;
        const char old[] = "old";
        disks[url].bytes.assign(reinterpret_cast<const std::byte*>(old),
                                reinterpret_cast<const std::byte*>(old) + 3);
        std::uint64_t fail_at = fail;
        const auto files = create_file_system();
        files->registerScheme(SCOM_InternalClass<test::FaultScheme>::create(disks, fail_at).get());
        try {
            save_text(*files, url, [&](wostream& out) { to_stream(out, text); });
        } catch (const FileException&) {
            ASSERT_EQ(disks.size(), 1U) << "the text beside is left";
            ASSERT_EQ(disks[url].bytes.size(), 3U);
            continue;
        }
        EXPECT_EQ(disks.size(), 1U);
        EXPECT_EQ(disks[url].bytes.size(), text.size() + 2);
        EXPECT_GT(fail, 4U); // open, writes, flush, move
        break;
    }
}

TEST(TextFile, SavesAndLoadsAndReportsWhatTheWriterMeets) {
    const auto files = create_file_system();
    const wstring url = u"mem://text";
    const wstring text = u"строка\n\xD83D\xDE00\r\n";
    const auto write = [&](wostream& out) {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
    };
    save_text(*files, url, write);
    save_text(*files, url, write); // over the old one
    EXPECT_EQ(load_text(*files, url), text);
    EXPECT_THROW(save_text(*files, url, [](wostream& out) { ListOutStream(out).put(std::nan("")); }),
                 FileStreamException);
    EXPECT_THROW(save_text(*files, url, [](wostream& out) { out.put(wchar{0xD800}); }), ConverterException);
    EXPECT_THROW(save_text(*files, url, [](wostream&) { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(load_text(*files, url), text);
    EXPECT_EQ(files->findFile(u"mem://*").size(), 1U);
    EXPECT_THROW(static_cast<void>(load_text(*files, u"mem://none")), FileException);
}

} // namespace
} // namespace core
