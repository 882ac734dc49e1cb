// SPDX-License-Identifier: Apache-2.0
#include "core/files/disk_node.h"
#include "core/storage/container_file.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/files/url.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/storage/open_container.h>
#include <core/strings/compare.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <string_view>
#include <utility>

namespace core {
namespace {

bool is_on_disk(const wstring& url) {
    return compare_nocase(split_url(url).scheme, u"file") == 0;
}

InterfacePtr<IFile> open_file(const wstring& url, OpenMode mode) {
    if (is_on_disk(url))
        return open_disk_file(file_path(url), mode);
    if (auto* const system = get_service<IFileSystem>())
        return system->openURL(url, mode);
    throw_file_error(messages::kFileScheme, url, ENOTSUP);
}

/// Makes a file and returns it; null when the file exists already.
InterfacePtr<IFile> make_file(const wstring& url) {
    try {
        return open_file(url, OpenMode::createNew);
    } catch (const FileException& e) {
        if (e.systemError() != EEXIST)
            throw;
        return nullptr;
    }
}

const StorageLayout* layout_of_scheme(wstring_view scheme) {
    for (const StorageLayout* const layout : {&kStorageLayout32, &kStorageLayout64}) {
        if (compare_nocase(scheme, layout->scheme) == 0)
            return layout;
    }
    return nullptr;
}

} // namespace

InterfacePtr<IFile> open_container_file(const wstring& url, OpenMode mode, const StorageLayout& layout) {
    if (mode == OpenMode::read || mode == OpenMode::readWrite)
        return open_file(url, mode);
    if (auto file = mode == OpenMode::createNew ? open_file(url, mode) : make_file(url)) {
        try {
            StorageRW::createIfEmpty(*file, layout);
        } catch (...) {
            if (is_on_disk(url)) // where space can be short
                remove_one_file(file_path(url));
            throw;
        }
        return file;
    }
    auto file = open_file(url, OpenMode::create);
    if (mode == OpenMode::replace) // emptied in its turn, and not as it is opened
        StorageRW::replace(*file, layout);
    else
        StorageRW::createIfEmpty(*file, layout);
    return file;
}

bool begins_as_container(IFile& file, const StorageLayout& layout) {
    // The number of the table's layout stands behind these words.
    constexpr std::string_view kWords = "table of inner files, layout ";
    std::array<std::byte, kWords.size()> found{};
    const std::uint64_t offset = layout.headerSize() + layout.blockHeaderSize();
    return read_all_at(file, offset, found) == found.size() &&
           std::equal(found.begin(), found.end(), std::as_bytes(std::span(kWords)).begin());
}

StorageRW open_container(const std::string& file, OpenMode mode, const StorageLayout& layout,
                         const FileWrapper& wrap) {
    const wstring shown = from_utf8(file);
    URL url = split_url(shown);
    StorageOptions options{.readOnly = mode == OpenMode::read};
    const StorageLayout* const named = layout_of_scheme(url.scheme);
    if (named != nullptr) {
        split_options(url);
        options.noSortedCheck = url.hasOption(u"NoSortedCheck");
    } else {
        url.path = file_url(file); // whatever bytes it has
    }
    const StorageLayout& used = named != nullptr ? *named : layout;
    InterfacePtr<IFile> opened = open_container_file(url.path, mode, used);
    StorageRW storage(wrap ? wrap(std::move(opened)) : std::move(opened), used, options, shown);
    storage.setRootURL(shown + u"/");
    return storage;
}

} // namespace core
