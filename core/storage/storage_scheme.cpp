// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_file.h"

#include <core/files/url.h>
#include <core/runtime/internal_class.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <core/storage/storage_scheme.h>
#include <core/strings/compare.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>

namespace core {
namespace {

constexpr wstring_view kRoot = u"://c:/";

/// Serial numbers of the containers that this process opened in a layout.
std::atomic<unsigned>& serial_of(const StorageLayout& layout) {
    static std::atomic<unsigned> narrow{0};
    static std::atomic<unsigned> wide{0};
    return layout.width == kStorageLayout32.width ? narrow : wide;
}

FileInfo file_info(const StorageRW& storage, const StorageFound& found) {
    return {.url = storage.rootURL() + found.name,
            .name = found.name,
            .length = found.size,
            .created = found.created,
            .modified = found.modified};
}

} // namespace

namespace {

/// An inner file, or a pattern of names, by its URL.
struct Inner {
    StorageRW storage;
    wstring name;
};

/// One container may be open under two roots: a file moved from one to the other would be removed.
void refuse_same(const Inner& from, const Inner& to, const wstring& url) {
    if (from.name == to.name && from.storage.isSame(to.storage))
        throw StorageException(StorageException::Kind::isDestination, url);
}

} // namespace

/// The containers that are open, by root URL.
struct StorageScheme::State {
    explicit State(const StorageLayout& used) : layout(used), name(used.scheme) {}

    [[nodiscard]] wstring enter(const InterfacePtr<IFile>& file, const StorageOptions& options,
                                const wstring& url);
    [[nodiscard]] StorageRW container(const wstring& root);
    [[nodiscard]] Inner resolve(const wstring& url);

    const StorageLayout& layout;
    const wstring name;
    std::mutex mutex; // of the containers
    std::map<wstring, StorageRW> containers;
};

wstring StorageScheme::State::enter(const InterfacePtr<IFile>& file, const StorageOptions& options,
                                    const wstring& url) {
    StorageRW storage(file, layout, options, url);
    // What does not open takes no number.
    const std::string serial = std::to_string(++serial_of(layout));
    wstring root = name + wstring(kRoot) + from_utf8(serial) + u"/";
    storage.setRootURL(root);
    const std::lock_guard lock(mutex);
    containers.emplace(root, std::move(storage));
    return root;
}

StorageRW StorageScheme::State::container(const wstring& root) {
    const std::lock_guard lock(mutex);
    const auto found = containers.find(root);
    if (found == containers.end())
        throw StorageException(StorageException::Kind::fileNotFound, root);
    return found->second;
}

Inner StorageScheme::State::resolve(const wstring& url) {
    const wstring_view prefix = kRoot.substr(3);
    const URL parsed = split_url(url);
    const wstring_view path = parsed.path;
    const auto slash = path.starts_with(prefix) ? path.find(u'/', prefix.size()) : wstring_view::npos;
    if (compare_nocase(parsed.scheme, name) != 0 || slash == wstring_view::npos)
        throw StorageException(StorageException::Kind::fileNotFound, url);
    return {container(name + u"://" + wstring(path.substr(0, slash + 1))), wstring(path.substr(slash + 1))};
}

StorageScheme::StorageScheme(const StorageLayout& layout) : state_(std::make_unique<State>(layout)) {}
StorageScheme::~StorageScheme() = default;

const wstring& StorageScheme::schemeName() const noexcept {
    return state_->name;
}

wstring StorageScheme::openContainer(const wstring& url, OpenMode mode) {
    const URL parsed = parseURL(url);
    const StorageOptions options{.readOnly = mode == OpenMode::read,
                                 .noSortedCheck = parsed.hasOption(u"NoSortedCheck")};
    return state_->enter(open_container_file(parsed.path, mode, state_->layout), options, url);
}

wstring StorageScheme::openContainerIn(IFile* file, const StorageOptions& options) {
    return state_->enter(file, options, file->url());
}

void StorageScheme::closeContainer(const wstring& root) {
    const std::lock_guard lock(state_->mutex);
    if (state_->containers.erase(root) == 0)
        throw StorageException(StorageException::Kind::fileNotFound, root);
}

StorageRW StorageScheme::container(const wstring& root) {
    return state_->container(root);
}

/// Below a root everything is the name of an inner file, which may hold a "?"; elsewhere options follow it.
URL StorageScheme::parseURL(const wstring& url) const {
    URL parsed = split_url(url);
    if (!wstring_view(parsed.path).starts_with(kRoot.substr(3)))
        split_options(parsed);
    return parsed;
}

InterfacePtr<IFile> StorageScheme::openURL(const wstring& url, OpenMode mode) {
    Inner inner = state_->resolve(url);
    return inner.storage.open(inner.name, mode);
}

std::vector<FileInfo> StorageScheme::findFile(const wstring& pattern) {
    const Inner inner = state_->resolve(pattern);
    std::vector<FileInfo> files;
    for (const StorageFound& found : inner.storage.find(inner.name))
        files.push_back(file_info(inner.storage, found));
    return files;
}

std::size_t StorageScheme::remove(const wstring& pattern) {
    Inner inner = state_->resolve(pattern);
    if (has_wildcard(inner.name))
        return inner.storage.removeAll(inner.name);
    inner.storage.remove(inner.name);
    return 1;
}

void StorageScheme::writeFile(const wstring& to, const FileWriter& write) {
    const auto output = openURL(to, OpenMode::replace);
    write(*output);
    output->close();
}

void StorageScheme::saveFile(IFile& content, const wstring& to) {
    if (state_->resolve(to).storage.isIn(content)) // it would grow as it is read
        throw StorageException(StorageException::Kind::isDestination, content.url());
    IFileScheme::saveFile(content, to);
}

void StorageScheme::copyFile(const wstring& from, const wstring& to) {
    Inner source = state_->resolve(from);
    Inner target = state_->resolve(to);
    refuse_same(source, target, from);
    saveFile(*source.storage.open(source.name, OpenMode::read), to);
}

void StorageScheme::moveFile(const wstring& from, const wstring& to) {
    Inner source = state_->resolve(from);
    Inner target = state_->resolve(to);
    target.storage.moveFrom(source.storage, source.name, target.name);
}

FileCapabilities StorageScheme::capabilities() const noexcept {
    return {.times = true};
}

void StorageScheme::setAttributes(const wstring& url, const FileAttributes& attributes) {
    Inner inner = state_->resolve(url);
    const StorageFound found = inner.storage.describe(inner.name);
    if (attributes.permissions)
        IFileScheme::setAttributes(url, attributes); // which refuses them
    if (attributes.modified)
        inner.storage.setTimes(inner.name, found.created, *attributes.modified);
}

namespace {

const FileSchemeEntry narrowEntry([]() -> InterfacePtr<IFileScheme> { return make_object<StorageScheme>(); });
const FileSchemeEntry wideEntry([]() -> InterfacePtr<IFileScheme> { return make_object<StorageScheme64>(); });

} // namespace

} // namespace core
