// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/wait_access.h"

#include <core/runtime/threads/errors.h>

#include <array>
#include <vector>

namespace core {

bool Waitable::tryTakeQueued(std::uint32_t) noexcept {
    return false; // admit() was asked after the thread had joined the queue
}

namespace detail {
namespace {

/// One stay in the queues, from joining them to leaving them.
class Stay {
  public:
    Stay(std::span<Waiter> waiters, ThreadRecord& thread,
         std::chrono::steady_clock::time_point since) noexcept
        : waiters_(waiters), thread_(thread) {
        for (std::size_t i = 0; i < waiters.size(); ++i) {
            waiters[i].owns = false;
            waiters[i].index = static_cast<std::int32_t>(i);
            waiters[i].claim = &claim_;
            waiters[i].thread = &thread;
            waiters[i].number = thread_number();
            waiters[i].since = since;
        }
    }

    /// Joins the queues and sleeps until one object is had, the deadline passes or a stop comes. `again`
    /// keeps the place of a thread that was woken in vain. Returns the index of what it was admitted to, or
    /// kGaveUp.
    std::int32_t pass(const Deadline& deadline, Stops stops, bool again) {
        std::size_t joined = 0;
        std::int32_t taken = kGaveUp;
        while (joined < waiters_.size() && taken == kGaveUp && claim_.load() == kStillWaiting) {
            Waiter& waiter = waiters_[joined++];
            WaitAccess::join(waiter, again);
            if (WaitAccess::tryTakeQueued(*waiter.object, waiter.way))
                taken = waiter.index;
        }
        if (taken == kGaveUp)
            sleep(deadline, stops);
        std::int32_t claimed = kStillWaiting;
        const bool mine = claim_.compare_exchange_strong(claimed, kGaveUp);
        for (Waiter& waiter : waiters_.first(joined))
            WaitAccess::leave(waiter);
        if (mine || taken == kGaveUp)
            return mine ? own(taken) : claimed;
        return settle(taken, claimed);
    }

  private:
    void sleep(const Deadline& deadline, Stops stops) {
        while (claim_.load() == kStillWaiting) {
            if (stops == Stops::end && thread_.dies())
                return;
            if (!thread_.sleepUntil(deadline))
                return;
        }
    }

    std::int32_t own(std::int32_t taken) noexcept {
        if (taken != kGaveUp)
            waiters_[static_cast<std::size_t>(taken)].owns = true;
        return taken;
    }

    /// The thread took one object and was admitted to another at the same time: it keeps one of them.
    std::int32_t settle(std::int32_t taken, std::int32_t claimed) noexcept {
        const Waiter& first = waiters_[static_cast<std::size_t>(taken)];
        const Waiter& second = waiters_[static_cast<std::size_t>(claimed)];
        if (second.owns) {
            WaitAccess::giveBack(*first.object, first.way);
            return claimed;
        }
        if (&first != &second)
            admit_waiters(second.object); // somebody else has to be woken in its place
        return own(taken);
    }

    std::span<Waiter> waiters_;
    ThreadRecord& thread_;
    std::atomic<std::int32_t> claim_{kStillWaiting};
};

} // namespace

std::optional<std::size_t> wait_at(std::span<Waiter> waiters, const Deadline& deadline, Stops stops) {
    ThreadRecord& thread = own_record();
    const auto since = std::chrono::steady_clock::now();
    for (bool again = false;; again = true) {
        const std::int32_t admitted = Stay(waiters, thread, since).pass(deadline, stops, again);
        if (admitted == kGaveUp) {
            if (stops == Stops::end && thread.dies())
                throw ThreadDeath();
            return std::nullopt;
        }
        const Waiter& waiter = waiters[static_cast<std::size_t>(admitted)];
        if (waiter.owns || WaitAccess::tryTake(*waiter.object, waiter.way))
            return static_cast<std::size_t>(admitted);
    }
}

bool wait_at(Waitable& object, std::uint32_t way, const Deadline& deadline, Stops stops) {
    Waiter waiter;
    waiter.object = &object;
    waiter.way = way;
    return wait_at(std::span(&waiter, 1), deadline, stops).has_value();
}

void check_stop() {
    if (dies())
        throw ThreadDeath();
}

} // namespace detail

using detail::WaitAccess;

std::optional<std::size_t> wait_any(std::span<const Awaited> objects, std::chrono::milliseconds timeout) {
    detail::check_stop();
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (WaitAccess::tryTake(WaitAccess::object(objects[i]), WaitAccess::way(objects[i])))
            return i;
    }
    if (timeout <= std::chrono::milliseconds::zero())
        return std::nullopt;
    std::vector<detail::Waiter> waiters(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        waiters[i].object = &WaitAccess::object(objects[i]);
        waiters[i].way = WaitAccess::way(objects[i]);
    }
    return detail::wait_at(waiters, detail::deadline_after(timeout), detail::Stops::end);
}

namespace {

/// Takes all objects except the one at `held`, which the thread has, without waiting. Returns the index of
/// the one that could not be had, after giving everything back, or the number of objects.
std::size_t take_others(std::span<const Awaited> objects, std::size_t held) noexcept {
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (i == held || WaitAccess::tryTake(WaitAccess::object(objects[i]), WaitAccess::way(objects[i])))
            continue;
        for (std::size_t j = 0; j < objects.size(); ++j) {
            if (j < i || j == held)
                WaitAccess::giveBack(WaitAccess::object(objects[j]), WaitAccess::way(objects[j]));
        }
        return i;
    }
    return objects.size();
}

} // namespace

bool wait_all(std::span<const Awaited> objects, std::chrono::milliseconds timeout) {
    for (std::size_t i = 0; i < objects.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (&WaitAccess::object(objects[i]) == &WaitAccess::object(objects[j]))
                throw_error<ThreadException>(messages::kWaitTwice);
        }
    }
    detail::check_stop();
    const detail::Deadline deadline = detail::deadline_after(timeout);
    std::size_t next = 0;
    while (next < objects.size()) {
        // Holding nothing, so that two who wait for the same objects cannot block each other.
        Waitable& object = WaitAccess::object(objects[next]);
        const std::uint32_t way = WaitAccess::way(objects[next]);
        if (!WaitAccess::tryTake(object, way) &&
            (timeout <= std::chrono::milliseconds::zero() ||
             !detail::wait_at(object, way, deadline, detail::Stops::end)))
            return false;
        next = take_others(objects, next);
    }
    return true;
}

} // namespace core
