// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/marks.h"
#include "core/documents/piece_tree.h"

#include <boost/container/small_vector.hpp>

#include <cstdint>
#include <vector>

namespace core::detail {

/// The replacement of `count` units at `offset`, after which marks go to where they are said to be. Applying
/// one gives the edit that takes it back.
struct Edit {
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    PieceTree text{};
    std::vector<SavedMark> marks{};
};

/// Edits in a row. Most steps have one, which takes no memory of its own.
using Edits = boost::container::small_vector<Edit, 1>;

/// What an edit is when it comes alone; neighbours of one kind are taken back together.
enum class EditKind {
    other,   ///< longer than a character, or with a line end, or a replacement
    typing,  ///< the insertion of one character
    erasing, ///< the removal of one character
};

/// Edits in the order in which they were made, or are to be made.
// NOLINTNEXTLINE(bugprone-exception-escape): edits are moved without taking memory
struct EditStep {
    Edits edits{};
    std::uint64_t serial = 0; ///< tells the state of the text behind the step
    EditKind kind = EditKind::other;
    bool disjoint = false; ///< whether no edit touches what another one has changed, and offsets rise or fall
};

} // namespace core::detail
