// SPDX-License-Identifier: Apache-2.0
// Concerns: what people read of fonts, lines, borders, rectangles and pictures, in both languages; fonts with
// every set of parts; damaged lists of fonts and pictures; pictures from files, bytes and names in scripts.
#include "tests/collections/script.h"
#include "tests/presentation/stored.h"
#include "tests/support/folder_test.h"

#include <core/lists.h>
#include <core/presentation.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>
#include <core/streams/memory_stream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using namespace core;
using core::test::restored;
using core::test::stored;

template <class C>
wstring in_russian(const C& content) {
    Thread::setResourceLocale(Locale("ru"));
    const wstring text = content.presentation();
    Thread::setResourceLocale(Locale("en"));
    return text;
}

wstring shown(const GenericValue& value) {
    wstring text;
    EXPECT_TRUE(value.getString(text));
    return text;
}

class PresentationTexts : public script::Test {
  protected:
    PresentationTexts() { Thread::setResourceLocale(Locale("en")); }
};

/// A part of a font: how it is set, and what people read of it.
struct PartCase {
    void (*set)(Font& font);
    const wchar* english;
    const wchar* russian;
};

/// What each part may be. The first of each leaves it open.
const std::vector<std::vector<PartCase>> kParts = {
    {{[](Font&) {}, u"", u""}, {[](Font& font) { font.item = 0; }, u"TextFont", u"ШрифтТекста"}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.face = u"Arial"; }, u"Arial", u"Arial"},
     {[](Font& font) { font.face = u""; }, u"", u""}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.size = 1000; }, u"10", u"10"},
     {[](Font& font) { font.size = 1050; }, u"10.5", u"10.5"},
     {[](Font& font) { font.size = 7; }, u"0.07", u"0.07"}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.weight = kNormalWeight; }, u"", u""},
     {[](Font& font) { font.weight = kBoldWeight; }, u"bold", u"полужирный"},
     {[](Font& font) { font.weight = 300; }, u"300", u"300"}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.slant = FontSlant::upright; }, u"", u""},
     {[](Font& font) { font.slant = FontSlant::italic; }, u"italic", u"курсив"},
     {[](Font& font) { font.slant = FontSlant::oblique; }, u"oblique", u"наклонный"}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.underline = false; }, u"", u""},
     {[](Font& font) { font.underline = true; }, u"underlined", u"подчеркнутый"}},
    {{[](Font&) {}, u"", u""},
     {[](Font& font) { font.strikeOut = false; }, u"", u""},
     {[](Font& font) { font.strikeOut = true; }, u"struck out", u"зачеркнутый"}}};

TEST_F(PresentationTexts, FontsWithEverySetOfParts) {
    std::size_t all = 1;
    for (const auto& cases : kParts)
        all *= cases.size();
    const Font base{.face = u"Base",
                    .size = 900,
                    .weight = 500,
                    .slant = FontSlant::oblique,
                    .underline = true,
                    .strikeOut = true};
    std::set<wstring> lists;
    for (std::size_t number = 0; number < all; ++number) {
        Font font;
        wstring texts[2];
        std::size_t rest = number;
        for (const auto& cases : kParts) {
            const PartCase& part = cases[rest % cases.size()];
            rest /= cases.size();
            part.set(font);
            for (const bool russian : {false, true}) {
                const wstring_view word = russian ? part.russian : part.english;
                texts[russian] += word.empty() || texts[russian].empty() ? u"" : u", ";
                texts[russian] += word;
            }
        }
        if (number == 0) {
            texts[0] = u"Automatic";
            texts[1] = u"Автоматический";
        } else if (texts[0].empty()) {
            texts[0] = u"Normal";
            texts[1] = u"Обычный";
        }
        EXPECT_EQ(font.presentation(), texts[0]);
        EXPECT_EQ(in_russian(font), texts[1]);
        EXPECT_TRUE(font.isValid());
        EXPECT_EQ(font.kind(), font.item     ? FontKind::style
                               : number != 0 ? FontKind::absolute
                                             : FontKind::automatic);
        const wstring list = stored(font);
        const Font again = restored<Font>(list);
        EXPECT_EQ(again, font) << to_utf8(list);
        EXPECT_EQ(again.hash(), font.hash());
        EXPECT_TRUE(lists.insert(list).second) << "two fonts with one list: " << to_utf8(list);
        const Font whole = font.inheriting(base);
        EXPECT_EQ(whole.item, font.item);
        EXPECT_EQ(whole.face, font.face ? font.face : base.face);
        EXPECT_EQ(whole.slant, font.slant ? font.slant : base.slant);
        EXPECT_EQ(whole.inheriting(font), whole);
    }
}

