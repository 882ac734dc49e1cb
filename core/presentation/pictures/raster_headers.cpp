// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

#include <cstdlib>

namespace core::detail {
namespace {

constexpr std::string_view kPngSignature("\x89PNG\r\n\x1A\n", 8);

/// Samples of a pixel by the colour type of PNG; 0 for none.
constexpr std::uint32_t samples_of(std::uint8_t colorType) noexcept {
    constexpr std::uint32_t kSamples[] = {1, 0, 3, 1, 2, 0, 4};
    return colorType < std::size(kSamples) ? kSamples[colorType] : 0;
}

/// Looks for the chunk with the resolution, which stands in front of the pixels.
void read_png_resolution(PictureSource& source, PictureInfo& info) {
    constexpr std::uint64_t kFrame = 12; // length, type and checksum of a chunk
    for (std::uint64_t offset = 33; const std::uint8_t* const head = source.at(offset, 8);) {
        const std::uint32_t length = be32(head);
        const std::string_view type(reinterpret_cast<const char*>(head) + 4, 4);
        if (type == "IDAT" || type == "IEND")
            return;
        if (type == "pHYs") {
            const std::uint8_t* const body = length == 9 ? source.at(offset + 8, 9) : nullptr;
            if (body != nullptr && body[8] == 1) // a metre
                set_resolution(info, be32(body) * kMetresPerInch, be32(body + 4) * kMetresPerInch);
            return;
        }
        offset += kFrame + length;
    }
}

} // namespace

bool read_png(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, kPngSignature))
        return false;
    info.format = PictureFormat::png;
    const std::uint8_t* const head = source.at(8, 21);
    if (head == nullptr || be32(head) != 13 || std::memcmp(head + 4, "IHDR", 4) != 0)
        return true;
    const std::uint32_t depth = head[16];
    const std::uint32_t samples = samples_of(head[17]);
    if (depth == 0 || depth > 16 || (depth & (depth - 1)) != 0 || samples == 0)
        return true;
    const std::uint64_t bits = std::uint64_t{depth} * samples; // of a pixel, up to 64
    set_size(info, be32(head + 8), be32(head + 12), std::max<std::uint64_t>(kDeflateRatio * 8 / bits, 1),
             source.size());
    read_png_resolution(source, info);
    return true;
}

bool read_gif(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, "GIF87a") && !source.has(0, "GIF89a"))
        return false;
    info.format = PictureFormat::gif;
    constexpr std::uint64_t kLongestCode = 4096; // pixels that one code of 9 and more bits can stand for
    if (const std::uint8_t* const head = source.at(6, 7))
        set_size(info, le16(head), le16(head + 2), kLongestCode, source.size());
    return true;
}

bool read_bmp(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, "BM"))
        return false;
    const std::uint8_t* head = source.at(0, 26);
    if (head == nullptr)
        return false;
    const std::uint32_t pixels = le32(head + 10);
    const std::uint32_t headSize = le32(head + 14);
    std::uint64_t width = le16(head + 18);
    std::uint64_t height = le16(head + 20);
    std::uint32_t bits = le16(head + 24);
    std::uint32_t compression = 0;
    if (headSize >= 40 && headSize <= 124) {
        head = source.at(0, 54);
        if (head == nullptr)
            return false;
        width = le32(head + 18);
        // A negative height: the first row is the upper one.
        height = static_cast<std::uint64_t>(std::llabs(static_cast<std::int32_t>(le32(head + 22))));
        bits = le16(head + 28);
        compression = le32(head + 30);
        set_resolution(info, le32(head + 38) * kMetresPerInch, le32(head + 42) * kMetresPerInch);
    } else if (headSize != 12) {
        return false;
    }
    info.format = PictureFormat::bmp;
    if (pixels > source.size() || width > 0x7FFFFFFF)
        return true;
    const std::uint64_t room = source.size() - pixels;
    if (compression == 0 || compression == 3 || compression == 6) { // no compression
        const std::uint64_t row = (width * bits + 31) / 32 * 4;
        if (bits != 0 && bits <= 64 && height != 0 && row <= room / height)
            set_size(info, width, height, 0x100000000, room);
    } else {
        constexpr std::uint64_t kLongestJump =
            std::uint64_t{255} * 255; // pixels that four bytes can leave out
        set_size(info, width, height, kLongestJump, room);
    }
    return true;
}

bool read_ico(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, std::string_view("\0\0\1\0", 4)))
        return false;
    const std::uint8_t* const head = source.at(4, 2);
    const std::uint32_t count = head != nullptr ? le16(head) : 0;
    bool found = false;
    PictureInfo largest;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t* const entry = source.at(6 + 16 * std::uint64_t{i}, 16);
        if (entry == nullptr)
            break;
        const std::uint32_t width = entry[0] != 0 ? entry[0] : 256;
        const std::uint32_t height = entry[1] != 0 ? entry[1] : 256;
        const std::uint32_t bytes = le32(entry + 8);
        const std::uint32_t offset = le32(entry + 12);
        if (bytes == 0 || offset < 6 + 16 * count || std::uint64_t{offset} + bytes > source.size())
            continue;
        found = true;
        if (width * height <= largest.width * largest.height)
            continue;
        // A picture is a bitmap of one bit a pixel and more, or a PNG.
        set_size(largest, width, height, source.has(offset, kPngSignature) ? kDeflateRatio * 8 : 8, bytes);
    }
    if (!found)
        return false; // four bytes alone are not a sign
    info = largest;
    info.format = PictureFormat::ico;
    return true;
}

} // namespace core::detail
