// SPDX-License-Identifier: Apache-2.0
#include "core/storage/chain_survey.h"
#include "core/storage/engine.h"
#include "core/storage/storage_error.h"
#include "core/storage/used_space.h"

#include <core/runtime/utf8.h>
#include <core/storage/errors.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace core {
namespace {

using Kind = StorageProblem::Kind;

// What a check keeps of problems is bounded, whatever their number and the length of names.
constexpr std::size_t kMostProblems = 5000;
constexpr std::size_t kMostUnits = std::size_t{1} << 20;

/// Problems, as long as there is room for them.
class ProblemList {
  public:
    explicit ProblemList(StorageCheck& check) : check_(check) {}

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    /// Returns the problem's index, kNone when there is no room.
    std::size_t add(StorageProblem problem) {
        units_ += problem.name.size() + problem.otherName.size();
        if (check_.problems.size() >= kMostProblems || units_ > kMostUnits) {
            ++check_.unlisted;
            return kNone;
        }
        check_.problems.push_back(std::move(problem));
        return check_.problems.size() - 1;
    }
    [[nodiscard]] StorageProblem& at(std::size_t index) { return check_.problems[index]; }

  private:
    StorageCheck& check_;
    std::size_t units_ = 0;
};

Kind damage_kind(StorageUse use) {
    return use == StorageUse::attributes  ? Kind::damagedAttributes
           : use == StorageUse::freeChain ? Kind::damagedFreeChain
                                          : Kind::damagedContent;
}

/// Says who has the bytes that more than one have. The first one keeps a piece, each later one with a
/// part of it is a problem: one, however many pieces it shares with the first.
class SharedOwners {
  public:
    SharedOwners(const UsedSpace::Ranges& shared, ProblemList& problems)
        : shared_(shared), owners_(shared.size(), kNobody), problems_(problems) {}

    void begin(StorageUse use, wstring_view name) {
        now_ = {use, wstring(name)};
        index_ = kNobody;
        known_.clear();
    }
    void add(std::uint64_t begin, std::uint64_t end) {
        for (auto range = UsedSpace::firstBehind(shared_, begin);
             range != shared_.end() && range->first < end; ++range) {
            std::size_t& owner = owners_[static_cast<std::size_t>(range - shared_.begin())];
            if (owner == kNobody)
                owner = ownIndex();
            else if (owner != index_)
                note(owner, std::max(begin, range->first), std::min(end, range->second));
        }
    }

  private:
    struct Owner {
        StorageUse use;
        wstring name;
    };
    static constexpr std::size_t kNobody = static_cast<std::size_t>(-1);

    std::size_t ownIndex() {
        if (index_ == kNobody) {
            index_ = all_.size();
            all_.push_back(now_);
        }
        return index_;
    }
    void note(std::size_t owner, std::uint64_t begin, std::uint64_t end) {
        auto known = std::find_if(known_.begin(), known_.end(), [&](auto& k) { return k.first == owner; });
        if (known != known_.end()) {
            if (known->second != ProblemList::kNone) {
                StorageProblem& problem = problems_.at(known->second);
                problem.address = std::min(problem.address, begin);
                problem.length += end - begin;
                ++problem.places;
            }
            return;
        }
        known_.emplace_back(owner, problems_.add({.kind = Kind::overlap,
                                                  .address = begin,
                                                  .length = end - begin,
                                                  .use = now_.use,
                                                  .name = now_.name,
                                                  .otherUse = all_[owner].use,
                                                  .otherName = all_[owner].name}));
    }

