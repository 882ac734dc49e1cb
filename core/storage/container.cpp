// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container.h"

#include "core/storage/storage_error.h"

#include <core/files/file_io.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <utility>

namespace core {

bool Container::create(IFile& file, const StorageLayout& layout, bool replacing) {
    // Somebody else may be about to make one here and to put files into it.
    const ContainerLock lock(InterfacePtr<ISharedFile>(&file), layout, file.url());
    const ContainerLock::Turn turn(lock);
    const bool empty = file.length() == 0;
    if (!empty && !replacing)
        return false;
    const ContainerHead::Bytes head = ContainerHead::empty(layout).encode(layout);
    std::vector<std::byte> bytes(head.begin(), head.begin() + ContainerHead::sizeIn(layout));
    // The table's first block holds, from the start, what never changes of the table.
    bytes.insert(bytes.end(), FilesTable::preamble().begin(), FilesTable::preamble().end());
    lock.beginCommit(); // after those who still read the old state
    try {
        write_all_at(file, 0, bytes);
        file.flush();
        if (!empty) // what a crash leaves behind the end counts as free
            file.truncate(bytes.size());
    } catch (...) {
        lock.endCommit(false);
        throw;
    }
    lock.endCommit(false);
    return true;
}

Container::Container(InterfacePtr<IFile> file, const StorageLayout& layout, const StorageOptions& options,
                     const wstring& url)
    : file_(std::move(file)), layout_(layout), options_(options), url_(url.empty() ? file_->url() : url),
      lock_(InterfacePtr<ISharedFile>(file_), layout_, url_), reader_(*file_, layout_), queue_(*file_),
      table_(layout_), tableBlocks_(layout_.blockHeaderSize()), freeBlocks_(layout_.blockHeaderSize()),
      space_(layout_) {
    reader_.setQueue(&queue_);
    const Reading reading(*this); // refuses a file that is not a container
}

Container::~Container() = default;

void Container::throwBadFormat() const {
    throw StorageException(StorageException::Kind::badFormat, url_);
}

// Reading and turns.

Container::Reading::Reading(Container& container) : container_(container), lock_(container.mutex_) {
    container_.beginReading();
}
Container::Reading::~Reading() {
    container_.endReading();
}

void Container::beginReading() {
    const std::lock_guard lock(mutex_);
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

void Container::endReading() noexcept {
    const std::lock_guard lock(mutex_);
    if (--readings_ == 0 && std::exchange(readLocked_, false))
        lock_.endReading();
}

Container::Turn::Turn(Container& container) : container_(container) {
    container_.beginTurn();
}
Container::Turn::~Turn() {
    container_.endTurn();
}

void Container::beginTurn() {
    const std::lock_guard lock(mutex_);
    if (options_.readOnly)
        throw_storage_error(messages::kStorageReadOnly, url_);
    if (failed_)
        throw_storage_error(messages::kStorageFailed, url_);
    if (turns_ == 0) {
        lock_.beginTurn();
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

void Container::endTurn() noexcept {
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

void Container::refresh() {
    if (loaded_ && !lock_.isShared())
        return;
    ContainerHead::Bytes bytes{};
    const auto head = std::span(bytes).first(ContainerHead::sizeIn(layout_));
    if (read_all_at(*file_, 0, head) != head.size())
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

void Container::load(const ContainerHead::Bytes& bytes) {
    const ContainerHead head = ContainerHead::decode(bytes, layout_);
    const std::uint64_t length = std::min(layout_.limit(), file_->length());
    if (head.blockSize != kStorageBlockSize || head.table.size != kStorageBlockSize)
        throwBadFormat();
    loaded_ = false;
    reader_.forget();
    reader_.setEnd(length);
    BlockChain chain(layout_);
    chain.adopt(reader_, layout_.headerSize(), head.table.chainSize, head.table.size, head.table.next);
    FilesTable table(layout_);
    if (!table.decode(chain.content(reader_), options_.noSortedCheck) || table.end() > length)
        throwBadFormat();
    chain.walk(reader_);
    BlockRuns blocks = chain.runs();
    BlockRuns rest = blocks.cutAt(kStorageBlockSize);
    for (const BlockRun& run : rest.runs()) {
        if (run.address < layout_.emptyLength() || run.address + rest.lengthOf(run) > table.end())
            throwBadFormat();
    }
    reader_.setEnd(table.end());
    table_ = std::move(table);
    tableBlocks_ = std::move(rest);
    head_ = head;
    headBytes_ = bytes;
    spaceCounter_.reset();
    loaded_ = true;
    ++state_;
}

void Container::loadFreeSpace() {
    if (spaceCounter_ == head_.counter)
        return;
    checked([&] {
        BlockChain free = chain(head_.freeChain, 0);
        const std::vector<std::byte> ranges = free.content(reader_);
        free.walk(reader_);
        if (!space_.load(ranges, table_.end()) || !space_.isUsed(tableBlocks_) || !space_.isUsed(free.runs()))
            throwBadFormat();
        // What a file begins with is free in a damaged container alone; writing there would take it from the
        // file.
        table_.forEach([&](wstring_view, const StorageFileEntry& entry) {
            for (const std::uint64_t first : {entry.attributes, entry.data}) {
                if (first != layout_.null && space_.isFree(first))
                    throwBadFormat();
            }
        });
        freeBlocks_ = free.runs();
    });
    spaceCounter_ = head_.counter;
}

BlockChain Container::chain(std::uint64_t address, std::uint64_t wish) {
    BlockChain result(layout_);
    result.open(reader_, address, wish);
    return result;
}

std::uint64_t Container::changeCounter() {
    const Reading reading(*this);
    return head_.counter;
}

} // namespace core
