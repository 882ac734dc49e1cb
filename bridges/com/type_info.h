// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <memory>
#include <vector>

/// What type libraries say, read once.
namespace core::com {

/// A parameter of a member.
struct KnownParam {
    wstring name{};          ///< empty where the library has none
    VARTYPE type = VT_EMPTY; ///< VT_BYREF where a variable is passed; VT_USERDEFINED for a type of a library
    bool optional = false;   ///< may be left out
    bool out = false;        ///< passes a value back
};

/// A member of an interface.
struct KnownMember {
    wstring name{};                   ///< as the library writes it
    wstring description{};            ///< a sentence; empty where the library has none
    DISPID id = DISPID_UNKNOWN;       ///< the number by which it is called
    int kinds = 0;                    ///< INVOKEKINDs
    VARTYPE type = VT_EMPTY;          ///< of the value that it has or returns; VT_VOID for none
    std::vector<KnownParam> params{}; ///< without the value itself

    /// Returns whether it is read or written like a variable.
    [[nodiscard]] bool isProperty() const noexcept { return (kinds & INVOKE_FUNC) == 0; }
};

/// The members of an interface, each of its numbers once, in the order of the library.
using KnownMembers = std::vector<KnownMember>;

/// Returns the members of the interface of an object, shared by all that have it; empty without a type
/// library. Never null.
[[nodiscard]] std::shared_ptr<const KnownMembers> members_of(IDispatch* object);
/// Returns the members of an interface. Those that only compilers call are left out. Throws COMException.
[[nodiscard]] KnownMembers read_members(ITypeInfo& type);
/// Returns the member with a number; null where none has it.
[[nodiscard]] const KnownMember* find_member(const KnownMembers& members, DISPID id) noexcept;

} // namespace core::com
