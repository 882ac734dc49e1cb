// SPDX-License-Identifier: Apache-2.0
#include "core/lists/compact_writer.h"
#include "core/lists/malformed.h"
#include "core/lists/token_write.h"
#include "core/lists/unit_scan.h"
#include "core/strings/base64.h"

#include <core/lists/list_out_stream.h>

#include <algorithm>
#include <cmath>

namespace core {

using namespace detail;

ListOutStream::ListOutStream(wostream& out) : out_(&out), runs_(dynamic_cast<TextBuffer*>(out.rdbuf())) {}

UnitSink ListOutStream::sink() const noexcept {
    return {*out_, runs_};
}

void ListOutStream::putComma() {
    if (commaPending_)
        sink().write(u",");
    commaPending_ = false;
}

void ListOutStream::putBeginOfList() {
    if (compact_ != nullptr)
        return compact_->putToken(CompactToken::begin);
    sink().format<3>([this](wchar* at) {
        if (commaPending_)
            *at++ = u',';
        if (!atStart_)
            *at++ = u'\n';
        *at++ = u'{';
        return at;
    });
    commaPending_ = false;
    justClosed_ = false;
    atStart_ = false;
}

void ListOutStream::putEndOfList() {
    if (compact_ != nullptr)
        return compact_->putToken(CompactToken::end);
    sink().format<2>([this](wchar* at) {
        if (justClosed_)
            *at++ = u'\n';
        *at++ = u'}';
        return at;
    });
    justClosed_ = true;
    commaPending_ = true;
    atStart_ = false;
}

/// A token of up to `limit` units and the comma before it in one piece.
template <std::size_t limit, class Format>
void ListOutStream::putToken(Format format) {
    sink().format<limit + 1>([&](wchar* at) {
        if (commaPending_)
            *at++ = u',';
        return format(at);
    });
    endToken();
}

void ListOutStream::putBoolean(bool value) {
    if (compact_ != nullptr)
        return compact_->putBoolean(value);
    putInteger(false, value ? 1 : 0);
}

void ListOutStream::putInteger(bool negative, std::uint64_t magnitude) {
    if (compact_ != nullptr)
        return compact_->putInteger(negative, magnitude);
    putToken<kIntegerUnits>([&](wchar* at) { return format_integer(at, negative, magnitude); });
}

void ListOutStream::putDouble(double value) {
    if (compact_ != nullptr)
        return compact_->putReal(value);
    if (!std::isfinite(value))
        out_->setstate(std::ios_base::failbit);
    else
        putToken<kDoubleUnits>([&](wchar* at) { return format_double(at, value); });
}

void ListOutStream::put(const GUID& id) {
    if (compact_ != nullptr)
        return compact_->putId(id);
    putToken<kGuidTextLength>([&](wchar* at) { return to_string(id, at); });
}

void ListOutStream::put(const Date& date) {
    if (compact_ != nullptr)
        return compact_->putDate(date);
    putToken<Date::kTextLength>([&](wchar* at) { return format_date(at, date); });
}

void ListOutStream::put(const Numeric& number) {
    if (compact_ != nullptr)
        return compact_->putNumber(number);
    const bool written = sink().formatInPlace(kNumericUnits + 1, [&](wchar* at) {
        if (commaPending_)
            *at++ = u',';
        const std::size_t size = number.toString(at, kNumericUnits);
        return size <= kNumericUnits ? at + size : nullptr;
    });
    if (!written) {
        putComma();
        sink().write(number.toString());
    }
    endToken();
}

void ListOutStream::put(wstring_view text) {
    if (compact_ != nullptr)
        return compact_->putText(text);
    const bool written = sink().formatInPlace(text.size() + 3, [&](wchar* at) -> wchar* {
        if (commaPending_)
            *at++ = u',';
        *at++ = u'"';
        if ((at = copy_plain(at, text)) != nullptr)
            *at++ = u'"';
        return at;
    });
    if (!written) {
        putComma();
        UnitSink to = sink();
        write_string(to, text);
    }
    endToken();
}

void ListOutStream::putBytes(std::span<const std::byte> bytes) {
    if (compact_ != nullptr)
        return compact_->putBytes(bytes);
    put(base64_encode(bytes));
}

void ListOutStream::putBare(wstring_view token) {
    if (compact_ != nullptr)
        throw_malformed();
    putComma();
    sink().write(token);
    endToken();
}

void ListOutStream::put(const wchar* text, std::uint32_t length) {
    put(terminated(text, length));
}

} // namespace core
