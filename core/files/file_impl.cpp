// SPDX-License-Identifier: Apache-2.0
#include <core/files/errors.h>
#include <core/files/file.h>
#include <core/files/file_impl.h>

#include <cerrno>
#include <utility>

namespace core {

FileImpl::FileImpl(wstring url) : url_(std::move(url)) {}
FileImpl::~FileImpl() = default;

std::size_t FileImpl::read(void* buffer, std::size_t count) {
    const std::size_t done = readAt(position_, buffer, count);
    position_ += done;
    return done;
}

std::size_t FileImpl::write(const void* buffer, std::size_t count) {
    const std::size_t done = writeAt(position_, buffer, count);
    position_ += done;
    return done;
}

std::uint64_t FileImpl::seek(std::int64_t offset, SeekOrigin origin) {
    std::uint64_t base = 0;
    if (origin == SeekOrigin::current)
        base = position_;
    else if (origin == SeekOrigin::end)
        base = length();
    else if (origin != SeekOrigin::begin)
        throw_file_error(messages::kFileSeek, url_, EINVAL);
    const std::uint64_t target = base + static_cast<std::uint64_t>(offset);
    const bool before = offset < 0 && target > base;
    if (before || target > kMaxFileLength)
        throw_file_error(messages::kFileSeek, url_, EINVAL);
    return position_ = target;
}

} // namespace core
