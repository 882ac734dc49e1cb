// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>

#include <cstddef>
#include <cstdint>
#include <span>

/// What the first bytes of a picture say. No pixel is decoded, and at most 64 KB are read, wherever they
/// stand.
namespace core {

class Enumeration;

/// What a picture is stored as. The numbers are stored.
enum class PictureFormat : std::int32_t {
    unknown = 0, ///< none of these
    png = 1,     ///< PNG
    jpeg = 2,    ///< JPEG
    gif = 3,     ///< GIF
    bmp = 4,     ///< BMP
    ico = 5,     ///< ICO
    tiff = 6,    ///< TIFF
    webp = 7,    ///< WebP
    svg = 8,     ///< SVG in UTF-8, not compressed
    emf = 9,     ///< EMF
    wmf = 10,    ///< WMF
};
/// Returns the script enumeration of the formats, borrowed; it lives as long as the library.
[[nodiscard]] CORE_API Enumeration* script_enumeration(PictureFormat) noexcept;

/// What is known of a picture.
struct PictureInfo {
    PictureFormat format = PictureFormat::unknown; ///< by the content, never by the name of a file
    /// In pixels: of the largest one in ICO, of the first page in TIFF, the units of a WMF, pixels of CSS (96
    /// an inch) in SVG. 0 where the picture does not say it, where that lies too deep, and where so many
    /// pixels cannot be in so few bytes.
    std::uint32_t width = 0;
    std::uint32_t height = 0;        ///< as `width`; both are 0, or neither
    double horizontalResolution = 0; ///< in pixels an inch; 0 where the picture does not say it
    double verticalResolution = 0;   ///< in pixels an inch; 0 where the picture does not say it

    /// Says whether all fields are equal.
    friend constexpr bool operator==(const PictureInfo&, const PictureInfo&) = default;
};

/// Returns what the bytes of a whole picture say. Takes any bytes; safe on any thread.
[[nodiscard]] CORE_API PictureInfo picture_info(std::span<const std::byte> bytes);
/// Returns what a file says. The current position of the file stays. Throws what the file throws, and
/// std::bad_alloc.
[[nodiscard]] CORE_API PictureInfo picture_info(IFile& file);

} // namespace core
