// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_reader.h"

#include <core/files/errors.h>

#include <cerrno>
#include <utility>

namespace core {

InnerReader::InnerReader(std::shared_ptr<StorageEngine> engine, wstring_view name)
    : InnerFile(std::move(engine), name), chain_(this->engine().layout()) {
    StorageEngine& in = this->engine();
    const StorageEngine::Reading reading(in);
    const StorageEngine::Found found = in.lookUp(name);
    in.checked([&] { chain_.open(in.reader(), found.entry.data, 0); });
    version_ = found.info.attribute;
    state_ = in.state();
    in.enlist(*this);
}

InnerReader::~InnerReader() {
    leave();
}

void InnerReader::fetch(std::uint64_t offset, std::span<std::byte> out) {
    StorageEngine& in = engine();
    const StorageEngine::Reading reading(in);
    revalidate();
    in.checked([&] { chain_.readAt(in.reader(), offset, out); });
}

/// The container may have changed since the last look: the file must still have the same content, though it
/// may have moved.
void InnerReader::revalidate() {
    requireNotLost();
    StorageEngine& in = engine();
    if (state_ == in.state())
        return;
    const StorageEngine::Found found = in.lookUp(name());
    const std::uint64_t size = chain_.size();
    if (found.info.attribute != version_)
        lose();
    requireNotLost();
    in.checked([&] { chain_.open(in.reader(), found.entry.data, 0); });
    if (chain_.size() != size)
        in.throwBadFormat();
    state_ = in.state();
}

void InnerReader::writeAt(std::uint64_t, std::span<const std::byte>) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}

void InnerReader::truncate(std::uint64_t) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}

} // namespace core
