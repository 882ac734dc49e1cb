// SPDX-License-Identifier: Apache-2.0
// Searching a text in many pieces finds what searching a string finds; replacing, in one step.
#include <core/documents/errors.h>
#include <core/documents/text_manager.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace core {
namespace {

/// A document whose text stands in pieces of a few units.
void cut_up(TextManager& document, wstring_view text) {
    for (std::size_t i = text.size(); i > 0; i -= std::min<std::size_t>(i, 3))
        document.insert(0, text.substr(i - std::min<std::size_t>(i, 3), std::min<std::size_t>(i, 3)));
}

std::vector<TextRange> matches(const TextSnapshot& text, const TextQuery& query) {
    std::vector<TextRange> found;
    TextSearch search(text, query);
    while (const auto match = search.next())
        found.push_back(*match);
    return found;
}

TEST(TextSearch, FindsAcrossPieces) {
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        wstring text;
        for (std::uint64_t i = random() % 900; i > 0; --i)
            text += u"abAB"[random() % 4];
        TextManager document;
        cut_up(document, text);
        ASSERT_EQ(document.text().text(), text);
        wstring wanted;
        for (std::uint64_t i = 1 + random() % 5; i > 0; --i)
            wanted += u"abAB"[random() % 4];
        std::vector<TextRange> expected;
        for (std::size_t at = text.find(wanted); at != wstring::npos;
             at = text.find(wanted, at + wanted.size()))
            expected.push_back({at, at + wanted.size()});
        EXPECT_EQ(matches(document.text(), {wanted}), expected);
        EXPECT_EQ(matches(document.text(), {wanted, TextQueryKind::regex}), expected);

        const auto lower = [](wstring given) {
            for (wchar& unit : given)
                unit = unit < u'a' ? static_cast<wchar>(unit + 32) : unit;
            return given;
        };
        TextManager small;
        cut_up(small, lower(text));
        EXPECT_EQ(matches(document.text(), {wanted, TextQueryKind::ignoreCase}),
                  matches(small.text(), {lower(wanted)}));
    }
}

TEST(TextSearch, TakesSpecialUnitsLiterally) {
    TextManager document;
    cut_up(document, u"Цена (в $): 5.0 \\ 5x0 😀. ЦЕНА (В $)");
    EXPECT_EQ(matches(document.text(), {u"цена (в $)", TextQueryKind::ignoreCase}).size(), 2u);
    EXPECT_EQ(matches(document.text(), {u"5.0", TextQueryKind::ignoreCase}).size(), 1u);
    EXPECT_EQ(matches(document.text(), {u"\\", TextQueryKind::ignoreCase}).size(), 1u);
    EXPECT_EQ(matches(document.text(), {u"0 .\\.", TextQueryKind::regex}).size(),
              1u); // a pair is one character
}

TEST(TextSearch, ReplacesAllInOneStep) {
    TextManager document;
    cut_up(document, u"2026-11-22 2025-01-02 none");
    document.clearSteps();
    EXPECT_EQ(document.replaceAll({u"(\\d+)-(\\d+)-(\\d+)", TextQueryKind::regex}, u"$3.$2.$1 \\$$0"), 2u);
    EXPECT_EQ(document.text().text(), u"22.11.2026 $2026-11-22 02.01.2025 $2025-01-02 none");
    EXPECT_EQ(document.undoCount(), 1u);
    document.undo();
    EXPECT_EQ(document.replaceAll({u"^", TextQueryKind::regex}, u"> "), 1u); // empty matches
    EXPECT_EQ(document.replaceAll({u"NONE", TextQueryKind::ignoreCase}, u"$1"), 1u);
    EXPECT_EQ(document.text().text(), u"> 2026-11-22 2025-01-02 $1");
    EXPECT_THROW(document.replaceAll({u"\\d", TextQueryKind::regex}, u"$1"), DocumentException);
    EXPECT_THROW(document.replaceAll({u"(", TextQueryKind::regex}, u""), DocumentException);
    EXPECT_THROW(document.replaceAll({u""}, u""), DocumentException);
    EXPECT_EQ(document.text().text(), u"> 2026-11-22 2025-01-02 $1");
}

} // namespace
} // namespace core
