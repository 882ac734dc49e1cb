// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_format.h"

#include "core/runtime/hex_digit.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <cstring>

namespace core {
namespace {

std::uint64_t decode_hex(const std::byte* from, std::size_t digits) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        const int digit = hex_digit(static_cast<wchar>(from[i]));
        if (digit < 0)
            throw HexConvExc();
        value = value << 4 | static_cast<unsigned>(digit);
    }
    return value;
}

bool is(const std::byte* from, char a, char b) noexcept {
    return from[0] == static_cast<std::byte>(a) && from[1] == static_cast<std::byte>(b);
}

} // namespace

BlockHeader decode_block_header(const std::byte* from, const StorageLayout& layout, std::uint64_t address,
                                bool first) {
    const std::size_t field = layout.digits() + 1;
    const std::byte* const numbers = from + 2;
    // What stands between the numbers is written as a blank and not looked at.
    if (!is(from, '\r', '\n') || !is(numbers + 3 * field, '\r', '\n'))
        throw ChainInFileExc(address);
    return {first ? decode_hex(numbers, layout.digits()) : 0, decode_hex(numbers + field, layout.digits()),
            decode_hex(numbers + 2 * field, layout.digits())};
}

void encode_number(std::byte* to, const StorageLayout& layout, std::uint64_t number) noexcept {
    for (std::size_t i = layout.digits(); i-- > 0; number >>= 4)
        to[i] = static_cast<std::byte>("0123456789abcdef"[number & 0xF]);
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

std::vector<BlockRange> split_off(std::vector<BlockRange>& ranges, std::uint64_t count, std::uint64_t step) {
    std::vector<BlockRange> first;
    std::size_t whole = 0;
    for (; count != 0 && ranges[whole].count <= count; ++whole) {
        first.push_back(ranges[whole]);
        count -= ranges[whole].count;
    }
    ranges.erase(ranges.begin(), ranges.begin() + static_cast<std::ptrdiff_t>(whole));
    if (count != 0) {
        first.push_back({ranges.front().address, count});
        ranges.front().address += count * step;
        ranges.front().count -= count;
    }
    return first;
}

void encode_blocks(std::byte* to, const StorageLayout& layout, BlockRange range,
                   std::span<const std::byte> content, std::uint64_t chainSize, std::uint64_t next) noexcept {
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    for (std::uint64_t i = 0; i < range.count; ++i) {
        const bool last = i + 1 == range.count;
        const std::uint64_t following = last ? next : range.address + (i + 1) * step;
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
