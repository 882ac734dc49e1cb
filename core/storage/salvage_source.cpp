// SPDX-License-Identifier: Apache-2.0
#include "core/storage/salvage_source.h"

#include "core/storage/files_table.h"
#include "core/storage/flat_files.h"
#include "core/storage/little_endian.h"
#include "core/storage/salvage_found.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>
#include <map>

namespace core {
namespace {

constexpr std::uint64_t kWindow = std::uint64_t{256} << 10;
constexpr std::size_t kSector = 512;
constexpr std::uint64_t kLongestRecord = StorageFileInfo::kLeastSize + 2 * StorageFilesType::kLongestName;
// No time lies behind the year 9999.
constexpr std::uint64_t kLatest = std::uint64_t{10000} * 366 * 24 * 3600 * 10000;
// So many tables are compared that nothing leads to.
constexpr std::size_t kMostTables = 64;

} // namespace

// A file with bad sectors.

void PatientFile::keep(std::uint64_t count) {
    std::vector<std::byte> first(static_cast<std::size_t>(std::min(count, length_)));
    first.resize(read_all_at(*this, 0, first));
    kept_ = std::move(first);
}

std::size_t PatientFile::readAt(std::uint64_t position, void* buffer, std::size_t count) {
    auto* const to = static_cast<std::byte*>(buffer);
    if (position < kept_.size()) {
        const auto part = std::span(kept_).subspan(static_cast<std::size_t>(position));
        count = std::min(count, part.size());
        std::copy_n(part.begin(), count, to);
        return count;
    }
    if (position >= length_)
        return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, length_ - position));
    try {
        return file_->readAt(position, to, count);
    } catch (const FileException&) {
        if (count <= kSector)
            return 0;
    }
    std::size_t done = 0;
    while (done < count) {
        const std::size_t part = std::min<std::size_t>(count - done, kSector - (position + done) % kSector);
        const std::size_t got = readAt(position + done, to + done, part);
        done += got;
        if (got < part)
            break;
    }
    return done;
}

std::size_t PatientFile::writeAt(std::uint64_t, const void*, std::size_t) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}
void PatientFile::truncate(std::uint64_t) {
    throw_file_error(messages::kFileWrite, url(), EBADF);
}

std::size_t read_what_is_there(BlockChain& chain, BlockReader& reader, std::uint64_t offset,
                               std::span<std::byte> out) {
    std::size_t done = 0;
    for (std::size_t part = out.size(); part != 0 && done < out.size();) {
        part = std::min(part, out.size() - done);
        try {
            chain.readAt(reader, offset + done, out.subspan(done, part));
            done += part;
        } catch (const ChainInFileExc&) {
            part /= 2;
        }
    }
    return done;
}

// What is found in the whole file, one block after the other.

std::optional<SalvageReport::Source> SalvageSource::find(const Visit& visit) {
    if (findByTree(visit) || findByTable(visit))
        return SalvageReport::Source::table;
    Found found;
    scan(found);
    if (findByNodes(found, visit) || findByOldTable(found, visit))
        return SalvageReport::Source::oldTable;
    if (findByRecords(found, visit))
        return SalvageReport::Source::records;
    return std::nullopt;
}

/// False when the file ends in the header. It may end in the first block, in zeros.
bool SalvageSource::readHead(ContainerHead::Bytes& bytes) {
    const std::size_t size = ContainerHead::sizeIn(layout_);
    const auto from = reader_.at(0, size, size);
    std::copy_n(from.begin(), std::min(from.size(), size), bytes.begin());
    return from.size() >= size - kStorageBlockSize;
}

