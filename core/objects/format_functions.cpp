// SPDX-License-Identifier: Apache-2.0
#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/locales/format.h>
#include <core/objects/format_functions.h>
#include <core/runtime/internal_class.h>
#include <core/values/format_value.h>

namespace core {
namespace {

using Arguments = std::span<GenericValue>;

class FormatFunctions : public IContextImpl<IContextDefImpl<FormatFunctions>>,
                        public ContextDefExtImpl<FormatFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<FormatFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<FormatFunctions>> methods() noexcept {
        using T = FormatFunctions;
        static constexpr Param kString =
            named_param({u"FormatString", u"ФорматнаяСтрока"}, ParamDefault::emptyString);
        static constexpr Param kFormat[] = {named_param({u"Value", u"Значение"}), kString};
        static constexpr Param kParse[] = {named_param({u"Text", u"Текст"}), kString};
        static constexpr Method<T> kMethods[] = {
            {{u"Format", u"Формат"}, kFormat, kFunction, &T::format, &kStringType},
            {{u"ParseNumber", u"РазобратьЧисло"}, kParse, kFunction, &T::parseNumber},
            {{u"ParseDate", u"РазобратьДату"}, kParse, kFunction, &T::parseDate},
        };
        return kMethods;
    }

  private:
    GenericValue format(Arguments a) { return GenericValue(format_value(a[0], text_argument(a[1], 1))); }
    GenericValue parseNumber(Arguments a) {
        const auto number = parse_number(text_argument(a[0], 0), text_argument(a[1], 1));
        return number ? GenericValue(*number) : GenericValue();
    }
    GenericValue parseDate(Arguments a) {
        const auto date = parse_date(text_argument(a[0], 0), text_argument(a[1], 1));
        return date ? GenericValue(*date) : GenericValue();
    }
};

} // namespace

InterfacePtr<IContext_> create_format_functions() {
    return make_object<FormatFunctions>();
}

} // namespace core
