// SPDX-License-Identifier: Apache-2.0
// The name that was probably meant, against letters that are dropped, added, changed and swapped at every
// place.
#include <core/strings/nearest.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace core {
namespace {

wstring nearest(wstring_view name, std::initializer_list<wstring_view> candidates) {
    NearestName near(name);
    for (const wstring_view candidate : candidates)
        near.add(candidate);
    return near.best();
}

TEST(NearestName, OneWrongLetterAnywhereIsFound) {
    const wstring_view known = u"Соответствие";
    for (std::size_t i = 0; i < known.size(); ++i) {
        wstring dropped(known), added(known), changed(known), swapped(known);
        dropped.erase(i, 1);
        added.insert(i, 1, u'z');
        changed[i] = u'Z';
        if (i > 0)
            std::swap(swapped[i - 1], swapped[i]);
        for (const wstring& typed : {dropped, added, changed})
            EXPECT_EQ(nearest(typed, {u"Структура", known, u"Массив"}), known) << i;
        EXPECT_EQ(nearest(swapped, {known}), swapped == known ? u"" : known) << i;
    }
}

TEST(NearestName, TheNearestOfSeveralAndNoneThatIsFar) {
    EXPECT_EQ(nearest(u"coutn", {u"Amount", u"COUNT", u"Count"}), u"COUNT") << "the first of two";
    EXPECT_EQ(nearest(u"Price", {u"Prices", u"Price"}), u"Prices") << "not itself";
    EXPECT_EQ(nearest(u"Total", {u"Sum", u"Tatal", u"Totals"}), u"Tatal");
    EXPECT_EQ(nearest(u"abc", {u"xyc", u""}), u"");
    EXPECT_EQ(nearest(u"ab", {u"a", u"abc"}), u"") << "too short to go by";
    EXPECT_EQ(nearest(u"", {u"a"}), u"");
    EXPECT_EQ(nearest(wstring(101, u'a'), {wstring(100, u'a')}), u"");
    EXPECT_EQ(nearest(wstring(100, u'a'), {wstring(99, u'a')}), wstring(99, u'a'));
}

} // namespace
} // namespace core
