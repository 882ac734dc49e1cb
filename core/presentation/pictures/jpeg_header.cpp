// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

namespace core::detail {
namespace {

constexpr bool begins_frame(std::uint8_t marker) noexcept {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// A marker that no segment follows.
constexpr bool stands_alone(std::uint8_t marker) noexcept {
    return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

void read_frame(PictureSource& source, std::uint64_t offset, std::uint8_t marker, PictureInfo& info) {
    const std::uint8_t* const frame = source.at(offset, 8);
    if (frame == nullptr)
        return;
    // A block of 64 pixels takes one bit and more, except in arithmetic coding.
    constexpr std::uint64_t kHuffman = 512;
    constexpr std::uint64_t kArithmetic = 65536;
    set_size(info, be16(frame + 5), be16(frame + 3), marker >= 0xC9 ? kArithmetic : kHuffman, source.size());
}

void read_density(PictureSource& source, std::uint64_t offset, PictureInfo& info) {
    if (!source.has(offset + 2, std::string_view("JFIF\0", 5)))
        return;
    const std::uint8_t* const density = source.at(offset + 9, 5);
    if (density == nullptr || (density[0] != 1 && density[0] != 2))
        return;
    const double scale = density[0] == 2 ? kCentimetresPerInch : 1;
    set_resolution(info, be16(density + 1) * scale, be16(density + 3) * scale);
}

} // namespace

bool read_jpeg(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, "\xFF\xD8\xFF"))
        return false;
    info.format = PictureFormat::jpeg;
    std::uint64_t offset = 2;
    while (const std::uint8_t* const head = source.at(offset, 2)) {
        if (head[0] != 0xFF)
            return true;
        const std::uint8_t marker = head[1];
        if (marker == 0xFF) { // filling
            ++offset;
            continue;
        }
        offset += 2;
        if (stands_alone(marker))
            continue;
        if (marker == 0xD9 || marker == 0xDA) // the end, or pixels without a frame
            return true;
        if (begins_frame(marker)) {
            read_frame(source, offset, marker, info);
            return true;
        }
        const std::uint8_t* const length = source.at(offset, 2);
        if (length == nullptr || be16(length) < 2)
            return true;
        const std::uint32_t size = be16(length);
        if (marker == 0xE0 && size >= 16)
            read_density(source, offset, info);
        offset += size;
    }
    return true;
}

} // namespace core::detail
