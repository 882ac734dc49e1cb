// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

namespace core::detail {

/// The type object of a primitive kind; null for `object`.
[[nodiscard]] IType* primitive_type(ValueKind kind) noexcept;

} // namespace core::detail
