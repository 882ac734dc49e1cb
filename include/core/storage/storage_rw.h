// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/date.h>
#include <core/files/file.h>
#include <core/runtime/api.h>
#include <core/storage/layout.h>
#include <core/storage/storage_check.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace core {

class Container;

struct StorageOptions {
    bool readOnly = false;
    /// Takes on trust that the table of inner files is sorted; in a table that is
    /// not, files may not be found.
    bool noSortedCheck = false;
};

/// What a search finds of an inner file.
struct StorageFound {
    wstring name{};
    std::uint64_t size = 0;
    Date created{};  ///< universal time
    Date modified{}; ///< universal time
};

/// A container opened for reading and writing: one file that holds many named inner files. Names are any
/// text, the empty one included, and differ when their letters differ in case. A handle: copies stand for the
/// same open container, which is closed with the last copy and the last open inner file.
///
/// Each change is committed on its own, durable when the call returns, or together with others between
/// begin() and commit(). A crash at any moment leaves the state before a commit or after it. A failed call
/// changes nothing; a failed commit takes all of its changes back.
///
/// Several processes may have a container open. Reads see one committed state; who wants to change something
/// waits for its turn, 20 seconds at most.
///
/// Errors: StorageException (damage, with the URL; a missing file; see its kinds), FileException from the
/// file below. After a failed flush nothing more is written: open the container again.
/// Threads: calls may come from any thread, one after the other takes effect; a transaction is everybody's.
class CORE_API StorageRW {
  public:
    /// Opens the container in `file`, which `url` names in messages.
    explicit StorageRW(InterfacePtr<IFile> file, const StorageLayout& layout = kStorageLayout32,
                       const StorageOptions& options = {}, const wstring& url = {});

    /// Makes an empty container in `file`, which must be empty.
    static void create(IFile& file, const StorageLayout& layout = kStorageLayout32);
    /// The same, if the file is empty; who comes second when several processes try finds the container of the
    /// first. Returns whether it made one.
    static bool createIfEmpty(IFile& file, const StorageLayout& layout = kStorageLayout32);
    /// The same in place of all that the file holds, once nobody else changes it.
    static void replace(IFile& file, const StorageLayout& layout = kStorageLayout32);

    // the whole container

    [[nodiscard]] const StorageLayout& layout() const noexcept;
    [[nodiscard]] const wstring& url() const noexcept;
    /// Inner files are addressed below it; empty unless set.
    [[nodiscard]] const wstring& rootURL() const noexcept;
    void setRootURL(wstring root);
    /// Grows by one with every commit.
    [[nodiscard]] std::uint64_t changeCounter() const;
    /// Rewrites all inner files side by side at the start of the file, which becomes as small as it can be.
    /// Needs room for them a second time meanwhile. Where nothing is free, nothing is done.
    void compact();
    /// Walks every chain and says everything that is wrong. Throws only when the
    /// container cannot be read at all.
    [[nodiscard]] StorageCheck check() const;
    [[nodiscard]] StorageInfo info() const;
    /// Whether the container lies in this file, opened by whatever name; and whether both are one container.
    [[nodiscard]] bool isIn(IFile& file) const;
    [[nodiscard]] bool isSame(const StorageRW& other) const;

    // several changes as one

    /// From here on changes wait for commit(). Throws when that is so already.
    void begin();
    /// Commits, and ends the transaction whether that succeeds or not. Files still open for
    /// writing are not part of it.
    void commit();
    /// Takes the changes back, those to files still open for writing too.
    void rollback();

    // inner files

    [[nodiscard]] bool contains(wstring_view name) const;
    /// Files whose names match ("*", "?"), in the order of the table.
    [[nodiscard]] std::vector<StorageFound> find(wstring_view pattern = u"*") const;
    /// What a search would find of the one file.
    [[nodiscard]] StorageFound describe(wstring_view name) const;
    /// Opens an inner file. Open for writing, it holds the container's turn, and its content becomes visible
    /// when it is closed (or flushed); let go of by an exception, it is given up instead. A file open for
    /// reading fails once its content is changed.
    [[nodiscard]] InterfacePtr<IFile> open(wstring_view name, OpenMode mode);
    /// The whole content, of one committed state.
    [[nodiscard]] std::vector<std::byte> get(wstring_view name) const;
    /// Makes a file or replaces its content.
    void put(wstring_view name, std::span<const std::byte> content);
    void remove(wstring_view name);
    /// Removes what matches, in one commit; returns how many files that were.
    std::size_t removeAll(wstring_view pattern);
    /// An existing file of the new name is replaced. The content is not touched.
    void rename(wstring_view from, wstring_view to);
    void copy(wstring_view from, wstring_view to);
    /// Moves a file of another container into this one, with its times. Nobody else can change it meanwhile;
    /// a crash may leave it in both.
    void moveFrom(StorageRW& source, wstring_view from, wstring_view to);
    void setTimes(wstring_view name, Date created, Date modified);

  private:
    friend class FileWithBuffer;
    friend class FileWithBuffer2;
    friend class StorageReading;
    std::shared_ptr<Container> container_;
};

class CORE_API StorageRW64 : public StorageRW {
  public:
    explicit StorageRW64(InterfacePtr<IFile> file, const StorageOptions& options = {},
                         const wstring& url = {});

    static void create(IFile& file);
    static bool createIfEmpty(IFile& file);
    static void replace(IFile& file);
};

/// Makes many reads see one committed state, and saves each of them its own lock. Commits of
/// other processes wait meanwhile.
class CORE_API StorageReading {
  public:
    explicit StorageReading(const StorageRW& storage);
    ~StorageReading();
    StorageReading(const StorageReading&) = delete;
    StorageReading& operator=(const StorageReading&) = delete;

  private:
    std::shared_ptr<Container> container_;
};

/// A transaction that takes its changes back unless it is committed.
class StorageTransaction {
  public:
    explicit StorageTransaction(StorageRW& storage) : storage_(storage) { storage_.begin(); }
    ~StorageTransaction() {
        if (open_)
            storage_.rollback();
    }
    StorageTransaction(const StorageTransaction&) = delete;
    StorageTransaction& operator=(const StorageTransaction&) = delete;
    void commit() {
        open_ = false;
        storage_.commit();
    }

  private:
    StorageRW& storage_;
    bool open_ = true;
};

} // namespace core
