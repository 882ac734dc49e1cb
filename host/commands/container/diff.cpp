// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/commands/container/copy.h"
#include "host/terminal/terminal_text.h"

#include <core/files/file_io.h>
#include <core/runtime/utf8.h>
#include <core/storage/errors.h>
#include <core/storage/files_type.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <span>
#include <vector>

namespace host::container {

using namespace core;

namespace {

/// The same content of two files that are equally long. Throws StorageException when one of them is damaged.
bool same_content(StorageRW& one, StorageRW& other, wstring_view name, Progress& progress) {
    const auto first = one.open(name, OpenMode::read);
    const auto second = other.open(name, OpenMode::read);
    std::vector<std::byte> piece(kPiece);
    std::vector<std::byte> same(kPiece);
    for (std::uint64_t offset = 0;; offset += piece.size()) {
        const std::size_t count = read_all_at(*first, offset, piece);
        if (count != read_all_at(*second, offset, same) || std::memcmp(piece.data(), same.data(), count) != 0)
            return false;
        progress.add(count);
        if (count < piece.size())
            return true;
    }
}

enum class Outcome { same, changed, damaged };

Outcome compare(StorageRW& one, StorageRW& other, const StorageFound& old, const StorageFound& now,
                Progress& progress) {
    if (old.damaged || now.damaged)
        return Outcome::damaged;
    try {
        const bool same = old.size == now.size && same_content(one, other, old.name, progress);
        return same ? Outcome::same : Outcome::changed;
    } catch (const StorageException& e) {
        if (e.kind() != StorageException::Kind::badFormat)
            throw;
        return Outcome::damaged;
    }
}

/// The files that the command line asks about; all of them where it names none.
std::vector<StorageFound> files_of(const StorageRW& storage, const Options& options) {
    if (options.names.empty())
        return storage.find();
    std::vector<StorageFound> files;
    for (const std::string& pattern : options.names) {
        for (StorageFound& file : storage.find(from_utf8(pattern)))
            files.push_back(std::move(file));
    }
    const auto less = [](const auto& a, const auto& b) { return compare_file_names(a.name, b.name) < 0; };
    const auto same = [](const auto& a, const auto& b) { return a.name == b.name; };
    std::sort(files.begin(), files.end(), less);
    files.erase(std::unique(files.begin(), files.end(), same), files.end());
    return files;
}

} // namespace

ExitCode diff(const Options& options, Console& console) {
    StorageRW one = open(options, OpenMode::read);
    StorageRW other = open(options, options.other, OpenMode::read);
    const std::vector<StorageFound> before = files_of(one, options);
    const std::vector<StorageFound> after = files_of(other, options);
    std::uint64_t total = 0;
    for (const StorageFound& file : before)
        total += file.size;
    Progress progress(console, "diff", total);
    auto all = nlohmann::ordered_json::array();
    const auto show = [&](char sign, const char* word, const wstring& name) {
        if (console.json)
            all.push_back({{"name", to_utf8(name)}, {"is", word}});
        else
            console.out << sign << ' ' << terminal_text(name) << '\n';
    };
    bool differ = false;
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        const int order = old == before.end()  ? 1
                          : now == after.end() ? -1
                                               : compare_file_names(old->name, now->name);
        if (order < 0) {
            show('-', "removed", old->name);
        } else if (order > 0) {
            show('+', "added", now->name);
        } else {
            switch (compare(one, other, *old, *now, progress)) {
            case Outcome::same:
                ++old, ++now;
                continue;
            case Outcome::changed:
                show('~', "changed", old->name);
                break;
            case Outcome::damaged:
                show('!', "damaged", old->name);
                break;
            }
        }
        differ = true;
        old += order <= 0 ? 1 : 0;
        now += order >= 0 ? 1 : 0;
    }
    if (console.json)
        console.out << all.dump(2) << '\n';
    return differ ? ExitCode::no : ExitCode::done;
}

} // namespace host::container
