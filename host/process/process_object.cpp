// SPDX-License-Identifier: Apache-2.0
#include "host/process/class_table.h"
#include "host/process/service_table.h"

#include <core/runtime/module.h>
#include <host/host_process.h>

namespace host {

using namespace core;

ProcessObject::ProcessObject(const Settings& settings)
    : data_(SCOM_ProcessDataPtr::make()), classes_(std::make_unique<detail::ClassTable>()),
      services_(std::make_unique<detail::ServiceTable>(*this)) {
    data_->settings = settings;
}

ProcessObject::~ProcessObject() = default;

void ProcessObject::addLibrary() {
    classes_->addLibrary();
    for (const ClassEntry* const entry : detail::LibraryClasses::get().services())
        services_->offerClass(*entry->record.service, *entry->record.clsid, &core_module());
}

void ProcessObject::removeLibrary() noexcept {
    services_->revoke([](const auto& offer) { return offer.owner == &core_module(); });
    classes_->removeLibrary();
}

void ProcessObject::registerClass(const GUID& clsid, IClassFactory* factory, std::int32_t threading,
                                  std::int32_t attributes) {
    classes_->add(clsid, {factory, threading, attributes, nullptr});
}

void ProcessObject::registerModuleClass(const SCOM_Module& owner, const GUID& clsid, IClassFactory* factory,
                                        std::int32_t threading, std::int32_t attributes) {
    classes_->add(clsid, {factory, threading, attributes, &owner});
}

void ProcessObject::revokeClass(const GUID& clsid) {
    services_->revoke([&](const auto& offer) { return offer.clsid == clsid; });
    classes_->remove(clsid, nullptr);
}

void ProcessObject::revokeModuleClass(const SCOM_Module& owner, const GUID& clsid) {
    services_->revoke([&](const auto& offer) { return offer.clsid == clsid && offer.owner == &owner; });
    classes_->remove(clsid, &owner);
}

InterfacePtr<IUnknown> ProcessObject::createInstance(const GUID& clsid) {
    return classes_->make(clsid);
}

void ProcessObject::registerService(const GUID& iid, const GUID& clsid) {
    services_->offerClass(iid, clsid, classes_->find(clsid).owner);
}

void ProcessObject::offerService(const GUID& iid, IUnknown* object) {
    services_->offerObject(iid, object);
}

void ProcessObject::revokeService(const GUID& iid) {
    services_->revoke([&](const auto& offer) { return offer.iid == iid; });
}

// Services may still need their messages and each other while they end, and their classes are about to go.

void ProcessObject::revokeResources(SCOM_ResourceBundle* bundle) {
    services_->revoke([&](const auto& offer) {
        return offer.owner != nullptr && &offer.owner->resourceBundle() == bundle;
    });
}

void ProcessObject::revokeModuleResources(const SCOM_Module& owner, SCOM_ResourceBundle*) {
    services_->revoke([&](const auto& offer) { return offer.owner == &owner; });
}

void ProcessObject::releaseServices() noexcept {
    services_->revoke([](const auto&) { return true; });
}

void* ProcessObject::service(const GUID& iid) {
    if (void* const found = services_->find(iid); found != nullptr)
        return found;
    return iid == SCOM_Process::IID ? static_cast<SCOM_Process*>(this) : nullptr;
}

HRESULT ProcessObject::queryOther(const GUID& iid, void** out) noexcept {
    *out = nullptr;
    try {
        *out = services_->find(iid);
    } catch (...) { // a caller that wants to know why asks service()
    }
    if (*out == nullptr)
        return kNoInterface;
    static_cast<IUnknown*>(*out)->AddRef();
    return kOk;
}

bool ProcessObject::hasClass(const GUID& clsid) const noexcept {
    return classes_->has(clsid);
}

void ProcessObject::suspend(const SCOM_Module& owner) noexcept {
    classes_->suspend(owner);
    services_->release(owner);
}

void ProcessObject::resume(const SCOM_Module& owner) noexcept {
    classes_->resume(owner);
}

ProcessObject::Registration ProcessObject::registration(const GUID& clsid) const {
    return classes_->find(clsid);
}

bool ProcessObject::settle() noexcept {
    return classes_->settle();
}

} // namespace host
