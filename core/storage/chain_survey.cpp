// SPDX-License-Identifier: Apache-2.0
#include "core/storage/chain_survey.h"

#include "core/storage/attributes.h"
#include "core/storage/bad_place.h"
#include "core/storage/canonical_chain.h"
#include "core/storage/little_endian.h"
#include "core/storage/range_set.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace core {
namespace {

/// The blocks before the first one that comes again, or that shares bytes with one before it.
BlockRuns without_repeats(const BlockRuns& blocks, const StorageLayout& layout) {
    if (!blocks.overlap())
        return blocks;
    BlockRuns first(layout.blockHeaderSize());
    RangeSet seen;
    for (const BlockRun& run : blocks.runs()) {
        const std::uint64_t end = run.address + blocks.lengthOf(run);
        if (seen.touches(run.address, end))
            break;
        seen.add(run.address, end);
        first.append(run.address, run.size, run.count);
    }
    return first;
}

} // namespace

FreeChain read_free_chain(BlockReader& reader, std::uint64_t address, std::uint64_t end,
                          const std::function<void(std::uint64_t begin, std::uint64_t end)>& visit) {
    constexpr std::uint64_t kPiece = 4096;
    const StorageLayout& layout = reader.layout();
    const std::size_t step = 2 * layout.width;
    FreeChain list{BlockChain(layout), std::nullopt};
    std::uint64_t before = layout.emptyLength();
    std::vector<std::byte> piece;
    try {
        list.chain.open(reader, address, 0);
        const std::uint64_t size = list.chain.size();
        if (size % step != 0)
            throw ChainInFileExc(address);
        for (std::uint64_t done = 0; done < size; done += piece.size()) {
            piece.resize(static_cast<std::size_t>(std::min(size - done, kPiece)));
            list.chain.readAt(reader, done, piece);
            for (std::size_t at = 0; at < piece.size(); at += step) {
                const std::uint64_t begin = load_number(piece.data() + at, layout.width);
                const std::uint64_t length = load_number(piece.data() + at + layout.width, layout.width);
                if (begin < before || begin >= end || length == 0 || length > end - begin)
                    throw ChainInFileExc(address);
                before = begin + length;
                visit(begin, before);
            }
        }
        list.chain.walk(reader);
    } catch (const ChainInFileExc& e) {
        list.damage = e.address();
    }
    return list;
}

ChainSurvey::ChainSurvey(BlockReader& reader, std::uint64_t fileLength, const FilesTable& table,
                         const ContainerHead& head, const BlockRuns& tableBlocks, const TreeSpace* trees)
    : reader_(reader), layout_(reader.layout()), fileLength_(fileLength), table_(table), head_(head),
      tableBlocks_(tableBlocks), trees_(trees) {}

bool ChainSurvey::walk(const Visit& visit, const VisitFree& visitFree) {
    visit_ = &visit;
    length_ = files_ = 0;
    showSpace(visit, visitFree);
    const auto visitFile = [&](wstring_view name, const FileEntry& entry) {
        ++files_;
        if (isEnough())
            return;
        if (entry.attributes != layout_.null)
            follow(StorageUse::attributes, name, entry);
        if (entry.data != layout_.null)
            follow(StorageUse::content, name, entry);
    };
    table_.forEach(visitFile, damagedNode_);
    return !isEnough();
}

/// The table and what is free.
void ChainSurvey::showSpace(const Visit& visit, const VisitFree& visitFree) {
    if (trees_ != nullptr) {
        visit({StorageUse::table, {}, layout_.headerSize(), 0, trees_->fileNodes, std::nullopt});
        for (const auto& [begin, length] : trees_->free)
            visitFree(begin, begin + length);
        visit({StorageUse::freeChain, {}, head_.freeChain, 0, trees_->freeNodes, std::nullopt});
        return;
    }
    visit({StorageUse::table, {}, layout_.headerSize(), 0, tableBlocks_, std::nullopt});
    if (head_.freeChain != layout_.null) {
        FreeChain list{BlockChain(layout_), std::nullopt};
        attempt(head_.freeChain, list.damage,
                [&] { list = read_free_chain(reader_, head_.freeChain, table_.end(), visitFree); });
        show(StorageUse::freeChain, {}, head_.freeChain, list.chain, list.damage);
    }
}

