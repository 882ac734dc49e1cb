// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_writer.h"

#include "core/storage/storage_error.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace core {

InnerWriter::InnerWriter(const std::shared_ptr<StorageEngine>& engine, wstring_view name, OpenMode mode,
                         bool exclusive)
    : InnerFile(engine, name), exclusive_(exclusive) {
    if (mode == OpenMode::read)
        throw_file_error(messages::kFileOpen, url(), EINVAL);
    const StorageEngine::Reading reading(*engine);
    engine->requireWritable();
    engine->refuseOpened(name);
    const bool exists = engine->contains(name);
    if (!exists && mode == OpenMode::readWrite)
        throw StorageException(StorageException::Kind::fileNotFound, url());
    if (exists && mode == OpenMode::createNew)
        throw_file_error(messages::kFileOpen, url(), EEXIST);
    mustBeNew_ = mode == OpenMode::createNew;
    changed_ = !exists || mode == OpenMode::replace;
    if (!changed_)
        setBase();
    engine->checked(name, [&] { writer_.emplace(*engine, base_.value_or(engine->layout().null)); });
    engine->enlist(*this);
    open_ = true;
}

/// What the name stands for is the content to begin with.
void InnerWriter::setBase() {
    const StorageEngine::Found found = engine().lookUp(name());
    base_ = found.entry.data;
    version_ = found.info.attribute;
    setUncommitted(engine().isUncommitted(name()));
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
    } catch (...) {
        writer_->discard();
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
        if (!inOnePiece)
            return publishChain(goOn);
        const StorageEngine::Turn turn(to);
        (void)isBaseCurrent();
        to.putContent(name(), waiting_);
        waiting_.clear();
        goOnWith(goOn);
    });
}

/// Everything is written before the turn, unless the content to begin with moves in the last moment.
void InnerWriter::publishChain(bool goOn) {
    StorageEngine& to = engine();
    settleWrites();
    bool shares = false;
    {
        const StorageEngine::Reading reading(to);
        shares = isBaseCurrent();
    }
    const ChainWriter::Result result = writer_->finish(shares);
    const StorageEngine::Turn turn(to);
    if (isBaseCurrent() != shares)
        throw_storage_error(messages::kStorageChanged, url());
    to.claim(result.fresh);
    try {
        // A base that has moved is out of use where it lay.
        to.publish(name(), {result.address, result.size, result.sum, result.isTogether},
                   shares ? result.released : BlockRuns(to.layout().blockHeaderSize()), !shares);
    } catch (...) {
        to.giveBack(result.fresh);
        throw;
    }
    goOnWith(goOn);
}

/// Whether the name still stands for the content to begin with, which may have moved. Throws when it stands
/// for another one.
bool InnerWriter::isBaseCurrent() {
    StorageEngine& in = engine();
    const bool exists = in.contains(name());
    if (!base_) {
        if (mustBeNew_ && exists)
            throw_file_error(messages::kFileOpen, url(), EEXIST);
        return false;
    }
    if (exists) {
        const StorageEngine::Found found = in.lookUp(name());
        if (found.entry.data == *base_) // it is pinned, so nothing else can have come there
            return true;
        if (found.info.attribute == version_)
            return false;
    }
    throw_storage_error(messages::kStorageChanged, url());
}

/// After publishing, in the same turn.
void InnerWriter::goOnWith(bool goOn) {
    changed_ = mustBeNew_ = false;
    if (!goOn)
        return;
    setBase();
    writer_->begin(*base_);
}

void InnerWriter::flush() {
    const std::lock_guard lock(engine().mutex());
    publish(true);
}

void InnerWriter::close() {
    if (!open_)
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

void InnerWriter::giveUp() noexcept {
    if (!std::exchange(open_, false))
        return;
    const auto keep = shared(); // its mutex outlives this file
    const std::lock_guard lock(keep->mutex());
    const bool givesUp = changed_ && writer_->isTouched();
    writer_->discard();
    leave();
    if (givesUp)
        keep->tidy();
}

} // namespace core
