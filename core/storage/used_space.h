// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace core {

/// The bytes that a walk over chains has met, and those that it has met twice. Neighbours become one range,
/// so that a container without gaps takes little memory, however many blocks it has.
class UsedSpace {
  public:
    using Range = std::pair<std::uint64_t, std::uint64_t>; // beginning, end
    using Ranges = std::vector<Range>;

    void add(std::uint64_t begin, std::uint64_t end);
    /// What was added so far counts in used() and shared() from now on.
    void settle();

    /// Every byte that was added, by address. Ranges do not touch.
    [[nodiscard]] const Ranges& used() const noexcept { return used_; }
    /// Every byte that was added more than once, by address. Ranges may touch, where other chains meet.
    [[nodiscard]] const Ranges& shared() const noexcept { return shared_; }

    /// The first of `ranges`, which are in order, that ends behind `address`.
    [[nodiscard]] static Ranges::const_iterator firstBehind(const Ranges& ranges, std::uint64_t address);
    /// Whether any byte from `begin` to `end` is in `ranges`.
    [[nodiscard]] static bool touches(const Ranges& ranges, std::uint64_t begin, std::uint64_t end);

  private:
    static void merge(Ranges& into, Ranges& more);

    Ranges used_;
    Ranges shared_;
    Ranges waiting_; // not in used_ yet
};

} // namespace core
