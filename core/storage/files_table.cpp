// SPDX-License-Identifier: Apache-2.0
#include "core/storage/files_table.h"

#include "core/storage/name_keys.h"
#include "core/strings/folding.h"

#include <algorithm>
#include <cstring>

namespace core {

int compare_file_names(wstring_view a, wstring_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t i = 0;
    for (; i + 4 <= common; i += 4) {
        if (std::memcmp(a.data() + i, b.data() + i, 4 * sizeof(wchar)) != 0)
            break;
    }
    while (i < common && a[i] == b[i])
        ++i;
    // A folding never reaches back over its letter, but a letter may have begun with an equal unit.
    const std::size_t start = i > 0 && (a[i - 1] & 0xFC00) == 0xD800 ? i - 1 : i;
    if (const int order = compare_foldings(a.substr(start), b.substr(start)); order != 0)
        return order < 0 ? -1 : 1;
    const int exact = a.substr(i).compare(b.substr(i));
    return exact < 0 ? -1 : exact > 0 ? 1 : 0;
}

FilesTable::FilesTable(const StorageLayout& layout)
    : layout_(&layout), committed_(std::make_unique<FlatFiles>(layout)), end_(layout.emptyLength()) {}

FilesTable::FilesTable(const FilesTable& other)
    : layout_(other.layout_), committed_(other.committed_->clone()), end_(other.end_), edits_(other.edits_),
      changed_(other.changed_) {}

bool FilesTable::decode(std::span<const std::byte> content, bool sorted) {
    auto decoded = FlatFiles::decode(content, sorted, *layout_);
    if (!decoded)
        return false;
    *this = FilesTable(*layout_, std::make_unique<FlatFiles>(std::move(decoded->files)), decoded->end);
    return true;
}

std::optional<FileEntry> FilesTable::find(wstring_view name) const {
    if (!edits_.empty()) {
        if (const auto edit = edits_.find(name); edit != edits_.end())
            return edit->second.after;
    }
    return committed_->find(name);
}

FilesTable::Change& FilesTable::edit(wstring_view name) {
    if (const auto known = edits_.find(name); known != edits_.end())
        return known->second.after;
    const Change now = committed_->find(name);
    return edits_.emplace(wstring(name), Edit{now, now}).first->second.after;
}

bool FilesTable::isChanged(wstring_view name) const noexcept {
    const auto found = edits_.find(name);
    return found != edits_.end() && found->second.before != found->second.after;
}

void FilesTable::revert() noexcept {
    edits_.clear();
    changed_ = false;
}

std::vector<FilesTable::Changed> FilesTable::changes() const {
    std::vector<std::pair<std::uint64_t, Changed>> order;
    NameHeads heads;
    for (const auto& [name, edit] : edits_) {
        if (edit.before == edit.after)
            continue;
        heads.add(name);
        order.emplace_back(0, Changed{name, &edit.before, &edit.after});
    }
    for (auto& [number, change] : order)
        number = heads.of(change.name);
    std::sort(order.begin(), order.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : compare_file_names(a.second.name, b.second.name) < 0;
    });
    std::vector<Changed> sorted;
    sorted.reserve(order.size());
    for (const auto& [number, change] : order)
        sorted.push_back(change);
    return sorted;
}

std::uint64_t FilesTable::count() const {
    std::uint64_t count = committed_->count();
    for (const auto& [name, edit] : edits_)
        count = count + (edit.after ? 1 : 0) - (edit.before ? 1 : 0);
    return count;
}

void FilesTable::forEach(const CommittedFiles::Visit& visit, const DamagedNode& damaged) const {
    std::vector<Changed> added = changes();
    std::erase_if(added, [](const Changed& change) { return change.before->has_value(); });
    auto next = added.begin();
    const auto visitAdded = [&] {
        visit(next->name, **next->after);
        ++next;
    };
    const auto visitCommitted = [&](wstring_view name, const FileEntry& entry) {
        while (next != added.end() && compare_file_names(next->name, name) < 0)
            visitAdded();
        if (!edits_.empty()) {
            if (const auto edit = edits_.find(name); edit != edits_.end()) {
                if (edit->second.after)
                    visit(name, *edit->second.after);
                return;
            }
        }
        visit(name, entry);
    };
    committed_->forEach(visitCommitted, damaged);
    while (next != added.end())
        visitAdded();
}

std::unique_ptr<FlatFiles> FilesTable::flattened() const {
    auto flat = std::make_unique<FlatFiles>(*layout_);
    if (const auto* const rows = dynamic_cast<const FlatFiles*>(committed_.get()))
        flat->reserve(static_cast<std::size_t>(rows->count()) + edits_.size(),
                      rows->nameUnits() + 16 * edits_.size());
    forEach([&](wstring_view name, const FileEntry& entry) { flat->append(name, entry); });
    return flat;
}

} // namespace core
