// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

/// The numbers by which members are called: a number stands for a name, never for a position, so that it
/// stays right when the keys of a structure come and go. It follows from the name, in any case, and is
/// therefore the same in each process, except for names of one hash, which get theirs in the order in which
/// they are asked for.
namespace core::com {

/// Returns the number of a name.
[[nodiscard]] DISPID id_of_name(wstring_view name);
/// Returns the name that a number was given for, borrowed for ever; null for any other number.
[[nodiscard]] const wstring* name_of_id(DISPID id) noexcept;

} // namespace core::com
