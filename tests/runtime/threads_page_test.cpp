// SPDX-License-Identifier: Apache-2.0
// The programs of docs/threads-and-events.md do what the page says.
#include <gtest/gtest.h>

int count_for_a_while();
int change_a_price();
int take_orders();
bool keep_others_out();

namespace {

TEST(ThreadsPage, ItsProgramsRun) {
    EXPECT_GT(count_for_a_while(), 0);
    EXPECT_EQ(change_a_price(), 6);
    EXPECT_EQ(take_orders(), 3);
    EXPECT_TRUE(keep_others_out());
}

} // namespace
