// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/lists/float_token.h"

#include <core/runtime/types.h>

#include <cstddef>

namespace core::detail {

/// Tells, a unit at a time and without keeping the text, whether a bare token has one of the forms that there
/// are: an integer (a Boolean and a date are two), a decimal number, a floating-point number, an id.
class BareToken {
  public:
    /// Whether a token may go on with this unit.
    [[nodiscard]] bool take(wchar unit) noexcept;
    /// Whether a token may end here.
    [[nodiscard]] bool complete() const noexcept;

  private:
    bool takesInteger(wchar unit) noexcept;
    bool takesDecimal(wchar unit) noexcept;
    bool takesFloat(wchar unit) noexcept;
    bool takesId(wchar unit) const noexcept;

    FloatToken floating_;
    std::size_t length_ = 0; // up to what an id has, and one more
    bool integer_ = true;    // may still be one
    bool decimal_ = true;
    bool float_ = true;
    bool id_ = true;
    bool digit_ = false; // has one
    bool point_ = false;
};

} // namespace core::detail
