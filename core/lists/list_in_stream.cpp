// SPDX-License-Identifier: Apache-2.0
#include "core/lists/compact_reader.h"
#include "core/lists/list_run.h"
#include "core/lists/malformed.h"
#include "core/lists/token_read.h"
#include "core/streams/unit_source.h"
#include "core/strings/base64.h"

#include <core/lists/list_in_stream.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <cstdint>

namespace core {

using namespace detail;

namespace {

void require(bool read) {
    if (!read)
        throw_malformed();
}

} // namespace

ListInStream::ListInStream(wistream& in) : in_(&in) {
    const UnitSource source(in);
    buffer_ = source.buffer();
    runs_ = source.runs();
}

UnitSource ListInStream::source() const noexcept {
    return {buffer_, runs_};
}

void ListInStream::skipGap() {
    if (compact_ != nullptr)
        return;
    UnitSource units = source();
    if (commaExpected_) {
        units.skipSpaces();
        require(units.skipIf(u','));
        commaExpected_ = false;
    }
    units.skipSpaces();
}

/// The step of every get: a token in the run at hand, else unit by unit.
template <class InRun, class Read>
void ListInStream::getToken(InRun inRun, Read read) {
    if (!ListRun::read(*this, true, inRun)) {
        skipGap();
        UnitSource units = source();
        require(read(units));
    }
    commaExpected_ = true;
}

void ListInStream::getBeginOfList() {
    if (compact_ != nullptr)
        return compact_->expect(CompactToken::begin);
    if (ListRun::read(*this, true,
                      [](const wchar* at, const wchar* end) { return run_unit(at, end, u'{'); })) {
        commaExpected_ = false;
        return;
    }
    skipGap();
    require(source().skipIf(u'{'));
}

void ListInStream::getEndOfList() {
    if (compact_ != nullptr)
        return compact_->expect(CompactToken::end);
    if (!ListRun::read(*this, false,
                       [](const wchar* at, const wchar* end) { return run_unit(at, end, u'}'); })) {
        UnitSource units = source();
        units.skipSpaces();
        require(units.skipIf(u'}'));
    }
    commaExpected_ = true;
}

bool ListInStream::getComma() {
    if (compact_ != nullptr)
        return compact_->hasMore();
    UnitSource units = source();
    units.skipSpaces();
    if (!units.skipIf(u','))
        return false;
    commaExpected_ = false;
    return true;
}

void ListInStream::skipString() {
    UnitSource units = source();
    units.skip();
    for (int unit = units.take(); unit != UnitSource::kEnd; unit = units.take()) {
        if (unit == u'"' && !units.skipIf(u'"'))
            return;
    }
}

void ListInStream::skipBare() {
    UnitSource units = source();
    for (int unit = units.peek(); unit != u',' && unit != u'}'; unit = units.peek()) {
        if (units.take() == UnitSource::kEnd)
            return;
    }
}

void ListInStream::skipListContent() {
    if (compact_ != nullptr)
        return compact_->skipContent();
    UnitSource units = source();
    std::uint64_t depth = 0; // of lists begun here
    for (;;) {
        const bool ends = commaExpected_ && !getComma();
        units.skipSpaces();
        const int unit = units.peek();
        if (ends || unit == u'}') {
            if (depth == 0)
                return;
            --depth;
            getEndOfList();
        } else if (unit == u'{') {
            ++depth;
            getBeginOfList();
        } else {
            if (unit == u'"')
                skipString();
            // An escape has ended the string too early: its rest counts as a bare token.
            if (unit != u'"' || units.peek() == u'\\')
                skipBare();
            commaExpected_ = true;
        }
    }
}

void ListInStream::get(bool& value) {
    if (compact_ != nullptr) {
        value = compact_->getBoolean();
        return;
    }
    getToken([&](const wchar* at, const wchar* end) { return run_boolean(at, end, value); },
             [&](UnitSource& from) { return read_boolean(from, value); });
}

std::uint64_t ListInStream::getInteger(bool withSign) {
    if (compact_ != nullptr)
        return compact_->getInteger(withSign);
    std::uint64_t value = 0;
    getToken([&](const wchar* at, const wchar* end) { return run_integer(at, end, withSign, value); },
             [&](UnitSource& from) { return read_integer(from, withSign, value); });
    return value;
}

void ListInStream::get(float& value) {
    if (compact_ != nullptr) {
        value = static_cast<float>(compact_->getReal());
        return;
    }
    skipGap();
    require(from_stream(*in_, value));
    commaExpected_ = true;
}

void ListInStream::get(double& value) {
    if (compact_ != nullptr) {
        value = compact_->getReal();
        return;
    }
    getToken([&](const wchar* at, const wchar* end) { return run_double(at, end, value); },
             [&](UnitSource& from) { return read_double(from, value); });
}

void ListInStream::get(GUID& id) {
    if (compact_ != nullptr) {
        id = compact_->getId();
        return;
    }
    skipGap();
    UnitSource units = source();
    require(read_guid(units, id));
    commaExpected_ = true;
}

void ListInStream::get(Numeric& number) {
    if (compact_ != nullptr) {
        number = compact_->getNumber();
        return;
    }
    getToken([&](const wchar* at, const wchar* end) { return run_numeric(at, end, number); },
             [&](UnitSource&) { return number.fromStream(*in_); });
}

void ListInStream::get(Date& date) {
    if (compact_ != nullptr) {
        date = compact_->getDate();
        return;
    }
    getToken([&](const wchar* at, const wchar* end) { return run_date(at, end, date); },
             [&](UnitSource&) { return date.fromStream(*in_); });
}

void ListInStream::get(wstring& text) {
    if (compact_ != nullptr) {
        text = compact_->getText();
        return;
    }
    getToken(
        [&](const wchar* at, const wchar* end) {
            wstring_view read;
            if ((at = run_string(at, end, read)) != nullptr)
                text.assign(read);
            return at;
        },
        [&](UnitSource& from) { return read_string(from, text); });
}

void ListInStream::get(std::vector<std::byte>& bytes) {
    if (compact_ != nullptr) {
        bytes = compact_->getBytes();
        return;
    }
    wstring text;
    get(text);
    auto read = base64_decode(text);
    require(read.has_value());
    bytes = std::move(*read);
}

void ListInStream::get(wchar* buffer, std::uint32_t size) {
    if (compact_ != nullptr) {
        const wstring_view text = compact_->getText();
        require(text.size() < size);
        *std::copy(text.begin(), text.end(), buffer) = u'\0';
        return;
    }
    getToken(
        [&](const wchar* at, const wchar* end) -> const wchar* {
            wstring_view read;
            if ((at = run_string(at, end, read)) == nullptr || read.size() >= size)
                return nullptr;
            *std::copy(read.begin(), read.end(), buffer) = u'\0';
            return at;
        },
        [&](UnitSource& from) { return read_string(from, buffer, size); });
}

void ListInStream::get(wstring& text, const wchar* expected) {
    get(text);
    require(expected == nullptr || compare(text, wstring_view(expected)) == 0);
}

void ListInStream::get(wstring& text, const wstring& expected) {
    get(text);
    require(compare(text, expected) == 0);
}

} // namespace core
