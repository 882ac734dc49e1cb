// SPDX-License-Identifier: Apache-2.0
#include "core/context/events/sink_table.h"

#include <core/runtime/threads/errors.h>

#include <exception>
#include <new>

namespace core::detail {

ConnectionNumber SinkTable::add(Sink&& sink) {
    const std::uint32_t index = takeSlot();
    Slot& slot = slots_[index];
    slot.data = sink.data;
    slot.call = sink.call;
    slot.destroy = std::exchange(sink.destroy, nullptr);
    slot.born = ++born_;
    slot.previous = last_;
    slot.next = kNone;
    (last_ != kNone ? slots_[last_].next : first_) = index;
    last_ = index;
    ++count_;
    return ConnectionNumber{slot.generation} << kIndexBits | index;
}

/// A slot that is in no list.
std::uint32_t SinkTable::takeSlot() {
    if (free_ != kNone)
        return std::exchange(free_, slots_[free_].next);
    if (slots_.size() == kNone)
        throw std::bad_alloc();
    slots_.emplace_back();
    return static_cast<std::uint32_t>(slots_.size() - 1);
}

/// The slot of a connection that is there, else kNone.
std::uint32_t SinkTable::slotOf(ConnectionNumber connection) const noexcept {
    const auto index = static_cast<std::uint32_t>(connection & kNone);
    const auto generation = static_cast<std::uint32_t>(connection >> kIndexBits) & kLastGeneration;
    const bool known =
        index < slots_.size() && slots_[index].call != nullptr && slots_[index].generation == generation;
    return known ? index : kNone;
}

bool SinkTable::has(ConnectionNumber connection) const noexcept {
    return slotOf(connection) != kNone;
}

bool SinkTable::remove(ConnectionNumber connection) noexcept {
    const std::uint32_t index = slotOf(connection);
    if (index == kNone)
        return false;
    removeSlot(index);
    return true;
}

void SinkTable::removeSlot(std::uint32_t index) noexcept {
    Slot& slot = slots_[index];
    slot.call = nullptr;
    --count_;
    if (depth_ == 0) {
        freeSlot(index);
        return;
    }
    slot.nextRemoved = removed_;
    removed_ = index;
}

/// Takes a removed slot out of the list; destroying the sink comes last, see 5.
void SinkTable::freeSlot(std::uint32_t index) noexcept {
    Slot& slot = slots_[index];
    (slot.previous != kNone ? slots_[slot.previous].next : first_) = slot.next;
    (slot.next != kNone ? slots_[slot.next].previous : last_) = slot.previous;
    if (slot.generation != kLastGeneration) {
        ++slot.generation;
        slot.next = free_;
        free_ = index;
    }
    const Sink dying(slot.data, nullptr, slot.destroy);
}

void SinkTable::freeRemoved() noexcept {
    while (removed_ != kNone && depth_ == 0) {
        const std::uint32_t index = removed_;
        removed_ = slots_[index].nextRemoved;
        freeSlot(index);
    }
}

void SinkTable::removeAll() noexcept {
    std::uint32_t next = kNone;
    for (std::uint32_t index = first_; index != kNone; index = next) {
        // Freeing may remove any other slot: the walk then begins again at the front.
        next = slots_[index].next;
        if (slots_[index].call == nullptr)
            continue;
        removeSlot(index);
        if (depth_ == 0)
            next = first_;
    }
}

/// Marks an emission as under way, and keeps the table meanwhile.
class SinkTable::UnderWay {
  public:
    explicit UnderWay(SinkTable& table) noexcept : table_(table) {
        table_.hold();
        ++table_.depth_;
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
    ~UnderWay() {
        --table_.depth_;
        if (table_.removed_ != kNone)
            table_.freeRemoved();
        table_.letGo();
    }

  private:
    SinkTable& table_;
};

void SinkTable::emit(Emission& emission) {
    if (count_ == 0)
        return;
    const UnderWay underWay(*this);
    const std::uint64_t latest = born_;
    std::uint32_t index = first_;
    while (index != kNone) {
        try {
            while (index != kNone) {
                const Slot& slot = slots_[index]; // no longer valid behind the call: the row may have grown
                if (slot.born > latest)
                    return;
                if (slot.call != nullptr)
                    slot.call(slot.data, emission);
                index = slots_[index].next;
            }
        } catch (const ThreadDeath&) { // no failure: the thread is to end
            throw;
        } catch (...) {
            if (std::current_exception() == nullptr) // the system ends the thread, and must be let through
                throw;
            report_sink_failure(names_);
            index = slots_[index].next;
        }
    }
}

} // namespace core::detail

namespace core {

void Connection::disconnect() noexcept {
    if (table_ == nullptr)
        return;
    detail::SinkTable& table = *std::exchange(table_, nullptr);
    table.remove(std::exchange(number_, kNoConnection));
    table.letGo();
}

ConnectionNumber Connection::release() noexcept {
    if (table_ != nullptr)
        std::exchange(table_, nullptr)->letGo();
    return std::exchange(number_, kNoConnection);
}

bool Connection::isConnected() const noexcept {
    return table_ != nullptr && table_->has(number_);
}

void Connections::add(Connection connection) {
    if (held_.size() == held_.capacity()) // so that looking for them costs little a connection
        std::erase_if(held_, [](const Connection& held) { return !held.isConnected(); });
    held_.push_back(std::move(connection));
}

void Connections::clear() noexcept {
    const auto ending = std::exchange(held_, {});
}

const EventNames& EventBase::names() const noexcept {
    const detail::SinkTable* const sinks = table();
    return sinks != nullptr ? sinks->names() : *reinterpret_cast<const EventNames*>(word_);
}

std::size_t EventBase::connectionCount() const noexcept {
    const detail::SinkTable* const sinks = table();
    return sinks != nullptr ? sinks->count() : 0;
}

detail::SinkTable& EventBase::makeTable() {
    if (detail::SinkTable* const sinks = table())
        return *sinks;
    auto* const made = new detail::SinkTable(names());
    word_ = reinterpret_cast<std::uintptr_t>(made) | kTableBit;
    return *made;
}

namespace {

/// A sink that is an object, to which the event holds a reference.
detail::Sink object_sink(void* sink, IUnknown* object, detail::Sink::Call call) {
    object->AddRef();
    return {{{sink, object}}, call, [](detail::SinkData data) noexcept {
                static_cast<IUnknown*>(data.words[1])->Release();
            }};
}

} // namespace

Connection EventBase::connectSink(IEventSink* sink) {
    return connectAny(object_sink(sink, sink, [](detail::SinkData data, detail::Emission& emission) {
        static_cast<IEventSink*>(data.words[0])->handle(emission.values());
    }));
}

Connection EventBase::connectInterface(void* sink, IUnknown* object) {
    return connectAny(object_sink(sink, object, [](detail::SinkData data, detail::Emission& emission) {
        const auto& raised = static_cast<const detail::InterfaceEmission&>(emission);
        raised.call(raised, data.words[0]);
    }));
}

Connection EventBase::connectAny(detail::Sink&& sink) {
    detail::SinkTable& sinks = makeTable();
    const ConnectionNumber number = sinks.add(std::move(sink));
    sinks.hold();
    return {sinks, number};
}

bool EventBase::disconnectSink(ConnectionNumber connection) noexcept {
    detail::SinkTable* const sinks = table();
    return sinks != nullptr && sinks->remove(connection);
}

void EventBase::emit(detail::SinkTable& table, detail::Emission& emission) {
    table.emit(emission);
}

/// A sink that is destroyed may connect another one, so the event begins again until none is left.
void EventBase::end() noexcept {
    while (detail::SinkTable* const sinks = table()) {
        word_ = reinterpret_cast<std::uintptr_t>(&sinks->names());
        sinks->removeAll();
        sinks->letGo();
    }
}

} // namespace core
