// SPDX-License-Identifier: Apache-2.0
#include "host/process/service_table.h"

#include "host/process/class_table.h"

#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>

#include <algorithm>

namespace host::detail {

using namespace core;

namespace {

/// What people know a service by: the class that implements it.
wstring name_of(const GUID& clsid, const SCOM_Module* owner) {
    if (owner != nullptr) {
        for (const ClassRecord& record : owner->classTable()) {
            if (record.clsid != nullptr && *record.clsid == clsid && record.name != nullptr)
                return from_utf8(record.name);
        }
    }
    return to_string(clsid);
}

/// The interface `iid` of an object as a reference of its own; null when it does not have it.
InterfacePtr<IUnknown> face(IUnknown* object, const GUID& iid) noexcept {
    void* answer = nullptr;
    if (object != nullptr)
        object->QueryInterface(iid, &answer);
    return InterfacePtr<IUnknown>::adopt(static_cast<IUnknown*>(answer));
}

} // namespace

void ServiceTable::offerClass(const GUID& iid, const GUID& clsid, const SCOM_Module* owner) {
    InterfacePtr<IUnknown> before; // ends without the lock
    const std::lock_guard guard(lock_);
    Service& service = services_.at(iid);
    if (service.offered && service.owner != owner)
        throw_error<ProcessException>(messages::kServiceClaimed,
                                      {module_name(service.owner), module_name(owner), to_string(iid)});
    before = offer(service, {iid, clsid, owner});
}

void ServiceTable::offerObject(const GUID& iid, IUnknown* object) {
    auto held = face(object, iid);
    if (!held)
        core::detail::no_service(iid);
    InterfacePtr<IUnknown> before;
    const std::lock_guard guard(lock_);
    Service& service = services_.at(iid);
    before = offer(service, {iid, kNullGuid, nullptr});
    publish(service, std::move(held));
}

void* ServiceTable::find(const GUID& iid) {
    Service* const service = services_.find(iid);
    if (service == nullptr)
        return nullptr;
    void* const ready = service->ready.load(std::memory_order_acquire);
    return ready != nullptr ? ready : make(*service);
}

void ServiceTable::revoke(const std::function<bool(const Offer&)>& which) noexcept {
    for (;;) {
        InterfacePtr<IUnknown> object; // ends without the lock: what it does then may need other services
        const std::lock_guard guard(lock_);
        if (offered_ == 0)
            return;
        Service* last = nullptr;
        for (Service& service : services_.entries()) {
            if (service.offered && which({service.id, service.clsid, service.owner}) &&
                (last == nullptr || service.made > last->made))
                last = &service;
        }
        if (last == nullptr)
            return;
        object = withdraw(*last);
    }
}

void ServiceTable::release(const SCOM_Module& owner) noexcept {
    for (;;) {
        InterfacePtr<IUnknown> object; // ends without the lock, as above
        const std::lock_guard guard(lock_);
        Service* last = nullptr;
        for (Service& service : services_.entries()) {
            if (service.object && service.owner == &owner && (last == nullptr || service.made > last->made))
                last = &service;
        }
        if (last == nullptr)
            return;
        last->ready.store(nullptr, std::memory_order_release);
        object = std::exchange(last->object, nullptr);
    }
}

/// Marks a service as being made by the calling thread, without the lock as long as it lives.
class ServiceTable::Making {
  public:
    Making(ServiceTable& table, Service& service, std::unique_lock<std::mutex>& guard) noexcept
        : table_(table), service_(service), guard_(guard) {
        service_.maker = std::this_thread::get_id();
        guard_.unlock();
    }
    Making(const Making&) = delete;
    Making& operator=(const Making&) = delete;
    ~Making() {
        guard_.lock();
        service_.maker = {};
        table_.finished_.notify_all();
    }

  private:
    ServiceTable& table_;
    Service& service_;
    std::unique_lock<std::mutex>& guard_;
};

void* ServiceTable::make(Service& service) {
    InterfacePtr<IUnknown> object; // ends without the lock
    std::unique_lock guard(lock_);
    await(service, guard);
    if (!service.offered || service.object)
        return service.ready.load(std::memory_order_relaxed);
    const GUID clsid = service.clsid;
    const std::uint32_t offers = service.offers;
    {
        const Making making(*this, service, guard);
        const ProcessScope scope(&process_); // what it asks for while it is made is of the same process
        object = face(process_.createInstance(clsid).get(), service.id);
    }
    if (service.offers != offers) { // taken back, and perhaps offered again, meanwhile
        guard.unlock();
        return find(service.id);
    }
    if (!object)
        return nullptr;
    publish(service, std::move(object));
    return service.ready.load(std::memory_order_relaxed);
}

void ServiceTable::await(const Service& service, std::unique_lock<std::mutex>& guard) {
    const std::pair waits(std::this_thread::get_id(), &service);
    while (service.maker != std::thread::id()) {
        refuseCircle(service);
        waiting_.push_back(waits);
        finished_.wait(guard);
        std::erase(waiting_, waits);
    }
}

void ServiceTable::refuseCircle(const Service& service) const {
    const Service* next = &service; // from a service to what its maker waits for
    while (next != nullptr && next->maker != std::this_thread::get_id()) {
        const auto waits = std::ranges::find(waiting_, next->maker, &decltype(waiting_)::value_type::first);
        next = waits != waiting_.end() ? waits->second : nullptr;
    }
    if (next != nullptr)
        throw_error<ProcessException>(messages::kServiceCircle, {name_of(service.clsid, service.owner)});
}

InterfacePtr<IUnknown> ServiceTable::offer(Service& service, const Offer& by) noexcept {
    auto before = withdraw(service);
    service.clsid = by.clsid;
    service.owner = by.owner;
    service.offered = true;
    ++offered_;
    return before;
}

InterfacePtr<IUnknown> ServiceTable::withdraw(Service& service) noexcept {
    service.ready.store(nullptr, std::memory_order_release);
    offered_ -= service.offered ? 1U : 0U;
    service.offered = false;
    service.made = 0;
    ++service.offers;
    return std::exchange(service.object, nullptr);
}

void ServiceTable::publish(Service& service, InterfacePtr<IUnknown> object) noexcept {
    service.object = std::move(object);
    service.made = ++made_;
    service.ready.store(service.object.get(), std::memory_order_release);
}

} // namespace host::detail
