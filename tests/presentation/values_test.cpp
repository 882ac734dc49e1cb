// SPDX-License-Identifier: Apache-2.0
// Concerns: shortcuts by one text each; fonts, lines, borders, rectangles and styles read back from streams;
// what inherits and what leads in a circle; wrong numbers in streams refused with nothing changed; the
// services; what scripts reach.
#include "tests/collections/script.h"
#include "tests/presentation/stored.h"

#include <core/lists.h>
#include <core/presentation.h>
#include <core/streams/memory_stream.h>

#include <gtest/gtest.h>

/// Of docs/presentation.md.
core::Rgba readable(const core::Style& style, const core::Color& text, core::Rgba background);

namespace {

using namespace core;
using core::test::restored;
using core::test::stored;

template <class C>
void expect_read_back(const C& content) {
    const C again = restored<C>(stored(content));
    EXPECT_EQ(again, content);
    EXPECT_EQ(again.hash(), content.hash());
    EXPECT_EQ(from_value<C>(to_value(content)), content);
}

class PresentationValues : public script::Test {};

TEST(ShortCuts, HaveOneTextEach) {
    constexpr KeyModifiers kCtrlShift = KeyModifiers::ctrl | KeyModifiers::shift;
    EXPECT_EQ(ShortCut::fromText(u"Ctrl++"), ShortCut(u'+', KeyModifiers::ctrl));
    EXPECT_EQ(ShortCut::fromText(u"shift + CTRL + +"), ShortCut(u'+', kCtrlShift));
    EXPECT_EQ(ShortCut::fromText(u"+"), ShortCut(u'+'));
    EXPECT_EQ(ShortCut(u'+', kCtrlShift).toText(), u"Ctrl+Shift++");
    EXPECT_EQ(ShortCut::fromText(u"ctrl+a")->toText(), u"Ctrl+A");
    EXPECT_EQ(ShortCut::fromText(u"F24")->toText(), u"F24");
    EXPECT_EQ(ShortCut::fromText(u" "), ShortCut());
    for (const wchar* text : {u"Ctrl", u"Ctrl+", u"Ctrl+Ctrl+A", u"++", u"F0", u"F25", u"F01", u"AB", u"я",
                              u"Ctrl+Nothing", u"Alt+Space+A", u"\x7F"})
        EXPECT_EQ(ShortCut::fromText(text), std::nullopt) << testing::PrintToString(std::u16string(text));
    // Every key with every set of modifiers.
    int keys = 0;
    for (std::uint32_t key = 1; key < 1024; ++key) {
        if (key_name(key).empty())
            continue;
        ++keys;
        EXPECT_EQ(key_number(key_name(key)), key);
        for (std::uint32_t bits = 0; bits < 16; ++bits) {
            const ShortCut shortCut(key, static_cast<KeyModifiers>(bits));
            EXPECT_EQ(ShortCut::fromText(shortCut.toText()), shortCut);
            EXPECT_EQ(restored<ShortCut>(stored(shortCut)), shortCut);
        }
    }
    EXPECT_EQ(keys, 94 - 26 + 18 + 24); // characters without small letters, named keys, F1 to F24
    for (const wchar* text : {u"{97,0}", u"{65,16}", u"{5000,0}", u"{65}", u"\"Ctrl+A\""})
        EXPECT_THROW(restored<ShortCut>(text), ListStreamException);
}

TEST_F(PresentationValues, AreReadBack) {
    expect_read_back(Font());
    expect_read_back(
        Font{.face = u"Arial", .size = 1050, .weight = 700, .slant = FontSlant::italic, .underline = false});
    expect_read_back(Font{.item = 1, .strikeOut = true});
    expect_read_back(Font{.face = u""});
    const LumLine line{.kind = LineKind::dashDot, .width = 3, .color = *Color::web(u"Tomato")};
    expect_read_back(line);
    expect_read_back(LumBorder());
    LumBorder border(line, BorderKind::rounded);
    border.side(BorderSide::top) = {};
    expect_read_back(border);
    expect_read_back(Rect{-1, INT32_MIN, 5, INT32_MAX});
    expect_read_back(Picture());
    expect_read_back(Picture::named(u"Print"));
    Style base;
    base.setColor(0, Color(1, 2, 3));
    base.setFont(1, Font{.size = 2000});
    Style style = Style::basedOn(Style::basedOn(base));
    style.setBorder(border);
    style.setColor(3, *Color::style(u"TextColor"));
    expect_read_back(style);
}

TEST(PresentationStreams, RefuseWhatIsOutOfRange) {
    for (const wchar* text :
         {u"{7,1,\"auto\"}", u"{1,-1,\"auto\"}", u"{1,1001,\"auto\"}", u"{1,1,\"red?\"}", u"{1,1}"})
        EXPECT_THROW(restored<LumLine>(text), ListStreamException);
    for (const wchar* text :
         {u"{\"Nothing\",0}", u"{\"\",64}", u"{\"\",4,0}", u"{\"\",4,1001}", u"{\"\",8,3}", u"{\"\",2,0}"})
        EXPECT_THROW(restored<Font>(text), ListStreamException);
    for (const wchar* text : {u"{2,\"TextColor\",\"auto\",\"TEXTCOLOR\",\"auto\",0,0,0}",
                              u"{1,\"X\",\"auto\",0,0,0}", u"{4000000000}", u"{0,0,0,1,{0,0,0,1}}"})
        EXPECT_THROW(restored<Style>(text), ListStreamException);
}

TEST(Rects, HoldTheirPixels) {
    const Rect rects[] = {{}, {0, 0, 3, 2}, {1, 1, 4, 4}, {3, 0, 5, 5}, {2, 2, 1, 1}, {-2, -2, 1, 1}};
    for (const Rect& a : rects) {
        for (const Rect& b : rects) {
            std::int64_t inBoth = 0;
            for (int x = -5; x < 8; ++x) {
                for (int y = -5; y < 8; ++y) {
                    const bool both = a.contains(x, y) && b.contains(x, y);
                    inBoth += both;
                    EXPECT_EQ(a.intersection(b).contains(x, y), both);
                    EXPECT_TRUE(!a.contains(x, y) || a.around(b).contains(x, y));
                }
            }
            EXPECT_EQ(a.intersection(b).width() * a.intersection(b).height(), inBoth);
            EXPECT_EQ(a.around(b), b.around(a));
        }
    }
    EXPECT_EQ((Rect{INT32_MIN, 0, INT32_MAX, 1}.width()), 4294967295);
    EXPECT_EQ((Rect{0, 0, INT32_MAX, 1}.moved(1, -1)), (Rect{1, -1, INT32_MAX, 0}));
}

TEST(Styles, InheritAndDoNotGoInCircles) {
    const std::size_t text = *find_color(style_colors(), u"TextColor");
    const std::size_t back = *find_color(style_colors(), u"ЦветФона");
    const Rgba fallback{9, 9, 9};
    Style base;
    base.setColor(text, Color(1, 2, 3));
    Style style = Style::basedOn(base);
    EXPECT_EQ(style.resolve(Color::named(ColorKind::style, text), fallback), (Rgba{1, 2, 3}));
    EXPECT_EQ(style.resolve(Color::named(ColorKind::style, back), fallback), style_colors()[back].rgba);
    EXPECT_EQ(style.resolve(Color(), fallback), fallback);
    base.setColor(text, Color(4, 5, 6)); // a copy was kept
    EXPECT_EQ(style.color(text), Color(1, 2, 3));
    style.setColor(text, Color::named(ColorKind::style, back));
    style.setColor(back, Color::named(ColorKind::style, text));
    EXPECT_EQ(style.resolve(Color::named(ColorKind::style, text), fallback), fallback);
    style.clearColor(text);
    EXPECT_EQ(style.resolve(Color::named(ColorKind::style, back), fallback), (Rgba{1, 2, 3}));

    base.setFont(1, Font{.size = 2000});
    Style fonts = Style::basedOn(base);
    fonts.setFont(1, Font{.item = 2, .weight = 300});
    fonts.setFont(2, Font{.item = 1, .underline = true});
    const Font font = fonts.resolve(Font{.item = 1, .face = u"Arial"});
    EXPECT_EQ(font, (Font{.face = u"Arial",
                          .size = 2000,
                          .weight = 300,
                          .slant = FontSlant::upright,
                          .underline = true,
                          .strikeOut = false}));
    Style deep;
    EXPECT_THROW(for (int i = 0; i < 100; ++i) deep = Style::basedOn(deep), ContextException);
    EXPECT_EQ(restored<Style>(stored(deep)), deep);
}

TEST(Styles, LeaveTextsReadable) {
    const Style style;
    EXPECT_EQ(readable(style, Color(), {255, 255, 255}), (Rgba{0, 0, 0}));
    EXPECT_EQ(readable(style, *Color::web(u"Yellow"), {255, 255, 255}), (Rgba{0, 0, 0}));
    EXPECT_EQ(readable(style, *Color::web(u"Yellow"), {0, 0, 128}), (Rgba{255, 255, 0}));
}

TEST_F(PresentationValues, ServicesAnswerByTheirIds) {
    IPresentationService* const look = get_service<IPresentationService>();
    ASSERT_NE(look, nullptr);
    EXPECT_EQ(look->style(), Style());
    Style style;
    style.setBorder(LumBorder(LumLine{.width = 4}));
    look->setStyle(style);
    EXPECT_EQ(get_service<IBordersService>()->resolve({}), style.border());
    EXPECT_EQ(get_service<IBordersService>()->resolve(LumBorder(LumLine{.width = 7})),
              LumBorder(LumLine{.width = 7}));
    EXPECT_EQ(get_service<ILinesService>()->dashes(LineKind::dashDot).size(), 4U);

    const std::string svg = "<svg width='1' height='1'/>";
    const auto bytes = std::as_bytes(std::span(svg));
    const Picture picture = Picture::fromBytes({bytes.begin(), bytes.end()});
    look->registerPicture(u"Print", picture);
    EXPECT_EQ(Picture::named(u"PRINT").resolved(), picture);
    EXPECT_THROW(look->registerPicture(u"Other", Picture::named(u"Print")), ContextException);
    look->revokePicture(u"print");
    EXPECT_THROW(static_cast<void>(Picture::named(u"Print").resolved()), PresentationException);

    require_output_right(OutputRight::save);
    get_service<IOutputRightAccessController>()->setAllowed(OutputRight::save, false);
    EXPECT_THROW(require_output_right(OutputRight::save), PresentationException);
    require_output_right(OutputRight::print);
}

TEST_F(PresentationValues, ScriptsMakeThemAndAskThem) {
    const GenericValue color = script::make(u"Цвет", {GenericValue(u"web:SteelBlue")});
    EXPECT_EQ(script::property(color, u"Красный"), GenericValue(0x46));
    EXPECT_EQ(script::property(color, u"text"), GenericValue(u"web:SteelBlue"));
    EXPECT_EQ(from_value<Color>(script::make(u"Color", {1, 2, 3})), Color(1, 2, 3));
    EXPECT_EQ(script::failure([] { script::make(u"Color", {1, 256, 3}); }), script::value_mismatch(1));
    EXPECT_EQ(script::failure([] { script::make(u"Color", {GenericValue(u"#12")}); }),
              script::value_mismatch(0));
    EXPECT_EQ(from_value<ShortCut>(script::make(u"ShortCut", {GenericValue(u"Ctrl++")})),
              ShortCut(u'+', KeyModifiers::ctrl));
    EXPECT_EQ(script::failure([] {
                  script::make(u"Font", {GenericValue(), Numeric::parse("10.005").value()});
              }),
              script::value_mismatch(1));

    const auto globals = create_presentation_functions();
    GenericValue web;
    globals->getPropVal(globals->findProp(u"цветавеб"), web);
    EXPECT_EQ(script::property(web, u"STEELBLUE"), color);
    EXPECT_EQ(script::property(web, u"СтальнойСиний"), color);
    EXPECT_EQ(web.query<IContext_>()->findProp(u"Nothing"), -1);
    EXPECT_EQ(web.query<IContext_>()->getNProps(), 148);

    const GenericValue style = script::make(u"Style", {color});
    EXPECT_EQ(script::call(style, u"GetColor", {GenericValue(u"TextColor")}), color);
    EXPECT_EQ(GenericValue::fromBytes(style.toBytes()), style);
    EXPECT_EQ(GenericValue::fromBytes(color.toBytes()), color);
}

} // namespace
