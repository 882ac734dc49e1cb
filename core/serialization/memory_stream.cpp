// SPDX-License-Identifier: Apache-2.0
#include <core/serialization/memory_stream.h>

#include <algorithm>
#include <utility>

namespace core::detail {

void MemoryOutBuffer::grow(std::size_t more) {
    constexpr std::size_t kFirst = 128;
    const std::size_t written = used();
    text_.resize(std::max({kFirst, 2 * text_.size(), written + more}));
    setp(text_.data() + written, text_.data() + text_.size());
}

MemoryOutBuffer::int_type MemoryOutBuffer::overflow(int_type unit) {
    grow(1);
    if (!traits_type::eq_int_type(unit, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(unit);
        wroteTo(pptr() + 1);
    }
    return traits_type::not_eof(unit);
}

std::streamsize MemoryOutBuffer::xsputn(const wchar* units, std::streamsize count) {
    const auto size = static_cast<std::size_t>(count);
    if (!hasRoom(size))
        grow(size);
    wroteTo(std::copy_n(units, size, pptr()));
    return count;
}

wstring MemoryOutBuffer::take() {
    text_.resize(used());
    setp(nullptr, nullptr);
    return std::exchange(text_, {});
}

} // namespace core::detail
