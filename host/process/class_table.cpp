// SPDX-License-Identifier: Apache-2.0
#include "host/process/class_table.h"

#include <core/runtime/errors.h>
#include <core/runtime/module.h>
#include <core/runtime/utf8.h>

namespace host::detail {

using namespace core;

wstring module_name(const SCOM_Module* module) {
    return module != nullptr ? from_utf8(module->name()) : message_text(messages::kProgram);
}

namespace {

[[noreturn]] void claimed(const SCOM_Module* owner, const SCOM_Module* other, const GUID& clsid) {
    throw_error<ProcessException>(messages::kClassClaimed,
                                  {module_name(owner), module_name(other), to_string(clsid)});
}

} // namespace

void ClassTable::addLibrary() {
    const LibraryClasses& library = LibraryClasses::get();
    const std::lock_guard guard(lock_);
    for (const Class& entry : classes_.entries()) {
        if (entry.held && library.find(entry.id) != nullptr)
            claimed(entry.owner, &core_module(), entry.id);
    }
    gone_ = std::vector<std::atomic<bool>>(library.size());
    library_.store(&library);
}

const LibraryClasses::Class* ClassTable::ofLibrary(const GUID& clsid) const noexcept {
    const LibraryClasses* const library = library_.load();
    const LibraryClasses::Class* const known = library != nullptr ? library->find(clsid) : nullptr;
    return known != nullptr && !gone_[known->index].load() ? known : nullptr;
}

void ClassTable::add(const GUID& clsid, const Registration& registration) {
    bool replaced = false;
    {
        const std::lock_guard guard(lock_);
        const auto* const before = ofLibrary(clsid);
        if (before != nullptr && registration.owner != &core_module())
            claimed(&core_module(), registration.owner, clsid);
        Class& entry = classes_.at(clsid);
        if (entry.held && entry.owner != registration.owner)
            claimed(entry.owner, registration.owner, clsid);
        // Each class that there is can then be taken back without memory.
        if (const std::size_t room = retired_.size() + classes_.entries().size(); retired_.capacity() < room)
            retired_.reserve(2 * room);
        entry.threading = registration.threading;
        entry.attributes = registration.attributes;
        entry.owner = registration.owner;
        replaced = replace(entry, registration.factory);
        if (before != nullptr)
            gone_[before->index].store(true);
    }
    if (replaced)
        settle();
}

bool ClassTable::remove(const GUID& clsid, const SCOM_Module* owner) noexcept {
    {
        const std::lock_guard guard(lock_);
        if (const auto* const known = ofLibrary(clsid); known != nullptr) {
            const bool taken = owner == nullptr || owner == &core_module();
            if (taken)
                gone_[known->index].store(true);
            return taken;
        }
        Class* const entry = classes_.find(clsid);
        if (entry == nullptr || !entry->held || (owner != nullptr && entry->owner != owner))
            return false;
        replace(*entry, nullptr);
        entry->owner = nullptr;
    }
    settle();
    return true;
}

void ClassTable::suspend(const SCOM_Module& owner) noexcept {
    const std::lock_guard guard(lock_);
    for (Class& entry : classes_.entries()) {
        if (entry.owner == &owner)
            entry.factory.store(nullptr);
    }
}

void ClassTable::resume(const SCOM_Module& owner) noexcept {
    const std::lock_guard guard(lock_);
    for (Class& entry : classes_.entries()) {
        if (entry.owner == &owner)
            entry.factory.store(entry.held.get());
    }
}

InterfacePtr<IUnknown> ClassTable::make(const GUID& clsid) {
    void* object = nullptr;
    if (const auto* const known = ofLibrary(clsid); known != nullptr) {
        known->declaration->record.createInstance(nullptr, IUnknown::IID, &object);
    } else if (const Class* const entry = classes_.find(clsid); entry != nullptr) {
        const Readers::Scope inside(readers_);
        if (IClassFactory* const factory = entry->factory.load(); factory != nullptr)
            factory->CreateInstance(nullptr, IUnknown::IID, &object);
    }
    return InterfacePtr<IUnknown>::adopt(static_cast<IUnknown*>(object));
}

bool ClassTable::has(const GUID& clsid) const noexcept {
    if (ofLibrary(clsid) != nullptr)
        return true;
    const Class* const entry = classes_.find(clsid);
    return entry != nullptr && entry->factory.load() != nullptr;
}

ClassTable::Registration ClassTable::find(const GUID& clsid) const {
    const std::lock_guard guard(lock_);
    if (const auto* const known = ofLibrary(clsid); known != nullptr) {
        const ClassEntry& declared = *known->declaration;
        void* factory = nullptr;
        declared.record.getFactory(declared.record, IClassFactory::IID, &factory);
        return {.factory = InterfacePtr<IClassFactory>::adopt(static_cast<IClassFactory*>(factory)),
                .threading = declared.threading,
                .attributes = declared.attributes,
                .owner = &core_module()};
    }
    const Class* const entry = classes_.find(clsid);
    return entry != nullptr ? Registration{.factory = entry->held,
                                           .threading = entry->threading,
                                           .attributes = entry->attributes,
                                           .owner = entry->owner}
                            : Registration{};
}

bool ClassTable::settle() noexcept {
    for (;;) {
        InterfacePtr<IClassFactory> gone; // ends without the lock: a factory may call back
        const std::lock_guard guard(lock_);
        if (!readers_.none())
            return false;
        if (retired_.empty())
            return true;
        gone = std::move(retired_.back());
        retired_.pop_back();
    }
}

bool ClassTable::replace(Class& entry, InterfacePtr<IClassFactory> factory) noexcept {
    entry.factory.store(factory.get());
    std::swap(entry.held, factory);
    if (!factory)
        return false;
    retired_.push_back(std::move(factory)); // add() has made room
    return true;
}

} // namespace host::detail
