// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container/container.h"
#include "host/terminal/terminal_text.h"

#include <core/runtime/utf8.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace host::container {

using namespace core;

namespace {

using Parts = std::vector<wstring_view>;

/// A line of the tree: a file, or a folder with the size of all that is below it.
struct Line {
    std::size_t depth;
    wstring_view name;
    std::uint64_t size;
    bool isFolder;
};

/// A name as its folders and the name of the file in them. Every "/" ends a folder.
Parts parts_of(wstring_view name) {
    Parts parts;
    for (auto slash = name.find(u'/'); slash != wstring_view::npos; slash = name.find(u'/')) {
        parts.push_back(name.substr(0, slash));
        name.remove_prefix(slash + 1);
    }
    parts.push_back(name);
    return parts;
}

/// Names that differ in case are folders of their own, so the order of the container is not that of the tree.
std::vector<std::pair<Parts, std::uint64_t>> sorted_by_parts(const std::vector<StorageFound>& files) {
    std::vector<std::pair<Parts, std::uint64_t>> sorted;
    sorted.reserve(files.size());
    for (const StorageFound& file : files)
        sorted.emplace_back(parts_of(file.name), file.size);
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

std::vector<Line> lines_of(const std::vector<std::pair<Parts, std::uint64_t>>& files) {
    std::vector<Line> lines;
    std::vector<std::size_t> open; // the lines of the folders that the last file is in
    const Parts none;
    const Parts* before = &none;
    for (const auto& [parts, size] : files) {
        std::size_t depth = 0;
        while (depth < open.size() && depth + 1 < parts.size() && parts[depth] == (*before)[depth])
            ++depth;
        open.resize(depth);
        for (; depth + 1 < parts.size(); ++depth) {
            open.push_back(lines.size());
            lines.push_back({depth, parts[depth], 0, true});
        }
        for (const std::size_t folder : open)
            lines[folder].size += size;
        lines.push_back({depth, parts.back(), size, false});
        before = &parts;
    }
    return lines;
}

} // namespace

ExitCode tree(const Options& options, Console& console) {
    constexpr std::size_t kDeepest = 40; // deeper lines stand no further to the right
    const StorageRW storage = open(options, OpenMode::read);
    const Selection selection = select_or_all(storage, options, console);
    const auto sorted = sorted_by_parts(selection.files);
    auto all = nlohmann::ordered_json::array();
    for (const Line& line : lines_of(sorted)) {
        if (console.json) {
            all.push_back({{"depth", line.depth},
                           {"name", to_utf8(line.name)},
                           {"size", line.size},
                           {"isFolder", line.isFolder}});
        } else {
            console.out << std::setw(12) << line.size << "  "
                        << std::string(2 * std::min(line.depth, kDeepest), ' ') << terminal_text(line.name)
                        << (line.isFolder ? "/" : "") << '\n';
        }
    }
    if (console.json)
        console.out << all.dump(2) << '\n';
    return selection.missing == 0 ? ExitCode::done : ExitCode::no;
}

} // namespace host::container
