// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_chain.h"
#include "core/storage/block_reader.h"
#include "core/storage/chain_survey.h"
#include "core/storage/compaction.h"
#include "core/storage/container_head.h"
#include "core/storage/container_lock.h"
#include "core/storage/engine_mutex.h"
#include "core/storage/files_table.h"
#include "core/storage/free_space.h"
#include "core/storage/known_chains.h"
#include "core/storage/node_store.h"
#include "core/storage/space_locks.h"
#include "core/storage/tree_files.h"
#include "core/storage/write_queue.h"

#include <core/files/file.h>
#include <core/storage/errors.h>
#include <core/storage/file_info.h>
#include <core/storage/storage_rw.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace core {

class InnerFile;

/// An open container: what StorageRW and the open inner files of it share.
///
/// The committed state on disk is never written over. Changes go to fresh blocks, and one write of the head
/// (see ContainerHead) makes them the committed state:
///
/// 1. blocks of changed files, of the new table and of the new free chain are written beside what is live;
/// 2. they are made durable;
/// 3. the head is written, under the exclusive lock of the header region;
/// 4. the head is made durable; only now is what the old state used free.
///
/// Threads: every public function takes the mutex.
class StorageEngine : public std::enable_shared_from_this<StorageEngine> {
  public:
    StorageEngine(InterfacePtr<IFile> file, const StorageLayout& layout, const StorageOptions& options,
                  const wstring& url);
    ~StorageEngine();
    StorageEngine(const StorageEngine&) = delete;
    StorageEngine& operator=(const StorageEngine&) = delete;

    /// Writes an empty container to a file, in its turn: to an empty one, or whatever the file holds when
    /// `replacing`. False when the file is left as it is.
    [[nodiscard]] static bool create(IFile& file, const StorageLayout& layout, bool replacing);

    /// The committed state stands still while one of these lives. May be nested.
    class Reading {
      public:
        explicit Reading(StorageEngine& engine);
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

      private:
        StorageEngine& engine_;
        std::unique_lock<EngineMutex> lock_;
    };

    /// All that the committed state uses stays as it is while one of these lives, and nobody waits for its
    /// end. The caller holds the mutex, so that the state in memory stands still, too.
    class Pinned {
      public:
        explicit Pinned(StorageEngine& engine);
        ~Pinned();
        Pinned(const Pinned&) = delete;
        Pinned& operator=(const Pinned&) = delete;

      private:
        StorageEngine& engine_;
        SpaceLocks::Ranges space_;
    };

    /// No other process changes anything while one of these lives. May be nested. The last one takes back
    /// what was not committed.
    class Turn {
      public:
        explicit Turn(StorageEngine& engine);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

      private:
        StorageEngine& engine_;
    };

    // whole

    [[nodiscard]] const StorageLayout& layout() const noexcept { return layout_; }
    [[nodiscard]] const wstring& url() const noexcept { return url_; }
    [[nodiscard]] const wstring& root() const noexcept { return root_; }
    void setRoot(wstring root) noexcept { root_ = std::move(root); }
    [[nodiscard]] IFile& file() const noexcept { return *file_; }
    [[nodiscard]] bool isIn(IFile& file) const { return &file == file_.get() || lock_.isSameFile(file); }
    [[nodiscard]] wstring urlOf(wstring_view name) const { return root_ + wstring(name); }
    [[nodiscard]] EngineMutex& mutex() noexcept { return mutex_; }
    [[nodiscard]] std::uint64_t changeCounter();
    void beginReading();
    void endReading() noexcept;
    void begin();
    [[nodiscard]] bool inTransaction();
    void commit();
    void rollback();
    CompactReport compact(const CompactOptions& options);
    [[nodiscard]] StorageCheck check();
    [[nodiscard]] StorageInfo info();

    // files

    [[nodiscard]] bool contains(wstring_view name);
    /// Without `damaged` a node of the table that is damaged is thrown.
    [[nodiscard]] std::vector<StorageFound> find(wstring_view pattern, const DamagedNode& damaged = {});
    [[nodiscard]] std::vector<wstring> names(wstring_view pattern);
    [[nodiscard]] std::uint64_t count();
    [[nodiscard]] StorageFound describe(wstring_view name);
    [[nodiscard]] std::vector<std::byte> get(wstring_view name);
    void put(wstring_view name, std::span<const std::byte> content);
    void copy(wstring_view from, wstring_view to);
    void remove(wstring_view name);
    std::size_t removeAll(wstring_view pattern);
    void rename(wstring_view from, wstring_view to);
    void setTimes(wstring_view name, Date created, Date modified);
    /// Moves a file from another container; false, with nothing changed, when it changed while it was copied.
    /// Nobody can change it when `alone`.
    [[nodiscard]] bool moveFrom(StorageEngine& source, wstring_view from, wstring_view to, bool alone);
    void requireNoTransaction();

