// SPDX-License-Identifier: Apache-2.0
#include "host/commands/commands.h"
#include "host/commands/container/container.h"
#include "host/terminal/text_columns.h"

#include <core/runtime/exception.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>

namespace host::container {

using namespace core;

namespace {

constexpr std::array<char, 6> kLetters = {'H', 'T', 'F', 'a', '#', '.'}; // by StorageUse
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
    Columns columns;
    const auto line = [&columns](const char* what, std::string text) {
        columns.add({message(what), std::move(text)});
    };
    line("IDS_HOST_CONTAINER_LAYOUT", wide ? "64-bit" : "32-bit");
    line("IDS_HOST_CONTAINER_FREE_CHAIN",
         info.firstWord == storage.layout().null ? "-" : std::to_string(info.firstWord));
    line("IDS_HOST_CONTAINER_BLOCK_SIZE", std::to_string(info.secondWord));
    line("IDS_HOST_CONTAINER_CHANGES", std::to_string(info.changeCounter));
    line("IDS_HOST_CONTAINER_LENGTH", std::to_string(info.fileLength));
    line("IDS_HOST_CONTAINER_FILES", std::to_string(info.files));
    line("IDS_HOST_CONTAINER_CONTENT", std::to_string(info.contentBytes));
    line("IDS_HOST_CONTAINER_PIECES", std::to_string(info.fragments));
    line("IDS_HOST_CONTAINER_BLOCKS", std::to_string(info.blocks));
    line("IDS_HOST_CONTAINER_FREE", std::to_string(info.freeBytes));
    line("IDS_HOST_CONTAINER_RANGES", std::to_string(info.freeRanges));
    if (beyond != 0)
        line("IDS_HOST_CONTAINER_BEYOND", std::to_string(beyond));
    columns.write(console.out);
    console.out << picture(info) << message("IDS_HOST_CONTAINER_LEGEND") << '\n';
    return ExitCode::done;
}

} // namespace host::container
