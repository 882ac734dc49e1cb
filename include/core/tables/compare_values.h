// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

namespace core {

/// An object that says how values are ordered. A sort that is given one uses it instead of the order of
/// values.
class ICompareValues : public IUnknown {
  public:
    /// The id of the interface.
    static constexpr GUID IID = "8a0538da-3cdf-4570-ae01-a9a1c2d6638a"_guid;
    /// Returns a negative number when `a` comes before `b`, 0 when they are equal, and a positive number
    /// otherwise. An exception ends the sort, with nothing sorted.
    [[nodiscard]] virtual int compare(const Value& a, const Value& b) = 0;

  protected:
    ~ICompareValues() = default;
};

} // namespace core
