// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_reader.h"
#include "core/storage/tree.h"
#include "core/storage/tree_rows.h"

#include <core/storage/errors.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace core {

/// The content of blocks of the library's size that lie side by side, `size` bytes. Throws ChainInFileExc
/// when they do not lie within the container.
[[nodiscard]] std::vector<std::byte> read_together(BlockReader& reader, std::uint64_t address,
                                                   std::uint64_t size);

/// The nodes of one of a container's trees. Those read lately are kept in memory, by place and checksum, so
/// that what other programs did not change is not read again.
template <class Rows>
class NodeStore : public TreeSource<Rows> {
  public:
    using Node = typename TreeSource<Rows>::Node;

    explicit NodeStore(BlockReader& reader) : reader_(reader) {}

    [[nodiscard]] Node load(const NodeRef& ref) override {
        if (Node known = recall(ref))
            return known;
        if (!is_child(ref, reader_.layout(), reader_.end())) // before memory is taken for it
            throwDamaged(ref);
        auto node = decode_node<Rows>(read_together(reader_, ref.address, ref.size), reader_.layout(),
                                      reader_.end(), ref.sum);
        if (!node)
            throwDamaged(ref);
        return keep(ref, *std::move(node));
    }

    /// So no node can be met twice on a walk, and no row out of order.
    [[nodiscard]] Node loadChild(const TreeNode<Rows>& parent, std::size_t row,
                                 const Until<Rows>& until) override {
        const TreeChild& child = parent.children[row];
        Node node = load(child.ref);
        if (child.isVerified)
            return node;
        const auto limit = until_of(parent, row, until);
        if (node->level + 1 != parent.level || node->size() == 0 ||
            Rows::compare(node->keys.at(0), parent.keys.at(row)) != 0 ||
            (limit && Rows::compare(node->keys.at(node->size() - 1), *limit) >= 0))
            throwDamaged(child.ref);
        child.isVerified = true;
        return node;
    }

    /// Puts a node that is known anyway where load() finds it.
    Node keep(const NodeRef& ref, TreeNode<Rows> node) {
        auto shared = std::make_shared<const TreeNode<Rows>>(std::move(node));
        remember(ref, shared);
        return shared;
    }

  private:
    [[noreturn]] static void throwDamaged(const NodeRef& ref) { throw ChainInFileExc(ref.address); }

    struct Known {
        NodeRef ref;
        Node node;
    };
    using Generation = std::unordered_map<std::uint64_t, Known>;
    // In memory a node takes about twice what it takes in the file, and there are two generations.
    static constexpr std::uint64_t kGeneration = std::uint64_t{2} << 20;

    [[nodiscard]] Node recall(const NodeRef& ref) {
        if (const auto found = young_.find(ref.address); found != young_.end())
            return found->second.ref == ref ? found->second.node : nullptr;
        const auto found = old_.find(ref.address);
        if (found == old_.end() || found->second.ref != ref)
            return nullptr;
        Node node = found->second.node;
        remember(ref, node);
        return node;
    }
    void remember(const NodeRef& ref, Node node) {
        if (bytes_ + ref.size > kGeneration) {
            old_ = std::exchange(young_, {});
            bytes_ = 0;
        }
        young_.insert_or_assign(ref.address, Known{ref, std::move(node)});
        bytes_ += ref.size;
    }

    BlockReader& reader_;
    Generation young_; // used lately
    Generation old_;   // used before
    std::uint64_t bytes_ = 0;
};

} // namespace core
