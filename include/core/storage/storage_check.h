// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <vector>

namespace core {

/// What a piece of a container's file is used for.
enum class StorageUse : std::int32_t {
    head,       ///< The header and the first block of the table.
    table,      ///< The other blocks of the table of inner files.
    freeChain,  ///< The list of free space.
    attributes, ///< The attributes of an inner file.
    content,    ///< The content of an inner file.
    free,       ///< Nothing: new blocks may be put there.
};

/// Something that is wrong in a container.
struct StorageProblem {
    /// What is wrong.
    enum class Kind : std::int32_t {
        damagedFreeChain = 1,  ///< The list of free space cannot be read.
        damagedAttributes = 2, ///< The attributes of an inner file cannot be read, or name another file.
        damagedContent = 3,    ///< The content of an inner file cannot be read.
        overlap = 4,           ///< Two have bytes in common: two chains, or a chain and free space.
        lost = 5,              ///< Bytes are neither in use nor free: one problem, however many they are.
        tangled = 6,           ///< So many chains share blocks that not all of them were walked.
        damagedTable = 7,      ///< A part of the table of inner files cannot be read, nor the files in it.
    };
    Kind kind;                 ///< What is wrong.
    std::uint64_t address = 0; ///< The offset in the file at which it shows.
    std::uint64_t length = 0;  ///< Bytes that overlap or are lost, all together; 0 for damage.
    std::uint64_t places =
        1;                 ///< Pieces of the file in which they lie, by address; the first is at `address`.
    StorageUse use{};      ///< The use of an overlapping piece.
    wstring name{};        ///< The inner file that is damaged or has the piece; empty when no file has it.
    StorageUse otherUse{}; ///< The use of the other piece of an overlap.
    wstring otherName{};   ///< The inner file that has the other piece; empty when no file has it.

    /// Returns a sentence for the user, in the thread's language.
    [[nodiscard]] CORE_API wstring text() const;
};

/// What a check of a container found.
struct StorageCheck {
    std::uint64_t files = 0;  ///< Inner files.
    std::uint64_t blocks = 0; ///< Blocks of all chains; those before the damage of a damaged chain.
    /// What is wrong, by address: each fault once, however many blocks it touches.
    std::vector<StorageProblem> problems;
    std::uint64_t unlisted = 0; ///< Further problems, of which there are too many to list them.

    /// Returns whether nothing is wrong.
    [[nodiscard]] bool isClean() const noexcept { return problems.empty(); }
};

/// How a container uses its file.
struct StorageInfo {
    /// Some bytes of the file with one use.
    struct Piece {
        std::uint64_t address; ///< Offset of the first byte.
        std::uint64_t length;  ///< Bytes.
        StorageUse use;        ///< What they are used for.
    };

    std::uint64_t firstWord = 0;     ///< First header word: the first block of the free chain, or null.
    std::uint64_t secondWord = 0;    ///< Second header word: the default block size.
    std::uint64_t changeCounter = 0; ///< Commits so far.
    std::uint64_t fileLength = 0;    ///< Bytes of the file.
    std::uint64_t end = 0;          ///< The end of what is in use; an interruption may leave bytes behind it.
    std::uint64_t files = 0;        ///< Inner files.
    std::uint64_t contentBytes = 0; ///< Bytes of content in all inner files.
    std::uint64_t blocks = 0;       ///< Blocks of all chains.
    std::uint64_t freeBytes = 0;    ///< Bytes that are free.
    std::uint64_t freeRanges = 0;   ///< Ranges in which they lie.
    std::uint64_t fragments = 0;    ///< Runs of neighbouring blocks in which the content of the files lies.
    std::vector<Piece> pieces;      ///< The whole file up to `end`, by address.
};

} // namespace core
