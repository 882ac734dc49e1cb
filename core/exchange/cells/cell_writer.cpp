// SPDX-License-Identifier: Apache-2.0
#include "core/exchange/cells/cell_writer.h"

#include "core/exchange/cells/number_text.h"

#include <core/collections/value_map.h>
#include <core/context/iteration.h>
#include <core/exchange/json.h>
#include <core/runtime/utf8.h>
#include <core/streams/errors.h>
#include <core/strings/integer_text.h>
#include <core/strings/term.h>

namespace core {

void append_strictly(std::string& out, wstring_view text, wstring_view name) {
    const std::size_t begin = out.size();
    out.resize(begin + 3 * text.size());
    char* at = out.data() + begin;
    const auto put = [&at](char32_t byte) { *at++ = static_cast<char>(byte); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c < 0x80) {
            put(c);
            continue;
        }
        if (c >= 0xD800 && c < 0xE000) {
            const char32_t low = i + 1 < text.size() ? text[i + 1] : 0;
            if (c >= 0xDC00 || low < 0xDC00 || low >= 0xE000)
                throw_error<ConverterException>(messages::kTextNotUtf16,
                                                {wstring(name), string_intto(at - out.data())});
            c = 0x10000 + ((c - 0xD800) << 10U) + (low - 0xDC00);
            ++i;
            put(0xF0 | c >> 18U);
            put(0x80 | (c >> 12U & 0x3F));
        } else if (c >= 0x800) {
            put(0xE0 | c >> 12U);
        } else {
            put(0xC0 | c >> 6U);
            put(0x80 | (c & 0x3F));
            continue;
        }
        put(0x80 | (c >> 6U & 0x3F));
        put(0x80 | (c & 0x3F));
    }
    out.resize(static_cast<std::size_t>(at - out.data()));
}

void append_number(std::string& out, std::int64_t word, std::uint32_t scale) {
    while (scale != 0 && word % 10 == 0) {
        word /= 10;
        --scale;
    }
    char buffer[24];
    out.append(buffer, write_number(buffer, word, scale));
}

void append_iso_date(std::string& out, Date date) {
    const std::size_t begin = out.size();
    append_full_date(out, date);
    if (date.ticks() % static_cast<std::uint64_t>(kTicksPerDay) == 0)
        out.resize(begin + 10);
}

void append_full_date(std::string& out, Date date) {
    char buffer[Date::kXMLTextLength];
    date.toXMLString(buffer);
    out.append(buffer, sizeof buffer);
    const std::uint64_t rest = date.ticks() % static_cast<std::uint64_t>(kTicksPerSecond);
    if (rest != 0) { // ten thousandths of a second
        const std::string digits = std::to_string(10'000 + rest);
        out.append(".").append(digits, 1, 4);
    }
}

void append_value(std::string& out, const Value& value, wstring_view name) {
    switch (value.kind()) {
    case ValueKind::undefined:
    case ValueKind::null:
        return;
    case ValueKind::boolean:
        out += value.isTrue() ? "True" : "False";
        return;
    case ValueKind::number:
        out += to_utf8(value.asNumeric()->toString());
        return;
    case ValueKind::date:
        return append_iso_date(out, *value.asDate());
    case ValueKind::string:
        return append_strictly(out, *value.asString(), name);
    case ValueKind::type:
        return append_strictly(out, value.asType()->name(kEnglish), name);
    case ValueKind::object:
        if (has_elements(value))
            out += to_json(value);
        else
            append_strictly(out, value.presentation(), name);
    }
}

bool has_elements(const Value& value) {
    return value.isObject() && (value.query<IValuePairs>() || value.query<IValueCollection>());
}

} // namespace core
