// SPDX-License-Identifier: Apache-2.0
// Readers and writers of text: the same lines whatever buffers they come through, each with its own end; the
// encoding that is found, with its certainty; ends that are converted; faults that lose nothing before them.
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/memory_file.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/streams/text_reader.h>
#include <core/streams/text_writer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>
#include <vector>

namespace core {
namespace {

ByteReader reader_of(std::string bytes, std::size_t step) {
    return [bytes = std::move(bytes), step, at = std::size_t{0}](std::span<std::byte> into) mutable {
        const std::size_t count = std::min({step, into.size(), bytes.size() - at});
        std::memcpy(into.data(), bytes.data() + at, count);
        at += count;
        return count;
    };
}

struct Line {
    wstring text;
    LineEnd end;
    bool operator==(const Line&) const = default;
};

std::vector<Line> lines_of(TextReader& reader) {
    std::vector<Line> lines;
    for (wstring line; reader.readLine(line);)
        lines.push_back({line, reader.lineEnd()});
    return lines;
}

/// What the lines of a text are, found unit by unit.
std::vector<Line> model_lines(const wstring& text, bool unicodeEnds) {
    std::vector<Line> lines;
    wstring line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        LineEnd end = LineEnd::none;
        if (text[i] == u'\n')
            end = LineEnd::lf;
        else if (text[i] == u'\r')
            end = i + 1 < text.size() && text[i + 1] == u'\n' ? LineEnd::crlf : LineEnd::cr;
        else if (unicodeEnds && (text[i] == 0x2028 || text[i] == 0x2029))
            end = text[i] == 0x2028 ? LineEnd::line : LineEnd::paragraph;
        if (end == LineEnd::none) {
            line.push_back(text[i]);
            continue;
        }
        i += end == LineEnd::crlf ? 1 : 0;
        lines.push_back({line, end});
        line.clear();
    }
    if (!line.empty())
        lines.push_back({line, LineEnd::none});
    return lines;
}

/// Short lines with every end, in every neighbourhood; now and then a long one.
wstring random_lines(std::mt19937& random, std::size_t length) {
    static constexpr wstring_view kPieces[] = {u"\n",     u"\r",     u"\r\n", u"\n\r",   u"\r\r\n", u"x",
                                               u"строка", u"\u2028", u"😀",    u"\u2029", u"",       u"ab"};
    wstring text;
    while (text.size() < length)
        text += random() % 50 == 0 ? wstring(random() % 300, u'л')
                                   : wstring(kPieces[random() % std::size(kPieces)]);
    return text;
}

TEST(TextReader, EveryBufferGivesTheSameLines) {
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        const wstring text = random_lines(random, random() % 2000);
        for (const bool unicodeEnds : {false, true}) {
            const auto lines = model_lines(text, unicodeEnds);
            for (const char16_t* const name : {u"UTF-8", u"UTF-16LE", u"GB18030", u"UTF-32BE"}) {
                const std::string bytes = encode_text(text, Encoding(name));
                for (const std::size_t buffer : {1U, 2U, 3U, 4U, 5U, 17U, 64U, 1U << 16U}) {
                    TextReader reader(
                        reader_of(bytes, 1 + random() % buffer), u"t",
                        {.encoding = Encoding(name), .unicodeEnds = unicodeEnds, .bufferSize = buffer});
                    ASSERT_EQ(lines_of(reader), lines) << to_utf8(name) << ' ' << buffer;
                    ASSERT_EQ(reader.position(), text.size());
                    ASSERT_EQ(reader.bytesRead(), bytes.size());
                }
            }
        }
    }
}

TEST(TextReader, PiecesAndLinesMixAndLinesAreCountedOnce) {
    std::mt19937 random(4);
    for (int round = 0; round < 200; ++round) {
        const wstring text = random_lines(random, 400);
        TextReader reader(reader_of(to_utf8(text), 100), u"t",
                          {.encoding = Encoding(), .bufferSize = 1 + random() % 9});
        wstring all;
        wstring part;
        while (random() % 2 == 0 ? reader.read(part, 1 + random() % 30) : reader.readLine(part)) {
            all += part;
            if (all.size() != reader.position())
                all += line_end_text(reader.lineEnd());
            ASSERT_EQ(all.size(), reader.position());
            ASSERT_NE(all.back() & 0xFC00, 0xD800) << "a pair is divided";
        }
        ASSERT_EQ(all, text);
    }
    TextReader reader(reader_of("a\r\nb\rc\nd", 100), u"t");
    wstring part;
    std::vector<std::uint64_t> seen;
    while (reader.read(part, 1))
        seen.push_back(reader.line());
    EXPECT_EQ(seen, (std::vector<std::uint64_t>{1, 2, 2, 2, 3, 3, 4, 4}));
}

