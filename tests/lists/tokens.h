// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/lists/streams.h"

#include <core/lists/token.h>

#include <optional>
#include <utility>

namespace core::test {

/// The token of a value, which must be the same on every kind of stream.
template <class... Args>
wstring written(const Args&... args) {
    MemoryOutStream out;
    to_stream(out, args...);
    std::basic_ostringstream<wchar> plain;
    to_stream(plain, args...);
    const wstring text = out.take();
    EXPECT_EQ(text, plain.str());
    return text;
}

/// Reads a `T` from every kind of stream; none when that fails. `rest` is what must be left.
template <class T>
std::optional<T> read(const wstring& text, const wstring& rest) {
    std::optional<T> result;
    bool isFirst = true;
    on_every_stream(text, [&](wistream& in) {
        T value{};
        const auto done = from_stream(in, value) ? std::optional<T>(value) : std::nullopt;
        EXPECT_TRUE(std::exchange(isFirst, false) || done == result) << "streams differ";
        result = done;
        EXPECT_EQ(rest_of(in), rest) << "after reading " << ::testing::PrintToString(text);
    });
    return result;
}

} // namespace core::test
