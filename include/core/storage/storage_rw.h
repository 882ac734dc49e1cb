// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/files/file.h>
#include <core/runtime/api.h>
#include <core/storage/compact.h>
#include <core/storage/layout.h>
#include <core/storage/storage_check.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace core {

class StorageEngine;

/// How a container is opened.
struct StorageOptions {
    bool readOnly = false; ///< Whether changes are refused. The file need not be open for writing then.
    /// Whether a table of inner files that is not in order is accepted. It is put in order in memory, so that
    /// every file is found, and on disk by the next change.
    bool noSortedCheck = false;
};

/// What a search finds of an inner file.
struct StorageFound {
    wstring name{};         ///< The name of the inner file.
    std::uint64_t size = 0; ///< Bytes of content; 0 when they are not known.
    Date created{};         ///< Universal time; empty when it is not known.
    Date modified{};        ///< Universal time; empty when it is not known.
    /// The version of the file, StorageFileInfo::attribute; 0 when it is not known.
    std::uint32_t version = 0;
    /// Whether the attributes or the beginning of the content cannot be read. Damage further on is found by
    /// reading the content, or by StorageRW::check().
    bool damaged = false;
};

/// A container opened for reading and writing: one file that holds many named inner files. Names are any
/// text, the empty one included, and differ when their letters differ in case. A handle: copies stand for the
/// same open container, which is closed with the last copy and the last open inner file.
///
/// Each change is committed on its own, durable when the call returns, or together with others between
/// begin() and commit(). A crash at any moment leaves the state before a commit or after it. A failed call
/// changes nothing; a failed commit takes all of its changes back.
///
/// Several processes may have a container open. Reads see one committed state. A change waits for the
/// container's turn, which one open container has at a time, in the order of arrival; 20 seconds without any
/// commit at most.
///
/// Every call can throw StorageException (damage; a turn that another holds too long; its kinds say more) and
/// FileException from the file below. After a failed flush nothing more is written: open the container again.
/// Threads: calls may come from any thread and take effect one after the other; a transaction is that of all
/// threads.
class CORE_API StorageRW {
  public:
    /// Opens the container in `file`, to which it takes a reference. `url` names the container in messages;
    /// the file's own URL does when it is empty. Throws StorageException of kind badFormat when the file
    /// holds no container of this layout.
    explicit StorageRW(const InterfacePtr<IFile>& file, const StorageLayout& layout = kStorageLayout32,
                       const StorageOptions& options = {}, const wstring& url = {});

    /// Makes an empty container in `file`. Throws FileException when the file is not empty.
    static void create(IFile& file, const StorageLayout& layout = kStorageLayout32);
    /// Makes an empty container in `file` if that is empty, and returns whether it did. Of several processes
    /// that try at once one makes it, and the others find it.
    static bool createIfEmpty(IFile& file, const StorageLayout& layout = kStorageLayout32);
    /// Makes an empty container in place of all that `file` holds, as soon as nobody else changes that. A
    /// crash leaves the old container or the empty one.
    static void replace(IFile& file, const StorageLayout& layout = kStorageLayout32);

    // the whole container

    /// Returns the layout that the container was opened with. The reference is valid for ever.
    [[nodiscard]] const StorageLayout& layout() const noexcept;
    /// Returns the URL that names the container in messages. The reference is valid as long as the container
    /// is open.
    [[nodiscard]] const wstring& url() const noexcept;
    /// Returns the URL below which inner files are addressed, empty unless set. The reference is valid until
    /// setRootURL().
    [[nodiscard]] const wstring& rootURL() const noexcept;
    /// Sets the URL below which inner files are addressed, for all handles of the open container. Threads:
    /// before the container is shared.
    void setRootURL(wstring root);
    /// Returns the change counter: how many commits the container has seen, those of other processes
    /// included.
    [[nodiscard]] std::uint64_t changeCounter() const;
    /// Moves all inner files side by side to the start of the file, which becomes as small as it can be. It
    /// goes in steps, each of them a commit after which others have their turn, and needs room for one step
    /// or the largest inner file. Files that are damaged stay where they are, and what it took to find them;
    /// space that somebody still reads stays, too. Throws in the middle of a transaction, and ThreadDeath on
    /// a stop.
    CompactReport compact(const CompactOptions& options = {});
    /// Walks every chain and returns everything that is wrong. Damage that it finds is not thrown, only what
    /// prevents the container from being read at all. Throws in the middle of a transaction that has changed
    /// something. Takes time in proportion to the file, and 16 bytes of memory for each piece of it that is
    /// used without a gap, whatever the damage; only so many problems are listed.
    [[nodiscard]] StorageCheck check() const;
    /// Returns how the container uses its file, as far as damage lets that be found.
    [[nodiscard]] StorageInfo info() const;
    /// Returns whether the container lies in `file`, whatever name that was opened by.
    [[nodiscard]] bool isIn(IFile& file) const;
    /// Returns whether both handles stand for one container, even if it was opened twice.
    [[nodiscard]] bool isSame(const StorageRW& other) const;

    // several changes as one

