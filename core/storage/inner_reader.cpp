// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_reader.h"

#include "core/storage/bad_place.h"

#include <core/files/errors.h>
#include <core/runtime/threads/thread.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace core {
namespace {

// Memory grows with what is read: the size that a chain claims is not believed beforehand.
constexpr std::uint64_t kBelieved = std::uint64_t{64} << 20;
constexpr std::size_t kBatch = std::size_t{1} << 20;

} // namespace

InnerReader::InnerReader(std::shared_ptr<StorageEngine> engine, wstring_view name)
    : InnerFile(std::move(engine), name), reader_(this->engine().newReader()),
      chain_(this->engine().layout()) {
    StorageEngine& in = this->engine();
    const StorageEngine::Reading reading(in);
    reader_.setEnd(in.reader().end());
    entry_ = in.existing(name);
    const auto begin = [&] {
        if (entry_.isTogether() && entry_.data != in.layout().null)
            chain_.adoptTogether(reader_, entry_.data, entry_.size);
        else
            chain_.open(reader_, entry_.data, 0);
        keep(in.spaceOf(chain_, reader_));
    };
    in.checked(name, [&] { at_place(entry_.data, begin); });
    keepsAll_ = !chain_.isWalked();
    setUncommitted(in.isUncommitted(name));
    in.enlist(*this);
}

InnerReader::~InnerReader() {
    leave();
}

void InnerReader::fetch(std::uint64_t offset, std::span<std::byte> out) {
    requireNotLost();
    const auto read = [&] { chain_.readAt(reader_, offset, out); };
    engine().checked(name(), [&] { at_place(entry_.data, read); });
    if (entry_.isKnown && offset == summed_) { // read in order so far
        sum_.add(out);
        summed_ += out.size();
        if (summed_ == size() && sum_.value() != entry_.contentSum)
            engine().throwDamaged(name());
    }
    if (keepsAll_ && chain_.isWalked()) {
        keep(engine().spaceOf(chain_.runs()));
        keepsAll_ = false;
    }
}

std::vector<std::byte> InnerReader::content() {
    std::vector<std::byte> bytes;
    const std::uint64_t length = chain_.size();
    bytes.reserve(static_cast<std::size_t>(std::min(length, kBelieved)));
    while (bytes.size() < length) {
        Thread::check();
        const std::size_t done = bytes.size();
        bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(length, done + kBatch)));
        (void)readAt(done, std::span(bytes).subspan(done));
    }
    if (!entry_.isIntact(bytes))
        engine().throwDamaged(name());
    return bytes;
}

void InnerReader::writeAt(std::uint64_t, std::span<const std::byte>) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}

void InnerReader::truncate(std::uint64_t) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}

} // namespace core
