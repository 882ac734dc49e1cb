// SPDX-License-Identifier: Apache-2.0
// What docs/periods.md shows works as the page says; its C++ code is compiled from the page itself.
#include "tests/host/page_script.h"

#include <core/dates/standard_period.h>

core::DatePeriod last_quarter(core::Date day);

namespace host {
namespace {

TEST(PeriodsPage, ItsScriptPrintsWhatItSays) {
    expect_page_script("periods.md");
}

TEST(PeriodsPage, ItsProgramFindsTheLastQuarter) {
    using core::Date;
    EXPECT_EQ(last_quarter(Date(2026, 2, 5)),
              (core::DatePeriod{Date(2025, 10, 1), Date(2025, 12, 31, 23, 59, 59)}));
}

} // namespace
} // namespace host
