// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/compact_token.h"

#include <core/dates/date.h>
#include <core/numbers/numeric.h>
#include <core/runtime/code_hold.h>
#include <core/streams/text_writer.h>

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace core::detail {

/// Writes the tokens of the compact form, a piece of memory at a time. What the taker of the bytes throws
/// passes through; the writer is not to be used further then.
class CompactWriter {
  public:
    /// Hands bytes to `write`.
    explicit CompactWriter(ByteWriter write) : write_(std::move(write)) {}
    CompactWriter(const CompactWriter&) = delete;
    CompactWriter& operator=(const CompactWriter&) = delete;

    /// Hands over the bytes that are left.
    void finish();

    void putRaw(std::span<const std::byte> bytes);
    void putToken(CompactToken token) { *room(1) = static_cast<std::byte>(token), ++at_; }
    void putBoolean(bool value) { putToken(value ? CompactToken::yes : CompactToken::no); }
    void putWhole(std::int64_t value) {
        const auto bits = static_cast<std::uint64_t>(value);
        putInteger(value < 0, value < 0 ? 0 - bits : bits);
    }
    void putInteger(bool negative, std::uint64_t magnitude);
    void putNumber(const Numeric& number);
    void putReal(double value);
    void putDate(Date date);
    void putText(wstring_view text);
    void putBytes(std::span<const std::byte> bytes);
    void putId(const GUID& id);
    /// Writes what `next` returns, `count` times, each in the lowest `width` bytes.
    template <class Next>
    void putPacked(std::uint64_t count, std::size_t width, Next next);

  private:
    static constexpr std::size_t kPiece = std::size_t{16} * 1024;

    /// Returns where at least `size` bytes can be written, which is far less than a piece.
    std::byte* room(std::size_t size) {
        if (static_cast<std::size_t>(piece_.data() + kPiece - at_) < size)
            finish();
        return at_;
    }
    void putNumbered(CompactToken token, std::uint64_t number);
    static std::byte* storeVarint(std::byte* at, std::uint64_t number) noexcept;

    HeldFunction<ByteWriter> write_;
    std::vector<GUID> ids_;
    std::array<std::byte, kPiece> piece_;
    std::byte* at_ = piece_.data();
};

template <class Next>
void CompactWriter::putPacked(std::uint64_t count, std::size_t width, Next next) {
    putNumbered(CompactToken::packed, count);
    *room(1) = static_cast<std::byte>(width);
    ++at_;
    while (count > 0) {
        std::byte* at = room(kPiece / 2);
        const std::uint64_t group = std::min<std::uint64_t>(count, kPiece / 2 / sizeof(std::uint64_t));
        for (std::uint64_t i = 0; i < group; ++i) {
            store_word(at, next());
            at += width;
        }
        at_ = at;
        count -= group;
    }
}

} // namespace core::detail
