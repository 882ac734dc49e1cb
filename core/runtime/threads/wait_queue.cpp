// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/wait_queue.h"

#include "core/runtime/immortal.h"
#include "core/runtime/threads/wait_access.h"

namespace core::detail {
namespace {

constexpr std::size_t kBucketBits = 8;

struct WaitBuckets {
    std::array<WaitBucket, std::size_t{1} << kBucketBits> all;
};

} // namespace

WaitBucket& bucket_of(const Waitable* object) noexcept {
    static Immortal<WaitBuckets> buckets; // locks may be used by the destructors of other statics
    const auto spread = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object)) *
                        0x9e3779b97f4a7c15U; // neighbours lie far from each other
    return (*buckets).all[static_cast<std::size_t>(spread >> (64 - kBucketBits))];
}

void WaitBucket::add(Waiter& waiter, bool atFront) noexcept {
    waiter.previous = atFront ? nullptr : last;
    waiter.next = atFront ? first : nullptr;
    (waiter.previous != nullptr ? waiter.previous->next : first) = &waiter;
    (waiter.next != nullptr ? waiter.next->previous : last) = &waiter;
    waiter.queued = true;
    waiting.fetch_add(1); // in order with the tries to take the object that follow
}

void WaitBucket::remove(Waiter& waiter) noexcept {
    (waiter.previous != nullptr ? waiter.previous->next : first) = waiter.next;
    (waiter.next != nullptr ? waiter.next->previous : last) = waiter.previous;
    waiter.queued = false;
    waiting.fetch_sub(1, std::memory_order_relaxed);
}

WaitQueue::WaitQueue(const Waitable* object) noexcept : object_(object), bucket_(bucket_of(object)) {
    bucket_.lock.lock();
}

WaitQueue::~WaitQueue() {
    bucket_.lock.unlock();
    for (std::size_t i = 0; i < wokenCount_; ++i)
        woken_[i]->wake();
}

Waiter* WaitQueue::first() const noexcept {
    Waiter* waiter = bucket_.first;
    while (waiter != nullptr && waiter->object != object_)
        waiter = waiter->next;
    return waiter;
}

bool WaitQueue::claim(Waiter& waiter, bool owns) noexcept {
    bucket_.remove(waiter);
    waiter.owns = owns;
    ThreadRecord* const thread = waiter.thread; // the waiter may be gone once its thread is claimed
    std::int32_t waiting = kStillWaiting;
    if (!waiter.claim->compare_exchange_strong(waiting, waiter.index))
        return false;
    if (wokenCount_ < kKept)
        woken_[wokenCount_++] = thread;
    else
        thread->wake();
    return true;
}

void admit_waiters(const Waitable* object) noexcept {
    WaitQueue queue(object);
    if (Waiter* const first = queue.first(); first != nullptr)
        WaitAccess::admit(*first->object, queue);
}

} // namespace core::detail
