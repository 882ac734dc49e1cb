// SPDX-License-Identifier: Apache-2.0
// Any bytes as text in any encoding. The first byte says which; the rest is the text. Pieces of any size give
// what the whole gives, what was read strictly writes back and reads again to the same, lines make up the
// text, and the encoding that is found never fails in other ways than its own.
#include <core/runtime/errors.h>
#include <core/streams/converter.h>
#include <core/streams/text_info.h>
#include <core/streams/text_reader.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace {

using namespace core;

void require(bool holds) {
    if (!holds)
        std::abort();
}

constexpr const char16_t* kEncodings[] = {
    u"UTF-8",     u"UTF-16LE", u"UTF-16BE", u"UTF-32",      u"windows-1251", u"windows-1253", u"IBM866",
    u"Shift_JIS", u"EUC-JP",   u"GB18030",  u"Big5",        u"EUC-KR",       u"ISO-2022-JP",  u"HZ",
    u"UTF-7",     u"CESU-8",   u"IBM037",   u"ISO-2022-CN", u"UTF-16",       u"KOI8-R"};

/// The text through a reader with small blocks; nothing when it does not fit.
std::optional<wstring> by_lines(std::span<const std::byte> bytes, std::optional<Encoding> encoding,
                                CodingErrorAction action, std::size_t step) {
    TextReader reader(
        [&](std::span<std::byte> into) {
            const std::size_t count = std::min({step, into.size(), bytes.size()});
            std::memcpy(into.data(), bytes.data(), count);
            bytes = bytes.subspan(count);
            return count;
        },
        u"t", {.encoding = encoding, .action = action, .bufferSize = step});
    wstring all;
    try {
        for (wstring line; reader.readLine(line);) {
            require(line.find_first_of(u"\r\n") == wstring::npos);
            all += line;
            all += line_end_text(reader.lineEnd());
        }
    } catch (const ConverterException&) {
        return std::nullopt;
    }
    require(reader.position() == all.size());
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    const Encoding encoding(kEncodings[data[0] % std::size(kEncodings)]);
    const std::size_t step = 1 + data[1] % 40;
    const auto bytes = std::as_bytes(std::span(data, size)).subspan(2);

    // What does not fit is replaced and escaped to the same, however the text is cut.
    const auto mark = encoding.mark();
    const bool isMarked =
        !mark.empty() && bytes.size() >= mark.size() && std::equal(mark.begin(), mark.end(), bytes.begin());
    for (const auto action : {CodingErrorAction::replace, CodingErrorAction::escape})
        require(by_lines(bytes, encoding, action, step) ==
                decode_text(bytes.subspan(isMarked ? mark.size() : 0), encoding, action));

    try {
        const wstring text = decode_text(bytes, encoding);
        const std::string again = encode_text(text, encoding);
        require(decode_text(std::as_bytes(std::span(again)), encoding) == text);
    } catch (const ConverterException&) {
    }
    static_cast<void>(by_lines(bytes, std::nullopt, CodingErrorAction::report, step));
    require(by_lines(bytes, std::nullopt, CodingErrorAction::replace, step).has_value());

    // The same bytes as units: what is written reads back, escapes included.
    wstring units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), 2 * units.size());
    const std::string escaped = encode_text(units, Encoding(), CodingErrorAction::escape);
    static_cast<void>(decode_text(std::as_bytes(std::span(escaped)), Encoding()));
    try {
        static_cast<void>(encode_text(units, encoding, CodingErrorAction::escape));
    } catch (const ConverterException&) { // it has no backslash
    }
    return 0;
}
