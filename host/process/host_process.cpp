// SPDX-License-Identifier: Apache-2.0
#include <core/dates/date.h>
#include <core/dates/settings.h>
#include <core/runtime/errors.h>
#include <core/runtime/process.h>
#include <host/host_process.h>

#include <algorithm>

namespace host {

using namespace core;

ProcessObject::ProcessObject(const Settings& settings) : data_(SCOM_ProcessDataPtr::make()) {
    data_->settings = settings;
}

void ProcessObject::registerClass(const GUID& clsid, IClassFactory* factory, std::int32_t threading,
                                  std::int32_t attributes) {
    const std::lock_guard guard(lock_);
    classes_.insert_or_assign(clsid, Registration{factory, threading, attributes});
}

void ProcessObject::revokeClass(const GUID& clsid) {
    const std::lock_guard guard(lock_);
    classes_.erase(clsid);
}

InterfacePtr<IUnknown> ProcessObject::createInstance(const GUID& clsid) {
    const InterfacePtr<IClassFactory> factory = registration(clsid).factory;
    void* object = nullptr;
    if (factory)
        factory->CreateInstance(nullptr, IUnknown::IID, &object);
    return InterfacePtr<IUnknown>::adopt(static_cast<IUnknown*>(object));
}

void ProcessObject::registerService(const GUID& iid, const GUID& clsid) {
    const std::lock_guard guard(lock_);
    services_.insert_or_assign(iid, Service{clsid, nullptr});
}

void ProcessObject::offerService(const GUID& iid, IUnknown* object) {
    const std::lock_guard guard(lock_);
    services_.insert_or_assign(iid, Service{kNullGuid, InterfacePtr<IUnknown>(object)});
}

void ProcessObject::revokeResources(SCOM_ResourceBundle*) {
    // Services may still need their messages while they end, and their classes are about to go.
    releaseServices();
}

HRESULT ProcessObject::queryOther(const GUID& iid, void** out) noexcept {
    *out = nullptr;
    try {
        const std::lock_guard guard(lock_);
        const auto place = services_.find(iid);
        if (place == services_.end())
            return kNoInterface;
        if (!place->second.object) {
            const auto object = createInstance(place->second.clsid);
            services_.at(iid).object = object; // found again: making it may have registered others
            return object ? object->QueryInterface(iid, out) : kNoInterface;
        }
        return place->second.object->QueryInterface(iid, out);
    } catch (const std::exception&) {
        return kNoInterface; // a service that cannot be made is a service that is not there
    }
}

ProcessObject::Registration ProcessObject::registration(const GUID& clsid) const {
    const std::lock_guard guard(lock_);
    const auto place = classes_.find(clsid);
    return place != classes_.end() ? place->second : Registration{};
}

void ProcessObject::releaseServices() noexcept {
    std::unordered_map<GUID, Service> services;
    {
        const std::lock_guard guard(lock_);
        services.swap(services_);
    }
}

HostProcess::HostProcess(const Settings& settings)
    : object_(SCOM_InternalClass<ProcessObject>::create(settings)) {
    Date::checkTimeZone(
        settings.part<DateSettings>().timeZone); // a wrong one stops a program here, not at its first date
    if (!object_)
        throw_error<ProcessInitException>(messages::kProcessInit);
    for (const SCOM_Module* module : registered_modules()) {
        module->registerAll(object_.get());
        // A factory that could not be made is passed over; ours fail for lack of memory alone, and a process
        // without some of its classes would be worse than none.
        for (const ClassRecord& record : module->classTable())
            if (record.getFactory == &create_class_factory && !object_->registration(*record.clsid).factory)
                throw_error<ProcessInitException>(messages::kProcessInit);
    }
    before_ = adopt_thread(object_.get()); // last: what fails before leaves the thread as it was
}

HostProcess::~HostProcess() {
    try {
        const auto modules = registered_modules();
        std::for_each(modules.rbegin(), modules.rend(),
                      [this](const SCOM_Module* module) { module->revokeAll(object_.get()); });
    } catch (const std::bad_alloc&) { // the factories go with the process object
    }
    object_->releaseServices();
    adopt_thread(before_);
}

} // namespace host
