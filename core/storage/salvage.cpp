// SPDX-License-Identifier: Apache-2.0
#include "core/storage/attributes.h"
#include "core/storage/block_chain.h"
#include "core/storage/checksum.h"
#include "core/storage/container_lock.h"
#include "core/storage/salvage_source.h"
#include "core/storage/space_locks.h"

#include <core/files/file_io.h>
#include <core/runtime/errors.h>
#include <core/runtime/internal_class.h>
#include <core/storage/errors.h>
#include <core/storage/file_with_buffer.h>
#include <core/storage/salvage.h>
#include <core/strings/integer_text.h>

#include <algorithm>
#include <span>
#include <utility>

namespace core {
namespace {

constexpr std::uint64_t kSalvaged = std::uint64_t{256} << 10;
// A commit of the new container holds so many bytes or files: few enough to be taken back, and enough that
// making them durable takes no time to speak of.
constexpr std::uint64_t kCommitBytes = std::uint64_t{64} << 20;
constexpr std::uint64_t kCommitFiles = 1000;

/// Copies inner files into the new container.
class Saver {
  public:
    Saver(BlockReader& reader, StorageRW& target, const SalvageOptions& options, std::uint64_t length)
        : reader_(reader), target_(target), options_(options), length_(length) {}

    void save(wstring_view name, const FileEntry& entry, bool isContentKnown);
    void finish() { target_.commit(); }
    void tell(std::uint64_t done) const {
        options_.stop.check();
        if (options_.progress)
            options_.progress(std::min(done, length_), length_);
    }

    /// Counts those as lost that are missing of so many files: not even their names are known.
    void requireFiles(std::uint64_t files) noexcept {
        const std::uint64_t met = report.whole + report.altered + report.cut + report.lost;
        report.lost += files > met ? files - met : 0;
    }

    SalvageReport report;

  private:
    struct Copied {
        std::uint64_t bytes;
        std::uint64_t sum;
    };
    template <class Read>
    [[nodiscard]] Copied copy(wstring_view name, std::uint64_t size, Read read);
    [[nodiscard]] std::size_t readTogether(std::uint64_t address, std::uint64_t offset,
                                           std::span<std::byte> out);
    void count(SalvagedFile file);

