// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_file.h"
#include "core/storage/engine.h"

#include <core/files/errors.h>
#include <core/files/url.h>
#include <core/storage/errors.h>
#include <core/storage/file_with_buffer.h>

#include <cerrno>
#include <mutex>
#include <utility>

namespace core {

namespace {

std::shared_ptr<StorageEngine> open_engine(const InterfacePtr<IFile>& file, const StorageLayout& layout,
                                           const StorageOptions& options, const wstring& url) {
    try {
        return std::make_shared<StorageEngine>(file, layout, options, url);
    } catch (const StorageException& e) {
        // Only for the message: which layout a file has is for the caller to say.
        const bool wide = layout.width == kStorageLayout64.width;
        const StorageLayout& other = wide ? kStorageLayout32 : kStorageLayout64;
        if (e.kind() != StorageException::Kind::badFormat || !begins_as_container(*file, other))
            throw;
        const wstring& named = url.empty() ? file->url() : url;
        const wstring shown = shown_url(named);
        const wstring bits = wide ? u"32" : u"64";
        throw_with_message(StorageException(e.kind(), named,
                                            message_text(messages::kStorageOtherLayout,
                                                         {shown, bits, wstring(other.scheme)})),
                           messages::kStorageOtherLayout, {shown, bits, wstring(other.scheme)});
    }
}

} // namespace

StorageRW::StorageRW(const InterfacePtr<IFile>& file, const StorageLayout& layout,
                     const StorageOptions& options, const wstring& url)
    : engine_(open_engine(file, layout, options, url)) {}

void StorageRW::create(IFile& file, const StorageLayout& layout) {
    if (!createIfEmpty(file, layout))
        throw_file_error(messages::kFileOpen, file.url(), EEXIST);
}
bool StorageRW::createIfEmpty(IFile& file, const StorageLayout& layout) {
    return StorageEngine::create(file, layout, false);
}
void StorageRW::replace(IFile& file, const StorageLayout& layout) {
    (void)StorageEngine::create(file, layout, true);
}

const StorageLayout& StorageRW::layout() const noexcept {
    return engine_->layout();
}
const wstring& StorageRW::url() const noexcept {
    return engine_->url();
}
const wstring& StorageRW::rootURL() const noexcept {
    return engine_->root();
}
void StorageRW::setRootURL(wstring root) {
    engine_->setRoot(std::move(root));
}
std::uint64_t StorageRW::changeCounter() const {
    return engine_->changeCounter();
}
CompactReport StorageRW::compact(const CompactOptions& options) {
    return engine_->compact(options);
}
StorageCheck StorageRW::check() const {
    return engine_->check();
}
StorageInfo StorageRW::info() const {
    return engine_->info();
}
bool StorageRW::isIn(IFile& file) const {
    return engine_->isIn(file);
}
bool StorageRW::isSame(const StorageRW& other) const {
    return engine_->isIn(other.engine_->file());
}

void StorageRW::begin() {
    engine_->begin();
}
bool StorageRW::inTransaction() const {
    return engine_->inTransaction();
}
void StorageRW::commit() {
    engine_->commit();
}
void StorageRW::rollback() {
    engine_->rollback();
}

bool StorageRW::contains(wstring_view name) const {
    return engine_->contains(name);
}
std::vector<StorageFound> StorageRW::find(wstring_view pattern) const {
    return engine_->find(pattern);
}
std::vector<StorageFound> StorageRW::find(wstring_view pattern, std::vector<StorageProblem>& problems) const {
    return engine_->find(pattern, [&](std::uint64_t address) {
        problems.push_back({.kind = StorageProblem::Kind::damagedTable, .address = address});
    });
}
std::vector<wstring> StorageRW::names(wstring_view pattern) const {
    return engine_->names(pattern);
}
std::uint64_t StorageRW::count() const {
    return engine_->count();
}
StorageFound StorageRW::describe(wstring_view name) const {
    return engine_->describe(name);
}
InterfacePtr<IFile> StorageRW::open(wstring_view name, OpenMode mode) {
    return mode == OpenMode::read ? make_object<FileWithBuffer>(*this, name)
                                  : InterfacePtr<IFile>(make_object<FileWithBuffer2>(*this, name, mode));
}
std::vector<std::byte> StorageRW::get(wstring_view name) const {
    return engine_->get(name);
}
void StorageRW::put(wstring_view name, std::span<const std::byte> content) {
    engine_->put(name, content);
}
void StorageRW::remove(wstring_view name) {
    engine_->remove(name);
}
std::size_t StorageRW::removeAll(wstring_view pattern) {
    return engine_->removeAll(pattern);
}
void StorageRW::rename(wstring_view from, wstring_view to) {
    engine_->rename(from, to);
}
void StorageRW::copy(wstring_view from, wstring_view to) {
    engine_->copy(from, to);
}
void StorageRW::moveFrom(StorageRW& source, wstring_view from, wstring_view to) {
    if (isSame(source))
        return source.rename(from, to);
    engine_->requireNoTransaction();
    // It is copied while others use both containers. Where it changes meanwhile, it is copied again, and
    // nobody gets in between.
    if (!engine_->moveFrom(*source.engine_, from, to, false))
        (void)engine_->moveFrom(*source.engine_, from, to, true);
}
void StorageRW::setTimes(wstring_view name, Date created, Date modified) {
    engine_->setTimes(name, created, modified);
}

StorageRW64::StorageRW64(const InterfacePtr<IFile>& file, const StorageOptions& options, const wstring& url)
    : StorageRW(file, kStorageLayout64, options, url) {}

void StorageRW64::create(IFile& file) {
    StorageRW::create(file, kStorageLayout64);
}
bool StorageRW64::createIfEmpty(IFile& file) {
    return StorageRW::createIfEmpty(file, kStorageLayout64);
}
void StorageRW64::replace(IFile& file) {
    StorageRW::replace(file, kStorageLayout64);
}

StorageReading::StorageReading(const StorageRW& storage) : engine_(storage.engine_) {
    engine_->beginReading();
}
StorageReading::~StorageReading() {
    engine_->endReading();
}

} // namespace core
