// SPDX-License-Identifier: Apache-2.0
#include "core/storage/inner_reader.h"
#include "core/storage/inner_writer.h"

#include <core/storage/file_with_buffer.h>

#include <span>
#include <utility>

namespace core {

FileWithBuffer::FileWithBuffer(std::unique_ptr<InnerFile> file)
    : FileImpl(file->url()), file_(std::move(file)) {}
FileWithBuffer::FileWithBuffer(const StorageRW& storage, wstring_view name)
    : FileWithBuffer(std::make_unique<InnerReader>(storage.engine_, name)) {}
FileWithBuffer::~FileWithBuffer() = default;

FileWithBuffer2::FileWithBuffer2(StorageRW& storage, wstring_view name, OpenMode mode)
    : FileWithBuffer(std::make_unique<InnerWriter>(storage.engine_, name, mode)) {}

const wstring& FileWithBuffer::name() const noexcept {
    return file_->name();
}
std::size_t FileWithBuffer::readAt(std::uint64_t offset, void* buffer, std::size_t count) {
    return file_->readAt(offset, std::span(static_cast<std::byte*>(buffer), count));
}
std::size_t FileWithBuffer::writeAt(std::uint64_t offset, const void* buffer, std::size_t count) {
    file_->writeAt(offset, std::span(static_cast<const std::byte*>(buffer), count));
    return count;
}
std::uint64_t FileWithBuffer::length() {
    return file_->length();
}
void FileWithBuffer::truncate(std::uint64_t length) {
    file_->truncate(length);
}
void FileWithBuffer::flush() {
    file_->flush();
}
void FileWithBuffer::close() {
    file_->close();
}

} // namespace core
