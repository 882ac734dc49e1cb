// SPDX-License-Identifier: Apache-2.0
// Encodings: every pair of bytes beside a second converter.
#include "tests/support/rounds.h"

#include <core/runtime/errors.h>
#include <core/streams/converter.h>

#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <bit>
#include <optional>
#include <span>
#include <string>

namespace core {
namespace {

template <class Work>
auto if_it_fits(Work work) -> std::optional<decltype(work())> {
    try {
        return work();
    } catch (const ConverterException&) {
        return std::nullopt;
    }
}

/// The system's converter between an encoding and UTF-16.
class Peer {
  public:
    Peer(const char* to, const char* from) : converter_(::iconv_open(to, from)) {}
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() { ::iconv_close(converter_); }

    std::optional<std::string> convert(std::string_view text) const {
        char room[64];
        char* in = const_cast<char*>(text.data());
        char* out = room;
        std::size_t left = text.size();
        std::size_t free = sizeof room;
        ::iconv(converter_, nullptr, nullptr, nullptr, nullptr);
        if (::iconv(converter_, &in, &left, &out, &free) != 0 || left != 0) // not even something similar
            return std::nullopt;
        return std::string(room, out);
    }

  private:
    ::iconv_t converter_;
};

struct Page {
    const char16_t* name;
    const char* peer;
};
constexpr Page kPages[] = {
    {u"windows-1250", "CP1250"}, {u"windows-1251", "CP1251"},   {u"windows-1252", "CP1252"},
    {u"windows-1254", "CP1254"}, {u"KOI8-R", "KOI8-R"},         {u"IBM866", "CP866"},
    {u"ISO-8859-2", "LATIN2"},   {u"ISO-8859-5", "ISO-8859-5"}, {u"UTF-8", "UTF-8"},
    {u"UTF-16LE", "UTF-16LE"},   {u"UTF-16BE", "UTF-16BE"},     {u"windows-936", "CP936"},
    {u"windows-949", "CP949"},   {u"Shift_JIS", "CP932"},
};

/// The peer's name for units as they lie in memory.
constexpr const char* kUnits = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

/// What ICU, as the web, has where the peer has nothing: controls with the numbers of their bytes, and places
/// for characters of one's own.
bool is_extra(wchar unit) {
    return (unit >= 0x80 && unit < 0xA0) || (unit >= 0xE000 && unit < 0xF900);
}

TEST(Encoding, EveryPairOfBytesReadsAndWritesAsElsewhere) {
    const int step = 0x10000 / support::rounds(0x10000);
    for (const Page& page : kPages) {
        const Encoding encoding(page.name);
        const Peer reader(kUnits, page.peer);
        const Peer writer(page.peer, kUnits);
        int same = 0;
        for (int pair = 0; pair < 0x10000; pair += step) {
            const std::string bytes{static_cast<char>(pair >> 8), static_cast<char>(pair)};
            const auto ours =
                if_it_fits([&] { return decode_text(std::as_bytes(std::span(bytes)), encoding); });
            const auto theirs = reader.convert(bytes);
            if (ours && !theirs && std::ranges::any_of(*ours, is_extra)) {
                ASSERT_EQ(encode_text(*ours, encoding), bytes) << page.peer << ' ' << pair;
                continue;
            }
            ASSERT_EQ(ours.has_value(), theirs.has_value()) << page.peer << ' ' << pair;
            if (!ours)
                continue;
            const std::string_view units(reinterpret_cast<const char*>(ours->data()), 2 * ours->size());
            ASSERT_EQ(units, *theirs) << page.peer << ' ' << pair;
            ASSERT_EQ(if_it_fits([&] { return encode_text(*ours, encoding); }), writer.convert(units))
                << page.peer << ' ' << pair;
            ++same;
        }
        EXPECT_GT(same, 15'000 / step) << page.peer;
    }
}

} // namespace
} // namespace core
