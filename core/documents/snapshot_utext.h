// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/documents/text_snapshot.h>

#include <unicode/utext.h>

namespace core::detail {

/// Makes a UText over a snapshot, which must live longer; offsets are those of units. The caller closes it.
/// Returns null with `code` set when there is no memory.
[[nodiscard]] UText* open_snapshot(const TextSnapshot& text, UErrorCode& code) noexcept;

} // namespace core::detail
