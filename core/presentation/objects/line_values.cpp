// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

namespace core {
namespace {

class LineValue : public ShownValue<LineValue, LumLine> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Line", u"Линия"},
        .type = "9a5867ef-e23d-47ee-8ad4-00c72d011a29"_guid,
        .object = "39a1485c-d673-484d-834e-b62092bbcdd4"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_LINE",
        .arguments = {0, 3},
    };
    using ShownValue::ShownValue;

    /// New Line([Kind], [Width], [Color]).
    static GenericValue construct(std::span<GenericValue> arguments) {
        LumLine line;
        line.kind = detail::optional_from<LineKind>(arguments, 0).value_or(line.kind);
        line.width = detail::optional_from<std::int32_t>(arguments, 1).value_or(line.width);
        line.color = detail::optional_from<Color>(arguments, 2).value_or(line.color);
        if (!line.isValid())
            ValueReceiver::parameter(1).refuseValue();
        return make(line);
    }
    static auto members() {
        using T = LineValue;
        return core::members(property(u"Kind", u"Вид", &T::kind), property(u"Width", u"Толщина", &T::width),
                             property(u"Color", u"Цвет", &T::color));
    }

    LineKind kind() const noexcept { return content().kind; }
    std::int32_t width() const noexcept { return content().width; }
    Color color() const noexcept { return content().color; }
};

class BorderValue : public ShownValue<BorderValue, LumBorder> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Border", u"Рамка"},
        .type = "2a589fae-cc83-44e6-af6c-2eb317156e53"_guid,
        .object = "ebb22cd4-9b40-4328-9232-977ef5300582"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_BORDER",
        .arguments = {0, 5},
    };
    using ShownValue::ShownValue;

    /// New Border([Kind], [Left], [Top], [Right], [Bottom]). One line is that of all sides; a side that is
    /// left out next to others has none. Without a kind it is Lines where there is a line.
    static GenericValue construct(std::span<GenericValue> arguments) {
        LumBorder border;
        const auto kind = detail::optional_from<BorderKind>(arguments, 0);
        int lines = 0;
        for (int i = 0; i < 4; ++i) {
            if (const auto line = detail::optional_from<LumLine>(arguments, i + 1)) {
                border.sides[static_cast<std::size_t>(i)] = *line;
                ++lines;
            }
        }
        if (arguments.size() == 2 && lines == 1)
            border.sides.fill(border.sides[0]);
        border.kind = kind.value_or(lines > 0 ? BorderKind::lines : BorderKind::automatic);
        return make(border);
    }
    static auto members() {
        using T = BorderValue;
        return core::members(property(u"Kind", u"Вид", &T::kind), property(u"Left", u"Слева", &T::left),
                             property(u"Top", u"Сверху", &T::top), property(u"Right", u"Справа", &T::right),
                             property(u"Bottom", u"Снизу", &T::bottom));
    }

    BorderKind kind() const noexcept { return content().kind; }
    LumLine left() const noexcept { return content().side(BorderSide::left); }
    LumLine top() const noexcept { return content().side(BorderSide::top); }
    LumLine right() const noexcept { return content().side(BorderSide::right); }
    LumLine bottom() const noexcept { return content().side(BorderSide::bottom); }
};

const ScriptClassEntry<LineValue> kLine;
const ScriptClassEntry<BorderValue> kBorder;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, LumLine& content) {
    content = content_from<LineValue>(value, receiver);
}

void detail::read_content(const Value& value, ValueReceiver receiver, LumBorder& content) {
    content = content_from<BorderValue>(value, receiver);
}

Value detail::value_of(const LumLine& content) {
    return LineValue::make(content);
}

Value detail::value_of(const LumBorder& content) {
    return BorderValue::make(content);
}

} // namespace core
