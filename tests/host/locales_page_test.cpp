// SPDX-License-Identifier: Apache-2.0
// What docs/locales.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/program_fixture.h"

#include <core/runtime/locale.h>

core::wstring price_for(std::span<const core::Locale> wishes);

namespace host {
namespace {

TEST(LocalesPage, ItsScriptsPrintWhatItSays) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "locales.md");
    const std::string fence = "```";
    std::size_t at = page.find("## In scripts");
    const auto block = [&] {
        const std::size_t begin = page.find('\n', page.find(fence, at)) + 1;
        const std::size_t end = page.find(fence, begin);
        at = end + fence.size();
        return page.substr(begin, end - begin);
    };
    const std::string script = block();
    const Answer answer = corehost({"run", "-"}, script);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, block());
}

TEST(LocalesPage, ItsProgramFindsTheLanguageOfAUser) {
    const std::vector<core::Locale> wishes = {core::Locale("fr"), core::Locale("ru_KZ")};
    EXPECT_EQ(price_for(wishes), u"Цена");
    EXPECT_EQ(price_for({}), u"Price");
}

} // namespace
} // namespace host
