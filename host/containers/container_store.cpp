// SPDX-License-Identifier: Apache-2.0
#include "host/containers/container_store.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/utf8.h>
#include <core/strings/compare.h>

namespace host {

using namespace core;

StorageRW open_container(const std::string& file, bool wide, OpenMode mode) {
    URL url = split_url(from_utf8(file));
    const auto isOf = [&url](const StorageLayout& layout) {
        return compare_nocase(url.scheme, layout.scheme) == 0;
    };
    const bool byScheme = isOf(kStorageLayout32) || isOf(kStorageLayout64);
    StorageOptions how{.readOnly = mode == OpenMode::read, .noSortedCheck = false};
    if (byScheme) {
        split_options(url);
        how.noSortedCheck = url.hasOption(u"NoSortedCheck");
    }
    const StorageLayout& layout =
        (byScheme ? isOf(kStorageLayout64) : wide) ? kStorageLayout64 : kStorageLayout32;
    auto disk = open_disk_file(byScheme ? file_path(url.path) : file, mode);
    if (mode == OpenMode::createNew || mode == OpenMode::create)
        StorageRW::createIfEmpty(*disk, layout);
    const wstring shown = from_utf8(file);
    StorageRW storage(std::move(disk), layout, how, shown);
    storage.setRootURL(shown + u"/"); // so that messages about inner files say where they are
    return storage;
}

} // namespace host
