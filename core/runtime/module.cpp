// SPDX-License-Identifier: Apache-2.0
#include <core/runtime/module.h>

#include <algorithm>
#include <vector>

namespace core {
namespace {

std::vector<SCOM_Module*>& registry() {
    static auto* const modules = new std::vector<SCOM_Module*>; // never destroyed: modules end in any order
    return *modules;
}

} // namespace

std::span<SCOM_Module* const> registered_modules() noexcept {
    return registry();
}

void SCOM_Module::initialize() {
    std::size_t count = 0;
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        ++count;
    auto table = std::make_unique<ClassRecord[]>(count + 1); // value-initialised: the last record stays zero
    ClassRecord* record = table.get();
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        *record++ = entry->record;
    table_ = std::move(table);
    size_ = count + 1;
}

void SCOM_Module::cleanup() noexcept {
    table_.reset();
    size_ = 0;
}

void SCOM_Module::init(ModuleHandle handle) {
    initialize();
    handle_ = handle;
    if (std::ranges::find(registry(), this) == registry().end())
        registry().push_back(this);
}

void SCOM_Module::term() noexcept {
    bundle_.cleanup();
    std::erase(registry(), this);
    cleanup();
}

void SCOM_Module::registerClass(const GUID& clsid, SCOM_Process* process) const {
    const ClassEntry* entry = entries_;
    while (entry != nullptr && !(*entry->record.clsid == clsid))
        entry = entry->next;
    if (entry == nullptr)
        return;
    void* factory = nullptr;
    if (entry->record.getFactory(entry->record, IClassFactory::IID, &factory) != kOk)
        return;
    const auto held = InterfacePtr<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
    process->registerClass(clsid, held.get(), entry->threading, entry->attributes);
    if (entry->record.service != nullptr)
        process->registerService(*entry->record.service, clsid);
}

void SCOM_Module::revokeClass(const GUID& clsid, SCOM_Process* process) const {
    process->revokeClass(clsid);
}

void SCOM_Module::registerAll(SCOM_Process* process) const {
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        registerClass(*entry->record.clsid, process);
}

void SCOM_Module::revokeAll(SCOM_Process* process) const {
    process->revokeResources(&bundle_);
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        revokeClass(*entry->record.clsid, process);
}

} // namespace core
