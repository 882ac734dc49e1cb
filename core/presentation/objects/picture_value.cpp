// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

#include <core/objects/binary_data.h>

namespace core {
namespace {

class PictureValue : public ShownValue<PictureValue, Picture> {
  public:
    static constexpr ScriptClass script = {
        .names = {u"Picture", u"Картинка"},
        .type = kPictureType,
        .object = "7d0592b7-efde-445f-863e-b86a32492e62"_guid,
        .presentation = "IDS_TYPE_PRESENTATION_PICTURE",
        .arguments = {0, 1},
    };
    using ShownValue::ShownValue;

    /// New Picture([File]), or of BinaryData.
    static GenericValue construct(std::span<GenericValue> arguments) {
        const GenericValue& source = optional_argument(arguments, 0);
        if (source.isUndefined())
            return make({});
        if (const auto data = source.query<IBinaryData>())
            return make(Picture::fromBytes({data->bytes().begin(), data->bytes().end()}));
        return make(Picture::fromFile(from_value<wstring>(source)));
    }
    static auto members() {
        using T = PictureValue;
        return core::members(
            property(u"Format", u"Формат", &T::format), property(u"Width", u"Ширина", &T::width),
            property(u"Height", u"Высота", &T::height),
            property(u"HorizontalResolution", u"РазрешениеПоГоризонтали", &T::horizontalResolution),
            property(u"VerticalResolution", u"РазрешениеПоВертикали", &T::verticalResolution),
            method(u"GetData", u"ПолучитьДанные", &T::data));
    }

    PictureFormat format() const noexcept { return content().info().format; }
    /// Undefined where the picture does not say it; so are those below.
    std::optional<std::uint32_t> width() const noexcept { return known(content().info().width); }
    std::optional<std::uint32_t> height() const noexcept { return known(content().info().height); }
    std::optional<double> horizontalResolution() const noexcept {
        return known(content().info().horizontalResolution);
    }
    std::optional<double> verticalResolution() const noexcept {
        return known(content().info().verticalResolution);
    }
    Value data() const {
        const Picture picture = content().resolved();
        return create_binary_data({picture.bytes().begin(), picture.bytes().end()});
    }

  private:
    template <class N>
    static std::optional<N> known(N number) noexcept {
        return number > 0 ? std::optional(number) : std::nullopt;
    }
};

const ScriptClassEntry<PictureValue> kPictureValueEntry;

} // namespace

void detail::read_content(const Value& value, ValueReceiver receiver, Picture& content) {
    content = content_from<PictureValue>(value, receiver);
}

Value detail::value_of(const Picture& content) {
    return PictureValue::make(content);
}

} // namespace core