    // For open inner files; the caller holds a Reading or a Turn, and so the mutex.

    /// An inner file as it is now: the address of its content and its attributes.
    struct Found {
        FileEntry entry;
        StorageFileInfo info;
    };
    [[nodiscard]] Found lookUp(wstring_view name);
    [[nodiscard]] FileEntry existing(wstring_view name) const;
    /// Whether what the name stands for is not committed yet.
    [[nodiscard]] bool isUncommitted(wstring_view name) const noexcept { return table_.isChanged(name); }
    /// Whether the table tells sizes and checksums, and so must be told them.
    [[nodiscard]] bool hasChecksums() const noexcept { return next_ == TableLayout::tree; }
    [[nodiscard]] BlockReader& reader() noexcept { return reader_; }
    /// A reader for what is read after the caller has let go of the Reading. The caller sets its end, that of
    /// the container as it was then.
    [[nodiscard]] BlockReader newReader();
    void pin(const SpaceLocks::Ranges& ranges);
    void unpin(const SpaceLocks::Ranges& ranges) noexcept;
    [[nodiscard]] std::vector<BlockRange> allocate(std::uint64_t blocks);
    /// Finds free blocks in a turn of its own, `most` or only `least`, and pins them. They are free until
    /// they are claimed, but nobody takes them.
    [[nodiscard]] std::vector<BlockRange> reserve(std::uint64_t least, std::uint64_t most);
    [[nodiscard]] SpaceLocks::Ranges spaceOf(std::span<const BlockRange> ranges) const;
    /// The space of a chain, which is walked where that is quick; else all that the container uses.
    [[nodiscard]] SpaceLocks::Ranges spaceOf(BlockChain& chain, BlockReader& reader) const;
    [[nodiscard]] SpaceLocks::Ranges spaceOf(const BlockRuns& blocks) const;
    /// Takes reserved blocks into use, in a turn.
    void claim(const BlockRuns& blocks);
    /// Blocks side by side.
    [[nodiscard]] BlockRange allocateTogether(std::uint64_t blocks, std::uint64_t from = 0);
    /// Gives the end of the file back after a file was given up, unless somebody has the turn: then that one
    /// does, or the next.
    void tidy() noexcept;
    /// Takes blocks out of use, all or none. Damage is thrown as ChainInFileExc.
    void release(const BlockRuns& blocks);
    /// Returns blocks that were taken and are not used after all.
    void giveBack(std::span<const BlockRange> ranges) noexcept;
    void giveBack(const BlockRuns& blocks) noexcept;
    /// Writes blocks in pieces; see encode_blocks().
    void write(std::span<const BlockRange> ranges, std::span<const std::byte> content,
               std::uint64_t chainSize, std::uint64_t next);
    /// Writes what waits, for those who read past it.
    void settleWrites() { queue_.flush(); }
    void requireWritable() const;
    void refuseOpened(wstring_view name) const;
    /// Makes `content` a file's content.
    void putContent(wstring_view name, std::span<const std::byte> content);
    /// A content that is written: where its chain begins, and what the table says of it.
    struct Content {
        std::uint64_t address;
        std::uint64_t size;
        std::uint64_t sum;
        bool isTogether; ///< its blocks lie side by side
    };
    /// Makes `content` a file's content. `released` is what the old content used and the new one does not;
    /// all of it when `dropOld`. Both commit, unless in a transaction.
    void publish(wstring_view name, const Content& content, const BlockRuns& released, bool dropOld);
    void enlist(InnerFile& file) { files_.push_back(&file); }
    void dismiss(InnerFile& file) noexcept { std::erase(files_, &file); }

    [[noreturn]] void throwBadFormat() const;
    /// Says with the URL of an inner file what is damaged, or with the container's where it has no root.
    [[noreturn]] void throwDamaged(wstring_view name) const;
    /// Runs `call`, which concerns the inner file `name`, and says with its URL what is damaged.
    template <class Call>
    auto checked(wstring_view name, Call call) const -> decltype(call());
    /// The same with the container's URL.
    template <class Call>
    auto checked(Call call) const -> decltype(call());

  private:
    // engine.cpp
    void enterReading();
    void leaveReading() noexcept;
    void refresh();
    void load(const ContainerHead::Bytes& bytes);
    [[nodiscard]] bool loadFlat(const ContainerHead& head);
    void beginTurn();
    void endTurn() noexcept;
    [[nodiscard]] BlockChain chain(std::uint64_t address, std::uint64_t wish = 0);

