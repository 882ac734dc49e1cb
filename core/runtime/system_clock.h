// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace core::detail {

/// Whether the system's clock is in use, whose sleep may be done in another way.
[[nodiscard]] bool is_system_clock() noexcept;

} // namespace core::detail
