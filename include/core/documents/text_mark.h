// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace core {

/// Which way a mark goes when text is inserted exactly where it stands.
enum class MarkGravity : std::uint8_t {
    left = 0,  ///< The mark stays in front of the text.
    right = 1, ///< The mark goes behind the text.
};

/// A place that moves with a text, as the document knows it. A small value, which does not keep the mark; it
/// is of use as long as the mark has not been removed.
struct TextMark {
    std::uint32_t number = 0;     ///< which mark of the document
    std::uint32_t generation = 0; ///< tells it from earlier marks of that number; 0 is never a mark
    /// Returns whether both are the same mark.
    friend bool operator==(const TextMark&, const TextMark&) noexcept = default;
};

/// A range that moves with a text: two marks.
struct TextMarkedRange {
    TextMark begin{}; ///< in front of the range
    TextMark end{};   ///< behind the range
    /// Returns whether both are the same range.
    friend bool operator==(const TextMarkedRange&, const TextMarkedRange&) noexcept = default;
};

} // namespace core
