// SPDX-License-Identifier: Apache-2.0
#include <core/context/context_def_ext.h>
#include <core/values/type_service.h>

namespace core::detail {

IType* find_type(const GUID* type) {
    auto* const service = type != nullptr ? get_service<ITypeValueService>() : nullptr;
    return service != nullptr ? service->findType(*type) : nullptr;
}

bool describe_type(const GUID* type, ContextValueInfo& info) {
    ContextValueInfo known;
    if (type != nullptr) {
        known.types.addType(*type);
        if (const IType* const object = find_type(type); object != nullptr)
            known.definition = object->valueClass();
    }
    info = std::move(known);
    return type != nullptr;
}

} // namespace core::detail
