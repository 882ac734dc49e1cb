// SPDX-License-Identifier: Apache-2.0
// Text in memory and buffers of a user's own: every unit arrives once and in order, whatever mixes the writes
// and wherever the pieces end; U+FFFD and U+FFFF are units like others.
#include "tests/lists/streams.h"

#include <core/lists/token.h>
#include <core/streams/text_file.h>

#include <random>

namespace core {
namespace {

/// Gathers what is written when its few units of room are used up, as the buffer of a device would.
class GatheringBuffer : public TextBuffer {
  public:
    GatheringBuffer() { setp(room_, room_ + std::size(room_)); }
    wstring gathered() {
        gather();
        return text_;
    }

  protected:
    int_type overflow(int_type unit) override {
        gather();
        return traits_type::eq_int_type(unit, traits_type::eof()) ? traits_type::not_eof(unit)
                                                                  : sputc(traits_type::to_char_type(unit));
    }

  private:
    void gather() {
        text_.append(pbase(), pptr());
        setp(room_, room_ + std::size(room_));
    }

    wchar room_[64];
    wstring text_;
};

TEST(TextBuffer, WritesOfEveryKindArriveInOrder) {
    std::mt19937 random(9);
    for (int round = 0; round < 200; ++round) {
        GatheringBuffer own;
        wostream onOwn(&own);
        MemoryOutStream inMemory;
        std::basic_ostringstream<wchar> plain;
        for (auto steps = random() % 60; steps > 0; --steps) {
            const auto number = static_cast<int>(random()) >> random() % 32;
            const wstring text(random() % (random() % 8 == 0 ? 2000 : 50),
                               static_cast<wchar>(random() % 0xFFFF));
            const auto kind = random() % 4;
            for (wostream* const out :
                 {&onOwn, static_cast<wostream*>(&inMemory), static_cast<wostream*>(&plain)}) {
                if (kind == 0)
                    to_stream(*out, number);
                else if (kind == 1)
                    to_stream(*out, text);
                else if (kind == 2)
                    out->rdbuf()->sputn(text.data(), static_cast<std::streamsize>(text.size()));
                else
                    out->rdbuf()->sputc(static_cast<wchar>(number & 0x7FFF));
            }
        }
        ASSERT_EQ(own.gathered(), plain.str());
        ASSERT_EQ(inMemory.take(), plain.str());
        EXPECT_EQ(inMemory.take(), u"") << "taken once";
    }
}

TEST(TextBuffer, MemoryGrowsOverTheEndsOfItsPieces) {
    MemoryOutStream out;
    for (const std::size_t size : {511U, 512U, 513U, 33'279U, 33'280U, 33'281U, 100'000U}) {
        wstring text(size, 0xFFFF);
        for (std::size_t i = 0; i < size; i += 2)
            text[i] = static_cast<wchar>(i);
        for (const std::size_t part : {std::size_t{1}, std::size_t{7}, size}) {
            for (std::size_t at = 0; at < size; at += part)
                put_text(out, wstring_view(text).substr(at, part));
            ASSERT_TRUE(out.take() == text) << size << ' ' << part;
        }
    }
}

TEST(TextBuffer, AStreamThatTakesNoMoreBecomesBad) {
    wchar room[3];
    class Full : public TextBuffer {
      public:
        explicit Full(wchar* at) { setp(at, at + 3); }
    } buffer(room);
    wostream out(&buffer);
    put_text(out, u"ab");
    EXPECT_TRUE(out.good());
    put_text(out, u"cd");
    EXPECT_TRUE(out.bad());
    EXPECT_EQ(wstring_view(room, 3), u"abc");
    out.clear();
    EXPECT_EQ(buffer.sputn(u"e", 1), 0);
}

TEST(TextBuffer, ABufferWithoutRoomTakesSingleUnits) {
    class Single : public TextBuffer {
      public:
        explicit Single(std::size_t most) : most_(most) {}
        wstring text;

      protected:
        int_type overflow(int_type unit) override {
            if (traits_type::eq_int_type(unit, traits_type::eof()))
                return traits_type::not_eof(unit);
            if (text.size() == most_)
                return traits_type::eof();
            text.push_back(traits_type::to_char_type(unit));
            return unit;
        }

      private:
        std::size_t most_;
    } all(100), some(4);
    EXPECT_EQ(all.sputn(u"abcdef", 6), 6);
    EXPECT_EQ(all.text, u"abcdef");
    EXPECT_EQ(some.sputn(u"abcdef", 6), 4);
    EXPECT_EQ(some.text, u"abcd");
}

TEST(TextBuffer, AStreamThatCanPutNothingBackLosesNothing) {
    test::UnbufferedIn buffer(u" \"\xFFFD\xFFFDz\" \xFFFD,");
    wistream in(&buffer);
    wstring text;
    EXPECT_TRUE(from_stream(in, text));
    EXPECT_EQ(text, u"\xFFFD\xFFFDz");
    EXPECT_FALSE(is_comma(in));
    EXPECT_EQ(test::rest_of(in), u"\xFFFD,");
}

TEST(TextBuffer, ReadsOfTheStandardLibrarySeeEveryUnit) {
    const wstring text = u"a\xFFFF\xFFFD\xD800z";
    for (const std::size_t run : {1U, 2U, 5U, 9U}) {
        test::DripBuffer buffer(text, run);
        wchar units[8];
        EXPECT_EQ(buffer.sgetn(units, 2), 2);
        EXPECT_EQ(buffer.sgetn(units + 2, 6), 3) << "no more than there is";
        EXPECT_EQ(wstring(units, 5), text);
        EXPECT_FALSE(buffer.fill());
    }
}

} // namespace
} // namespace core
