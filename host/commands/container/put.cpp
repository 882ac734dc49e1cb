// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"
#include "host/terminal/byte_input.h"
#include "host/terminal/disk_entry.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/file_time.h>
#include <core/files/url.h>
#include <core/runtime/errors.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/stop_scope.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace host::container {

using namespace core;

namespace {

namespace fs = std::filesystem;

const std::string kStandardInput = "-";

/// A file on disk and the name that it gets inside.
struct Source {
    std::string path;
    wstring name;
    std::uint64_t size;
};

[[noreturn]] void throw_not_read(const std::string& path, const std::error_code& error) {
    throw_file_error(messages::kFileRead, file_url(path), error.default_error_condition().value());
}

/// The name of an inner file for what is on disk; one that would not come out again as it was is refused.
wstring inner_name(const std::string& path, const std::string& name) {
    wstring text = from_utf8(name);
    if (to_utf8(text) != name)
        throw_error<ConverterException>("IDS_HOST_NAME_NOT_UTF8", {shown_url(file_url(path))});
    return text;
}

/// A name below the folder of the command line.
std::string in_folder(const Options& options, const std::string& name) {
    const bool ends = options.folder.empty() || options.folder.ends_with('/');
    return options.folder + (ends ? "" : "/") + name;
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

/// Collects what the command line names.
class Sources {
  public:
    explicit Sources(const Options& options) : options_(options) {
        for (const std::string& text : options.names) {
            // "docs", "docs/" and "../docs" all give names that begin with "docs/".
            const fs::path path = native_path(text).lexically_normal();
            const fs::path base = path.has_filename() ? path : path.parent_path();
            std::error_code error;
            if (fs::is_directory(base, error))
                addFolder(base, text);
            else
                add(base, options.as.empty() ? path_text(base.filename()) : options.as);
        }
        refuse_same_names(all_);
        std::ranges::sort(all_, {}, &Source::name); // folders have any order
    }

    [[nodiscard]] const std::vector<Source>& all() const noexcept { return all_; }

  private:
    void add(const fs::path& path, const std::string& name) {
        std::error_code error;
        const std::uint64_t size = fs::file_size(path, error);
        if (error)
            throw_not_read(path_text(path), error);
        all_.push_back({path_text(path), inner_name(path_text(path), in_folder(options_, name)), size});
    }
    void addFolder(const fs::path& base, const std::string& text) {
        std::error_code error;
        fs::recursive_directory_iterator entry(base, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            std::error_code ignored; // what cannot be looked at is not put in
            if (entry->is_regular_file(ignored))
                add(entry->path(), path_text(base.filename() / entry->path().lexically_relative(base)));
        }
        if (error)
            throw_not_read(text, error);
    }

    const Options& options_;
    std::vector<Source> all_;
};

Date modified_on_disk(const std::string& path) {
    const auto entry = disk_entry(path);
    return entry ? unix_date(entry->modified) : universal_now();
}

/// A file on its way in: written, but not yet to be seen.
struct Incoming {
    const Source* source;
    InterfacePtr<IFile> to;
};

void put_files(const std::vector<Source>& all, StorageRW& storage, const Interrupts& interrupts,
               Console& console) {
    // Large files are written before the group of changes begins, as far as one holds on to them, so that
    // others need not wait for them.
    constexpr std::uint64_t kLarge = std::uint64_t{8} << 20;
    constexpr std::size_t kMostOpen = 64;
    std::uint64_t total = 0;
    for (const Source& source : all)
        total += source.size;
    Progress progress(console, "put", total);
    const auto write = [&](const Source& source) {
        const auto from = open_disk_file(source.path, OpenMode::read);
        if (storage.isIn(*from)) // it would grow as it is read
            throw StorageException(StorageException::Kind::isDestination, from->url());
        auto to = storage.open(source.name, OpenMode::replace);
        copy(*from, *to, progress, interrupts);
        return to;
    };
    const auto publish = [&](const Source& source, IFile& to) {
        to.close();
        const Date modified = modified_on_disk(source.path);
        storage.setTimes(source.name, modified, modified);
    };
    std::vector<Incoming> large;
    for (const Source& source : all) {
        if (source.size >= kLarge && large.size() < kMostOpen)
            large.push_back({&source, write(source)});
    }
    StorageTransaction transaction(storage);
    auto next = large.begin();
    for (const Source& source : all) {
        if (next != large.end() && next->source == &source)
            publish(source, *next++->to);
        else
            publish(source, *write(source));
    }
    transaction.commit();
}

/// What comes in may be long in coming, so nobody waits for it: it is a change of its own.
void put_input(const wstring& name, StorageRW& storage, const Interrupts& interrupts, Console& console) {
    try {
        const StopScope stops(interrupts.token()); // for the wait
        ByteInput input(console, kStandardInput);
        const auto to = storage.open(name, OpenMode::replace);
        std::vector<std::byte> piece(kPiece);
        while (const std::size_t count = input.read(piece)) {
            write_all(*to, std::span(piece).first(count));
            interrupts.check();
        }
        to->close();
    } catch (const ThreadDeath&) {
        throw Interrupted();
    }
}

/// Makes the container; nothing when it is there.
std::optional<StorageRW> made_new(const Options& options) {
    try {
        return open(options, OpenMode::createNew);
    } catch (const FileException& e) {
        if (e.systemError() != EEXIST)
            throw;
    }
    return std::nullopt;
}

/// Removes a container unless somebody has put a file into it.
void remove_empty(const Options& options) noexcept {
    try {
        if (!open(options, OpenMode::read).find(u"*").empty())
            return;
        URL url = split_url(from_utf8(options.file));
        const bool isUrl = options.file.find("://") != std::string::npos;
        split_options(url);
        fs::remove(native_path(isUrl ? file_path(url.path) : options.file));
    } catch (const std::exception&) { // why nothing was put in is what is told
    }
}

/// Calls `work` with the container. Makes the container if there is none. Removes the one that it has made
/// when `work` fails.
template <class Work>
void put_into(const Options& options, Work work) {
    const Interrupts interrupts;
    auto storage = made_new(options);
    const bool isNew = storage.has_value();
    if (!isNew)
        storage = open(options, OpenMode::create);
    try {
        work(*storage, interrupts);
    } catch (...) {
        storage.reset();
        if (isNew)
            remove_empty(options);
        throw;
    }
}

} // namespace

ExitCode put(const Options& options, Console& console) {
    const bool input = std::ranges::count(options.names, kStandardInput) != 0;
    std::error_code ignored;
    const bool oneFile =
        options.names.size() == 1 && !fs::is_directory(native_path(options.names.front()), ignored);
    if (input ? !oneFile || options.as.empty() : !oneFile && !options.as.empty())
        return fail(console, message_text("IDS_HOST_PUT_AS"), ExitCode::usage);
    if (input) {
        const wstring name = inner_name(options.as, in_folder(options, options.as));
        if (options.dryRun)
            tell(console, "IDS_HOST_WOULD_ADD", {name});
        else
            put_into(options, [&](StorageRW& storage, const Interrupts& interrupts) {
                put_input(name, storage, interrupts, console);
            });
        return ExitCode::done;
    }
    const Sources sources(options);
    if (options.dryRun) {
        std::optional<StorageRW> storage; // nothing where none would be made before
        if (fs::exists(native_path(options.file), ignored) || options.file.find("://") != std::string::npos)
            storage = open(options, OpenMode::read);
        for (const Source& source : sources.all()) {
            const bool replaced = storage && storage->contains(source.name);
            tell(console, replaced ? "IDS_HOST_WOULD_REPLACE" : "IDS_HOST_WOULD_ADD", {source.name});
        }
        return ExitCode::done;
    }
    put_into(options, [&](StorageRW& storage, const Interrupts& interrupts) {
        put_files(sources.all(), storage, interrupts, console);
    });
    return ExitCode::done;
}

} // namespace host::container
