// SPDX-License-Identifier: Apache-2.0
#include "core/reports/page/page_styles.h"

#include <core/runtime/utf8.h>

#include <array>

namespace core {
namespace {

// Print repeats the titles on each sheet, but no button in them: there they are text alone. Totals stand
// once, below all rows.
constexpr std::string_view kSheet = R"(*{box-sizing:border-box}
body{margin:1.5rem;color:var(--TextColor);background:var(--BackColor)}
table{min-width:min(100%,26em);border-collapse:collapse}
caption{padding-bottom:.6em;text-align:start;color:var(--TitleTextColor)}
th,td{padding:.35em .75em;border-bottom:1px solid var(--BorderColor);text-align:start;vertical-align:top;unicode-bidi:plaintext}
th{position:sticky;top:0;white-space:nowrap;color:var(--HeaderTextColor);background:var(--HeaderBackColor)}
th button{all:unset;cursor:pointer}
th button:hover{text-decoration:underline}
th button:focus-visible{outline:2px solid var(--AccentColor);outline-offset:3px}
th[aria-sort]:not([aria-sort=none]) button::after{content:" ▲"/"";color:var(--AccentColor)}
th[aria-sort=descending] button::after{content:" ▼"/""}
tfoot td{border-top:2px solid var(--BorderColor);color:var(--TotalsTextColor);background:var(--TotalsBackColor)}
td.level{padding-inline-start:calc(.75em + 1.5em*var(--level))}
.left{text-align:left}.center{text-align:center}.right{text-align:right}
td.right{font-variant-numeric:tabular-nums}
td[data-n]{white-space:nowrap}
td img{max-width:16em;max-height:6em;vertical-align:middle}
.rules{display:flex;flex-wrap:wrap;gap:.4em 1em;margin:1em 0;padding:0;list-style:none}
.rules span{padding:.1em .4em}
@media print{
body{margin:0}
th{position:static}
th button{display:contents}
tfoot{display:table-row-group}
tr{break-inside:avoid}
th button::after{content:""!important}
*{print-color-adjust:exact;-webkit-print-color-adjust:exact}
}
)";

/// An item of a style with what it is on a dark page where the style does not set it.
struct PageColor {
    const wchar* item;
    Rgba dark;
};
constexpr std::array<PageColor, 9> kPageColors = {{
    {u"TextColor", {0xE6, 0xE9, 0xED}},
    {u"BackColor", {0x12, 0x16, 0x1C}},
    {u"BorderColor", {0x3A, 0x43, 0x4E}},
    {u"TitleTextColor", {0xF2, 0xF4, 0xF7}},
    {u"HeaderTextColor", {0xE6, 0xE9, 0xED}},
    {u"HeaderBackColor", {0x1D, 0x24, 0x2D}},
    {u"TotalsTextColor", {0xE6, 0xE9, 0xED}},
    {u"TotalsBackColor", {0x19, 0x1F, 0x27}},
    {u"AccentColor", {0x6C, 0xB2, 0xFF}},
}};

/// "#RRGGBB" or "#RRGGBBAA".
std::string css(Rgba color) {
    return to_utf8(Color(color).toText());
}

/// The name of a family between quotes, which nothing in it can end.
std::string css_family(wstring_view face) {
    std::string text = "\"";
    for (const char c : to_utf8(face)) {
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                             c == ' ' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
        text += isPlain ? c : '_';
    }
    return text + '"';
}

/// The declarations of the parts that a font has.
std::string css(const Font& font) {
    std::string text;
    if (font.face)
        text += "font-family:" + (font.face->empty() ? "" : css_family(*font.face) + ',') +
                "system-ui,sans-serif;";
    if (font.size)
        text += "font-size:" + std::to_string(*font.size / 100) + '.' + std::to_string(*font.size / 10 % 10) +
                std::to_string(*font.size % 10) + "pt;";
    if (font.weight)
        text += "font-weight:" + std::to_string(*font.weight) + ';';
    if (font.slant)
        text += *font.slant == FontSlant::upright  ? "font-style:normal;"
                : *font.slant == FontSlant::italic ? "font-style:italic;"
                                                   : "font-style:oblique;";
    const bool underline = font.underline.value_or(false), strikeOut = font.strikeOut.value_or(false);
    if (underline || strikeOut)
        text += std::string("text-decoration:") + (underline ? "underline" : "") +
                (strikeOut ? " line-through" : "") + ';';
    return text;
}

constexpr double kLegible = 4.5; // the least contrast that everybody can read

/// The colours of a light or a dark page.
class Scheme {
  public:
    Scheme(const Style& style, bool isDark) : style_(style), isDark_(isDark) {}