bool SalvageSource::findByTable(const Visit& visit) {
    ContainerHead::Bytes bytes{};
    std::vector<std::byte> content;
    try {
        if (!readHead(bytes))
            return false;
        const ContainerHead head = ContainerHead::decode(bytes, layout_);
        BlockChain chain(layout_);
        chain.adopt(reader_, layout_.headerSize(), head.table.chainSize, head.table.size, head.table.next);
        constexpr std::size_t kStep = std::size_t{1} << 20; // what a number claims is not believed
        for (std::size_t done = 0; done == content.size() && done < chain.size();) {
            content.resize(static_cast<std::size_t>(std::min<std::uint64_t>(chain.size(), done + kStep)));
            done += read_what_is_there(chain, reader_, done, std::span(content).subspan(done));
            if (done < content.size()) {
                content.resize(done);
                break;
            }
        }
        if (chain.size() == 0) // an empty container
            return head.isSound(bytes, layout_);
    } catch (const ChainInFileExc&) {
    } catch (const HexConvExc&) {
    }
    FilesTable table(layout_);
    if (content.empty() || !table.decode(content, true))
        return findByRows(content, visit);
    table.forEach([&](wstring_view name, const auto& entry) { visit(name, FileEntry{entry}, true); });
    return true;
}

/// Reads the rows of a table of which a part is damaged or missing. A row whose name is gone has that of its
/// attributes. False when hardly any row leads to attributes: the content is not that of a table then.
bool SalvageSource::findByRows(std::span<const std::byte> content, const Visit& visit) {
    const std::size_t width = layout_.width;
    const std::size_t fixed = kStorageBlockSize + 2 * width;
    if (content.size() < fixed)
        return false;
    const std::uint64_t count = load_number(content.data() + kStorageBlockSize, width);
    if (count > length_ / (3 * width))
        return false;
    const auto rows =
        static_cast<std::size_t>(std::min<std::uint64_t>(count, (content.size() - fixed) / (3 * width)));
    const auto names = content.subspan(
        static_cast<std::size_t>(std::min<std::uint64_t>(content.size(), fixed + count * 3 * width)));
    const auto number = [&](std::size_t row, std::size_t field) {
        return load_number(content.data() + fixed + (3 * row + field) * width, width);
    };
    std::vector<std::pair<wstring, StorageFileEntry>> found;
    std::size_t withInfo = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const std::uint64_t begin = row == 0 ? 0 : number(row - 1, 2);
        const std::uint64_t end = number(row, 2);
        std::uint64_t ignored = 0;
        const auto info = recordAt(number(row, 0), ignored);
        const bool isNamed = begin <= end && end <= names.size() / 2;
        if (!info && !isNamed)
            continue;
        wstring name;
        for (std::uint64_t i = begin; !info && i < end; ++i)
            name.push_back(static_cast<wchar>(load_number(names.data() + 2 * i, 2)));
        found.emplace_back(info ? info->name : name, StorageFileEntry{number(row, 0), number(row, 1)});
        withInfo += info ? 1 : 0;
    }
    if (withInfo * 2 < found.size() || found.empty())
        return false;
    for (const auto& [name, entry] : found) {
        if (shown_.insert(name).second)
            visit(name, FileEntry{entry}, true);
    }
    if (found.size() < count) { // the others may have left their attributes
        Found others;
        scan(others);
        (void)findByRecords(others, visit);
    }
    return true;
}

/// The content of the table whose second block stands at `address`; nothing when no table lies there. All
/// that it says must fit together, so that hardly anything else can be taken for one.
std::optional<std::vector<std::byte>> SalvageSource::tableAt(std::uint64_t address) {
    const std::size_t width = layout_.width;
    try {
        const auto header = headerAt(address);
        if (!header)
            return std::nullopt;
        BlockChain chain(layout_);
        const auto mark = FlatFiles::preamble();
        std::vector<std::byte> content(mark.begin(), mark.end());
        const auto read = [&](std::uint64_t size) { // in pieces: what a number claims is not believed
            chain.adopt(reader_, address, size, header->size, header->next);
            const std::vector<std::byte> rest = chain.content(reader_);
            content.resize(kStorageBlockSize);
            content.insert(content.end(), rest.begin(), rest.end());
        };
        read(2 * width);
        const std::uint64_t count = load_number(content.data() + kStorageBlockSize, width);
        const std::uint64_t end = load_number(content.data() + kStorageBlockSize + width, width);
        if (count == 0 || end < layout_.emptyLength() || end > layout_.limit() ||
            count > length_ / (3 * width))
            return std::nullopt;
        const std::uint64_t rows = 2 * width + 3 * width * count;
        read(rows);
        const std::uint64_t units = load_number(content.data() + content.size() - width, width);
        if (units > length_ / 2)
            return std::nullopt;
        read(rows + 2 * units);
        return content;
    } catch (const ChainInFileExc&) {
        return std::nullopt;
    }
}