TEST(TextReader, StandsBehindWhatItReadWhenBytesDoNotFit) {
    for (const std::size_t buffer : {1U, 4U, 1000U}) {
        TextReader reader(reader_of("one\ntwo\r\xFFthree\n", 5), u"file",
                          {.encoding = Encoding(), .bufferSize = buffer});
        wstring line;
        ASSERT_TRUE(reader.readLine(line));
        ASSERT_TRUE(reader.readLine(line));
        EXPECT_EQ(line, u"two");
        for (int twice = 0; twice < 2; ++twice) {
            try {
                static_cast<void>(reader.readLine(line));
                ADD_FAILURE();
            } catch (const ConverterException& e) {
                EXPECT_NE(e.description().find(u"bytes FF at offset 8"), wstring::npos) << e.what();
            }
        }
        EXPECT_EQ(reader.line(), 3U);
    }
    TextReader replaced(reader_of("\xEF\xBB\xBF"
                                  "a\xFF\xFE\nb",
                                  2),
                        u"t", {.encoding = Encoding(), .action = CodingErrorAction::replace});
    EXPECT_EQ(replaced.readAll(), u"a\xFFFD\xFFFD\nb");
    EXPECT_EQ(replaced.faults(), 2U);
    EXPECT_EQ(replaced.firstFault(), 4U);
    TextReader failing([](std::span<std::byte>) -> std::size_t { throw FileException(u"gone", u"x", EIO); },
                       u"x");
    EXPECT_THROW(static_cast<void>(failing.readAll()), FileException);
}

// Text as it stands in articles, letters, code.
constexpr wstring_view kRussian =
    u"Съешь же ещё этих мягких французских булок, да выпей чаю. Широкая электрификация южных губерний даст "
    u"мощный толчок подъёму сельского хозяйства.\r\nВ чащах юга жил бы цитрус? Да, но фальшивый "
    u"экземпляр!\r\n";
constexpr wstring_view kFrench =
    u"Dès Noël où un zéphyr haï me vêt de glaçons würmiens, je dîne d’exquis rôtis de bœuf au kir à l’aÿ "
    u"d’âge "
    u"mûr et cætera. Voyez le brick géant que j’examine près du wharf: il a été très abîmé.\n";
constexpr wstring_view kJapanese =
    u"いろはにほへと ちりぬるを わかよたれそ つねならむ うゐのおくやま けふこえて あさきゆめみし "
    u"ゑひもせす。これは日本語の文章です。\n";

TEST(TextReader, FindsTheEncodingOfATextAndSaysHowSure) {
    const struct {
        wstring_view text;
        const char16_t* name;
        int least;
    } cases[] = {{kRussian, u"windows-1251", 90},
                 {kRussian, u"KOI8-R", 90},
                 {kRussian, u"ISO-8859-5", 90},
                 {kRussian, u"UTF-8", 99},
                 {kRussian, u"UTF-16LE", 90},
                 {kRussian, u"UTF-16BE", 90},
                 {kRussian, u"UTF-32LE", 90},
                 {kRussian, u"UTF-32BE", 90},
                 {kFrench, u"windows-1252", 80},
                 {kFrench, u"UTF-8", 99},
                 {kJapanese, u"Shift_JIS", 90},
                 {kJapanese, u"EUC-JP", 90},
                 {kJapanese, u"UTF-16LE", 90},
                 {kJapanese, u"ISO-2022-JP", 80},
                 {u"plain\n", u"UTF-8", 100},
                 {u"plain\n", u"UTF-16BE", 90},
                 {u"", u"UTF-8", 100},
                 {wstring_view(u"a\0b c d", 7), u"UTF-8", 50},
                 {u"\x1B[31mred\x1B[0m", u"UTF-8", 100}};
    for (const auto& [text, name, least] : cases) {
        TextReader reader(reader_of(encode_text(text, Encoding(name)), 10), u"t");
        EXPECT_EQ(to_utf8(reader.encoding().encoding.name()), to_utf8(name)) << to_utf8(text.substr(0, 9));
        EXPECT_GE(reader.encoding().certainty, least) << to_utf8(name);
        EXPECT_EQ(reader.readAll(), text) << to_utf8(name);
    }
    for (const char16_t* const name :
         {u"UTF-8", u"UTF-16LE", u"UTF-16BE", u"UTF-32LE", u"UTF-32BE", u"GB18030"}) {
        const auto mark = Encoding(name).mark();
        std::string bytes(reinterpret_cast<const char*>(mark.data()), mark.size());
        bytes += encode_text(u"\u4E2D", Encoding(name));
        TextReader reader(reader_of(bytes, 1), u"t");
        EXPECT_EQ(to_utf8(reader.encoding().encoding.name()), to_utf8(Encoding(name).name()));
        EXPECT_EQ(reader.encoding().markSize, mark.size());
        EXPECT_EQ(reader.readAll(), u"\u4E2D");
    }
    TextReader unknown(reader_of(std::string("\x90\x00\xFF\xFE\x01\x80\x00", 7), 10), u"t");
    EXPECT_EQ(unknown.encoding().certainty, 0);
    EXPECT_THROW(static_cast<void>(unknown.readAll()), ConverterException);
}

