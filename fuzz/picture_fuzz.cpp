// SPDX-License-Identifier: Apache-2.0
// Any bytes as a picture: what is said of them is within its limits and cheap for the data, and what is a
// picture is stored and read back.
#include <core/presentation.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace {

using namespace core;

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    const PictureInfo info = picture_info(bytes);
    require((info.width == 0) == (info.height == 0));
    require(info.width <= 0x7FFFFFFF && info.height <= 0x7FFFFFFF);
    require(std::isfinite(info.horizontalResolution) && info.horizontalResolution >= 0);
    require(std::isfinite(info.verticalResolution) && info.verticalResolution >= 0);
    if (info.format == PictureFormat::unknown) {
        require(info == PictureInfo());
        return 0;
    }
    const Picture picture = Picture::fromBytes({bytes.begin(), bytes.end()});
    require(picture.info() == info && picture.bytes().size() == size);
    return 0;
}
