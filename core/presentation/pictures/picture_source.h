// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file_io.h>
#include <core/presentation/picture_info.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

namespace core::detail {

/// Pieces of a picture, in memory or in a file, as far as 64 KB reach.
class PictureSource {
  public:
    explicit PictureSource(std::span<const std::byte> bytes) noexcept : bytes_(bytes), size_(bytes.size()) {}
    explicit PictureSource(IFile& file) : file_(&file), size_(file.length()) {}

    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// Returns `count` bytes, borrowed until the next call; null where the picture has not so many there, or
    /// when too many have been asked for.
    [[nodiscard]] const std::uint8_t* at(std::uint64_t offset, std::size_t count) {
        if (offset > size_ || count > size_ - offset)
            return nullptr;
        if (file_ != nullptr && !fetch(offset, count))
            return nullptr;
        if (file_ == nullptr) {
            if (count > budget_)
                return nullptr;
            budget_ -= count;
        }
        return reinterpret_cast<const std::uint8_t*>(bytes_.data()) + (offset - first_);
    }
    /// Whether these bytes stand at an offset.
    [[nodiscard]] bool has(std::uint64_t offset, std::string_view expected) {
        const std::uint8_t* const found = at(offset, expected.size());
        return found != nullptr && std::memcmp(found, expected.data(), expected.size()) == 0;
    }

  private:
    static constexpr std::size_t kBudget = 65536;
    static constexpr std::size_t kWindow = 1024; // as many places as a picture can send the reader to

    /// Has the bytes in the window.
    bool fetch(std::uint64_t offset, std::size_t count) {
        if (offset >= first_ && offset + count <= first_ + bytes_.size())
            return true;
        const auto wanted = static_cast<std::size_t>(
            std::min<std::uint64_t>({std::max(count, kWindow), size_ - offset, budget_}));
        if (wanted < count)
            return false;
        window_.resize(wanted);
        bytes_ = {};
        const std::size_t read = read_all_at(*file_, offset, window_);
        budget_ -= wanted;
        first_ = offset;
        bytes_ = std::span<const std::byte>(window_).first(read);
        return read >= count; // the file may have become shorter
    }

    std::span<const std::byte> bytes_; // all of them, or those in the window
    std::uint64_t first_ = 0;          // offset of bytes_
    IFile* file_ = nullptr;
    std::uint64_t size_;
    std::size_t budget_ = kBudget;
    std::vector<std::byte> window_;
};

inline std::uint32_t le16(const std::uint8_t* p) noexcept {
    return static_cast<std::uint32_t>(p[0] | p[1] << 8);
}
inline std::uint32_t be16(const std::uint8_t* p) noexcept {
    return static_cast<std::uint32_t>(p[0] << 8 | p[1]);
}
inline std::uint32_t le24(const std::uint8_t* p) noexcept {
    return le16(p) | static_cast<std::uint32_t>(p[2]) << 16;
}
inline std::uint32_t le32(const std::uint8_t* p) noexcept {
    return le16(p) | le16(p + 2) << 16;
}
inline std::uint32_t be32(const std::uint8_t* p) noexcept {
    return be16(p) << 16 | be16(p + 2);
}

/// Sets a size that is one of a picture: neither edge is 0, and the pixels are in what follows at the best
/// ratio that the format can have: `pixelsPerByte` of them in each byte of `size`.
inline void set_size(PictureInfo& info, std::uint64_t width, std::uint64_t height,
                     std::uint64_t pixelsPerByte, std::uint64_t size) noexcept {
    constexpr std::uint64_t kMost = 0x7FFFFFFF; // so that the product fits
    if (width == 0 || height == 0 || width > kMost || height > kMost || width * height / pixelsPerByte > size)
        return;
    info.width = static_cast<std::uint32_t>(width);
    info.height = static_cast<std::uint32_t>(height);
}

/// Sets how many pixels there are an inch; not where one of the two is missing.
inline void set_resolution(PictureInfo& info, double horizontal, double vertical) noexcept {
    if (horizontal > 0 && vertical > 0) {
        info.horizontalResolution = horizontal;
        info.verticalResolution = vertical;
    }
}

inline constexpr double kMetresPerInch = 0.0254;
inline constexpr double kCentimetresPerInch = 2.54;
inline constexpr std::uint64_t kDeflateRatio = 1032; ///< no stream of deflate holds more bytes in one

// Each reads one format and says whether the picture is of it.
[[nodiscard]] bool read_png(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_gif(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_bmp(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_ico(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_jpeg(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_tiff(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_webp(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_emf(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_wmf(PictureSource& source, PictureInfo& info);
[[nodiscard]] bool read_svg(PictureSource& source, PictureInfo& info);

} // namespace core::detail
