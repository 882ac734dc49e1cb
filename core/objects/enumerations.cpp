// SPDX-License-Identifier: Apache-2.0
#include <core/objects/enumeration.h>
#include <core/runtime/module.h>

#include <algorithm>
#include <mutex>
#include <string_view>

namespace core {
namespace {

constexpr GUID kClassId = "9c384bb1-1c8e-41a8-9e65-9b65240f9261"_guid;

/// Gathers the enumerations from the script classes of the modules when it is first asked.
class Enumerations : public ContextDefCore<IEnumerations> {
  public:
    using Interfaces = InterfaceList<IEnumerations, IContext_, IContextDef>;

    int getNProps() const override { return static_cast<int>(all().size()); }
    const wchar* getPropName(int prop, int alias) const override {
        const Entry* const entry = detail::entry_at(all(), prop);
        return entry != nullptr ? (*entry)->valueType()->name(alias) : nullptr;
    }
    int findProp(const wchar* name) const override {
        gather();
        return names_.find(name);
    }

    InterfacePtr<IContextDef> getIContextDef() override {
        return InterfacePtr<IContextDef>(static_cast<IContextDef*>(this));
    }
    void getPropVal(int prop, GenericValue& out) override {
        const Entry* const entry = detail::entry_at(all(), prop);
        if (entry == nullptr)
            detail::bad_property(prop);
        out = entry->query<IValue>();
    }
    void setPropVal(int prop, const GenericValue&) override {
        const wchar* const name = getPropName(prop, kEnglish);
        if (name == nullptr)
            detail::bad_property(prop);
        detail::unwritable_property(name);
    }
    void call(int method, GenericValue*, std::vector<GenericValue>*) override { detail::bad_method(method); }

  private:
    using Entry = InterfacePtr<IEnumeration>;

    std::span<const Entry> all() const {
        gather();
        return entries_;
    }

    void gather() const {
        std::call_once(gathered_, [this] {
            std::vector<Entry> entries;
            for (const SCOM_Module* module : registered_modules()) {
                for (const ClassRecord& record : module->classTable()) {
                    if (record.scriptClass == 0)
                        continue;
                    if (auto object = create_object<IEnumeration>(*record.clsid); object)
                        entries.push_back(std::move(object));
                }
            }
            std::ranges::sort(entries, {}, [](const Entry& entry) {
                return wstring_view(entry->valueType()->name(kEnglish));
            });
            names_.build(static_cast<int>(entries.size()), [&](int prop, int alias) {
                return entries[static_cast<std::size_t>(prop)]->valueType()->name(alias);
            });
            entries_ = std::move(entries);
        });
    }

    mutable std::once_flag gathered_;
    mutable std::vector<Entry> entries_;
    mutable NameTable names_;
};

const SCOM_ServiceEntryInit<Enumerations, &kClassId, &IEnumerations::IID> kEntry("Enumerations");

} // namespace
} // namespace core
