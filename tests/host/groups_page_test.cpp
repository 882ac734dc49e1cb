// SPDX-License-Identifier: Apache-2.0
// The program that docs/tables.md shows for groups does what the page says.
#include <core/tables.h>
#include <host/host_process.h>

#include <gtest/gtest.h>

core::InterfacePtr<core::IValueTable> places(core::IValueTable& sales); // of the page

namespace {

TEST(GroupsPage, TheProgramRanksProducts) {
    const host::HostProcess process;
    const auto table = core::create_value_table();
    for (const char16_t* name : {u"Region", u"Product", u"Price", u"Quantity"})
        table->addColumn(name);
    for (const int i : {1, 2, 3, 2}) {
        const core::Value cells[] = {u"North", i, i, 5};
        table->appendRow(cells);
    }
    const auto report = places(*table);
    ASSERT_EQ(report->rowCount(), 3U);
    EXPECT_EQ(report->get(1, report->findColumn(u"Sum")), core::GenericValue(20));
    EXPECT_EQ(report->get(1, report->findColumn(u"Place")), core::GenericValue(1));
    EXPECT_EQ(report->get(2, report->findColumn(u"Place")), core::GenericValue(2));
}

} // namespace
