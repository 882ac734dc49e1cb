// SPDX-License-Identifier: Apache-2.0
#include <core/streams/memory_stream.h>

namespace core::detail {

/// Comes here only when a piece is full, so that every piece except the last is used to its end.
MemoryOutBuffer::int_type MemoryOutBuffer::overflow(int_type unit) {
    more_.push_back(std::make_unique_for_overwrite<wchar[]>(kPiece));
    setp(more_.back().get(), more_.back().get() + kPiece);
    if (!traits_type::eq_int_type(unit, traits_type::eof())) {
        *writeBegin() = traits_type::to_char_type(unit);
        wroteTo(writeBegin() + 1);
    }
    return traits_type::not_eof(unit);
}

wstring MemoryOutBuffer::take() {
    const wchar* const begin = more_.empty() ? first_.data() : more_.back().get();
    const auto last = static_cast<std::size_t>(writeBegin() - begin);
    wstring text;
    if (!more_.empty()) {
        text.reserve(first_.size() + (more_.size() - 1) * kPiece + last);
        text.append(first_.data(), first_.size());
        for (std::size_t i = 0; i + 1 < more_.size(); ++i)
            text.append(more_[i].get(), kPiece);
    }
    text.append(begin, last);
    more_.clear();
    reset();
    return text;
}

} // namespace core::detail
