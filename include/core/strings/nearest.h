// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>

namespace core {

/// Finds the name that was probably meant by one that nothing has, among names that are offered one by one:
/// the nearest by letters that must be inserted, removed, exchanged or swapped with their neighbour, without
/// regard to case. A name is near where at most every third letter is wrong.
class CORE_API NearestName {
  public:
    /// Looks for what `name` was meant to be. A name of more than 100 units has no neighbours.
    explicit NearestName(wstring_view name);
    /// Offers a name; of several that are equally near the first is kept. The name itself is passed over.
    void add(wstring_view candidate);
    /// Returns the nearest name so far, borrowed until the next add(); empty where none is near.
    [[nodiscard]] const wstring& best() const noexcept { return best_; }

  private:
    wstring name_;
    wstring best_;
    std::size_t least_ = 0; // a distance below this one is near
};

} // namespace core
