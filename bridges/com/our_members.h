// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/call_arguments.h"

#include <core/context/context_def.h>

#include <span>

/// How members of our objects are found and called from outside.
namespace core::com {

/// An object of ours: the value, and its members; null where scripts reach none.
struct OurMembers {
    const Value& value;
    IContext_* context;
};

/// Stores the number of a member, and of its parameters by their names, as GetIDsOfNames does.
[[nodiscard]] ::HRESULT find_members(IContext_* context, std::span<LPOLESTR> names, DISPID* ids);

/// Does what Invoke is to do with a member, and stores what it returns; returns whether there is something.
/// DISPID_VALUE is an element of the object, or, without an argument, its presentation. Throws BadCall and
/// what the member throws.
bool invoke_member(const OurMembers& object, DISPID member, WORD flags, const CallArguments& arguments,
                   GenericValue& returned);

} // namespace core::com
