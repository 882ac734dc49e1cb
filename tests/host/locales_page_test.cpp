// SPDX-License-Identifier: Apache-2.0
// What docs/locales.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/page_script.h"

#include <core/runtime/locale.h>

core::wstring price_for(std::span<const core::Locale> wishes);

namespace host {
namespace {

TEST(LocalesPage, ItsScriptsPrintWhatItSays) {
    expect_page_script("locales.md");
}

TEST(LocalesPage, ItsProgramFindsTheLanguageOfAUser) {
    const std::vector<core::Locale> wishes = {core::Locale("fr"), core::Locale("ru_KZ")};
    EXPECT_EQ(price_for(wishes), u"Цена");
    EXPECT_EQ(price_for({}), u"Price");
}

} // namespace
} // namespace host
