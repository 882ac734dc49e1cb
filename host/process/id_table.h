// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>
#include <vector>

namespace host::detail {

/// Entries by id, which any number of threads find without a lock while one thread adds. An `Entry` is made
/// from its id, holds it as `id`, and stays at its address as long as the table: what is taken back leaves an
/// empty entry, which its id fills again.
///
/// A table that has grown keeps its earlier, smaller slots for the threads that still look through them; all
/// of them together are smaller than the last.
template <class Entry>
class IdTable {
  public:
    IdTable() { grow(); }

    /// Returns the entry of an id, null for an id that was never added.
    [[nodiscard]] Entry* find(const core::GUID& id) const noexcept {
        const Slots& slots = *current_.load(std::memory_order_acquire);
        for (std::size_t at = first(id);; ++at) {
            Entry* const entry = slots.at(at).load(std::memory_order_acquire);
            if (entry == nullptr || entry->id == id)
                return entry;
        }
    }

    // One thread at a time:

    /// Returns the entry of an id, adding it if need be. Throws std::bad_alloc; nothing has changed then.
    [[nodiscard]] Entry& at(const core::GUID& id) {
        if (Entry* const known = find(id); known != nullptr)
            return *known;
        if (2 * (entries_.size() + 1) > slots_.back()->size())
            grow();
        Entry& added = entries_.emplace_back(id);
        put(*slots_.back(), added);
        return added;
    }
    /// Returns all entries, in the order in which they were added.
    [[nodiscard]] std::deque<Entry>& entries() noexcept { return entries_; }
    [[nodiscard]] const std::deque<Entry>& entries() const noexcept { return entries_; }

  private:
    class Slots {
      public:
        explicit Slots(std::size_t size) : slots_(size) {}
        [[nodiscard]] std::size_t size() const noexcept { return slots_.size(); } // a power of two
        [[nodiscard]] const std::atomic<Entry*>& at(std::size_t i) const noexcept {
            return slots_[i & (size() - 1)];
        }
        [[nodiscard]] std::atomic<Entry*>& at(std::size_t i) noexcept { return slots_[i & (size() - 1)]; }

      private:
        std::vector<std::atomic<Entry*>> slots_;
    };

    static std::size_t first(const core::GUID& id) noexcept {
        return std::hash<core::GUID>()(id) >> (sizeof(std::size_t) * 4); // the upper half is the better mixed
    }
    static void put(Slots& slots, Entry& entry) noexcept {
        std::size_t at = first(entry.id);
        while (slots.at(at).load(std::memory_order_relaxed) != nullptr)
            ++at;
        slots.at(at).store(&entry, std::memory_order_release);
    }
    void grow() {
        auto larger = std::make_unique<Slots>(slots_.empty() ? 64 : 2 * slots_.back()->size());
        for (Entry& entry : entries_)
            put(*larger, entry);
        slots_.push_back(std::move(larger));
        current_.store(slots_.back().get(), std::memory_order_release);
    }

    std::deque<Entry> entries_;
    std::vector<std::unique_ptr<Slots>> slots_; // the last one is in use
    std::atomic<const Slots*> current_{nullptr};
};

} // namespace host::detail
