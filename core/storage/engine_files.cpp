// SPDX-License-Identifier: Apache-2.0
#include "core/storage/attributes.h"
#include "core/storage/bad_place.h"
#include "core/storage/engine.h"
#include "core/storage/inner_reader.h"
#include "core/storage/inner_writer.h"
#include "core/storage/storage_error.h"

#include <core/files/errors.h>
#include <core/files/file_time.h>
#include <core/files/url.h>
#include <core/runtime/threads/thread.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <cerrno>

namespace core {
namespace {

// A content up to this size is read while others wait, a larger one beside them.
constexpr std::uint64_t kAtOnce = std::uint64_t{64} << 10;
// A content up to this size is written in the turn that publishes it, a larger one before.
constexpr std::size_t kInTurn = std::size_t{1} << 20;
// Others come in after as much.
constexpr std::size_t kCopied = std::size_t{256} << 10;

void copy_content(InnerReader& from, InnerWriter& to) {
    std::vector<std::byte> bytes;
    for (std::uint64_t done = 0; done < from.length(); done += bytes.size()) {
        Thread::check();
        bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kCopied, from.length() - done)));
        (void)from.readAt(done, bytes);
        to.writeAt(done, bytes);
    }
}

} // namespace

// Looking.

bool StorageEngine::contains(wstring_view name) {
    const Reading reading(*this);
    return checked(name, [&] { return table_.find(name).has_value(); });
}

FileEntry StorageEngine::existing(wstring_view name) const {
    const auto entry = checked(name, [&] { return table_.find(name); });
    if (!entry)
        throw StorageException(StorageException::Kind::fileNotFound, urlOf(name));
    return *entry;
}

StorageFileInfo StorageEngine::readInfo(const FileEntry& entry, wstring_view name) {
    if (entry.attributes == layout_.null) {
        StorageFileInfo none;
        none.name = name;
        return none;
    }
    StorageFileInfo info = read_attributes(reader_, entry.attributes, name);
    if (entry.isKnown && checksum(info.encode()) != entry.attributesSum)
        throw ChainInFileExc(entry.attributes);
    return info;
}

/// Damaged attributes give way to new ones: only the times are lost with them.
StorageFileInfo StorageEngine::infoOrNone(const FileEntry& entry, wstring_view name) {
    try {
        return readInfo(entry, name);
    } catch (const ChainInFileExc&) {
        return readInfo(FileEntry{{layout_.null, layout_.null}}, name);
    }
}

StorageEngine::Found StorageEngine::lookUp(wstring_view name) {
    const FileEntry entry = existing(name);
    return {entry, checked(name, [&] { return readInfo(entry, name); })};
}

std::vector<StorageFound> StorageEngine::find(wstring_view pattern, const DamagedNode& damaged) {
    const Reading reading(*this);
    std::vector<StorageFound> found;
    const auto visit = [&](wstring_view name, const FileEntry& entry) {
        if (matches_wildcard(name, pattern))
            found.push_back(describe(entry, name));
    };
    checked([&] { table_.forEach(visit, damaged); });
    return found;
}

std::vector<wstring> StorageEngine::names(wstring_view pattern) {
    const Reading reading(*this);
    std::vector<wstring> found;
    const auto visit = [&](wstring_view name, const FileEntry&) {
        if (matches_wildcard(name, pattern))
            found.emplace_back(name);
    };
    checked([&] { table_.forEach(visit); });
    return found;
}

std::uint64_t StorageEngine::count() {
    const Reading reading(*this);
    return table_.count();
}

StorageFound StorageEngine::describe(wstring_view name) {
    const Reading reading(*this);
    return describe(existing(name), name);
}

StorageFound StorageEngine::describe(const FileEntry& entry, wstring_view name) {
    StorageFound found{.name = wstring(name)};
    try {
        const StorageFileInfo info = at_place(entry.attributes, [&] { return readInfo(entry, name); });
        found.created = info.created;
        found.modified = info.modified;
        found.version = info.attribute;
    } catch (const ChainInFileExc&) {
        found.damaged = true;
    }
    try {
        found.size = entry.size; // what the table says is known in any case
        const std::uint64_t size = at_place(entry.data, [&] { return chain(entry.data, 0).size(); });
        if (entry.isKnown && size != entry.size)
            found.damaged = true;
        else
            found.size = size;
    } catch (const ChainInFileExc&) {
        found.damaged = true;
    }
    return found;
}

