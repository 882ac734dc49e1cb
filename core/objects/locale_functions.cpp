// SPDX-License-Identifier: Apache-2.0
#include <core/collections/native_values.h>
#include <core/context/context_def_ext.h>
#include <core/context/context_impl.h>
#include <core/objects/locale_functions.h>
#include <core/objects/locale_values.h>

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
        static constexpr Method<T> kMethods[] = {
            {{u"Locales", u"Локали"}, {}, kFunction, &T::locales, &kValueArrayType},
            {{u"BestLocale", u"ЛучшаяЛокаль"}, kWishes, kFunction, &T::bestLocale},
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
};

} // namespace

InterfacePtr<IContext_> create_locale_functions() {
    return make_object<LocaleFunctions>();
}

} // namespace core
