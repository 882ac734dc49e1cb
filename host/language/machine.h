// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace core::script {

/// For what functions of the library need of the stack below a script.
inline constexpr std::size_t kStackReserve = 1U << 20U;

/// The resident memory of the program in bytes; 0 where the system does not tell.
[[nodiscard]] std::uint64_t resident_memory() noexcept;

/// The part of the calling thread's stack that a script must not come down to; empty where it is not known.
[[nodiscard]] std::span<const std::byte> stack_reserve() noexcept;

} // namespace core::script
