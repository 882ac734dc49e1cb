// SPDX-License-Identifier: Apache-2.0
#include "core/storage/chain_writer.h"

#include "core/storage/block_format.h"
#include "core/storage/block_reader.h"
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace core {
namespace {

constexpr std::uint64_t kBlock = kStorageBlockSize;
constexpr std::size_t kCarried = 128 * kStorageBlockSize;
constexpr std::uint64_t kNotInOrder = std::numeric_limits<std::uint64_t>::max();

// Blocks reserved at once, 64 KiB to 16 MiB.
constexpr std::uint64_t kLeastAhead = 128;
constexpr std::uint64_t kMostAhead = 32768;

std::uint64_t floor_to_block(std::uint64_t offset) {
    return offset - offset % kBlock;
}
std::uint64_t ceil_to_block(std::uint64_t offset) {
    return floor_to_block(offset + kBlock - 1);
}

} // namespace

ChainWriter::ChainWriter(StorageEngine& engine, std::uint64_t base)
    : engine_(engine), queue_(engine.file()), reader_(engine.newReader()), ahead_(kLeastAhead),
      base_(engine.layout()), baseLimit_(0), fresh_(engine.layout().blockHeaderSize()),
      guess_(engine.layout().null), size_(0) {
    reader_.setQueue(&queue_);
    begin(base);
}

void ChainWriter::begin(std::uint64_t address) {
    engine_.settleWrites();
    reader_.forget();
    reader_.setEnd(engine_.reader().end());
    base_.open(reader_, address, 0);
    SpaceLocks::Ranges used = engine_.spaceOf(base_, reader_);
    const SpaceLocks::Ranges reserved = engine_.spaceOf(reserve_);
    used.insert(used.end(), reserved.begin(), reserved.end());
    engine_.pin(used); // before what was pinned is let go of, part of which may stay
    engine_.unpin(std::exchange(pinned_, std::move(used)));
    size_ = baseLimit_ = base_.size();
    fresh_ = BlockRuns(engine_.layout().blockHeaderSize());
    touched_ = cut_ = false;
    summed_ = Checksum();
    summedEnd_ = 0;
}

ChainWriter::~ChainWriter() {
    if (!pinned_.empty()) // else the container may be gone
        discard();
}

void ChainWriter::discard() noexcept {
    queue_.drop();
    fresh_ = BlockRuns(engine_.layout().blockHeaderSize());
    reserve_.clear();
    engine_.unpin(std::exchange(pinned_, {}));
}

// Reading.

void ChainWriter::readBase(std::uint64_t offset, std::span<std::byte> out) {
    base_.readAt(reader_, offset, out);
}

void ChainWriter::readAt(std::uint64_t offset, std::span<std::byte> out) {
    const std::size_t headerSize = engine_.layout().blockHeaderSize();
    while (!out.empty() && offset < freshEnd()) {
        const BlockRuns::Block block = fresh_.at(offset);
        const std::uint64_t skip = offset - block.offset;
        const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), kBlock - skip));
        const auto bytes = reader_.at(block.address + headerSize + skip, part, out.size());
        if (bytes.size() < part)
            throw ChainInFileExc(block.address);
        std::memcpy(out.data(), bytes.data(), part);
        offset += part;
        out = out.subspan(part);
    }
    if (!out.empty())
        readBase(offset, out);
}

// Writing.

void ChainWriter::requireRoom(std::uint64_t offset, std::uint64_t count) const {
    const StorageLayout& layout = engine_.layout();
    const std::uint64_t most = layout.limit() / layout.blockLength(kBlock) * kBlock;
    if (offset > most || count > most - offset)
        throw_storage_error(messages::kStorageTooLarge, engine_.url());
}

void ChainWriter::writeAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    if (bytes.empty())
        return;
    touched_ = true;
    if (offset > size_)
        fillWithZeros(offset);
    if (offset == summedEnd_) {
        summed_.add(bytes);
        summedEnd_ += bytes.size();
    } else if (offset < summedEnd_) {
        summedEnd_ = kNotInOrder;
    }
    const std::uint64_t end = offset + bytes.size();
    if (offset < freshEnd()) {
        const auto part =
            static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), freshEnd() - offset));
        overwrite(offset, bytes.first(part));
        offset += part;
        bytes = bytes.subspan(part);
    }
    if (!bytes.empty())
        append(offset, bytes);
    size_ = std::max(size_, end);
}

