// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// The usual alphabet, with "=" at the end, in one line.
[[nodiscard]] wstring base64_encode(std::span<const std::byte> bytes);
/// Empty for a text that is not of that form. White space may stand anywhere.
[[nodiscard]] std::optional<std::vector<std::byte>> base64_decode(wstring_view text);

} // namespace core
