// SPDX-License-Identifier: Apache-2.0
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"

#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

namespace core {
namespace {

/// A piece of the file and whose it is.
struct Owned {
    std::uint64_t begin;
    std::uint64_t end;
    StorageUse use;
    std::size_t file; // among the names
};

/// Walks every chain of a container, whatever is wrong with it.
class Survey {
  public:
    Survey(BlockReader& reader, const StorageLayout& layout) : reader_(reader), layout_(layout) {
        owned_.push_back({0, layout.emptyLength(), StorageUse::head, 0});
    }

    /// Takes a chain's blocks in, those before the damage where there is one. Returns its content.
    std::vector<std::byte> visit(std::uint64_t address, StorageUse use, wstring_view name,
                                 StorageProblem::Kind damage, bool wanted) {
        names_.emplace_back(name);
        BlockChain chain(layout_);
        std::vector<std::byte> content;
        try {
            chain.open(reader_, address, 0);
            if (wanted)
                content = chain.content(reader_);
            chain.walk(reader_);
            if (use == StorageUse::content)
                contentBytes += chain.size();
        } catch (const ChainInFileExc& e) {
            problem(damage, e.address());
            content.clear();
        }
        if (use == StorageUse::content)
            fragments += chain.runs().runs().size();
        add(chain.runs(), use);
        return content;
    }

    void add(const BlockRuns& blocks, StorageUse use) {
        for (const BlockRun& run : blocks.runs())
            owned_.push_back({run.address, run.address + blocks.lengthOf(run), use, names_.size()});
        this->blocks += blocks.count();
        length_ += blocks.length();
    }

    void addFree(const RangeSet& free) {
        for (const auto& [begin, end] : free.ranges()) {
            owned_.push_back({begin, end, StorageUse::free, 0});
            freeBytes += end - begin;
            ++freeRanges;
        }
    }

    /// Chains that take more room together than there is share blocks. Those that do are in the list by then,
    /// and walking the same blocks for ever more chains would take time without bound.
    [[nodiscard]] bool isEnough() const noexcept { return length_ / 4 > reader_.end(); }

    /// Concerns the chain visited last.
    void problem(StorageProblem::Kind kind, std::uint64_t address) {
        problems.push_back({.kind = kind, .address = address, .name = names_.back()});
    }

    /// Compares what was found with the whole file.
    void finish(std::uint64_t end) {
        std::sort(owned_.begin(), owned_.end(), [](const Owned& a, const Owned& b) {
            return std::tie(a.begin, a.end) < std::tie(b.begin, b.end);
        });
        const Owned* furthest = &owned_.front();
        for (const Owned& piece : owned_) {
            if (&piece != furthest && piece.begin < furthest->end)
                problems.push_back({StorageProblem::Kind::overlap, piece.begin,
                                    std::min(piece.end, furthest->end) - piece.begin, piece.use,
                                    nameOf(piece), furthest->use, nameOf(*furthest)});
            else if (piece.begin > furthest->end && !isEnough())
                lose(furthest->end, piece.begin);
            if (piece.end > furthest->end)
                furthest = &piece;
        }
        if (furthest->end < end && !isEnough())
            lose(furthest->end, end);
        std::stable_sort(problems.begin(), problems.end(),
                         [](const auto& a, const auto& b) { return a.address < b.address; });
    }

    [[nodiscard]] std::vector<StorageInfo::Piece> pieces() const {
        std::vector<StorageInfo::Piece> pieces;
        for (const Owned& piece : owned_)
            pieces.push_back({piece.begin, piece.end - piece.begin, piece.use});
        return pieces;
    }

    std::vector<StorageProblem> problems;
    std::uint64_t blocks = 0;
    std::uint64_t contentBytes = 0;
    std::uint64_t fragments = 0;
    std::uint64_t freeBytes = 0;
    std::uint64_t freeRanges = 0;

  private:
    [[nodiscard]] wstring nameOf(const Owned& piece) const {
        return piece.file == 0 ? wstring() : names_[piece.file - 1];
    }
    void lose(std::uint64_t begin, std::uint64_t end) {
        problems.push_back({.kind = StorageProblem::Kind::lost, .address = begin, .length = end - begin});
    }

