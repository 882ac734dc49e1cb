// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/list_run.h"
#include "core/lists/token_write.h"
#include "core/lists/unit_scan.h"

#include <core/values/generic_value.h>

#include <algorithm>

/// Primitive values written and read in one piece: texts of millions of them spend their time
/// here. What is not in the form that is written (white space inside, a string with quotes in it,
/// an object) goes token by token.
namespace core::detail {

inline const wchar* read_value(const wchar* at, const wchar* end, GenericValue& value) {
    constexpr std::ptrdiff_t kHead = 4; // {"N"
    // One unit more than the shortest value has, so that the one behind a tag can be looked at.
    if (end - at <= kHead + 1 || at[0] != u'{' || at[1] != u'"' || at[3] != u'"')
        return nullptr;
    const wchar tag = at[2];
    at += kHead;
    // Sets the value if the list ends behind what was read.
    const auto finish = [&](const wchar* stop, auto make) -> const wchar* {
        if (stop == nullptr || stop == end || *stop != u'}')
            return nullptr;
        value = make();
        return stop + 1;
    };
    if (tag == u'U')
        return finish(at, [] { return GenericValue(); });
    if (tag == u'L')
        return finish(at, [] { return GenericValue(Value::null()); });
    if (*at++ != u',')
        return nullptr;
    switch (tag) {
    case u'B': {
        bool truth = false;
        const wchar* const stop = run_boolean(at, end, truth);
        return finish(stop, [&] { return GenericValue(truth); });
    }
    case u'N': {
        RunDecimal number;
        const wchar* const stop = number.read(at, end);
        return finish(stop, [&]() -> GenericValue {
            if (!number.point)
                return number.whole();
            return Numeric::fromScaled(number.whole(), static_cast<std::uint32_t>(number.fraction));
        });
    }
    case u'S': {
        wstring_view text;
        const wchar* const stop = run_string(at, end, text);
        return finish(stop, [&] { return GenericValue(text); });
    }
    case u'D': {
        Date date;
        const wchar* const stop = run_date(at, end, date);
        return finish(stop, [&] { return GenericValue(date); });
    }
    default:
        return nullptr;
    }
}

[[nodiscard]] inline bool get_in_run(ListInStream& in, GenericValue& value) {
    return ListRun::get(in, [&](const wchar* at, const wchar* end) { return read_value(at, end, value); });
}

/// Writes `value` in one piece, if it is a primitive one and the room suffices.
[[nodiscard]] inline bool put_in_run(ListOutStream& out, const Value& value, wchar tag) {
    constexpr std::size_t kHead = 4; // "N",
    const auto put = [&](std::size_t limit, auto format) {
        return ListRun::putList(out, kHead + limit, [&](wchar* at) {
            *at++ = u'"';
            *at++ = tag;
            *at++ = u'"';
            return format(at);
        });
    };
    const auto behindComma = [](wchar* at) {
        *at = u',';
        return at + 1;
    };
    switch (value.kind()) {
    case ValueKind::undefined:
    case ValueKind::null:
        return put(0, [](wchar* at) { return at; });
    case ValueKind::boolean:
        return put(1, [&](wchar* at) {
            at = behindComma(at);
            *at = value.isTrue() ? u'1' : u'0';
            return at + 1;
        });
    case ValueKind::number:
        if (const auto whole = value.asSmallWhole())
            return put(kIntegerUnits, [&](wchar* at) {
                const auto bits = static_cast<std::uint64_t>(*whole);
                return format_integer(behindComma(at), *whole < 0, *whole < 0 ? 0 - bits : bits);
            });
        return put(kNumericUnits, [&](wchar* at) -> wchar* {
            at = behindComma(at);
            const std::size_t size = value.asNumeric()->toString(at, kNumericUnits);
            return size <= kNumericUnits ? at + size : nullptr;
        });
    case ValueKind::string: {
        const wstring_view text = *value.asString();
        return put(text.size() + 2, [&](wchar* at) -> wchar* {
            at = behindComma(at);
            *at++ = u'"';
            if ((at = copy_plain(at, text)) != nullptr)
                *at++ = u'"';
            return at;
        });
    }
    case ValueKind::date:
        return put(Date::kTextLength,
                   [&](wchar* at) { return format_date(behindComma(at), *value.asDate()); });
    default:
        return false;
    }
}

} // namespace core::detail
