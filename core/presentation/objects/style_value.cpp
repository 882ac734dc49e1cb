// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

#include <core/presentation/services.h>
#include <core/runtime/process.h>

namespace core {
namespace {

/// A style as an object that scripts change.
class StyleValue : public ScriptObject<StyleValue, IPersistableObject> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Style", u"Стиль"},
        .type = "710eca58-0a07-4969-ab32-669d1af037d0"_guid,
        .object = "d1844ee5-d605-4291-b50f-6124ea716e76"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_STYLE",
        .arguments = {0, 4},
    };
    using Content = Style;

    explicit StyleValue(Style style = {}) : style_(std::move(style)) {}

    [[nodiscard]] static const Style* contentOf(const Value& value) noexcept {
        const StyleValue* const object = of(value);
        return object != nullptr ? &object->style_ : nullptr;
    }

    /// New Style([TextColor], [BackColor], [TextFont], [Base]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        const auto base = detail::optional_from<Style>(arguments, 3);
        Style style = base ? Style::basedOn(*base) : Style();
        constexpr const wchar* kColors[] = {u"TextColor", u"BackColor"};
        for (int i = 0; i < 2; ++i) {
            if (const auto color = detail::optional_from<Color>(arguments, i))
                style.setColor(*find_color(style_colors(), kColors[i]), *color);
        }
        if (auto font = detail::optional_from<Font>(arguments, 2))
            style.setFont(0, std::move(*font));
        return make_object<StyleValue>(std::move(style));
    }
    static auto members() {
        using T = StyleValue;
        constexpr Parameter kItem{u"Item", u"Элемент"};
        return core::members(property(u"Border", u"Рамка", &T::border, &T::setBorder),
                             property(u"Base", u"Основа", &T::base),
                             method(u"GetColor", u"ПолучитьЦвет", &T::color, kItem),
                             method(u"SetColor", u"УстановитьЦвет", &T::setColor, kItem, {u"Color", u"Цвет"}),
                             method(u"GetFont", u"ПолучитьШрифт", &T::font, kItem),
                             method(u"SetFont", u"УстановитьШрифт", &T::setFont, kItem, {u"Font", u"Шрифт"}),
                             method(u"Resolve", u"Разрешить", &T::resolve, {u"Color", u"Цвет"}),
                             method(u"Use", u"Использовать", &T::use));
    }

    LumBorder border() const { return style_.border(); }
    void setBorder(const LumBorder& border) { style_.setBorder(border); }
    std::optional<Style> base() const {
        return style_.base() != nullptr ? std::optional(*style_.base()) : std::nullopt;
    }
    /// Undefined where no style sets it.
    std::optional<Color> color(wstring_view item) const { return style_.color(colorItem(item)); }
    /// Undefined lets it come from the style below.
    void setColor(wstring_view item, const std::optional<Color>& color) {
        if (color)
            style_.setColor(colorItem(item), *color);
        else
            style_.clearColor(colorItem(item));
    }
    Font font(wstring_view item) const { return style_.font(fontItem(item)); }
    void setFont(wstring_view item, const std::optional<Font>& font) {
        if (font)
            style_.setFont(fontItem(item), *font);
        else
            style_.clearFont(fontItem(item));
    }
    /// The absolute colour; the automatic one is the text's.
    Color resolve(const Color& color) const {
        const Color text = Color::named(ColorKind::style, 0);
        return Color(style_.resolve(color, style_.resolve(text, *text.rgba())));
    }
    void use() const {
        if (IPresentationService* const look = get_service<IPresentationService>())
            look->setStyle(style_);
    }

    // IValue
    bool isEqual(const IValue* other) const noexcept override {
        const StyleValue* const same = of(other);
        return same != nullptr && same->style_ == style_;
    }
    std::int32_t hashCode() const noexcept override { return style_.hash(); }

    // IPersistableObject
    void serialize(IOutPersistenceStorage* storage) const override {
        to_stream(storage->listStream(), style_);
    }
    void deserialize(IInPersistenceStorage* storage) override { from_stream(storage->listStream(), style_); }

  private:
    static std::size_t colorItem(wstring_view name) {
        const auto item = find_color(style_colors(), name);
        if (!item)
            parameter_value_mismatch(0);
        return *item;
    }
    static std::size_t fontItem(wstring_view name) {
        const auto item = find_style_font(name);
        if (!item)
            parameter_value_mismatch(0);
        return *item;
    }

    Style style_;
};

const ScriptClassEntry<StyleValue> kStyleValueEntry;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, Style& content) {
    content = content_from<StyleValue>(value, receiver);
}

Value detail::value_of(const Style& content) {
    return make_object<StyleValue>(content);
}

} // namespace core