/// Runs `read`, which finds out what is wrong with the chain at `address`.
template <class Read>
void ChainSurvey::attempt(std::uint64_t address, std::optional<std::uint64_t>& damage, Read read) const {
    try {
        if (damagedNode_)
            at_place(address, read);
        else
            read();
    } catch (const ChainInFileExc& e) {
        damage = e.address();
    }
}

void ChainSurvey::follow(StorageUse use, wstring_view name, const FileEntry& entry) {
    const std::uint64_t address = use == StorageUse::content ? entry.data : entry.attributes;
    if (known_ != nullptr) {
        if (const auto found = known_->find({address, use}); found != known_->end()) {
            const KnownChain& known = found->second;
            length_ += known.blocks.length();
            return (*visit_)({use, name, address, known.size, known.blocks, known.damage});
        }
    }
    BlockChain chain(layout_);
    std::optional<std::uint64_t> damage;
    attempt(address, damage, [&] { look(use, name, entry, chain); });
    show(use, name, address, chain, damage);
    if (learns_)
        learn(use, address, chain, damage);
}

void ChainSurvey::learn(StorageUse use, std::uint64_t address, const BlockChain& chain,
                        std::optional<std::uint64_t> damage) {
    KnownChain known{
        damage ? without_repeats(chain.runs(), layout_) : chain.runs(), chain.size(), damage, {}};
    try {
        known.content = read_canonical(reader_, address);
    } catch (const ChainInFileExc&) { // known for that
    }
    known_->emplace(std::pair(address, use), std::move(known));
}

/// Walks the chain of a file, and reads what belongs to it; throws what is wrong with it.
void ChainSurvey::look(StorageUse use, wstring_view name, const FileEntry& entry, BlockChain& chain) {
    const bool isContent = use == StorageUse::content;
    const std::uint64_t address = isContent ? entry.data : entry.attributes;
    chain.open(reader_, address, isContent ? 0 : kReadWithAttributes);
    chain.walk(reader_);
    requireBytes(chain);
    if (!isContent)
        (void)read_attributes(reader_, address, name);
    if (!compares_)
        return;
    const CanonicalChain found = read_canonical(reader_, address); // or what cannot be read shows
    if (!entry.isKnown)
        return;
    if (!found.isCanonical || found.sum != (isContent ? entry.contentSum : entry.attributesSum) ||
        (isContent && found.size != entry.size))
        throw ChainInFileExc(address);
}

/// Throws when the file ends before the content does. Bytes that only fill a block up are not missed.
void ChainSurvey::requireBytes(const BlockChain& chain) const {
    for (const BlockRun& run : chain.runs().runs()) {
        if (run.address + chain.runs().lengthOf(run) <= fileLength_ || run.offset >= chain.size())
            continue;
        const std::uint64_t last = std::min(run.end(), chain.size()) - 1;
        const BlockRuns::Block block = chain.runs().at(last);
        if (block.address + layout_.blockHeaderSize() + (last - block.offset) >= fileLength_)
            throw ChainInFileExc(block.address);
    }
}

void ChainSurvey::show(StorageUse use, wstring_view name, std::uint64_t address, const BlockChain& chain,
                       std::optional<std::uint64_t> damage) {
    length_ += chain.runs().length();
    if (damage)
        (*visit_)({use, name, address, chain.size(), without_repeats(chain.runs(), layout_), damage});
    else
        (*visit_)({use, name, address, chain.size(), chain.runs(), damage});
}

} // namespace core
