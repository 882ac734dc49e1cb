// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/font.h>
#include <core/runtime/exception.h>
#include <core/runtime/threads/thread.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>
#include <core/strings/names.h>

#include <tuple>

namespace core {
namespace {

/// The parts in the order of their bits.
template <class F>
auto parts_of(F& font) noexcept {
    return std::tie(font.face, font.size, font.weight, font.slant, font.underline, font.strikeOut);
}

template <class Part>
void put_part(ListOutStream& out, const std::optional<Part>& part) {
    if (!part)
        return;
    if constexpr (std::is_enum_v<Part>)
        out.put(static_cast<std::int32_t>(*part));
    else
        out.put(*part);
}

template <class Part>
void get_part(ListInStream& in, std::uint32_t& bits, std::optional<Part>& part) {
    const bool isThere = (bits & 1) != 0;
    bits >>= 1;
    if (!isThere)
        return;
    if constexpr (std::is_enum_v<Part>) {
        std::int32_t number = 0;
        in.get(number);
        part = static_cast<Part>(number);
    } else {
        in.get(part.emplace());
    }
}

/// Hundredths of a point in points, without zeros at the end.
wstring points(std::int32_t size) {
    wstring text = string_intto(size / 100);
    if (size % 100 != 0) {
        text += u'.';
        text += static_cast<wchar>(u'0' + size % 100 / 10);
        if (size % 10 != 0)
            text += static_cast<wchar>(u'0' + size % 10);
    }
    return text;
}

void add_word(wstring& text, wstring_view word) {
    if (!text.empty())
        text += u", ";
    text += word;
}

template <class T>
bool within(const std::optional<T>& part, T least, T most) noexcept {
    return !part || (*part >= least && *part <= most);
}

} // namespace

FontKind Font::kind() const noexcept {
    if (item)
        return FontKind::style;
    const bool hasPart =
        std::apply([](const auto&... part) { return (part.has_value() || ...); }, parts_of(*this));
    return hasPart ? FontKind::absolute : FontKind::automatic;
}

bool Font::isValid() const noexcept {
    return (!item || *item < style_fonts().size()) && within(size, 1, kMaxFontSize) &&
           within(weight, 1, kMaxWeight) && within(slant, FontSlant::upright, FontSlant::oblique);
}

Font Font::inheriting(const Font& base) const {
    Font result = *this;
    const auto take = [](auto& part, const auto& other) {
        if (!part)
            part = other;
    };
    take(result.item, base.item);
    take(result.face, base.face);
    take(result.size, base.size);
    take(result.weight, base.weight);
    take(result.slant, base.slant);
    take(result.underline, base.underline);
    take(result.strikeOut, base.strikeOut);
    return result;
}

wstring Font::presentation() const {
    wstring text;
    if (item)
        text =
            term_string(style_fonts()[*item], Thread::getResourceLocale().isRussian() ? kRussian : kEnglish);
    if (face && !face->empty())
        add_word(text, *face);
    if (size)
        add_word(text, points(*size));
    if (weight && *weight != kNormalWeight)
        add_word(text, *weight == kBoldWeight ? message_text("IDS_FONT_BOLD") : string_intto(*weight));
    if (slant && *slant != FontSlant::upright)
        add_word(text, message_text(*slant == FontSlant::italic ? "IDS_FONT_SLANT_ITALIC"
                                                                : "IDS_FONT_SLANT_OBLIQUE"));
    if (underline.value_or(false))
        add_word(text, message_text("IDS_FONT_UNDERLINE"));
    if (strikeOut.value_or(false))
        add_word(text, message_text("IDS_FONT_STRIKEOUT"));
    return text.empty()
               ? message_text(kind() == FontKind::automatic ? "IDS_FONT_KIND_AUTO" : "IDS_FONT_NORMAL")
               : text;
}

std::int32_t Font::hash() const noexcept {
    std::uint32_t hash = item ? static_cast<std::uint32_t>(*item) + 1 : 0;
    const auto add = [&hash](std::int32_t number) { hash = hash * 31 + static_cast<std::uint32_t>(number); };
    for (const wchar unit : face ? wstring_view(*face) : wstring_view())
        add(unit);
    add(size.value_or(0));
    add(weight.value_or(0));
    add(slant ? static_cast<std::int32_t>(*slant) + 1 : 0);
    add((underline ? 1 + *underline : 0) * 3 + (strikeOut ? 1 + *strikeOut : 0));
    return static_cast<std::int32_t>(hash);
}

std::optional<std::size_t> find_style_font(wstring_view name) noexcept {
    const auto fonts = style_fonts();
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        for (const wchar* const known : fonts[i].text) {
            if (compare_nocase(wstring_view(known), name) == 0)
                return i;
        }
    }
    return std::nullopt;
}

void to_stream(ListOutStream& out, const Font& font) {
    out.putBeginOfList();
    out.put(font.item ? style_fonts()[*font.item].text[kEnglish] : u"");
    std::uint32_t bits = 0;
    std::uint32_t bit = 1;
    std::apply([&](const auto&... part) { ((bits |= part ? bit : 0, bit <<= 1), ...); }, parts_of(font));
    out.put(bits);
    std::apply([&](const auto&... part) { (put_part(out, part), ...); }, parts_of(font));
    out.putEndOfList();
}

void from_stream(ListInStream& in, Font& font) {
    Font read;
    wstring item;
    std::uint32_t bits = 0;
    in.getBeginOfList();
    in.get(item);
    in.get(bits);
    std::apply([&](auto&... part) { (get_part(in, bits, part), ...); }, parts_of(read));
    in.getEndOfList();
    if (!item.empty()) {
        read.item = find_style_font(item);
        if (!read.item)
            throw_malformed();
    }
    if (bits != 0 || !read.isValid())
        throw_malformed();
    font = std::move(read);
}

} // namespace core
