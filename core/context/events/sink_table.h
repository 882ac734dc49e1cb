// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/events/event_base.h>
#include <core/runtime/live_counter.h>

#include <vector>

namespace core::detail {

/// The sinks of one event, in a row of slots that are used again. Its live count shows an event that somebody
/// keeps alive by a circle of objects.
///
///  1. Slots of connected sinks form a list in the order of their connections, which is that of `born`.
///  2. A connection is the index of its slot and the generation of the slot, which grows when the slot is
///     freed. A slot whose generation can grow no more is not used again.
///  3. While an emission is under way (depth_ > 0) a slot that is removed stays in the list, with `call`
///     null, so that cursors keep their way; the outermost emission frees it at its end.
///  4. The event, each Connection and each emission hold the table. When the event ends, all slots are
///     removed.
///  5. Nothing of the table is in the middle of a change when a sink is called or destroyed: both may do
///     anything with the event.
class SinkTable : private LiveObjectTrackerImpl<SinkTable> {
  public:
    /// Makes a table without sinks that has one holder, the event.
    explicit SinkTable(const EventNames& names) noexcept : names_(names) {}

    [[nodiscard]] const EventNames& names() const noexcept { return names_; }
    [[nodiscard]] std::size_t count() const noexcept { return count_; }

    /// Puts a sink behind the others. Throws std::bad_alloc; nothing has changed then.
    [[nodiscard]] ConnectionNumber add(Sink&& sink);
    /// Removes a connection; returns false where it is not there.
    bool remove(ConnectionNumber connection) noexcept;
    [[nodiscard]] bool has(ConnectionNumber connection) const noexcept;
    /// Removes all connections: the event ends. The caller gives its hold back afterwards.
    void removeAll() noexcept;
    void emit(Emission& emission);

    void hold() noexcept { ++holders_; }
    /// Gives a hold back; the last one destroys the table.
    void letGo() noexcept {
        if (--holders_ == 0)
            delete this;
    }

  private:
    class UnderWay;

    static constexpr std::uint32_t kNone = 0xFFFFFF; // no slot has that index
    static constexpr int kIndexBits = 24;
    static constexpr std::uint32_t kLastGeneration = 0xFFFFFF;

    struct Slot {
        SinkData data;
        Sink::Call call = nullptr; // null when free or removed
        Sink::Destroy destroy = nullptr;
        std::uint64_t born = 0;
        std::uint32_t previous = kNone;
        std::uint32_t next = kNone; // of a free slot: the next free one
        std::uint32_t generation = 1;
        std::uint32_t nextRemoved = kNone;
    };

    ~SinkTable() = default; // no slot holds a sink: removeAll() came first

    [[nodiscard]] std::uint32_t slotOf(ConnectionNumber connection) const noexcept;
    [[nodiscard]] std::uint32_t takeSlot();
    void removeSlot(std::uint32_t index) noexcept;
    void freeSlot(std::uint32_t index) noexcept;
    void freeRemoved() noexcept;

    const EventNames& names_;
    std::vector<Slot> slots_;
    std::uint32_t first_ = kNone;
    std::uint32_t last_ = kNone;
    std::uint32_t free_ = kNone;
    std::uint32_t removed_ = kNone; // removed, not freed yet
    std::uint32_t depth_ = 0;
    std::uint32_t holders_ = 1;
    std::size_t count_ = 0;
    std::uint64_t born_ = 0; // of the latest connection
};

/// Tells the process that the sink of an event failed, with the exception that is being handled.
void report_sink_failure(const EventNames& event) noexcept;

} // namespace core::detail