    /// Begins a transaction: from here on changes wait for commit(). Throws when there is one already.
    void begin();
    /// Returns whether a transaction is open.
    [[nodiscard]] bool inTransaction() const;
    /// Makes the changes of the transaction durable as one commit, and ends it; when it throws, all of them
    /// are taken back. Files still open for writing are not part of it. Does nothing without a transaction.
    void commit();
    /// Takes the changes of the transaction back, also those to files still open for writing, and ends it.
    /// Does nothing without a transaction.
    void rollback();

    // inner files

    /// Returns whether there is an inner file of this name.
    [[nodiscard]] bool contains(wstring_view name) const;
    /// Returns the files whose names match `pattern` ("*", "?"), in the order of the table.
    [[nodiscard]] std::vector<StorageFound> find(wstring_view pattern = u"*") const;
    /// Returns the same of a container whose table may be damaged in part: appends a problem for each part of
    /// the table that cannot be read, and goes on with the other files.
    [[nodiscard]] std::vector<StorageFound> find(wstring_view pattern,
                                                 std::vector<StorageProblem>& problems) const;
    /// Returns the names that match `pattern`, in the order of the table. No inner file is read for it.
    [[nodiscard]] std::vector<wstring> names(wstring_view pattern = u"*") const;
    /// Returns the number of inner files. Nothing is read for it besides the state of the container.
    [[nodiscard]] std::uint64_t count() const;
    /// Returns what a search would find of this one file, also of a damaged one. Throws if none exists.
    [[nodiscard]] StorageFound describe(wstring_view name) const;
    /// Opens an inner file: a FileWithBuffer for OpenMode::read, a FileWithBuffer2 for the other modes. Their
    /// pages say what they throw. The file keeps the container open.
    [[nodiscard]] InterfacePtr<IFile> open(wstring_view name, OpenMode mode);
    /// Returns the whole content of a file, of one committed state. Throws if no file has that name,
    /// and FileException when memory cannot address the content.
    [[nodiscard]] std::vector<std::byte> get(wstring_view name) const;
    /// Makes a file with this content, or replaces the content of an old one. Throws when the file is open
    /// for writing or the name is longer than StorageFilesType::kLongestName.
    void put(wstring_view name, std::span<const std::byte> content);
    /// Removes a file. Throws if no file has that name or it is open for writing.
    void remove(wstring_view name);
    /// Removes the files whose names match `pattern`, in one commit; returns how many that were. Throws when
    /// one of them is open for writing.
    std::size_t removeAll(wstring_view pattern);
    /// Gives a file another name, with its times; an existing file of the new name is replaced. The content
    /// is not touched. Throws when there is no such file, when the names are equal (isDestination), or when
    /// either is open for writing.
    void rename(wstring_view from, wstring_view to);
    /// Makes `to` a copy of `from`, with new times, or replaces it by one. Throws as rename() does, but
    /// `from` may be open for writing.
    void copy(wstring_view from, wstring_view to);
    /// Moves a file of another container into this one, with its times. Others can use both containers
    /// meanwhile; a file that they change while it is copied is copied again, now without letting them in. A
    /// crash may leave it in both containers, never in none. Throws as rename() does, and in the middle of a
    /// transaction of this container.
    void moveFrom(StorageRW& source, wstring_view from, wstring_view to);
    /// Sets the times of a file, in universal time. Throws if no file has that name or it is open for
    /// writing.
    void setTimes(wstring_view name, Date created, Date modified);

  private:
    friend class FileWithBuffer;
    friend class FileWithBuffer2;
    friend class StorageReading;
    std::shared_ptr<StorageEngine> engine_;
};

/// A container in the 64-bit layout.
class CORE_API StorageRW64 : public StorageRW {
  public:
    /// Opens the container in `file`, as StorageRW does.
    explicit StorageRW64(const InterfacePtr<IFile>& file, const StorageOptions& options = {},
                         const wstring& url = {});

    /// Makes an empty container in `file`, as StorageRW::create() does.
    static void create(IFile& file);
    /// Makes an empty container in `file` if that is empty, as StorageRW::createIfEmpty() does.
    static bool createIfEmpty(IFile& file);
    /// Makes an empty container in place of all that `file` holds, as StorageRW::replace() does.
    static void replace(IFile& file);
};

/// Makes many reads see one committed state as long as it lives, and saves each of them its own lock. Commits
/// of other processes wait meanwhile. It keeps the container open. May be nested.
class CORE_API StorageReading {
  public:
    /// Begins reading. Throws as a read of the container does.
    explicit StorageReading(const StorageRW& storage);
    ~StorageReading();
    StorageReading(const StorageReading&) = delete;
    StorageReading& operator=(const StorageReading&) = delete;

  private:
    std::shared_ptr<StorageEngine> engine_;
};

/// A transaction that takes its changes back at its end unless it was committed. The handle must outlive it.
class StorageTransaction {
  public:
    /// Begins a transaction. Throws when the container has one already.
    explicit StorageTransaction(StorageRW& storage) : storage_(storage) { storage_.begin(); }
    ~StorageTransaction() {
        if (open_)
            storage_.rollback();
    }
    StorageTransaction(const StorageTransaction&) = delete;
    StorageTransaction& operator=(const StorageTransaction&) = delete;
    /// Makes the changes durable as one commit, as StorageRW::commit() does; when it throws, they are taken
    /// back.
    void commit() {
        open_ = false;
        storage_.commit();
    }

  private:
    StorageRW& storage_;
    bool open_ = true;
};

} // namespace core
