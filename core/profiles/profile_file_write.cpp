// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/profile_file.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/url.h>
#include <core/profiles/errors.h>
#include <core/runtime/clock.h>
#include <core/strings/integer_text.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <new>
#include <thread>
#include <utility>

namespace core {
namespace {

/// Writers lock one byte that no file reaches.
constexpr std::uint64_t kLockOffset = kMaxFileLength - 1;
/// How long the journal may become, in bytes and in parts of what is sorted: opening reads all of it, and
/// merging it writes the whole file.
constexpr std::uint64_t kMostJournal = std::uint64_t{64} << 10;
constexpr std::uint64_t kSortedPart = 256;
constexpr std::size_t kFlushed = std::size_t{64} << 10;

std::span<const std::byte> bytes_of(std::string_view text) noexcept {
    return std::as_bytes(std::span(text));
}

/// A file that was to be merged is damaged.
struct DamageFound {};

/// Takes back what an append has written, as far as that can be done.
void undo_append(IFile& writer, std::uint64_t end) noexcept {
    try {
        writer.truncate(end);
        write_all_at(writer, end, bytes_of(kProfileEnd));
    } catch (...) { // the line stays as an invalid one, or counts without having been acknowledged
    }
}

} // namespace

ProfileHeader write_sorted(IFile& out, LayerWalk& walk, std::uint64_t generation) {
    ProfileHeader header{generation, ProfileHeader::kSize};
    std::string piece = header_line(header);
    std::uint64_t written = 0;
    const auto write = [&] {
        write_all_at(out, written, bytes_of(piece));
        written += piece.size();
        piece.clear();
    };
    for (; !walk.isAtEnd(); walk.next()) {
        append_record(piece, std::array{KeyChange{walk.key(), walk.text()}});
        if (piece.size() >= kFlushed)
            write();
    }
    header.journal = written + piece.size();
    piece += kProfileEnd;
    write();
    write_all_at(out, 0, bytes_of(header_line(header)));
    return header;
}

void ProfileFile::change(std::span<const KeyChange> changes, Changed& changed) {
    const InterfacePtr<IFile> writer = openCurrent(changed); // its lock ends with it
    const std::size_t before = changed.size();
    for (const KeyChange& one : changes)
        changed.push_back(one.key);
    try {
        if (known_.header.generation == 0) { // an empty file: it begins with its first values
            LayerState first;
            first.apply(changes);
            rewrite(first, 1, changed);
            return;
        }
        append(*writer, changes);
    } catch (...) {
        changed.resize(before);
        known_.header.generation = 0; // what the file holds is compared before anything else is written
        throw;
    }
    shorten(*writer, changed);
}

/// Merges a journal that has become long into the sorted part.
void ProfileFile::shorten(IFile& writer, Changed& changed) {
    if (!isRead_ || known_.end - known_.header.journal <= kMostJournal + known_.header.journal / kSortedPart)
        return;
    try {
        try {
            rewrite(known_.state, 1, changed);
        } catch (const DamageFound&) {
            mend(writer, changed);
        }
    } catch (const Exception&) { // the change itself is kept, and the next one tries again
        isRead_ = false;
    } catch (const std::bad_alloc&) {
        isRead_ = false;
    }
}

/// Opens and locks the file for a change, mended where it is damaged, and takes over what others have
/// changed.
InterfacePtr<IFile> ProfileFile::openCurrent(Changed& changed) {
    for (;;) {
        InterfacePtr<IFile> writer = openForWriting();
        refresh(changed);
        if (known_.hasTorn) // or a line that was read before has been taken back, and others follow it
            readAgain(openForReading(), changed);
        if (!known_.suspect && !known_.state.isDamaged())
            return writer;
        mend(*writer, changed); // another file stands at the path then
    }
}

void ProfileFile::mendIfDamaged(Changed& changed) {
    if (!known_.suspect && !known_.state.isDamaged())
        return;
    try {
        (void)openCurrent(changed);
    } catch (const Exception& e) {
        report_(messages::kProfileDamagedStays, shown_url(url_), e.description());
    }
}

/// Opens the file and locks it. Creates the file if it does not exist.
InterfacePtr<IFile> ProfileFile::openForWriting() {
    if (url_.empty())
        throw_error<ProfileException>(messages::kProfileNoFile);
    for (;;) {
        InterfacePtr<IFile> file;
        try {
            file = files_.openURL(url_, OpenMode::create);
        } catch (const FileException& e) {
            const std::size_t slash = url_.rfind(u'/');
            if (e.systemError() != ENOENT || slash == wstring::npos || !files_.capabilities(url_).folders)
                throw;
            files_.makeFolder(url_.substr(0, slash));
            file = files_.openURL(url_, OpenMode::create);
        }
        lock(*file);
        if (leadsHere(*file))
            return file;
    }
}

/// Whether the path still leads to the file, or another one has taken its place before the lock was had.
bool ProfileFile::leadsHere(IFile& file) {
    const InterfacePtr<IFile> now = openForReading();
    const InterfacePtr<ISharedFile> shared(&file);
    return now && (!shared || shared->isSameFile(*now));
}

void ProfileFile::lock(IFile& file) {
    using namespace std::chrono;
    const InterfacePtr<ISharedFile> shared(&file);
    if (!shared) // a scheme whose files one process has for itself
        return;
    constexpr int kTurns = 64;
    constexpr milliseconds kMost = seconds(30);
    for (int i = 0; i < kTurns; ++i) {
        if (shared->tryLock(kLockOffset, 1, LockKind::exclusive))
            return;
        std::this_thread::yield();
    }
    for (milliseconds waited{0}; waited < kMost; waited += milliseconds(1)) {
        current_clock().sleep(milliseconds(1));
        if (shared->tryLock(kLockOffset, 1, LockKind::exclusive))
            return;
    }
    throw_error<ProfileException>(messages::kProfileBusy, {shown_url(url_)});
}

/// Writes the changes as one line behind the valid ones, and makes it durable.
void ProfileFile::append(IFile& writer, std::span<const KeyChange> changes) {
    std::string line;
    append_record(line, changes);
    const std::uint64_t begin = known_.end;
    const std::uint64_t end = begin + line.size();
    line += kProfileEnd;
    try {
        if (known_.hasTorn) // more of it may stand there than the new line covers
            writer.truncate(begin);
        write_all_at(writer, begin, bytes_of(line));
        writer.flush();
    } catch (...) {
        undo_append(writer, begin);
        throw;
    }
    known_.hasTorn = false;
    try {
        known_.state.apply(changes);
        known_.end = end;
    } catch (const std::bad_alloc&) { // it is kept, and is read when it is asked for
        isRead_ = false;
    }
}

/// Puts a file with `state` as its sorted part in the place of the one that is there.
void ProfileFile::rewrite(LayerState& state, std::uint64_t step, Changed& changed) {
    const std::uint64_t generation = known_.header.generation + step;
    files_.writeFile(url_, [&](IFile& out) {
        LayerWalk walk(state);
        (void)write_sorted(out, walk, generation);
        if (state.isDamaged()) // what was passed over must not be lost
            throw DamageFound();
    });
    try {
        readAgain(openForReading(), changed); // others may have added to it since
        isRead_ = true;
    } catch (...) { // what is written is kept
        isRead_ = false;
    }
}

/// Copies a damaged file aside and goes on with what is undamaged of it.
void ProfileFile::mend(IFile& writer, Changed& changed) {
    ReadLines lines = read_all_lines(InterfacePtr<IFile>(&writer));
    if (lines.isWhole) { // a line that was just being written when it was read
        readAgain(openForReading(), changed);
        return;
    }
    const wstring aside = freeNameBeside();
    files_.copyFile(url_, aside);
    rewrite(lines.state, 2, changed); // not the next generation: others have to compare
    report_(messages::kProfileDamaged, shown_url(url_), shown_url(aside));
}

wstring ProfileFile::freeNameBeside() {
    wstring name = url_ + u".damaged";
    for (std::uint64_t i = 2; files_.describe(name); ++i)
        name = url_ + u".damaged-" + string_intto(i);
    return name;
}

} // namespace core
