// SPDX-License-Identifier: Apache-2.0
#include "core/lists/list_run.h"
#include "core/lists/malformed.h"
#include "core/lists/token_read.h"

#include <core/lists/list_in_stream.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <cstdint>

namespace core {

using namespace detail;

void ListInStream::fail() {
    throw_malformed();
}

void ListInStream::skipGap() {
    if (commaExpected_) {
        source_.skipSpaces();
        require(source_.skipIf(u','));
        commaExpected_ = false;
    }
    source_.skipSpaces();
}

/// The step of every get: a token in the run at hand, else unit by unit.
template <class InRun, class Read>
void ListInStream::getToken(InRun inRun, Read read) {
    if (!ListRun::read(*this, true, inRun)) {
        skipGap();
        require(read());
    }
    commaExpected_ = true;
}

void ListInStream::getBeginOfList() {
    if (ListRun::read(*this, true,
                      [](const wchar* at, const wchar* end) { return run_unit(at, end, u'{'); })) {
        commaExpected_ = false;
        return;
    }
    skipGap();
    require(source_.skipIf(u'{'));
}

void ListInStream::getEndOfList() {
    if (!ListRun::read(*this, false,
                       [](const wchar* at, const wchar* end) { return run_unit(at, end, u'}'); })) {
        source_.skipSpaces();
        require(source_.skipIf(u'}'));
    }
    commaExpected_ = true;
}

bool ListInStream::getComma() {
    source_.skipSpaces();
    if (!source_.skipIf(u','))
        return false;
    commaExpected_ = false;
    return true;
}

void ListInStream::skipString() {
    source_.skip();
    for (int unit = source_.take(); unit != UnitSource::kEnd; unit = source_.take()) {
        if (unit == u'"' && !source_.skipIf(u'"'))
            return;
    }
}

void ListInStream::skipBare() {
    for (int unit = source_.peek(); unit != u',' && unit != u'}'; unit = source_.peek()) {
        if (source_.take() == UnitSource::kEnd)
            return;
    }
}

void ListInStream::skipListContent() {
    std::uint64_t depth = 0; // of lists begun here
    for (;;) {
        const bool ends = commaExpected_ && !getComma();
        source_.skipSpaces();
        const int unit = source_.peek();
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
            if (unit != u'"' || source_.peek() == u'\\')
                skipBare();
            commaExpected_ = true;
        }
    }
}

void ListInStream::get(bool& value) {
    getToken([&](const wchar* at, const wchar* end) { return run_boolean(at, end, value); },
             [&] { return read_boolean(source_, value); });
}

std::uint64_t ListInStream::getInteger(bool withSign) {
    std::uint64_t value = 0;
    getToken([&](const wchar* at, const wchar* end) { return run_integer(at, end, withSign, value); },
             [&] { return read_integer(source_, withSign, value); });
    return value;
}

void ListInStream::get(float& value) {
    skipGap();
    require(from_stream(in_, value));
    commaExpected_ = true;
}

void ListInStream::get(double& value) {
    getToken([&](const wchar* at, const wchar* end) { return run_double(at, end, value); },
             [&] { return read_double(source_, value); });
}

void ListInStream::get(GUID& id) {
    skipGap();
    require(read_guid(source_, id));
    commaExpected_ = true;
}

void ListInStream::get(Numeric& number) {
    getToken([&](const wchar* at, const wchar* end) { return run_numeric(at, end, number); },
             [&] { return number.fromStream(in_); });
}

void ListInStream::get(Date& date) {
    getToken([&](const wchar* at, const wchar* end) { return run_date(at, end, date); },
             [&] { return date.fromStream(in_); });
}

void ListInStream::get(wstring& text) {
    getToken(
        [&](const wchar* at, const wchar* end) {
            wstring_view read;
            if ((at = run_string(at, end, read)) != nullptr)
                text.assign(read);
            return at;
        },
        [&] { return read_string(source_, text); });
}

void ListInStream::get(wchar* buffer, std::uint32_t size) {
    getToken(
        [&](const wchar* at, const wchar* end) -> const wchar* {
            wstring_view read;
            if ((at = run_string(at, end, read)) == nullptr || read.size() >= size)
                return nullptr;
            *std::copy(read.begin(), read.end(), buffer) = u'\0';
            return at;
        },
        [&] { return read_string(source_, buffer, size); });
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
