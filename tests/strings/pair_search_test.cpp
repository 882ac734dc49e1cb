// SPDX-License-Identifier: Apache-2.0
// The search of LIKE for two units at a distance, for this processor and for those without vectors, against a
// walk over every place.
#include "core/strings/pair_search.h"

#include <gtest/gtest.h>

#include <random>

using namespace core;

namespace {

const wchar* walk(const UnitPair& pair, const wchar* at, std::size_t count) {
    const auto member = [](const UnitClass& units, wchar c) {
        return std::find(units.begin(), units.end(), c) != units.end();
    };
    for (std::size_t i = 0; i < count; ++i) {
        if (member(pair.near, at[i]) && member(pair.far, at[i + pair.distance]))
            return at + i;
    }
    return nullptr;
}

template <std::size_t kCases>
void expect_same_places(std::mt19937& random) {
    const auto units = [&] { // of `kCases` different ones, the first repeated
        const auto unit = static_cast<wchar>(random() % 2 == 0 ? u'a' : u'\xFFF0');
        UnitClass all{unit, unit, unit, unit};
        for (std::size_t i = 1; i < kCases; ++i)
            all[i] = static_cast<wchar>(unit + i);
        return all;
    };
    for (std::size_t count = 0; count <= 70; ++count) {
        for (int round = 0; round < 100; ++round) {
            const UnitPair pair{units(), units(), random() % 5};
            wstring text(count + pair.distance, u'x');
            for (auto members = random() % 4; members > 0 && !text.empty(); --members)
                text[random() % text.size()] = pair.near[random() % 4];
            if (!text.empty())
                text[random() % text.size()] = pair.far[random() % 4];
            const wchar* const expected = walk(pair, text.data(), count);
            ASSERT_EQ((search_pair<kCases, PairBlocks>(pair, text.data(), count)), expected) << count;
            ASSERT_EQ((search_pair<kCases, PlainPairBlocks>(pair, text.data(), count)), expected) << count;
        }
    }
}

} // namespace

TEST(PairSearch, FindsTheFirstPlaceWithVectorsAndWithout) {
    std::mt19937 random(11);
    expect_same_places<1>(random);
    expect_same_places<2>(random);
    expect_same_places<4>(random);
}