std::uint64_t StorageEngine::sizeOf(const FileEntry& entry) {
    return entry.isKnown ? entry.size : chain(entry.data, 0).size();
}

/// The whole content, which must have its checksum.
std::vector<std::byte> StorageEngine::contentOf(const FileEntry& entry) {
    auto content = entry.isTogether() ? read_together(reader_, entry.data, entry.size)
                                      : chain(entry.data, 0).content(reader_);
    if (!entry.isIntact(content))
        throw ChainInFileExc(entry.data);
    return content;
}

std::vector<std::byte> StorageEngine::get(wstring_view name) {
    std::optional<InnerReader> large;
    {
        const Reading reading(*this);
        const FileEntry entry = existing(name);
        const auto readable = [&](auto call) {
            return checked(name, [&] { return at_place(entry.data, call); });
        };
        const std::uint64_t size = readable([&] { return sizeOf(entry); });
        if (size > std::vector<std::byte>().max_size()) // on a 32-bit host
            throw_file_error(messages::kFileRead, urlOf(name), EFBIG);
        if (size <= kAtOnce)
            return readable([&] { return contentOf(entry); });
        large.emplace(shared_from_this(), name);
    }
    return large->content();
}

// Changing.

void StorageEngine::refuseOpened(wstring_view name) const {
    for (const InnerFile* file : files_) {
        if (file->isExclusive() && file->name() == name)
            throw_storage_error(messages::kStorageOpened, urlOf(name));
    }
}

/// Adds the blocks of a chain that goes out of use. Those of a damaged chain are not known: they are lost
/// until the container is compacted.
void StorageEngine::addBlocks(std::uint64_t address, BlockRuns& blocks) {
    if (!spaceVerified_ && !space_.isFresh(address)) // it would not become free
        return;
    try {
        BlockChain walked = chain(address, kReadWithAttributes);
        walked.walk(reader_);
        for (const BlockRun& run : walked.runs().runs())
            blocks.append(run.address, run.size, run.count);
    } catch (const ChainInFileExc&) { // the file can be replaced and removed all the same
    }
}

/// Blocks that lie side by side are known without reading them.
void StorageEngine::addContent(const FileEntry& entry, BlockRuns& blocks) {
    if (entry.isTogether() && entry.data != layout_.null)
        blocks.append(entry.data, kStorageBlockSize, blocks_for(entry.size));
    else
        addBlocks(entry.data, blocks);
}

void StorageEngine::addAttributes(const FileEntry& entry, wstring_view name, BlockRuns& blocks) {
    if (entry.isKnown && (entry.flags & FileEntry::kAttributesTogether) != 0 &&
        entry.attributes != layout_.null)
        blocks.append(entry.attributes, kStorageBlockSize,
                      blocks_for(StorageFileInfo::kLeastSize + 2 * name.size()));
    else
        addBlocks(entry.attributes, blocks);
}

StorageFileInfo StorageEngine::newInfo(wstring_view name, const std::optional<FileEntry>& old) {
    const Date now = universal_now();
    const Date created = old && old->attributes != layout_.null ? infoOrNone(*old, name).created : Date();
    return {created == Date() ? now : created, now, nextVersion(), wstring(name)};
}

FileEntry StorageEngine::writeFile(const StorageFileInfo& info, std::span<const std::byte> content,
                                   std::vector<BlockRange>& ranges) {
    if (info.name.size() > StorageFilesType::kLongestName)
        throw_storage_error(messages::kStorageLongName, urlOf(info.name));
    const std::vector<std::byte> record = info.encode();
    const std::uint64_t recordBlocks = blocks_for(record.size());
    ranges = allocate(recordBlocks + blocks_for(content.size()));
    try {
        std::vector<BlockRange> data = ranges;
        const auto attributes = split_off(data, recordBlocks, layout_.blockLength(kStorageBlockSize));
        write(attributes, record, record.size(), layout_.null);
        write(data, content, content.size(), layout_.null);
        FileEntry entry{{attributes.front().address, data.empty() ? layout_.null : data.front().address}};
        if (hasChecksums()) {
            entry.isKnown = true;
            entry.flags = (attributes.size() == 1 ? FileEntry::kAttributesTogether : 0) |
                          (data.size() <= 1 ? FileEntry::kContentTogether : 0);
            entry.size = content.size();
            entry.contentSum = checksum(content);
            entry.attributesSum = checksum(record);
        }
        return entry;
    } catch (...) {
        giveBack(ranges);
        throw;
    }
}

