// SPDX-License-Identifier: Apache-2.0
#include "core/storage/file_with_buffer.h"

#include "core/storage/storage_error.h"

#include <core/files/file_error.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace core {
namespace {

constexpr std::size_t kBuffer = std::size_t{64} << 10;
constexpr std::size_t kLeastAhead = std::size_t{4} << 10;

} // namespace

// Reading.

FileWithBuffer::FileWithBuffer(std::shared_ptr<Container> container, wstring_view name)
    : FileWithBuffer(std::move(container), name, Writer{}) {
    const Container::Reading reading(*container_);
    const Container::Found found = container_->lookUp(name_);
    container_->checked([&] { chain_.open(container_->reader(), found.entry.data, 0); });
    version_ = found.info.attribute;
    state_ = container_->state();
    container_->enlist(*this);
}

FileWithBuffer::FileWithBuffer(std::shared_ptr<Container> container, wstring_view name, Writer)
    : FileImpl(container->urlOf(name)), container_(std::move(container)), name_(name),
      chain_(container_->layout()) {}

FileWithBuffer::~FileWithBuffer() {
    FileWithBuffer::close();
}

Container& FileWithBuffer::container() const {
    if (container_ == nullptr)
        throw_file_error("IDS_FILE_READ", url(), EBADF);
    return *container_;
}

void FileWithBuffer::requireNotLost() const {
    if (lost_)
        throw_storage_error(isWriter() ? "IDS_STERROR_LOST" : "IDS_STERROR_CHANGED", url());
}

std::size_t FileWithBuffer::readAt(std::uint64_t position, void* to, std::size_t count) {
    const std::lock_guard lock(container().mutex());
    if (position >= size())
        return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size() - position));
    auto* const bytes = static_cast<std::byte*>(to);
    std::size_t done = 0;
    while (done < count) {
        const std::uint64_t at = position + done;
        if (at >= bufferStart_ && at - bufferStart_ < bufferLength_) {
            const auto skip = static_cast<std::size_t>(at - bufferStart_);
            const std::size_t part = std::min(count - done, bufferLength_ - skip);
            std::memcpy(bytes + done, buffer_.data() + skip, part);
            done += part;
        } else if (count - done >= kBuffer) {
            fetch(at, {bytes + done, count - done});
            done = count;
        } else {
            const bool inOrder = at == bufferStart_ + bufferLength_;
            ahead_ = inOrder ? std::min(2 * ahead_, kBuffer) : kLeastAhead;
            const std::uint64_t length = std::min<std::uint64_t>(std::max(count - done, ahead_), size() - at);
            bufferLength_ = 0;
            buffer_.resize(std::max(buffer_.size(), static_cast<std::size_t>(length)));
            fetch(at, std::span(buffer_).first(static_cast<std::size_t>(length)));
            bufferStart_ = at;
            bufferLength_ = static_cast<std::size_t>(length);
        }
    }
    return done;
}

void FileWithBuffer::fetch(std::uint64_t position, std::span<std::byte> out) {
    const Container::Reading reading(*container_);
    revalidate(*container_);
    container_->checked([&] { chain_.readAt(container_->reader(), position, out); });
}

/// The container may have changed since the last look: the file must still have the same
/// content, though it may have moved.
void FileWithBuffer::revalidate(Container& container) {
    requireNotLost();
    if (state_ == container.state())
        return;
    const Container::Found found = container.lookUp(name_);
    const std::uint64_t size = chain_.size();
    if (found.info.attribute != version_)
        lost_ = true;
    requireNotLost();
    container.checked([&] { chain_.open(container.reader(), found.entry.data, 0); });
    if (chain_.size() != size)
        container.throwBadFormat();
    state_ = container.state();
}

std::size_t FileWithBuffer::writeAt(std::uint64_t, const void*, std::size_t) {
    throw_file_error("IDS_FILE_WRITE", url(), EBADF);
}

std::uint64_t FileWithBuffer::length() {
    const std::lock_guard lock(container().mutex());
    return size();
}

void FileWithBuffer::truncate(std::uint64_t) {
    throw_file_error("IDS_FILE_WRITE", url(), EBADF);
}

void FileWithBuffer::flush() {}

void FileWithBuffer::close() {
    if (const auto container = std::exchange(container_, nullptr)) {
        const std::lock_guard lock(container->mutex());
        container->dismiss(*this);
    }
}

// Writing.

