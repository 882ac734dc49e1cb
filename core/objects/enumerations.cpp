// SPDX-License-Identifier: Apache-2.0
#include <core/objects/enumeration.h>
#include <core/runtime/module.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace core {
namespace {

constexpr GUID kEnumerationsClassId = "9c384bb1-1c8e-41a8-9e65-9b65240f9261"_guid;

/// The enumerations that script classes of the process's modules make, by English name. They are borrowed: a
/// reference would keep their modules loaded.
std::vector<IEnumeration*> declared_enumerations() {
    std::vector<IEnumeration*> all;
    for (const SCOM_Module* module : registered_modules()) {
        for (const ClassRecord& record : module->classTable()) {
            if (record.scriptClass == 0)
                continue;
            auto* const object = create_object<IEnumeration>(*record.clsid).get();
            if (object != nullptr && std::ranges::find(all, object) == all.end())
                all.push_back(object);
        }
    }
    std::ranges::sort(all, {}, [](IEnumeration* enumeration) {
        return wstring_view(enumeration->valueType()->name(kEnglish));
    });
    return all;
}

/// Gathers the enumerations when it is first asked, and again when modules have come or gone.
///
/// Look-ups take no lock. An enumeration keeps its number, also while its module is away: then it has no name
/// and no value. Tables never change; an enumeration that is new makes a new one with a number at its end.
/// The older tables stay for threads that are looking into them.
class Enumerations : public ContextDefCore<IEnumerations> {
  public:
    using Interfaces = InterfaceList<IEnumerations, IContext_, IContextDef>;

    int getNProps() const override { return static_cast<int>(table().slots.size()); }
    const wchar* getPropName(int prop, int alias) const override {
        IEnumeration* const enumeration = at(prop);
        return enumeration != nullptr ? enumeration->valueType()->name(alias) : nullptr;
    }
    int findProp(const wchar* name) const override {
        const int prop = table().names.find(name);
        // The name of one that is away may be that of another one, which is here.
        return prop < 0 || at(prop) != nullptr ? prop : ContextDefNoncached().findProp(*this, name);
    }

    InterfacePtr<IContextDef> getIContextDef() override {
        return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
    }
    void getPropVal(int prop, GenericValue& out) override {
        IEnumeration* const enumeration = at(prop);
        if (enumeration == nullptr)
            detail::bad_property(prop);
        out = InterfacePtr<IEnumeration>(enumeration).query<IValue>();
    }
    void setPropVal(int prop, const GenericValue&) override {
        const wchar* const name = getPropName(prop, kEnglish);
        if (name == nullptr)
            detail::bad_property(prop);
        detail::unwritable_property(name);
    }
    void call(int method, GenericValue*, std::vector<GenericValue>*) override { detail::bad_method(method); }

  private:
    struct Slot {
        GUID id;          // of the type of the values
        wstring names[2]; // a copy, for the time when it is away
        std::atomic<IEnumeration*> enumeration{nullptr};
    };
    struct Table {
        std::vector<const Slot*> slots;
        NameTable names;
    };

    IEnumeration* at(int prop) const {
        const Table& all = table();
        return prop >= 0 && static_cast<std::size_t>(prop) < all.slots.size()
                   ? all.slots[static_cast<std::size_t>(prop)]->enumeration.load(std::memory_order_acquire)
                   : nullptr;
    }

    const Table& table() const {
        if (generation_.load(std::memory_order_acquire) != modules_generation())
            gather();
        return *newest_.load(std::memory_order_acquire);
    }

    void gather() const {
        const std::lock_guard guard(lock_);
        const std::uint64_t generation =
            modules_generation(); // what changes from now on is for the next time
        if (generation_.load(std::memory_order_relaxed) == generation)
            return;
        const ModulesScope modules; // until the enumerations are not asked any more
        const std::vector<IEnumeration*> living = declared_enumerations();
        const std::size_t before = slots_.size();
        for (IEnumeration* const enumeration : living) {
            const IType& type = *enumeration->valueType();
            if (std::ranges::find(slots_, type.id(), &Slot::id) != slots_.end())
                continue;
            Slot& slot = slots_.emplace_back();
            slot.id = type.id();
            for (const int alias : {kEnglish, kRussian})
                slot.names[alias] = type.name(alias);
        }
        for (Slot& slot : slots_) {
            const auto place = std::ranges::find(
                living, slot.id, [](IEnumeration* enumeration) { return enumeration->valueType()->id(); });
            slot.enumeration.store(place != living.end() ? *place : nullptr, std::memory_order_release);
        }
        if (slots_.size() != before || tables_.empty())
            addTable();
        generation_.store(generation, std::memory_order_release);
    }
    void addTable() const {
        auto table = std::make_unique<Table>();
        for (const Slot& slot : slots_)
            table->slots.push_back(&slot);
        table->names.build(static_cast<int>(table->slots.size()), [&](int prop, int alias) {
            const Slot& slot = *table->slots[static_cast<std::size_t>(prop)];
            return alias <= kRussian ? slot.names[alias].c_str() : nullptr;
        });
        tables_.push_back(std::move(table));
        newest_.store(tables_.back().get(), std::memory_order_release);
    }

    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

    mutable std::atomic<std::uint64_t> generation_{kNever}; // of the modules, when they were asked
    mutable std::atomic<const Table*> newest_{nullptr};
    mutable std::mutex lock_;        // of what follows
    mutable std::deque<Slot> slots_; // by number
    mutable std::vector<std::unique_ptr<const Table>> tables_;
};

const SCOM_ServiceEntryInit<Enumerations, &kEnumerationsClassId, &IEnumerations::IID>
    kEnumerationsEntry("Enumerations");

} // namespace
} // namespace core
