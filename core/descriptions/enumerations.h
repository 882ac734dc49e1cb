// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

namespace core {

inline constexpr GUID kAllowedSignType = "a36cba1e-a1df-47db-98be-cd90a56cc81d"_guid;
inline constexpr GUID kAllowedLengthType = "1ac69197-dfd8-4769-8872-2596b0e02f36"_guid;
inline constexpr GUID kDateFractionsType = "b1cc11af-6d9b-4ed4-8809-bae14a32bbf3"_guid;

} // namespace core