/// The latest table is the one with the latest file.
bool SalvageSource::findByOldTable(const Found& found, const Visit& visit) {
    std::optional<FilesTable> best;
    std::pair<std::uint32_t, std::uint64_t> bestRank{};
    for (const std::uint64_t address : found.tables) {
        const auto content = tableAt(address);
        FilesTable table(layout_);
        if (!content || !table.decode(*content, false))
            continue;
        std::pair<std::uint32_t, std::uint64_t> rank{}; // version of the latest file, files
        table.forEach([&](wstring_view name, const auto& entry) {
            std::uint64_t end = 0;
            const auto info = recordAt(entry.attributes, end);
            if (info && info->name == name)
                rank = {std::max(rank.first, info->attribute), rank.second + 1};
        });
        if (rank.second != 0 && rank > bestRank) {
            bestRank = rank;
            best = std::move(table);
        }
    }
    if (best)
        best->forEach([&](wstring_view name, const auto& entry) { visit(name, FileEntry{entry}, true); });
    return best.has_value();
}

/// Content and attributes are written side by side where there is room: a put writes the attributes first, a
/// file that was open for writing the content. So of chains in a row, in turns, the first and the second
/// belong together, and so on.
bool SalvageSource::findByRecords(Found& found, const Visit& visit) {
    found.data.assign(found.records.size(), layout_.null);
    const auto& pieces = found.pieces;
    const auto isRecord = [](const Found::Piece& piece) { return piece.record != Found::kContent; };
    for (std::size_t begin = 0; begin < pieces.size();) {
        std::size_t end = begin + 1;
        while (end < pieces.size() && pieces[end].begin == pieces[end - 1].end &&
               isRecord(pieces[end]) != isRecord(pieces[end - 1]))
            ++end;
        const bool contentFirst = !isRecord(pieces[begin]) && isRecord(pieces[end - 1]);
        for (std::size_t i = begin; i < end; ++i) {
            if (!isRecord(pieces[i]))
                continue;
            if (contentFirst)
                found.data[pieces[i].record] = pieces[i - 1].begin;
            else if (i + 1 < end)
                found.data[pieces[i].record] = pieces[i + 1].begin;
        }
        begin = end;
    }
    for (const auto& [name, record] : found.latest) {
        if (!shown_.contains(name))
            visit(name, FileEntry{{found.records[record].address, found.data[record]}},
                  found.data[record] != layout_.null);
    }
    return !found.latest.empty();
}

// Looking through the file.

std::optional<BlockHeader> SalvageSource::headerAt(std::uint64_t address) {
    const auto bytes = reader_.at(address, layout_.blockHeaderSize(), kWindow);
    if (bytes.size() < layout_.blockHeaderSize() || bytes[0] != std::byte{'\r'})
        return std::nullopt;
    try {
        return decode_block_header(bytes.data(), layout_, address, true);
    } catch (const HexConvExc&) {
    } catch (const ChainInFileExc&) {
    }
    return std::nullopt;
}

/// Where the next block is looked for behind one that ends at `address`. Not within its data, which may hold
/// another container, unless no block follows it or the damaged ones behind it.
std::uint64_t SalvageSource::nextBlock(std::uint64_t address, std::uint64_t size) {
    const std::uint64_t behind = address + layout_.blockLength(size);
    constexpr std::uint64_t kDamaged = 8;
    for (std::uint64_t i = 0; i <= kDamaged; ++i) {
        const std::uint64_t at = behind + i * layout_.blockLength(kStorageBlockSize);
        if (at >= length_ || headerAt(at))
            return at;
    }
    return address + 1;
}

