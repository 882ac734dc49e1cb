// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/pictures/picture_source.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace core::detail {
namespace {

constexpr double kPixelsPerInch = 96;

constexpr bool is_blank(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

void skip_blanks(std::string_view& text) noexcept {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
}

/// Leaves what follows `end`; says whether it was there.
bool skip_past(std::string_view& text, std::string_view end) noexcept {
    const std::size_t found = text.find(end);
    text.remove_prefix(found == std::string_view::npos ? text.size() : found + end.size());
    return found != std::string_view::npos;
}

/// Leaves what follows a declaration of the kind of document, which may have one of its own in brackets.
bool skip_doctype(std::string_view& text) noexcept {
    const std::size_t stop = text.find_first_of("[>");
    if (stop == std::string_view::npos)
        return false;
    return (text[stop] != '[' || skip_past(text, "]")) && skip_past(text, ">");
}

/// Leaves what follows the name of the outermost element; says whether that is "svg".
bool skip_to_svg(std::string_view& text) noexcept {
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    while (true) {
        skip_blanks(text);
        bool more = false;
        if (text.starts_with("<?"))
            more = skip_past(text, "?>");
        else if (text.starts_with("<!--"))
            more = skip_past(text, "-->");
        else if (text.starts_with("<!DOCTYPE"))
            more = skip_doctype(text);
        if (!more)
            break;
    }
    if (!text.starts_with('<'))
        return false;
    text.remove_prefix(1);
    std::string_view name = text.substr(0, text.find_first_of(" \t\r\n/>"));
    text.remove_prefix(name.size());
    if (const std::size_t colon = name.find(':'); colon != std::string_view::npos)
        name.remove_prefix(colon + 1);
    return name == "svg" && !text.empty();
}

struct Attribute {
    std::string_view name;
    std::string_view value;
};

/// The next attribute of the element; nothing at its end. Clears the text where it is not one of XML.
std::optional<Attribute> next_attribute(std::string_view& text) noexcept {
    skip_blanks(text);
    if (text.starts_with('>') || text.starts_with("/>"))
        return std::nullopt;
    Attribute attribute;
    attribute.name = text.substr(0, text.find_first_of(" \t\r\n=>"));
    text.remove_prefix(attribute.name.size());
    skip_blanks(text);
    const bool hasValue = text.starts_with('=');
    text.remove_prefix(hasValue ? 1 : 0);
    skip_blanks(text);
    const char quote = hasValue && !text.empty() ? text.front() : '\0';
    const std::size_t end = quote == '"' || quote == '\'' ? text.find(quote, 1) : std::string_view::npos;
    if (end == std::string_view::npos || attribute.name.empty()) {
        text = {};
        return std::nullopt;
    }
    attribute.value = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    return attribute;
}

/// Takes a number off the text.
std::optional<double> take_number(std::string_view& text) noexcept {
    skip_blanks(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number))
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// A length in pixels; 0 for one that depends on what is around the picture.
double pixels(std::string_view text) noexcept {
    const auto number = take_number(text);
    if (!number)
        return 0;
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    constexpr struct {
        std::string_view unit;
        double pixels;
    } kUnits[] = {{"", 1},
                  {"px", 1},
                  {"pt", kPixelsPerInch / 72},
                  {"pc", kPixelsPerInch / 6},
                  {"in", kPixelsPerInch},
                  {"mm", kPixelsPerInch / 25.4},
                  {"cm", kPixelsPerInch / 2.54}};
    for (const auto& unit : kUnits) {
        if (unit.unit == text)
            return *number * unit.pixels;
    }
    return 0;
}

/// Width and height of a view box.
void read_view_box(std::string_view text, double& width, double& height) noexcept {
    double numbers[4] = {};
    for (double& number : numbers) {
        const auto read = take_number(text);
        if (!read)
            return;
        number = *read;
        skip_blanks(text);
        if (text.starts_with(','))
            text.remove_prefix(1);
    }
    width = numbers[2];
    height = numbers[3];
}

void set_rounded(PictureInfo& info, double width, double height) noexcept {
    constexpr double kMost = 0x7FFFFFFF;
    if (!(width >= 0.5 && height >= 0.5 && width < kMost && height < kMost))
        return;
    set_size(info, static_cast<std::uint64_t>(std::llround(width)),
             static_cast<std::uint64_t>(std::llround(height)), 0x7FFFFFFFFFFFFFFF, 1);
    set_resolution(info, kPixelsPerInch, kPixelsPerInch);
}

} // namespace

bool read_svg(PictureSource& source, PictureInfo& info) {
    constexpr std::uint64_t kMost = 32768;
    const auto count = static_cast<std::size_t>(std::min(source.size(), kMost));
    const std::uint8_t* const bytes = source.at(0, count);
    if (bytes == nullptr)
        return false;
    std::string_view text(reinterpret_cast<const char*>(bytes), count);
    if (!skip_to_svg(text))
        return false;
    info.format = PictureFormat::svg;
    double width = 0;
    double height = 0;
    double boxWidth = 0;
    double boxHeight = 0;
    while (const auto attribute = next_attribute(text)) {
        if (attribute->name == "width")
            width = pixels(attribute->value);
        else if (attribute->name == "height")
            height = pixels(attribute->value);
        else if (attribute->name == "viewBox")
            read_view_box(attribute->value, boxWidth, boxHeight);
    }
    if (text.empty()) // the element does not end
        return true;
    // An edge that is not said follows from the other one and the view box.
    if (width == 0 && height == 0) {
        width = boxWidth;
        height = boxHeight;
    } else if (width == 0 && boxHeight > 0) {
        width = height * boxWidth / boxHeight;
    } else if (height == 0 && boxWidth > 0) {
        height = width * boxHeight / boxWidth;
    }
    set_rounded(info, width, height);
    return true;
}

} // namespace core::detail