FileEntry StorageEngine::writeInfo(const StorageFileInfo& info, const FileEntry& content,
                                   std::vector<BlockRange>& ranges) {
    FileEntry entry = writeFile(info, {}, ranges);
    entry.data = content.data;
    entry.size = content.size;
    entry.contentSum = content.contentSum;
    entry.flags =
        (entry.flags & FileEntry::kAttributesTogether) | (content.flags & FileEntry::kContentTogether);
    return entry;
}

/// Puts a new entry into the table, or gives its blocks back.
void StorageEngine::replace(FilesTable::Change& change, const FileEntry& entry, const BlockRuns& released,
                            std::span<const BlockRange> ranges) {
    try {
        release(released);
    } catch (...) {
        giveBack(ranges);
        throw;
    }
    table_.assign(change, entry);
}

void StorageEngine::put(wstring_view name, std::span<const std::byte> content) {
    if (content.size() > kInTurn) {
        InnerWriter file(shared_from_this(), name, OpenMode::replace, false);
        for (std::size_t done = 0; done < content.size(); done += kCopied) {
            Thread::check();
            file.writeAt(done, content.subspan(done, std::min(kCopied, content.size() - done)));
        }
        return file.close();
    }
    const std::lock_guard lock(mutex_);
    const Turn turn(*this);
    refuseOpened(name);
    putContent(name, content);
}

void StorageEngine::copy(wstring_view from, wstring_view to) {
    if (from == to)
        throw StorageException(StorageException::Kind::isDestination, urlOf(from));
    InnerReader source(shared_from_this(), from);
    InnerWriter target(shared_from_this(), to, OpenMode::replace, false);
    copy_content(source, target);
    target.close();
}

void StorageEngine::requireNoTransaction() {
    const std::lock_guard lock(mutex_);
    if (transaction_)
        throw_storage_error(messages::kStorageTransaction, url_);
}

/// What tells the states of a file from each other, as long as the content of the one is pinned.
struct StorageEngine::Version {
    std::uint32_t number; // 0 where the attributes do not say it
    std::uint64_t data;
    friend bool operator==(const Version& a, const Version& b) noexcept {
        return a.number == b.number && (a.number != 0 || a.data == b.data);
    }
};

bool StorageEngine::moveFrom(StorageEngine& source, wstring_view from, wstring_view to, bool alone) {
    std::unique_lock theirs(source.mutex_, std::defer_lock);
    std::unique_lock ours(mutex_, std::defer_lock);
    std::optional<Turn> turn;
    const auto keepOthersOut = [&] {
        std::lock(theirs, ours);
        turn.emplace(source);
    };
    StorageFileInfo info;
    const auto look = [&] {
        const Reading reading(source);
        source.refuseOpened(from);
        const FileEntry entry = source.existing(from);
        info = source.infoOrNone(entry, from);
        return Version{info.attribute, entry.data};
    };
    if (alone)
        keepOthersOut();
    std::optional<InnerReader> content;
    const Version copied = [&] {
        const Reading reading(source);
        content.emplace(source.shared_from_this(), from);
        return look();
    }();
    InnerWriter target(shared_from_this(), to, OpenMode::replace, false);
    copy_content(*content, target);
    if (!alone)
        keepOthersOut();
    if (look() != copied) {
        target.giveUp();
        return false;
    }
    begin();
    try {
        target.close();
        setTimes(to, info.created, info.modified);
        commit();
    } catch (...) {
        rollback();
        throw;
    }
    source.remove(from);
    return true;
}