void SalvageSource::scan(Found& found) {
    for (std::uint64_t at = layout_.headerSize(); at < length_;) {
        progress_(at);
        if (const auto header = headerAt(at)) {
            look(at, *header, found);
            at = header->size <= length_ - at ? nextBlock(at, header->size) : at + 1;
            continue;
        }
        const auto bytes = reader_.at(at, 1, kWindow); // on to what may be the next one
        const auto next =
            std::find(bytes.empty() ? bytes.begin() : bytes.begin() + 1, bytes.end(), std::byte{'\r'});
        at += bytes.empty() ? kSector - at % kSector : static_cast<std::uint64_t>(next - bytes.begin());
    }
    std::sort(found.pieces.begin(), found.pieces.end(),
              [](const Found::Piece& a, const Found::Piece& b) { return a.begin < b.begin; });
}

/// Takes note of a block that begins a chain.
void SalvageSource::look(std::uint64_t address, const BlockHeader& header, Found& found) {
    if (address == layout_.headerSize())
        return;                                                 // of the table
    if (lookForNode(address, header, found) || isFree(address)) // which was removed, or never committed
        return;
    if (header.chainSize == 0) {
        const std::size_t width = layout_.width;
        const auto bytes = reader_.at(address, layout_.blockHeaderSize() + 2 * width, kWindow);
        if (bytes.size() < layout_.blockHeaderSize() + 2 * width)
            return;
        const std::uint64_t count = load_number(bytes.data() + layout_.blockHeaderSize(), width);
        const std::uint64_t end = load_number(bytes.data() + layout_.blockHeaderSize() + width, width);
        if (count != 0 && count < length_ / (3 * width) && end > layout_.emptyLength() &&
            end <= layout_.limit() && found.tables.size() < kMostTables)
            found.tables.push_back(address);
        return;
    }
    std::uint64_t end = 0;
    if (const auto info = recordAt(address, end)) {
        const auto [known, isNew] = found.latest.try_emplace(info->name, found.records.size());
        if (!isNew && found.records[known->second].version <= info->attribute)
            known->second = found.records.size();
        found.pieces.push_back({address, end, found.records.size()});
        found.records.push_back({address, info->attribute});
        return;
    }
    BlockChain chain(layout_);
    try {
        chain.open(reader_, address, kWindow);
        chain.walk(reader_);
    } catch (const ChainInFileExc&) { // a part of it may be left
    }
    if (chain.runs().empty())
        return;
    const BlockRuns::Block last = chain.runs().last();
    found.pieces.push_back({address, last.address + layout_.blockLength(last.size), Found::kContent});
}

/// The attributes at `address`, of any file, and where their last block ends.
std::optional<StorageFileInfo> SalvageSource::recordAt(std::uint64_t address, std::uint64_t& end) {
    if (address == layout_.null)
        return std::nullopt;
    try {
        BlockChain chain(layout_);
        chain.open(reader_, address, kWindow);
        const std::uint64_t size = chain.size();
        if (size < StorageFileInfo::kLeastSize || size > kLongestRecord || size % 2 != 0)
            return std::nullopt;
        const std::vector<std::byte> record = chain.content(reader_);
        const bool isRecord = load_number(record.data(), 8) < kLatest &&
                              load_number(record.data() + 8, 8) < kLatest &&
                              std::any_of(record.begin(), record.begin() + 20, // zeros are a content
                                          [](std::byte b) { return b != std::byte{}; }) &&
                              load_number(record.data() + record.size() - 4, 4) == 0;
        if (!isRecord)
            return std::nullopt;
        const BlockRuns::Block last = chain.runs().last();
        end = last.address + layout_.blockLength(last.size);
        return StorageFileInfo::decode(record);
    } catch (const ChainInFileExc&) {
        return std::nullopt;
    }
}

} // namespace core