    BlockReader& reader_;
    const StorageLayout& layout_;
    std::vector<Owned> owned_;
    std::uint64_t length_ = 0;   // of all blocks walked
    std::vector<wstring> names_; // of the chains visited; a piece counts them from 1
};

/// The whole survey; `count` grows with the files.
Survey survey(const FilesTable& table, const ContainerHead& head, const BlockRuns& tableBlocks,
              BlockReader& reader, const StorageLayout& layout, std::uint64_t& count) {
    using Kind = StorageProblem::Kind;
    Survey result(reader, layout);
    result.add(tableBlocks, StorageUse::table);
    ++result.blocks; // the first one is part of the head
    const auto ranges = result.visit(head.freeChain, StorageUse::freeChain, {}, Kind::damagedFreeChain, true);
    FreeSpace space(layout);
    if (!space.load(ranges, table.end()))
        result.problem(Kind::damagedFreeChain, head.freeChain);
    result.addFree(space.free());
    table.forEach([&](wstring_view name, const StorageFileEntry& entry) {
        ++count;
        if (result.isEnough())
            return;
        if (entry.attributes != layout.null) {
            const std::size_t before = result.problems.size();
            const auto record =
                result.visit(entry.attributes, StorageUse::attributes, name, Kind::damagedAttributes, true);
            const auto info = StorageFileInfo::decode(record);
            if (result.problems.size() == before && (!info || info->name != name))
                result.problem(Kind::damagedAttributes, entry.attributes);
        }
        (void)result.visit(entry.data, StorageUse::content, name, Kind::damagedContent, false);
    });
    result.finish(table.end());
    return result;
}

wstring who(StorageUse use, const wstring& name) {
    switch (use) {
    case StorageUse::head:
        return message_text("IDS_STCHECK_HEAD");
    case StorageUse::table:
        return message_text("IDS_STCHECK_TABLE");
    case StorageUse::freeChain:
        return message_text("IDS_STCHECK_FREECHAIN");
    case StorageUse::attributes:
        return message_text("IDS_STCHECK_ATTRIBUTES", {name});
    case StorageUse::content:
        return message_text("IDS_STCHECK_CONTENT", {name});
    case StorageUse::free:
        break;
    }
    return message_text("IDS_STCHECK_FREE");
}

} // namespace

StorageCheck StorageEngine::check() {
    const Reading reading(*this);
    if (table_.hasChanges() || space_.hasChanges())
        throw_storage_error(messages::kStorageTransaction, url_);
    StorageCheck result;
    Survey found = survey(table_, head_, tableBlocks_, reader_, layout_, result.files);
    result.blocks = found.blocks;
    result.problems = std::move(found.problems);
    return result;
}

StorageInfo StorageEngine::info() {
    const Reading reading(*this);
    StorageInfo result;
    const Survey found = survey(table_, head_, tableBlocks_, reader_, layout_, result.files);
    result.firstWord = head_.freeChain;
    result.secondWord = head_.blockSize;
    result.changeCounter = head_.counter;
    result.fileLength = file_->length();
    result.end = table_.end();
    result.contentBytes = found.contentBytes;
    result.blocks = found.blocks;
    result.freeBytes = found.freeBytes;
    result.freeRanges = found.freeRanges;
    result.fragments = found.fragments;
    result.pieces = found.pieces();
    return result;
}

wstring StorageProblem::text() const {
    const auto number = [](std::uint64_t n) { return from_utf8(std::to_string(n)); };
    switch (kind) {
    case Kind::damagedFreeChain:
        return message_text("IDS_STCHECK_DAMAGEDFREE", {number(address)});
    case Kind::damagedAttributes:
        return message_text("IDS_STCHECK_DAMAGEDATTRIBUTES", {number(address), name});
    case Kind::damagedContent:
        return message_text("IDS_STCHECK_DAMAGEDCONTENT", {number(address), name});
    case Kind::overlap:
        return message_text("IDS_STCHECK_OVERLAP",
                            {number(address), number(length), who(use, name), who(otherUse, otherName)});
    case Kind::lost:
        break;
    }
    return message_text("IDS_STCHECK_LOST", {number(address), number(length)});
}

} // namespace core