    BlockReader& reader_;
    StorageRW& target_;
    const SalvageOptions& options_;
    const std::uint64_t length_;
    std::vector<std::byte> piece_ = std::vector<std::byte>(kSalvaged);
    std::uint64_t done_ = 0;
    std::uint64_t uncommittedBytes_ = 0;
    std::uint64_t uncommittedFiles_ = 0;
};

/// `read(offset, out)` reads what can be read of `out`, from its beginning on.
template <class Read>
Saver::Copied Saver::copy(wstring_view name, std::uint64_t size, Read read) {
    const auto to = target_.open(name, OpenMode::replace);
    Copied copied{0, 0};
    Checksum sum;
    while (copied.bytes < size) {
        const auto part = std::span(piece_).first(
            static_cast<std::size_t>(std::min<std::uint64_t>(kSalvaged, size - copied.bytes)));
        const std::size_t got = read(copied.bytes, part);
        const auto bytes = std::span(std::as_const(piece_)).first(got);
        write_all(*to, bytes);
        sum.add(bytes);
        copied.bytes += got;
        tell(done_ + copied.bytes);
        if (got < part.size())
            break;
    }
    to->close();
    copied.sum = sum.value();
    return copied;
}

/// Reads blocks that lie side by side without their headers, which may be damaged.
std::size_t Saver::readTogether(std::uint64_t address, std::uint64_t offset, std::span<std::byte> out) {
    const StorageLayout& layout = reader_.layout();
    std::size_t done = 0;
    while (done < out.size()) {
        const std::uint64_t at = offset + done;
        const std::uint64_t skip = at % kStorageBlockSize;
        const std::uint64_t from = address + at / kStorageBlockSize * layout.blockLength(kStorageBlockSize) +
                                   layout.blockHeaderSize() + skip;
        const auto room = static_cast<std::size_t>(kStorageBlockSize - skip);
        const auto part = out.subspan(done, std::min(out.size() - done, room));
        const auto bytes = reader_.at(from, part.size(), kSalvaged);
        const std::size_t got = std::min(bytes.size(), part.size());
        std::copy_n(bytes.begin(), got, part.begin());
        done += got;
        if (got < part.size())
            break;
    }
    return done;
}

void Saver::save(wstring_view name, const FileEntry& entry, bool isContentKnown) {
    const StorageLayout& layout = reader_.layout();
    std::optional<StorageFileInfo> info;
    try {
        if (entry.attributes != layout.null)
            info = read_attributes(reader_, entry.attributes, name);
    } catch (const ChainInFileExc&) { // its times are not known, then
    }
    SalvagedFile file{.name = wstring(name)};
    BlockChain chain(layout);
    bool opens = true;
    try {
        chain.open(reader_, entry.data, kSalvaged);
        file.size = chain.size();
    } catch (const ChainInFileExc&) {
        opens = false;
    }
    if (uncommittedFiles_++ == 0)
        target_.begin();
    Copied copied{0, 0};
    if (opens)
        copied = copy(name, file.size, [&](std::uint64_t offset, std::span<std::byte> out) {
            return read_what_is_there(chain, reader_, offset, out);
        });
    const auto isRight = [&] {
        return copied.bytes == entry.size && (entry.size == 0 || copied.sum == entry.contentSum);
    };
    if (entry.isKnown && !isRight()) { // headers may be all that is damaged
        file.size = entry.size;
        if (entry.isTogether())
            copied = copy(name, entry.size, [&](std::uint64_t offset, std::span<std::byte> out) {
                return readTogether(entry.data, offset, out);
            });
        opens = opens || copied.bytes != 0;
    }
    file.saved = copied.bytes;
    file.state = !opens || (file.saved == 0 && file.size != 0) ? SalvagedFile::State::lost
                 : file.saved < file.size || !isContentKnown   ? SalvagedFile::State::cut
                 : entry.isKnown && !isRight()                 ? SalvagedFile::State::altered
                                                               : SalvagedFile::State::whole;
    if (file.state == SalvagedFile::State::lost && target_.contains(name))
        target_.remove(name);
    if (info && file.state != SalvagedFile::State::lost)
        target_.setTimes(name, info->created, info->modified);
    uncommittedBytes_ += file.saved;
    done_ += file.saved;
    count(std::move(file));
    if (uncommittedBytes_ >= kCommitBytes || uncommittedFiles_ >= kCommitFiles) {
        target_.commit();
        uncommittedBytes_ = uncommittedFiles_ = 0;
    }
    tell(done_);
}

void Saver::count(SalvagedFile file) {
    using State = SalvagedFile::State;
    report.whole += file.state == State::whole ? 1 : 0;
    report.altered += file.state == State::altered ? 1 : 0;
    report.cut += file.state == State::cut ? 1 : 0;
    report.lost += file.state == State::lost ? 1 : 0;
    if (file.state != State::whole)
        report.files.push_back(std::move(file));
}

/// A container as it was when this was made. Others may commit meanwhile: what it used then is pinned, and
/// the head, which they write over, was read before.
class PinnedSource {
  public:
    PinnedSource(IFile& file, const StorageLayout& layout) : pins_(InterfacePtr<IFile>(&file), file.url()) {
        const ContainerLock lock(InterfacePtr<IFile>(&file), layout, file.url());
        lock.beginReading();
        try {
            file_ = make_object<PatientFile>(file);
            file_->keep(layout.emptyLength());
            if (length() > layout.emptyLength())
                space_ = {{layout.emptyLength(), length()}};
            pins_.pin(space_);
        } catch (...) {
            lock.endReading();
            throw;
        }
        lock.endReading();
    }
    ~PinnedSource() { pins_.unpin(space_); }
    PinnedSource(const PinnedSource&) = delete;
    PinnedSource& operator=(const PinnedSource&) = delete;

    [[nodiscard]] IFile& file() const noexcept { return *file_; }
    [[nodiscard]] std::uint64_t length() const { return file_->length(); }

  private:
    SpaceLocks pins_;
    SpaceLocks::Ranges space_;
    InterfacePtr<SCOM_InternalClass<PatientFile>> file_;
};

} // namespace

SalvageReport salvage(IFile& source, const StorageLayout& layout, StorageRW& target,
                      const SalvageOptions& options) {
    if (target.isIn(source))
        throw StorageException(StorageException::Kind::isDestination, source.url());
    const PinnedSource pinned(source, layout);
    const std::uint64_t length = pinned.length();
    BlockReader reader(pinned.file(), layout);
    reader.setEnd(
        std::min(length + kSalvaged, layout.limit())); // the last block may be cut in its empty part
    Saver saver(reader, target, options, length);
    SalvageSource found(reader, length, [&](std::uint64_t done) { saver.tell(done); });
    try {
        const auto by = found.find([&](wstring_view name, const FileEntry& entry, bool isContentKnown) {
            saver.save(name, entry, isContentKnown);
        });
        if (!by)
            throw StorageException(StorageException::Kind::badFormat, source.url());
        saver.report.source = *by;
        saver.requireFiles(found.expected());
    } catch (...) {
        target.rollback();
        throw;
    }
    saver.finish();
    return std::move(saver.report);
}

wstring SalvagedFile::text() const {
    switch (state) {
    case State::whole:
        return message_text("IDS_STSALVAGE_WHOLE", {name});
    case State::altered:
        return message_text("IDS_STSALVAGE_ALTERED", {name});
    case State::cut:
        return message_text("IDS_STSALVAGE_CUT", {name, string_intto(saved), string_intto(size)});
    case State::lost:
        break;
    }
    return message_text("IDS_STSALVAGE_LOST", {name});
}

} // namespace core
