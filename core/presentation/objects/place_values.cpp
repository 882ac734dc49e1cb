// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

#include <core/strings/integer_text.h>

namespace core {
namespace {

class RectValue : public ContentValue<RectValue, Rect> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Rect", u"Прямоугольник"},
        .type = "d5456eec-4e86-4513-a2aa-3ce780817b54"_guid,
        .object = "a4a0eda5-ddbe-4749-9a14-23398973cc05"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_RECT",
        .arguments = {0, 4},
    };
    using ContentValue::ContentValue;

    /// New Rect([Left], [Top], [Right], [Bottom]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        std::int32_t edges[4] = {};
        for (int i = 0; i < 4; ++i)
            edges[i] = detail::optional_from<std::int32_t>(arguments, i).value_or(0);
        return make({edges[0], edges[1], edges[2], edges[3]});
    }
    static auto members() {
        using T = RectValue;
        return core::members(property(u"Left", u"Лево", &T::left), property(u"Top", u"Верх", &T::top),
                             property(u"Right", u"Право", &T::right), property(u"Bottom", u"Низ", &T::bottom),
                             property(u"Width", u"Ширина", &T::width),
                             property(u"Height", u"Высота", &T::height),
                             method(u"Contains", u"Содержит", &T::contains, {u"X", u"X"}, {u"Y", u"Y"}),
                             method(u"Intersection", u"Пересечение", &T::intersection, {u"Other", u"Другой"}),
                             method(u"Around", u"Вокруг", &T::around, {u"Other", u"Другой"}));
    }
    bool getString(wstring& out) const override {
        out = string_intto(left()) + u", " + string_intto(top()) + u", " + string_intto(right()) + u", " +
              string_intto(bottom());
        return true;
    }

    std::int32_t left() const noexcept { return content().left; }
    std::int32_t top() const noexcept { return content().top; }
    std::int32_t right() const noexcept { return content().right; }
    std::int32_t bottom() const noexcept { return content().bottom; }
    std::int64_t width() const noexcept { return content().width(); }
    std::int64_t height() const noexcept { return content().height(); }
    bool contains(std::int32_t x, std::int32_t y) const noexcept { return content().contains(x, y); }
    Rect intersection(const Rect& other) const noexcept { return content().intersection(other); }
    Rect around(const Rect& other) const noexcept { return content().around(other); }
};

class ShortCutValue : public ShownValue<ShortCutValue, ShortCut> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"ShortCut", u"СочетаниеКлавиш"},
        .type = "1b8928b5-e00e-4791-8004-f7ed813d1c32"_guid,
        .object = "16b28704-836f-461c-b1dc-c60ed225a09b"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_SHORTCUT",
        .arguments = {0, 1},
    };
    using ShownValue::ShownValue;

    /// New ShortCut([Text]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        return make(detail::optional_from<ShortCut>(arguments, 0).value_or(ShortCut()));
    }
    static auto members() {
        using T = ShortCutValue;
        return core::members(property(u"Text", u"Текст", &T::text), property(u"Key", u"Клавиша", &T::key),
                             property(u"Ctrl", u"Ctrl", &T::ctrl), property(u"Alt", u"Alt", &T::alt),
                             property(u"Shift", u"Shift", &T::shift), property(u"Meta", u"Meta", &T::meta));
    }

    wstring text() const { return content().toText(); }
    wstring key() const { return key_name(content().key()); }
    bool ctrl() const noexcept { return content().has(KeyModifiers::ctrl); }
    bool alt() const noexcept { return content().has(KeyModifiers::alt); }
    bool shift() const noexcept { return content().has(KeyModifiers::shift); }
    bool meta() const noexcept { return content().has(KeyModifiers::meta); }
};

const ScriptClassEntry<RectValue> kRect;
const ScriptClassEntry<ShortCutValue> kShortCut;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, Rect& content) {
    content = content_from<RectValue>(value, receiver);
}

void detail::read_content(const Value& value, ValueReceiver receiver, ShortCut& content) {
    content = content_or_text<ShortCutValue>(value, receiver);
}

Value detail::value_of(const Rect& content) {
    return RectValue::make(content);
}

Value detail::value_of(const ShortCut& content) {
    return ShortCutValue::make(content);
}

} // namespace core
