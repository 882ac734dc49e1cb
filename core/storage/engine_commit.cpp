// SPDX-License-Identifier: Apache-2.0
#include "core/storage/engine.h"
#include "core/storage/inner_file.h"
#include "core/storage/storage_error.h"

#include <core/files/file_io.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <new>

namespace core {

void StorageEngine::begin() {
    const std::lock_guard lock(mutex_);
    if (transaction_)
        throw_storage_error(messages::kStorageTransaction, url_);
    beginTurn();
    transaction_ = true;
}

bool StorageEngine::inTransaction() {
    const std::lock_guard lock(mutex_);
    return transaction_;
}

void StorageEngine::commit() {
    const std::lock_guard lock(mutex_);
    if (!transaction_)
        return;
    transaction_ = false;
    try {
        commitChanges();
    } catch (...) {
        endTurn();
        throw;
    }
    endTurn();
}

void StorageEngine::rollback() {
    const std::lock_guard lock(mutex_);
    if (!transaction_)
        return;
    transaction_ = false;
    for (InnerFile* const file : files_) {
        if (file->isWriter())
            file->lose();
    }
    takeBack();
    endTurn();
}

void StorageEngine::finishChange() {
    if (!transaction_)
        commitChanges();
}

void StorageEngine::commitChanges() {
    if (!table_.hasChanges())
        return;
    Next next{head_, FilesTable(layout_), BlockRuns(layout_.blockHeaderSize()),
              BlockRuns(layout_.blockHeaderSize())};
    bool flushing = false;
    try {
        writeBeside(next);
        flushing = true;
        file_->flush();
        flushing = false;
        lock_.beginCommit();
    } catch (const ChainInFileExc&) {
        takeBack();
        throwBadFormat();
    } catch (...) {
        failed_ = failed_ || flushing;
        takeBack();
        throw;
    }
    try {
        writeHead(next.head);
    } catch (...) {
        lock_.endCommit(readLocked_);
        failed_ = true;
        takeBack();
        throw;
    }
    lock_.endCommit(readLocked_);
    settle(std::move(next));
}

/// Writes the new table and the new free space beside what is live, and says in `next` where.
void StorageEngine::writeBeside(Next& next) {
    release(tableBlocks_);
    release(freeBlocks_);
    ++next.head.counter;
    next.head.tableLayout = next_;
    if (next_ == TableLayout::flat)
        writeFlat(next);
    else
        writeTrees(next);
    requireNoCutChains(next.table);
    queue_.flush();
}

void StorageEngine::writeFlat(Next& next) {
    auto table = table_.flattened();
    const std::uint64_t size = table->encodedSize();
    const std::uint64_t beyondFirst = size > kStorageBlockSize ? size - kStorageBlockSize : 0;
    const auto ranges = allocate((beyondFirst + kStorageBlockSize - 1) / kStorageBlockSize);
    for (const BlockRange& range : ranges)
        next.tableBlocks.append(range.address, kStorageBlockSize, range.count);
    next.head.freeChain = writeFreeChain(next.freeBlocks);
    const std::uint64_t end = space_.outlook().end;
    if (!table->isWhole(end)) // nobody could open the container any more
        throwBadFormat();
    const std::vector<std::byte> content = table->encode(end);
    next.table = FilesTable(layout_, std::move(table), end);
    if (!ranges.empty())
        write(ranges, std::span(content).subspan(kStorageBlockSize), 0, layout_.null);
    next.head.table.chainSize = size;
    next.head.table.next = ranges.empty() ? layout_.null : ranges.front().address;
}

/// Makes the state on the disk the one in memory. Nothing here may fail: the changes are committed by now.
void StorageEngine::settle(Next next) noexcept {
    head_ = next.head;
    next_ = head_.tableLayout;
    headBytes_ = head_.encode(layout_);
    table_ = std::move(next.table);
    tableBlocks_ = std::move(next.tableBlocks);
    freeBlocks_ = std::move(next.freeBlocks);
    unsettled_ = false;
    space_.commit(table_.end());
    spaceCounter_ = head_.counter;
    freeTreeLost_ = false;
    spaceTree_ = head_.freeRoot(layout_);
    if (next_ == TableLayout::tree)
        trustSpace();
    verifiedList_ = spaceVerified_;
    cutChains_.clear();
    reader_.setEnd(space_.end());
    pinsKnown_ = false; // to those who went on reading what became free
    for (InnerFile* const file : files_)
        file->settle();
    cutTail();
}

/// Writes down what will be free, into blocks that are free now. Taking these changes what is written.
std::uint64_t StorageEngine::writeFreeChain(BlockRuns& blocks) {
    std::vector<BlockRange> ranges;
    std::vector<std::byte> content = FreeSpace::encode(space_.outlook().free, layout_);
    while (content.size() > blocks.capacity()) {
        const std::uint64_t more =
            (content.size() - blocks.capacity() + kStorageBlockSize - 1) / kStorageBlockSize;
        for (const BlockRange& range : allocate(more)) {
            ranges.push_back(range);
            blocks.append(range.address, kStorageBlockSize, range.count);
        }
        content = FreeSpace::encode(space_.outlook().free, layout_);
    }
    if (ranges.empty())
        return layout_.null;
    write(ranges, content, content.size(), layout_.null);
    return ranges.front().address;
}

/// The one write that makes the changes the committed state. When it fails half way, or its flush does, the
/// old head is put back: the failure is reported, and the old state must be what is found afterwards.
void StorageEngine::writeHead(const ContainerHead& head) {
    const std::size_t size = std::max(head.changingSize(layout_), head_.changingSize(layout_));
    const ContainerHead::Bytes bytes = head.encode(layout_);
    try {
        write_all_at(*file_, 0, std::span(bytes).first(size));
        file_->flush();
    } catch (...) {
        try {
            write_all_at(*file_, 0, std::span(std::as_const(headBytes_)).first(size));
            file_->flush();
        } catch (...) {
            loaded_ = false; // one of the two states, both whole; the next one to read sees which
        }
        throw;
    }
}

void StorageEngine::takeBack() noexcept {
    for (InnerFile* file : files_) {
        if (file->isUncommitted())
            file->lose();
    }
    unsettled_ = false;
    table_.revert();
    space_.rollback();
    queue_.drop();
    reader_.forget();
    reader_.setEnd(table_.end());
    if (!failed_ && spaceCounter_ && space_.end() >= table_.end())
        cutTail();
}

/// Gives the end of the file back when nothing there is in use. That it fails harms nothing: what lies beyond
/// the container's end counts as free.
void StorageEngine::cutTail() noexcept {
    try {
        if (file_->length() > space_.end() && !pins_.isPinned(space_.end(), SpaceLocks::kEnd))
            file_->truncate(space_.end());
    } catch (...) { // the next commit tries again
    }
}

void StorageEngine::tidy() noexcept {
    try {
        if (turns_ != 0 || failed_ || !lock_.tryTurn())
            return;
    } catch (...) { // the next commit gives it back
        return;
    }
    try {
        refresh();
        loadFreeSpace();
        if (space_.end() >= table_.end())
            cutTail();
    } catch (...) {
    }
    lock_.endTurn();
}

void StorageEngine::requireSpace() const {
    if (!spaceCounter_)
        throw std::bad_alloc();
}

/// Runs `call`, which takes or gives space back.
template <class Call>
auto StorageEngine::onSpace(Call call) -> decltype(call()) {
    requireSpace();
    try {
        return call();
    } catch (...) {
        forgetSpace();
        throw;
    }
}

void StorageEngine::avoidPins() {
    if (!pinsKnown_)
        space_.avoid(pins_.pinned(layout_.emptyLength()));
    pinsKnown_ = true;
}

std::vector<BlockRange> StorageEngine::reserve(std::uint64_t least, std::uint64_t most) {
    const Turn turn(*this);
    const auto ranges = onSpace([&] {
        avoidPins();
        const auto found = space_.place(most);
        return found ? found : space_.place(least);
    });
    if (!ranges)
        throw_storage_error(messages::kStorageTooLarge, url_);
    pin(spaceOf(*ranges));
    return *ranges;
}

void StorageEngine::claim(const BlockRuns& blocks) {
    if (!onSpace([&] { return space_.claim(blocks, spaceVerified_ && spaceComplete_); }))
        throw_storage_error(messages::kStorageLost, url_);
    reader_.forget();
    reader_.setEnd(std::max(reader_.end(), space_.end()));
    unsettled_ = unsettled_ || !blocks.empty();
}

std::vector<BlockRange> StorageEngine::allocate(std::uint64_t blocks) {
    std::vector<BlockRange> ranges;
    const bool fits = blocks == 0 || onSpace([&] {
                          avoidPins();
                          return space_.allocate(blocks, ranges);
                      });
    if (!fits)
        throw_storage_error(messages::kStorageTooLarge, url_);
    reader_.setEnd(std::max(reader_.end(), space_.end()));
    unsettled_ = unsettled_ || blocks != 0;
    return ranges;
}

BlockRange StorageEngine::allocateTogether(std::uint64_t blocks, std::uint64_t from) {
    const auto range = onSpace([&] {
        avoidPins();
        return space_.allocateTogether(blocks, from);
    });
    if (!range)
        throw_storage_error(messages::kStorageTooLarge, url_);
    reader_.setEnd(std::max(reader_.end(), space_.end()));
    unsettled_ = true;
    return *range;
}

void StorageEngine::release(const BlockRuns& blocks) {
    const bool sharing = !sharedSpace_.empty();
    const BlockRuns own = sharing ? withoutShared(blocks) : BlockRuns(layout_.blockHeaderSize());
    const BlockRuns& released = sharing ? own : blocks;
    if (released.overlap() || !onSpace([&] { return space_.release(released); }))
        throw ChainInFileExc(blocks.runs().front().address);
}

void StorageEngine::giveBack(std::span<const BlockRange> ranges) noexcept {
    const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range)
        queue_.drop(range->address, range->address + range->count * step);
    try {
        BlockRuns blocks(layout_.blockHeaderSize());
        for (const BlockRange& range : ranges)
            blocks.append(range.address, kStorageBlockSize, range.count);
        giveBack(blocks);
    } catch (...) {
        forgetSpace();
    }
}

void StorageEngine::giveBack(const BlockRuns& blocks) noexcept {
    try {
        (void)onSpace([&] { return space_.release(blocks); }); // false: everything was taken back by now
    } catch (...) {                                            // what is free is read again
    }
}

void StorageEngine::write(std::span<const BlockRange> ranges, std::span<const std::byte> content,
                          std::uint64_t chainSize, std::uint64_t next) {
    reader_.forget();
    queue_.addBlocks(ranges, content, layout_, chainSize, next);
}

} // namespace core
