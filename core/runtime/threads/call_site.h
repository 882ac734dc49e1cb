// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>

namespace core::detail {

/// The calls that led to a place, innermost first.
struct CallSite {
    std::array<void*, 8> calls{};
    int count = 0;

    /// The calls that led here.
    [[nodiscard]] static CallSite here() noexcept;
    /// The first calls outside of this library, as functions where the program tells their names, else as
    /// offsets in their files, which a debugger's tools turn into lines.
    [[nodiscard]] wstring text() const;
};

} // namespace core::detail
