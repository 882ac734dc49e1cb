// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

namespace core::detail {
namespace {

enum Tag : std::uint32_t {
    kWidth = 256,
    kHeight = 257,
    kCompression = 259,
    kHorizontal = 282,
    kVertical = 283,
    kUnit = 296,
};
constexpr std::uint32_t kShort = 3;
constexpr std::uint32_t kLong = 4;
constexpr std::uint32_t kRational = 5;

/// The numbers of a file of either order of bytes.
class Numbers {
  public:
    Numbers(PictureSource& source, bool bigEndian) noexcept : source_(source), bigEndian_(bigEndian) {}

    [[nodiscard]] std::uint32_t word(const std::uint8_t* p) const noexcept {
        return bigEndian_ ? be16(p) : le16(p);
    }
    [[nodiscard]] std::uint32_t number(const std::uint8_t* p) const noexcept {
        return bigEndian_ ? be32(p) : le32(p);
    }
    /// The whole number of an entry; 0 for an entry of another type.
    [[nodiscard]] std::uint32_t whole(const std::uint8_t* entry) const noexcept {
        const std::uint32_t type = word(entry + 2);
        return type == kShort ? word(entry + 8) : type == kLong ? number(entry + 8) : 0;
    }
    /// The fraction that an entry leads to; 0 if it leads to no fraction.
    [[nodiscard]] double fraction(const std::uint8_t* entry) const {
        if (word(entry + 2) != kRational)
            return 0;
        const std::uint8_t* const both = source_.at(number(entry + 8), 8);
        if (both == nullptr || number(both + 4) == 0)
            return 0;
        return static_cast<double>(number(both)) / number(both + 4);
    }

  private:
    PictureSource& source_;
    bool bigEndian_;
};

/// What the first directory says.
struct Directory {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t compression = 1;
    std::uint32_t unit = 2;       // an inch
    std::uint64_t horizontal = 0; // offset of the entry
    std::uint64_t vertical = 0;
};

Directory read_directory(PictureSource& source, const Numbers& numbers, std::uint64_t offset) {
    Directory directory;
    const std::uint8_t* const head = source.at(offset, 2);
    const std::uint32_t count = head != nullptr ? numbers.word(head) : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t place = offset + 2 + 12 * std::uint64_t{i};
        const std::uint8_t* const entry = source.at(place, 12);
        if (entry == nullptr)
            break;
        switch (numbers.word(entry)) {
        case kWidth:
            directory.width = numbers.whole(entry);
            break;
        case kHeight:
            directory.height = numbers.whole(entry);
            break;
        case kCompression:
            directory.compression = numbers.whole(entry);
            break;
        case kHorizontal:
            directory.horizontal = place;
            break;
        case kVertical:
            directory.vertical = place;
            break;
        case kUnit:
            directory.unit = numbers.whole(entry);
            break;
        default:
            break;
        }
    }
    return directory;
}

double fraction_at(PictureSource& source, const Numbers& numbers, std::uint64_t place) {
    const std::uint8_t* const entry = place != 0 ? source.at(place, 12) : nullptr;
    return entry != nullptr ? numbers.fraction(entry) : 0;
}

} // namespace

bool read_tiff(PictureSource& source, PictureInfo& info) {
    const bool bigEndian = source.has(0, std::string_view("MM\0*", 4));
    if (!bigEndian && !source.has(0, std::string_view("II*\0", 4)))
        return false;
    info.format = PictureFormat::tiff;
    const Numbers numbers(source, bigEndian);
    const std::uint8_t* const head = source.at(4, 4);
    if (head == nullptr)
        return true;
    const Directory directory = read_directory(source, numbers, numbers.number(head));
    // A row of a fax may be one bit.
    constexpr std::uint64_t kPlain = 8;
    constexpr std::uint64_t kPacked = std::uint64_t{8} * 65536;
    set_size(info, directory.width, directory.height, directory.compression == 1 ? kPlain : kPacked,
             source.size());
    if (directory.unit == 2 || directory.unit == 3) {
        const double scale = directory.unit == 3 ? kCentimetresPerInch : 1;
        set_resolution(info, fraction_at(source, numbers, directory.horizontal) * scale,
                       fraction_at(source, numbers, directory.vertical) * scale);
    }
    return true;
}

} // namespace core::detail
