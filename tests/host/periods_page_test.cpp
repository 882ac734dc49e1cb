// SPDX-License-Identifier: Apache-2.0
// What docs/periods.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/program_fixture.h"

#include <core/dates/standard_period.h>

core::DatePeriod last_quarter(core::Date day);

namespace host {
namespace {

TEST(PeriodsPage, ItsScriptPrintsWhatItSays) {
    const std::string page = text_of(std::filesystem::path(CORE_SOURCE_DIR) / "docs" / "periods.md");
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

TEST(PeriodsPage, ItsProgramFindsTheLastQuarter) {
    using core::Date;
    EXPECT_EQ(last_quarter(Date(2026, 2, 5)),
              (core::DatePeriod{Date(2025, 10, 1), Date(2025, 12, 31, 23, 59, 59)}));
}

} // namespace
} // namespace host
