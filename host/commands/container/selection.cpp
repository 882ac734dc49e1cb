// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/terminal_text.h"

#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>
#include <core/storage/open_container.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <utility>

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

Selection select(const StorageRW& storage, const Options& options, Console& console) {
    Selection selection;
    for (const std::string& text : options.names) {
        const wstring name = from_utf8(text);
        auto found = storage.find(name);
        if (storage.contains(name)) // a name that looks like a pattern means itself
            std::erase_if(found, [&](const StorageFound& file) { return file.name != name; });
        if (found.empty()) {
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

} // namespace host::container
