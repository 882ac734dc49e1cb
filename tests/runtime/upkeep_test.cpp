// SPDX-License-Identifier: Apache-2.0
// Concerns: what the runtime keeps for threads and classes: objects made while a thread ends, more classes
// than a thread counts by itself, chunks of memory that are used in part.
#include "tests/support/bytes_in_use.h"

#include <core/runtime.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace core;

struct IThing : IUnknown {
    static constexpr GUID IID = "b9f8a2b0-6a31-4f3e-8b70-2a4d3b0c0021"_guid;
};
class Thing : public IThing {
  public:
    using Interfaces = InterfaceList<IThing>;

  private:
    [[maybe_unused]] std::byte content_[40];
};
using ThingClass = SCOM_InternalClass<Thing>;

TEST(Upkeep, ObjectsMadeWhileAThreadEndsLeaveNothingBehind) {
    struct AtEnd {
        ~AtEnd() {
            std::vector<InterfacePtr<ThingClass>> things(60); // one alone gets the same block every time
            for (auto& thing : things)
                thing = ThingClass::create();
        }
    };
    const std::int32_t alive = ThingClass::liveCount();
    std::size_t before = 0;
    for (int round = 0; round < 800; ++round) {
        if (round == 1) // what is made once is made by then
            before = test::bytes_in_use();
        std::thread([] {
            thread_local AtEnd atEnd; // older than what the runtime keeps for the thread, so it ends later
            static_cast<void>(&atEnd);
            static_cast<void>(ThingClass::create());
        }).join();
    }
    EXPECT_EQ(ThingClass::liveCount(), alive);
    EXPECT_LT(test::bytes_in_use(), before + (std::size_t{1} << 20));
}

TEST(Upkeep, ChunksThatAreFreeInPartAreUsedBeforeNewOnes) {
    constexpr std::size_t kObjects = 200'000;
    std::vector<InterfacePtr<ThingClass>> objects(kObjects);
    for (auto& object : objects)
        object = ThingClass::create();
    const std::size_t before = test::bytes_in_use();
    for (int round = 0; round < 3; ++round) {
        for (std::size_t i = 0; i < kObjects; i += 2)
            objects[i].reset();
        for (std::size_t i = 0; i < kObjects; i += 2)
            objects[i] = ThingClass::create();
    }
    EXPECT_LT(test::bytes_in_use(), before + (std::size_t{1} << 20));
}

template <std::size_t N>
class Counted : public Refcountable<Counted<N>> {};

template <std::size_t... N>
void count_in_a_thread(std::index_sequence<N...>) {
    std::vector<std::shared_ptr<void>> kept;
    std::thread([&] { kept = {std::make_shared<Counted<N>>()...}; }).join();
    EXPECT_TRUE(((Counted<N>::liveCount() == 1) && ...)) << "the thread that counted them has ended";
    kept.clear();
    EXPECT_TRUE(((Counted<N>::liveCount() == 0) && ...));
}

TEST(Upkeep, EveryClassOfManyIsCountedAcrossTheEndOfAThread) {
    count_in_a_thread(std::make_index_sequence<600>());
}

} // namespace
