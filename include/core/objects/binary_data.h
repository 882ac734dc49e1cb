// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>
#include <span>
#include <vector>

namespace core {

inline constexpr GUID kBinaryDataClass = "7de97245-2e04-4cd6-9f5d-a10944b56cc5"_guid; ///< class id
inline constexpr GUID kBinaryDataType = "d1c20a25-61d9-4e54-a873-43e56d7a40ad"_guid;  ///< type id

/// Bytes as a value, which scripts know as "BinaryData". It never changes once made or read; two are equal
/// when their bytes are. Threads: any.
class IBinaryData : public IUnknown {
  public:
    static constexpr GUID IID = "38d47cb6-ee55-4c02-a257-5e867e2562e1"_guid; ///< the interface's id
    /// Returns the bytes, borrowed; valid as long as the object.
    [[nodiscard]] virtual std::span<const std::byte> bytes() const noexcept = 0;

  protected:
    ~IBinaryData() = default;
};

/// Returns a new BinaryData of the given bytes. Throws std::bad_alloc.
[[nodiscard]] CORE_API Value create_binary_data(std::vector<std::byte> bytes);

} // namespace core
