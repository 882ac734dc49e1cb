// SPDX-License-Identifier: Apache-2.0
#include "core/presentation/objects/shown_value.h"

#include <core/context/name_cache.h>
#include <core/presentation/color_tables.h>

namespace core {
namespace {

/// A context with a property for each colour of a table. Names are found by walking the table, which takes no
/// memory and is done once for each place of a script.
template <class T>
class ColorNames : public IContextImpl<IContextDefImpl<T>> {
    using Base = IContextImpl<IContextDefImpl<T>>;

  public:
    int getNProps() const override { return static_cast<int>(T::table().size()); }
    const wchar* getPropName(int prop, int alias) const override {
        return isHere(prop) ? term_string(T::table()[static_cast<std::size_t>(prop)].names, alias) : nullptr;
    }
    bool isPropReadable(int prop) const override { return isHere(prop); }
    bool isPropWritable(int) const override { return false; }
    int findProp(const wchar* name) const override { return ContextDefNoncached().findProp(*this, name); }
    void getPropVal(int prop, GenericValue& out) override {
        if (!isHere(prop))
            detail::bad_property(prop);
        out = to_value(Color::named(T::kKind, static_cast<std::size_t>(prop)));
    }
    void setPropVal(int prop, const GenericValue&) override {
        if (!isHere(prop))
            detail::bad_property(prop);
        detail::unwritable_property(getPropName(prop, kEnglish));
    }

  protected:
    ~ColorNames() = default;

  private:
    static bool isHere(int prop) noexcept {
        return prop >= 0 && static_cast<std::size_t>(prop) < T::table().size();
    }
};

class WebColors : public ScriptObjectOver<WebColors, ColorNames<WebColors>> {
  public:
    static constexpr ClassNames names{u"WebColors", u"ЦветаВеб", "IDS_TYPE_PRESENTATION_WEBCOLORS"};
    static constexpr ColorKind kKind = ColorKind::web;
    static std::span<const NamedColor> table() noexcept { return web_colors(); }
};

class WindowsColors : public ScriptObjectOver<WindowsColors, ColorNames<WindowsColors>> {
  public:
    static constexpr ClassNames names{u"WindowsColors", u"ЦветаВиндовс",
                                      "IDS_TYPE_PRESENTATION_WINDOWSCOLORS"};
    static constexpr ColorKind kKind = ColorKind::windows;
    static std::span<const NamedColor> table() noexcept { return windows_colors(); }
};

class StyleColors : public ScriptObjectOver<StyleColors, ColorNames<StyleColors>> {
  public:
    static constexpr ClassNames names{u"StyleColors", u"ЦветаСтиля", "IDS_TYPE_PRESENTATION_STYLECOLORS"};
    static constexpr ColorKind kKind = ColorKind::style;
    static std::span<const NamedColor> table() noexcept { return style_colors(); }
};

/// The tables as properties of the global context.
class PresentationFunctions : public IContextImpl<IContextDefImpl<PresentationFunctions>> {
  public:
    using Interfaces = InterfaceList<IContext_, IContextDef>;

    static std::span<const Property<PresentationFunctions>> properties() noexcept {
        using T = PresentationFunctions;
        static constexpr Property<T> kTable[] = {
            {{u"WebColors", u"ЦветаВеб"}, &T::web, nullptr},
            {{u"WindowsColors", u"ЦветаВиндовс"}, &T::windows, nullptr},
            {{u"StyleColors", u"ЦветаСтиля"}, &T::style, nullptr},
        };
        return kTable;
    }
    static std::span<const Method<PresentationFunctions>> methods() noexcept { return {}; }

  private:
    GenericValue web() const { return web_; }
    GenericValue windows() const { return windows_; }
    GenericValue style() const { return style_; }

    ObjectPtr<WebColors> web_ = make_object<WebColors>();
    ObjectPtr<WindowsColors> windows_ = make_object<WindowsColors>();
    ObjectPtr<StyleColors> style_ = make_object<StyleColors>();
};

const ScriptClassEntry<WebColors> kWebColors;
const ScriptClassEntry<WindowsColors> kWindowsColors;
const ScriptClassEntry<StyleColors> kStyleColors;

} // namespace

InterfacePtr<IContext_> create_presentation_functions() {
    return make_object<PresentationFunctions>();
}

} // namespace core