void StorageEngine::putContent(wstring_view name, std::span<const std::byte> content) {
    checked(name, [&] {
        FilesTable::Change& old = table_.edit(name);
        BlockRuns released(layout_.blockHeaderSize());
        if (old) {
            addAttributes(*old, name, released);
            addContent(*old, released);
        }
        const StorageFileInfo info = newInfo(name, old);
        std::vector<BlockRange> ranges;
        const FileEntry entry = writeFile(info, content, ranges);
        replace(old, entry, released, ranges);
    });
    finishChange();
}

void StorageEngine::publish(wstring_view name, const Content& content, const BlockRuns& released,
                            bool dropOld) {
    checked(name, [&] {
        FilesTable::Change& old = table_.edit(name);
        BlockRuns all = released;
        if (old)
            addAttributes(*old, name, all);
        if (old && dropOld)
            addContent(*old, all);
        FileEntry data;
        data.data = content.address;
        data.size = content.size;
        data.contentSum = content.sum;
        data.flags = content.isTogether ? FileEntry::kContentTogether : 0;
        std::vector<BlockRange> ranges;
        const FileEntry entry = writeInfo(newInfo(name, old), data, ranges);
        replace(old, entry, all, ranges);
    });
    finishChange();
}

void StorageEngine::erase(std::span<const wstring> names) {
    BlockRuns released(layout_.blockHeaderSize());
    std::vector<FilesTable::Change*> changes;
    changes.reserve(names.size());
    for (const wstring& name : names) {
        refuseOpened(name);
        FilesTable::Change& change = table_.edit(name);
        if (!change)
            throw StorageException(StorageException::Kind::fileNotFound, urlOf(name));
        addAttributes(*change, name, released);
        addContent(*change, released);
        changes.push_back(&change);
    }
    release(released);
    for (FilesTable::Change* const change : changes)
        table_.assign(*change, std::nullopt);
}

void StorageEngine::remove(wstring_view name) {
    const std::lock_guard lock(mutex_);
    const Turn turn(*this);
    const wstring names[] = {wstring(name)};
    checked([&] { erase(names); });
    finishChange();
}

std::size_t StorageEngine::removeAll(wstring_view pattern) {
    const std::lock_guard lock(mutex_);
    const Turn turn(*this);
    std::vector<wstring> names;
    checked([&] {
        table_.forEach([&](wstring_view name, const FileEntry&) {
            if (matches_wildcard(name, pattern))
                names.emplace_back(name);
        });
        erase(names);
    });
    finishChange();
    return names.size();
}

void StorageEngine::rename(wstring_view from, wstring_view to) {
    if (from == to)
        throw StorageException(StorageException::Kind::isDestination, urlOf(from));
    const std::lock_guard lock(mutex_);
    const Turn turn(*this);
    const FileEntry source = existing(from);
    refuseOpened(from);
    refuseOpened(to);
    checked(from, [&] {
        StorageFileInfo info = infoOrNone(source, from);
        info.name = to;
        info.attribute = nextVersion(); // the name stands for another content now
        BlockRuns released(layout_.blockHeaderSize());
        addAttributes(source, from, released);
        FilesTable::Change& gone = table_.edit(from);
        FilesTable::Change& target = table_.edit(to);
        if (target) {
            addAttributes(*target, to, released);
            addContent(*target, released);
        }
        std::vector<BlockRange> ranges;
        const FileEntry entry = writeInfo(info, source, ranges);
        replace(target, entry, released, ranges);
        table_.assign(gone, std::nullopt);
    });
    finishChange();
}

void StorageEngine::setTimes(wstring_view name, Date created, Date modified) {
    const std::lock_guard lock(mutex_);
    const Turn turn(*this);
    const FileEntry old = existing(name);
    refuseOpened(name);
    checked(name, [&] {
        StorageFileInfo info = infoOrNone(old, name);
        info.created = created;
        info.modified = modified;
        BlockRuns released(layout_.blockHeaderSize());
        addAttributes(old, name, released);
        std::vector<BlockRange> ranges;
        const FileEntry entry = writeInfo(info, old, ranges);
        replace(table_.edit(name), entry, released, ranges);
    });
    finishChange();
}

} // namespace core
