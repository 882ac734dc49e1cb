// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/process/id_table.h"

#include <core/runtime/module.h>
#include <core/runtime/process.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace host::detail {

/// The services of a process. What is made already is found without a lock and without counting.
///
/// A service is made without the lock, by the first thread that asks for it, in this process; others that ask
/// meanwhile wait for it. A service that would wait for itself, directly or through others, is refused.
class ServiceTable {
  public:
    /// Makes services as objects of `process`, which owns the table. Throws std::bad_alloc.
    explicit ServiceTable(core::SCOM_Process& process) : process_(process) {}
    ServiceTable(const ServiceTable&) = delete;
    ServiceTable& operator=(const ServiceTable&) = delete;
    ~ServiceTable() = default;

    /// Offers an object of a class, which `owner` has declared (null: the program), in place of an earlier
    /// offer of the same owner. Throws ProcessException (kServiceClaimed) for a service of another owner.
    void offerClass(const core::GUID& iid, const core::GUID& clsid, const core::SCOM_Module* owner);
    /// Offers an object of the program in place of any earlier offer. Throws ProcessException (kNoService)
    /// when it does not have the interface.
    void offerObject(const core::GUID& iid, core::IUnknown* object);
    /// Returns a service through its interface, borrowed, making it if need be; null for one that is not
    /// offered. Throws what making it throws, and ProcessException (kServiceCircle).
    [[nodiscard]] void* find(const core::GUID& iid);
    /// What is known of an offer.
    struct Offer {
        core::GUID iid;
        core::GUID clsid;               // null for an object of the program
        const core::SCOM_Module* owner; // null for the program
    };
    /// Lets go of the objects of what `owner` offers, in the order of revoke(); the offers stay, and objects
    /// are made again when they are asked for.
    void release(const core::SCOM_Module& owner) noexcept;
    /// Takes back the offers that `which` chooses, the objects in the reverse order of their making, one at a
    /// time: each finds those that it was made with.
    void revoke(const std::function<bool(const Offer&)>& which) noexcept;

  private:
    struct Service {
        explicit Service(const core::GUID& iid) noexcept : id(iid) {}

        const core::GUID id;
        std::atomic<void*> ready{nullptr}; // the interface `id` of what `object` holds
        // Under the lock:
        core::InterfacePtr<core::IUnknown> object;
        core::GUID clsid;
        const core::SCOM_Module* owner = nullptr;
        bool offered = false;
        std::uint32_t offers = 0; // how many there were: tells a maker that its offer is gone
        std::uint64_t made = 0;   // the order of making
        std::thread::id maker;    // the thread that makes it, if one does
    };

    class Making;

    [[nodiscard]] void* make(Service& service);
    void await(const Service& service, std::unique_lock<std::mutex>& guard);
    void refuseCircle(const Service& service) const;
    [[nodiscard]] core::InterfacePtr<core::IUnknown> offer(Service& service, const Offer& by) noexcept;
    [[nodiscard]] core::InterfacePtr<core::IUnknown> withdraw(Service& service) noexcept;
    void publish(Service& service, core::InterfacePtr<core::IUnknown> object) noexcept;

    core::SCOM_Process& process_;
    std::mutex lock_;
    std::condition_variable finished_;
    IdTable<Service> services_;
    std::vector<std::pair<std::thread::id, const Service*>> waiting_; // which thread waits for which service
    std::uint64_t made_ = 0;
    std::size_t offered_ = 0; // how many are offered now
};

} // namespace host::detail
