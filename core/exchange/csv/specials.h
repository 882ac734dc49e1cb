// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace core {

/// The bytes of a text that mean something to CSV: the delimiter, the quote, CR and LF, one after the other.
/// 64 bytes are looked at together, and a set of bits keeps what was found in them.
class Specials {
  public:
    /// How many bytes behind the text are read, whatever they hold.
    static constexpr std::size_t kBehind = 64;

    explicit Specials(char delimiter) noexcept : delimiter_(delimiter) {}

    /// Begins with the text from `begin` to `end`.
    void start(const char* begin, const char* end) noexcept {
        base_ = begin;
        end_ = end;
        found_ = base_ < end_ ? look() : 0;
    }
    /// Returns the next of the bytes; the end of the text when there are no more.
    [[nodiscard]] const char* next() noexcept {
        while (found_ == 0) {
            base_ += 64;
            if (base_ >= end_)
                return end_;
            found_ = look();
        }
        const char* const at = base_ + std::countr_zero(found_);
        found_ &= found_ - 1;
        return at < end_ ? at : end_;
    }

  private:
    [[nodiscard]] std::uint64_t look() const noexcept {
        std::uint64_t found = 0;
#ifdef __SSE2__
        for (int part = 0; part < 4; ++part) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base_) + part);
            const auto is = [&](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
            const __m128i any =
                _mm_or_si128(_mm_or_si128(is(delimiter_), is('"')), _mm_or_si128(is('\n'), is('\r')));
            found |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(any))) << (16 * part);
        }
#else
        for (unsigned i = 0; i < 64; ++i) {
            const char c = base_[i];
            const bool special = c == delimiter_ || c == '"' || c == '\n' || c == '\r';
            found |= static_cast<std::uint64_t>(special ? 1 : 0) << i;
        }
#endif
        return found;
    }

    char delimiter_;
    const char* base_ = nullptr;
    const char* end_ = nullptr;
    std::uint64_t found_ = 0; // in the 64 bytes from base_ on
};

} // namespace core
