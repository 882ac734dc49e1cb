// SPDX-License-Identifier: Apache-2.0
// Concerns: every colour of every table found by both names and read back to the bit; texts of colours that
// are none refused; conversions against their definitions; contrast against published ratios.
#include <core/lists.h>
#include <core/presentation.h>
#include <core/streams/memory_stream.h>
#include <core/strings/compare.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

namespace {

using namespace core;

constexpr ColorKind kNamedKinds[] = {ColorKind::web, ColorKind::windows, ColorKind::style};

std::span<const NamedColor> table_of(ColorKind kind) {
    return kind == ColorKind::web       ? web_colors()
           : kind == ColorKind::windows ? windows_colors()
                                        : style_colors();
}

TEST(Colors, EveryNameLeadsToItsColourAndItsTextBack) {
    const wchar* const prefixes[][2] = {
        {u"WEB:", u"Веб:"}, {u"Windows:", u"ВИНДОВС:"}, {u"style:", u"стиль:"}};
    std::size_t family = 0;
    for (const ColorKind kind : kNamedKinds) {
        const auto table = table_of(kind);
        for (std::size_t i = 0; i < table.size(); ++i) {
            const Color color = Color::named(kind, i);
            EXPECT_EQ(color.kind(), kind);
            EXPECT_EQ(color.rgba(), table[i].rgba);
            EXPECT_EQ(Color::fromText(color.toText()), color);
            for (const int alias : {kEnglish, kRussian}) {
                const wchar* const name = table[i].names.text[alias];
                if (name == nullptr)
                    continue;
                EXPECT_EQ(Color::fromText(prefixes[family][alias] + fold_case(wstring_view(name))), color);
            }
        }
        ++family;
    }
    EXPECT_EQ(web_colors().size(), 148U);
    EXPECT_EQ(Color::fromText(u" steelBLUE ")->rgba(), (Rgba{0x46, 0x82, 0xB4}));
    EXPECT_EQ(Color::fromText(u"СтальнойСиний"), Color::web(u"SteelBlue"));
}

TEST(Colors, NamesOfOneTableAndLanguageDiffer) {
    for (const ColorKind kind : kNamedKinds) {
        std::set<wstring> seen;
        for (const NamedColor& color : table_of(kind)) {
            for (const wchar* const name : color.names.text)
                EXPECT_TRUE(name == nullptr || seen.insert(fold_case(wstring_view(name))).second);
        }
    }
}

TEST(Colors, TwoNamesOfOneColourAreTwoColours) {
    const Color aqua = *Color::web(u"Aqua");
    const Color cyan = *Color::web(u"Cyan");
    EXPECT_NE(aqua, cyan);
    EXPECT_EQ(aqua.rgba(), cyan.rgba());
    EXPECT_NE(aqua, Color(0, 255, 255));
    EXPECT_EQ(wstring(Color::web(u"Grey")->name(kRussian)), u"Grey"); // it has no Russian name
}

TEST(Colors, DigitsStandForRedGreenBlueAlpha) {
    EXPECT_EQ(Color::fromText(u"#12345678"), Color(0x12, 0x34, 0x56, 0x78));
    EXPECT_EQ(Color::fromText(u"#aBc"), Color(0xAA, 0xBB, 0xCC));
    EXPECT_EQ(Color::fromText(u"#abc8"), Color(0xAA, 0xBB, 0xCC, 0x88));
    EXPECT_EQ(Color(1, 2, 254).toText(), u"#0102FE");
    EXPECT_EQ(Color(1, 2, 254, 0).toText(), u"#0102FE00");
    EXPECT_EQ(Color().toText(), u"auto");
    EXPECT_EQ(Color::fromText(u"АВТО"), Color());
    std::mt19937 random(1);
    for (int i = 0; i < 10'000; ++i) {
        const Color color(Rgba::fromNumber(static_cast<std::uint32_t>(random())));
        EXPECT_EQ(Color::fromText(color.toText()), color);
    }
}

TEST(Colors, OtherTextsAreRefused) {
    for (const wstring_view text : {u"", u"#", u"#1", u"#12", u"#12345", u"#1234567", u"#123456789",
                                    u"#GGGGGG", u"#１２３", u"web:", u"web:Nothing", u"windows:SteelBlue",
                                    u"other:SteelBlue", u"Steel Blue", u"web:web:Red", u":", u"0x112233"})
        EXPECT_EQ(Color::fromText(text), std::nullopt) << testing::PrintToString(std::u16string(text));
}

TEST(Colors, AreReadBackFromStreams) {
    MemoryOutStream text;
    ListOutStream out(text);
    const Color colors[] = {Color(), Color(1, 2, 3, 4), *Color::web(u"RebeccaPurple"),
                            *Color::windows(u"Menu"), *Color::style(u"TextColor")};
    out.putBeginOfList();
    for (const Color& color : colors)
        to_stream(out, color);
    out.putEndOfList();
    const wstring written = text.take();
    MemoryInStream again(written);
    ListInStream in(again);
    in.getBeginOfList();
    for (const Color& expected : colors) {
        Color color(9, 9, 9);
        from_stream(in, color);
        EXPECT_EQ(color, expected);
    }
    MemoryInStream bad(u"\"web:Nothing\"");
    ListInStream badIn(bad);
    Color kept(9, 9, 9);
    EXPECT_THROW(from_stream(badIn, kept), ListStreamException);
    EXPECT_EQ(kept, Color(9, 9, 9));
}

TEST(Colors, HueSaturationAndLightnessGoThereAndBack) {
    // Every colour of which each channel is a multiple of 5 or a neighbour of one.
    for (int red = 0; red < 256; red += 5) {
        for (int green = 0; green < 256; green += 5) {
            for (int blue = 0; blue < 256; blue += 5) {
                const Rgba color{static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green ^ (red & 1)),
                                 static_cast<std::uint8_t>(blue ^ (green & 1)), 77};
                const Hsl hsl = to_hsl(color);
                ASSERT_EQ(from_hsl(hsl, 77), color);
                ASSERT_TRUE(hsl.hue >= 0 && hsl.hue < 360 && hsl.saturation >= 0 &&
                            hsl.saturation <= 1.0000001);
            }
        }
    }
    EXPECT_EQ(from_hsl({.hue = 120, .saturation = 1, .lightness = 0.25}), (Rgba{0, 128, 0}));
    EXPECT_EQ(from_hsl({.hue = -240, .saturation = 1, .lightness = 0.5}), (Rgba{0, 255, 0}));
    EXPECT_EQ(from_hsl({.hue = NAN, .saturation = NAN, .lightness = INFINITY}), (Rgba{255, 255, 255}));
}

