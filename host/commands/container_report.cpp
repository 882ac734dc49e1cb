// SPDX-License-Identifier: Apache-2.0
#include "host/commands/container.h"

#include <core/runtime/utf8.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>

namespace host::container {

using namespace core;

namespace {

constexpr std::array<char, 6> kLetters = {'H', 'T', 'F', 'a', '#', '.'}; // by StorageUse
constexpr std::string_view kLegend =
    "H header  T table of files  F list of free space  a attributes  # content  . free\n";
constexpr std::size_t kColumns = 64;
constexpr std::size_t kRows = 16;

/// The file as a picture: each letter stands for what takes most of its part of the file.
std::string picture(const StorageInfo& info) {
    const std::uint64_t most = kColumns * kRows;
    const std::uint64_t part = std::max<std::uint64_t>((info.end + most - 1) / most, 1);
    std::string letters;
    std::array<std::uint64_t, kLetters.size()> bytes{};
    std::uint64_t end = part; // of the part that is counted
    const auto finish = [&] {
        const auto greatest = std::max_element(bytes.begin(), bytes.end());
        letters.push_back(kLetters[static_cast<std::size_t>(greatest - bytes.begin())]);
        bytes.fill(0);
        end += part;
    };
    for (const StorageInfo::Piece& piece : info.pieces) {
        std::uint64_t at = piece.address;
        const std::uint64_t stop = std::min(piece.address + piece.length, info.end);
        while (at < stop) {
            while (at >= end)
                finish();
            const std::uint64_t count = std::min(stop, end) - at;
            bytes[static_cast<std::size_t>(piece.use)] += count;
            at += count;
        }
    }
    finish();
    std::string lines;
    for (std::size_t i = 0; i < letters.size(); i += kColumns)
        lines += "  " + letters.substr(i, kColumns) + '\n';
    return lines;
}

} // namespace

ExitCode check(const Options& options, Console& console) {
    const StorageCheck result = open(options, OpenMode::read).check();
    if (console.json) {
        auto problems = nlohmann::ordered_json::array();
        for (const StorageProblem& problem : result.problems) {
            problems.push_back({{"kind", static_cast<int>(problem.kind)},
                                {"address", problem.address},
                                {"length", problem.length},
                                {"name", to_utf8(problem.name)},
                                {"text", to_utf8(problem.text())}});
        }
        const nlohmann::ordered_json all = {
            {"files", result.files}, {"blocks", result.blocks}, {"problems", std::move(problems)}};
        console.out << all.dump(2) << '\n';
    } else {
        for (const StorageProblem& problem : result.problems)
            console.out << shown(problem.text()) << '\n';
        console.out << result.files << " files, " << result.blocks << " blocks, " << result.problems.size()
                    << " problems\n";
    }
    return result.isClean() ? ExitCode::done : ExitCode::no;
}

ExitCode info(const Options& options, Console& console) {
    const StorageRW storage = open(options, OpenMode::read);
    const StorageInfo info = storage.info();
    const bool wide = storage.layout().width == kStorageLayout64.width;
    const std::uint64_t beyond = info.fileLength - std::min(info.end, info.fileLength);
    if (console.json) {
        const nlohmann::ordered_json all = {
            {"layout", wide ? 64 : 32},      {"firstWord", info.firstWord},
            {"secondWord", info.secondWord}, {"changeCounter", info.changeCounter},
            {"fileLength", info.fileLength}, {"end", info.end},
            {"files", info.files},           {"contentBytes", info.contentBytes},
            {"blocks", info.blocks},         {"freeBytes", info.freeBytes},
            {"freeRanges", info.freeRanges}, {"fragments", info.fragments}};
        console.out << all.dump(2) << '\n';
        return ExitCode::done;
    }
    const auto line = [&console](const char* what) -> std::ostream& {
        return console.out << std::left << std::setw(18) << what << std::right;
    };
    line("layout") << (wide ? "64-bit" : "32-bit") << '\n';
    line("free chain");
    if (info.firstWord == storage.layout().null)
        console.out << "none\n";
    else
        console.out << "at " << info.firstWord << '\n';
    line("block size") << info.secondWord << '\n';
    line("change counter") << info.changeCounter << '\n';
    line("file") << info.fileLength << " bytes\n";
    line("inner files") << info.files << " with " << info.contentBytes << " bytes in " << info.fragments
                        << " pieces\n";
    line("blocks") << info.blocks << '\n';
    line("free") << info.freeBytes << " bytes in " << info.freeRanges << " ranges\n";
    if (beyond != 0)
        line("left over") << beyond << " bytes behind the end\n";
    console.out << picture(info) << kLegend;
    return ExitCode::done;
}

ExitCode compact(const Options& options, Console& console) {
    StorageRW storage = open(options, OpenMode::readWrite);
    const std::uint64_t before = storage.info().fileLength;
    storage.compact();
    console.out << before << " bytes before, " << storage.info().fileLength << " now\n";
    return ExitCode::done;
}

} // namespace host::container
