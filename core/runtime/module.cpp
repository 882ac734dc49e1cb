// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/immortal.h"
#include "core/runtime/modules_lock.h"

#include <core/runtime/module.h>
#include <core/runtime/process.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_set>

namespace core {
namespace {

struct Registry {
    std::mutex lock;
    std::vector<SCOM_Module*> modules; // oldest first
};

Registry& registry() noexcept {
    static detail::Immortal<Registry> modules; // modules end in any order
    return *modules;
}

std::atomic<std::uint32_t> generation{0};

} // namespace

std::shared_mutex& detail::modules_lock() noexcept {
    static detail::Immortal<std::shared_mutex> lock; // processes may end after the library's statics
    return *lock;
}

ModulesScope::ModulesScope() noexcept {
    detail::modules_lock().lock_shared();
}

ModulesScope::~ModulesScope() {
    detail::modules_lock().unlock_shared();
}

std::uint32_t modules_generation() noexcept {
    return generation.load(std::memory_order_acquire);
}

std::vector<SCOM_Module*> registered_modules() {
    Registry& all = registry();
    const std::lock_guard guard(all.lock);
    return all.modules;
}

void SCOM_Module::initialize() {
    std::size_t count = 0;
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        ++count;
    auto table = std::make_unique<ClassRecord[]>(count + 1); // value-initialised: the last record stays zero
    ClassRecord* record = table.get();
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        *record++ = entry->record;
    if (compared_ != entries_) { // once: the library's list is the same each time
        std::unordered_set<GUID> ids;
        for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
            ids.insert(*entry->record.clsid);
        differ_ = ids.size() == count;
        compared_ = entries_;
    }
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
    Registry& all = registry();
    const std::lock_guard guard(all.lock);
    if (std::ranges::find(all.modules, this) == all.modules.end())
        all.modules.push_back(this);
    generation.fetch_add(1);
}

void SCOM_Module::term() noexcept {
    bundle_.cleanup();
    {
        Registry& all = registry();
        const std::lock_guard guard(all.lock);
        std::erase(all.modules, this);
        generation.fetch_add(1);
    }
    cleanup();
}

void SCOM_Module::registerClass(const GUID& clsid, SCOM_Process* process) const {
    const ClassEntry* entry = entries_;
    while (entry != nullptr && !(*entry->record.clsid == clsid))
        entry = entry->next;
    const auto table = classTable();
    const auto record = std::ranges::find_if(table, [&](const ClassRecord& candidate) {
        return candidate.clsid != nullptr && *candidate.clsid == clsid;
    });
    if (entry != nullptr && record != table.end())
        handOver(*entry, *record, process);
}

void SCOM_Module::handOver(const ClassEntry& entry, const ClassRecord& record, SCOM_Process* process) const {
    void* factory = nullptr;
    if (record.getFactory(record, IClassFactory::IID, &factory) != kOk)
        return;
    const auto held = InterfacePtr<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
    process->registerModuleClass(*this, *record.clsid, held.get(), entry.threading, entry.attributes);
    if (record.service == nullptr)
        return;
    try {
        process->registerService(*record.service, *record.clsid);
    } catch (...) {
        revokeClass(*record.clsid, process);
        throw;
    }
}

void SCOM_Module::revokeClass(const GUID& clsid, SCOM_Process* process) const {
    process->revokeModuleClass(*this, clsid);
}

void SCOM_Module::registerAll(SCOM_Process* process) const {
    const ClassEntry* entry = entries_;
    try {
        for (std::size_t i = 0; entry != nullptr; entry = entry->next, ++i) {
            if (differ_ && i < size_ && table_[i].clsid == entry->record.clsid)
                handOver(*entry, table_[i], process); // the table is in the order of the list
            else                                      // declared twice, or since the table was made
                registerClass(*entry->record.clsid, process);
        }
    } catch (...) {
        for (const ClassEntry* done = entries_; done != entry; done = done->next)
            revokeClass(*done->record.clsid, process);
        throw;
    }
    classesChanged();
}

void SCOM_Module::revokeAll(SCOM_Process* process) const {
    process->revokeModuleResources(*this, &bundle_);
    for (const ClassEntry* entry = entries_; entry != nullptr; entry = entry->next)
        revokeClass(*entry->record.clsid, process);
    classesChanged();
}

void SCOM_Module::classesChanged() const noexcept {
    if (this != &core_module()) // whose classes a process has from its beginning to its end
        generation.fetch_add(1);
}

} // namespace core
