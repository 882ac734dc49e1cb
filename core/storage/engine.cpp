// SPDX-License-Identifier: Apache-2.0
#include "core/storage/engine.h"

#include "core/storage/storage_error.h"

#include <core/files/file_io.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <utility>

namespace core {
namespace {

// Where a larger content lies is found as it is read.
constexpr std::uint64_t kWalked = std::uint64_t{128} << 10;
// More pieces than these are pinned as one, with what lies between them.
constexpr std::size_t kMostRanges = 64;

/// The change counter of an empty container that replaces what the file holds: by an equal header nobody who
/// has the old container open would see that it is gone.
std::uint64_t counter_after(IFile& file, const StorageLayout& layout) {
    ContainerHead::Bytes bytes{};
    const std::size_t least = layout.headerSize() + layout.blockHeaderSize();
    if (read_all_at(file, 0, std::span(bytes).first(ContainerHead::sizeIn(layout))) < least)
        return 0;
    try {
        return ContainerHead::decode(bytes, layout).counter + 1;
    } catch (const HexConvExc&) { // no container
    } catch (const ChainInFileExc&) {
    }
    return 0;
}

} // namespace

bool StorageEngine::create(IFile& file, const StorageLayout& layout, bool replacing) {
    // Somebody else may be about to make one here and to put files into it.
    const ContainerLock lock(InterfacePtr<IFile>(&file), layout, file.url());
    const ContainerLock::Turn turn(lock);
    const bool empty = file.length() == 0;
    if (!empty && !replacing)
        return false;
    ContainerHead fresh = ContainerHead::empty(layout, TableLayout::tree);
    fresh.counter = counter_after(file, layout);
    const ContainerHead::Bytes head = fresh.encode(layout);
    const auto bytes = std::span(head).first(ContainerHead::sizeIn(layout));
    lock.beginCommit(); // after those who still read the old state
    try {
        write_all_at(file, 0, bytes);
        file.flush();
        // What a crash, or somebody who still reads it, leaves behind the end counts as free.
        if (!empty &&
            !SpaceLocks(InterfacePtr<IFile>(&file), file.url()).isPinned(bytes.size(), SpaceLocks::kEnd))
            file.truncate(bytes.size());
    } catch (...) {
        lock.endCommit(false);
        if (empty) { // a part of a container is not a container
            try {
                file.truncate(0);
            } catch (...) { // what is reported is why it could not be written
            }
        }
        throw;
    }
    lock.endCommit(false);
    return true;
}

StorageEngine::StorageEngine(InterfacePtr<IFile> file, const StorageLayout& layout,
                             const StorageOptions& options, const wstring& url)
    : file_(std::move(file)), layout_(layout), options_(options), url_(url.empty() ? file_->url() : url),
      lock_(file_, layout_, url_), reader_(*file_, layout_), queue_(*file_), table_(layout_),
      tableBlocks_(layout_.blockHeaderSize()), freeBlocks_(layout_.blockHeaderSize()), space_(layout_),
      fileNodes_(reader_), freeNodes_(reader_), pins_(file_, url_) {
    reader_.setQueue(&queue_);
    const Reading reading(*this); // refuses a file that is not a container
}

StorageEngine::~StorageEngine() = default;

void StorageEngine::throwBadFormat() const {
    throw StorageException(StorageException::Kind::badFormat, url_);
}

void StorageEngine::throwDamaged(wstring_view name) const {
    throw StorageException(StorageException::Kind::badFormat, root_.empty() ? url_ : urlOf(name));
}

// Reading and turns.

StorageEngine::Reading::Reading(StorageEngine& engine) : engine_(engine), lock_(engine.mutex_) {
    engine_.enterReading();
}
StorageEngine::Reading::~Reading() {
    engine_.leaveReading();
}

void StorageEngine::beginReading() {
    const std::lock_guard lock(mutex_);
    enterReading();
}
void StorageEngine::endReading() noexcept {
    const std::lock_guard lock(mutex_);
    leaveReading();
}

void StorageEngine::enterReading() {
    if (readings_ == 0 && turns_ == 0) { // in our own turn nobody else changes anything
        lock_.beginReading();
        try {
            refresh();
        } catch (...) {
            lock_.endReading();
            throw;
        }
        readLocked_ = true;
    }
    ++readings_;
}

void StorageEngine::leaveReading() noexcept {
    if (--readings_ == 0 && std::exchange(readLocked_, false))
        lock_.endReading();
}

StorageEngine::Pinned::Pinned(StorageEngine& engine) : engine_(engine) {
    const Reading reading(engine);
    space_ = {{engine.layout_.emptyLength(), engine.reader_.end()}};
    engine.pin(space_);
}
StorageEngine::Pinned::~Pinned() {
    engine_.unpin(space_);
}

StorageEngine::Turn::Turn(StorageEngine& engine) : engine_(engine) {
    engine_.beginTurn();
}
StorageEngine::Turn::~Turn() {
    engine_.endTurn();
}

void StorageEngine::requireWritable() const {
    if (options_.readOnly)
        throw_storage_error(messages::kStorageReadOnly, url_);
    if (failed_)
        throw_storage_error(messages::kStorageFailed, url_);
}

void StorageEngine::beginTurn() {
    const std::lock_guard lock(mutex_);
    requireWritable();
    if (turns_ == 0) {
        lock_.beginTurn();
        pinsKnown_ = false;
        try {
            refresh();
            loadFreeSpace();
        } catch (...) {
            lock_.endTurn();
            throw;
        }
    }
    ++turns_;
}

void StorageEngine::endTurn() noexcept {
    const std::lock_guard lock(mutex_);
    if (turns_ == 1) {
        if (unsettled_ || table_.hasChanges() || space_.hasChanges())
            takeBack();
        if (readings_ != 0 && !readLocked_) { // somebody goes on reading after our turn
            try {
                lock_.beginReading();
                readLocked_ = true;
            } catch (...) { // the next one to read finds out
            }
        }
        lock_.endTurn();
    }
    --turns_;
}

// The committed state.

void StorageEngine::refresh() {
    if (loaded_ && !lock_.isShared())
        return;
    ContainerHead::Bytes bytes{};
    const auto head = std::span(bytes).first(ContainerHead::sizeIn(layout_));
    if (read_all_at(*file_, 0, head) < head.size() - kStorageBlockSize)
        throwBadFormat();
    if (loaded_ && bytes == headBytes_)
        return;
    checked([&] {
        try {
            load(bytes);
        } catch (const HexConvExc&) {
            throwBadFormat();
        }
    });
}

void StorageEngine::load(const ContainerHead::Bytes& bytes) {
    const ContainerHead head = ContainerHead::decode(bytes, layout_);
    const std::uint64_t length = std::min(layout_.limit(), file_->length());
    if (!head.isSound(bytes, layout_))
        throwBadFormat();
    loaded_ = false;
    reader_.forget();
    reader_.setEnd(length);
    if (head.tableLayout == TableLayout::flat) {
        if (!loadFlat(head))
            throwBadFormat();
    } else {
        const auto root = head.filesRoot();
        if (root && !is_child(*root, layout_, head.end))
            throwBadFormat();
        if (root)
            (void)fileNodes_.load(*root); // what the table is damaged in shows as early as it costs little
        table_ = FilesTable(layout_, std::make_unique<TreeFiles>(fileNodes_, root, head.files), head.end);
        tableBlocks_ = BlockRuns(layout_.blockHeaderSize());
    }
    reader_.setEnd(table_.end());
    head_ = head;
    next_ = head.tableLayout;
    headBytes_ = bytes;
    spaceCounter_.reset();
    loaded_ = true;
}

bool StorageEngine::loadFlat(const ContainerHead& head) {
    BlockChain chain(layout_);
    chain.adopt(reader_, layout_.headerSize(), head.table.chainSize, head.table.size, head.table.next);
    FilesTable table(layout_);
    if (!table.decode(chain.content(reader_), options_.noSortedCheck))
        return false;
    chain.walk(reader_);
    BlockRuns blocks = chain.runs();
    BlockRuns rest = blocks.cutAt(kStorageBlockSize);
    for (const BlockRun& run : rest.runs()) {
        if (run.address < layout_.emptyLength() || run.address + rest.lengthOf(run) > table.end())
            return false;
    }
    table_ = std::move(table);
    tableBlocks_ = std::move(rest);
    return true;
}

BlockChain StorageEngine::chain(std::uint64_t address, std::uint64_t wish) {
    BlockChain result(layout_);
    result.open(reader_, address, wish);
    return result;
}

BlockReader StorageEngine::newReader() {
    BlockReader reader(*file_, layout_);
    reader.setQueue(&queue_);
    return reader;
}

SpaceLocks::Ranges StorageEngine::spaceOf(std::span<const BlockRange> ranges) const {
    SpaceLocks::Ranges space;
    for (const BlockRange& range : ranges)
        space.emplace_back(range.address,
                           range.address + range.count * layout_.blockLength(kStorageBlockSize));
    return space;
}

SpaceLocks::Ranges StorageEngine::spaceOf(const BlockRuns& blocks) const {
    SpaceLocks::Ranges space;
    for (const BlockRun& run : blocks.runs())
        space.emplace_back(run.address, run.address + blocks.lengthOf(run));
    if (space.size() > kMostRanges) {
        const auto [first, last] = std::minmax_element(space.begin(), space.end());
        space = {{first->first, last->second}};
    }
    return space;
}

SpaceLocks::Ranges StorageEngine::spaceOf(BlockChain& chain, BlockReader& reader) const {
    if (!chain.isWalked() && chain.size() > kWalked)
        return {{layout_.emptyLength(), reader_.end()}};
    chain.walk(reader);
    return spaceOf(chain.runs());
}

void StorageEngine::pin(const SpaceLocks::Ranges& ranges) {
    pinsKnown_ = false;
    pins_.pin(ranges);
}

void StorageEngine::unpin(const SpaceLocks::Ranges& ranges) noexcept {
    pinsKnown_ = false;
    pins_.unpin(ranges);
}

std::uint64_t StorageEngine::changeCounter() {
    const Reading reading(*this);
    return head_.counter;
}

} // namespace core
