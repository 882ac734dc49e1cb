// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/bad_place.h"
#include "core/storage/tree_node.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace core {

/// All keys below a node are less than this one; nothing where there is no such limit.
template <class Rows>
using Until = std::optional<typename Rows::Key>;

/// The same for the child in a row of a node that has the limit `until`.
template <class Rows>
[[nodiscard]] Until<Rows> until_of(const TreeNode<Rows>& parent, std::size_t row, const Until<Rows>& until) {
    return row + 1 < parent.size() ? Until<Rows>(parent.keys.at(row + 1)) : until;
}

/// Where a tree's stored nodes come from. What load() returns is never changed by anybody; it throws when the
/// node is damaged.
template <class Rows>
class TreeSource {
  public:
    using Node = std::shared_ptr<const TreeNode<Rows>>;
    virtual ~TreeSource() = default;
    [[nodiscard]] virtual Node load(const NodeRef& ref) = 0;
    /// The child of a node. Its level is one below, and its keys lie where the parent says: from the key of
    /// its row on, before the key of the next row. The keys of the last child lie before `until`.
    [[nodiscard]] virtual Node loadChild(const TreeNode<Rows>& parent, std::size_t row,
                                         const Until<Rows>& until) = 0;
};

/// The node that `load` returns, which lies at `ref`; nothing when it cannot be read and `damaged` was told
/// of it. Without `damaged` that is thrown.
template <class Load>
[[nodiscard]] auto sound_node(const NodeRef& ref, Load load, const DamagedNode& damaged) -> decltype(load()) {
    if (!damaged)
        return load();
    try {
        return at_place(ref.address, load);
    } catch (const ChainInFileExc& e) {
        damaged(e.address());
        return nullptr;
    }
}

/// What a key stands for from now on; nothing when it goes.
template <class Rows>
struct TreeChange {
    typename Rows::Key key;
    std::optional<typename Rows::Value> value;
};

/// What is to be written so that a stored tree becomes another one: the nodes that are new, children before
/// their parents, and those that are not used any more. Stored nodes are never changed.
template <class Rows>
struct TreePlan {
    struct Draft {
        TreeNode<Rows> node;
        bool isUsed = true;
    };
    std::vector<Draft> drafts;
    std::vector<NodeRef> obsolete;
    /// None when the tree has no rows. It is the last draft in use, or the stored root when nothing changed.
    std::optional<TreeChild> root;

    /// Calls `visit(Draft&, NodeRef&)` for each new node that is used, children first; it fills in where the
    /// node is stored. Their parents know it by then. Returns the root's place.
    template <class Visit>
    NodeRef place(Visit visit) {
        std::vector<NodeRef> places(drafts.size());
        for (std::size_t i = 0; i < drafts.size(); ++i) {
            if (!drafts[i].isUsed)
                continue;
            for (TreeChild& child : drafts[i].node.children) {
                if (child.draft != TreeChild::kStored)
                    child.ref = places[child.draft];
                child.draft = TreeChild::kStored;
                child.isVerified = false; // it has other neighbours
            }
            visit(drafts[i].node, places[i]);
        }
        return !root ? NodeRef{} : root->draft == TreeChild::kStored ? root->ref : places[root->draft];
    }
};

/// Makes a plan from changes in the order of their keys, in one pass over what they touch.
template <class Rows>
class TreePlanner {
  public:
    using Node = TreeNode<Rows>;
    using Changes = std::span<const TreeChange<Rows>>;
    /// Says of a stored node whether it must be written again though it does not change. Asking costs a walk
    /// over all inner nodes.
    using Moves = std::function<bool(const NodeRef&)>;

    TreePlanner(TreeSource<Rows>& source, const StorageLayout& layout, Moves moves = {})
        : source_(source), layout_(layout), moves_(std::move(moves)) {}

    [[nodiscard]] TreePlan<Rows> plan(const std::optional<NodeRef>& root, Changes changes) {
        Node rows;
        rows.level = 1;
        if (root) {
            const auto node = source_.load(*root);
            rows.level = node->level + 1;
            apply(TreeChild{*root, 0, TreeChild::kStored}, *node, {}, {}, changes, rows);
        } else {
            Node leaf;
            for (const auto& change : changes) {
                if (change.value)
                    leaf.append(change.key, *change.value);
            }
            split(std::move(leaf), rows);
        }
        while (rows.size() > 1) {
            Node above;
            above.level = rows.level + 1;
            split(std::move(rows), above);
            rows = std::move(above);
        }
        if (rows.size() == 1)
            plan_.root = lowest(rows.children.front());
        return std::move(plan_);
    }

