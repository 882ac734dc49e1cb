// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/salvage_source.h"

#include <map>

namespace core {

/// What is found in the whole file of a container, one block after the other.
struct SalvageSource::Found {
    static constexpr std::size_t kContent = static_cast<std::size_t>(-1);

    /// What a chain takes up.
    struct Piece {
        std::uint64_t begin;
        std::uint64_t end;  // behind its last block
        std::size_t record; // whose attributes it holds, kContent for a content
    };
    struct Record {
        std::uint64_t address;
        std::uint32_t version;
    };
    struct Node {
        NodeRef ref;
        unsigned level;
        std::uint64_t counter;
    };

    std::vector<Piece> pieces; // by address
    std::vector<Record> records;
    std::map<wstring, std::size_t> latest; // record by name
    std::vector<std::uint64_t> tables;     // where the rest of a table of layout 1 may begin
    std::vector<Node> nodes;               // of trees of inner files
    std::vector<std::uint64_t> data;       // by record: the content beside it, or null
};

} // namespace core
