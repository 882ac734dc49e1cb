// SPDX-License-Identifier: Apache-2.0
#include "core/lists/compact_writer.h"

#include <bit>
#include <string>

namespace core::detail {

void CompactWriter::finish() {
    const auto size = static_cast<std::size_t>(at_ - piece_.data());
    at_ = piece_.data();
    if (size != 0)
        write_(std::span(piece_).first(size));
}

std::byte* CompactWriter::storeVarint(std::byte* at, std::uint64_t number) noexcept {
    for (; number > 0x7F; number >>= 7)
        *at++ = static_cast<std::byte>(number | 0x80);
    *at++ = static_cast<std::byte>(number);
    return at;
}

void CompactWriter::putNumbered(CompactToken token, std::uint64_t number) {
    std::byte* const at = room(1 + kVarintBytes);
    *at = static_cast<std::byte>(token);
    at_ = storeVarint(at + 1, number);
}

void CompactWriter::putRaw(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        std::byte* const at = room(1);
        const std::size_t count =
            std::min(bytes.size(), static_cast<std::size_t>(piece_.data() + kPiece - at));
        at_ = std::copy_n(bytes.begin(), count, at);
        bytes = bytes.subspan(count);
    }
}

void CompactWriter::putInteger(bool negative, std::uint64_t magnitude) {
    if (negative)
        putNumbered(CompactToken::negative, magnitude - 1);
    else if (magnitude < static_cast<std::uint64_t>(CompactToken::shortString))
        putToken(static_cast<CompactToken>(magnitude));
    else
        putNumbered(CompactToken::positive, magnitude);
}

void CompactWriter::putNumber(const Numeric& number) {
    if (const auto whole = number.scaled(0))
        return putWhole(*whole);
    std::int64_t length = 0;
    std::int64_t precision = 0;
    number.lengthAndPrecision(length, precision);
    if (precision > 0 && precision <= Numeric::kMaxScale) {
        if (const auto scaled = number.scaled(static_cast<std::uint32_t>(precision))) {
            std::byte* const at = room(2 + kVarintBytes);
            at[0] = static_cast<std::byte>(CompactToken::decimal);
            at[1] = static_cast<std::byte>(precision);
            at_ = storeVarint(at + 2, zigzag(*scaled));
            return;
        }
    }
    constexpr std::size_t kAround = 3; // the sign, the point and the zero in front of it
    std::string text(static_cast<std::size_t>(length) + kAround, '\0');
    text.resize(number.toString(text.data(), text.size()));
    putNumbered(CompactToken::digits, text.size());
    putRaw(std::as_bytes(std::span(text)));
}

void CompactWriter::putReal(double value) {
    std::byte* const at = room(1 + sizeof value);
    *at = static_cast<std::byte>(CompactToken::real);
    at_ = store_word(at + 1, std::bit_cast<std::uint64_t>(value));
}

void CompactWriter::putDate(Date date) {
    constexpr auto kDay = static_cast<std::uint64_t>(kTicksPerDay);
    constexpr auto kSecond = static_cast<std::uint64_t>(kTicksPerSecond);
    const std::uint64_t ticks = date.ticks();
    if (ticks % kSecond != 0)
        putNumbered(CompactToken::ticks, ticks);
    else if (ticks % kDay != 0)
        putNumbered(CompactToken::seconds, ticks / kSecond);
    else
        putNumbered(CompactToken::days, ticks / kDay);
}

void CompactWriter::putText(wstring_view text) {
    constexpr std::size_t kShort =
        static_cast<std::size_t>(CompactToken::end) - static_cast<std::size_t>(CompactToken::shortString);
    unsigned all = 0; // the bits of all units
    if (text.size() < kShort) {
        std::byte* const at = room(1 + kShort);
        for (std::size_t i = 0; i < text.size(); ++i) {
            all |= text[i];
            at[1 + i] = static_cast<std::byte>(text[i]);
        }
        if (all <= 0xFF) {
            *at = static_cast<std::byte>(static_cast<std::size_t>(CompactToken::shortString) + text.size());
            at_ = at + 1 + text.size();
            return;
        }
    } else {
        for (const wchar unit : text)
            all |= unit;
    }
    const bool narrow = all <= 0xFF;
    putNumbered(narrow ? CompactToken::narrowString : CompactToken::wideString, text.size());
    while (!text.empty()) {
        std::byte* const at = room(kPiece / 2);
        const std::size_t count = std::min(text.size(), kPiece / 4);
        if (narrow) {
            for (std::size_t i = 0; i < count; ++i)
                at[i] = static_cast<std::byte>(text[i]);
        } else {
            for (std::size_t i = 0; i < count; ++i)
                store_unit(at + 2 * i, text[i]);
        }
        at_ = at + (narrow ? count : 2 * count);
        text.remove_prefix(count);
    }
}

void CompactWriter::putBytes(std::span<const std::byte> bytes) {
    putNumbered(CompactToken::bytes, bytes.size());
    putRaw(bytes);
}

void CompactWriter::putId(const GUID& id) {
    const auto known = std::find(ids_.begin(), ids_.end(), id);
    if (known != ids_.end()) {
        std::byte* const at = room(2);
        at[0] = static_cast<std::byte>(CompactToken::knownId);
        at[1] = static_cast<std::byte>(known - ids_.begin());
        at_ = at + 2;
        return;
    }
    if (ids_.size() < kKnownIds)
        ids_.push_back(id);
    std::byte* at = room(1 + kIdBytes);
    *at++ = static_cast<std::byte>(CompactToken::newId);
    at_ = store_id(at, id);
}

} // namespace core::detail