  private:
    /// A root with one child goes, unless the child is damaged. A child that becomes the root is written
    /// again: a root is stored in a way of its own.
    [[nodiscard]] TreeChild lowest(TreeChild top) {
        while (top.draft != TreeChild::kStored) {
            auto& draft = plan_.drafts[top.draft];
            if (draft.node.level == 0 || draft.node.size() != 1)
                return top;
            const TreeChild below = draft.node.children.front();
            if (below.draft != TreeChild::kStored) {
                draft.isUsed = false;
                top = below;
                continue;
            }
            const auto stored = soundChild(draft.node, 0, {});
            if (!stored)
                return top;
            draft.isUsed = false;
            plan_.obsolete.push_back(below.ref);
            top = this->draft(*stored);
        }
        return top;
    }

    /// The stored node in a row; nothing when it is damaged.
    [[nodiscard]] typename TreeSource<Rows>::Node soundChild(const Node& parent, std::size_t row,
                                                             const Until<Rows>& until) {
        return sound_node(
            parent.children[row].ref, [&] { return source_.loadChild(parent, row, until); },
            [](std::uint64_t) {});
    }

    /// Appends what becomes of a stored node to the rows of its parent. All its keys are less than `until`.
    void apply(const TreeChild& child, const Node& node, std::optional<typename Rows::Key> key,
               const Until<Rows>& until, Changes changes, Node& parent) {
        const bool moves = moves_ && moves_(child.ref);
        if (changes.empty() && !moves && !(moves_ && node.level != 0)) {
            parent.append(key ? *key : node.keys.at(0), child);
            return;
        }
        Node result;
        result.level = node.level;
        bool changed = moves || !changes.empty();
        if (node.level == 0) {
            merge(node, changes, result);
        } else {
            for (std::size_t row = 0; row < node.size(); ++row) {
                auto end = changes.end();
                if (row + 1 < node.size())
                    end = std::partition_point(changes.begin(), changes.end(), [&](const auto& change) {
                        return Rows::compare(change.key, node.keys.at(row + 1)) < 0;
                    });
                const auto part = changes.first(static_cast<std::size_t>(end - changes.begin()));
                changes = changes.subspan(part.size());
                const TreeChild& below = node.children[row];
                if (part.empty() && !(moves_ && (node.level > 1 || moves_(below.ref)))) {
                    result.append(node.keys.at(row), below);
                } else {
                    const std::size_t before = plan_.drafts.size();
                    const auto stored = source_.loadChild(node, row, until);
                    apply(below, *stored, node.keys.at(row), until_of(node, row, until), part, result);
                    changed = changed || plan_.drafts.size() != before;
                }
            }
            if (!changed) {
                parent.append(key ? *key : node.keys.at(0), child);
                return;
            }
            join(result, until);
        }
        plan_.obsolete.push_back(child.ref);
        split(std::move(result), parent);
    }

    static void merge(const Node& node, Changes changes, Node& result) {
        auto change = changes.begin();
        const auto put = [&] {
            if (change->value)
                result.append(change->key, *change->value);
            ++change;
        };
        for (std::size_t row = 0; row < node.size(); ++row) {
            int order = 1;
            while (change != changes.end() && (order = Rows::compare(change->key, node.keys.at(row))) < 0)
                put();
            if (change != changes.end() && order == 0)
                put();
            else
                result.appendFrom(node, row);
        }
        while (change != changes.end())
            put();
    }

    [[nodiscard]] std::size_t bytesOf(const TreeChild& child) const {
        return child.draft == TreeChild::kStored ? static_cast<std::size_t>(child.ref.size)
                                                 : node_bytes(plan_.drafts[child.draft].node, layout_);
    }

    /// Makes one node of neighbours of which one became small, where both fit into one. A neighbour that is
    /// damaged stays as it is: the change concerns other files.
    void join(Node& parent, const Until<Rows>& until) {
        constexpr std::size_t kSmall = NodeHeader::kCapacity / 4;
        Node joined;
        joined.level = parent.level;
        const auto isSmallDraft = [&](const TreeChild& child) {
            return child.draft != TreeChild::kStored && bytesOf(child) < kSmall;
        };
        const auto isSound = [&](std::size_t row) {
            return parent.children[row].draft != TreeChild::kStored || soundChild(parent, row, until);
        };
        for (std::size_t row = 0; row < parent.size(); ++row) {
            const TreeChild& child = parent.children[row];
            if (joined.size() != 0) {
                TreeChild& last = joined.children.back();
                if ((isSmallDraft(child) || isSmallDraft(last)) &&
                    bytesOf(child) + bytesOf(last) <= NodeHeader::kCapacity && isSound(row - 1) &&
                    isSound(row)) {
                    Node both = take(last);
                    const Node second = take(child);
                    for (std::size_t i = 0; i < second.size(); ++i)
                        both.appendFrom(second, i);
                    last = draft(std::move(both));
                    continue;
                }
            }
            joined.append(parent.keys.at(row), child);
        }
        parent = std::move(joined);
    }

