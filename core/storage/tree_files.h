// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/committed_files.h"
#include "core/storage/node_store.h"
#include "core/storage/tree.h"
#include "core/storage/tree_rows.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace core {

/// The committed table in table layout 2. Only the nodes that a question leads through are read.
class TreeFiles : public CommittedFiles {
  public:
    /// The store outlives the object.
    TreeFiles(NodeStore<FileRows>& store, std::optional<NodeRef> root, std::uint64_t count) noexcept
        : store_(&store), root_(root), count_(count) {}

    [[nodiscard]] std::unique_ptr<CommittedFiles> clone() const override {
        return std::make_unique<TreeFiles>(*this);
    }
    [[nodiscard]] const std::optional<NodeRef>& root() const noexcept { return root_; }
    [[nodiscard]] std::uint64_t count() const noexcept override { return count_; }
    [[nodiscard]] std::optional<FileEntry> find(wstring_view name) const override {
        return root_ ? find_in_tree<FileRows>(*store_, *root_, name) : std::nullopt;
    }
    void forEach(const Visit& visit, const DamagedNode& damaged) const override {
        if (!root_)
            return;
        if (const auto node = sound_node(
                *root_, [&] { return store_->load(*root_); }, damaged))
            for_each_in_tree<FileRows>(*store_, node, visit, damaged);
    }

  private:
    NodeStore<FileRows>* store_;
    std::optional<NodeRef> root_;
    std::uint64_t count_;
};

} // namespace core
