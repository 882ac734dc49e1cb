// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

namespace core {

/// An object that says how values are ordered: given to a sort, it stands in for the order of values.
class ICompareValues : public IUnknown {
  public:
    static constexpr GUID IID = "8a0538da-3cdf-4570-ae01-a9a1c2d6638a"_guid;
    /// Negative, 0 or positive. What it throws ends the sort, with nothing sorted.
    [[nodiscard]] virtual int compare(const Value& a, const Value& b) = 0;

  protected:
    ~ICompareValues() = default;
};

} // namespace core
