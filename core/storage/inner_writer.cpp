// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_writer.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

namespace core {

InnerWriter::InnerWriter(const std::shared_ptr<StorageEngine>& engine, wstring_view name, OpenMode mode)
    : InnerFile(engine, name) {
    if (mode == OpenMode::read)
        throw_file_error(messages::kFileOpen, url(), EINVAL);
    const std::lock_guard lock(engine->mutex());
    turn_.emplace(*engine);
    engine->refuseOpened(name);
    const bool exists = engine->contains(name);
    if (!exists && mode == OpenMode::readWrite)
        throw StorageException(StorageException::Kind::fileNotFound, url());
    if (exists && mode == OpenMode::createNew)
        throw_file_error(messages::kFileOpen, url(), EEXIST);
    dropOld_ = exists && mode == OpenMode::replace;
    changed_ = !exists || dropOld_;
    const std::uint64_t base = changed_ ? engine->layout().null : engine->lookUp(name).entry.data;
    engine->checked(name, [&] { writer_.emplace(*engine, base); });
    engine->enlist(*this);
}

InnerWriter::~InnerWriter() {
    try {
        if (std::uncaught_exceptions() > exceptions_)
            giveUp();
        else
            InnerWriter::close();
    } catch (const std::exception&) { // a caller that wants to know calls close()
    }
}

template <class Call>
void InnerWriter::writing(Call call) {
    requireNotLost();
    try {
        engine().checked(name(), call);
    } catch (const std::bad_alloc&) {
        engine().forgetSpace(); // blocks may have been lost on their way
        lose();
        throw;
    } catch (...) {
        writer_->discard(); // no effect when the commit has taken all changes back
        lose();
        throw;
    }
}

std::uint64_t InnerWriter::size() const noexcept {
    return std::max(writer_->size(), waiting_.empty() ? 0 : waitingStart_ + waiting_.size());
}

void InnerWriter::writeAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    const std::lock_guard lock(engine().mutex());
    const std::size_t count = bytes.size();
    writer_->requireRoom(offset, count);
    if (count == 0)
        return;
    writing([&] {
        forgetBuffer();
        changed_ = true;
        const bool joins = !waiting_.empty() && offset >= waitingStart_ &&
                           offset <= waitingStart_ + waiting_.size() &&
                           offset - waitingStart_ + count <= kBuffer;
        if (!joins) {
            settleWrites();
            if (count >= kBuffer) {
                writer_->writeAt(offset, bytes);
                return;
            }
            waitingStart_ = offset;
        }
        const auto skip = static_cast<std::size_t>(offset - waitingStart_);
        waiting_.resize(std::max(waiting_.size(), skip + count));
        std::memcpy(waiting_.data() + skip, bytes.data(), count);
    });
}

void InnerWriter::settleWrites() {
    if (waiting_.empty())
        return;
    writer_->writeAt(waitingStart_, waiting_);
    waiting_.clear();
}

void InnerWriter::fetch(std::uint64_t offset, std::span<std::byte> out) {
    writing([&] {
        settleWrites();
        writer_->readAt(offset, out);
    });
}

void InnerWriter::truncate(std::uint64_t length) {
    const std::lock_guard lock(engine().mutex());
    writer_->requireRoom(length, 0);
    writing([&] {
        forgetBuffer();
        settleWrites();
        changed_ = changed_ || length != writer_->size();
        writer_->truncate(length);
    });
}

void InnerWriter::publish(bool goOn) {
    writing([&] {
        if (!changed_)
            return;
        StorageEngine& to = engine();
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

void InnerWriter::flush() {
    const std::lock_guard lock(engine().mutex());
    publish(true);
}

void InnerWriter::close() {
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
void InnerWriter::giveUp() noexcept {
    if (!turn_)
        return;
    const auto keep = shared(); // its mutex outlives this file
    const std::lock_guard lock(keep->mutex());
    if (!isLost())
        writer_->discard();
    turn_.reset();
    leave();
}

} // namespace core
