// SPDX-License-Identifier: Apache-2.0
#include "core/storage/bad_place.h"
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <utility>

namespace core {
namespace {

constexpr int kMostSteps = 1000; // others may go on making holes
constexpr int kMostNodeSteps = 4;

/// What lies between `begin` and `end`, and not in `known`.
UsedSpace::Ranges gaps(UsedSpace::Ranges known, std::uint64_t begin, std::uint64_t end) {
    std::sort(known.begin(), known.end());
    UsedSpace::Ranges result;
    for (const auto& [from, to] : known) {
        if (from > begin)
            result.emplace_back(begin, std::min(from, end));
        begin = std::max(begin, to);
    }
    if (begin < end)
        result.emplace_back(begin, end);
    return result;
}

} // namespace

/// In steps, each of them one commit: a table in table layout 1 is converted, after all has been read; then
/// chains move to the lowest free space, side by side, and the trees behind them. Others have their turn
/// between the steps. Any step may be the last one.
CompactReport StorageEngine::compact(const CompactOptions& options) {
    Compaction work;
    struct Forgetting {
        StorageEngine& engine;
        ~Forgetting() { engine.forgetChains(); }
    } const forgetting{*this};
    bool goesOn = true;
    for (int step = 0; goesOn && step < kMostSteps; ++step) {
        options.stop.check();
        readAhead(options.stop);
        goesOn = compactOnce(work);
        const std::uint64_t first = layout_.emptyLength();
        if (options.progress && work.chainsEnd > first)
            options.progress(work.holeBegin - first, work.chainsEnd - first);
    }
    return {{work.damaged.begin(), work.damaged.end()}};
}

bool StorageEngine::compactOnce(Compaction& work) {
    const std::lock_guard lock(mutex_);
    if (transaction_ || turns_ != 0)
        throw_storage_error(messages::kStorageTransaction, url_);
    const Turn turn(*this);
    const auto finish = [&] {
        nodesFrom_ = 0;
        nodesToMove_ = {};
    };
    return checked([&] {
        try {
            bool goesOn = true;
            if (head_.tableLayout == TableLayout::flat)
                convert(work);
            else
                goesOn = compactStep(work);
            finish();
            return goesOn;
        } catch (...) {
            finish();
            next_ = head_.tableLayout;
            throw;
        }
    });
}

// What there is.

bool StorageEngine::compactStep(Compaction& work) {
    if (freeTreeLost_) { // what it told of is found in the next step
        table_.touch();
        commitChanges();
        return true;
    }
    if (work.counter != head_.counter)
        survey(work);
    work.arrange(layout_);
    nodesFrom_ = work.chainsEnd;
    const auto isInTheWay = [end = work.chainsEnd](const NodeRef& node) { return node.address < end; };
    const std::vector<NodeRef> all = nodes();
    bool goesOn = true;
    if (table_.hasChanges()) { // what was lost can be used in the next step
        commitChanges();
    } else if (work.packed == work.chains.size()) {
        goesOn = moveNodes(work) && ++work.nodeSteps < kMostNodeSteps;
    } else if (std::any_of(all.begin(), all.end(), isInTheWay)) {
        nodesToMove_ = isInTheWay;
        table_.touch();
        commitChanges();
    } else {
        goesOn = moveSome(work);
    }
    work.counter = head_.counter;
    return goesOn;
}

void StorageEngine::survey(Compaction& work) {
    UsedSpace moving;
    UsedSpace all;
    bool isComplete = surveyChains(work, {}, moving, all);
    if (const UsedSpace::Ranges shared = all.shared(); !shared.empty()) { // rarely: who has it stays
        moving = all = UsedSpace();
        isComplete = surveyChains(work, shared, moving, all);
    }
    buildWalls(work, moving, all, isComplete);
}

/// Finds the chains that can move. Those that touch `shared` stay, and so do damaged ones. False when not all
/// blocks of these can be found.
bool StorageEngine::surveyChains(Compaction& work, const UsedSpace::Ranges& shared, UsedSpace& moving,
                                 UsedSpace& all) {
    work.files.clear();
    work.chains.clear();
    table_.forEach([&](wstring_view name, const FileEntry& entry) { work.files.emplace_back(name, entry); });
    bool isComplete = true;
    const auto add = [&](std::size_t file, bool isContent) {
        const auto& [name, entry] = work.files[file];
        BlockRuns blocks(layout_.blockHeaderSize());
        const bool isWhole = findBlocks(entry, name, isContent, blocks);
        isComplete = isComplete && isWhole;
        bool stays = !isWhole;
        for (const BlockRun& run : blocks.runs()) {
            all.add(run.address, run.address + blocks.lengthOf(run));
            stays = stays || UsedSpace::touches(shared, run.address, run.address + blocks.lengthOf(run));
        }
        if (stays) {
            work.damaged.insert(name);
        } else if (!blocks.empty()) {
            std::uint64_t lowest = blocks.runs().front().address;
            for (const BlockRun& run : blocks.runs()) {
                lowest = std::min(lowest, run.address);
                moving.add(run.address, run.address + blocks.lengthOf(run));
            }
            work.chains.push_back({lowest, blocks.count(), file, isContent, blocks.runs().size() == 1});
        }
    };
    for (std::size_t file = 0; file < work.files.size(); ++file) {
        add(file, false);
        add(file, true);
    }
    for (const NodeRef& node : nodes()) {
        const std::uint64_t end = node.address + node.blocks() * layout_.blockLength(kStorageBlockSize);
        if (UsedSpace::touches(shared, node.address, end))
            throw ChainInFileExc(node.address);
        moving.add(node.address, end);
        all.add(node.address, end);
    }
    moving.settle();
    all.settle();
    return isComplete;
}

/// The blocks of a chain, as far as they can be found. False when these are not all.
bool StorageEngine::findBlocks(const FileEntry& entry, wstring_view name, bool isContent, BlockRuns& blocks) {
    const std::uint64_t address = isContent ? entry.data : entry.attributes;
    if (address == layout_.null)
        return true;
    if ((entry.flags & (isContent ? FileEntry::kContentTogether : FileEntry::kAttributesTogether)) != 0) {
        const std::uint64_t size = isContent ? entry.size : StorageFileInfo::kLeastSize + 2 * name.size();
        blocks.append(address, kStorageBlockSize, blocks_for(size));
        return true;
    }
    BlockChain found(layout_);
    bool isWhole = true;
    try {
        at_place(address, [&] {
            found.open(reader_, address, 0);
            found.walk(reader_);
        });
    } catch (const ChainInFileExc&) {
        isWhole = false;
    }
    blocks = found.runs();
    return isWhole;
}

/// What is neither used nor free is given back: nobody can reach it any more. Where a damaged chain may still
/// have it, it stays like that chain.
void StorageEngine::buildWalls(Compaction& work, const UsedSpace& moving, const UsedSpace& all,
                               bool isComplete) {
    const std::uint64_t first = layout_.emptyLength();
    UsedSpace::Ranges known = moving.used();
    UsedSpace::Ranges used = all.used();
    for (const auto& [begin, end] : space_.free().ranges()) {
        if (UsedSpace::touches(all.used(), begin, end))
            throw ChainInFileExc(begin);
        known.emplace_back(begin, end);
        used.emplace_back(begin, end);
    }
    BlockRuns lost(layout_.blockHeaderSize());
    const auto unknown = isComplete ? gaps(std::move(used), first, space_.end()) : UsedSpace::Ranges();
    for (const auto& [begin, end] : unknown) {
        if (end - begin < layout_.blockHeaderSize())
            continue;
        lost.append(begin, end - begin - layout_.blockHeaderSize());
        known.emplace_back(begin, end);
    }
    work.walls = gaps(std::move(known), first, space_.end());
    if (lost.empty())
        return;
    release(lost);
    table_.touch();
}

// Moving it.

/// Copies a chain behind `from` and returns where it begins now. One that does not have its checksum stays:
/// its blocks may be all that is left of what it was.
std::uint64_t StorageEngine::moveChain(BlockChain& chain, std::uint64_t sum, std::uint64_t from) {
    const BlockRange to = allocateTogether(blocks_for(chain.size()), from);
    try {
        if (copyChain(chain, to) != sum)
            throw ChainInFileExc(to.address);
        chain.walk(reader_);
        release(chain.runs());
    } catch (...) {
        giveBack(std::span(&to, 1));
        throw;
    }
    return to.address;
}

void StorageEngine::moveContent(FileEntry& entry, std::uint64_t from) {
    BlockChain content = chain(entry.data, 0);
    if (content.size() != entry.size)
        throw ChainInFileExc(entry.data);
    if (content.size() != 0) {
        entry.data = moveChain(content, entry.contentSum, from);
    } else {
        content.walk(reader_);
        release(content.runs());
        entry.data = layout_.null;
    }
    entry.flags |= FileEntry::kContentTogether;
}

void StorageEngine::moveAttributes(FileEntry& entry, wstring_view name, std::uint64_t from) {
    BlockChain attributes = chain(entry.attributes, 0);
    if (attributes.size() == 0)
        return;
    entry.attributes = moveChain(attributes, entry.attributesSum, from);
    if (attributes.size() == StorageFileInfo::kLeastSize + 2 * name.size())
        entry.flags |= FileEntry::kAttributesTogether;
}

/// Moves chains into the hole behind those that are where they belong; or, when it is small for what comes
/// next, makes it larger by moving that out of the way.
bool StorageEngine::moveSome(Compaction& work) {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    const std::uint64_t atOnce = Compaction::stepOf(work.chainsEnd - layout_.emptyLength());
    const std::uint64_t rest = work.holeEnd - work.holeBegin;
    avoidPins();
    const std::uint64_t room = std::min(rest, space_.roomAt(work.holeBegin));
    if (room == 0 && space_.isFree(work.holeBegin)) // somebody still reads what was there
        return false;
    const auto first = work.chains.begin() + static_cast<std::ptrdiff_t>(work.packed);
    std::uint64_t fitting = 0;
    auto last = first;
    while (last != work.chains.end() && fitting + last->blocks * step <= room && fitting < atOnce)
        fitting += last++->blocks * step;
    std::uint64_t from = work.holeBegin;
    if (fitting < std::min(atOnce, rest) / 2) {
        from = work.chainsEnd;
        fitting = 0;
        last = first;
        while (last != work.chains.end() && last->address < work.chainsEnd && fitting < atOnce)
            fitting += last++->blocks * step;
    }
    if (last == first) // the hole is used by a file that is still being written
        return false;
    for (auto chain = first; chain != last; ++chain)
        moveOne(work, *chain, from);
    std::erase_if(work.chains, [](const Compaction::Chain& chain) { return chain.stays; });
    commitChanges();
    return true;
}

void StorageEngine::moveOne(Compaction& work, Compaction::Chain& chain, std::uint64_t from) {
    auto& file = work.files[chain.file];
    const auto& name = file.first;
    auto& entry = file.second;
    FileEntry moved = entry;
    try {
        at_place(chain.address,
                 [&] { chain.isContent ? moveContent(moved, from) : moveAttributes(moved, name, from); });
    } catch (const ChainInFileExc&) {
        work.damaged.insert(name);
        chain.stays = true;
        BlockRuns blocks(layout_.blockHeaderSize());
        (void)findBlocks(entry, name, chain.isContent, blocks);
        for (const BlockRun& run : blocks.runs())
            work.walls.emplace_back(run.address, run.address + blocks.lengthOf(run));
        return;
    }
    table_.set(name, moved);
    entry = moved;
    chain.address = chain.isContent ? moved.data : moved.attributes;
    chain.isTogether = true;
}

/// The chains are side by side. The trees follow when they fit behind them; else they make room, and follow
/// in the next step.
bool StorageEngine::moveNodes(const Compaction& work) {
    if (work.chainsEnd >= space_.end() || !space_.free().touches(work.chainsEnd, space_.end()))
        return false;
    nodesToMove_ = [](const NodeRef&) { return true; };
    table_.touch();
    commitChanges();
    return true;
}

/// Copies a chain to a place, as much at once as the queue holds, and returns the checksum of its content.
std::uint64_t StorageEngine::copyChain(BlockChain& from, BlockRange to) {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    std::vector<std::byte> bytes;
    Checksum sum;
    std::uint64_t chainSize = from.size();
    for (std::uint64_t offset = 0; to.count != 0; offset += bytes.size()) {
        const BlockRange piece{to.address, std::min<std::uint64_t>(to.count, 256)};
        to = {to.address + piece.count * step, to.count - piece.count};
        bytes.resize(
            static_cast<std::size_t>(std::min(piece.count * kStorageBlockSize, from.size() - offset)));
        from.readAt(reader_, offset, bytes);
        sum.add(bytes);
        write(std::span(&piece, 1), bytes, std::exchange(chainSize, 0),
              to.count != 0 ? to.address : layout_.null);
    }
    return sum.value();
}

} // namespace core
