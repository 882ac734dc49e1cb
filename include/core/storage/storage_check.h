// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstdint>
#include <vector>

namespace core {

/// What a piece of a container is used for.
enum class StorageUse : std::int32_t { head, table, freeChain, attributes, content, free };

/// Something that is wrong in a container.
struct StorageProblem {
    enum class Kind : std::int32_t {
        damagedFreeChain = 1,  ///< the list of free space cannot be read
        damagedAttributes = 2, ///< the attributes of an inner file cannot be read, or name another file
        damagedContent = 3,    ///< the content of an inner file cannot be read
        overlap = 4,           ///< bytes in use twice, or in use and free
        lost = 5,              ///< bytes neither in use nor free
    };
    Kind kind;
    std::uint64_t address = 0; ///< where it shows
    std::uint64_t length = 0;  ///< of what overlaps or is lost
    StorageUse use{};          ///< of the piece concerned
    wstring name{};            ///< the inner file that it belongs to, if any
    StorageUse otherUse{};     ///< the other piece of an overlap
    wstring otherName{};

    /// A sentence for the user, in the thread's language.
    [[nodiscard]] CORE_API wstring text() const;
};

struct StorageCheck {
    std::uint64_t files = 0;
    std::uint64_t blocks = 0;
    std::vector<StorageProblem> problems; ///< by address

    [[nodiscard]] bool isClean() const noexcept { return problems.empty(); }
};

/// How a container uses its file.
struct StorageInfo {
    struct Piece {
        std::uint64_t address;
        std::uint64_t length;
        StorageUse use;
    };

    std::uint64_t firstWord = 0;  ///< first block of the free chain, or null
    std::uint64_t secondWord = 0; ///< default block size
    std::uint64_t changeCounter = 0;
    std::uint64_t fileLength = 0;
    std::uint64_t end = 0; ///< of what is in use; what the file has beyond is left over from an interruption
    std::uint64_t files = 0;
    std::uint64_t contentBytes = 0;
    std::uint64_t blocks = 0;
    std::uint64_t freeBytes = 0;
    std::uint64_t freeRanges = 0;
    std::uint64_t fragments = 0; ///< runs of neighbouring blocks in which the content of the files lies
    std::vector<Piece> pieces;   ///< the whole file up to `end`, by address
};

} // namespace core
