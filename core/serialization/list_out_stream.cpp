// SPDX-License-Identifier: Apache-2.0
#include "core/serialization/token_write.h"

#include <core/serialization/list_out_stream.h>

#include <cmath>

namespace core {

using namespace detail;

void ListOutStream::putBeginOfList() {
    putComma();
    justClosed_ = false;
    sink_.write(atStart_ ? u"{" : u"\n{");
    atStart_ = false;
}

void ListOutStream::putEndOfList() {
    sink_.write(justClosed_ ? u"\n}" : u"}");
    justClosed_ = true;
    commaPending_ = true;
    atStart_ = false;
}

/// A token of up to `limit` units and the comma before it in one piece.
template <std::size_t limit, class Format>
void ListOutStream::putToken(Format format) {
    sink_.format<limit + 1>([&](wchar* at) {
        if (commaPending_)
            *at++ = u',';
        return format(at);
    });
    endToken();
}

void ListOutStream::putInteger(bool negative, std::uint64_t magnitude) {
    putToken<kIntegerUnits>([&](wchar* at) { return format_integer(at, negative, magnitude); });
}

void ListOutStream::putDouble(double value) {
    if (!std::isfinite(value))
        sink_.stream().setstate(std::ios_base::failbit);
    else
        putToken<kDoubleUnits>([&](wchar* at) { return format_double(at, value); });
}

void ListOutStream::put(const GUID& id) {
    putToken<kGuidTextLength>([&](wchar* at) { return to_string(id, at); });
}

void ListOutStream::put(const Date& date) {
    putToken<Date::kTextLength>([&](wchar* at) { return date.toString(at); });
}

void ListOutStream::put(const Numeric& number) {
    constexpr std::size_t kUsual = 48;
    std::size_t size = 0;
    wchar text[kUsual];
    size = number.toString(text, kUsual);
    putComma();
    if (size <= kUsual)
        sink_.write({text, size});
    else
        sink_.write(number.toString());
    endToken();
}

void ListOutStream::put(wstring_view text) {
    putComma();
    write_string(sink_, text);
    endToken();
}

void ListOutStream::put(const wchar* text, std::uint32_t length) {
    put(terminated(text, length));
}

} // namespace core