TEST_F(PresentationTexts, ListsWithoutTheirEndAreRefused) {
    const std::string svg = "<svg width='1' height='1'/>";
    const auto bytes = std::as_bytes(std::span(svg));
    const wstring font = stored(Font{.item = 2,
                                     .face = u"A",
                                     .size = 1,
                                     .weight = 1,
                                     .slant = FontSlant::italic,
                                     .underline = true,
                                     .strikeOut = false});
    const wstring named = stored(Picture::named(u"Print"));
    const wstring drawn = stored(Picture::fromBytes({bytes.begin(), bytes.end()}));
    for (std::size_t size = 0; size < font.size(); ++size)
        EXPECT_THROW(restored<Font>(font.substr(0, size)), ListStreamException) << size;
    for (const wstring& whole : {named, drawn, stored(Picture())}) {
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_THROW(restored<Picture>(whole.substr(0, size)), ListStreamException) << size;
    }
    EXPECT_EQ(restored<Picture>(drawn).bytes().size(), svg.size());
    for (const wchar* const text : {u"{3}", u"{-1,\"Print\"}", u"{2,\"AAAA\"}"})
        EXPECT_THROW(restored<Picture>(text), ListStreamException) << to_utf8(text);
    for (const Font& font :
         {Font{.item = 1000}, Font{.size = 0}, Font{.size = kMaxFontSize + 1}, Font{.weight = 0},
          Font{.weight = kMaxWeight + 1}, Font{.slant = static_cast<FontSlant>(-1)}})
        EXPECT_FALSE(font.isValid());
}

TEST_F(PresentationTexts, LinesAndBorders) {
    const LumLine dashed{.kind = LineKind::dashed, .width = 2, .color = {}};
    const LumLine red{.kind = LineKind::twofold, .width = 1, .color = *Color::web(u"Tomato")};
    const LumLine none{.kind = LineKind::none, .width = 0, .color = {}};
    EXPECT_EQ(dashed.presentation(), u"Dashed, 2");
    EXPECT_EQ(in_russian(dashed), u"Штриховая, 2");
    EXPECT_EQ(red.presentation(), u"Double, 1, " + Color::web(u"Tomato")->presentation());
    EXPECT_EQ(none.presentation(), u"None");
    EXPECT_EQ(LumBorder().presentation(), u"Automatic");
    EXPECT_EQ(in_russian(LumBorder()), u"Автоматическая");
    LumBorder border(dashed, BorderKind::sunken);
    EXPECT_EQ(border.presentation(), u"Sunken: Dashed, 2");
    for (const BorderSide side : {BorderSide::left, BorderSide::top, BorderSide::right, BorderSide::bottom}) {
        LumBorder mixed = border;
        mixed.side(side) = red;
        EXPECT_EQ(mixed.presentation(), u"Sunken");
    }
    const ILinesService& lines = *get_service<ILinesService>();
    EXPECT_TRUE(lines.dashes(lines.standard().kind).empty());
    for (const LineKind kind :
         {LineKind::dotted, LineKind::dashed, LineKind::dashDot, LineKind::dashDotDot}) {
        const auto dashes = lines.dashes(kind);
        EXPECT_FALSE(dashes.empty());
        EXPECT_EQ(dashes.size() % 2, 0U) << "a dash without its gap";
        EXPECT_EQ(std::count(dashes.begin(), dashes.end(), 0), 0);
    }
    EXPECT_TRUE(lines.dashes(LineKind::none).empty());
    EXPECT_TRUE(lines.dashes(LineKind::twofold).empty());
}

