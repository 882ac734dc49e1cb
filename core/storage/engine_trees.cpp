// SPDX-License-Identifier: Apache-2.0
// How the engine reads and writes the trees of table layout 2.
#include "core/storage/bad_place.h"
#include "core/storage/engine.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

namespace core {

/// Where the tree of free space is damaged, nothing counts as free: what is new goes behind everything, and
/// the next commit begins a new tree. What was free is lost by that, and compacting gives it back.
void StorageEngine::loadFreeTree() {
    const auto known = std::exchange(spaceTree_, std::nullopt);
    const auto freeRoot = head_.freeRoot(layout_);
    try {
        if (!known || !freeRoot || !followFreeTree(*known, *freeRoot))
            space_.set(readFreeTree(), table_.end());
        for (const auto& root : {head_.filesRoot(), head_.freeRoot(layout_)}) {
            BlockRuns blocks(layout_.blockHeaderSize());
            if (root)
                blocks.append(root->address, kStorageBlockSize, root->blocks());
            if (!space_.isUsed(blocks))
                throw ChainInFileExc(root->address);
        }
        spaceTree_ = freeRoot;
    } catch (const ChainInFileExc&) {
        space_.set({}, table_.end());
        freeTreeLost_ = true;
    }
    freeBlocks_ = BlockRuns(layout_.blockHeaderSize());
    trustSpace();
}

/// The leaves of a tree of free space by their first addresses.
std::map<std::uint64_t, NodeRef> StorageEngine::freeLeaves(const NodeRef& root) {
    std::map<std::uint64_t, NodeRef> leaves;
    const auto add = [&](auto& self, const NodeRef& ref, const NodeStore<FreeRows>::Node& node,
                         const Until<FreeRows>& until) -> void {
        if (node->level == 0 && node->size() != 0)
            leaves.emplace(node->keys.at(0), ref);
        for (std::size_t row = 0; row < node->children.size(); ++row) {
            if (node->level == 1)
                leaves.emplace(node->keys.at(row), node->children[row].ref);
            else
                self(self, node->children[row].ref, freeNodes_.loadChild(*node, row, until),
                     until_of(*node, row, until));
        }
    };
    constexpr Until<FreeRows> kNoLimit;
    add(add, root, freeNodes_.load(root), kNoLimit);
    return leaves;
}

/// Makes what is free, as one tree told it, what another tree tells, by the leaves that only one of them has:
/// to read all of it after every commit of others would cost what the container holds, and not what changed.
/// False when it has to be read.
bool StorageEngine::followFreeTree(const NodeRef& from, const NodeRef& to) {
    if (space_.hasChanges())
        return false;
    try {
        const auto before = freeLeaves(from);
        const auto after = freeLeaves(to);
        RangeSet::List gone;
        RangeSet::List added;
        for (auto leaf = before.begin(); leaf != before.end(); ++leaf) {
            const auto same = after.find(leaf->first);
            const auto next = std::next(leaf);
            if (same == after.end() || same->second != leaf->second)
                gone.emplace_back(leaf->first, next == before.end() ? layout_.null : next->first);
        }
        for (const auto& [first, ref] : after) {
            const auto same = before.find(first);
            if (same != before.end() && same->second == ref)
                continue;
            const auto node = freeNodes_.load(ref);
            for (std::size_t row = 0; row < node->values.size(); ++row)
                added.emplace_back(node->keys.at(row), node->keys.at(row) + node->values[row]);
        }
        return space_.follow(gone, added, table_.end());
    } catch (const ChainInFileExc&) { // the old nodes may be gone
        return false;
    }
}

RangeSet StorageEngine::readFreeTree() {
    RangeSet free;
    std::uint64_t before = 0;
    forEachFree([&](std::uint64_t begin, std::uint64_t length) {
        if (begin <= before || length > table_.end() - begin) // ranges that touch would be one
            throw ChainInFileExc(begin);
        before = begin + length;
        free.add(begin, before);
    });
    return free;
}

/// The tree that the next commit changes.
std::optional<NodeRef> StorageEngine::usableFreeRoot() const {
    return freeTreeLost_ ? std::nullopt : head_.freeRoot(layout_);
}

/// Calls `visit(address, length)` for what the tree of free space says.
template <class Visit>
void StorageEngine::forEachFree(const Visit& visit, const DamagedNode& damaged) {
    if (const auto ref = head_.freeRoot(layout_)) {
        if (const auto root = sound_node(
                *ref, [&] { return freeNodes_.load(*ref); }, damaged))
            for_each_in_tree<FreeRows>(freeNodes_, root, visit, damaged);
    }
}

template <class Visit>
void StorageEngine::forEachNode(const Visit& visit, const DamagedNode& damagedTable,
                                const DamagedNode& damagedFree) {
    if (const auto ref = head_.filesRoot()) {
        const auto visitNode = [&](const NodeRef& node) { visit(node, StorageUse::table); };
        if (const auto root = sound_node(
                *ref, [&] { return fileNodes_.load(*ref); }, damagedTable))
            for_each_node<FileRows>(fileNodes_, *ref, root, visitNode, damagedTable);
    }
    if (const auto ref = head_.freeRoot(layout_)) {
        const auto visitNode = [&](const NodeRef& node) { visit(node, StorageUse::freeChain); };
        if (const auto root = sound_node(
                *ref, [&] { return freeNodes_.load(*ref); }, damagedFree))
            for_each_node<FreeRows>(freeNodes_, *ref, root, visitNode, damagedFree);
    }
}

std::optional<TreeSpace> StorageEngine::treeSpace(const DamagedNode& damagedTable,
                                                  const DamagedNode& damagedFree) {
    if (head_.tableLayout == TableLayout::flat)
        return std::nullopt;
    const BlockRuns none(layout_.blockHeaderSize());
    TreeSpace space{none, none, {}};
    forEachFree(
        [&](std::uint64_t address, std::uint64_t length) { space.free.emplace_back(address, length); },
        damagedFree);
    const auto visit = [&](const NodeRef& node, StorageUse use) {
        (use == StorageUse::table ? space.fileNodes : space.freeNodes)
            .append(node.address, kStorageBlockSize, node.blocks());
    };
    forEachNode(visit, damagedTable, damagedFree);
    return space;
}

std::vector<NodeRef> StorageEngine::nodes() {
    std::vector<NodeRef> all;
    forEachNode([&](const NodeRef& node, StorageUse) { all.push_back(node); }, {}, {});
    return all;
}

/// Whether every byte of a node is as it was written. It is read again, also when it is in memory.
bool StorageEngine::isAsWritten(const NodeRef& node) {
    const std::vector<std::byte> content = read_together(reader_, node.address, node.size);
    std::vector<std::byte> found(
        static_cast<std::size_t>(node.blocks() * layout_.blockLength(kStorageBlockSize)));
    std::vector<std::byte> expected(found.size());
    const std::uint64_t chainSize = node == head_.filesRoot() ? 0 : node.size; // a part of the table's chain
    encode_blocks(expected.data(), layout_, {node.address, node.blocks()}, content, chainSize, layout_.null);
    return reader_.readAround(node.address, found) && found == expected &&
           load_number(content.data(), 8) == node.sum && checksum(std::span(content).subspan(8)) == node.sum;
}

void StorageEngine::compareNodes(const DamagedNode& damagedTable, const DamagedNode& damagedFree) {
    const auto compare = [&](const NodeRef& node, StorageUse use) {
        bool isSound = false;
        try {
            isSound = at_place(node.address, [&] { return isAsWritten(node); });
        } catch (const ChainInFileExc&) {
        }
        if (!isSound)
            (use == StorageUse::table ? damagedTable : damagedFree)(node.address);
    };
    forEachNode(compare, damagedTable, damagedFree);
}

void StorageEngine::releaseNode(const NodeRef& ref) {
    BlockRuns blocks(layout_.blockHeaderSize());
    blocks.append(ref.address, kStorageBlockSize, ref.blocks());
    release(blocks);
}

namespace {

template <class Rows>
std::uint64_t blocks_of(const TreePlan<Rows>& plan, const StorageLayout& layout) {
    std::uint64_t blocks = 0;
    for (const auto& draft : plan.drafts) {
        if (draft.isUsed)
            blocks += (node_bytes(draft.node, layout) + kStorageBlockSize - 1) / kStorageBlockSize;
    }
    return blocks;
}

} // namespace

/// Writes the new nodes of a plan side by side into `area`; the root takes what is left of that. The root of
/// the files is a part of the table's chain, all others are chains of their own.
template <class Rows>
NodeRef StorageEngine::writeNodes(TreePlan<Rows>& plan, NodeStore<Rows>& store, BlockRange area,
                                  std::uint64_t counter) {
    constexpr bool kIsTable = std::is_same_v<Rows, FileRows>;
    auto left =
        std::count_if(plan.drafts.begin(), plan.drafts.end(), [](const auto& draft) { return draft.isUsed; });
    return plan.place([&](TreeNode<Rows>& node, NodeRef& ref) {
        const bool isRoot = --left == 0;
        const std::size_t least = isRoot ? static_cast<std::size_t>(area.count) * kStorageBlockSize : 0;
        const auto content = encode_node(node, layout_, counter, least);
        ref = {area.address, content.size(), load_number(content.data(), 8)};
        const BlockRange place{area.address, ref.blocks()};
        write(std::span(&place, 1), content, isRoot && kIsTable ? 0 : content.size(), layout_.null);
        area.address += place.count * layout_.blockLength(kStorageBlockSize);
        area.count -= place.count;
        store.keep(ref, std::move(node));
    });
}

void StorageEngine::writeTrees(Next& next) {
    std::vector<TreeChange<FileRows>> changes;
    for (const FilesTable::Changed& change : table_.changes())
        changes.push_back({change.name, *change.after});
    TreePlan<FileRows> plan =
        TreePlanner<FileRows>(fileNodes_, layout_, nodesToMove_).plan(head_.filesRoot(), changes);
    for (const NodeRef& ref : plan.obsolete)
        releaseNode(ref);
    std::optional<NodeRef> root;
    if (plan.root) {
        const std::uint64_t blocks = blocks_of(plan, layout_);
        const BlockRange area = blocks != 0 ? allocateTogether(blocks, nodesFrom_) : BlockRange{};
        root = writeNodes(plan, fileNodes_, area, next.head.counter);
    }
    next.head.files = table_.count();
    next.head.setFilesRoot(root, layout_);
    if (root) {
        if (nodesFrom_ != 0) // so that nothing is in the way of the files tree when it moves down
            nodesFrom_ = root->address + root->blocks() * layout_.blockLength(kStorageBlockSize);
        writeFreeTree(next);
    } else { // nothing is in use: the container ends behind the first table block
        if (const auto freeRoot = usableFreeRoot())
            for_each_node<FreeRows>(freeNodes_, *freeRoot, freeNodes_.load(*freeRoot),
                                    [&](const NodeRef& ref) { releaseNode(ref); });
        next.head.setFreeRoot(std::nullopt, layout_);
        next.head.end = layout_.emptyLength();
    }
    next.table =
        FilesTable(layout_, std::make_unique<TreeFiles>(fileNodes_, root, next.head.files), next.head.end);
}

/// What changes in the tree of free space; everything when there was none.
std::vector<TreeChange<FreeRows>> StorageEngine::freeChanges(Next& next) const {
    std::vector<TreeChange<FreeRows>> changes;
    if (head_.tableLayout == TableLayout::flat) {
        const FreeSpace::Outlook outlook = space_.outlook();
        for (const auto& [begin, end] : outlook.free)
            changes.push_back({begin, end - begin});
        next.head.end = outlook.end;
        return changes;
    }
    const FreeSpace::Delta delta = space_.delta();
    next.head.end = delta.end;
    const auto& before = delta.before.ranges();
    const auto& after = delta.after.ranges();
    for (const auto& [begin, end] : before) {
        if (!after.contains(begin))
            changes.push_back({begin, std::nullopt});
    }
    for (const auto& [begin, end] : after) {
        const auto old = before.find(begin);
        if (old == before.end() || old->second != end)
            changes.push_back({begin, end - begin});
    }
    std::sort(changes.begin(), changes.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
    return changes;
}

/// Writes down what will be free. The nodes for it take space that is free now, and give their old space
/// back, which changes what is written: so it is planned until a plan fits into the space that it took. A
/// node that was given back once stays so, and the space only grows, which ends it.
void StorageEngine::writeFreeTree(Next& next) {
    const auto root = usableFreeRoot();
    std::set<std::uint64_t> released;
    BlockRange area{};
    TreePlan<FreeRows> plan;
    for (bool fits = false; !fits;) {
        TreePlanner<FreeRows> planner(freeNodes_, layout_, [&](const NodeRef& ref) {
            return released.contains(ref.address) || (nodesToMove_ && nodesToMove_(ref));
        });
        plan = planner.plan(root, freeChanges(next));
        fits = true;
        if (area.count != 0 && plan.root && plan.root->draft == TreeChild::kStored)
            plan.obsolete.push_back(*root); // the space has to be somebody's
        for (const NodeRef& ref : plan.obsolete) {
            if (!released.insert(ref.address).second)
                continue;
            releaseNode(ref);
            fits = false;
        }
        if (!fits)
            continue; // what was given back may need less
        if (const std::uint64_t need = blocks_of(plan, layout_); need > area.count) {
            if (area.count != 0)
                giveBack(std::span(&area, 1));
            area = allocateTogether(need, nodesFrom_);
            fits = false;
        }
    }
    if (!plan.root && area.count != 0) {
        plan.root = TreeChild{{}, 0, plan.drafts.size()};
        plan.drafts.push_back({TreeNode<FreeRows>()});
    }
    std::optional<NodeRef> place;
    if (plan.root)
        place = writeNodes(plan, freeNodes_, area, next.head.counter);
    next.head.setFreeRoot(place, layout_);
}

} // namespace core