TEST(TextReader, LooksForTheEncodingWhereTheFirstLetterStands) {
    for (const char16_t* const name : {u"windows-1251", u"KOI8-R", u"UTF-8", u"EUC-JP"}) {
        const wstring_view letters = wstring_view(name) == u"EUC-JP" ? kJapanese : kRussian;
        for (const std::size_t before : {std::size_t{65'530}, std::size_t{65'536}, std::size_t{300'000}}) {
            const wstring text = wstring(before, u'x') + wstring(letters);
            TextReader reader(reader_of(encode_text(text, Encoding(name)), 50'000), u"t");
            EXPECT_TRUE(reader.encoding().isAscii);
            ASSERT_TRUE(reader.readAll() == text) << to_utf8(name) << before;
            EXPECT_EQ(to_utf8(reader.encoding().encoding.name()), to_utf8(name));
        }
    }
}

/// What a writer makes of pieces.
std::string written(std::initializer_list<wstring_view> pieces, const TextWriterOptions& options) {
    std::string bytes;
    TextWriter writer(
        [&](std::span<const std::byte> part) {
            bytes.append(reinterpret_cast<const char*>(part.data()), part.size());
        },
        u"t", options);
    for (const wstring_view piece : pieces)
        writer.write(piece);
    writer.finish();
    return bytes;
}

TEST(TextWriter, ConvertsEachEndOnceHoweverTheTextIsCut) {
    const TextWriterOptions to_crlf{.lineEnd = LineEnd::crlf, .convertEnds = true};
    EXPECT_EQ(written({u"a\r", u"\nb\n", u"\n\r", u"", u"\n\r\rc"}, to_crlf), "a\r\nb\r\n\r\n\r\n\r\n\r\nc");
    std::mt19937 random(6);
    for (int round = 0; round < 100; ++round) {
        const wstring text = random_lines(random, 300);
        wstring expected;
        for (const Line& line : model_lines(text, false))
            expected += line.text + (line.end == LineEnd::none ? u"" : u"\r\n");
        std::string bytes;
        TextWriter writer(
            [&](std::span<const std::byte> part) {
                bytes.append(reinterpret_cast<const char*>(part.data()), part.size());
            },
            u"t", to_crlf);
        for (std::size_t at = 0, step = 0; at < text.size(); at += step)
            writer.write(wstring_view(text).substr(at, step = 1 + random() % 4));
        writer.finish();
        ASSERT_EQ(from_utf8(bytes), expected);
    }
}

TEST(TextWriter, WritesMarksInFrontAndAppendsWithoutThem) {
    const auto data = create_memory_data();
    const auto append = [&](wstring_view text, const TextWriterOptions& options) {
        const auto file = open_memory_file(data);
        file->seek(0, SeekOrigin::end);
        TextWriter writer(file, options);
        writer.writeLine(text);
        writer.finish();
    };
    for (const char16_t* const name : {u"UTF-8", u"UTF-16", u"UTF-16BE", u"UTF-32", u"windows-1251"}) {
        open_memory_file(data)->truncate(0);
        append(u"раз", {.encoding = Encoding(name), .mark = true});
        append(u"два", {.encoding = Encoding(name), .mark = true});
        TextReader reader(open_memory_file(data), {.encoding = Encoding(name)});
        EXPECT_EQ(reader.readAll(), u"раз\nдва\n") << to_utf8(name);
    }
    TextWriter failed([](std::span<const std::byte>) {}, u"t", {.encoding = Encoding(u"KOI8-R")});
    EXPECT_THROW(failed.write(u"a€"), ConverterException);
    EXPECT_THROW(failed.finish(), ConverterException) << "a text with a hole is taken for whole";
    EXPECT_THROW(written({u"a\xD83D"}, {}), ConverterException);
    EXPECT_EQ(written({u"a\xD83D", u"\xDE00"}, {}), "a\xF0\x9F\x98\x80");
}

} // namespace
} // namespace core