TEST_F(PresentationTexts, NamedPicturesAreListedInTheirOrder) {
    IPresentationService& look = *get_service<IPresentationService>();
    EXPECT_EQ(get_service<IBordersService>()->resolve({}), LumBorder(LumLine{}));
    const std::string svg = "<svg width='1' height='1'/>";
    const auto bytes = std::as_bytes(std::span(svg));
    const Picture picture = Picture::fromBytes({bytes.begin(), bytes.end()});
    look.registerPicture(u"print", picture);
    look.registerPicture(u"Find", picture);
    look.registerPicture(u"PRINT", picture);
    const std::vector<wstring> names = look.pictureNames();
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0], u"Find");
    EXPECT_THROW(look.registerPicture(u"", picture), ContextException);
    look.revokePicture(u"Nothing");
    EXPECT_EQ(look.pictureNames(), names);
    const GenericValue data = script::call(to_value(Picture::named(u"FIND")), u"ПолучитьДанные");
    EXPECT_EQ(from_value<Picture>(script::make(u"Picture", {data})), picture);
    IOutputRightAccessController& rights = *get_service<IOutputRightAccessController>();
    rights.setAllowed(OutputRight::copy, false);
    EXPECT_FALSE(rights.isAllowed(OutputRight::copy));
    rights.setAllowed(OutputRight::copy, true);
    EXPECT_TRUE(rights.isAllowed(OutputRight::copy));
}

class PictureFiles : public host::FolderTest {
  protected:
    PictureFiles() { Thread::setResourceLocale(Locale("en")); }
    host::HostProcess process_;
};

TEST_F(PictureFiles, AreReadByPathAndAskedByScripts) {
    const std::string svg = "<svg width='30' height='20'/>";
    const wstring good = from_utf8(file("good.svg", svg));
    const wstring text = from_utf8(file("text.txt", "no picture"));
    const Picture picture = Picture::fromFile(good);
    EXPECT_EQ(picture.presentation(), u"SVG, 30 × 20");
    EXPECT_EQ(Picture::named(u"Print").presentation(), u"Print");
    const std::string unknown = "<svg/>";
    const auto bytes = std::as_bytes(std::span(unknown));
    EXPECT_EQ(Picture::fromBytes({bytes.begin(), bytes.end()}).presentation(), u"SVG");
    EXPECT_NE(
        script::failure<PresentationException>([&] { (void)Picture::fromFile(text); }).find(u"text.txt"),
        wstring::npos)
        << "the failure names the file";
    EXPECT_THROW((void)Picture::fromFile(from_utf8(path("none"))), Exception);

    const GenericValue made = script::make(u"Картинка", {GenericValue(good)});
    EXPECT_EQ(from_value<Picture>(made), picture);
    EXPECT_EQ(shown(made), u"SVG, 30 × 20");
    EXPECT_EQ(script::property(made, u"Ширина"), GenericValue(30));
    EXPECT_TRUE(script::property(script::make(u"Picture"), u"Width").isUndefined());
    EXPECT_THROW(script::make(u"Picture", {GenericValue(text)}), PresentationException);
    EXPECT_EQ(shown(script::make(u"Rect", {1, -2, 3})), u"1, -2, 3, 0");
    const GenericValue font =
        script::make(u"Font", {GenericValue(u"шрифттекста"), Numeric::parse("10.5").value(), 700});
    EXPECT_EQ(from_value<Font>(font), (Font{.item = 0, .size = 1050, .weight = 700}));
    EXPECT_EQ(script::property(font, u"Item"), GenericValue(u"TextFont"));
    EXPECT_TRUE(script::property(font, u"Имя").isUndefined());
    for (const int weight : {0, 1001})
        EXPECT_EQ(script::failure([&] {
                      script::make(u"Font", {GenericValue(), GenericValue(), weight});
                  }),
                  script::value_mismatch(2));
}

} // namespace
