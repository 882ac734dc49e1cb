// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_format.h"

#include "core/storage/little_endian.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <cstring>

namespace core {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101;
constexpr std::uint64_t kTops = 0x80 * kOnes;

/// Eight hexadecimal digits at once, a byte each in one word.
std::uint64_t eight_digits(const std::byte* from) {
    const std::uint64_t text = load_number(from, 8);
    // Adding to bytes below 128 never carries into the next one: the top bit tells
    // which are at least a limit.
    const auto atLeast = [](std::uint64_t bytes, unsigned limit) {
        return (bytes + (0x80 - limit) * kOnes) & kTops;
    };
    if ((text & kTops) != 0)
        throw HexConvExc();
    const std::uint64_t lower = text | 0x20 * kOnes;
    const std::uint64_t digits = atLeast(text, '0') & ~atLeast(text, '9' + 1);
    const std::uint64_t letters = atLeast(lower, 'a') & ~atLeast(lower, 'f' + 1);
    if ((digits | letters) != kTops)
        throw HexConvExc();
    std::uint64_t value = (text & 0x0F * kOnes) + (letters >> 7) * 9;
    // The first digit is the highest: join neighbours, then pairs, then fours.
    value = (value << 4 | value >> 8) & 0x00FF00FF00FF00FF;
    value = (value << 8 | value >> 16) & 0x0000FFFF0000FFFF;
    return (value << 16 | value >> 32) & 0xFFFFFFFF;
}

std::uint64_t decode_hex(const std::byte* from, std::size_t digits) {
    const std::uint64_t high = eight_digits(from);
    return digits == 8 ? high : high << 32 | eight_digits(from + 8);
}

void encode_eight(std::byte* to, std::uint64_t value) noexcept {
    // The same steps backwards.
    value = (value & 0xFFFF) << 32 | (value & 0xFFFF0000) >> 16;
    value = (value & 0x000000FF000000FF) << 16 | (value & 0x0000FF000000FF00) >> 8;
    value = (value & 0x000F000F000F000F) << 8 | (value & 0x00F000F000F000F0) >> 4;
    const std::uint64_t letters = (value + 6 * kOnes) >> 4 & kOnes;
    store_number(to, value + '0' * kOnes + letters * ('a' - '0' - 10), 8);
}

bool is(const std::byte* from, char a, char b) noexcept {
    return from[0] == static_cast<std::byte>(a) && from[1] == static_cast<std::byte>(b);
}

} // namespace

BlockHeader decode_block_header(const std::byte* from, const StorageLayout& layout, std::uint64_t address,
                                bool first) {
    const std::size_t field = layout.digits() + 1;
    const std::byte* const numbers = from + 2;
    constexpr auto kBlank = static_cast<std::byte>(' ');
    const bool framed = is(from, '\r', '\n') && is(numbers + 3 * field, '\r', '\n') &&
                        numbers[field - 1] == kBlank && numbers[2 * field - 1] == kBlank &&
                        numbers[3 * field - 1] == kBlank;
    if (!framed)
        throw ChainInFileExc(address);
    return {first ? decode_hex(numbers, layout.digits()) : 0, decode_hex(numbers + field, layout.digits()),
            decode_hex(numbers + 2 * field, layout.digits())};
}

void encode_number(std::byte* to, const StorageLayout& layout, std::uint64_t number) noexcept {
    if (layout.digits() == 16) {
        encode_eight(to, number >> 32);
        to += 8;
    }
    encode_eight(to, number & 0xFFFFFFFF);
}

void encode_block_header(std::byte* to, const StorageLayout& layout, const BlockHeader& header) noexcept {
    const auto put = [&to](char c) { *to++ = static_cast<std::byte>(c); };
    put('\r');
    put('\n');
    for (const std::uint64_t number : {header.chainSize, header.size, header.next}) {
        encode_number(to, layout, number);
        to += layout.digits();
        put(' ');
    }
    put('\r');
    put('\n');
}

void encode_blocks(std::byte* to, const StorageLayout& layout, BlockRange place,
                   std::span<const std::byte> content, std::uint64_t chainSize, std::uint64_t next) noexcept {
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    for (std::uint64_t i = 0; i < place.count; ++i) {
        const bool last = i + 1 == place.count;
        const std::uint64_t following = last ? next : place.address + (i + 1) * step;
        encode_block_header(to, layout, {i == 0 ? chainSize : 0, kStorageBlockSize, following});
        to += layout.blockHeaderSize();
        const std::size_t part = std::min(content.size(), kStorageBlockSize);
        if (part != 0)
            std::memcpy(to, content.data(), part);
        std::memset(to + part, 0, kStorageBlockSize - part);
        content = content.subspan(part);
        to += kStorageBlockSize;
    }
}

} // namespace core
