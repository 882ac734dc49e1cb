// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/detection.h>

#include <optional>

namespace core::detail {

/// The encoding by how often letters follow each other; nothing when no language fits. `others` is how many
/// of the bytes are not ASCII.
[[nodiscard]] std::optional<DetectedEncoding> detect_by_letters(std::span<const std::byte> bytes,
                                                                std::size_t others);

} // namespace core::detail
