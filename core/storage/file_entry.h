// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/checksum.h"

#include <core/storage/files_type.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace core {

/// What a table says of one inner file. Table layout 1 says no more than the two addresses.
struct FileEntry : StorageFileEntry {
    static constexpr std::uint32_t kContentTogether = 1;    ///< the blocks of the content lie side by side
    static constexpr std::uint32_t kAttributesTogether = 2; ///< those of the attributes do

    bool isKnown = false;            ///< whether the table says what follows
    std::uint32_t flags = 0;         ///< kContentTogether, kAttributesTogether
    std::uint64_t size = 0;          ///< bytes of content
    std::uint64_t contentSum = 0;    ///< the content's checksum
    std::uint64_t attributesSum = 0; ///< the checksum of the attributes record

    [[nodiscard]] bool isTogether() const noexcept { return isKnown && (flags & kContentTogether) != 0; }
    /// Whether a content is the one that the table tells of, as far as it does.
    [[nodiscard]] bool isIntact(std::span<const std::byte> content) const noexcept {
        return !isKnown || (content.size() == size && checksum(content) == contentSum);
    }
    friend bool operator==(const FileEntry&, const FileEntry&) = default;
};

} // namespace core