    /// The colour of an item of the style.
    [[nodiscard]] Rgba item(wstring_view name) const {
        const std::size_t position = *find_color(style_colors(), name);
        const auto set = style_.color(position);
        if (set && !set->isAutomatic())
            return style_.resolve(*set, style_colors()[position].rgba);
        for (const PageColor& color : kPageColors) {
            if (isDark_ && name == color.item)
                return color.dark;
        }
        return style_colors()[position].rgba;
    }
    /// The colour of a text of a page, which can be read on an item.
    [[nodiscard]] Rgba text(wstring_view name, wstring_view back) const {
        return legible(item(name), item(back));
    }

    /// The variables of the page.
    [[nodiscard]] std::string variables() const {
        std::string text;
        for (const PageColor& color : kPageColors) {
            const wstring_view name = color.item;
            const bool isText = name.ends_with(u"TextColor");
            const wstring_view back = name.starts_with(u"Header")   ? u"HeaderBackColor"
                                      : name.starts_with(u"Totals") ? u"TotalsBackColor"
                                                                    : u"BackColor";
            text += "--" + to_utf8(name) + ':' + css(isText ? this->text(name, back) : item(name)) + ';';
        }
        return text;
    }
    /// The colours of a look. One that has a background alone gets a text that can be read on it.
    [[nodiscard]] std::string colors(const CellLook& look) const {
        const Rgba page = item(u"BackColor");
        const Rgba back = look.back ? blend(style_.resolve(*look.back, page), page) : page;
        const Rgba normal = item(u"TextColor");
        std::string text;
        if (look.text)
            text += "color:" + css(legible(style_.resolve(*look.text, normal), back)) + ';';
        else if (look.back)
            text += "color:" + css(contrast(normal, back) >= kLegible ? normal : strongest_on(back)) + ';';
        if (look.back)
            text += "background:" + css(back) + ';';
        return text;
    }

  private:
    const Style& style_;
    bool isDark_;
};

std::string rules_of(const Scheme& scheme, const std::vector<CellLook>& looks) {
    std::string text = ":root{" + scheme.variables() + "}\n";
    for (std::size_t i = 1; i < looks.size(); ++i) {
        if (const std::string colors = scheme.colors(looks[i]); !colors.empty())
            text += ".k" + std::to_string(i) + '{' + colors + "}\n";
    }
    return text;
}

} // namespace

std::string page_styles(const Style& style, const std::vector<CellLook>& looks) {
    const auto font_of = [&style](wstring_view item) {
        return css(style.resolve(Font{.item = find_style_font(item)}));
    };
    std::string text(kSheet);
    text += ":root{color-scheme:light dark}\nbody{" + font_of(u"TextFont") + "}\ncaption{" +
            font_of(u"TitleFont") + "}\nth{" + font_of(u"HeaderFont") + "}\ntfoot td{" +
            font_of(u"TotalsFont") + "}\n";
    for (std::size_t i = 1; i < looks.size(); ++i) {
        Font font = looks[i].font;
        if (font.item)
            font = style.resolve(font);
        if (const std::string said = css(font); !said.empty())
            text += ".k" + std::to_string(i) + '{' + said + "}\n";
    }
    text += rules_of(Scheme(style, false), looks);
    text += "@media screen and (prefers-color-scheme:dark){\n" + rules_of(Scheme(style, true), looks) + "}\n";
    return text;
}

} // namespace core
