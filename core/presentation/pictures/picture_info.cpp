// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

namespace core {
namespace {

PictureInfo info_of(detail::PictureSource source) {
    // Those with a sign of their own first; a text may be anything.
    constexpr bool (*kReaders[])(detail::PictureSource&, PictureInfo&) = {
        &detail::read_png,  &detail::read_jpeg, &detail::read_gif, &detail::read_bmp, &detail::read_webp,
        &detail::read_tiff, &detail::read_emf,  &detail::read_ico, &detail::read_wmf, &detail::read_svg};
    for (const auto reader : kReaders) {
        PictureInfo info;
        if (reader(source, info))
            return info;
    }
    return {};
}

} // namespace

PictureInfo picture_info(std::span<const std::byte> bytes) {
    return info_of(detail::PictureSource(bytes));
}

PictureInfo picture_info(IFile& file) {
    return info_of(detail::PictureSource(file));
}

} // namespace core
