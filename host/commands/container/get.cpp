// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"
#include "host/terminal/disk_entry.h"
#include "host/terminal/text_columns.h"

#include <core/files/disk_file.h>
#include <core/files/errors.h>
#include <core/files/file_system.h>
#include <core/files/file_time.h>
#include <core/files/url.h>
#include <core/runtime/errors.h>
#include <core/runtime/process.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <core/strings/letter_case.h>
#include <core/strings/trim.h>

#include <filesystem>
#include <istream>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>

namespace host::container {

using namespace core;

namespace {

namespace fs = std::filesystem;

/// Where an inner file goes on disk; none for a name that leads out of the folder.
std::optional<std::string> target_of(const Options& options, wstring_view name) {
    const fs::path relative = native_path(to_utf8(name)).lexically_normal();
    const bool leadsOut = relative.empty() || relative.has_root_path() || *relative.begin() == ".." ||
                          !relative.has_filename() || relative == ".";
    if (leadsOut || name.find(u'\0') != wstring_view::npos)
        return std::nullopt;
    return path_text(native_path(options.folder) / relative);
}

void set_modified_on_disk(const std::string& path, Date modified) {
    if (modified == Date()) // it is not known
        return;
    const std::int64_t seconds = (modified - kUnixEpoch).ticks() / kTicksPerSecond;
    try {
        require_service<IFileSystem>().setAttributes(file_url(path), {.modified = unix_date(seconds)});
    } catch (const FileException&) { // a file system without times does not matter
    }
}

/// The user's answer, where there is a user.
bool may_replace(const std::string& path, Console& console) {
    if (!console.terminal) {
        fail(console, message_text("IDS_HOST_FILE_EXISTS", {from_utf8(path)}), ExitCode::no);
        return false;
    }
    console.out << message("IDS_HOST_REPLACE_FILE", {from_utf8(path)}) << ' ' << std::flush;
    std::string line;
    std::getline(console.in, line);
    const wstring answer = to_lower(trim_all(from_utf8(line)));
    return answer.starts_with(u'y') || answer.starts_with(u'д');
}

/// The files of this call, so that none of them takes the place of another, by whatever name.
class Written {
  public:
    /// Whether the path is, or leads to, a file that was written before.
    [[nodiscard]] bool has(const std::string& path) const {
        const auto entry = disk_entry(path);
        return paths_.contains(path) || (entry && files_.contains(entry->id));
    }
    void add(const std::string& path) {
        const auto entry = disk_entry(path);
        if (entry && entry->isFile)
            files_.insert(entry->id);
        if (!entry || !entry->keepsNothing)
            paths_.insert(path);
    }

  private:
    std::set<std::string> paths_;
    std::set<std::pair<std::uint64_t, std::uint64_t>> files_;
};

/// Writes an inner file to disk. A file there is replaced by the whole content or stays as it is, devices are
/// written to.
void take_out(const StorageRW& storage, IFile& from, const std::string& path, Progress& progress,
              const Interrupts& interrupts) {
    std::error_code ignored;
    if (fs::is_regular_file(native_path(path), ignored)) {
        if (storage.isIn(*open_disk_file(path, OpenMode::read)))
            throw StorageException(StorageException::Kind::isDestination, file_url(path));
        require_service<IFileSystem>().writeFile(file_url(path),
                                                 [&](IFile& to) { copy(from, to, progress, interrupts); });
        return;
    }
    const bool isNew = !fs::exists(fs::symlink_status(native_path(path), ignored));
    const auto to = open_disk_file(path, isNew ? OpenMode::createNew : OpenMode::replace);
    try {
        copy(from, *to, progress, interrupts);
        to->close();
    } catch (...) {
        if (isNew)
            fs::remove(native_path(path), ignored);
        throw;
    }
}

} // namespace

ExitCode get(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select(storage, options, console);
    std::uint64_t total = 0;
    for (const StorageFound& file : selection.files)
        total += file.size;
    Progress progress(console, "get", total);
    const Interrupts interrupts;
    Written written;
    ExitCode code = selection.missing == 0 ? ExitCode::done : ExitCode::no;
    for (const StorageFound& file : selection.files) {
        const auto path = target_of(options, file.name);
        if (!path) {
            code = fail(console, message_text("IDS_HOST_NAME_LEADS_OUT", {file.name}), ExitCode::no);
            continue;
        }
        if (written.has(*path)) {
            code = fail(console, message_text("IDS_HOST_NAME_TAKEN", {file.name, from_utf8(*path)}),
                        ExitCode::no);
            continue;
        }
        std::error_code error;
        if (!options.force && fs::is_regular_file(native_path(*path), error) &&
            !may_replace(*path, console)) {
            code = ExitCode::no;
            continue;
        }
        fs::create_directories(native_path(*path).parent_path(), error); // opening says what is wrong
        try {
            const auto from = storage.open(file.name, OpenMode::read);
            take_out(storage, *from, *path, progress, interrupts);
        } catch (const StorageException& e) {
            if (e.kind() != StorageException::Kind::badFormat)
                throw;
            code =
                fail(console, message_text("IDS_HOST_INNER_FILE_LEFT", {shown_url(e.url())}), ExitCode::no);
            continue; // the others may be sound
        }
        written.add(*path);
        set_modified_on_disk(*path, file.modified);
    }
    return code;
}

} // namespace host::container
