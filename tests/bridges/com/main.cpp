// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/ole.h"
#include "bridges/com/system.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    core::com::system_is_here();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
