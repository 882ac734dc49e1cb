// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/threads/thread.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <string>

using namespace core;

TEST(Thread, ShowsTheSystemWholeCharactersOfItsName) {
    const auto shown = [](const wstring& name) {
        std::array<char, 16> text{};
        Thread(name, [&] { pthread_getname_np(pthread_self(), text.data(), text.size()); }).join();
        return std::string(text.data());
    };
    EXPECT_EQ(shown(u"fifteen letters"), "fifteen letters");
    EXPECT_EQ(shown(u"sixteen letters."), "sixteen letters");
    EXPECT_EQ(shown(u"выгрузка"), "выгрузк"); // an eighth letter of two bytes does not fit
}
