// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_node.h"

#include <cstdint>

/// Questions about a text; `root` may be null, as that of an empty text is.
namespace core::detail {

/// Units that stand together in memory, and the offset of the first in the text. Borrowed from the tree.
struct UnitRun {
    wstring_view text;
    std::uint64_t offset = 0;

    /// The units from an offset in the text on, which must lie in the run or at its end.
    [[nodiscard]] wstring_view from(std::uint64_t at) const noexcept {
        return text.substr(static_cast<std::size_t>(at - offset));
    }
};

/// The run that has the unit at `offset`; empty at the end of the text.
[[nodiscard]] UnitRun run_at(const PieceNode* root, std::uint64_t offset) noexcept;
/// How many lines end in front of the unit at `offset`, which the text must have. An LF behind a CR belongs
/// to the line that they end.
[[nodiscard]] std::uint64_t line_of(const PieceNode* root, std::uint64_t offset) noexcept;

/// The end of a line.
struct FoundEnd {
    std::uint64_t offset = 0; ///< of its first unit
    std::uint32_t count = 0;  ///< of its units
};
/// The end of line `line`, from 0; the text must have so many ends.
[[nodiscard]] FoundEnd find_end(const PieceNode* root, std::uint64_t line) noexcept;

} // namespace core::detail