    /// The node of a child that is not used any more.
    [[nodiscard]] Node take(const TreeChild& child) {
        if (child.draft == TreeChild::kStored) {
            plan_.obsolete.push_back(child.ref);
            return *source_.load(child.ref);
        }
        plan_.drafts[child.draft].isUsed = false;
        return std::move(plan_.drafts[child.draft].node);
    }

    [[nodiscard]] TreeChild draft(Node node) {
        TreeChild child;
        child.draft = plan_.drafts.size();
        for (std::size_t row = 0; row < node.size(); ++row)
            child.longest = std::max(child.longest, node.level == 0 ? Rows::longest(node.values[row])
                                                                    : node.children[row].longest);
        plan_.drafts.push_back({std::move(node)});
        return child;
    }

    /// Makes as many nodes as the rows need, of about one size, and appends them to their parent's rows.
    void split(Node node, Node& parent) {
        const std::size_t total = node_bytes(node, layout_);
        if (node.size() == 0)
            return;
        if (total <= NodeHeader::kCapacity) {
            appendDraft(std::move(node), parent);
            return;
        }
        const std::size_t body = total - NodeHeader::kSize;
        constexpr std::size_t kRoom = NodeHeader::kCapacity - NodeHeader::kSize;
        std::size_t nodes = (body + kRoom - 1) / kRoom;
        const std::size_t least = node.level == 0 ? 1 : 2; // a tree of inner nodes with one row would not end
        std::size_t left = body;
        std::size_t bytes = 0;
        Node part;
        part.level = node.level;
        for (std::size_t row = 0; row < node.size(); ++row) {
            const std::size_t size = Rows::rowBytes(node.level, layout_) + Rows::keyBytes(node.keys.at(row));
            const bool isFull = bytes + size > kRoom || (nodes > 1 && bytes >= left / nodes);
            if (part.size() >= least && isFull && node.size() - row >= least) {
                left -= bytes;
                nodes = std::max<std::size_t>(nodes - 1, 1);
                bytes = 0;
                Node full = std::exchange(part, Node());
                part.level = node.level;
                appendDraft(std::move(full), parent);
            }
            part.appendFrom(node, row);
            bytes += size;
        }
        appendDraft(std::move(part), parent);
    }

    void appendDraft(Node node, Node& parent) {
        const std::size_t index = plan_.drafts.size();
        const TreeChild child = draft(std::move(node));
        parent.append(plan_.drafts[index].node.keys.at(0), child);
    }

    TreeSource<Rows>& source_;
    const StorageLayout& layout_;
    Moves moves_;
    TreePlan<Rows> plan_;
};

/// What a key stands for in a tree of names.
template <class Rows>
[[nodiscard]] std::optional<typename Rows::Value> find_in_tree(TreeSource<Rows>& source, const NodeRef& root,
                                                               typename Rows::Key key) {
    const typename Rows::Probe probe(key);
    auto node = source.load(root);
    auto owner = node; // of the key in `until`
    Until<Rows> until;
    while (node->level != 0) {
        const std::size_t row = node->keys.rowFor(probe);
        auto child = source.loadChild(*node, row, until);
        if (row + 1 < node->size()) {
            until = node->keys.at(row + 1);
            owner = std::move(node);
        }
        node = std::move(child);
    }
    const std::size_t row = node->keys.rowFor(probe);
    return node->keys.at(row) == key ? std::optional(node->values[row]) : std::nullopt;
}

/// Calls `visit(key, value)` for all rows below a node, in order.
template <class Rows, class Visit>
void for_each_in_tree(TreeSource<Rows>& source, const std::shared_ptr<const TreeNode<Rows>>& node,
                      const Visit& visit, const DamagedNode& damaged = {}, const Until<Rows>& until = {}) {
    for (std::size_t row = 0; row < node->size(); ++row) {
        if (node->level == 0)
            visit(node->keys.at(row), node->values[row]);
        else if (const auto child = sound_node(
                     node->children[row].ref, [&] { return source.loadChild(*node, row, until); }, damaged))
            for_each_in_tree(source, child, visit, damaged, until_of(*node, row, until));
    }
}

/// Calls `visit(const NodeRef&)` for all nodes of a tree. Leaves are not read.
template <class Rows, class Visit>
void for_each_node(TreeSource<Rows>& source, const NodeRef& ref,
                   const std::shared_ptr<const TreeNode<Rows>>& node, const Visit& visit,
                   const DamagedNode& damaged = {}, const Until<Rows>& until = {}) {
    visit(ref);
    for (std::size_t row = 0; row < node->children.size(); ++row) {
        const NodeRef& below = node->children[row].ref;
        if (node->level == 1)
            visit(below);
        else if (const auto child = sound_node(
                     below, [&] { return source.loadChild(*node, row, until); }, damaged))
            for_each_node(source, below, child, visit, damaged, until_of(*node, row, until));
    }
}

} // namespace core
