// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/tables/table_fixture.h"

#include <random>
#include <vector>

namespace script {

/// A test of random operations, whose parameter is the seed.
class RandomTest : public Test, public testing::WithParamInterface<unsigned> {
  public:
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(random_() % n); }
    /// A value of few different ones: numbers, texts, Undefined.
    Value value() {
        const auto small = static_cast<int>(below(5));
        return below(3) == 0 ? Value(u"t" + string_intto(small)) : below(6) == 0 ? Value() : Value(small);
    }

  private:
    std::mt19937 random_{GetParam()};
};

/// Moves the element at `from` to where it will have the position `to`.
template <class T>
void move_element(std::vector<T>& elements, std::size_t from, std::size_t to) {
    T moved = std::move(elements[from]);
    elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(from));
    elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(to), std::move(moved));
}

} // namespace script
