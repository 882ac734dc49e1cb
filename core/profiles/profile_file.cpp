// SPDX-License-Identifier: Apache-2.0
#include "core/profiles/profile_file.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>
#include <core/files/url.h>
#include <core/profiles/errors.h>

#include <cerrno>
#include <optional>
#include <utility>

namespace core {
namespace {

/// The keys by which two states of a layer differ.
void add_differences(LayerState& before, LayerState& after, ProfileFile::Changed& changed) {
    LayerWalk old(before);
    LayerWalk now(after);
    while (!old.isAtEnd() || !now.isAtEnd()) {
        if (now.isAtEnd() || (!old.isAtEnd() && old.key() < now.key())) {
            changed.push_back(old.key());
            old.next();
        } else if (old.isAtEnd() || now.key() < old.key()) {
            changed.push_back(now.key());
            now.next();
        } else {
            if (old.text() != now.text())
                changed.push_back(now.key());
            old.next();
            now.next();
        }
    }
}

bool is_same(IFile& a, IFile& b) {
    const InterfacePtr<ISharedFile> shared(&a);
    return shared && shared->isSameFile(b);
}

} // namespace

LayerState& ProfileFile::state() {
    if (!isRead_) {
        try {
            known_ = read(openForReading(), nullptr);
        } catch (const Exception& e) { // settings never keep a program from running
            report_(messages::kProfileUnreadable, shown_url(url_), e.description());
            known_ = {};
        }
        isRead_ = true;
        Changed ignored; // nobody has seen an older state
        mendIfDamaged(ignored);
    }
    return known_.state;
}

void ProfileFile::refresh(Changed& changed) {
    if (!isRead_) { // nobody has seen an older state
        known_ = read(openForReading(), nullptr);
        isRead_ = true;
        return;
    }
    InterfacePtr<IFile> now = openForReading();
    if (!now && !known_.file)
        return;
    const bool isKnown = now && known_.file && is_same(*now, *known_.file);
    if (isKnown && known_.header.generation != 0 && now->length() >= known_.end) {
        readJournal(known_, &changed);
        return;
    }
    readAgain(std::move(now), changed);
}

/// Reads the whole of what the path leads to now.
void ProfileFile::readAgain(InterfacePtr<IFile> now, Changed& changed) {
    Changed journal;
    Known fresh = read(std::move(now), &journal);
    replaceKnown(std::move(fresh), journal, changed);
}

/// Null where there is no file.
InterfacePtr<IFile> ProfileFile::openForReading() {
    // Few systems have a file for all users: that it is not there is asked, as an exception takes long to
    // make.
    if (url_.empty() || (!known_.file && !files_.describe(url_)))
        return nullptr;
    try {
        return files_.openURL(url_, OpenMode::read);
    } catch (const FileException& e) {
        if (e.systemError() == ENOENT || e.systemError() == ENOTDIR)
            return nullptr;
        throw;
    }
}

ProfileFile::Known ProfileFile::read(InterfacePtr<IFile> file, Changed* changed) {
    Known known;
    known.file = std::move(file);
    if (!known.file || known.file->length() == 0)
        return known;
    readHeader(known);
    if (known.suspect) {
        ReadLines lines = read_all_lines(known.file);
        known.state = std::move(lines.state);
    } else {
        readJournal(known, changed);
    }
    return known;
}

void ProfileFile::readHeader(Known& known) {
    std::string text(ProfileHeader::kSize, '\0');
    text.resize(read_all_at(*known.file, 0, std::as_writable_bytes(std::span(text))));
    if (is_later_version(text))
        throw_error<ProfileException>(messages::kProfileVersion, {shown_url(url_)});
    const std::optional<ProfileHeader> header = read_header(text);
    if (!header || header->journal > known.file->length()) {
        known.suspect = true;
        return;
    }
    known.header = *header;
    known.end = header->journal;
    known.state = LayerState(SortedLines(known.file, ProfileHeader::kSize, header->journal));
}

/// Takes over the lines behind those that are known.
void ProfileFile::readJournal(Known& known, Changed* changed) {
    const std::uint64_t length = known.file->length();
    Lines lines(known.file);
    known.hasTorn = false;
    known.suspect = false;
    for (std::uint64_t offset = known.end; offset < length;) {
        const Lines::Line line = lines.at(offset, length);
        const auto record = line.isWhole ? read_record(line.text) : std::nullopt;
        if (record && known.hasTorn) {
            known.suspect = true; // something valid behind something that is not
            return;
        }
        if (record) {
            for (const KeyChange& one : *record) { // first: what is taken over is told in any case
                if (changed != nullptr)
                    changed->push_back(one.key);
            }
            known.state.apply(*record);
            known.end = line.next;
        } else if (!(line.isWhole && line.text == "}" && line.next == length)) {
            known.hasTorn = true;
        }
        if (line.next == offset) // the file has become shorter
            return;
        offset = line.next;
    }
}

/// Goes on with another file, which has come in the place of the known one; `journal` are the keys of its
/// journal.
void ProfileFile::replaceKnown(Known fresh, const Changed& journal, Changed& changed) {
    const std::uint64_t generation = known_.header.generation;
    bool isExact = false;
    if (generation != 0 && fresh.header.generation == generation + 1) {
        try {
            readJournal(known_, &changed); // the rest of what became the sorted part
            isExact = !known_.suspect;
        } catch (const FileException&) { // then all is compared
        }
    }
    if (isExact)
        changed.insert(changed.end(), journal.begin(), journal.end());
    else
        add_differences(known_.state, fresh.state, changed);
    known_ = std::move(fresh);
}

ReadLines read_all_lines(const InterfacePtr<IFile>& file) {
    ReadLines result;
    const std::uint64_t length = file->length();
    Lines lines(file);
    std::uint64_t journal = length; // where it begins: no line reaches over it
    bool isSound = false;
    bool hasEnd = false;
    for (std::uint64_t offset = 0; offset < length;) {
        const Lines::Line line = lines.at(offset, offset < journal ? journal : length);
        const auto record = line.isWhole ? read_record(line.text) : std::nullopt;
        if (offset == 0) {
            const auto header = read_header(std::string(line.text) + '\n');
            isSound = line.isWhole && header && header->journal <= length;
            if (isSound)
                journal = header->journal;
        } else if (line.isWhole && line.text == "}" && line.next == length) {
            hasEnd = true;
        } else if (!record) {
            isSound = false;
        }
        if (record)
            result.state.apply(*record);
        if (line.next == offset) // the file has become shorter
            break;
        offset = line.next;
    }
    result.isWhole = isSound && hasEnd;
    return result;
}

} // namespace core
