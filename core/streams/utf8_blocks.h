// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstdint>

namespace core::detail {

/// Decodes characters of one and two bytes, many at a time, from `at` on, up to something else or nearly up
/// to `end`. `out` has room for as many units as there are bytes.
void decode_short(const std::uint8_t*& at, const std::uint8_t* end, wchar*& out) noexcept;

/// Encodes characters of one and two bytes, many at a time, from `at` on, up to something else or nearly up
/// to `end`. `out` has room for three bytes for each unit.
void encode_short(const wchar*& at, const wchar* end, std::uint8_t*& out) noexcept;

} // namespace core::detail
