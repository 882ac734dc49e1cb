// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/unit_search.h"
#include "core/strings/unit_set.h"

#include <core/strings/like.h>

#include <cstdint>
#include <vector>

namespace core {

/// A LIKE pattern made ready.
///
/// 1. The pattern is cut at every "%" into runs; there is at least one run, and none between the first and
/// the
///    last is empty.
/// 2. A run is a sequence of elements, each of which matches exactly one unit: a unit, any unit, or a set.
/// 3. When case is ignored, units and sets are folded, and so are the units of a text before they are looked
///    at.
///
/// By 2 a run takes the same length wherever it matches, so a text matches when the first run stands at its
/// beginning, the last at its end, and the others in between, each at the first position that the one before
/// it leaves: nothing is ever tried again.
class LikeProgram {
  public:
    LikeProgram(wstring_view pattern, wchar escape, LikeCase letterCase);

    [[nodiscard]] bool matches(wstring_view text) const noexcept;

    /// What it was made from.
    [[nodiscard]] wstring_view pattern() const noexcept { return pattern_; }
    [[nodiscard]] wchar escape() const noexcept { return escape_; }
    [[nodiscard]] LikeCase letterCase() const noexcept { return letterCase_; }

  private:
    using Element = std::uint32_t;
    static constexpr Element kUnit = 0; ///< the unit with the element's index
    static constexpr Element kAny = 1;
    static constexpr Element kSet = 2; ///< and above: kSet + the index of the set

    struct Set {
        UnitSet units;
        bool negated = false;
        [[nodiscard]] bool matches(wchar c) const noexcept { return units.contains(c) != negated; }
    };

    struct Run {
        std::size_t first = 0; ///< element
        std::size_t length = 0;
        bool literal = true; ///< every element is a unit
        bool hasUnit = false;
        std::size_t near = 0; ///< the first element that is a unit; the last one follows at pair.distance
        UnitPair pair;        ///< those two, by which a text is searched for the run
    };

    class Parser;
    template <class Fold>
    class Matcher;

    wstring pattern_;
    wchar escape_;
    LikeCase letterCase_;
    std::vector<Run> runs_;
    std::vector<Element> elements_;
    wstring units_; ///< by element
    std::vector<Set> sets_;
};

} // namespace core
