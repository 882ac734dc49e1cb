// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

#include <string>

namespace core::detail {
namespace {

struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// The size of a chunk of pixels that are stored with losses, "VP8 ", from its body.
Size lossy(PictureSource& source, std::uint64_t body) {
    const std::uint8_t* const frame = source.at(body, 10);
    const bool isKey =
        frame != nullptr && (frame[0] & 1) == 0 && std::memcmp(frame + 3, "\x9D\x01\x2A", 3) == 0;
    return isKey ? Size{le16(frame + 6) & 0x3FFF, le16(frame + 8) & 0x3FFF} : Size{};
}

/// The same of pixels without losses, "VP8L".
Size lossless(PictureSource& source, std::uint64_t body) {
    const std::uint8_t* const frame = source.at(body, 5);
    if (frame == nullptr || frame[0] != 0x2F)
        return {};
    const std::uint32_t bits = le32(frame + 1);
    return {(bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1};
}

/// Whether the pixels behind a "VP8X" are of its size, or frames of an animation lie inside it.
bool holds(PictureSource& source, std::uint64_t offset, const Size& canvas) {
    while (const std::uint8_t* const head = source.at(offset, 8)) {
        const std::string_view type(reinterpret_cast<const char*>(head), 4); // until the next piece is read
        const std::uint32_t length = le32(head + 4);
        const bool isLossy = type == "VP8 ";
        const bool isLossless = type == "VP8L";
        const bool isFrame = type == "ANMF";
        const std::uint64_t body = offset + 8;
        if (isLossy || isLossless)
            return (isLossy ? lossy(source, body) : lossless(source, body)) == canvas;
        if (isFrame) {
            const std::uint8_t* const frame = source.at(body, 12);
            return frame != nullptr && std::uint64_t{le24(frame)} * 2 + le24(frame + 6) + 1 <= canvas.width &&
                   std::uint64_t{le24(frame + 3)} * 2 + le24(frame + 9) + 1 <= canvas.height;
        }
        offset = body + length + (length & 1);
    }
    return false;
}

} // namespace

bool read_webp(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, "RIFF") || !source.has(8, "WEBP"))
        return false;
    info.format = PictureFormat::webp;
    const std::uint8_t* const head = source.at(12, 8);
    if (head == nullptr)
        return true;
    const std::string type(reinterpret_cast<const char*>(head), 4);
    const std::uint64_t length = le32(head + 4);
    if (20 + length > source.size())
        return true;
    Size size;
    if (type == "VP8 ") {
        size = lossy(source, 20);
    } else if (type == "VP8L") {
        size = lossless(source, 20);
    } else if (type == "VP8X" && length >= 10) {
        const std::uint8_t* const body = source.at(20, 10);
        const Size canvas = body != nullptr ? Size{le24(body + 4) + 1, le24(body + 7) + 1} : Size{};
        if (holds(source, 20 + length + (length & 1), canvas))
            size = canvas;
    }
    // Pixels of one colour take no bits, so that the size of the file says nothing more.
    set_size(info, size.width, size.height, 0x100000000, source.size());
    return true;
}

} // namespace core::detail
