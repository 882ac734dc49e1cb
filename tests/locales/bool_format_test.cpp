// SPDX-License-Identifier: Apache-2.0
// Words by locale and chosen ones, read in any case.
#include "tests/locales/read_back.h"

#include <core/locales/bool_format.h>

namespace core {
namespace {

TEST(BoolFormat, WordsFollowTheLocaleAndReadBackInAnyCase) {
    const BoolFormat english;
    const BoolFormat russian(u"", kRussian);
    EXPECT_EQ(english.format(true) + english.format(false), u"YesNo");
    EXPECT_EQ(russian.format(true) + russian.format(false), u"ДаНет");
    const BoolFormat nested(u"true=not never; false=NOT");
    for (const BoolFormat* format : {&english, &russian, &nested}) {
        for (const bool value : {true, false}) {
            bool back = !value;
            const auto& word = format->format(value);
            EXPECT_EQ(read(*format, u"\n" + word + u" x", back),
                      static_cast<std::ptrdiff_t>(word.size() + 1));
            EXPECT_EQ(back, value);
        }
    }
    bool value = false;
    EXPECT_EQ(read(russian, u"дА", value), 2);
    EXPECT_TRUE(value);
    for (const wstring_view text : {u"", u"Ye", u"Да", u"1"})
        EXPECT_EQ(read(english, text, value), -1);
    EXPECT_EQ(BoolFormat(u"локаль=ru; ложь=никогда; empty='?'").format(false), u"никогда");
    EXPECT_EQ(BoolFormat(u"locale=de").format(true), u"Yes") << "words there are in two languages";
    expect_refused<BoolFormat>(
        {u"true=", u"true=No", u"true=A; false=a", u"maybe=1", u"true=A; true=B", u"true=' A'"});
}

} // namespace
} // namespace core
