// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

namespace core::detail {
namespace {

std::int64_t signed32(const std::uint8_t* p) noexcept {
    return static_cast<std::int32_t>(le32(p));
}
std::int64_t signed16(const std::uint8_t* p) noexcept {
    return static_cast<std::int16_t>(le16(p));
}

/// A size of a drawing, which no number of bytes limits.
void set_drawing_size(PictureInfo& info, std::int64_t width, std::int64_t height) noexcept {
    if (width > 0 && height > 0)
        set_size(info, static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height),
                 0x7FFFFFFFFFFFFFFF, 1);
}

} // namespace

bool read_emf(PictureSource& source, PictureInfo& info) {
    if (!source.has(0, std::string_view("\1\0\0\0", 4)) || !source.has(40, " EMF"))
        return false;
    info.format = PictureFormat::emf;
    const std::uint8_t* const head = source.at(0, 88);
    if (head == nullptr || le32(head + 4) < 88 || le32(head + 48) > source.size())
        return true;
    // The first and the last pixel, and the same frame in hundredths of a millimetre.
    set_drawing_size(info, signed32(head + 16) - signed32(head + 8) + 1,
                     signed32(head + 20) - signed32(head + 12) + 1);
    const auto inches = [](std::int64_t hundredths) { return static_cast<double>(hundredths) / 2540; };
    const double width = inches(signed32(head + 32) - signed32(head + 24));
    const double height = inches(signed32(head + 36) - signed32(head + 28));
    if (width > 0 && height > 0)
        set_resolution(info, info.width / width, info.height / height);
    return true;
}

bool read_wmf(PictureSource& source, PictureInfo& info) {
    constexpr std::string_view kPlaceable("\xD7\xCD\xC6\x9A", 4);
    const std::uint64_t start = source.has(0, kPlaceable) ? 22 : 0;
    const std::uint8_t* head = source.at(start, 18);
    const bool isMetafile = head != nullptr && (le16(head) == 1 || le16(head) == 2) && le16(head + 2) == 9 &&
                            (le16(head + 4) == 0x100 || le16(head + 4) == 0x300);
    if (!isMetafile)
        return false;
    info.format = PictureFormat::wmf;
    if (start == 0 || start + 2 * std::uint64_t{le32(head + 6)} > source.size())
        return true;
    head = source.at(0, 22);
    if (head == nullptr || le16(head + 14) == 0)
        return true;
    set_drawing_size(info, signed16(head + 10) - signed16(head + 6),
                     signed16(head + 12) - signed16(head + 8));
    if (info.width != 0)
        set_resolution(info, le16(head + 14), le16(head + 14));
    return true;
}

} // namespace core::detail
