// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/lock_order.h"

#include "core/runtime/immortal.h"
#include "core/runtime/threads/call_site.h"
#include "core/runtime/threads/thread_record.h"

#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/lock_cycles.h>
#include <core/runtime/threads/thread.h>
#include <core/runtime/utf8.h>

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace core {
namespace {

std::atomic<LockCycleHandler> replacedHandler{nullptr};

} // namespace

bool finds_lock_cycles() noexcept {
#if defined(CORE_LOCK_CYCLES)
    return true;
#else
    return false;
#endif
}

LockCycleHandler replace_lock_cycle_handler(LockCycleHandler handler) noexcept {
    return replacedHandler.exchange(handler);
}

#if defined(CORE_LOCK_CYCLES)

namespace detail::lock_order {
namespace {

/// A lock that a thread holds.
struct Held {
    const void* lock;
    CallSite where;
};

/// The first time that one lock was taken under another.
struct Step {
    const void* held;
    const void* taken;
    CallSite heldWhere, takenWhere;
    wstring thread;
};

/// Each order of two locks that was seen, as a graph: an edge leads from a lock to one that was taken under
/// it. Circles of this graph are what threads can block each other in.
class Orders {
  public:
    /// Adds a step. Returns the steps of the circle that it closes, itself first; none when the step is not
    /// new.
    std::vector<Step> add(Step step) {
        const std::lock_guard guard(lock_);
        auto& after = after_[step.held];
        if (after.contains(step.taken))
            return {};
        before_[step.taken].insert(step.held);
        std::vector<Step> circle{step};
        std::set<const void*> seen;
        const bool closed = step.held == step.taken || lead(step.taken, step.held, circle, seen);
        const void* const taken = step.taken;
        after.emplace(taken, std::move(step));
        return closed ? circle : std::vector<Step>();
    }
    [[nodiscard]] bool knows(const void* held, const void* taken) {
        const std::lock_guard guard(lock_);
        const auto place = after_.find(held);
        return place != after_.end() && place->second.contains(taken);
    }
    void forget(const void* lock) {
        const std::lock_guard guard(lock_);
        if (const auto place = after_.find(lock); place != after_.end()) {
            for (const auto& [taken, step] : place->second)
                before_[taken].erase(lock);
            after_.erase(lock);
        }
        if (const auto place = before_.find(lock); place != before_.end()) {
            for (const void* held : place->second)
                after_[held].erase(lock);
            before_.erase(lock);
        }
    }

  private:
    /// Appends the steps of a way between two locks to `circle`; false when no way leads there.
    bool lead(const void* from, const void* to, std::vector<Step>& circle, std::set<const void*>& seen) {
        const auto place = after_.find(from);
        if (place == after_.end() || !seen.insert(from).second)
            return false;
        for (const auto& [taken, step] : place->second) {
            circle.push_back(step);
            if (taken == to || lead(taken, to, circle, seen))
                return true;
            circle.pop_back();
        }
        return false;
    }

    std::mutex lock_;
    std::map<const void*, std::map<const void*, Step>> after_;
    std::map<const void*, std::set<const void*>> before_;
};

Orders& orders() {
    static Immortal<Orders> all; // locks may end after the library's statics
    return *all;
}

/// What one thread holds.
struct OwnLocks {
    std::vector<Held> held;
    bool busy = false; // while the thread reports, its locks are not looked at
};

constinit thread_local OwnLocks* own = nullptr;
constinit thread_local bool ended = false;

OwnLocks* own_locks() {
    struct Owner {
        ~Owner() {
            delete std::exchange(own, nullptr);
            ended = true;
        }
    };
    if (own == nullptr && !ended) {
        [[maybe_unused]] thread_local const Owner owner;
        own = new OwnLocks;
    }
    return own != nullptr && !own->busy ? own : nullptr;
}

wstring hexadecimal(std::uintptr_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%" PRIxPTR, number);
    return from_utf8(text);
}

wstring thread_text() {
    const wstring name = Thread::currentName();
    return name.empty() ? hexadecimal(thread_number()) : name;
}

void report(const std::vector<Step>& circle) {
    wstring steps;
    for (const Step& step : circle)
        steps += u"\n" + message_text(messages::kLockCycleStep,
                                      {step.thread, hexadecimal(reinterpret_cast<std::uintptr_t>(step.taken)),
                                       step.takenWhere.text(),
                                       hexadecimal(reinterpret_cast<std::uintptr_t>(step.held)),
                                       step.heldWhere.text()});
    const wstring text = message_text(messages::kLockCycle, {steps});
    if (const LockCycleHandler handler = replacedHandler.load(); handler != nullptr)
        handler(text);
    else
        std::fprintf(stderr, "%s\n", to_utf8(text).c_str());
}

} // namespace

// A search that runs out of memory misses something; the locks themselves go on.

void willWait(const void* lock) noexcept {
    try {
        OwnLocks* const mine = own_locks();
        if (mine == nullptr)
            return;
        for (std::size_t i = 0; i < mine->held.size(); ++i) {
            const Held held = mine->held[i];
            if (orders().knows(held.lock, lock))
                continue;
            const auto circle = orders().add({held.lock, lock, held.where, CallSite::here(), thread_text()});
            if (circle.empty())
                continue;
            mine->busy = true;
            report(circle);
            mine->busy = false;
        }
    } catch (...) {
        if (own != nullptr)
            own->busy = false;
    }
}

void locked(const void* lock) noexcept {
    try {
        if (OwnLocks* const mine = own_locks())
            mine->held.push_back({lock, CallSite::here()});
    } catch (...) {
    }
}

void unlocked(const void* lock) noexcept {
    if (own == nullptr)
        return;
    const auto place = std::find_if(own->held.rbegin(), own->held.rend(),
                                    [lock](const Held& held) { return held.lock == lock; });
    if (place != own->held.rend())
        own->held.erase(std::next(place).base());
}

void forget(const void* lock) noexcept {
    try {
        orders().forget(lock);
    } catch (...) {
    }
}

} // namespace detail::lock_order

#endif

} // namespace core