void ChainWriter::overwrite(std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const BlockRuns::Block block = fresh_.at(offset);
        const std::uint64_t skip = offset - block.offset;
        const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), kBlock - skip));
        patch(block.address + engine_.layout().blockHeaderSize() + skip, bytes.first(part));
        offset += part;
        bytes = bytes.subspan(part);
    }
}

/// Writes behind the fresh blocks: what is left before `offset` in its block, and behind the last byte in
/// its own, is carried over.
void ChainWriter::append(std::uint64_t offset, std::span<const std::byte> bytes) {
    carry(floor_to_block(offset));
    std::array<std::byte, kStorageBlockSize> block{};
    const auto fill = [&](std::uint64_t begin, std::uint64_t end) { // from the base, as far as it goes
        end = std::min(end, baseLimit_);
        if (begin < end)
            readBase(begin, std::span(block).subspan(begin % kBlock, static_cast<std::size_t>(end - begin)));
    };
    const auto appendPart = [&](std::size_t count) {
        const std::uint64_t start = floor_to_block(offset);
        block.fill(std::byte{0});
        fill(start, offset);
        std::copy_n(bytes.begin(), count, block.begin() + static_cast<std::ptrdiff_t>(offset - start));
        fill(offset + count, start + kBlock);
        grow(block);
        offset += count;
        bytes = bytes.subspan(count);
    };
    if (const std::uint64_t skip = offset % kBlock; skip != 0)
        appendPart(static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), kBlock - skip)));
    if (const std::size_t whole = bytes.size() / kStorageBlockSize * kStorageBlockSize; whole != 0) {
        grow(bytes.first(whole));
        offset += whole;
        bytes = bytes.subspan(whole);
    }
    if (!bytes.empty())
        appendPart(bytes.size());
}

void ChainWriter::grow(std::span<const std::byte> content) {
    const StorageLayout& layout = engine_.layout();
    const auto ranges = takeReserved((content.size() + kBlock - 1) / kBlock);
    // Files are mostly written on and on: the next block is expected behind this one.
    const std::uint64_t guess = ranges.back().address + ranges.back().count * layout.blockLength(kBlock);
    write(ranges, content, guess);
    if (!fresh_.empty() && guess_ != ranges.front().address)
        patchNumber(fresh_.last().address + next_offset(layout), ranges.front().address);
    guess_ = guess;
    for (const BlockRange& range : ranges)
        fresh_.append(range.address, kBlock, range.count);
}

/// A file that grows takes more and more at once, so that a large one takes few turns.
std::vector<BlockRange> ChainWriter::takeReserved(std::uint64_t blocks) {
    std::uint64_t known = 0;
    for (const BlockRange& range : reserve_)
        known += range.count;
    if (known < blocks) {
        const std::uint64_t missing = blocks - known;
        const auto more = engine_.reserve(missing, std::max(missing, ahead_));
        const auto space = engine_.spaceOf(more);
        pinned_.insert(pinned_.end(), space.begin(), space.end());
        reserve_.insert(reserve_.end(), more.begin(), more.end());
        ahead_ = std::min(2 * ahead_, kMostAhead);
    }
    return split_off(reserve_, blocks, engine_.layout().blockLength(kBlock));
}

void ChainWriter::write(std::span<const BlockRange> ranges, std::span<const std::byte> content,
                        std::uint64_t next) {
    reader_.forget();
    queue_.addBlocks(ranges, content, engine_.layout(), 0, next);
}

void ChainWriter::patch(std::uint64_t address, std::span<const std::byte> bytes) {
    reader_.forget();
    queue_.patch(address, bytes);
}

void ChainWriter::carry(std::uint64_t until) {
    std::vector<std::byte> bytes;
    while (freshEnd() < until) {
        const std::uint64_t from = freshEnd();
        bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCarried, until - from)));
        readBase(from, bytes);
        grow(bytes);
    }
}

