// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/compact_token.h"

#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/code_hold.h>
#include <core/streams/text_reader.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace core::detail {

/// Reads the tokens of the compact form, from memory in place or a piece at a time. A token other than the
/// one that is asked for, or the end in the middle of one, throws ListStreamException with the offset; the
/// reader is not to be used further then. No count is believed before its bytes are there.
class CompactReader {
  public:
    /// What peek() returns at the end.
    static constexpr int kNone = -1;

    /// Reads the bytes that `read` brings.
    explicit CompactReader(ByteReader read);
    /// Reads borrowed bytes.
    explicit CompactReader(std::span<const std::byte> bytes) noexcept
        : begin_(bytes.data()), at_(bytes.data()), end_(bytes.data() + bytes.size()) {}
    CompactReader(const CompactReader&) = delete;
    CompactReader& operator=(const CompactReader&) = delete;

    /// Returns the first byte of the next token, or kNone.
    [[nodiscard]] int peek() { return at_ != end_ || fill() ? std::to_integer<int>(*at_) : kNone; }
    [[nodiscard]] bool isNext(CompactToken token) { return peek() == static_cast<int>(token); }
    [[nodiscard]] bool skipIf(CompactToken token);
    void expect(CompactToken token);
    /// Returns whether the list goes on.
    [[nodiscard]] bool hasMore() { return peek() != kNone && !isNext(CompactToken::end); }
    /// Skips what is left of a list up to its end, which stays; takes any depth.
    void skipContent();
    /// Throws if anything follows.
    void expectNothing();
    [[noreturn]] void fail() const;

    [[nodiscard]] std::byte take() { return *need(1); }
    [[nodiscard]] bool getBoolean();
    /// Returns the low 64 bits of an integer, for signed types of a negative one, too.
    [[nodiscard]] std::uint64_t getInteger(bool withSign);
    /// A whole number: `bits`, or -1 - `bits`.
    struct Whole {
        bool negative;
        std::uint64_t bits;
        [[nodiscard]] bool isSmall() const noexcept { return bits >> 63 == 0; }
        [[nodiscard]] std::int64_t small() const noexcept {
            return static_cast<std::int64_t>(negative ? ~bits : bits);
        }
        [[nodiscard]] Numeric number() const;
    };
    /// Takes the whole number that comes next, if one does.
    [[nodiscard]] std::optional<Whole> takeWhole();
    [[nodiscard]] Numeric getNumber();
    [[nodiscard]] double getReal();
    [[nodiscard]] Date getDate();
    /// Returns a string, borrowed until the next call of any function.
    [[nodiscard]] wstring_view getText();
    [[nodiscard]] std::vector<std::byte> getBytes();
    [[nodiscard]] GUID getId();

    struct Packed {
        std::uint64_t count;
        std::size_t width;
    };
    [[nodiscard]] Packed beginPacked();
    /// Calls `take` with each of the numbers.
    template <class Take>
    void getPacked(const Packed& packed, Take take);
    /// Returns how much room to make for `count` things of at least `width` bytes: not more than there are.
    [[nodiscard]] std::size_t believed(std::uint64_t count, std::size_t width) const noexcept;

  private:
    static constexpr std::size_t kPiece = std::size_t{16} * 1024;
    static constexpr std::size_t kShortText = 256;

    bool fill();
    const std::byte* need(std::size_t count) {
        if (static_cast<std::size_t>(end_ - at_) < count)
            gather(count);
        return std::exchange(at_, at_ + count);
    }
    void gather(std::size_t count);
    [[nodiscard]] std::uint64_t takeVarint();
    [[nodiscard]] std::uint64_t takeCount(std::size_t width);
    void skipToken();
    void skipBytes(std::uint64_t count);
    template <class Take>
    void takeBytes(std::uint64_t count, std::size_t unit, Take take);

    HeldFunction<ByteReader> read_;
    std::unique_ptr<std::byte[]> piece_;
    const std::byte* begin_;
    const std::byte* at_;
    const std::byte* end_;
    std::uint64_t passed_ = 0; // bytes before begin_
    std::vector<GUID> ids_;
    std::array<wchar, kShortText> shortText_;
    wstring longText_;
};

/// Calls `take` with runs of whole units until `count` bytes, a multiple of a unit, have been read.
template <class Take>
void CompactReader::takeBytes(std::uint64_t count, std::size_t unit, Take take) {
    while (count != 0) {
        if (static_cast<std::size_t>(end_ - at_) < unit)
            gather(unit);
        const auto here = static_cast<std::size_t>(end_ - at_);
        const auto run = static_cast<std::size_t>(std::min<std::uint64_t>(here - here % unit, count));
        take(std::span(at_, run));
        at_ += run;
        count -= run;
    }
}

template <class Take>
void CompactReader::getPacked(const Packed& packed, Take take) {
    const std::size_t width = packed.width;
    const std::uint64_t mask = ~std::uint64_t{0} >> (64 - 8 * width);
    takeBytes(packed.count * width, width, [&](std::span<const std::byte> run) {
        const std::byte* at = run.data();
        const std::byte* const end = at + run.size();
        // Whole words as long as they lie inside; the last ones byte by byte.
        for (; end - at >= static_cast<std::ptrdiff_t>(sizeof(std::uint64_t)); at += width)
            take(load_word(at) & mask);
        for (; at != end; at += width) {
            std::uint64_t number = 0;
            for (std::size_t i = width; i-- > 0;)
                number = number << 8 | std::to_integer<std::uint64_t>(at[i]);
            take(number);
        }
    });
}

} // namespace core::detail