    const UsedSpace::Ranges& shared_;
    std::vector<std::size_t> owners_; // of shared_, in all_
    std::vector<Owner> all_;
    Owner now_{};
    std::size_t index_ = kNobody;                            // of now_ in all_
    std::vector<std::pair<std::size_t, std::size_t>> known_; // owners that now_ shares with, their problems
    ProblemList& problems_;
};

void add_lost(ProblemList& problems, const UsedSpace::Ranges& used, std::uint64_t end) {
    StorageProblem lost{.kind = Kind::lost, .places = 0};
    std::uint64_t at = 0;
    const auto add = [&](std::uint64_t begin, std::uint64_t stop) {
        if (begin >= stop)
            return;
        if (lost.places++ == 0)
            lost.address = begin;
        lost.length += stop - begin;
    };
    for (const auto& [begin, stop] : used) {
        add(at, std::min(begin, end));
        at = stop;
    }
    add(at, end);
    if (lost.places != 0)
        problems.add(std::move(lost));
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
    const std::lock_guard lock(mutex_);
    const Pinned pinned(*this);
    return checked([&] { return checkPinned(); });
}

StorageCheck StorageEngine::checkPinned() {
    if (table_.hasChanges() || space_.hasChanges())
        throw_storage_error(messages::kStorageTransaction, url_);
    StorageCheck result;
    ProblemList problems(result);
    UsedSpace space;
    space.add(0, layout_.emptyLength());
    std::set<std::uint64_t> damagedNodes; // each is met more than once
    const auto noting = [&](Kind kind) {
        return [&, kind](std::uint64_t address) {
            if (damagedNodes.insert(address).second)
                problems.add({.kind = kind, .address = address});
        };
    };
    const DamagedNode inTable = noting(Kind::damagedTable);
    const DamagedNode inFree = noting(Kind::damagedFreeChain);
    compareNodes(inTable, inFree);
    const auto trees = treeSpace(inTable, inFree);
    ChainSurvey survey(reader_, file_->length(), table_, head_, tableBlocks_, trees ? &*trees : nullptr);
    survey.compareContents();
    survey.goOn(inTable);
    ++result.blocks; // the first one of the table
    const bool all = survey.walk(
        [&](const ChainSurvey::Chain& chain) {
            result.blocks += chain.blocks.count();
            for (const BlockRun& run : chain.blocks.runs())
                space.add(run.address, run.address + chain.blocks.lengthOf(run));
            if (chain.damage)
                problems.add(
                    {.kind = damage_kind(chain.use), .address = *chain.damage, .name = wstring(chain.name)});
        },
        [&](std::uint64_t begin, std::uint64_t end) { space.add(begin, end); });
    result.files = survey.files();
    space.settle();
    if (!space.shared().empty()) { // rarely: who they are is found by another walk
        SharedOwners owners(space.shared(), problems);
        owners.begin(StorageUse::head, {});
        owners.add(0, layout_.emptyLength());
        const auto visitFree = [&](std::uint64_t begin, std::uint64_t end) {
            owners.begin(StorageUse::free, {});
            owners.add(begin, end);
        };
        const auto visit = [&](const ChainSurvey::Chain& chain) {
            owners.begin(chain.use, chain.name);
            for (const BlockRun& run : chain.blocks.runs())
                owners.add(run.address, run.address + chain.blocks.lengthOf(run));
        };
        (void)survey.walk(visit, visitFree);
    }
    if (!all)
        problems.add({.kind = Kind::tangled});
    else if (damagedNodes.empty()) // else what they told of would seem lost
        add_lost(problems, space.used(), table_.end());
    std::stable_sort(result.problems.begin(), result.problems.end(),
                     [](const auto& a, const auto& b) { return a.address < b.address; });
    return result;
}

StorageInfo StorageEngine::info() {
    const std::lock_guard lock(mutex_);
    const Pinned pinned(*this);
    return checked([&] { return infoPinned(); });
}

StorageInfo StorageEngine::infoPinned() {
    StorageInfo result;
    result.firstWord = head_.freeChain;
    result.secondWord = head_.blockSize;
    result.changeCounter = head_.counter;
    result.fileLength = file_->length();
    result.end = table_.end();
    std::vector<StorageInfo::Piece>& pieces = result.pieces;
    pieces.push_back({0, layout_.emptyLength(), StorageUse::head});
    const auto addPiece = [&](std::uint64_t begin, std::uint64_t end, StorageUse use) {
        StorageInfo::Piece& last = pieces.back();
        if (last.use == use && last.address + last.length == begin)
            last.length += end - begin;
        else
            pieces.push_back({begin, end - begin, use});
    };
    const DamagedNode ignored = [](std::uint64_t) {};
    const auto trees = treeSpace(ignored, ignored);
    ChainSurvey survey(reader_, result.fileLength, table_, head_, tableBlocks_, trees ? &*trees : nullptr);
    survey.goOn(ignored);
    ++result.blocks; // the first one of the table
    const auto visit = [&](const ChainSurvey::Chain& chain) {
        result.blocks += chain.blocks.count();
        for (const BlockRun& run : chain.blocks.runs())
            addPiece(run.address, run.address + chain.blocks.lengthOf(run), chain.use);
        if (chain.use == StorageUse::content) {
            result.fragments += chain.blocks.runs().size();
            result.contentBytes += chain.damage ? 0 : chain.size;
        }
    };
    (void)survey.walk(visit, [&](std::uint64_t begin, std::uint64_t end) {
        addPiece(begin, end, StorageUse::free);
        result.freeBytes += end - begin;
        ++result.freeRanges;
    });
    result.files = survey.files();
    std::sort(pieces.begin(), pieces.end(), [](const auto& a, const auto& b) {
        return std::tie(a.address, a.length) < std::tie(b.address, b.length);
    });
    return result;
}

wstring StorageProblem::text() const {
    const auto number = [](std::uint64_t n) { return from_utf8(std::to_string(n)); };
    const wstring pieces =
        places > 1 ? u" " + message_text("IDS_STCHECK_PIECES", {number(places)}) : wstring();
    switch (kind) {
    case Kind::damagedTable:
        return message_text("IDS_STCHECK_DAMAGEDTABLE", {number(address)});
    case Kind::damagedFreeChain:
        return message_text("IDS_STCHECK_DAMAGEDFREE", {number(address)});
    case Kind::damagedAttributes:
        return message_text("IDS_STCHECK_DAMAGEDATTRIBUTES", {number(address), name});
    case Kind::damagedContent:
        return message_text("IDS_STCHECK_DAMAGEDCONTENT", {number(address), name});
    case Kind::overlap:
        return message_text("IDS_STCHECK_OVERLAP",
                            {number(address), number(length), who(use, name), who(otherUse, otherName)}) +
               pieces;
    case Kind::lost:
        return message_text("IDS_STCHECK_LOST", {number(address), number(length)}) + pieces;
    case Kind::tangled:
        break;
    }
    return message_text("IDS_STCHECK_TANGLED");
}

} // namespace core
