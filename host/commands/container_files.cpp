// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container.h"
#include "host/containers/container_store.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal_text.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_system.h>
#include <core/files/file_time.h>
#include <core/runtime/errors.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iomanip>
#include <map>
#include <optional>
#include <ostream>
#include <span>
#include <utility>

namespace host::container {

using namespace core;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = std::size_t{1} << 20;

/// Copies with progress; returns nothing before everything is there.
void copy(IFile& from, IFile& to, Progress& progress) {
    std::vector<std::byte> piece(kPiece);
    while (const std::size_t part = from.read(piece.data(), piece.size())) {
        write_all(to, std::span(piece).first(part));
        progress.add(part);
    }
}

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

/// Where an inner file goes on disk; none for a name that leads out of the folder.
std::optional<std::string> target_of(const Options& options, wstring_view name) {
    const fs::path relative = fs::path(to_utf8(name)).lexically_normal();
    const bool leadsOut = relative.empty() || relative.is_absolute() || *relative.begin() == ".." ||
                          !relative.has_filename() || relative == ".";
    if (leadsOut || name.find(u'\0') != wstring_view::npos)
        return std::nullopt;
    return (fs::path(options.folder) / relative).string();
}

Date modified_on_disk(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return universal_now();
    return unix_date(status.st_mtime);
}

void set_modified_on_disk(const std::string& path, Date modified) {
    if (modified == Date()) // it is not known
        return;
    const std::int64_t seconds = (modified - kUnixEpoch).ticks() / kTicksPerSecond;
    const ::timespec times[2] = {{0, UTIME_OMIT}, {static_cast<::time_t>(seconds), 0}};
    (void)::utimensat(AT_FDCWD, path.c_str(), times, 0); // a file system without times does not matter
}

/// Writes an inner file to disk. A file there is replaced by the whole content or stays as it is, devices are
/// written to.
void take_out(const StorageRW& storage, IFile& from, const std::string& path, Progress& progress) {
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored)) {
        if (storage.isIn(*open_disk_file(path, OpenMode::read)))
            throw StorageException(StorageException::Kind::isDestination, file_url(path));
        get_service<IFileSystem>()->writeFile(file_url(path), [&](IFile& to) { copy(from, to, progress); });
        return;
    }
    const bool isNew = !fs::exists(fs::symlink_status(path, ignored));
    const auto to = open_disk_file(path, isNew ? OpenMode::createNew : OpenMode::replace);
    try {
        copy(from, *to, progress);
        to->close();
    } catch (...) {
        if (isNew)
            fs::remove(path, ignored);
        throw;
    }
}

} // namespace

ExitCode create(const Options& options) {
    (void)open_container(options.file, options.wide, OpenMode::createNew);
    return ExitCode::done;
}

ExitCode list(const Options& options, Console& console) {
    const StorageRW storage = open_container(options.file, options.wide, OpenMode::read);
    const std::vector<StorageFound> files =
        options.names.empty() ? storage.find() : select(storage, options, console).files;
    if (console.json) {
        auto all = nlohmann::ordered_json::array();
        for (const StorageFound& file : files) {
            all.push_back({{"name", to_utf8(file.name)},
                           {"size", file.size},
                           {"created", to_utf8(file.created.toXMLString())},
                           {"modified", to_utf8(file.modified.toXMLString())}});
        }
        console.out << all.dump(2) << '\n';
    } else {
        for (const StorageFound& file : files) {
            std::string time = to_utf8(file.modified.toLocalTime().toXMLString()).substr(0, 16);
            std::replace(time.begin(), time.end(), 'T', ' ');
            console.out << std::setw(12) << file.size << "  " << time << "  " << terminal_text(file.name)
                        << '\n';
        }
    }
    return options.names.empty() || !files.empty() ? ExitCode::done : ExitCode::no;
}

ExitCode put(const Options& options, Console& console) {
    const std::vector<Source> all = sources(options);
    std::uint64_t total = 0;
    for (const Source& source : all)
        total += source.size;
    StorageRW storage = open_container(options.file, options.wide, OpenMode::create);
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

ExitCode get(const Options& options, Console& console) {
    StorageRW storage = open_container(options.file, options.wide, OpenMode::read);
    const Selection selection = select(storage, options, console);
    std::uint64_t total = 0;
    for (const StorageFound& file : selection.files)
        total += file.size;
    Progress progress(console, "get", total);
    ExitCode code = selection.missing == 0 ? ExitCode::done : ExitCode::no;
    for (const StorageFound& file : selection.files) {
        const auto path = target_of(options, file.name);
        if (!path) {
            code = fail(console, message_text("IDS_HOST_NAME_LEADS_OUT", {file.name}), ExitCode::no);
            continue;
        }
        std::error_code error;
        fs::create_directories(fs::path(*path).parent_path(), error); // opening says what is wrong
        const auto from = storage.open(file.name, OpenMode::read);
        take_out(storage, *from, *path, progress);
        set_modified_on_disk(*path, file.modified);
    }
    return code;
}

ExitCode cat(const Options& options, Console& console) {
    StorageRW storage = open_container(options.file, options.wide, OpenMode::read);
    const Selection selection = select(storage, options, console);
    for (const StorageFound& file : selection.files) {
        const auto from = storage.open(file.name, OpenMode::read);
        std::vector<char> piece(kPiece);
        while (const std::size_t part = from->read(piece.data(), piece.size()))
            console.out.write(piece.data(), static_cast<std::streamsize>(part));
    }
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

ExitCode remove(const Options& options, Console& console) {
    StorageRW storage = open_container(options.file, options.wide, OpenMode::readWrite);
    const Selection selection = select(storage, options, console);
    StorageTransaction transaction(storage);
    for (const StorageFound& file : selection.files)
        storage.remove(file.name);
    transaction.commit();
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

ExitCode move(const Options& options) {
    StorageRW storage = open_container(options.file, options.wide, OpenMode::readWrite);
    storage.rename(from_utf8(options.names.at(0)), from_utf8(options.names.at(1)));
    return ExitCode::done;
}

} // namespace host::container