TEST(Colors, BlendingAgreesWithItsFormula) {
    std::mt19937 random(2);
    for (int i = 0; i < 100'000; ++i) {
        const Rgba above = Rgba::fromNumber(static_cast<std::uint32_t>(random()));
        const Rgba below = Rgba::fromNumber(static_cast<std::uint32_t>(random()));
        const double a = above.alpha / 255.0;
        const double b = below.alpha / 255.0 * (1 - a);
        const Rgba seen = blend(above, below);
        ASSERT_NEAR(seen.alpha, (a + b) * 255, 0.5001);
        if (a + b > 0) {
            ASSERT_NEAR(seen.green, (above.green * a + below.green * b) / (a + b), 0.5001);
        }
    }
    EXPECT_EQ(blend({1, 2, 3, 0}, {4, 5, 6, 0}), (Rgba{0, 0, 0, 0}));
}

TEST(Colors, LegibleOnesKeepTheirHueAndChangeNoMoreThanTheyMust) {
    std::minstd_rand random(7); // the same colours each time
    const auto any = [&random] { return Rgba::fromNumber(static_cast<std::uint32_t>(random()) << 1); };
    for (int i = 0; i < 5000; ++i) {
        const Rgba text = any();
        const Rgba background = any();
        const Rgba seen = legible(text, background);
        EXPECT_GE(contrast(seen, background), 4.5);
        if (contrast(text, background) >= 4.5) {
            EXPECT_EQ(seen, text);
            continue;
        }
        const Hsl hsl = to_hsl(seen);
        const double end = luminance(seen) > luminance(background) ? 1 : 0;
        const Rgba lessChanged = from_hsl({hsl.hue, hsl.saturation, hsl.lightness + (0.5 - end) * 0.04});
        EXPECT_LT(contrast(lessChanged, background), 4.6) << i;
    }
}

TEST(Colors, ContrastIsThatOfTheGuidelines) {
    const Rgba black{0, 0, 0};
    const Rgba white{255, 255, 255};
    EXPECT_DOUBLE_EQ(contrast(black, white), 21);
    EXPECT_DOUBLE_EQ(contrast(white, white), 1);
    EXPECT_NEAR(contrast({0x76, 0x76, 0x76}, white), 4.54, 0.005); // the lightest grey that texts may have
    EXPECT_NEAR(contrast({0, 0, 255}, white), 8.59, 0.005);
    EXPECT_DOUBLE_EQ(contrast({0, 0, 0, 0}, white), 1);
    // A style that nobody changed can be read by everybody.
    const auto item = [](const wchar* name) { return *Color::style(name)->rgba(); };
    constexpr const wchar* kPairs[][2] = {
        {u"TextColor", u"BackColor"},
        {u"TitleTextColor", u"BackColor"},
        {u"HeaderTextColor", u"HeaderBackColor"},
        {u"TotalsTextColor", u"TotalsBackColor"},
        {u"FieldTextColor", u"FieldBackColor"},
        {u"ButtonTextColor", u"ButtonBackColor"},
        {u"SelectionTextColor", u"SelectionBackColor"},
        {u"AccentColor", u"BackColor"},
        {u"NegativeTextColor", u"BackColor"},
        {u"DisabledTextColor", u"BackColor"},
    };
    for (const auto& [text, back] : kPairs)
        EXPECT_GE(contrast(item(text), item(back)), 4.5);
}

} // namespace
