// SPDX-License-Identifier: Apache-2.0
#include "core/strings/folded_name.h"

#include <core/context/name_cache.h>

#include <algorithm>
#include <bit>

namespace core {
namespace {

constexpr std::size_t kMinSlots = 8;

template <class Name>
int walk(int count, const wchar* wanted, Name name) {
    for (int number = 0; number < count; ++number) {
        for (int alias = 0;; ++alias) {
            const wchar* const text = name(number, alias);
            if (text == nullptr)
                break;
            if (compare_nocase(text, wanted) == 0)
                return number;
        }
    }
    return -1;
}

auto props_of(const IContextDef& def) {
    return [&def](int prop, int alias) { return def.getPropName(prop, alias); };
}

auto methods_of(const IContextDef& def) {
    return [&def](int method, int alias) { return def.getMethodName(method, alias); };
}

} // namespace

void NameTable::reserve(int count) {
    const std::size_t slots = std::bit_ceil(4 * static_cast<std::size_t>(std::max(count, 0)));
    if (slots > slots_.size())
        resize(std::max(slots, kMinSlots));
}

void NameTable::clear() noexcept {
    slots_.clear();
    size_ = 0;
    foldings_.clear();
}

/// The slot with an entry of that fingerprint that `same` is true of, or the free one where it would stand.
/// There is always a free one.
template <class Same>
std::size_t NameTable::slotOf(const NameFingerprint& fingerprint, Same same) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    // The hash of short names leaves the upper bits bare: spread it over all of them.
    std::size_t slot = (static_cast<std::uint32_t>(fingerprint.hash) * 0x9E3779B1U >> 7) & mask;
    for (; slots_[slot].folding != kFree; slot = (slot + 1) & mask) {
        const Entry& entry = slots_[slot];
        if (entry.fingerprint == fingerprint && same(entry))
            break;
    }
    return slot;
}

std::size_t NameTable::slotOf(const FoldedName& name) const noexcept {
    return slotOf(name.fingerprint(),
                  [&](const Entry& entry) { return name.isSame(foldings_.data() + entry.folding); });
}

void NameTable::resize(std::size_t slots) {
    std::vector<Entry> old(slots);
    slots_.swap(old);
    for (const Entry& entry : old) {
        if (entry.folding != kFree)
            slots_[slotOf(entry.fingerprint, [](const Entry&) { return false; })] = entry;
    }
}

void NameTable::add(wstring_view name, int number) {
    if (2 * (size_ + 1) > slots_.size())
        resize(std::max(2 * slots_.size(), kMinSlots));
    const FoldedName wanted(name);
    Entry& entry = slots_[slotOf(wanted)];
    if (entry.folding != kFree)
        return;
    const auto folding = static_cast<std::uint32_t>(foldings_.size());
    wanted.appendTo(foldings_);
    entry = {wanted.fingerprint(), number, folding};
    ++size_;
}

int NameTable::find(wstring_view name) const noexcept {
    if (slots_.empty())
        return -1;
    const Entry& entry = slots_[slotOf(FoldedName(name))];
    return entry.folding != kFree ? entry.number : -1;
}

void ContextDefCached::initPropsCache(const IContextDef& def) const {
    props_.table.build(def.getNProps(), props_of(def));
    props_.built = true;
}

void ContextDefCached::initMethodsCache(const IContextDef& def) const {
    methods_.table.build(def.getNMethods(), methods_of(def));
    methods_.built = true;
}

int ContextDefNoncached::findProp(const IContextDef& def, const wchar* name) const {
    return walk(def.getNProps(), name, props_of(def));
}

int ContextDefNoncached::findMethod(const IContextDef& def, const wchar* name) const {
    return walk(def.getNMethods(), name, methods_of(def));
}

} // namespace core
