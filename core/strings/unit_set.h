// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace core {

/// A set of code units, filled first and asked afterwards.
class UnitSet {
  public:
    /// Adds the units between `a` and `b`, in either order, both included.
    void addRange(wchar a, wchar b);
    /// Adds the simple folding of every member, so that asking for the folding of a unit tells whether a case
    /// of it is a member.
    void addFoldings();
    /// Ends the filling.
    void finish();

    [[nodiscard]] bool contains(wchar c) const noexcept;

  private:
    using Range = std::pair<wchar, wchar>;
    void merge();

    std::vector<Range> ranges_;          ///< once filled: in order, and none touches the next
    std::array<std::uint64_t, 4> low_{}; ///< the units below 256 as bits
};

} // namespace core
