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

    IType* findType(const GUID& id) override { return find(gathered().byId, id); }
    IType* findType(wstring_view name) override { return find(gathered().byName, name); }
    IType* findTypeOfClass(const GUID& clsid) override { return find(gathered().byClass, clsid); }
    std::vector<IType*> types() override { return gathered().all; }

  private:
    struct Types {
        std::vector<IType*> all;
        std::unordered_map<GUID, IType*> byId;
        std::unordered_map<GUID, IType*> byClass;
        std::unordered_map<wstring, IType*, NocaseHash, NocaseEqual> byName;

        void add(IType* type) {
            if (type == nullptr || !byId.emplace(type->id(), type).second)
                return;
            all.push_back(type);
            if (!(type->valueClass() == kNullGuid))
                byClass.emplace(type->valueClass(), type);
            for (const int alias : {kEnglish, kRussian})
                byName.emplace(type->name(alias), type);
        }
    };

    template <class Table, class Key>
    static IType* find(const Table& table, const Key& key) {
        const auto found = table.find(key);
        return found != table.end() ? found->second : nullptr;
    }

    const Types& gathered() {
        std::call_once(once_, [this] {
            Types types; // when memory runs out, the next look-up begins again
            for (auto kind = ValueKind::undefined; kind != ValueKind::object;
                 kind = static_cast<ValueKind>(static_cast<int>(kind) + 1))
                types.add(detail::primitive_type(kind));
            const auto primitives = static_cast<std::ptrdiff_t>(types.all.size());
            for (const SCOM_Module* module : registered_modules()) {
                for (const ClassRecord& record : module->classTable()) {
                    if (record.scriptClass != 0) // one object, alive as long as the library
                        types.add(create_object<IType>(*record.clsid).get());
                }
            }
            std::sort(types.all.begin() + primitives, types.all.end(), [](const IType* a, const IType* b) {
                return wstring_view(a->name(kEnglish)) < wstring_view(b->name(kEnglish));
            });
            types_ = std::move(types);
        });
        return types_;
    }

    std::once_flag once_;
    Types types_;
};

const SCOM_ServiceEntryInit<TypeValueService, &kClassId, &ITypeValueService::IID> kEntry("TypeValueService");

} // namespace
} // namespace core
