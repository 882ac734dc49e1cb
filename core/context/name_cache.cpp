// SPDX-License-Identifier: Apache-2.0
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
    const std::size_t names = 2 * static_cast<std::size_t>(std::max(count, 0));
    entries_.reserve(names);
    slots_.assign(std::bit_ceil(std::max(2 * names, kMinSlots)), 0);
}

void NameTable::clear() noexcept {
    entries_.clear();
    slots_.clear();
    names_.clear();
}

/// The slot that holds the name, or the empty one where it would stand. There is always an empty one.
std::size_t NameTable::slotOf(wstring_view name, const NameFingerprint& fingerprint) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    // The hash of short names leaves the upper bits bare: spread it over all of them.
    std::size_t slot = (static_cast<std::uint32_t>(fingerprint.hash) * 0x9E3779B1U >> 7) & mask;
    for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const Entry& entry = entries_[slots_[slot] - 1];
        if (entry.fingerprint == fingerprint && compare_nocase(nameOf(entry), name) == 0)
            break;
    }
    return slot;
}

void NameTable::grow() {
    std::vector<std::uint32_t> slots(std::max(2 * slots_.size(), kMinSlots), 0);
    slots_.swap(slots);
    for (std::size_t i = 0; i < entries_.size(); ++i)
        slots_[slotOf(nameOf(entries_[i]), entries_[i].fingerprint)] = static_cast<std::uint32_t>(i + 1);
}

void NameTable::add(wstring_view name, int number) {
    if (2 * (entries_.size() + 1) > slots_.size())
        grow();
    const NameFingerprint fingerprint = name_fingerprint(name);
    std::uint32_t& slot = slots_[slotOf(name, fingerprint)];
    if (slot != 0)
        return;
    const auto offset = static_cast<std::uint32_t>(names_.size());
    names_ += name;
    entries_.push_back({fingerprint, number, offset, static_cast<std::uint32_t>(name.size())});
    slot = static_cast<std::uint32_t>(entries_.size());
}

int NameTable::find(wstring_view name) const noexcept {
    if (entries_.empty())
        return -1;
    const std::uint32_t entry = slots_[slotOf(name, name_fingerprint(name))];
    return entry != 0 ? entries_[entry - 1].number : -1;
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
