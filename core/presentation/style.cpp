// SPDX-License-Identifier: Apache-2.0
#include "core/lists/malformed.h"

#include <core/context/arguments.h>
#include <core/lists/list_in_stream.h>
#include <core/lists/list_out_stream.h>
#include <core/presentation/style.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace core {
namespace {

constexpr std::size_t kMaxBases = 64; // writing and comparing a style go down to its bases

std::size_t bases_of(const Style& style) noexcept {
    std::size_t count = 0;
    for (const Style* base = style.base(); base != nullptr; base = base->base())
        ++count;
    return count;
}

/// The items that a list holds by name, each at most once.
template <class Item, class Find>
std::map<std::size_t, Item> read_items(ListInStream& in, std::size_t most, Find find) {
    std::map<std::size_t, Item> items;
    std::uint32_t count = 0;
    in.get(count);
    if (count > most)
        throw_malformed();
    for (std::uint32_t i = 0; i < count; ++i) {
        wstring name;
        Item item;
        in.get(name);
        from_stream(in, item);
        const std::optional<std::size_t> position = find(wstring_view(name));
        if (!position || !items.emplace(*position, std::move(item)).second)
            throw_malformed();
    }
    return items;
}

} // namespace

Style Style::basedOn(const Style& base) {
    if (bases_of(base) + 1 >= kMaxBases)
        parameter_value_mismatch(0);
    Style style;
    style.base_ = std::make_shared<const Style>(base);
    return style;
}

void Style::setColor(std::size_t item, const Color& color) {
    if (item >= style_colors().size())
        throw std::out_of_range("no such colour of a style");
    colors_.insert_or_assign(item, color);
}

void Style::setFont(std::size_t item, Font font) {
    if (item >= style_fonts().size())
        throw std::out_of_range("no such font of a style");
    fonts_.insert_or_assign(item, std::move(font));
}

std::optional<Color> Style::color(std::size_t item) const noexcept {
    for (const Style* style = this; style != nullptr; style = style->base()) {
        if (const auto found = style->colors_.find(item); found != style->colors_.end())
            return found->second;
    }
    return std::nullopt;
}

Font Style::font(std::size_t item) const {
    Font font;
    for (const Style* style = this; style != nullptr; style = style->base()) {
        if (const auto found = style->fonts_.find(item); found != style->fonts_.end())
            font = font.inheriting(found->second);
    }
    return font;
}

LumBorder Style::border() const noexcept {
    for (const Style* style = this; style != nullptr; style = style->base()) {
        if (style->border_)
            return *style->border_;
    }
    return {};
}

Rgba Style::resolve(const Color& color, Rgba automatic) const noexcept {
    Color current = color;
    // Each item is met at most once, except in a circle.
    for (std::size_t steps = 0; steps <= style_colors().size(); ++steps) {
        if (current.kind() != ColorKind::style)
            return current.rgba().value_or(automatic);
        const auto next = this->color(*find_color(style_colors(), current.name(kEnglish)));
        if (!next)
            return *current.rgba();
        current = *next;
    }
    return automatic;
}

Font Style::resolve(const Font& font) const {
    Font result = font;
    // An item may lead to another one; each is met at most once, except in a circle.
    for (std::size_t steps = 0; result.item && steps <= style_fonts().size(); ++steps) {
        const std::size_t item = *std::exchange(result.item, std::nullopt);
        const Font found = this->font(item);
        result = result.inheriting(found);
        if (!result.item) // the end of the way
            result = result.inheriting(default_font(item));
    }
    result.item.reset();
    result = result.inheriting(this->font(0)).inheriting(default_font(0));
    result.item.reset();
    return result;
}

bool operator==(const Style& a, const Style& b) noexcept {
    if (a.colors_ != b.colors_ || a.fonts_ != b.fonts_ || a.border_ != b.border_)
        return false;
    return a.base_ == b.base_ || (a.base_ != nullptr && b.base_ != nullptr && *a.base_ == *b.base_);
}

std::int32_t Style::hash() const noexcept {
    std::uint32_t hash = base_ != nullptr ? static_cast<std::uint32_t>(base_->hash()) : 0;
    const auto add = [&hash](std::size_t item, std::int32_t content) {
        hash = (hash * 31 + static_cast<std::uint32_t>(item)) * 31 + static_cast<std::uint32_t>(content);
    };
    for (const auto& [item, color] : colors_)
        add(item, color.hash());
    for (const auto& [item, font] : fonts_)
        add(item, font.hash());
    if (border_)
        add(0, border_->hash());
    return static_cast<std::int32_t>(hash);
}

void to_stream(ListOutStream& out, const Style& style) {
    out.putBeginOfList();
    out.put(static_cast<std::uint32_t>(style.colors_.size()));
    for (const auto& [item, color] : style.colors_) {
        out.put(style_colors()[item].names.text[kEnglish]);
        to_stream(out, color);
    }
    out.put(static_cast<std::uint32_t>(style.fonts_.size()));
    for (const auto& [item, font] : style.fonts_) {
        out.put(style_fonts()[item].text[kEnglish]);
        to_stream(out, font);
    }
    out.put(style.border_.has_value());
    if (style.border_)
        to_stream(out, *style.border_);
    out.put(style.base_ != nullptr);
    if (style.base_ != nullptr)
        to_stream(out, *style.base_);
    out.putEndOfList();
}

void from_stream(ListInStream& in, Style& style) {
    // The base stands behind its style, so that styles are read from the uppermost on and put together from
    // the lowest.
    std::vector<Style> read;
    for (bool more = true; more;) {
        if (read.size() == kMaxBases)
            throw_malformed();
        Style& current = read.emplace_back();
        in.getBeginOfList();
        current.colors_ = read_items<Color>(
            in, style_colors().size(), [](wstring_view name) { return find_color(style_colors(), name); });
        current.fonts_ = read_items<Font>(in, style_fonts().size(), &find_style_font);
        bool hasBorder = false;
        in.get(hasBorder);
        if (hasBorder)
            from_stream(in, current.border_.emplace());
        in.get(more);
    }
    for (std::size_t i = 0; i < read.size(); ++i)
        in.getEndOfList();
    while (read.size() > 1) {
        auto base = std::make_shared<const Style>(std::move(read.back()));
        read.pop_back();
        read.back().base_ = std::move(base);
    }
    style = std::move(read.front());
}

} // namespace core
