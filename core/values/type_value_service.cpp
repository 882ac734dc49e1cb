// SPDX-License-Identifier: Apache-2.0
#include "core/values/primitive_types.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/module.h>
#include <core/strings/names.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <limits>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

namespace core {
namespace {

constexpr GUID kTypeValueServiceClassId = "3854c854-6a24-41f9-9039-8f50d6f8eb1a"_guid;

/// The primitive types, then those that script classes of the process's modules make, by English name.
std::vector<IType*> declared_types() {
    std::vector<IType*> all;
    std::unordered_set<GUID> ids;
    const auto add = [&](IType* type) {
        if (type != nullptr && ids.insert(type->id()).second)
            all.push_back(type);
    };
    for (auto kind = ValueKind::undefined; kind != ValueKind::object;
         kind = static_cast<ValueKind>(static_cast<int>(kind) + 1))
        add(detail::primitive_type(kind));
    const auto primitives = static_cast<std::ptrdiff_t>(all.size());
    for (const SCOM_Module* module : registered_modules()) {
        for (const ClassRecord& record : module->classTable()) {
            if (record.scriptClass != 0) // one object, alive as long as the module
                add(create_object<IType>(*record.clsid).get());
        }
    }
    std::sort(all.begin() + primitives, all.end(), [](const IType* a, const IType* b) {
        return wstring_view(a->name(kEnglish)) < wstring_view(b->name(kEnglish));
    });
    return all;
}

/// Gathers the types when it is first asked, and again when modules have come or gone.
///
/// Look-ups take no lock. Each type that ever was has an entry, which holds null while the type's module is
/// away. Tables lead to entries and never change; a type that is new makes new ones. The older tables stay
/// for threads that are looking into them, and there are as many as there were gatherings with something new.
class TypeValueService : public ITypeValueService {
  public:
    using Interfaces = InterfaceList<ITypeValueService>;

    IType* findType(const GUID& id) override { return find(tables().byId, id); }
    IType* findType(wstring_view name) override { return find(tables().byName, name); }
    IType* findTypeOfClass(const GUID& clsid) override { return find(tables().byClass, clsid); }
    std::vector<IType*> types() override {
        tables();
        const std::lock_guard guard(lock_);
        return living_;
    }

  private:
    struct Entry {
        std::atomic<IType*> type{nullptr};
        IType* gathered = nullptr; // what `type` is about to be
    };
    struct Tables {
        std::unordered_map<GUID, Entry*> byId;
        std::unordered_map<GUID, Entry*> byClass;
        std::unordered_map<wstring, Entry*, NocaseHash, NocaseEqual> byName;
        bool clash = false; // whether two types have one name: the one that is there is found

        void addName(const wstring& name, Entry* entry) {
            const auto [named, added] = byName.emplace(name, entry);
            clash = clash || (!added && named->second != entry);
        }
        void add(const IType& type, Entry* entry) {
            byId.emplace(type.id(), entry);
            if (!(type.valueClass() == kNullGuid))
                byClass.emplace(type.valueClass(), entry);
            for (const int alias : {kEnglish, kRussian})
                addName(type.name(alias), entry);
        }
        void add(const Tables& older) {
            byId.insert(older.byId.begin(), older.byId.end());
            byClass.insert(older.byClass.begin(), older.byClass.end());
            for (const auto& [name, entry] : older.byName)
                addName(name, entry);
        }
    };

    template <class Table, class Key>
    static IType* find(const Table& table, const Key& key) {
        const auto found = table.find(key);
        return found != table.end() ? found->second->type.load(std::memory_order_acquire) : nullptr;
    }

    const Tables& tables() {
        if (generation_.load(std::memory_order_acquire) != modules_generation())
            gather();
        return *newest_.load(std::memory_order_acquire);
    }

    void gather() {
        const std::lock_guard guard(lock_);
        const std::uint64_t generation =
            modules_generation(); // what changes from now on is for the next time
        if (generation_.load(std::memory_order_relaxed) == generation)
            return;
        const ModulesScope modules; // until the types are not asked any more
        std::vector<IType*> living = declared_types();
        for (Entry& entry : entries_)
            entry.gathered = nullptr;
        const Tables* const older = newest_.load(std::memory_order_relaxed);
        bool stale = older == nullptr || older->clash;
        std::unordered_map<GUID, Entry*> known = older != nullptr ? older->byId : decltype(known)();
        for (IType* const type : living) {
            Entry*& entry = known[type->id()];
            if (entry == nullptr) {
                entry = &entries_.emplace_back();
                stale = true;
            }
            entry->gathered = type;
        }
        if (stale) {
            auto newer = std::make_unique<Tables>();
            for (const IType* const type : living)
                newer->add(*type, known.at(type->id()));
            if (older != nullptr)
                newer->add(*older);
            tables_.push_back(std::move(newer));
            newest_.store(tables_.back().get(), std::memory_order_release);
        }
        for (Entry& entry : entries_)
            entry.type.store(entry.gathered, std::memory_order_release);
        living_ = std::move(living);
        generation_.store(generation, std::memory_order_release);
    }

    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

    std::atomic<std::uint64_t> generation_{kNever}; // of the modules, when the types were gathered
    std::atomic<const Tables*> newest_{nullptr};
    std::mutex lock_; // of what follows
    std::deque<Entry> entries_;
    std::vector<std::unique_ptr<const Tables>> tables_;
    std::vector<IType*> living_;
};

const SCOM_ServiceEntryInit<TypeValueService, &kTypeValueServiceClassId, &ITypeValueService::IID>
    kTypeValueServiceEntry("TypeValueService");

} // namespace
} // namespace core
