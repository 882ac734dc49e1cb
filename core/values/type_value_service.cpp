// SPDX-License-Identifier: Apache-2.0
#include "core/values/primitive_types.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/module.h>
#include <core/strings/names.h>
#include <core/strings/term.h>
#include <core/values/type_service.h>

#include <algorithm>
#include <mutex>
#include <unordered_map>

namespace core {
namespace {

constexpr GUID kClassId = "3854c854-6a24-41f9-9039-8f50d6f8eb1a"_guid;

/// Gathers the types when it is first asked: the primitive ones, and what the script
/// classes of the modules make.
class TypeValueService : public ITypeValueService {
  public:
    using Interfaces = InterfaceList<ITypeValueService>;

    IType* findType(const GUID& id) override { return find(byId_, id); }
    IType* findType(wstring_view name) override { return find(byName_, name); }
    IType* findTypeOfClass(const GUID& clsid) override { return find(byClass_, clsid); }
    std::vector<IType*> types() override {
        gather();
        return types_;
    }

  private:
    template <class Table, class Key>
    IType* find(const Table& table, const Key& key) {
        gather();
        const auto place = table.find(key);
        return place != table.end() ? place->second : nullptr;
    }

    void gather() {
        std::call_once(gathered_, [this] {
            for (auto kind = ValueKind::undefined; kind != ValueKind::object;
                 kind = static_cast<ValueKind>(static_cast<int>(kind) + 1))
                add(detail::primitive_type(kind));
            const auto primitives = static_cast<std::ptrdiff_t>(types_.size());
            for (const SCOM_Module* module : registered_modules()) {
                for (const ClassRecord& record : module->classTable()) {
                    if (record.scriptClass != 0)
                        add(create_object<IType>(*record.clsid)
                                .get()); // one object, alive as long as the library
                }
            }
            std::sort(types_.begin() + primitives, types_.end(), [](const IType* a, const IType* b) {
                return wstring_view(a->name(kEnglish)) < wstring_view(b->name(kEnglish));
            });
        });
    }

    void add(IType* type) {
        if (type == nullptr || !byId_.emplace(type->id(), type).second)
            return;
        types_.push_back(type);
        if (!(type->valueClass() == kNullGuid))
            byClass_.emplace(type->valueClass(), type);
        for (const int alias : {kEnglish, kRussian})
            byName_.emplace(type->name(alias), type);
    }

    std::once_flag gathered_;
    std::vector<IType*> types_;
    std::unordered_map<GUID, IType*> byId_;
    std::unordered_map<GUID, IType*> byClass_;
    std::unordered_map<wstring, IType*, NocaseHash, NocaseEqual> byName_;
};

const SCOM_ServiceEntryInit<TypeValueService, &kClassId, &ITypeValueService::IID> kEntry("TypeValueService");

} // namespace
} // namespace core
