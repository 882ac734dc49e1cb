// SPDX-License-Identifier: Apache-2.0
// Concerns: blocks that overlap; blocks freed by another thread, in any order; memory that stays with the
// library when everything is free.
#include "tests/support/bytes_in_use.h"

#include <core/runtime/live_counter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <thread>
#include <vector>

namespace {

struct Block {
    std::size_t size;
    unsigned char* bytes;
    unsigned char mark;
};

Block allocate_one(std::size_t size, unsigned char mark) {
    auto* const bytes =
        static_cast<unsigned char*>(core::detail::allocate_counted(size, core::live_counter<Block>));
    std::fill_n(bytes, size, mark);
    return {size, bytes, mark};
}

/// Blocks of one size, `total` bytes of them.
std::vector<Block> allocate_of(std::size_t total, std::size_t size) {
    std::vector<Block> blocks;
    for (std::size_t i = 0; i < total / size; ++i)
        blocks.push_back(allocate_one(size, static_cast<unsigned char>(i)));
    return blocks;
}

std::vector<Block> allocate_many(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Block> blocks;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size = random() % 300;
        blocks.push_back(allocate_one(size, static_cast<unsigned char>(random())));
    }
    std::shuffle(blocks.begin(), blocks.end(), random);
    return blocks;
}

/// Frees them and returns how many were not as they should be.
std::size_t free_many(const std::vector<Block>& blocks) {
    std::size_t damaged = 0;
    for (const Block& block : blocks) {
        const bool whole = std::all_of(block.bytes, block.bytes + block.size,
                                       [&](unsigned char byte) { return byte == block.mark; });
        damaged += whole && reinterpret_cast<std::uintptr_t>(block.bytes) % 16 == 0 ? 0U : 1U;
        core::detail::free_counted(block.bytes, block.size, core::live_counter<Block>);
    }
    return damaged;
}

TEST(Blocks, BelongToOneOwnerWhicheverThreadFreesThemAndGoBackToTheSystem) {
    constexpr unsigned kThreads = 4;
    constexpr std::size_t kBlocks = 200'000;
    constexpr std::size_t kKept = std::size_t{32} << 20; // what the library may keep for later
    const std::size_t before = test::bytes_in_use();
    for (unsigned round = 0; round < 3; ++round) {
        std::vector<std::vector<Block>> made(kThreads);
        std::vector<std::size_t> damaged(kThreads);
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < kThreads; ++i)
            threads.emplace_back(
                [&made, i, round] { made[i] = allocate_many(kBlocks, round * kThreads + i); });
        for (std::thread& thread : threads)
            thread.join();
        threads.clear();
        for (std::size_t i = 0; i < kThreads; ++i)
            threads.emplace_back([&, i] { damaged[i] = free_many(made[(i + 1) % kThreads]); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(damaged, std::vector<std::size_t>(kThreads));
        EXPECT_EQ(core::live_counter<Block>.count(), 0);
    }
    EXPECT_LT(test::bytes_in_use(), before + kKept);

    // What is kept serves the next ones.
    const std::size_t idle = test::bytes_in_use();
    std::vector<Block> next = allocate_of(std::size_t{8} << 20, 256);
    EXPECT_LT(test::bytes_in_use(), idle + (std::size_t{4} << 20));
    EXPECT_EQ(free_many(next), 0U);
}

} // namespace
