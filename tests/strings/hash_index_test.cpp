// SPDX-License-Identifier: Apache-2.0
// The index against a plain map, with hashes that are spread, that share their beginnings, and that are all
// the same.
#include "core/strings/hash_index.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace core;

namespace {

/// Keys in a row with gaps, found by the index, beside a map from keys to positions.
class Model {
  public:
    explicit Model(std::uint64_t hashMask) : hashMask_(hashMask) {}

    void step(std::mt19937& random) {
        const auto key = static_cast<std::uint32_t>(random() % 400);
        const auto known = positions_.find(key);
        ASSERT_EQ(find(key), known != positions_.end() ? known->second : HashIndex::kNone);
        switch (random() % 4) {
        case 0:
        case 1:
            if (known == positions_.end())
                add(key);
            break;
        case 2:
            if (known != positions_.end()) {
                index_.remove(hash(key), known->second);
                positions_.erase(known);
            }
            break;
        default:
            if (known != positions_.end()) {
                keys_.push_back(key);
                const auto to = static_cast<HashIndex::Position>(keys_.size() - 1);
                index_.move(hash(key), known->second, to);
                known->second = to;
            }
        }
        ASSERT_EQ(index_.size(), positions_.size());
    }
    void expectAll() const {
        for (std::uint32_t key = 0; key < 400; ++key) {
            const auto known = positions_.find(key);
            ASSERT_EQ(find(key), known != positions_.end() ? known->second : HashIndex::kNone);
        }
    }

  private:
    [[nodiscard]] std::uint64_t hash(std::uint32_t key) const {
        return (key + 1) * 0x9E3779B97F4A7C15 & hashMask_;
    }
    [[nodiscard]] HashIndex::Position find(std::uint32_t key) const {
        return index_.find(hash(key), [&](HashIndex::Position position) { return keys_[position] == key; });
    }
    void add(std::uint32_t key) {
        index_.add(hash(key), static_cast<HashIndex::Position>(keys_.size()));
        positions_[key] = static_cast<HashIndex::Position>(keys_.size());
        keys_.push_back(key);
    }

    std::uint64_t hashMask_;
    HashIndex index_;
    std::vector<std::uint32_t> keys_;
    std::map<std::uint32_t, HashIndex::Position> positions_;
};

} // namespace

TEST(HashIndex, AnswersAsAMapDoes) {
    // With the last two masks all keys have one home.
    for (const std::uint64_t mask : {~std::uint64_t{0}, std::uint64_t{0xF0000000'00000000},
                                     std::uint64_t{0x00000007'00000000}, std::uint64_t{0}}) {
        std::mt19937 random(5);
        Model model(mask);
        for (int i = 0; i < 20'000 && !testing::Test::HasFatalFailure(); ++i)
            model.step(random);
        model.expectAll();
    }
}

TEST(HashIndex, ARunGoesOnBehindTheLastSlot) {
    for (const std::size_t count : {1U, 5U, 6U, 10U, 11U, 1000U}) {
        HashIndex index;
        EXPECT_EQ(index.find(1, [](HashIndex::Position) { return true; }), HashIndex::kNone);
        index.reserve(count);
        for (std::size_t i = 0; i < count; ++i)
            index.add(~std::uint64_t{0}, static_cast<HashIndex::Position>(i)); // whose home is the last slot
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ(
                index.find(~std::uint64_t{0}, [&](HashIndex::Position position) { return position == i; }),
                i);
        index.clear();
        EXPECT_TRUE(index.empty());
    }
    HashIndex index;
    EXPECT_THROW(index.reserve(std::size_t{1} << 31), std::bad_alloc);
}
