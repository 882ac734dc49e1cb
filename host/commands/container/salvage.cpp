// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/interrupts.h"
#include "host/terminal/progress.h"
#include "host/terminal/terminal_text.h"
#include "host/terminal/text_columns.h"

#include <core/files/disk_file.h>
#include <core/files/url.h>
#include <core/runtime/exception.h>
#include <core/runtime/utf8.h>
#include <core/storage/salvage.h>
#include <core/strings/compare.h>
#include <core/strings/integer_text.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <utility>

namespace host::container {

using namespace core;

namespace {

/// The path of a container that is given by its path or a URL, which says whether its layout is wide.
std::string disk_path(const std::string& file, bool& wide) {
    const URL url = split_url(from_utf8(file));
    const auto isOf = [&url](const StorageLayout& layout) {
        return compare_nocase(url.scheme, layout.scheme) == 0;
    };
    if (!isOf(kStorageLayout32) && !isOf(kStorageLayout64))
        return file;
    wide = isOf(kStorageLayout64);
    return file_path(url.path);
}

const char* source_name(SalvageReport::Source source) {
    switch (source) {
    case SalvageReport::Source::table:
        return "table";
    case SalvageReport::Source::oldTable:
        return "oldTable";
    case SalvageReport::Source::records:
        break;
    }
    return "records";
}

void write_report(const SalvageReport& report, Console& console) {
    if (console.json) {
        auto files = nlohmann::ordered_json::array();
        for (const SalvagedFile& file : report.files)
            files.push_back({{"name", to_utf8(file.name)},
                             {"state", static_cast<int>(file.state)},
                             {"size", file.size},
                             {"saved", file.saved},
                             {"text", to_utf8(file.text())}});
        const nlohmann::ordered_json all = {{"source", source_name(report.source)},
                                            {"whole", report.whole},
                                            {"altered", report.altered},
                                            {"cut", report.cut},
                                            {"lost", report.lost},
                                            {"files", std::move(files)}};
        console.out << all.dump(2) << '\n';
        return;
    }
    for (const SalvagedFile& file : report.files)
        console.out << terminal_text(file.text()) << '\n';
    if (report.source == SalvageReport::Source::oldTable)
        console.out << message("IDS_HOST_SALVAGED_BY_OLD_TABLE") << '\n';
    else if (report.source == SalvageReport::Source::records)
        console.out << message("IDS_HOST_SALVAGED_BY_RECORDS") << '\n';
    console.out << message("IDS_HOST_SALVAGED", {string_intto(report.whole), string_intto(report.altered),
                                                 string_intto(report.cut), string_intto(report.lost)})
                << '\n';
}

} // namespace

/// The new container has the layout of the old one, and is not there when nothing was saved.
ExitCode salvage(const Options& options, Console& console) {
    Options of = options;
    const std::string from = disk_path(options.file, of.wide);
    const StorageLayout& layout = of.wide ? kStorageLayout64 : kStorageLayout32;
    const auto source = open_disk_file(from, OpenMode::read);
    const std::uint64_t total = source->length();
    SalvageReport report;
    {
        StorageRW target = open(of, options.other, OpenMode::createNew);
        Progress progress(console, "salvage", total);
        const Interrupts interrupts;
        std::uint64_t told = 0;
        SalvageOptions how;
        how.progress = [&](std::uint64_t done, std::uint64_t) {
            interrupts.check();
            progress.add(done - std::min(done, told));
            told = std::max(told, done);
        };
        try {
            report = core::salvage(*source, layout, target, how);
        } catch (...) {
            std::error_code ignored;
            std::filesystem::remove(disk_path(options.other, of.wide), ignored);
            throw;
        }
    }
    write_report(report, console);
    return report.isComplete() ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
