// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/runtime/api.h>
#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace core {

/// The attributes of one inner file: the content of its attributes chain. A value type.
struct CORE_API StorageFileInfo {
    /// Bytes of a record with an empty name.
    static constexpr std::size_t kLeastSize = 24;

    Date created;  ///< Universal time.
    Date modified; ///< Universal time.
    /// The low 32 bits of the container's change counter after the commit that last changed the content: two
    /// states of one file never have the same.
    std::uint32_t attribute = 0;
    wstring name; ///< The name of the inner file.

    /// Returns what a record holds, or nothing when it is shorter than kLeastSize.
    [[nodiscard]] static std::optional<StorageFileInfo> decode(std::span<const std::byte> record);
    /// Returns the record, from which decode() makes equal attributes.
    [[nodiscard]] std::vector<std::byte> encode() const;

    /// Whether all attributes are equal.
    friend bool operator==(const StorageFileInfo&, const StorageFileInfo&) = default;
};

} // namespace core
