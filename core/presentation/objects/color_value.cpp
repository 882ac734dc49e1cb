// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

#include <core/presentation/rgba.h>

namespace core {
namespace {

class ColorValue : public ShownValue<ColorValue, Color> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Color", u"Цвет"},
        .type = "b2be2a45-4ec2-4071-9561-849b04f24fcb"_guid,
        .object = "ec38fffe-bf41-4930-96ed-e28f74796ada"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_COLOR",
        .arguments = {0, 4},
    };
    using ShownValue::ShownValue;

    /// New Color(), of a text, or of red, green, blue and alpha.
    static GenericValue construct(std::span<GenericValue> arguments) {
        if (arguments.empty())
            return make({});
        if (arguments.size() == 1)
            return make(from_value<Color>(arguments[0]));
        const std::uint8_t alpha =
            arguments.size() > 3 && !arguments[3].isUndefined() ? channel(arguments, 3) : 255;
        return make(Color(channel(arguments, 0), channel(arguments, 1), channel(arguments, 2), alpha));
    }
    static auto members() {
        using T = ColorValue;
        return core::members(property(u"Kind", u"Вид", &T::kind), property(u"Name", u"Имя", &T::name),
                             property(u"Text", u"Текст", &T::text), property(u"Red", u"Красный", &T::red),
                             property(u"Green", u"Зеленый", &T::green), property(u"Blue", u"Синий", &T::blue),
                             property(u"Alpha", u"Непрозрачность", &T::alpha),
                             method(u"Contrast", u"Контраст", &T::contrastOn, {u"Background", u"Фон"}),
                             method(u"Over", u"Поверх", &T::over, {u"Background", u"Фон"}));
    }

    ColorKind kind() const noexcept { return content().kind(); }
    std::optional<wstring> name() const {
        const wchar* const english = content().name(kEnglish);
        return english != nullptr ? std::optional<wstring>(english) : std::nullopt;
    }
    wstring text() const { return content().toText(); }
    std::optional<int> red() const noexcept { return part(&Rgba::red); }
    std::optional<int> green() const noexcept { return part(&Rgba::green); }
    std::optional<int> blue() const noexcept { return part(&Rgba::blue); }
    std::optional<int> alpha() const noexcept { return part(&Rgba::alpha); }

    /// Undefined where one of the two is automatic.
    std::optional<double> contrastOn(const Color& background) const {
        const auto text = content().rgba();
        const auto back = background.rgba();
        return text && back ? std::optional(contrast(*text, *back)) : std::nullopt;
    }
    Color over(const Color& background) const {
        const auto above = content().rgba();
        const auto below = background.rgba();
        if (!above)
            return background;
        return below ? Color(blend(*above, *below)) : content();
    }

  private:
    std::optional<int> part(std::uint8_t Rgba::*channel) const noexcept {
        const auto rgba = content().rgba();
        return rgba ? std::optional<int>((*rgba).*channel) : std::nullopt;
    }
    static std::uint8_t channel(std::span<GenericValue> arguments, std::size_t index) {
        const auto receiver = ValueReceiver::parameter(static_cast<int>(index));
        const int number = from_value<int>(optional_argument(arguments, index), receiver);
        if (number < 0 || number > 255)
            receiver.refuseValue();
        return static_cast<std::uint8_t>(number);
    }
};

const ScriptClassEntry<ColorValue> kColorValueEntry;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, Color& content) {
    content = content_or_text<ColorValue>(value, receiver);
}

Value detail::value_of(const Color& content) {
    return ColorValue::make(content);
}

} // namespace core
