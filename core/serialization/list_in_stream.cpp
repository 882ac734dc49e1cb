// SPDX-License-Identifier: Apache-2.0
#include "core/serialization/token_read.h"

#include <core/runtime/error.h>
#include <core/serialization/list_in_stream.h>
#include <core/strings/compare.h>

#include <cstdint>

namespace core {

using namespace detail;

void ListInStream::fail() {
    throw_error<ListStreamException>("IDS_LISTSTREAMERROR");
}

void ListInStream::skipGap() {
    if (commaExpected_) {
        source_.skipSpaces();
        require(source_.skipIf(u','));
        commaExpected_ = false;
    }
    source_.skipSpaces();
}

void ListInStream::getBeginOfList() {
    skipGap();
    require(source_.skipIf(u'{'));
}

void ListInStream::getEndOfList() {
    source_.skipSpaces();
    require(source_.skipIf(u'}'));
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
            else
                while (source_.peek() != u',' && source_.peek() != u'}' &&
                       source_.take() != UnitSource::kEnd) {
                }
            commaExpected_ = true;
        }
    }
}

void ListInStream::get(bool& value) {
    skipGap();
    require(read_boolean(source_, value));
    commaExpected_ = true;
}

std::uint64_t ListInStream::getInteger(bool withSign) {
    skipGap();
    std::uint64_t value = 0;
    require(read_integer(source_, withSign, value));
    commaExpected_ = true;
    return value;
}

void ListInStream::get(float& value) {
    skipGap();
    require(from_stream(in_, value));
    commaExpected_ = true;
}

void ListInStream::get(double& value) {
    skipGap();
    require(read_double(source_, value));
    commaExpected_ = true;
}

void ListInStream::get(GUID& id) {
    skipGap();
    require(read_guid(source_, id));
    commaExpected_ = true;
}

void ListInStream::get(Numeric& number) {
    skipGap();
    require(number.fromStream(in_));
    commaExpected_ = true;
}

void ListInStream::get(Date& date) {
    skipGap();
    require(date.fromStream(in_));
    commaExpected_ = true;
}

void ListInStream::get(wstring& text) {
    skipGap();
    require(read_string(source_, text));
    commaExpected_ = true;
}

void ListInStream::get(wchar* buffer, std::uint32_t size) {
    skipGap();
    require(read_string(source_, buffer, size));
    commaExpected_ = true;
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
