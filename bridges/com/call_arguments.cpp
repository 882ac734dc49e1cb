// SPDX-License-Identifier: Apache-2.0
#include "bridges/com/call_arguments.h"

#include "bridges/com/options.h"
#include "bridges/com/values.h"

#include <algorithm>

namespace core::com {

GenericValue CallArguments::newValue() const {
    return from_variant(given_.rgvarg[0]);
}

const VARIANT* CallArguments::find(UINT position) const noexcept {
    const UINT unnamed = given_.cArgs - given_.cNamedArgs;
    if (position < unnamed)
        return &given_.rgvarg[given_.cArgs - 1 - position]; // the last one comes first
    for (UINT i = 0; i < given_.cNamedArgs; ++i) {
        if (given_.rgdispidNamedArgs[i] == static_cast<DISPID>(position))
            return &given_.rgvarg[i];
    }
    return nullptr;
}

GenericValue CallArguments::at(UINT position) const {
    const VARIANT* const variant = find(position);
    if (variant == nullptr || is_missing(*variant))
        throw BadCall{DISP_E_PARAMNOTOPTIONAL, position};
    return from_variant(*variant);
}

std::vector<GenericValue> CallArguments::forMethod(const IContextDef& definition, int method) const {
    const auto params = static_cast<UINT>(std::max(definition.getNParams(method), 0));
    const UINT unnamed = given_.cArgs - given_.cNamedArgs;
    UINT count = unnamed;
    for (UINT i = 0; i < given_.cNamedArgs; ++i) {
        const DISPID name = given_.rgdispidNamedArgs[i];
        const bool known = name >= 0 && static_cast<UINT>(name) < params;
        if (!known || find(static_cast<UINT>(name)) != &given_.rgvarg[i]) // another argument is there already
            throw BadCall{DISP_E_PARAMNOTFOUND, i};
        count = std::max(count, static_cast<UINT>(name) + 1);
    }
    if (count > params)
        throw BadCall{DISP_E_BADPARAMCOUNT};
    std::vector<GenericValue> values(count);
    for (UINT i = 0; i < count; ++i) {
        const VARIANT* const variant = find(i);
        if (variant != nullptr && !is_missing(*variant))
            values[i] = from_variant(*variant);
        else if (!definition.getParamDefValue(method, static_cast<int>(i), &values[i]))
            throw BadCall{DISP_E_PARAMNOTOPTIONAL, i < unnamed ? given_.cArgs - 1 - i : i};
    }
    return values;
}

void CallArguments::passBack(const IContextDef& definition, int method,
                             const std::vector<GenericValue>& values) const {
    for (UINT i = 0; i < values.size(); ++i) {
        const VARIANT* const variant = find(i);
        if (variant != nullptr && (V_VT(variant) & VT_BYREF) != 0 && !is_missing(*variant) &&
            definition.isParamOut(method, static_cast<int>(i)))
            to_reference(values[i], *variant, for_results);
    }
}

} // namespace core::com