FileWithBuffer2::FileWithBuffer2(const std::shared_ptr<Container>& container, wstring_view name,
                                 OpenMode mode)
    : FileWithBuffer(container, name, Writer{}) {
    const std::lock_guard lock(container->mutex());
    turn_.emplace(*container);
    container->refuseOpened(name);
    const bool exists = container->contains(name);
    if (!exists && mode == OpenMode::readWrite)
        throw StorageException(StorageException::Kind::fileNotFound, url());
    if (exists && mode == OpenMode::createNew)
        throw_file_error("IDS_FILE_OPEN", url(), EEXIST);
    dropOld_ = exists && mode == OpenMode::replace;
    changed_ = !exists || dropOld_;
    const std::uint64_t base = changed_ ? container->layout().null : container->lookUp(name).entry.data;
    container->checked([&] { writer_.emplace(*container, base); });
    container->enlist(*this);
}

FileWithBuffer2::~FileWithBuffer2() {
    try {
        if (std::uncaught_exceptions() > exceptions_)
            giveUp();
        else
            FileWithBuffer2::close();
    } catch (const std::exception&) { // who wants to know calls close()
    }
}

template <class Call>
void FileWithBuffer2::writing(Call call) {
    requireNotLost();
    try {
        container().checked(call);
    } catch (const std::bad_alloc&) {
        container().forgetSpace(); // blocks may have been lost on their way
        lose();
        throw;
    } catch (...) {
        if (!isLost())
            writer_->discard();
        lose();
        throw;
    }
}

std::uint64_t FileWithBuffer2::size() const noexcept {
    return std::max(writer_->size(), waiting_.empty() ? 0 : waitingStart_ + waiting_.size());
}

std::size_t FileWithBuffer2::writeAt(std::uint64_t position, const void* from, std::size_t count) {
    const std::lock_guard lock(container().mutex());
    writer_->requireRoom(position, count);
    const std::span bytes(static_cast<const std::byte*>(from), count);
    if (count == 0)
        return 0;
    writing([&] {
        forgetBuffer();
        changed_ = true;
        const bool joins = !waiting_.empty() && position >= waitingStart_ &&
                           position <= waitingStart_ + waiting_.size() &&
                           position - waitingStart_ + count <= kBuffer;
        if (!joins) {
            settleWrites();
            if (count >= kBuffer) {
                writer_->writeAt(position, bytes);
                return;
            }
            waitingStart_ = position;
        }
        const auto skip = static_cast<std::size_t>(position - waitingStart_);
        waiting_.resize(std::max(waiting_.size(), skip + count));
        std::memcpy(waiting_.data() + skip, from, count);
    });
    return count;
}

void FileWithBuffer2::settleWrites() {
    if (waiting_.empty())
        return;
    writer_->writeAt(waitingStart_, waiting_);
    waiting_.clear();
}

void FileWithBuffer2::fetch(std::uint64_t position, std::span<std::byte> out) {
    writing([&] {
        settleWrites();
        writer_->readAt(position, out);
    });
}

void FileWithBuffer2::truncate(std::uint64_t length) {
    const std::lock_guard lock(container().mutex());
    writer_->requireRoom(length, 0);
    writing([&] {
        forgetBuffer();
        settleWrites();
        changed_ = changed_ || length != writer_->size();
        writer_->truncate(length);
    });
}

void FileWithBuffer2::publish(bool goOn) {
    writing([&] {
        if (!changed_)
            return;
        Container& to = container();
        const bool inOnePiece =
            !writer_->isTouched() && writer_->size() == 0 && (waiting_.empty() || waitingStart_ == 0);
        if (inOnePiece) {
            to.putContent(name(), waiting_);
            waiting_.clear();
        } else {
            settleWrites();
            const ChainWriter::Result result = writer_->finish();
            try {
                to.publish(name(), result.address, result.released, dropOld_);
            } catch (...) {
                to.giveBack(result.fresh);
                throw;
            }
        }
        changed_ = dropOld_ = false;
        if (goOn)
            writer_->begin(to.lookUp(name()).entry.data);
    });
}

void FileWithBuffer2::flush() {
    const std::lock_guard lock(container().mutex());
    publish(true);
}

void FileWithBuffer2::close() {
    if (!turn_)
        return;
    const auto keep = shared();
    const std::lock_guard lock(keep->mutex());
    try {
        publish(false);
    } catch (...) {
        giveUp();
        throw;
    }
    giveUp();
}

/// Ends the use of the file; what is not published by now is gone.
void FileWithBuffer2::giveUp() noexcept {
    if (!turn_)
        return;
    const auto keep = shared(); // its mutex outlives this file
    const std::lock_guard lock(keep->mutex());
    if (!isLost())
        writer_->discard();
    turn_.reset();
    FileWithBuffer::close();
}

InterfacePtr<IFile> create_reader(std::shared_ptr<Container> container, wstring_view name) {
    return make_object<FileWithBuffer>(std::move(container), name);
}

InterfacePtr<IFile> create_writer(const std::shared_ptr<Container>& container, wstring_view name,
                                  OpenMode mode) {
    return make_object<FileWithBuffer2>(container, name, mode);
}

} // namespace core