void ChainWriter::fillWithZeros(std::uint64_t until) {
    const std::vector<std::byte> zeros(kCarried);
    while (size_ < until) {
        // Up to a block's end, so that the rest is written in whole blocks.
        const std::uint64_t end = std::min(until, ceil_to_block(size_ + 1) + kCarried - kBlock);
        writeAt(size_, std::span(zeros).first(static_cast<std::size_t>(end - size_)));
    }
}

void ChainWriter::truncate(std::uint64_t size) {
    if (size == size_)
        return;
    if (size > size_) {
        const std::byte zero{};
        writeAt(size - 1, std::span(&zero, 1));
        return;
    }
    touched_ = cut_ = true;
    if (size < summedEnd_)
        summedEnd_ = kNotInOrder;
    size_ = size;
    baseLimit_ = std::min(baseLimit_, size);
    const BlockRuns cut = fresh_.cutAt(ceil_to_block(size));
    for (const BlockRun& run : cut.runs())
        reserve_.push_back({run.address, run.count});
    guess_ = 0; // no block is there
}

void ChainWriter::patchNumber(std::uint64_t address, std::uint64_t number) {
    std::array<std::byte, 16> digits{};
    encode_number(digits.data(), engine_.layout(), number);
    patch(address, std::span(std::as_const(digits)).first(engine_.layout().digits()));
}

/// Where content was cut off, bytes of it are left behind its end, up to the end of the block.
void ChainWriter::clearSlack() {
    if (!cut_ || size_ == 0 || size_ % kBlock == 0 || size_ > freshEnd())
        return;
    constexpr std::array<std::byte, kStorageBlockSize> zeros{};
    const std::uint64_t address = fresh_.last().address + engine_.layout().blockHeaderSize() + size_ % kBlock;
    patch(address, std::span(zeros).first(static_cast<std::size_t>(kBlock - size_ % kBlock)));
}

/// The checksum of the content, which is read again unless it was written from start to end.
std::uint64_t ChainWriter::sum() {
    if (summedEnd_ == size_)
        return summed_.value();
    Checksum sum;
    std::vector<std::byte> bytes;
    for (std::uint64_t done = 0; done < size_; done += bytes.size()) {
        bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCarried, size_ - done)));
        readAt(done, bytes);
        sum.add(bytes);
    }
    return sum.value();
}

ChainWriter::Result ChainWriter::finish(bool mayShare) {
    const std::uint64_t null = engine_.layout().null;
    std::uint64_t next = null;
    std::uint64_t shared = base_.size(); // from here on the base's blocks stay in use
    bool sharing = false;
    if (size_ > freshEnd()) {
        // The old blocks can follow when one begins where the fresh ones end, and nothing of them is cut off.
        if (mayShare && size_ == base_.size() && baseLimit_ == size_ && freshEnd() != 0) {
            base_.reach(reader_, freshEnd() + 1);
            const BlockRuns::Block block = base_.runs().at(freshEnd());
            sharing = block.offset == freshEnd();
            next = block.address;
            shared = freshEnd();
        }
        if (!sharing) {
            carry(size_);
            next = null;
        }
    }
    if (sharing)
        base_.reach(reader_, shared);
    else
        base_.walk(reader_);
    const StorageLayout& layout = engine_.layout();
    clearSlack();
    Result result{null, size_, sum(), true, BlockRuns(layout.blockHeaderSize()), base_.runs()};
    if (sharing) {
        // Blocks without data that stand in front of the first shared one are passed over, so they are not in
        // use.
        const BlockRuns kept = result.released.cutAt(shared);
        for (auto run = kept.runs().begin(); run != kept.runs().end() && run->size == 0; ++run)
            result.released.append(run->address, run->size, run->count);
    }
    if (size_ == 0)
        return result;
    if (guess_ != next)
        patchNumber(fresh_.last().address + next_offset(layout), next);
    result.address = fresh_.runs().front().address;
    patchNumber(result.address + chain_size_offset(), size_);
    result.isTogether = !sharing && fresh_.runs().size() == 1;
    result.fresh = std::exchange(fresh_, BlockRuns(layout.blockHeaderSize()));
    queue_.flush();
    return result;
}

} // namespace core
