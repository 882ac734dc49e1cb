// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <vector>

namespace core {

/// The way back from simple foldings to units, made from the fold table at first use; read-only afterwards.
class CaseVariants {
  public:
    struct Folding {
        wchar unit;
        wchar folded;
    };

    [[nodiscard]] static const CaseVariants& instance() {
        static const CaseVariants variants;
        return variants;
    }

    /// All units with the simple folding `folded`, which is one of them; there are four at the most. The rest
    /// of the array repeats the first.
    [[nodiscard]] std::array<wchar, 4> of(wchar folded) const noexcept;

    /// Calls `visit` with the folding of every unit in [first, last] that does not fold to itself.
    template <class Visit>
    void forEachFolding(wchar first, wchar last, Visit visit) const {
        for (const Folding& entry : byUnit_) {
            if (entry.unit > last)
                break;
            if (entry.unit >= first)
                visit(entry.folded);
        }
    }

  private:
    CaseVariants();

    std::vector<Folding> byUnit_;    ///< every unit that does not fold to itself
    std::vector<Folding> byFolding_; ///< the same, by what they fold to
};

} // namespace core
