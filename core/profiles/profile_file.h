// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/profiles/layer_state.h"

#include <core/files/file_system.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace core {

/// Writes a whole settings file whose sorted part is what `walk` has still ahead, and returns its header. The
/// file is empty when the call begins.
ProfileHeader write_sorted(IFile& out, LayerWalk& walk, std::uint64_t generation);
/// Returns what all undamaged lines of a file set, in their order, and whether every line is undamaged.
struct ReadLines {
    LayerState state;
    bool isWhole = false;
};
[[nodiscard]] ReadLines read_all_lines(const InterfacePtr<IFile>& file);

/// A layer in a file that several processes read and write:
///
/// 1. The file is a header, the sorted part, the journal and an end. The journal grows at its end; a change
/// is
///    one line of it, written and made durable before the call returns.
/// 2. Who writes holds the lock of the file that the path leads to. Who reads takes no lock: a line that is
///    just being written has no valid checksum.
/// 3. A journal that has become long is merged into a new sorted part, in a new file that takes the place of
///    the old one. Its generation is one more, so that others know that they have missed nothing.
/// 4. A last line without a valid checksum was never acknowledged and is cut off by the next writer. Any
/// other
///    is damage: the file is copied aside, and what is undamaged of it goes on.
class ProfileFile {
  public:
    /// Tells what is wrong without stopping the call: a message id and what it is filled with.
    using Report = std::function<void(const char* message, const wstring& subject, const wstring& reason)>;
    /// The keys that have changed; a folder with "/" at the end, "/" for everything.
    using Changed = std::vector<wstring>;

    /// Stands for the file at `url`, which need not exist; `files` must outlive it.
    ProfileFile(IFileSystem& files, wstring url, Report report)
        : files_(files), url_(std::move(url)), report_(std::move(report)) {}

    [[nodiscard]] const wstring& url() const noexcept { return url_; }
    /// Returns what the layer holds, as of the last refresh() or change(); the first call reads it. A file
    /// that cannot be read is reported and counts as empty.
    [[nodiscard]] LayerState& state();
    /// Takes over what others have changed, and appends those keys to `changed`. Throws FileException and
    /// ProfileException.
    void refresh(Changed& changed);
    /// Makes the changes, all of them or none; appends to `changed` what others had changed, then the keys of
    /// the changes. Throws as IProfile::change().
    void change(std::span<const KeyChange> changes, Changed& changed);
    /// Sets a file aside in which damage was met, and goes on with what is undamaged of it; reports where to,
    /// or why that cannot be done.
    void mendIfDamaged(Changed& changed);

  private:
    /// What is known of one file that the path led to.
    struct Known {
        InterfacePtr<IFile> file; // null where there was none
        LayerState state;
        ProfileHeader header;  // with generation 0 for an empty file
        std::uint64_t end = 0; // the offset behind the last valid line
        bool hasTorn = false;  // something that is not a valid line stands there
        bool suspect = false;  // and it may be damage
    };

    [[nodiscard]] InterfacePtr<IFile> openForReading();
    [[nodiscard]] Known read(InterfacePtr<IFile> file, Changed* changed);
    void readHeader(Known& known);
    static void readJournal(Known& known, Changed* changed);
    void readAgain(InterfacePtr<IFile> now, Changed& changed);
    void replaceKnown(Known fresh, const Changed& journal, Changed& changed);

    [[nodiscard]] InterfacePtr<IFile> openCurrent(Changed& changed);
    [[nodiscard]] InterfacePtr<IFile> openForWriting();
    [[nodiscard]] bool leadsHere(IFile& file);
    void lock(IFile& file);
    void append(IFile& writer, std::span<const KeyChange> changes);
    void shorten(IFile& writer, Changed& changed);
    void rewrite(LayerState& state, std::uint64_t step, Changed& changed);
    void mend(IFile& writer, Changed& changed);
    [[nodiscard]] wstring freeNameBeside();

    IFileSystem& files_;
    wstring url_;
    Report report_;
    Known known_;
    bool isRead_ = false; // whether known_ holds
};

} // namespace core
