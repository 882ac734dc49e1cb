// SPDX-License-Identifier: Apache-2.0
// How the engine gives a table in table layout 1 the other layout, which says of each file what only reading
// it tells. It is read before the turn, so that nobody waits for it.
#include "core/storage/chain_survey.h"
#include "core/storage/engine.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace core {
namespace {

// Others may go on changing files while all are read.
constexpr int kMostRounds = 4;

} // namespace

/// What is known of chains, as far as it is still true: their space was pinned all the time, or nobody has
/// committed anything.
KnownChains& StorageEngine::knownChains() {
    if (knownPins_.empty() && head_.counter != knownCounter_)
        known_.clear();
    return known_;
}

void StorageEngine::readAhead(const StopToken& stop) {
    for (int round = 0; round < kMostRounds && learnChains(stop); ++round) {
    }
}

/// Reads the chains that are not known. False when there are none.
bool StorageEngine::learnChains(const StopToken& stop) {
    const std::lock_guard lock(mutex_);
    requireWritable();
    if (transaction_ || turns_ != 0)
        return false;
    {
        const Reading reading(*this);
        if (head_.tableLayout != TableLayout::flat)
            return false;
        (void)knownChains();
        knownPins_.reserve(knownPins_.size() + 1);
        SpaceLocks::Ranges space{{layout_.emptyLength(), reader_.end()}};
        pin(space);
        knownPins_.push_back(std::move(space));
    }
    const std::size_t before = known_.size();
    ChainSurvey survey(reader_, file_->length(), table_, head_, tableBlocks_, nullptr);
    survey.use(known_, true);
    (void)survey.walk([&](const ChainSurvey::Chain&) { stop.check(); }, [](std::uint64_t, std::uint64_t) {});
    return known_.size() != before;
}

void StorageEngine::unpinKnown() noexcept {
    for (const SpaceLocks::Ranges& space : knownPins_)
        unpin(space);
    knownPins_.clear();
}

void StorageEngine::forgetChains() noexcept {
    const std::lock_guard lock(mutex_);
    unpinKnown();
    known_.clear();
}

/// Chains that no writer of table layout 2 would write are written again, in steps of some size; the table
/// stays as it is until all are.
void StorageEngine::convert(Compaction& work) {
    if (!spaceVerified_)
        verifySpace();
    if (!spaceVerified_)
        throwBadFormat();
    (void)knownChains();
    unpinKnown(); // in our turn all stays as it is
    std::vector<std::pair<wstring, FileEntry>> files;
    table_.forEach([&](wstring_view name, const FileEntry& entry) { files.emplace_back(name, entry); });
    // Where chains share blocks, all of them are written again at once.
    const std::uint64_t most =
        sharedSpace_.empty() ? Compaction::stepOf(table_.end()) : std::numeric_limits<std::uint64_t>::max();
    std::uint64_t moved = 0;
    for (auto& [name, entry] : files) {
        if (moved >= most)
            break;
        if (!convertEntry(entry, name, moved))
            work.damaged.insert(name);
        table_.set(name, entry);
    }
    next_ = moved < most ? TableLayout::tree : TableLayout::flat;
    table_.touch();
    commitChanges();
    knownCounter_ = head_.counter;
}

/// What is known of a chain; where it cannot be read, something that no content fits. A disk that cannot be
/// read at the moment must not have that effect.
std::pair<CanonicalChain, bool> StorageEngine::knownChain(std::uint64_t address, StorageUse use) {
    std::uint64_t size = 0;
    if (const auto known = known_.find({address, use}); known != known_.end()) {
        if (known->second.content)
            return {*known->second.content, true};
        size = known->second.size;
    } else {
        try {
            return {read_canonical(reader_, address), true};
        } catch (const ChainInFileExc&) {
        }
        try {
            size = chain(address).size();
        } catch (const ChainInFileExc&) {
        }
    }
    return {{std::clamp<std::uint64_t>(size, 1, table_.end() - 1), 0, false, true}, false};
}

/// Finds out what the other layout says of a file. False when the file is damaged: it stays what it is,
/// damaged. What is written again is added to `moved`, in bytes.
bool StorageEngine::convertEntry(FileEntry& entry, wstring_view name, std::uint64_t& moved) {
    const auto [content, hasContent] = knownChain(entry.data, StorageUse::content);
    const auto [attributes, hasAttributes] = knownChain(entry.attributes, StorageUse::attributes);
    const bool isSound = hasContent && hasAttributes;
    entry.isKnown = true;
    entry.size = content.size;
    entry.contentSum = content.sum;
    entry.attributesSum = attributes.sum;
    entry.flags = (content.isTogether ? FileEntry::kContentTogether : 0) |
                  (attributes.isTogether ? FileEntry::kAttributesTogether : 0);
    const bool shares = !sharedSpace_.empty(); // then nobody says whose bytes they are
    if (isSound && (shares || !content.isCanonical)) {
        moveContent(entry, 0);
        learnMoved(entry.data, StorageUse::content, content);
        moved += content.size;
    }
    if (attributes.size != 0 && attributes.size != StorageFileInfo::kLeastSize + 2 * name.size())
        entry.flags &= ~FileEntry::kAttributesTogether; // then its blocks cannot be counted by the name
    if (isSound && (shares || !attributes.isCanonical)) {
        moveAttributes(entry, name, 0);
        learnMoved(entry.attributes, StorageUse::attributes, attributes);
        moved += attributes.size;
    }
    return isSound;
}

/// A chain that was written again lies in one piece.
void StorageEngine::learnMoved(std::uint64_t address, StorageUse use, const CanonicalChain& content) {
    if (address == layout_.null)
        return;
    BlockRuns blocks(layout_.blockHeaderSize());
    blocks.append(address, kStorageBlockSize, (content.size + kStorageBlockSize - 1) / kStorageBlockSize);
    known_.insert_or_assign({address, use},
                            KnownChain{std::move(blocks), content.size, std::nullopt,
                                       CanonicalChain{content.size, content.sum, true, true}});
}

} // namespace core