    // engine_space.cpp
    void loadFreeSpace();
    void loadFreeList(bool hasGrown);
    void verifySpace();
    void distrustSpace();
    [[nodiscard]] BlockRuns withoutShared(const BlockRuns& blocks) const;
    void requireNoCutChains(const FilesTable& table) const;

    // engine_commit.cpp

    /// What a commit makes the committed state.
    struct Next {
        ContainerHead head;
        FilesTable table;
        BlockRuns tableBlocks;
        BlockRuns freeBlocks;
    };
    void commitChanges();
    void writeBeside(Next& next);
    void settle(Next next) noexcept;
    void writeHead(const ContainerHead& head);
    void takeBack() noexcept;
    void cutTail() noexcept;
    /// What is free is not known any more, because a call ran out of memory in the middle. Nothing is taken
    /// nor committed before it is read again.
    void forgetSpace() noexcept {
        spaceCounter_.reset();
        spaceTree_.reset();
    }
    void requireSpace() const;
    void avoidPins();
    template <class Call>
    auto onSpace(Call call) -> decltype(call());
    [[nodiscard]] std::uint64_t writeFreeChain(BlockRuns& blocks);
    void writeFlat(Next& next);

    // engine_trees.cpp
    void loadFreeTree();
    [[nodiscard]] RangeSet readFreeTree();
    [[nodiscard]] std::map<std::uint64_t, NodeRef> freeLeaves(const NodeRef& root);
    [[nodiscard]] bool followFreeTree(const NodeRef& from, const NodeRef& to);
    [[nodiscard]] std::optional<NodeRef> usableFreeRoot() const;
    void trustSpace() noexcept;
    template <class Visit>
    void forEachFree(const Visit& visit, const DamagedNode& damaged = {});
    /// Calls `visit(const NodeRef&, StorageUse)` for all nodes of both trees; there are none in table
    /// layout 1.
    template <class Visit>
    void forEachNode(const Visit& visit, const DamagedNode& damagedTable, const DamagedNode& damagedFree);
    /// Nothing in table layout 1.
    [[nodiscard]] std::optional<TreeSpace> treeSpace(const DamagedNode& damagedTable,
                                                     const DamagedNode& damagedFree);
    [[nodiscard]] std::vector<NodeRef> nodes();
    [[nodiscard]] bool isAsWritten(const NodeRef& node);
    /// Tells which nodes are not as they were written.
    void compareNodes(const DamagedNode& damagedTable, const DamagedNode& damagedFree);
    void writeTrees(Next& next);
    void writeFreeTree(Next& next);
    [[nodiscard]] std::vector<TreeChange<FreeRows>> freeChanges(Next& next) const;
    template <class Rows>
    [[nodiscard]] NodeRef writeNodes(TreePlan<Rows>& plan, NodeStore<Rows>& store, BlockRange area,
                                     std::uint64_t counter);
    void releaseNode(const NodeRef& ref);

    // engine_check.cpp
    [[nodiscard]] StorageCheck checkPinned();
    [[nodiscard]] StorageInfo infoPinned();

    // engine_files.cpp
    struct Version;
    [[nodiscard]] StorageFileInfo readInfo(const FileEntry& entry, wstring_view name);
    [[nodiscard]] StorageFound describe(const FileEntry& entry, wstring_view name);
    [[nodiscard]] std::uint64_t sizeOf(const FileEntry& entry);
    [[nodiscard]] std::vector<std::byte> contentOf(const FileEntry& entry);
    void addBlocks(std::uint64_t address, BlockRuns& blocks);
    [[nodiscard]] StorageFileInfo infoOrNone(const FileEntry& entry, wstring_view name);
    void addContent(const FileEntry& entry, BlockRuns& blocks);
    void addAttributes(const FileEntry& entry, wstring_view name, BlockRuns& blocks);
    /// Writes two chains side by side and says where they begin.
    [[nodiscard]] FileEntry writeFile(const StorageFileInfo& info, std::span<const std::byte> content,
                                      std::vector<BlockRange>& ranges);
    /// Writes new attributes for a content that stays.
    [[nodiscard]] FileEntry writeInfo(const StorageFileInfo& info, const FileEntry& content,
                                      std::vector<BlockRange>& ranges);
    void replace(FilesTable::Change& change, const FileEntry& entry, const BlockRuns& released,
                 std::span<const BlockRange> ranges);
    /// The attribute word of what the next commit changes.
    [[nodiscard]] std::uint32_t nextVersion() const noexcept {
        return static_cast<std::uint32_t>(head_.counter + 1);
    }
    [[nodiscard]] StorageFileInfo newInfo(wstring_view name, const std::optional<FileEntry>& old);
    void erase(std::span<const wstring> names);
    void finishChange();

