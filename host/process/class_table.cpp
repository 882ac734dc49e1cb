// SPDX-License-Identifier: Apache-2.0
#include "host/process/class_table.h"

#include <core/runtime/errors.h>
#include <core/runtime/utf8.h>

namespace host::detail {

using namespace core;

wstring module_name(const SCOM_Module* module) {
    return module != nullptr ? from_utf8(module->name()) : message_text(messages::kProgram);
}

ClassTable::~ClassTable() {
    for (Class& entry : classes_.entries()) {
        if (IClassFactory* const factory = entry.factory.load(); factory != nullptr)
            factory->Release();
    }
}

void ClassTable::add(const GUID& clsid, const Registration& registration) {
    {
        const std::lock_guard guard(lock_);
        Class& entry = classes_.at(clsid);
        if (entry.factory.load() != nullptr && entry.owner != registration.owner)
            throw_error<ProcessException>(
                messages::kClassClaimed,
                {module_name(entry.owner), module_name(registration.owner), to_string(clsid)});
        // Each class that there is can then be taken back without memory.
        if (const std::size_t room = retired_.size() + classes_.entries().size(); retired_.capacity() < room)
            retired_.reserve(2 * room);
        entry.threading = registration.threading;
        entry.attributes = registration.attributes;
        entry.owner = registration.owner;
        replace(entry, InterfacePtr<IClassFactory>(registration.factory).detach());
    }
    settle();
}

bool ClassTable::remove(const GUID& clsid, const SCOM_Module* owner) noexcept {
    {
        const std::lock_guard guard(lock_);
        Class* const entry = classes_.find(clsid);
        if (entry == nullptr || entry->factory.load() == nullptr ||
            (owner != nullptr && entry->owner != owner))
            return false;
        replace(*entry, nullptr);
        entry->owner = nullptr;
    }
    settle();
    return true;
}

InterfacePtr<IUnknown> ClassTable::make(const GUID& clsid) {
    void* object = nullptr;
    if (const Class* const entry = classes_.find(clsid); entry != nullptr) {
        const Readers::Scope inside(readers_);
        if (IClassFactory* const factory = entry->factory.load(); factory != nullptr)
            factory->CreateInstance(nullptr, IUnknown::IID, &object);
    }
    return InterfacePtr<IUnknown>::adopt(static_cast<IUnknown*>(object));
}

ClassTable::Registration ClassTable::find(const GUID& clsid) const {
    const std::lock_guard guard(lock_);
    const Class* const entry = classes_.find(clsid);
    return entry != nullptr ? Registration{.factory = entry->factory.load(),
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

void ClassTable::replace(Class& entry, IClassFactory* factory) noexcept {
    if (IClassFactory* const before = entry.factory.exchange(factory); before != nullptr)
        retired_.push_back(InterfacePtr<IClassFactory>::adopt(before)); // add() has made room
}

} // namespace host::detail
