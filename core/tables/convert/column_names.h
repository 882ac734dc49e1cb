// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/strings/names.h>

#include <unordered_map>

namespace core {

/// Makes names for columns of their titles.
class ColumnNames {
  public:
    /// Returns a name that is valid and was not made before.
    [[nodiscard]] wstring make(wstring_view title);

  private:
    std::unordered_map<wstring, std::size_t, NocaseHash, NocaseEqual> taken_; // with the last number given
};

} // namespace core
