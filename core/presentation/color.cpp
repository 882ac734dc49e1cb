// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/color.h>
#include <core/presentation/color_tables.h>
#include <core/runtime/exception.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/compare.h>
#include <core/strings/trim.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <span>

namespace core {
namespace {

/// A table of colours with the prefix of its texts in both languages.
struct Family {
    ColorKind kind;
    wstring_view prefixes[2];
    std::span<const NamedColor> (*table)() noexcept;
};
constexpr Family kFamilies[] = {
    {ColorKind::web, {u"web", u"веб"}, &web_colors},
    {ColorKind::windows, {u"windows", u"виндовс"}, &windows_colors},
    {ColorKind::style, {u"style", u"стиль"}, &style_colors},
};
constexpr wstring_view kAutomatic[] = {u"auto", u"авто"};

const Family* family_of(ColorKind kind) noexcept {
    const auto* const found = std::ranges::find(kFamilies, kind, &Family::kind);
    return found != std::end(kFamilies) ? found : nullptr;
}

std::optional<Color> color_of(const Family& family, wstring_view name) noexcept {
    const auto position = find_color(family.table(), name);
    return position ? std::optional(Color::named(family.kind, *position)) : std::nullopt;
}

std::optional<std::uint32_t> hex_digit(wchar unit) noexcept {
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    const wchar lower = static_cast<wchar>(unit | 0x20);
    if (lower >= u'a' && lower <= u'f')
        return lower - u'a' + 10;
    return std::nullopt;
}

/// The colour of the digits behind "#".
std::optional<Color> from_digits(wstring_view digits) noexcept {
    const bool isShort = digits.size() == 3 || digits.size() == 4; // one digit a channel, which counts twice
    if (!isShort && digits.size() != 6 && digits.size() != 8)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const wchar unit : digits) {
        const auto digit = hex_digit(unit);
        if (!digit)
            return std::nullopt;
        number = number << 4 | *digit;
        if (isShort)
            number = number << 4 | *digit;
    }
    if (digits.size() == 3 || digits.size() == 6)
        number = number << 8 | 0xFF;
    return Color(Rgba::fromNumber(number));
}

wstring digits_of(Rgba rgba) {
    constexpr wchar kDigits[] = u"0123456789ABCDEF";
    std::array<wchar, 9> text{u'#'};
    const std::uint32_t number = rgba.number();
    for (std::size_t i = 0; i < 8; ++i)
        text[i + 1] = kDigits[number >> (28 - 4 * i) & 0xF];
    return wstring(text.data(), rgba.alpha == 255 ? 7 : 9);
}

} // namespace

std::optional<std::size_t> find_color(std::span<const NamedColor> table, wstring_view name) noexcept {
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (const wchar* const known : table[i].names.text) {
            if (known != nullptr && compare_nocase(wstring_view(known), name) == 0)
                return i;
        }
    }
    return std::nullopt;
}

std::optional<Color> Color::web(wstring_view name) noexcept {
    return color_of(*family_of(ColorKind::web), name);
}

std::optional<Color> Color::windows(wstring_view name) noexcept {
    return color_of(*family_of(ColorKind::windows), name);
}

std::optional<Color> Color::style(wstring_view name) noexcept {
    return color_of(*family_of(ColorKind::style), name);
}

std::optional<Rgba> Color::rgba() const noexcept {
    if (kind_ == ColorKind::automatic)
        return std::nullopt;
    if (kind_ == ColorKind::absolute)
        return Rgba::fromNumber(value_);
    return family_of(kind_)->table()[value_].rgba;
}

const wchar* Color::name(int alias) const noexcept {
    const Family* const family = family_of(kind_);
    return family != nullptr ? term_string(family->table()[value_].names, alias) : nullptr;
}

wstring Color::toText() const {
    if (kind_ == ColorKind::automatic)
        return wstring(kAutomatic[kEnglish]);
    if (kind_ == ColorKind::absolute)
        return digits_of(Rgba::fromNumber(value_));
    return wstring(family_of(kind_)->prefixes[kEnglish]).append(u":").append(name(kEnglish));
}

std::optional<Color> Color::fromText(wstring_view text) noexcept {
    text = trim_all(text);
    for (const wstring_view automatic : kAutomatic) {
        if (compare_nocase(text, automatic) == 0)
            return Color();
    }
    if (text.starts_with(u'#'))
        return from_digits(text.substr(1));
    const std::size_t colon = text.find(u':');
    if (colon == wstring_view::npos)
        return web(text);
    for (const Family& family : kFamilies) {
        for (const wstring_view prefix : family.prefixes) {
            if (compare_nocase(text.substr(0, colon), prefix) == 0)
                return color_of(family, text.substr(colon + 1));
        }
    }
    return std::nullopt;
}

wstring Color::presentation() const {
    if (kind_ == ColorKind::automatic)
        return message_text("IDS_COLOR_AUTO");
    if (kind_ == ColorKind::absolute)
        return digits_of(Rgba::fromNumber(value_));
    return name(Thread::getResourceLocale().isRussian() ? kRussian : kEnglish);
}

void to_stream(ListOutStream& out, const Color& color) {
    out.put(color.toText());
}

void from_stream(ListInStream& in, Color& color) {
    wstring text;
    in.get(text);
    const auto read = Color::fromText(text);
    if (!read)
        throw_malformed();
    color = *read;
}

} // namespace core
