// SPDX-License-Identifier: Apache-2.0
#include "core/storage/canonical_chain.h"
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <utility>

namespace core {
namespace {

constexpr std::uint64_t kLeastStep = std::uint64_t{1} << 20;
constexpr std::uint64_t kMostStep = std::uint64_t{64} << 20;
constexpr int kMostSteps = 1000; // others may go on making holes
constexpr int kMostNodeSteps = 4;

std::uint64_t blocks_for(std::uint64_t size) {
    return (size + kStorageBlockSize - 1) / kStorageBlockSize;
}

} // namespace

/// What a step of compacting works on: all chains of files, in the order of their places.
struct StorageEngine::Compaction {
    struct Chain {
        std::uint64_t address; // of the lowest block
        std::uint64_t blocks;
        std::size_t file;
        bool isContent;
        bool isTogether;
    };
    std::vector<std::pair<wstring, FileEntry>> files;
    std::vector<Chain> chains;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> used; // by chains and nodes
    std::vector<NodeRef> nodes;
    std::uint64_t packedEnd = 0; // the chains before it are where they belong
    std::size_t packed = 0;      // how many these are
    std::uint64_t chainsEnd = 0; // where all of them will end
};

/// In steps, each of them one commit: a table in table layout 1 is converted; then chains move to the lowest
/// free space, side by side, and the trees behind them. Others have their turn between the steps. Any step
/// may be the last one.
void StorageEngine::compact() {
    int nodeSteps = 0;
    for (int step = 0; step < kMostSteps; ++step) {
        const std::lock_guard lock(mutex_);
        if (transaction_ || turns_ != 0)
            throw_storage_error(messages::kStorageTransaction, url_);
        const Turn turn(*this);
        const bool goesOn = checked([&] {
            try {
                if (head_.tableLayout == TableLayout::tree)
                    return compactStep(nodeSteps);
                convert();
                return true;
            } catch (...) {
                nodesFrom_ = 0;
                nodesToMove_ = {};
                next_ = head_.tableLayout;
                throw;
            }
        });
        nodesFrom_ = 0;
        nodesToMove_ = {};
        if (!goesOn)
            return;
    }
}

/// Gives a table in table layout 1 the other layout. Chains that no writer of that layout would write are
/// written again.
void StorageEngine::convert() {
    if (!spaceVerified_)
        verifySpace();
    if (!spaceVerified_)
        throwBadFormat();
    next_ = TableLayout::tree;
    std::vector<std::pair<wstring, FileEntry>> files;
    table_.forEach([&](wstring_view name, const FileEntry& entry) { files.emplace_back(name, entry); });
    for (auto& file : files) {
        const wstring& name = file.first;
        FileEntry& entry = file.second;
        const auto read = [&](std::uint64_t address) {
            return checked(name, [&] { return read_canonical(reader_, address); });
        };
        const CanonicalChain content = read(entry.data);
        const CanonicalChain attributes = read(entry.attributes);
        entry.isKnown = true;
        entry.size = content.size;
        entry.contentSum = content.sum;
        entry.attributesSum = attributes.sum;
        entry.flags = (content.isTogether ? FileEntry::kContentTogether : 0) |
                      (attributes.isTogether ? FileEntry::kAttributesTogether : 0);
        const bool shares = !sharedSpace_.empty(); // then nobody says whose bytes they are
        if (shares || !content.isCanonical)
            moveContent(entry, 0);
        if (attributes.size != 0 && attributes.size != StorageFileInfo::kLeastSize + 2 * name.size())
            entry.flags &= ~FileEntry::kAttributesTogether; // then its blocks cannot be counted by the name
        if (shares || !attributes.isCanonical)
            moveAttributes(entry, name, 0);
        table_.set(name, entry);
    }
    table_.touch();
    commitChanges();
}

bool StorageEngine::compactStep(int& nodeSteps) {
    Compaction all = surveyChains();
    releaseLost(all);
    nodesFrom_ = all.chainsEnd;
    if (all.packed == all.chains.size())
        return moveNodes() && ++nodeSteps < kMostNodeSteps;
    const auto isInTheWay = [end = all.chainsEnd](const NodeRef& ref) { return ref.address < end; };
    if (std::any_of(all.nodes.begin(), all.nodes.end(), isInTheWay)) {
        nodesToMove_ = isInTheWay;
        table_.touch();
        commitChanges();
        return true;
    }
    return moveSome(all);
}

StorageEngine::Compaction StorageEngine::surveyChains() {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    Compaction all;
    table_.forEach([&](wstring_view name, const FileEntry& entry) { all.files.emplace_back(name, entry); });
    std::uint64_t blocks = 0;
    const auto add = [&](std::size_t file, bool isContent, const BlockRuns& runs) {
        if (runs.empty())
            return;
        std::uint64_t lowest = runs.runs().front().address;
        for (const BlockRun& run : runs.runs()) {
            lowest = std::min(lowest, run.address);
            all.used.emplace_back(run.address, run.address + runs.lengthOf(run));
        }
        all.chains.push_back({lowest, runs.count(), file, isContent, runs.runs().size() == 1});
        blocks += runs.count();
    };
    for (std::size_t file = 0; file < all.files.size(); ++file) {
        const wstring& name = all.files[file].first;
        const FileEntry& entry = all.files[file].second;
        BlockRuns attributes(layout_.blockHeaderSize());
        BlockRuns content(layout_.blockHeaderSize());
        checked(name, [&] { // what is damaged must not count as lost
            if ((entry.flags & FileEntry::kAttributesTogether) == 0)
                chain(entry.attributes, 0).walk(reader_);
            if (!entry.isTogether())
                chain(entry.data, 0).walk(reader_);
        });
        addAttributes(entry, name, attributes);
        addContent(entry, content);
        add(file, false, attributes);
        add(file, true, content);
    }
    const auto addNode = [&](const NodeRef& ref) {
        all.nodes.push_back(ref);
        all.used.emplace_back(ref.address, ref.address + ref.blocks() * step);
    };
    if (const auto root = head_.filesRoot())
        for_each_node<FileRows>(fileNodes_, *root, fileNodes_.load(*root), addNode);
    if (const auto root = head_.freeRoot(layout_))
        for_each_node<FreeRows>(freeNodes_, *root, freeNodes_.load(*root), addNode);
    std::sort(all.chains.begin(), all.chains.end(),
              [](const auto& a, const auto& b) { return a.address < b.address; });
    all.chainsEnd = layout_.emptyLength() + blocks * step;
    all.packedEnd = layout_.emptyLength();
    for (const Compaction::Chain& chain : all.chains) {
        if (!chain.isTogether || chain.address != all.packedEnd)
            break;
        all.packedEnd += chain.blocks * step;
        ++all.packed;
    }
    return all;
}

/// What is neither used nor free is given back: nobody can reach it any more.
void StorageEngine::releaseLost(Compaction& all) {
    auto& known = all.used;
    for (const RangeSet* const set : {&space_.free(), &space_.fresh()})
        known.insert(known.end(), set->ranges().begin(), set->ranges().end());
    std::sort(known.begin(), known.end());
    BlockRuns lost(layout_.blockHeaderSize());
    std::uint64_t end = layout_.emptyLength();
    const auto lose = [&](std::uint64_t until) {
        if (until >= end + layout_.blockHeaderSize())
            lost.append(end, until - end - layout_.blockHeaderSize());
    };
    for (const auto& [from, to] : known) {
        if (from < end)
            throw ChainInFileExc(from); // two of them share it
        lose(from);
        end = to;
    }
    lose(space_.end());
    if (lost.empty())
        return;
    release(lost);
    table_.touch();
}

void StorageEngine::moveContent(FileEntry& entry, std::uint64_t from) {
    BlockChain content = chain(entry.data, 0);
    std::uint64_t address = layout_.null;
    if (content.size() != 0) {
        const BlockRange to = allocateTogether(blocks_for(content.size()), from);
        copyChain(content, to);
        address = to.address;
    }
    content.walk(reader_);
    release(content.runs());
    entry.data = address;
    entry.flags |= FileEntry::kContentTogether;
}

void StorageEngine::moveAttributes(FileEntry& entry, wstring_view name, std::uint64_t from) {
    BlockChain attributes = chain(entry.attributes, 0);
    if (attributes.size() == 0)
        return;
    const BlockRange to = allocateTogether(blocks_for(attributes.size()), from);
    copyChain(attributes, to);
    attributes.walk(reader_);
    release(attributes.runs());
    entry.attributes = to.address;
    if (attributes.size() == StorageFileInfo::kLeastSize + 2 * name.size())
        entry.flags |= FileEntry::kAttributesTogether;
}

/// Moves chains into the hole behind those that are where they belong; or, when it is small for what comes
/// next, makes it larger by moving that out of the way.
bool StorageEngine::moveSome(const Compaction& all) {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    const std::uint64_t atOnce =
        std::clamp((all.chainsEnd - layout_.emptyLength()) / 64, kLeastStep, kMostStep);
    const std::uint64_t rest = all.chainsEnd - all.packedEnd;
    avoidPins();
    const std::uint64_t room = space_.roomAt(all.packedEnd);
    if (room == 0 && space_.isFree(all.packedEnd)) { // somebody still reads what was there
        commitChanges();
        return false;
    }
    const auto first = all.chains.begin() + static_cast<std::ptrdiff_t>(all.packed);
    std::uint64_t fitting = 0;
    auto last = first;
    while (last != all.chains.end() && fitting + last->blocks * step <= room && fitting < atOnce)
        fitting += last++->blocks * step;
    std::uint64_t from = all.packedEnd;
    if (fitting < std::min(atOnce, rest) / 2) {
        from = all.chainsEnd;
        fitting = 0;
        last = first;
        while (last != all.chains.end() && last->address < all.chainsEnd && fitting < atOnce)
            fitting += last++->blocks * step;
    }
    if (last == first) { // the hole is used by a file that is still being written
        commitChanges();
        return false;
    }
    for (auto chain = first; chain != last; ++chain) {
        const wstring& name = all.files[chain->file].first;
        FileEntry moved = *table_.find(name);
        checked(name,
                [&] { chain->isContent ? moveContent(moved, from) : moveAttributes(moved, name, from); });
        table_.set(name, moved);
    }
    commitChanges();
    return true;
}

/// The chains are side by side. The trees follow when they fit behind them; else they make room, and follow
/// in the next step.
bool StorageEngine::moveNodes() {
    const bool isPacked = space_.free().empty();
    if (!isPacked) {
        nodesToMove_ = [](const NodeRef&) { return true; };
        table_.touch();
    }
    commitChanges();
    return !isPacked;
}

/// Copies a chain to a place, as much at once as the queue holds.
void StorageEngine::copyChain(BlockChain& from, BlockRange to) {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    std::vector<std::byte> bytes;
    std::uint64_t chainSize = from.size();
    for (std::uint64_t offset = 0; to.count != 0; offset += bytes.size()) {
        const BlockRange piece{to.address, std::min<std::uint64_t>(to.count, 256)};
        to = {to.address + piece.count * step, to.count - piece.count};
        bytes.resize(
            static_cast<std::size_t>(std::min(piece.count * kStorageBlockSize, from.size() - offset)));
        from.readAt(reader_, offset, bytes);
        write(std::span(&piece, 1), bytes, std::exchange(chainSize, 0),
              to.count != 0 ? to.address : layout_.null);
    }
}

} // namespace core
