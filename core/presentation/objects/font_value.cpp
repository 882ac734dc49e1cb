// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

namespace core {
namespace {

class FontValue : public ShownValue<FontValue, Font> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Font", u"Шрифт"},
        .type = "ed1265bb-00d8-4e05-b61c-ea1a77b85dd5"_guid,
        .object = "f719cc34-df6b-4bcd-81bb-f87ca0daf879"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_FONT",
        .arguments = {0, 6},
    };
    using ShownValue::ShownValue;

    /// New Font([Face], [Size], [Weight], [Slant], [Underline], [StrikeOut]). A face that is an item of the
    /// style is that.
    static GenericValue construct(std::span<GenericValue> arguments) {
        Font font;
        font.face = detail::optional_from<wstring>(arguments, 0);
        if (font.face) {
            font.item = find_style_font(*font.face);
            if (font.item)
                font.face.reset();
        }
        if (const auto points = detail::optional_from<Numeric>(arguments, 1))
            font.size = hundredths(*points);
        font.weight = detail::optional_from<std::int32_t>(arguments, 2);
        if (font.weight && !Font{.weight = font.weight}.isValid())
            ValueReceiver::parameter(2).refuseValue();
        font.slant = detail::optional_from<FontSlant>(arguments, 3);
        font.underline = detail::optional_from<bool>(arguments, 4);
        font.strikeOut = detail::optional_from<bool>(arguments, 5);
        return make(std::move(font));
    }
    static auto members() {
        using T = FontValue;
        return core::members(property(u"Kind", u"Вид", &T::kind), property(u"Item", u"Элемент", &T::item),
                             property(u"Face", u"Имя", &T::face), property(u"Size", u"Размер", &T::size),
                             property(u"Weight", u"Насыщенность", &T::weight),
                             property(u"Slant", u"Наклон", &T::slant),
                             property(u"Underline", u"Подчеркивание", &T::underline),
                             property(u"StrikeOut", u"Зачеркивание", &T::strikeOut),
                             method(u"Inheriting", u"Наследуя", &T::inheriting, {u"Base", u"Основа"}));
    }

    FontKind kind() const noexcept { return content().kind(); }
    std::optional<wstring> item() const {
        return content().item ? std::optional<wstring>(style_fonts()[*content().item].text[kEnglish])
                              : std::nullopt;
    }
    std::optional<wstring> face() const { return content().face; }
    /// In points.
    std::optional<Numeric> size() const {
        return content().size ? std::optional(Numeric(*content().size) / Numeric(100)) : std::nullopt;
    }
    std::optional<std::int32_t> weight() const noexcept { return content().weight; }
    std::optional<FontSlant> slant() const noexcept { return content().slant; }
    std::optional<bool> underline() const noexcept { return content().underline; }
    std::optional<bool> strikeOut() const noexcept { return content().strikeOut; }
    Font inheriting(const Font& base) const { return content().inheriting(base); }

  private:
    /// Refuses what is not within the limits, or finer than a hundredth.
    static std::int32_t hundredths(const Numeric& points) {
        const auto receiver = ValueReceiver::parameter(1);
        const auto size = from_value<std::int32_t>(Value(points * Numeric(100)), receiver);
        if (size < 1 || size > kMaxFontSize)
            receiver.refuseValue();
        return size;
    }
};

const ScriptClassEntry<FontValue> kFontValueEntry;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, Font& content) {
    content = content_from<FontValue>(value, receiver);
}

Value detail::value_of(const Font& content) {
    return FontValue::make(content);
}

} // namespace core
