// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/file_entry.h"
#include "core/storage/tree_node.h"

#include <core/runtime/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace core {

/// The committed table of inner files, in either layout.
class CommittedFiles {
  public:
    using Visit = std::function<void(wstring_view name, const FileEntry& entry)>;
    virtual ~CommittedFiles() = default;

    [[nodiscard]] virtual std::unique_ptr<CommittedFiles> clone() const = 0;
    [[nodiscard]] virtual std::uint64_t count() const noexcept = 0;
    [[nodiscard]] virtual std::optional<FileEntry> find(wstring_view name) const = 0;
    /// Every file, in order. Without `damaged` a node that is damaged is thrown.
    virtual void forEach(const Visit& visit, const DamagedNode& damaged) const = 0;

  protected:
    CommittedFiles() = default;
    CommittedFiles(const CommittedFiles&) = default;
    CommittedFiles& operator=(const CommittedFiles&) = default;
};

} // namespace core
