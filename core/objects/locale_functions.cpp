// SPDX-License-Identifier: Apache-2.0
#include "core/locales/cached_format.h"

#include <core/collections/native_values.h>
#include <core/context/arguments.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/locales/words_format.h>
#include <core/objects/locale_functions.h>
#include <core/objects/locale_values.h>
#include <core/runtime/settings.h>

namespace core {
namespace {

using Arguments = std::span<GenericValue>;

class LocaleFunctions : public IContextImpl<IContextDefImpl<LocaleFunctions>>,
                        public ContextDefExtImpl<LocaleFunctions> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef, IContextDefExt, IContextDefParams>;

    static std::span<const Property<LocaleFunctions>> properties() noexcept { return {}; }
    static std::span<const Method<LocaleFunctions>> methods() noexcept {
        using T = LocaleFunctions;
        static constexpr Param kWishes[] = {named_param({u"Wishes", u"Пожелания"}),
                                            named_param({u"Available", u"Имеющиеся"})};
        static constexpr Param kWords[] = {
            named_param({u"Number", u"Число"}),
            named_param({u"FormatString", u"ФорматнаяСтрока"}, ParamDefault::emptyString)};
        static constexpr Method<T> kMethods[] = {
            {{u"Locales", u"Локали"}, {}, kFunction, &T::locales, &kValueArrayType},
            {{u"BestLocale", u"ЛучшаяЛокаль"}, kWishes, kFunction, &T::bestLocale},
            {{u"InWords", u"Прописью"}, kWords, kFunction, &T::inWords, &kStringType},
        };
        return kMethods;
    }

  private:
    GenericValue locales(Arguments) { return to_value(Locale::all()); }

    GenericValue bestLocale(Arguments a) {
        using Locales = std::vector<Locale>;
        const auto wishes = from_value<Locales>(a[0], ValueReceiver::parameter(0));
        return to_value(best_match(wishes, from_value<Locales>(a[1], ValueReceiver::parameter(1))));
    }

    GenericValue inWords(Arguments a) {
        const wstring format(text_argument(a[1], 1));
        return to_value(
            cached_format<WordsFormat>(format, current_settings().locale).format(number_argument(a[0], 0)));
    }
};

} // namespace

InterfacePtr<IContext_> create_locale_functions() {
    return make_object<LocaleFunctions>();
}

} // namespace core