    // engine_convert.cpp
    [[nodiscard]] KnownChains& knownChains();
    void readAhead(const StopToken& stop);
    [[nodiscard]] bool learnChains(const StopToken& stop);
    void learnMoved(std::uint64_t address, StorageUse use, const CanonicalChain& content);
    void unpinKnown() noexcept;
    void forgetChains() noexcept;
    void convert(Compaction& work);
    [[nodiscard]] std::pair<CanonicalChain, bool> knownChain(std::uint64_t address, StorageUse use);
    [[nodiscard]] bool convertEntry(FileEntry& entry, wstring_view name, std::uint64_t& moved);

    // engine_compact.cpp
    [[nodiscard]] bool compactOnce(Compaction& work);
    [[nodiscard]] bool compactStep(Compaction& work);
    void survey(Compaction& work);
    [[nodiscard]] bool surveyChains(Compaction& work, const UsedSpace::Ranges& shared, UsedSpace& moving,
                                    UsedSpace& all);
    [[nodiscard]] bool findBlocks(const FileEntry& entry, wstring_view name, bool isContent,
                                  BlockRuns& blocks);
    void buildWalls(Compaction& work, const UsedSpace& moving, const UsedSpace& all, bool isComplete);
    [[nodiscard]] bool moveSome(Compaction& work);
    void moveOne(Compaction& work, Compaction::Chain& chain, std::uint64_t from);
    [[nodiscard]] bool moveNodes(const Compaction& work);
    /// Copies a chain to a place and returns the checksum of its content.
    [[nodiscard]] std::uint64_t copyChain(BlockChain& from, BlockRange to);
    [[nodiscard]] std::uint64_t moveChain(BlockChain& chain, std::uint64_t sum, std::uint64_t from);
    void moveContent(FileEntry& entry, std::uint64_t from);
    void moveAttributes(FileEntry& entry, wstring_view name, std::uint64_t from);

    InterfacePtr<IFile> file_;
    const StorageLayout& layout_;
    const StorageOptions options_;
    wstring url_;
    wstring root_;
    EngineMutex mutex_;
    ContainerLock lock_;
    BlockReader reader_;
    WriteQueue queue_;

    // the committed state, and the changes laid over it
    bool loaded_ = false;
    ContainerHead::Bytes headBytes_{};
    ContainerHead head_;
    FilesTable table_;
    BlockRuns tableBlocks_;                     // except for the first, which never moves
    std::optional<std::uint64_t> spaceCounter_; // the state that space_ belongs to; none when it is not known
    std::optional<NodeRef> spaceTree_;          // the tree that told of space_; none when that is not known
    BlockRuns freeBlocks_;
    FreeSpace space_;
    NodeStore<FileRows> fileNodes_;
    NodeStore<FreeRows> freeNodes_;
    SpaceLocks pins_;
    bool pinsKnown_ = false;               // to space_, as they are now
    bool spaceVerified_ = false;           // no chain of this state uses what is free in space_
    bool spaceComplete_ = false;           // and all that no chain uses is free
    bool verifiedList_ = false;            // and the free chain on the disk says so
    bool freeTreeLost_ = false;            // the free tree on the disk is damaged
    std::uint64_t unverifiedEnd_ = 0;      // where new blocks began to go behind everything
    RangeSet sharedSpace_;                 // used by more than one chain, which only damage brings about
    std::vector<std::uint64_t> cutChains_; // that the end of the file cuts
    bool unsettled_ = false;               // blocks were taken since the last commit; they may be written

    // What was read before the turn in which it is needed.
    KnownChains known_;
    std::vector<SpaceLocks::Ranges> knownPins_;
    std::uint64_t knownCounter_ = 0; // of the state that known_ is true of, once nothing is pinned for it

    unsigned readings_ = 0;
    bool readLocked_ = false;
    unsigned turns_ = 0;
    bool transaction_ = false;
    bool failed_ = false;                             // what is durable is not known any more
    std::uint64_t nodesFrom_ = 0;                     // no new node lies before this address
    std::function<bool(const NodeRef&)> nodesToMove_; // which stored nodes the next commit writes again
    TableLayout next_ = TableLayout::flat;            // of the table that the next commit writes
    std::vector<InnerFile*> files_;
};

template <class Call>
auto StorageEngine::checked(wstring_view name, Call call) const -> decltype(call()) {
    try {
        return call();
    } catch (const ChainInFileExc&) {
        throwDamaged(name);
    }
}

template <class Call>
auto StorageEngine::checked(Call call) const -> decltype(call()) {
    try {
        return call();
    } catch (const ChainInFileExc&) {
        throwBadFormat();
    }
}

} // namespace core
