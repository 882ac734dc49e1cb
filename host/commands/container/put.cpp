// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_time.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <utility>
#include <vector>

namespace host::container {

using namespace core;

namespace {

namespace fs = std::filesystem;

/// A file on disk and the name that it gets inside.
struct Source {
    std::string path;
    wstring name;
    std::uint64_t size;
};

[[noreturn]] void throw_not_read(const std::string& path, const std::error_code& error) {
    throw_file_error(messages::kFileRead, file_url(path), error.value());
}

/// The name of an inner file for what is on disk; one that would not come out again as it was is refused.
wstring inner_name(const std::string& path, const std::string& name) {
    wstring text = from_utf8(name);
    if (to_utf8(text) != name)
        throw_error<ConverterException>("IDS_HOST_NAME_NOT_UTF8", {file_url(path)});
    return text;
}

/// Refuses files of which the later would replace the earlier.
void refuse_same_names(const std::vector<Source>& all) {
    std::map<wstring_view, const Source*> byName;
    for (const Source& source : all) {
        const auto [other, isNew] = byName.emplace(source.name, &source);
        if (!isNew)
            throw_error<ConverterException>(
                "IDS_HOST_NAME_TWICE", {from_utf8(other->second->path), from_utf8(source.path), source.name});
    }
}

std::vector<Source> sources(const Options& options) {
    std::vector<Source> all;
    const std::string into =
        options.folder.empty() || options.folder.ends_with('/') ? options.folder : options.folder + "/";
    const auto add = [&](const fs::path& path, const std::string& name) {
        std::error_code error;
        const std::uint64_t size = fs::file_size(path, error);
        if (error)
            throw_not_read(path.string(), error);
        all.push_back({path.string(), inner_name(path.string(), into + name), size});
    };
    for (const std::string& text : options.names) {
        // "docs", "docs/" and "../docs" all give names that begin with "docs/".
        const fs::path path = fs::path(text).lexically_normal();
        const fs::path base = path.has_filename() ? path : path.parent_path();
        std::error_code error;
        if (!fs::is_directory(base, error)) {
            add(base, base.filename().string());
            continue;
        }
        fs::recursive_directory_iterator entry(base, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            std::error_code ignored; // what cannot be looked at is not put in
            if (entry->is_regular_file(ignored))
                add(entry->path(), (base.filename() / entry->path().lexically_relative(base)).string());
        }
        if (error)
            throw_not_read(text, error);
    }
    refuse_same_names(all);
    return all;
}

Date modified_on_disk(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return universal_now();
    return unix_date(status.st_mtime);
}

} // namespace

ExitCode put(const Options& options, Console& console) {
    const std::vector<Source> all = sources(options);
    std::uint64_t total = 0;
    for (const Source& source : all)
        total += source.size;
    StorageRW storage = open(options, OpenMode::create);
    Progress progress(console, "put", total);
    StorageTransaction transaction(storage);
    for (const Source& source : all) {
        const auto from = open_disk_file(source.path, OpenMode::read);
        if (storage.isIn(*from)) // it would grow as it is read
            throw StorageException(StorageException::Kind::isDestination, from->url());
        const auto to = storage.open(source.name, OpenMode::replace);
        copy(*from, *to, progress);
        to->close();
        const Date modified = modified_on_disk(source.path);
        storage.setTimes(source.name, modified, modified);
    }
    transaction.commit();
    return ExitCode::done;
}

} // namespace host::container
