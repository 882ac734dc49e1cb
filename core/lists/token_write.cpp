// SPDX-License-Identifier: Apache-2.0
#include "core/lists/token_write.h"

#include "core/lists/unit_scan.h"
#include "core/numbers/digit_text.h"

#include <core/lists/token.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace core {
namespace detail {

namespace {

wchar* format_magnitude(wchar* out, std::uint64_t magnitude) noexcept {
    using namespace limbs;
    if (magnitude >= kLimbBase)
        return write_limb(format_magnitude(out, magnitude / kLimbBase),
                          static_cast<Limb>(magnitude % kLimbBase));
    const auto limb = static_cast<Limb>(magnitude);
    const std::size_t digits = digit_count(limb | 1);
    return write_leading(out, true, limb * kPowers[kLimbDigits - digits], digits);
}

} // namespace

wchar* format_integer(wchar* out, bool negative, std::uint64_t magnitude) noexcept {
    if (negative)
        *out++ = u'-';
    return format_magnitude(out, magnitude);
}

wstring_view terminated(const wchar* text, std::size_t length) noexcept {
    const wchar* const null = std::char_traits<wchar>::find(text, length, u'\0');
    return {text, null == nullptr ? length : static_cast<std::size_t>(null - text)};
}

void write_characters(UnitSink& sink, wstring_view text) {
    const wchar* at = text.data();
    const wchar* const end = at + text.size();
    for (;;) {
        const wchar* const special = find_unit<EndsPlainWrite>(at, end);
        sink.write({at, special});
        if (special == end)
            return;
        if (*special == u'"') {
            sink.write(u"\"\"");
        } else {
            wchar escape[6] = {u'"', u'\\'};
            escape_char(*special, escape + 2);
            sink.write({escape, 6});
        }
        at = special + 1;
    }
}

void write_string(UnitSink& sink, wstring_view text) {
    sink.write(u"\"");
    write_characters(sink, text);
    sink.write(u"\"");
}

wostream& put_integer(wostream& out, bool negative, std::uint64_t magnitude) {
    UnitSink(out).format<kIntegerUnits>([&](wchar* at) { return format_integer(at, negative, magnitude); });
    return out;
}

} // namespace detail

using namespace detail;

wostream& put_begin_of_list(wostream& out) {
    UnitSink(out).write(u"{");
    return out;
}
wostream& put_end_of_list(wostream& out) {
    UnitSink(out).write(u"}");
    return out;
}
wostream& put_comma(wostream& out) {
    UnitSink(out).write(u",");
    return out;
}
wostream& put_new_line(wostream& out) {
    UnitSink(out).write(u"\n");
    return out;
}

wostream& to_stream(wostream& out, double value) {
    if (!std::isfinite(value))
        out.setstate(std::ios_base::failbit);
    else
        UnitSink(out).format<kDoubleUnits>([&](wchar* at) { return format_double(at, value); });
    return out;
}

wostream& to_stream(wostream& out, const GUID& id) {
    UnitSink(out).format<kGuidTextLength>([&](wchar* at) { return to_string(id, at); });
    return out;
}

wostream& to_stream(wostream& out, wstring_view text) {
    UnitSink sink(out);
    write_string(sink, text);
    return out;
}
wostream& to_stream(wostream& out, const wchar* text) {
    return to_stream(out, text_view(text));
}
wostream& to_stream(wostream& out, const wchar* text, std::uint32_t length) {
    return to_stream(out, terminated(text, length));
}

wostream& put_characters(wostream& out, wstring_view text) {
    UnitSink sink(out);
    write_characters(sink, text);
    return out;
}

void escape_char(wchar unit, wchar* out) noexcept {
    for (int shift = 12; shift >= 0; shift -= 4)
        *out++ = u"0123456789abcdef"[unit >> shift & 0xF];
}

} // namespace core
