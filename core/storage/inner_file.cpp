// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_file.h"

#include "core/storage/storage_error.h"

#include <core/files/errors.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace core {
namespace {

constexpr std::size_t kLeastReadAhead = std::size_t{4} << 10;

} // namespace

InnerFile::InnerFile(std::shared_ptr<StorageEngine> engine, wstring_view name)
    : engine_(std::move(engine)), name_(name), url_(engine_->urlOf(name)) {}

StorageEngine& InnerFile::engine() const {
    if (engine_ == nullptr)
        throw_file_error(messages::kFileRead, url_, EBADF);
    return *engine_;
}

void InnerFile::requireNotLost() const {
    if (lost_)
        throw_storage_error(messages::kStorageLost, url_);
}

std::uint64_t InnerFile::length() {
    const std::lock_guard lock(engine().mutex());
    return size();
}

std::size_t InnerFile::readAt(std::uint64_t offset, std::span<std::byte> to) {
    const std::lock_guard lock(engine().mutex());
    if (offset >= size())
        return 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), size() - offset));
    std::size_t done = 0;
    while (done < count) {
        const std::uint64_t at = offset + done;
        const std::size_t left = count - done;
        if (at >= bufferStart_ && at - bufferStart_ < bufferLength_) {
            const auto skip = static_cast<std::size_t>(at - bufferStart_);
            const std::size_t part = std::min(left, bufferLength_ - skip);
            std::memcpy(to.data() + done, buffer_.data() + skip, part);
            done += part;
        } else if (left >= kBuffer) {
            fetch(at, to.subspan(done, left));
            done = count;
        } else {
            const bool inOrder = at == bufferStart_ + bufferLength_;
            ahead_ = inOrder ? std::min(2 * ahead_, kBuffer) : kLeastReadAhead;
            const auto length =
                static_cast<std::size_t>(std::min<std::uint64_t>(std::max(left, ahead_), size() - at));
            bufferLength_ = 0;
            buffer_.resize(std::max(buffer_.size(), length));
            fetch(at, std::span(buffer_).first(length));
            bufferStart_ = at;
            bufferLength_ = length;
        }
    }
    return done;
}

void InnerFile::keep(SpaceLocks::Ranges space) {
    engine().pin(space); // first, so that no moment lies in between
    engine().unpin(std::exchange(kept_, std::move(space)));
}

void InnerFile::leave() noexcept {
    if (const auto engine = std::exchange(engine_, nullptr)) {
        const std::lock_guard lock(engine->mutex());
        engine->dismiss(*this);
        engine->unpin(std::exchange(kept_, {}));
    }
}

} // namespace core
