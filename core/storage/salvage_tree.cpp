// SPDX-License-Identifier: Apache-2.0
// What is left of the tree of inner files in table layout 2. Nodes have checksums and say what they are, so
// that they are found without the way that leads to them.
#include "core/storage/salvage_found.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

namespace core {

bool SalvageSource::isWholeTree(const NodeRef& ref, std::optional<unsigned> level) {
    try {
        const auto node = nodes_.load(ref);
        if (level && node->level != *level)
            return false;
        return node->level == 0 ||
               std::all_of(node->children.begin(), node->children.end(),
                           [&](const TreeChild& child) { return isWholeTree(child.ref, node->level - 1); });
    } catch (const ChainInFileExc&) {
        return false;
    }
}

/// Shows what can be reached from a node on.
void SalvageSource::showTree(const NodeRef& ref, std::optional<unsigned> level, bool remembers,
                             const Visit& visit) {
    NodeStore<FileRows>::Node node;
    try {
        node = nodes_.load(ref);
    } catch (const ChainInFileExc&) {
        return;
    }
    if (level && node->level != *level)
        return;
    for (std::size_t row = 0; row < node->size(); ++row) {
        if (node->level != 0)
            showTree(node->children[row].ref, node->level - 1, remembers, visit);
        else if (!remembers || shown_.emplace(node->keys.at(row)).second)
            visit(node->keys.at(row), node->values[row], true);
    }
}

bool SalvageSource::findByTree(const Visit& visit) {
    ContainerHead::Bytes bytes{};
    ContainerHead head;
    std::optional<NodeRef> root;
    try {
        if (!readHead(bytes))
            return false;
        head = ContainerHead::decode(bytes, layout_);
        if (head.tableLayout == TableLayout::tree && head.files == 0 && head.isSound(bytes, layout_))
            return true; // an empty container
        root = head.filesRoot();
        if (!root || !is_child(*root, layout_, reader_.end()))
            return false;
        (void)nodes_.load(*root);
    } catch (const ChainInFileExc&) {
        return false;
    } catch (const HexConvExc&) {
        return false;
    }
    const bool isWhole = isWholeTree(*root, std::nullopt);
    showTree(*root, std::nullopt, !isWhole, visit);
    if (!isWhole) {
        if (head.isSound(bytes, layout_))
            readFree(head);
        Found found;
        scan(found);
        findByLeaves(found, visit);
        (void)findByRecords(found, visit);
    }
    return true;
}

/// Takes note of what the container says is free, if all of that can be read, and of how many files there
/// are.
void SalvageSource::readFree(const ContainerHead& head) {
    expected_ = head.files;
    NodeStore<FreeRows> nodes(reader_);
    RangeSet free;
    if (head.end < length_)
        free.add(head.end, length_);
    const auto add = [&](std::uint64_t begin, std::uint64_t length) {
        if (free.touches(begin, begin + length))
            throw ChainInFileExc(begin);
        free.add(begin, begin + length);
    };
    try {
        if (const auto root = head.freeRoot(layout_))
            for_each_in_tree<FreeRows>(nodes, nodes.load(*root), add);
        free_ = std::move(free);
    } catch (const ChainInFileExc&) { // what was removed may come back
    }
}

/// The latest node of the highest level is the root of the latest tree.
bool SalvageSource::findByNodes(Found& found, const Visit& visit) {
    const auto rank = [](const Found::Node& node) { return std::tie(node.counter, node.level); };
    const auto root = std::max_element(found.nodes.begin(), found.nodes.end(),
                                       [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    if (root == found.nodes.end())
        return false;
    const bool isWhole = isWholeTree(root->ref, std::nullopt);
    showTree(root->ref, std::nullopt, !isWhole, visit);
    if (!isWhole) {
        findByLeaves(found, visit);
        (void)findByRecords(found, visit);
    }
    return true;
}

/// Shows the files that no tree leads to, each by its latest row. A row whose attributes are not there is
/// that of a file that was removed.
void SalvageSource::findByLeaves(const Found& found, const Visit& visit) {
    std::map<wstring, std::pair<std::uint64_t, FileEntry>> rows;
    for (const Found::Node& leaf : found.nodes) {
        if (leaf.level != 0)
            continue;
        const auto node = nodes_.load(leaf.ref);
        for (std::size_t row = 0; row < node->size(); ++row) {
            const wstring name(node->keys.at(row));
            if (shown_.contains(name) || isFree(node->values[row].attributes))
                continue;
            auto& known = rows[name];
            if (leaf.counter >= known.first)
                known = {leaf.counter, node->values[row]};
        }
    }
    for (const auto& [name, row] : rows) {
        std::uint64_t end = 0;
        const auto info = recordAt(row.second.attributes, end);
        if (info && info->name == name) {
            shown_.insert(name);
            visit(name, row.second, true);
        }
    }
}

/// Takes note of a node of the files whose first block stands at `address`. False when what is there is not a
/// node, not even a damaged one or one of free space: then it is the content of a file, or its attributes.
bool SalvageSource::lookForNode(std::uint64_t address, const BlockHeader& header, Found& found) {
    const std::size_t skip = layout_.blockHeaderSize();
    const auto bytes = reader_.at(address, skip + NodeHeader::kSize, NodeHeader::kLimit);
    if (bytes.size() < skip + NodeHeader::kSize)
        return false;
    const std::byte* const node = bytes.data() + skip;
    const bool isOfFiles = std::memcmp(node + 8, FileRows::kKind.data(), FileRows::kKind.size()) == 0;
    const bool isOfFree = std::memcmp(node + 8, FreeRows::kKind.data(), FreeRows::kKind.size()) == 0;
    if ((!isOfFiles && !isOfFree) || header.chainSize % kStorageBlockSize != 0 ||
        load_number(node + 14, 2) != 0 || load_number(node + 28, 4) != 0)
        return false;
    if (isOfFree)
        return true;
    const std::uint64_t sum = load_number(node, 8);
    const std::uint64_t counter = load_number(node + 16, 8);
    try {
        BlockChain chain(layout_); // the root does not say how long it is, but ends where its chain does
        chain.adopt(reader_, address, 0, header.size, header.next);
        chain.walk(reader_);
        const NodeRef ref{address, chain.runs().capacity(), sum};
        if (is_child(ref, layout_, reader_.end()))
            found.nodes.push_back({ref, nodes_.load(ref)->level, counter});
    } catch (const ChainInFileExc&) { // it is damaged
    }
    return true;
}

} // namespace core
