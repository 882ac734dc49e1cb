// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/terminal_text.h"

#include <core/files/errors.h>
#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <core/storage/open_container.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <utility>
#include <vector>

namespace host::container {

using namespace core;

StorageRW open(const Options& options, const std::string& file, OpenMode mode) {
    return open_container(file, mode, options.wide ? kStorageLayout64 : kStorageLayout32);
}

StorageRW open(const Options& options, OpenMode mode) {
    return open(options, options.file, mode);
}

void tell(Console& console, const char* id, std::initializer_list<wstring> names) {
    console.out << terminal_text(message_text(id, names)) << '\n';
}

namespace {

/// Whether a file has this very name, as far as the table can be read.
bool is_name(const StorageRW& storage, const wstring& name) {
    try {
        return storage.contains(name);
    } catch (const StorageException& e) {
        if (e.kind() != StorageException::Kind::badFormat)
            throw;
    } catch (const FileException&) { // a place that cannot be read
    }
    return false;
}

/// The files that match a pattern. Each part of the table that is damaged is told on the console, and
/// counted.
std::vector<StorageFound> find(const StorageRW& storage, const wstring& pattern, Console& console,
                               std::size_t& missing) {
    std::vector<StorageProblem> problems;
    auto found = storage.find(pattern, problems);
    for (const StorageProblem& problem : problems)
        fail(console, problem.text(), ExitCode::no);
    missing += problems.size();
    return found;
}

} // namespace

Selection select(const StorageRW& storage, const Options& options, Console& console) {
    Selection selection;
    for (const std::string& text : options.names) {
        const wstring name = from_utf8(text);
        const std::size_t before = selection.missing;
        // A name that looks like a pattern means itself.
        auto found = is_name(storage, name) ? std::vector{storage.describe(name)}
                                            : find(storage, name, console, selection.missing);
        if (found.empty() && selection.missing == before) { // else it may be in the part that is damaged
            fail(console, message_text("IDS_HOST_NO_INNER_FILE", {name}), ExitCode::no);
            ++selection.missing;
        }
        std::move(found.begin(), found.end(), std::back_inserter(selection.files));
    }
    const auto less = [](const auto& a, const auto& b) { return a.name < b.name; };
    const auto same = [](const auto& a, const auto& b) { return a.name == b.name; };
    std::stable_sort(selection.files.begin(), selection.files.end(), less);
    selection.files.erase(std::unique(selection.files.begin(), selection.files.end(), same),
                          selection.files.end());
    return selection;
}

Selection select_or_all(const StorageRW& storage, const Options& options, Console& console) {
    if (!options.names.empty())
        return select(storage, options, console);
    Selection all;
    all.files = find(storage, u"*", console, all.missing);
    return all;
}

} // namespace host::container
