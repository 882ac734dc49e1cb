// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/errors.h>
#include <core/runtime/locale.h>
#include <core/runtime/types.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace core {

inline const Locale kRussian("ru_RU");

/// How many characters `format` reads of `text`, and into what; -1 and an untouched `value` when it fails.
template <class Format, class Value, class... More>
std::ptrdiff_t read(const Format& format, wstring_view text, Value& value, More... more) {
    const Value before = value;
    const wchar* end = nullptr;
    const bool done = format.parse(text, value, &end, more...);
    EXPECT_TRUE(done || (end == text.data() && value == before));
    return done ? end - text.data() : -1;
}

template <class Format>
void expect_refused(std::initializer_list<wstring_view> formats) {
    for (const wstring_view format : formats)
        EXPECT_THROW((void)Format(format), CtorException) << std::string(format.begin(), format.end());
}

} // namespace core
