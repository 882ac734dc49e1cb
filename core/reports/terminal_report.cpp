// SPDX-License-Identifier: Apache-2.0
#include "core/reports/report_view.h"

#include <core/exchange/column_text.h>

#include <array>
#include <limits>
#include <ostream>

namespace core {
namespace {

int distance(Rgba a, Rgba b) noexcept {
    const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
    return 2 * red * red + 4 * green * green + 3 * blue * blue; // as eyes weigh them
}

template <std::size_t N>
std::size_t nearest(const std::array<Rgba, N>& palette, Rgba color) noexcept {
    std::size_t best = 0;
    for (std::size_t i = 1; i < N; ++i)
        best = distance(palette[i], color) < distance(palette[best], color) ? i : best;
    return best;
}

/// The colours that most terminals have under the first 16 numbers.
constexpr std::array<Rgba, 16> kSixteen = {{{0, 0, 0},
                                            {205, 0, 0},
                                            {0, 205, 0},
                                            {205, 205, 0},
                                            {0, 0, 238},
                                            {205, 0, 205},
                                            {0, 205, 205},
                                            {229, 229, 229},
                                            {127, 127, 127},
                                            {255, 0, 0},
                                            {0, 255, 0},
                                            {255, 255, 0},
                                            {92, 92, 255},
                                            {255, 0, 255},
                                            {0, 255, 255},
                                            {255, 255, 255}}};

/// The numbers from 16 on: a cube of 6 levels a channel, then greys.
constexpr std::array<Rgba, 240> kIndexed = [] {
    std::array<Rgba, 240> palette{};
    constexpr std::uint8_t kLevels[] = {0, 95, 135, 175, 215, 255};
    for (std::size_t i = 0; i < 216; ++i)
        palette[i] = {kLevels[i / 36], kLevels[i / 6 % 6], kLevels[i % 6]};
    for (std::size_t i = 0; i < 24; ++i) {
        const auto grey = static_cast<std::uint8_t>(8 + 10 * i);
        palette[216 + i] = {grey, grey, grey};
    }
    return palette;
}();

/// The parameters of an escape sequence for a colour of texts, or of backgrounds.
std::string color_code(Rgba color, bool isBack, TerminalColors colors) {
    const std::string lead = isBack ? ";48;" : ";38;";
    switch (colors) {
    case TerminalColors::full:
        return lead + "2;" + std::to_string(color.red) + ';' + std::to_string(color.green) + ';' +
               std::to_string(color.blue);
    case TerminalColors::indexed:
        return lead + "5;" + std::to_string(16 + nearest(kIndexed, color));
    case TerminalColors::sixteen: {
        const auto index = static_cast<int>(nearest(kSixteen, color));
        return ';' + std::to_string((index < 8 ? 30 + index : 82 + index) + (isBack ? 10 : 0));
    }
    case TerminalColors::none:
        break;
    }
    return {};
}

class TerminalLooks {
  public:
    TerminalLooks(const Style& style, TerminalColors colors) : style_(style), colors_(colors) {}

    /// The escape sequence of a look; empty for one that the terminal does not show.
    [[nodiscard]] std::string of(const CellLook& look) const {
        if (colors_ == TerminalColors::none)
            return {};
        constexpr std::int32_t kLooksBold = 600;
        std::string codes;
        codes += look.font.weight.value_or(kNormalWeight) >= kLooksBold ? ";1" : "";
        codes += look.font.slant.value_or(FontSlant::upright) != FontSlant::upright ? ";3" : "";
        codes += look.font.underline.value_or(false) ? ";4" : "";
        codes += look.font.strikeOut.value_or(false) ? ";9" : "";
        constexpr Rgba kAny{};
        const bool hasText = look.text && !look.text->isAutomatic();
        const bool hasBack = look.back && !look.back->isAutomatic();
        const Rgba back = hasBack ? style_.resolve(*look.back, kAny) : kAny;
        if (hasText || hasBack) // nobody knows whether the terminal's own texts can be read there
            codes +=
                color_code(hasText ? style_.resolve(*look.text, kAny) : strongest_on(back), false, colors_);
        if (hasBack)
            codes += color_code(back, true, colors_);
        return codes.empty() ? codes : "\x1B[" + codes.substr(1) + 'm';
    }
    /// The same with the items of the style where the look sets nothing. What the style does not set either
    /// has the colours of the terminal.
    [[nodiscard]] std::string of(CellLook look, wstring_view text, wstring_view back,
                                 wstring_view font) const {
        if (!look.text)
            look.text = style_.color(*find_color(style_colors(), text));
        if (!look.back)
            look.back = style_.color(*find_color(style_colors(), back));
        look.font = style_.resolve(look.font.inheriting({.item = find_style_font(font)}));
        return of(look);
    }

  private:
    const Style& style_;
    TerminalColors colors_;
};

} // namespace

void print_report(std::ostream& out, const Report& report, std::size_t width, std::size_t most,
                  TerminalColors colors) {
    ReportView shown(report);
    const TerminalLooks looks(shown.style(), colors);
    if (!report.style.title.empty()) {
        const std::string look = looks.of({}, u"TitleTextColor", u"BackColor", u"TitleFont");
        out << look << fitted_text(report.style.title, width).text << (look.empty() ? "" : "\x1B[0m") << '\n';
    }
    if (colors != TerminalColors::none) {
        std::vector<std::string> codes;
        for (const CellLook& look : shown.looks())
            codes.push_back(looks.of(look, u"TextColor", u"BackColor", u"TextFont"));
        shown.view().paint = [&shown, codes = std::move(codes),
                              header = looks.of({}, u"HeaderTextColor", u"HeaderBackColor", u"HeaderFont"),
                              totals = looks.of({}, u"TotalsTextColor", u"TotalsBackColor", u"TotalsFont")](
                                 std::size_t row, std::size_t column) {
            return row == TableView::kHeader   ? header
                   : row == TableView::kTotals ? totals
                                               : codes[shown.look(row, column)];
        };
    }
    print_table(out, shown.view(), width, most);
}

} // namespace core
