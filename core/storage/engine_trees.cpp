// SPDX-License-Identifier: Apache-2.0
// How the engine reads and writes the trees of table layout 2.
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

void StorageEngine::loadFreeTree() {
    checked([&] {
        RangeSet free;
        std::uint64_t before = 0;
        for (const auto& [begin, length] : freeRows()) {
            if (begin <= before || length > table_.end() - begin) // ranges that touch would be one
                throwBadFormat();
            before = begin + length;
            free.add(begin, before);
        }
        space_.set(std::move(free), table_.end());
        for (const auto& root : {head_.filesRoot(), head_.freeRoot(layout_)}) {
            BlockRuns blocks(layout_.blockHeaderSize());
            if (root)
                blocks.append(root->address, kStorageBlockSize, root->blocks());
            if (!space_.isUsed(blocks))
                throwBadFormat();
        }
    });
    freeBlocks_ = BlockRuns(layout_.blockHeaderSize());
    trustSpace();
}

std::vector<std::pair<std::uint64_t, std::uint64_t>> StorageEngine::freeRows() {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> rows;
    const auto root = head_.freeRoot(layout_);
    if (root)
        for_each_in_tree<FreeRows>(
            freeNodes_, freeNodes_.load(*root),
            [&](std::uint64_t address, std::uint64_t length) { rows.emplace_back(address, length); });
    return rows;
}

std::optional<TreeSpace> StorageEngine::treeSpace() {
    if (head_.tableLayout == TableLayout::flat)
        return std::nullopt;
    const BlockRuns none(layout_.blockHeaderSize());
    TreeSpace space{none, none, freeRows()};
    const auto addTo = [](BlockRuns& blocks) {
        return [&blocks](const NodeRef& ref) { blocks.append(ref.address, kStorageBlockSize, ref.blocks()); };
    };
    if (const auto root = head_.filesRoot())
        for_each_node<FileRows>(fileNodes_, *root, fileNodes_.load(*root), addTo(space.fileNodes));
    if (const auto root = head_.freeRoot(layout_))
        for_each_node<FreeRows>(freeNodes_, *root, freeNodes_.load(*root), addTo(space.freeNodes));
    return space;
}

/// Reads all nodes again, also those that are in memory, and compares every byte.
void StorageEngine::requireNodesAsWritten() {
    const auto compare = [&](bool isTable, const std::optional<NodeRef>& root) {
        return [&, isTable, root](const NodeRef& ref) {
            const std::vector<std::byte> content = read_together(reader_, ref.address, ref.size);
            std::vector<std::byte> found(
                static_cast<std::size_t>(ref.blocks() * layout_.blockLength(kStorageBlockSize)));
            std::vector<std::byte> expected(found.size());
            encode_blocks(expected.data(), layout_, {ref.address, ref.blocks()}, content,
                          isTable && ref == *root ? 0 : ref.size, layout_.null);
            if (!reader_.readAround(ref.address, found) || found != expected ||
                load_number(content.data(), 8) != ref.sum ||
                checksum(std::span(content).subspan(8)) != ref.sum)
                throw ChainInFileExc(ref.address);
        };
    };
    if (const auto root = head_.filesRoot())
        for_each_node<FileRows>(fileNodes_, *root, fileNodes_.load(*root), compare(true, root));
    if (const auto root = head_.freeRoot(layout_))
        for_each_node<FreeRows>(freeNodes_, *root, freeNodes_.load(*root), compare(false, root));
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
        if (const auto freeRoot = head_.freeRoot(layout_))
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
    const auto root = head_.freeRoot(layout_);
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
