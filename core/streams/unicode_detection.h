// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/streams/detection.h>

#include <optional>

namespace core::detail {

/// Whether the bytes are UTF-8; the last character may be cut unless the text is whole.
[[nodiscard]] bool is_utf8(std::span<const std::byte> bytes, bool isWhole);

/// UTF-16 or UTF-32 without a mark: bytes among which there are zeros, as no text in bytes has them.
[[nodiscard]] std::optional<DetectedEncoding> detect_wide_units(std::span<const std::byte> bytes,
                                                                bool isWhole);

} // namespace core::detail
